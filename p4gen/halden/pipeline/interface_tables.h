#pragma once

// Index tables of interfaces, flows, rewrites and outputs: addressed by row, data alone.

#include "p4gen/halden/pipeline/index_records.h"
#include "p4gen/halden/pipeline/model.h"

namespace halden::pipeline {

// --- Interfaces
// -----------------------------------------------------------------------------------

inline constexpr field lif_mapping_data[] = {
    {"src_lport", 11, "logical port of the interface"},
    {"uplink", 1, "the interface is an uplink"},
    {"pinned_p2p", 1, "traffic goes to pinned_lport without a look-up"},
    {"pinned_lport", 11, "the port it is pinned to"},
    {"rmac_vrf", 12, "VRF in which destination MACs are looked up"},
    {"l2seg", 12, "layer-2 segment"},
    {"skip_ukuc_repl", 1, "unknown unicast is not replicated to it"},
};
inline constexpr action lif_mapping_actions[] = {{"lif_mapping", lif_mapping_data}};
inline constexpr table lif_mapping = {
    .id = 16,
    .name = "lif_mapping",
    .kind = kind::index_sram,
    .index = index_11,
    .index_max = 1023,
    .actions = lif_mapping_actions,
    .data_bits = 49,
    .data_bytes = 12,
    .doc = "Logical interface: its port, VRF and layer-2 segment.",
};

inline constexpr field lif_vela_mapping_data[] = {
    {"src_lport", 11, "logical port of the interface"},
    {"src_tag", 16, "policy tag of its traffic"},
    {"rep_lport", 11, "port of the interface's representor"},
    {"flow_key_type", 2, "which flow key its packets build"},
    {"use_vlan_mapping", 1, "look the VLAN up before the interface"},
    {"pkt_capture", 1, "copy its packets to the capture port"},
    {"fwd_mode", 2, "forwarding mode"},
};
inline constexpr action lif_vela_mapping_actions[] = {{"lif_vela_mapping", lif_vela_mapping_data}};
inline constexpr table lif_vela_mapping = {
    .id = 17,
    .name = "lif_vela_mapping",
    .kind = kind::index_sram,
    .index = index_11,
    .index_max = 1023,
    .actions = lif_vela_mapping_actions,
    .data_bits = 44,
    .data_bytes = 11,
    .doc = "Logical interface in flow mode: port, tag and flow key type.",
};

inline constexpr field vlan_vela_data[] = {
    {"lif_0", 11, "logical interface of the VLAN on uplink 0"},
    {"lif_1", 11, "logical interface of the VLAN on uplink 1"},
    {"src_lport", 11, "logical port"},
    {"src_tag", 16, "policy tag"},
    {"rep_lport", 11, "port of the representor"},
    {"pkt_capture", 1, "copy packets to the capture port"},
    {"flow_key_type", 2, "which flow key the packets build"},
    {"vlan_valid", 1, "the row is in use"},
};
inline constexpr action vlan_vela_mapping_actions[] = {{"vlan_vela_mapping", vlan_vela_data}};
inline constexpr table vlan_vela_mapping = {
    .id = 18,
    .name = "vlan_vela_mapping",
    .kind = kind::index_sram,
    .index = index_12,
    .index_max = 4095,
    .actions = vlan_vela_mapping_actions,
    .data_bits = 64,
    .data_bytes = 14,
    .doc = "VLAN in flow mode: the interfaces it maps to on each uplink.",
};

inline constexpr action vlan_vela_ctag_mapping_actions[] = {
    {"vlan_vela_ctag_mapping", vlan_vela_data}};
inline constexpr table vlan_vela_ctag_mapping = {
    .id = 19,
    .name = "vlan_vela_ctag_mapping",
    .kind = kind::index_sram,
    .index = index_12,
    .index_max = 4095,
    .actions = vlan_vela_ctag_mapping_actions,
    .data_bits = 64,
    .data_bytes = 14,
    .doc = "Customer VLAN in flow mode: the interfaces it maps to on each uplink.",
};

inline constexpr field validate_packet_vela_data[] = {
    {"lport0", 16, "logical port of physical port 0"},
    {"lport1", 16},
    {"lport2", 16},
    {"lport3", 16},
};
inline constexpr action validate_packet_vela_actions[] = {
    {"validate_headers_vela", validate_packet_vela_data}};
inline constexpr table validate_packet_vela = {
    .id = 20,
    .name = "validate_packet_vela",
    .kind = kind::index_sram,
    .index = index_3,
    .actions = validate_packet_vela_actions,
    .data_bits = 64,
    .data_bytes = 9,
    .doc = "Header checks in flow mode: the logical port of each physical port.",
};

inline constexpr field l2seg_data[] = {
    {"host_rcvr_ukuc", 1, "the host receives unknown unicast"},
    {"host_rcvr_ukmc", 1, "the host receives unknown multicast"},
    {"host_rcvr_bcast", 1, "the host receives broadcast"},
    {"replicate_idx", 16, "replication list of the segment"},
};
inline constexpr action l2seg_actions[] = {{"l2seg", l2seg_data}};
inline constexpr table l2seg = {
    .id = 24,
    .name = "l2seg",
    .kind = kind::index_sram,
    .index = index_12,
    .index_max = 4095,
    .actions = l2seg_actions,
    .data_bits = 19,
    .data_bytes = 6,
    .doc = "Layer-2 segment: who receives its unknown and broadcast traffic.",
};

// --- Flows
// ----------------------------------------------------------------------------------------

inline constexpr field flow_info_data[] = {
    {"timestamp", 32, "time of the last packet"},
    {"count", 64, "packets seen"},
    {"src_tag", 16},
    {"dst_tag", 16},
    {"dst_lport", 11, "logical port the flow goes to"},
    {"dst_uplink", 1},
    {"dst_uplink_idx", 2},
    {"vdr_ttl_check", 1, "drop when the TTL runs out"},
    {"vdr_hops", 8, "routing hops to take off the TTL"},
    {"vdr_vld", 1},
    {"nat_vld", 1},
    {"nat_idx", 22, "nat_rewrite row"},
    {"encap", 1},
    {"encap_idx", 13, "tunnel_encap row"},
    {"decap", 1},
    {"ct_ingress_vld", 1},
    {"ct_ingress_dir", 1},
    {"ct_ingress_idx", 22, "conntrack_ingress row"},
    {"ct_ingress_stats", 12, "ct_ingress_stats row"},
    {"ct_egress_vld", 1},
    {"ct_egress_dir", 1},
    {"ct_egress_idx", 22, "conntrack_egress row"},
    {"ct_egress_stats", 12, "ct_egress_stats row"},
    {"ipfix_ingress_vld", 1},
    {"ipfix_ingress_idx", 22, "ipfix_ingress row"},
    {"ipfix_egress_vld", 1},
    {"ipfix_egress_idx", 22, "ipfix_egress row"},
    {"drop", 1},
    {"src_uplink", 1},
    {"src_uplink_idx", 2},
    {"mirror_ingress", 8, "mirror session of arriving packets"},
    {"mirror_egress", 8, "mirror session of leaving packets"},
};
inline constexpr action flow_info_actions[] = {{"flow_info_a", flow_info_data}};
inline constexpr table flow_info = {
    .id = 21,
    .name = "flow_info",
    .kind = kind::index_hbm,
    .index = index_24,
    .index_max = 2097151,
    .actions = flow_info_actions,
    .data_bits = 328,
    .data_bytes = 64,
    .doc = "What happens to a flow's packets: destination, rewrites, tracking, export.",
};

inline constexpr field conntrack_data[] = {
    {"src_seqlo", 32, "lowest sequence number accepted from the source"},
    {"src_seqhi", 32, "highest"},
    {"src_max_win", 16, "largest window the source announced"},
    {"src_state", 4, "TCP state of the source side"},
    {"src_wscale", 4, "its window scale"},
    {"dst_seqlo", 32},
    {"dst_seqhi", 32},
    {"dst_max_win", 16},
    {"dst_state", 4},
    {"dst_wscale", 4},
    {"sw_state", 8, "software's own state"},
    {"ct_log", 8, "what is logged; full tracking only"},
};
// Sloppy tracking has no log byte.
inline constexpr std::span<const field> conntrack_sloppy_data =
    std::span<const field>(conntrack_data).first(11);
inline constexpr action conntrack_ingress_actions[] = {
    {"conntrack_ingress_full", conntrack_data},
    {"conntrack_ingress_sloppy", conntrack_sloppy_data},
};
inline constexpr table conntrack_ingress = {
    .id = 22,
    .name = "conntrack_ingress",
    .kind = kind::index_hbm,
    .index = index_22,
    .index_max = 2097151,
    .actions = conntrack_ingress_actions,
    .data_bits = 192,
    .data_bytes = 27,
    .no_program_line = 14598,
    .doc = "TCP connection tracking of arriving packets.",
};
inline constexpr action conntrack_egress_actions[] = {
    {"conntrack_egress_full", conntrack_data},
    {"conntrack_egress_sloppy", conntrack_sloppy_data},
};
inline constexpr table conntrack_egress = {
    .id = 23,
    .name = "conntrack_egress",
    .kind = kind::index_hbm,
    .index = index_22,
    .index_max = 2097151,
    .actions = conntrack_egress_actions,
    .data_bits = 192,
    .data_bytes = 27,
    .no_program_line = 15287,
    .doc = "TCP connection tracking of leaving packets.",
};

inline constexpr field ipfix_data[] = {
    {"pcnt", 64, "packets"},
    {"bcnt", 64, "bytes"},
    {"tcp_flags", 8, "TCP flags seen"},
};
inline constexpr action ipfix_actions[] = {{"ipfix", ipfix_data}};
inline constexpr table ipfix_ingress = {
    .id = 35,
    .name = "ipfix_ingress",
    .kind = kind::index_hbm,
    .index = index_24,
    .index_max = 2097151,
    .actions = ipfix_actions,
    .data_bits = 136,
    .data_bytes = 18,
    .doc = "Flow export counters of arriving packets.",
};
inline constexpr table ipfix_egress = {
    .id = 36,
    .name = "ipfix_egress",
    .kind = kind::index_hbm,
    .index = index_24,
    .index_max = 2097151,
    .actions = ipfix_actions,
    .data_bits = 136,
    .data_bytes = 18,
    .doc = "Flow export counters of leaving packets.",
};

}  // namespace halden::pipeline
