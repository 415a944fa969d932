#pragma once

/* What every function of the table API answers. The values are shared with the table engines: find
 * passes their "no such entry" on unchanged. */

#include <stdint.h>

typedef uint32_t tev_tbl_ret_t;

enum {
    TEV_TBL_RET_OK = 0,
    TEV_TBL_RET_INVALID_ARG = 2,       /* a null pointer, or an index beyond the table */
    TEV_TBL_RET_ENTRY_NOT_FOUND = 4,   /* find alone: there is no such entry; nothing is logged */
    TEV_TBL_RET_WRITE_FAILED = 9,      /* create, update or delete was refused, for any reason */
    TEV_TBL_RET_READ_FAILED = 15,      /* read or find failed; for read, also an absent entry */
    TEV_TBL_RET_NOT_IMPLEMENTED = 255, /* every table_clear */
};
