#pragma once

// Ternary tables, and the overflow TCAMs of the SRAM hash tables. Every key field has a mask field
// of the same layout.

#include "p4gen/halden/pipeline/hash_tables.h"
#include "p4gen/halden/pipeline/model.h"

namespace halden::pipeline {

// --- Overflow TCAMs: the owner's fields, a key of their own in the TCAM --------------------------

inline constexpr table vlan_mapping_otcam = {
    .id = 7,
    .name = "vlan_mapping_otcam",
    .kind = kind::overflow_tcam,
    .key = vlan_mapping_key,
    .key_bits = 24,
    .owner = 3,
    .overflow_base = 4096,
    .actions = vlan_mapping_actions,
    .data_bits = 24,
    .key_bytes = 4,
    .data_bytes = 5,
    .doc = "Overflow of vlan_mapping: entries whose hash row was taken.",
};
inline constexpr table tunnel_terminate_sa_v4_otcam = {
    .id = 10,
    .name = "tunnel_terminate_sa_v4_otcam",
    .kind = kind::overflow_tcam,
    .key = tunnel_terminate_sa_v4_key,
    .key_bits = 40,
    .owner = 4,
    .overflow_base = 8192,
    .actions = tunnel_terminate_sa_actions,
    .data_bits = 17,
    .key_bytes = 5,
    .data_bytes = 4,
    .doc = "Overflow of tunnel_terminate_sa_v4: entries whose hash row was taken.",
};
inline constexpr table tunnel_terminate_sa_v6_otcam = {
    .id = 11,
    .name = "tunnel_terminate_sa_v6_otcam",
    .kind = kind::overflow_tcam,
    .key = tunnel_terminate_sa_v6_key,
    .key_bits = 136,
    .owner = 5,
    .overflow_base = 8192,
    .actions = tunnel_terminate_sa_actions,
    .data_bits = 17,
    .key_bytes = 17,
    .data_bytes = 4,
    .doc = "Overflow of tunnel_terminate_sa_v6: entries whose hash row was taken.",
};
inline constexpr table registered_mac_otcam = {
    .id = 14,
    .name = "registered_mac_otcam",
    .kind = kind::overflow_tcam,
    .key = registered_mac_key,
    .key_bits = 60,
    .owner = 6,
    .overflow_base = 4096,
    .actions = registered_mac_actions,
    .data_bits = 52,
    .key_bytes = 8,
    .data_bytes = 10,
    .doc = "Overflow of registered_mac: entries whose hash row was taken.",
};

// --- Tunnel termination --------------------------------------------------------------------------

inline constexpr key_field tunnel_terminate_v4_key[] = {
    {"lif_id", 11, split(0, 111), "logical interface the packet came from"},
    {"hdr_p4plus_to_p4_insert_vlan_tag", 1, flag(108), "the sender asked for a VLAN tag"},
    {"p4plus_vlan_id", 12, split(8, 107), "the VLAN it asked for"},
    {"geneve_1_valid", 1, flag(119), "outer Geneve header present"},
    {"vxlan_1_valid", 1, flag(118), "outer VXLAN header present"},
    {"ipv4_1_valid", 1, flag(117), "outer IPv4 header present"},
    {"hdr_ctag_1_valid", 1, flag(116), "outer VLAN tag present"},
    {"hdr_ethernet_1_dstAddr", 48, whole(16), "outer destination MAC, byte 0 lowest"},
    {"vlan_id", 12, split(64, 115), "outer VLAN identifier"},
    {"ipv4_1_dstAddr", 32, whole(72), "outer IPv4 destination address"},
};
inline constexpr key_field tunnel_terminate_v6_key[] = {
    {"lif_id", 11, split(0, 207), "logical interface the packet came from"},
    {"hdr_p4plus_to_p4_insert_vlan_tag", 1, flag(204), "the sender asked for a VLAN tag"},
    {"p4plus_vlan_id", 12, split(8, 203), "the VLAN it asked for"},
    {"geneve_1_valid", 1, flag(215), "outer Geneve header present"},
    {"vxlan_1_valid", 1, flag(214), "outer VXLAN header present"},
    {"ipv6_1_valid", 1, flag(213), "outer IPv6 header present"},
    {"hdr_ctag_1_valid", 1, flag(212), "outer VLAN tag present"},
    {"hdr_ethernet_1_dstAddr", 48, whole(16), "outer destination MAC, byte 0 lowest"},
    {"vlan_id", 12, split(64, 211), "outer VLAN identifier"},
    {"ipv6_1_dstAddr", 128, whole(72), "outer IPv6 destination address, byte 0 lowest"},
};
inline constexpr field tunnel_terminate_data[] = {
    {"local_vtep_idx", 8, "local tunnel endpoint"},
    {"entry_valid", 1},
};
inline constexpr action tunnel_terminate_actions[] = {
    {"tunnel_terminate_a", tunnel_terminate_data}};

inline constexpr table tunnel_terminate_v4 = {
    .id = 8,
    .name = "tunnel_terminate_v4",
    .kind = kind::tcam,
    .key = tunnel_terminate_v4_key,
    .key_bits = 120,
    .actions = tunnel_terminate_actions,
    .data_bits = 9,
    .key_bytes = 21,
    .data_bytes = 3,
    .doc = "Outer headers of an IPv4 tunnel that ends here: the local tunnel endpoint.",
};
inline constexpr table tunnel_terminate_v6 = {
    .id = 9,
    .name = "tunnel_terminate_v6",
    .kind = kind::tcam,
    .key = tunnel_terminate_v6_key,
    .key_bits = 216,
    .actions = tunnel_terminate_actions,
    .data_bits = 9,
    .key_bytes = 33,
    .data_bytes = 3,
    .doc = "Outer headers of an IPv6 tunnel that ends here: the local tunnel endpoint.",
};

// --- Flow key selection --------------------------------------------------------------------------

inline constexpr key_field flow_key_native_key[] = {
    {"ipv6_1_valid", 1, flag(7), "IPv6 header present"},
    {"ipv4_1_valid", 1, flag(6), "IPv4 header present"},
    {"tunnel_terminate", 1, flag(5), "the packet's tunnel ends here"},
};
inline constexpr field flow_key_trace_data[] = {
    {"dscp_trace_msk", 6, "DSCP bits that are compared to decide on tracing"},
    {"dscp_trace_val", 6, "their value in traced packets"},
};
inline constexpr action flow_key_native_actions[] = {
    {"nop", {}},
    {"native_ipv4_packet", flow_key_trace_data},
    {"native_ipv6_packet", flow_key_trace_data},
    {"native_nonip_packet", {}},
};
inline constexpr table flow_key_native = {
    .id = 12,
    .name = "flow_key_native",
    .kind = kind::tcam,
    .key = flow_key_native_key,
    .key_bits = 3,
    .actions = flow_key_native_actions,
    .data_bits = 12,
    .key_bytes = 3,
    .data_bytes = 3,
    .no_program_line = 10274,
    .doc = "How the flow key of a packet without a terminated tunnel is built.",
};

inline constexpr key_field flow_key_tunneled_key[] = {
    {"ipv6_2_valid", 1, flag(7), "inner IPv6 header present"},
    {"ipv4_2_valid", 1, flag(6), "inner IPv4 header present"},
    {"tunnel_terminate", 1, flag(5), "the packet's tunnel ends here"},
};
inline constexpr action flow_key_tunneled_actions[] = {
    {"nop", {}},
    {"tunneled_ipv4_packet", {}},
    {"tunneled_ipv6_packet", {}},
    {"tunneled_nonip_packet", {}},
};
inline constexpr table flow_key_tunneled = {
    .id = 13,
    .name = "flow_key_tunneled",
    .kind = kind::tcam,
    .key = flow_key_tunneled_key,
    .key_bits = 3,
    .actions = flow_key_tunneled_actions,
    .key_bytes = 3,
    .data_bytes = 2,
    .no_program_line = 10768,
    .doc = "How the flow key of a packet from a terminated tunnel is built.",
};

// --- Checksum update -----------------------------------------------------------------------------

inline constexpr key_field checksum_key[] = {
    {"tcp_valid", 1, flag(7), "TCP header present"},
    {"udp_2_valid", 1, flag(6), "inner UDP header present"},
    {"ipv6_2_valid", 1, flag(5), "inner IPv6 header present"},
    {"ipv4_2_valid", 1, flag(4), "inner IPv4 header present"},
    {"udp_1_valid", 1, flag(3), "outer UDP header present"},
    {"ipv6_1_valid", 1, flag(2), "outer IPv6 header present"},
    {"ipv4_1_valid", 1, flag(1), "outer IPv4 header present"},
    {"icmp_valid", 1, flag(0), "ICMP header present"},
};
inline constexpr action checksum_actions[] = {
    {"update_l1_ipv4_checksum", {}},
    {"update_l1_ipv4_udp_checksum", {}},
    {"update_l1_ipv4_tcp_checksum", {}},
    {"update_l1_ipv4_icmp_checksum", {}},
    {"update_l1_ipv6_udp_checksum", {}},
    {"update_l1_ipv6_tcp_checksum", {}},
    {"update_l1_ipv6_icmp_checksum", {}},
    {"update_ipv4_outer_ipv4_checksum", {}},
    {"update_ipv4_outer_ipv4_udp_checksum", {}},
    {"update_ipv4_outer_ipv4_tcp_checksum", {}},
    {"update_ipv4_outer_ipv4_icmp_checksum", {}},
    {"update_ipv4_outer_ipv6_udp_checksum", {}},
    {"update_ipv4_outer_ipv6_tcp_checksum", {}},
    {"update_ipv4_outer_ipv6_icmp_checksum", {}},
    {"update_ipv6_outer_ipv4_checksum", {}},
    {"update_ipv6_outer_ipv4_udp_checksum", {}},
    {"update_ipv6_outer_ipv4_tcp_checksum", {}},
    {"update_ipv6_outer_ipv4_icmp_checksum", {}},
    {"update_ipv6_outer_ipv6_udp_checksum", {}},
    {"update_ipv6_outer_ipv6_tcp_checksum", {}},
    {"update_ipv6_outer_ipv6_icmp_checksum", {}},
    {"update_no_checksum", {}},
};
inline constexpr table checksum = {
    .id = 15,
    .name = "checksum",
    .kind = kind::tcam,
    .key = checksum_key,
    .key_bits = 8,
    .actions = checksum_actions,
    .key_bytes = 8,
    .data_bytes = 2,
    .no_program_line = 18085,
    .doc = "Headers present in an outgoing packet: which checksums are updated.",
};

}  // namespace halden::pipeline
