#pragma once

// A software adapter with its engines, for programs in C: what the table API (tev_tbl.h) works on.
//
//     halden_adapter_t *adapter;
//     if (halden_adapter_open("/var/lib/halden", NULL, &adapter) != HALDEN_ADAPTER_OK) {
//         fprintf(stderr, "%s\n", halden_adapter_error());
//         return 1;
//     }
//     tev_tbl_lif_mapping_create(&spec);
//     halden_adapter_close(adapter);
//
// A process has one adapter open by these calls at a time; its tables are those that tev_tbl_*
// means. No table call may run while one is opened or closed. Nothing is thrown.

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#pragma GCC visibility push(default)

typedef struct halden_adapter_ halden_adapter_t;

typedef enum halden_adapter_result_ {
    HALDEN_ADAPTER_OK = 0,
    HALDEN_ADAPTER_INVALID_ARG = 1, /* a null pointer, an access that there is not */
    HALDEN_ADAPTER_IN_USE = 2,      /* an adapter of this process is open */
    HALDEN_ADAPTER_NO_MEMORY = 3,
    HALDEN_ADAPTER_ABSENT = 4, /* there is none in the directory, and none is made */
    HALDEN_ADAPTER_REFUSED = 5 /* the message says by what and why */
} halden_adapter_result_t;

/* How a directory is opened. One process has it for writing, or any number have it for the last
 * two. */
typedef enum halden_adapter_access_ {
    HALDEN_ACCESS_CREATE = 0,  /* as write; made where the directory is absent or empty */
    HALDEN_ACCESS_WRITE = 1,   /* there must be one */
    HALDEN_ACCESS_READ = 2,    /* there must be one, and nothing in it is changed */
    HALDEN_ACCESS_REHEARSE = 3 /* there must be one; what is written ends with the adapter */
} halden_adapter_access_t;

/* Zero stands for the default of a member. */
typedef struct halden_adapter_options_ {
    halden_adapter_access_t access;
    uint32_t flow_rows;       /* a power of two; 4194304 */
    uint32_t flow_ohash_rows; /* a power of two; 2097152 */
} halden_adapter_options_t;

/* Opens the adapter in `directory`, or one in memory that goes with the process when it is null,
 * and makes its engines. Null options are all zero. `*adapter` is null on failure. */
halden_adapter_result_t halden_adapter_open(const char *directory,
                                            const halden_adapter_options_t *options,
                                            halden_adapter_t **adapter);

/* Ends the engines, then the adapter. Null is taken and does nothing. */
void halden_adapter_close(halden_adapter_t *adapter);

/* What the last failed call of this thread met, for people; the empty string before one failed.
 * Valid until the thread's next call. */
const char *halden_adapter_error(void);

#pragma GCC visibility pop

#ifdef __cplusplus
}
#endif
