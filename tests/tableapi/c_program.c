/* The table API as a C program uses it. */

#include <stddef.h>
#include <string.h>

#include "tev_tbl.h"
#include "tev_tbl_ret.h"

_Static_assert(sizeof(tev_tbl_lif_mapping_spec_t) == 14, "1 + 2 + 11");
_Static_assert(sizeof(tev_tbl_checksum_spec_t) == 19, "1 + 8 + 1 + 8 + 1");
_Static_assert(offsetof(tev_tbl_flow_spec_t, action_u) == 78, "behind the key");
_Static_assert(sizeof(tev_tbl_ret_t) == 4, "unsigned 32-bit");

tev_tbl_ret_t c_create_lif_mapping(unsigned index, unsigned lport);
tev_tbl_ret_t c_create_lif_mapping(unsigned index, unsigned lport) {
    tev_tbl_lif_mapping_spec_t spec;
    memset(&spec, 0, sizeof spec);
    spec.action_id = LIF_MAPPING_LIF_MAPPING_ID;
    spec.key.index = (uint16_t)index;
    spec.action_u.lif_mapping.src_lport = (uint16_t)lport;
    return tev_tbl_lif_mapping_create(&spec);
}

tev_tbl_ret_t c_clear_flow(void);
tev_tbl_ret_t c_clear_flow(void) { return tev_tbl_flow_table_clear(); }
