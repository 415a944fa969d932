/* The headers that C programs may use, seen by a C compiler. */

#include <stddef.h>
#include <string.h>

#include <halden/p4pd_records.h>
#include <halden/tev_tbl.h>
#include <halden/tev_tbl_ret.h>

void c_fill_lif_mapping(void *room, unsigned lport, unsigned vrf);
void c_fill_lif_mapping(void *room, unsigned lport, unsigned vrf) {
    lif_mapping_actiondata_t data;
    memset(&data, 0, sizeof data);
    data.action_id = LIF_MAPPING_LIF_MAPPING_ID;
    data.action_u.lif_mapping.src_lport = (uint16_t)lport;
    data.action_u.lif_mapping.rmac_vrf = (uint16_t)vrf;
    memcpy(room, &data, sizeof data);
}
