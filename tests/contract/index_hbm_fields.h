#pragma once

// Packed action data of the index tables in HBM: one row per field, {name, first bit in the
// packed image, first byte in the action-data record, bits}. Byte 0 of every record is the action
// id.

#include "tests/contract/packed_field.h"

namespace halden::test {

inline constexpr packed_field flow_info_fields[] = {
    {"timestamp", 0, 1, 32},
    {"count", 32, 5, 64},
    {"src_tag", 96, 13, 16},
    {"dst_tag", 112, 15, 16},
    {"dst_lport", 128, 17, 11},
    {"dst_uplink", 139, 19, 1},
    {"dst_uplink_idx", 140, 20, 2},
    {"vdr_ttl_check", 142, 21, 1},
    {"vdr_hops", 143, 22, 8},
    {"vdr_vld", 151, 23, 1},
    {"nat_vld", 152, 24, 1},
    {"nat_idx", 153, 25, 22},
    {"encap", 175, 29, 1},
    {"encap_idx", 176, 30, 13},
    {"decap", 189, 32, 1},
    {"ct_ingress_vld", 190, 33, 1},
    {"ct_ingress_dir", 191, 34, 1},
    {"ct_ingress_idx", 192, 35, 22},
    {"ct_ingress_stats", 214, 39, 12},
    {"ct_egress_vld", 226, 41, 1},
    {"ct_egress_dir", 227, 42, 1},
    {"ct_egress_idx", 228, 43, 22},
    {"ct_egress_stats", 250, 47, 12},
    {"ipfix_ingress_vld", 262, 49, 1},
    {"ipfix_ingress_idx", 263, 50, 22},
    {"ipfix_egress_vld", 285, 54, 1},
    {"ipfix_egress_idx", 286, 55, 22},
    {"drop", 308, 59, 1},
    {"src_uplink", 309, 60, 1},
    {"src_uplink_idx", 310, 61, 2},
    {"mirror_ingress", 312, 62, 8},
    {"mirror_egress", 320, 63, 8},
};

// conntrack_ingress and conntrack_egress, action 0. Action 1 packs all but the last.
inline constexpr packed_field conntrack_fields[] = {
    {"src_seqlo", 0, 1, 32},    {"src_seqhi", 32, 5, 32},     {"src_max_win", 64, 9, 16},
    {"src_state", 80, 11, 4},   {"src_wscale", 84, 12, 4},    {"dst_seqlo", 88, 13, 32},
    {"dst_seqhi", 120, 17, 32}, {"dst_max_win", 152, 21, 16}, {"dst_state", 168, 23, 4},
    {"dst_wscale", 172, 24, 4}, {"sw_state", 176, 25, 8},     {"ct_log", 184, 26, 8},
};

inline constexpr packed_field lif_tx_stats_fields[] = {
    {"ucast_bytes", 0, 1, 64},   {"ucast_pkts", 64, 9, 64},    {"mcast_bytes", 128, 17, 64},
    {"mcast_pkts", 192, 25, 64}, {"bcast_bytes", 256, 33, 64}, {"bcast_pkts", 320, 41, 64},
    {"pad1", 384, 49, 64},       {"pad2", 448, 57, 64},
};

// lport_tx_stats and lport_rx_stats
inline constexpr packed_field lport_stats_fields[] = {
    {"ucast_bytes", 0, 1, 64},   {"ucast_pkts", 64, 9, 64},    {"mcast_bytes", 128, 17, 64},
    {"mcast_pkts", 192, 25, 64}, {"bcast_bytes", 256, 33, 64}, {"bcast_pkts", 320, 41, 64},
    {"pad0", 384, 49, 64},       {"pad1", 448, 57, 64},
};

// ct_ingress_stats and ct_egress_stats
inline constexpr packed_field ct_stats_fields[] = {
    {"pass_bytes_0", 0, 1, 64},    {"pass_pkts_0", 64, 9, 64},    {"drop_bytes_0", 128, 17, 64},
    {"drop_pkts_0", 192, 25, 64},  {"pass_bytes_1", 256, 33, 64}, {"pass_pkts_1", 320, 41, 64},
    {"drop_bytes_1", 384, 49, 64}, {"drop_pkts_1", 448, 57, 64},
};

inline constexpr packed_field mirror_rewrite_l3_fields[] = {
    {"gre_key_seq", 0, 1, 32},
    {"mirror_type", 32, 5, 2},
    {"ipv6", 34, 6, 1},
    {"vlan_vld", 35, 7, 1},
    {"vlan_id", 36, 8, 12},
    {"smac", 48, 10, 48},
    {"dmac", 96, 16, 48},
    {"ipsa", 144, 22, 128},
    {"ipda", 272, 38, 128},
    {"tc", 400, 54, 8},
    {"ttl", 408, 55, 8},
    {"erspan_hw_id", 416, 56, 6},
    {"erspan_session_id", 422, 57, 10},
    {"erspan_timestamp_ns", 432, 59, 1},
    {"trun_vld", 433, 60, 1},
    {"l2_type", 434, 61, 2},
    {"cos", 436, 62, 3},
    {"spare1", 439, 63, 1},
    {"trun_len", 440, 64, 16},
    {"spare2", 456, 66, 56},
};

inline constexpr packed_field flow_rewrite_fields[] = {
    {"vlan_pop", 0, 1, 1},
    {"vlan_push", 1, 2, 1},
    {"vlan_set_vid", 2, 3, 1},
    {"vlan_vid", 3, 4, 12},
    {"vlan_set_pcp", 15, 6, 1},
    {"vlan_pcp", 16, 7, 3},
    {"ip_dscp_set", 19, 8, 1},
    {"ip_dscp", 20, 9, 6},
    {"route", 26, 10, 1},
    {"rss_override", 27, 11, 1},
    {"rss_override_qid", 28, 12, 6},
    {"smac", 34, 13, 48},
    {"dmac", 82, 19, 48},
    {"hops", 130, 25, 8},
    {"kcp_vlan_push", 138, 26, 1},
    {"kcp_vlan_vid", 139, 27, 12},
    {"vni", 151, 29, 24},
    {"encap_sport", 175, 33, 16},
    {"flow_cookie", 191, 35, 32},
};

inline constexpr packed_field nat_rewrite_fields[] = {
    {"ipsa", 0, 1, 128},
    {"ipda", 128, 17, 128},
    {"ipsa_rw", 256, 33, 1},
    {"ipda_rw", 257, 34, 1},
};

inline constexpr packed_field tunnel_encap_fields[] = {
    {"ipv6", 0, 1, 1},        {"geneve", 1, 2, 1},     {"l2_type", 2, 3, 2},
    {"smac", 4, 4, 48},       {"dmac", 52, 10, 48},    {"vlan_vld", 100, 16, 1},
    {"vlan_id", 101, 17, 12}, {"tc_copy", 113, 19, 1}, {"geneve_opt_label_vld", 114, 20, 1},
    {"__pad_0", 115, 21, 5},  {"ipsa", 120, 22, 128},  {"ipda", 248, 38, 128},
    {"tc", 376, 54, 8},       {"ttl", 384, 55, 8},     {"geneve_opt_label_labelID", 392, 56, 17},
};

// ipfix_ingress and ipfix_egress
inline constexpr packed_field ipfix_fields[] = {
    {"pcnt", 0, 1, 64},
    {"bcnt", 64, 9, 64},
    {"tcp_flags", 128, 17, 8},
};

}  // namespace halden::test
