#pragma once

// Packed action data of the index tables in SRAM: one row per field, {name, first bit in the
// packed image, first byte in the action-data record, bits}. Byte 0 of every record is the action
// id.

#include "tests/contract/packed_field.h"

namespace halden::test {

inline constexpr packed_field lif_mapping_fields[] = {
    {"src_lport", 0, 1, 11},       {"uplink", 11, 3, 1},    {"pinned_p2p", 12, 4, 1},
    {"pinned_lport", 13, 5, 11},   {"rmac_vrf", 24, 7, 12}, {"l2seg", 36, 9, 12},
    {"skip_ukuc_repl", 48, 11, 1},
};

inline constexpr packed_field lif_vela_mapping_fields[] = {
    {"src_lport", 0, 1, 11},     {"src_tag", 11, 3, 16},         {"rep_lport", 27, 5, 11},
    {"flow_key_type", 38, 7, 2}, {"use_vlan_mapping", 40, 8, 1}, {"pkt_capture", 41, 9, 1},
    {"fwd_mode", 42, 10, 2},
};

// vlan_vela_mapping and vlan_vela_ctag_mapping
inline constexpr packed_field vlan_vela_fields[] = {
    {"lif_0", 0, 1, 11},          {"lif_1", 11, 3, 11},      {"src_lport", 22, 5, 11},
    {"src_tag", 33, 7, 16},       {"rep_lport", 49, 9, 11},  {"pkt_capture", 60, 11, 1},
    {"flow_key_type", 61, 12, 2}, {"vlan_valid", 63, 13, 1},
};

inline constexpr packed_field validate_packet_vela_fields[] = {
    {"lport0", 0, 1, 16},
    {"lport1", 16, 3, 16},
    {"lport2", 32, 5, 16},
    {"lport3", 48, 7, 16},
};

inline constexpr packed_field l2seg_fields[] = {
    {"host_rcvr_ukuc", 0, 1, 1},
    {"host_rcvr_ukmc", 1, 2, 1},
    {"host_rcvr_bcast", 2, 3, 1},
    {"replicate_idx", 3, 4, 16},
};

inline constexpr packed_field p4i_stats_fields[] = {
    {"rx_from_host", 0, 1, 64},
    {"rx_from_switch", 64, 9, 64},
    {"rx_from_cpu", 128, 17, 64},
    {"rx_user_csum_err", 192, 25, 64},
    {"rx_substrate_csum_err", 256, 33, 64},
    {"rx_malformed", 320, 41, 64},
};

inline constexpr packed_field mirror_rewrite_fields[] = {
    {"dst_lport", 0, 1, 16},
    {"reason", 16, 3, 8},
    {"flowCookie", 24, 4, 32},
    {"vlan_push", 56, 8, 1},
    {"geneve_option_vld", 57, 9, 1},
    {"geneve_option_dmac", 58, 10, 48},
    {"vlan_id", 106, 16, 12},
    {"tunnel_rewrite_vld", 118, 18, 1},
    {"tunnel_rewrite_idx", 119, 19, 13},
    {"tunnel_rewrite_vni", 132, 21, 24},
    {"pkt_capture", 156, 25, 1},
    {"mirror_sw", 157, 26, 1},
    {"mirror_l3", 158, 27, 1},
};

inline constexpr packed_field output_mapping_fields[] = {
    {"vlan_strip", 0, 1, 1},       {"pkt_capture", 1, 2, 1},     {"nports", 2, 3, 2},
    {"p4plus_app_id", 4, 4, 4},    {"dst_tag", 8, 5, 16},        {"dst_lif", 24, 7, 11},
    {"access_vlan_id", 35, 9, 12}, {"vmk_metadata", 47, 11, 1},  {"rss_inner", 48, 12, 1},
    {"vlan_push", 49, 13, 1},      {"vlan_push_id", 50, 14, 12}, {"egress_port1", 62, 16, 4},
    {"egress_port2", 66, 17, 4},
};

inline constexpr packed_field p4e_stats_fields[] = {
    {"tx_to_host", 0, 1, 64},   {"tx_to_switch", 64, 9, 64},      {"tx_to_cpu", 128, 17, 64},
    {"flow_miss", 192, 25, 64}, {"conntrack_redir", 256, 33, 64}, {"drop", 320, 41, 64},
};

}  // namespace halden::test
