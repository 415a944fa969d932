#pragma once

// Index tables that rewrite, encapsulate, mirror and send packets.

#include "p4gen/halden/pipeline/index_records.h"
#include "p4gen/halden/pipeline/model.h"

namespace halden::pipeline {

// --- Mirroring
// ------------------------------------------------------------------------------------

inline constexpr field mirror_rewrite_data[] = {
    {"dst_lport", 16, "logical port the copy goes to"},
    {"reason", 8, "why the packet was mirrored"},
    {"flowCookie", 32, "software's own number of the flow"},
    {"vlan_push", 1},
    {"geneve_option_vld", 1},
    {"geneve_option_dmac", 48},
    {"vlan_id", 12},
    {"tunnel_rewrite_vld", 1},
    {"tunnel_rewrite_idx", 13, "tunnel_encap row"},
    {"tunnel_rewrite_vni", 24},
    {"pkt_capture", 1},
    {"mirror_sw", 1, "the copy goes to software"},
    {"mirror_l3", 1, "the copy is carried over layer 3"},
};
inline constexpr action mirror_rewrite_actions[] = {{"mirror_rewrite_a", mirror_rewrite_data}};
inline constexpr table mirror_rewrite = {
    .id = 30,
    .name = "mirror_rewrite",
    .kind = kind::index_sram,
    .index = mirror_rewrite_index,
    .index_max = 15,
    .actions = mirror_rewrite_actions,
    .data_bits = 159,
    .data_bytes = 28,
    .doc = "Mirror session: where the copies go and how they are marked.",
};

inline constexpr field mirror_rewrite_l3_data[] = {
    {"gre_key_seq", 32, "GRE key or sequence number"},
    {"mirror_type", 2, "encapsulation of the copy"},
    {"ipv6", 1, "the carrier is IPv6"},
    {"vlan_vld", 1},
    {"vlan_id", 12},
    {"smac", 48},
    {"dmac", 48},
    {"ipsa", 128, "source address, byte 0 lowest"},
    {"ipda", 128, "destination address, byte 0 lowest"},
    {"tc", 8, "traffic class"},
    {"ttl", 8},
    {"erspan_hw_id", 6},
    {"erspan_session_id", 10},
    {"erspan_timestamp_ns", 1},
    {"trun_vld", 1, "copies are truncated"},
    {"l2_type", 2},
    {"cos", 3},
    {"spare1", 1},
    {"trun_len", 16, "bytes kept of a truncated copy"},
    {"spare2", 56},
};
inline constexpr action mirror_rewrite_l3_actions[] = {
    {"mirror_rewrite_l3_a", mirror_rewrite_l3_data}};
inline constexpr table mirror_rewrite_l3 = {
    .id = 31,
    .name = "mirror_rewrite_l3",
    .kind = kind::index_hbm,
    .index = mirror_rewrite_l3_index,
    .index_max = 8191,
    .actions = mirror_rewrite_l3_actions,
    .data_bits = 512,
    .data_bytes = 73,
    .doc = "Layer-3 carrier of a mirror session's copies.",
};

// --- Rewrites and tunnels
// -------------------------------------------------------------------------

inline constexpr field flow_rewrite_data[] = {
    {"vlan_pop", 1},
    {"vlan_push", 1},
    {"vlan_set_vid", 1},
    {"vlan_vid", 12},
    {"vlan_set_pcp", 1},
    {"vlan_pcp", 3},
    {"ip_dscp_set", 1},
    {"ip_dscp", 6},
    {"route", 1, "the packet is routed: new MACs, TTL taken down"},
    {"rss_override", 1},
    {"rss_override_qid", 6},
    {"smac", 48, "source MAC when routed"},
    {"dmac", 48, "destination MAC when routed"},
    {"hops", 8},
    {"kcp_vlan_push", 1},
    {"kcp_vlan_vid", 12},
    {"vni", 24, "virtual network identifier of the encapsulation"},
    {"encap_sport", 16, "UDP source port of the encapsulation"},
    {"flow_cookie", 32, "software's own number of the flow"},
};
inline constexpr action flow_rewrite_actions[] = {{"flow_rewrite_a", flow_rewrite_data}};
inline constexpr table flow_rewrite = {
    .id = 32,
    .name = "flow_rewrite",
    .kind = kind::index_hbm,
    .index = index_24,
    .index_max = 2097151,
    .actions = flow_rewrite_actions,
    .data_bits = 223,
    .data_bytes = 39,
    .doc = "Header rewrite of a flow: VLAN, DSCP, MACs, encapsulation.",
};

inline constexpr field nat_rewrite_data[] = {
    {"ipsa", 128, "new source address, byte 0 lowest"},
    {"ipda", 128, "new destination address, byte 0 lowest"},
    {"ipsa_rw", 1, "the source is rewritten"},
    {"ipda_rw", 1, "the destination is rewritten"},
};
inline constexpr action nat_rewrite_actions[] = {{"nat_rewrite_a", nat_rewrite_data}};
inline constexpr table nat_rewrite = {
    .id = 33,
    .name = "nat_rewrite",
    .kind = kind::index_hbm,
    .index = index_22,
    .index_max = 2097151,
    .actions = nat_rewrite_actions,
    .data_bits = 258,
    .data_bytes = 35,
    .doc = "Address translation of a flow.",
};

inline constexpr field tunnel_encap_data[] = {
    {"ipv6", 1, "outer header is IPv6"},
    {"geneve", 1, "Geneve rather than VXLAN"},
    {"l2_type", 2},
    {"smac", 48, "outer source MAC"},
    {"dmac", 48, "outer destination MAC"},
    {"vlan_vld", 1},
    {"vlan_id", 12},
    {"tc_copy", 1, "the inner traffic class is copied out"},
    {"geneve_opt_label_vld", 1},
    {"__pad_0", 5, "unused"},
    {"ipsa", 128, "outer source address, byte 0 lowest"},
    {"ipda", 128, "outer destination address, byte 0 lowest"},
    {"tc", 8, "outer traffic class"},
    {"ttl", 8, "outer TTL"},
    {"geneve_opt_label_labelID", 17},
};
inline constexpr action tunnel_encap_actions[] = {{"tunnel_encap_a", tunnel_encap_data}};
inline constexpr table tunnel_encap = {
    .id = 34,
    .name = "tunnel_encap",
    .kind = kind::index_hbm,
    .index = index_13,
    .index_max = 8191,
    .actions = tunnel_encap_actions,
    .data_bits = 409,
    .data_bytes = 60,
    .doc = "Tunnel: the outer headers put in front of a packet.",
};

// --- Output
// ---------------------------------------------------------------------------------------

inline constexpr field output_mapping_data[] = {
    {"vlan_strip", 1},
    {"pkt_capture", 1},
    {"nports", 2, "number of egress ports"},
    {"p4plus_app_id", 4, "application of the receive path"},
    {"dst_tag", 16},
    {"dst_lif", 11, "logical interface"},
    {"access_vlan_id", 12, "VLAN that is taken off"},
    {"vmk_metadata", 1},
    {"rss_inner", 1, "receive scaling hashes the inner headers"},
    {"vlan_push", 1},
    {"vlan_push_id", 12},
    {"egress_port1", 4},
    {"egress_port2", 4},
};
inline constexpr action output_mapping_actions[] = {
    {"output_mapping_a", output_mapping_data},
    {"output_mapping_drop_a", {}},
};
inline constexpr table output_mapping = {
    .id = 37,
    .name = "output_mapping",
    .kind = kind::index_sram,
    .index = index_11,
    .index_max = 1023,
    .actions = output_mapping_actions,
    .data_bits = 70,
    .data_bytes = 18,
    .no_program_line = 24110,
    .doc = "Logical output port: interface, VLAN handling, egress ports.",
};

inline constexpr action p4plus_app_actions[] = {
    {"p4plus_app_classic_nic_a", {}},
    {"p4plus_app_kestrel_qpl_a", {}},
    {"nop_a", {}},
};
inline constexpr table p4plus_app = {
    .id = 38,
    .name = "p4plus_app",
    .kind = kind::index_sram,
    .index = index_4,
    .index_max = 15,
    .actions = p4plus_app_actions,
    .data_bytes = 2,
    .no_program_line = 24468,
    .doc = "Receive application: how a packet is handed to its queue.",
};

}  // namespace halden::pipeline
