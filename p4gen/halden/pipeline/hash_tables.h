#pragma once

// Exact-match tables: the flow table and its overflow in HBM, four tables in SRAM. The overflow
// TCAMs that belong to the SRAM tables (tcam_tables.h) share their fields.

#include "p4gen/halden/pipeline/model.h"

namespace halden::pipeline {

// --- flow, flow_ohash ----------------------------------------------------------------------------

// The gap at bits 472 to 543 is where the hardware keeps the data that stands before the key.
inline constexpr key_field flow_key[] = {
    {"metadata_flow_key_spare", 128, whole(0), "software's own; matched like the rest"},
    {"metadata_flow_key_proto", 8, whole(128), "IP protocol"},
    {"metadata_flow_key_vlan", 16, whole(136), "VLAN tag"},
    {"metadata_flow_key_vni", 24, whole(152), "virtual network identifier"},
    {"metadata_flow_key_outer_flow_id", 16, whole(176), "flow of the outer header"},
    {"metadata_flow_key_rsvd", 5, whole(192), "reserved; matched like the rest"},
    {"metadata_flow_key_port_id", 11, whole(197), "logical port"},
    {"metadata_flow_key_ktype", 8, whole(208), "key type"},
    {"metadata_flow_key_dmac", 48, whole(216), "destination MAC, byte 0 lowest"},
    {"metadata_flow_key_smac", 48, whole(264), "source MAC, byte 0 lowest"},
    {"metadata_flow_key_dport", 16, whole(312), "destination port"},
    {"metadata_flow_key_sport", 16, whole(328), "source port"},
    {"metadata_flow_key_dip", 128, whole(344), "destination address, byte 0 lowest"},
    {"metadata_flow_key_sip", 128, whole(544), "source address, byte 0 lowest"},
};
inline constexpr field flow_data[] = {
    {"flow_idx", 22, "index of the flow's flow_info entry; the application word"},
    {"hash1", 10, "slot 1: hash bits of the chained flow"},
    {"hint1", 21, "slot 1: index of the chained overflow entry"},
    {"hash2", 10},
    {"hint2", 21},
    {"hash3", 10},
    {"hint3", 21},
    {"hash4", 10},
    {"hint4", 21},
    {"hash5", 10},
    {"hint5", 21},
    {"hash6", 10},
    {"hint6", 21},
    {"hash7", 10},
    {"hint7", 21},
    {"hash8", 10},
    {"hint8", 21},
    {"more_hashes", 1, "1 when the chain goes on at more_hints"},
    {"more_hints", 21, "index of the overflow entry that continues the chain"},
    {"entry_valid", 1, "the hardware's valid bit"},
};
inline constexpr action flow_actions[] = {{"flow_hash", flow_data}};

inline constexpr table flow_ohash = {
    .id = 1,
    .name = "flow_ohash",
    .kind = kind::hash_hbm,
    .key = flow_key,
    .key_bits = 640,  // what the layout routine is given; the fields take 600
    .actions = flow_actions,
    .data_bits = 293,
    .fields_before_key = 2,
    .key_bytes = 77,
    .data_bytes = 59,
    .action_prefix = "flow",
    .doc = "Overflow of the flow table: entries reached through another entry's hint slots.",
};
inline constexpr table flow = {
    .id = 2,
    .name = "flow",
    .kind = kind::hash_hbm,
    .key = flow_key,
    .key_bits = 640,
    .actions = flow_actions,
    .data_bits = 293,
    .fields_before_key = 2,
    .key_bytes = 77,
    .data_bytes = 59,
    .doc = "Flow table: a packet's full flow key to its flow_info entry.",
};

// --- SRAM hash tables ----------------------------------------------------------------------------

inline constexpr key_field vlan_mapping_key[] = {
    {"vlan_id", 12, split(0, 23), "VLAN identifier"},
    {"l2seg", 12, split(8, 19), "layer-2 segment the packet came from"},
};
inline constexpr field vlan_mapping_data[] = {
    {"rmac_vrf", 12, "VRF in which the destination MAC is looked up"},
    {"l2seg", 12, "layer-2 segment the VLAN belongs to"},
};
inline constexpr action vlan_mapping_actions[] = {{"vlan_mapping", vlan_mapping_data}};

inline constexpr table vlan_mapping = {
    .id = 3,
    .name = "vlan_mapping",
    .kind = kind::hash_sram,
    .key = vlan_mapping_key,
    .key_bits = 24,
    .actions = vlan_mapping_actions,
    .data_bits = 24,
    .key_bytes = 4,
    .data_bytes = 5,
    .doc = "VLAN on a layer-2 segment: the VRF and the segment it maps to.",
};

inline constexpr key_field tunnel_terminate_sa_v4_key[] = {
    {"local_vtep_idx", 8, whole(0), "local tunnel endpoint that terminated the packet"},
    {"ipv4_1_srcAddr", 32, whole(8), "outer IPv4 source address"},
};
inline constexpr key_field tunnel_terminate_sa_v6_key[] = {
    {"local_vtep_idx", 8, whole(0), "local tunnel endpoint that terminated the packet"},
    {"ipv6_1_srcAddr", 128, whole(8), "outer IPv6 source address, byte 0 lowest"},
};
inline constexpr field tunnel_terminate_sa_data[] = {
    {"outer_flow_id", 16, "number of the remote tunnel endpoint, part of the flow key"},
    {"entry_valid", 1},
};
inline constexpr action tunnel_terminate_sa_actions[] = {
    {"tunnel_terminate_sa_a", tunnel_terminate_sa_data}};

inline constexpr table tunnel_terminate_sa_v4 = {
    .id = 4,
    .name = "tunnel_terminate_sa_v4",
    .kind = kind::hash_sram,
    .key = tunnel_terminate_sa_v4_key,
    .key_bits = 40,
    .actions = tunnel_terminate_sa_actions,
    .data_bits = 17,
    .key_bytes = 5,
    .data_bytes = 4,
    .doc = "Remote IPv4 tunnel endpoint: the outer flow id of its packets.",
};
inline constexpr table tunnel_terminate_sa_v6 = {
    .id = 5,
    .name = "tunnel_terminate_sa_v6",
    .kind = kind::hash_sram,
    .key = tunnel_terminate_sa_v6_key,
    .key_bits = 136,
    .actions = tunnel_terminate_sa_actions,
    .data_bits = 17,
    .key_bytes = 17,
    .data_bytes = 4,
    .doc = "Remote IPv6 tunnel endpoint: the outer flow id of its packets.",
};

inline constexpr key_field registered_mac_key[] = {
    {"hdr_ethernet_1_dstAddr", 48, whole(0), "destination MAC, byte 0 lowest"},
    {"metadata_classic_nic_rmac_vrf", 12, split(48, 63), "VRF of the receiving interface"},
};
inline constexpr field registered_mac_data[] = {
    {"dst_lport", 16, "logical port the MAC lives behind"},
    {"dst_qid", 24, "receive queue"},
    {"dst_pinned_lport", 11, "logical port when the traffic is pinned to an uplink"},
    {"multicast_en", 1, "the entry is a multicast group"},
};
inline constexpr action registered_mac_actions[] = {{"registered_mac", registered_mac_data}};

inline constexpr table registered_mac = {
    .id = 6,
    .name = "registered_mac",
    .kind = kind::hash_sram,
    .key = registered_mac_key,
    .key_bits = 60,
    .actions = registered_mac_actions,
    .data_bits = 52,
    .key_bytes = 8,
    .data_bytes = 10,
    .doc = "Registered destination MAC in a VRF: the port and queue that receive it.",
};

}  // namespace halden::pipeline
