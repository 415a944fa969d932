#pragma once

// How keys are built: one row per copy, in the order of the copies, {field, first bit in the image,
// byte of the key record, bit of that byte from which the copy goes down, bits}.

#include <cstdint>
#include <span>

namespace halden::test {

struct key_copy {
    const char *field;
    uint16_t bit;
    uint16_t byte;
    uint16_t from;
    uint16_t width;
};

// flow and flow_ohash. Bits 472 to 543 are no field's, and the top byte of the vni (record byte 22)
// is no part of the key.
inline constexpr key_copy flow_key_copies[] = {
    {"metadata_flow_key_spare", 0, 15, 7, 8},
    {"metadata_flow_key_spare", 8, 14, 7, 8},
    {"metadata_flow_key_spare", 16, 13, 7, 8},
    {"metadata_flow_key_spare", 24, 12, 7, 8},
    {"metadata_flow_key_spare", 32, 11, 7, 8},
    {"metadata_flow_key_spare", 40, 10, 7, 8},
    {"metadata_flow_key_spare", 48, 9, 7, 8},
    {"metadata_flow_key_spare", 56, 8, 7, 8},
    {"metadata_flow_key_spare", 64, 7, 7, 8},
    {"metadata_flow_key_spare", 72, 6, 7, 8},
    {"metadata_flow_key_spare", 80, 5, 7, 8},
    {"metadata_flow_key_spare", 88, 4, 7, 8},
    {"metadata_flow_key_spare", 96, 3, 7, 8},
    {"metadata_flow_key_spare", 104, 2, 7, 8},
    {"metadata_flow_key_spare", 112, 1, 7, 8},
    {"metadata_flow_key_spare", 120, 0, 7, 8},
    {"metadata_flow_key_proto", 128, 16, 7, 8},
    {"metadata_flow_key_vlan", 136, 18, 7, 8},
    {"metadata_flow_key_vlan", 144, 17, 7, 8},
    {"metadata_flow_key_vni", 152, 21, 7, 8},
    {"metadata_flow_key_vni", 160, 20, 7, 8},
    {"metadata_flow_key_vni", 168, 19, 7, 8},
    {"metadata_flow_key_outer_flow_id", 176, 24, 7, 8},
    {"metadata_flow_key_outer_flow_id", 184, 23, 7, 8},
    {"metadata_flow_key_rsvd", 192, 25, 4, 5},
    {"metadata_flow_key_port_id", 197, 27, 2, 3},
    {"metadata_flow_key_port_id", 200, 26, 7, 8},
    {"metadata_flow_key_ktype", 208, 28, 7, 8},
    {"metadata_flow_key_dmac", 216, 34, 7, 8},
    {"metadata_flow_key_dmac", 224, 33, 7, 8},
    {"metadata_flow_key_dmac", 232, 32, 7, 8},
    {"metadata_flow_key_dmac", 240, 31, 7, 8},
    {"metadata_flow_key_dmac", 248, 30, 7, 8},
    {"metadata_flow_key_dmac", 256, 29, 7, 8},
    {"metadata_flow_key_smac", 264, 40, 7, 8},
    {"metadata_flow_key_smac", 272, 39, 7, 8},
    {"metadata_flow_key_smac", 280, 38, 7, 8},
    {"metadata_flow_key_smac", 288, 37, 7, 8},
    {"metadata_flow_key_smac", 296, 36, 7, 8},
    {"metadata_flow_key_smac", 304, 35, 7, 8},
    {"metadata_flow_key_dport", 312, 42, 7, 8},
    {"metadata_flow_key_dport", 320, 41, 7, 8},
    {"metadata_flow_key_sport", 328, 44, 7, 8},
    {"metadata_flow_key_sport", 336, 43, 7, 8},
    {"metadata_flow_key_dip", 344, 60, 7, 8},
    {"metadata_flow_key_dip", 352, 59, 7, 8},
    {"metadata_flow_key_dip", 360, 58, 7, 8},
    {"metadata_flow_key_dip", 368, 57, 7, 8},
    {"metadata_flow_key_dip", 376, 56, 7, 8},
    {"metadata_flow_key_dip", 384, 55, 7, 8},
    {"metadata_flow_key_dip", 392, 54, 7, 8},
    {"metadata_flow_key_dip", 400, 53, 7, 8},
    {"metadata_flow_key_dip", 408, 52, 7, 8},
    {"metadata_flow_key_dip", 416, 51, 7, 8},
    {"metadata_flow_key_dip", 424, 50, 7, 8},
    {"metadata_flow_key_dip", 432, 49, 7, 8},
    {"metadata_flow_key_dip", 440, 48, 7, 8},
    {"metadata_flow_key_dip", 448, 47, 7, 8},
    {"metadata_flow_key_dip", 456, 46, 7, 8},
    {"metadata_flow_key_dip", 464, 45, 7, 8},
    {"metadata_flow_key_sip", 544, 76, 7, 8},
    {"metadata_flow_key_sip", 552, 75, 7, 8},
    {"metadata_flow_key_sip", 560, 74, 7, 8},
    {"metadata_flow_key_sip", 568, 73, 7, 8},
    {"metadata_flow_key_sip", 576, 72, 7, 8},
    {"metadata_flow_key_sip", 584, 71, 7, 8},
    {"metadata_flow_key_sip", 592, 70, 7, 8},
    {"metadata_flow_key_sip", 600, 69, 7, 8},
    {"metadata_flow_key_sip", 608, 68, 7, 8},
    {"metadata_flow_key_sip", 616, 67, 7, 8},
    {"metadata_flow_key_sip", 624, 66, 7, 8},
    {"metadata_flow_key_sip", 632, 65, 7, 8},
    {"metadata_flow_key_sip", 640, 64, 7, 8},
    {"metadata_flow_key_sip", 648, 63, 7, 8},
    {"metadata_flow_key_sip", 656, 62, 7, 8},
    {"metadata_flow_key_sip", 664, 61, 7, 8},
};

// vlan_mapping and vlan_mapping_otcam. The high nibbles of both fields share the last byte.
inline constexpr key_copy vlan_mapping_key_copies[] = {
    {"vlan_id", 0, 0, 7, 8},  {"vlan_id", 23, 1, 3, 1}, {"vlan_id", 22, 1, 2, 1},
    {"vlan_id", 21, 1, 1, 1}, {"vlan_id", 20, 1, 0, 1}, {"l2seg", 8, 2, 7, 8},
    {"l2seg", 19, 3, 3, 1},   {"l2seg", 18, 3, 2, 1},   {"l2seg", 17, 3, 1, 1},
    {"l2seg", 16, 3, 0, 1},
};

// tunnel_terminate_sa_v4 and its overflow.
inline constexpr key_copy sa_v4_key_copies[] = {
    {"local_vtep_idx", 0, 0, 7, 8},  {"ipv4_1_srcAddr", 8, 4, 7, 8},
    {"ipv4_1_srcAddr", 16, 3, 7, 8}, {"ipv4_1_srcAddr", 24, 2, 7, 8},
    {"ipv4_1_srcAddr", 32, 1, 7, 8},
};

// tunnel_terminate_sa_v6 and its overflow.
inline constexpr key_copy sa_v6_key_copies[] = {
    {"local_vtep_idx", 0, 0, 7, 8},   {"ipv6_1_srcAddr", 8, 16, 7, 8},
    {"ipv6_1_srcAddr", 16, 15, 7, 8}, {"ipv6_1_srcAddr", 24, 14, 7, 8},
    {"ipv6_1_srcAddr", 32, 13, 7, 8}, {"ipv6_1_srcAddr", 40, 12, 7, 8},
    {"ipv6_1_srcAddr", 48, 11, 7, 8}, {"ipv6_1_srcAddr", 56, 10, 7, 8},
    {"ipv6_1_srcAddr", 64, 9, 7, 8},  {"ipv6_1_srcAddr", 72, 8, 7, 8},
    {"ipv6_1_srcAddr", 80, 7, 7, 8},  {"ipv6_1_srcAddr", 88, 6, 7, 8},
    {"ipv6_1_srcAddr", 96, 5, 7, 8},  {"ipv6_1_srcAddr", 104, 4, 7, 8},
    {"ipv6_1_srcAddr", 112, 3, 7, 8}, {"ipv6_1_srcAddr", 120, 2, 7, 8},
    {"ipv6_1_srcAddr", 128, 1, 7, 8},
};

// registered_mac and registered_mac_otcam. Bits 56 to 59 are no field's.
inline constexpr key_copy registered_mac_key_copies[] = {
    {"hdr_ethernet_1_dstAddr", 0, 5, 7, 8},         {"hdr_ethernet_1_dstAddr", 8, 4, 7, 8},
    {"hdr_ethernet_1_dstAddr", 16, 3, 7, 8},        {"hdr_ethernet_1_dstAddr", 24, 2, 7, 8},
    {"hdr_ethernet_1_dstAddr", 32, 1, 7, 8},        {"hdr_ethernet_1_dstAddr", 40, 0, 7, 8},
    {"metadata_classic_nic_rmac_vrf", 48, 6, 7, 8}, {"metadata_classic_nic_rmac_vrf", 63, 7, 3, 1},
    {"metadata_classic_nic_rmac_vrf", 62, 7, 2, 1}, {"metadata_classic_nic_rmac_vrf", 61, 7, 1, 1},
    {"metadata_classic_nic_rmac_vrf", 60, 7, 0, 1},
};

// tunnel_terminate_v4. What is left of the fields beyond whole bytes makes the last two bytes.
inline constexpr key_copy terminate_v4_key_copies[] = {
    {"lif_id", 0, 0, 7, 8},
    {"lif_id", 111, 1, 2, 1},
    {"lif_id", 110, 1, 1, 1},
    {"lif_id", 109, 1, 0, 1},
    {"hdr_p4plus_to_p4_insert_vlan_tag", 108, 2, 0, 1},
    {"p4plus_vlan_id", 8, 3, 7, 8},
    {"p4plus_vlan_id", 107, 4, 3, 1},
    {"p4plus_vlan_id", 106, 4, 2, 1},
    {"p4plus_vlan_id", 105, 4, 1, 1},
    {"p4plus_vlan_id", 104, 4, 0, 1},
    {"geneve_1_valid", 119, 5, 0, 1},
    {"vxlan_1_valid", 118, 6, 0, 1},
    {"ipv4_1_valid", 117, 7, 0, 1},
    {"hdr_ctag_1_valid", 116, 8, 0, 1},
    {"hdr_ethernet_1_dstAddr", 16, 14, 7, 8},
    {"hdr_ethernet_1_dstAddr", 24, 13, 7, 8},
    {"hdr_ethernet_1_dstAddr", 32, 12, 7, 8},
    {"hdr_ethernet_1_dstAddr", 40, 11, 7, 8},
    {"hdr_ethernet_1_dstAddr", 48, 10, 7, 8},
    {"hdr_ethernet_1_dstAddr", 56, 9, 7, 8},
    {"vlan_id", 64, 15, 7, 8},
    {"vlan_id", 115, 16, 3, 1},
    {"vlan_id", 114, 16, 2, 1},
    {"vlan_id", 113, 16, 1, 1},
    {"vlan_id", 112, 16, 0, 1},
    {"ipv4_1_dstAddr", 72, 20, 7, 8},
    {"ipv4_1_dstAddr", 80, 19, 7, 8},
    {"ipv4_1_dstAddr", 88, 18, 7, 8},
    {"ipv4_1_dstAddr", 96, 17, 7, 8},
};

// tunnel_terminate_v6. The same behind a longer address.
inline constexpr key_copy terminate_v6_key_copies[] = {
    {"lif_id", 0, 0, 7, 8},
    {"lif_id", 207, 1, 2, 1},
    {"lif_id", 206, 1, 1, 1},
    {"lif_id", 205, 1, 0, 1},
    {"hdr_p4plus_to_p4_insert_vlan_tag", 204, 2, 0, 1},
    {"p4plus_vlan_id", 8, 3, 7, 8},
    {"p4plus_vlan_id", 203, 4, 3, 1},
    {"p4plus_vlan_id", 202, 4, 2, 1},
    {"p4plus_vlan_id", 201, 4, 1, 1},
    {"p4plus_vlan_id", 200, 4, 0, 1},
    {"geneve_1_valid", 215, 5, 0, 1},
    {"vxlan_1_valid", 214, 6, 0, 1},
    {"ipv6_1_valid", 213, 7, 0, 1},
    {"hdr_ctag_1_valid", 212, 8, 0, 1},
    {"hdr_ethernet_1_dstAddr", 16, 14, 7, 8},
    {"hdr_ethernet_1_dstAddr", 24, 13, 7, 8},
    {"hdr_ethernet_1_dstAddr", 32, 12, 7, 8},
    {"hdr_ethernet_1_dstAddr", 40, 11, 7, 8},
    {"hdr_ethernet_1_dstAddr", 48, 10, 7, 8},
    {"hdr_ethernet_1_dstAddr", 56, 9, 7, 8},
    {"vlan_id", 64, 15, 7, 8},
    {"vlan_id", 211, 16, 3, 1},
    {"vlan_id", 210, 16, 2, 1},
    {"vlan_id", 209, 16, 1, 1},
    {"vlan_id", 208, 16, 0, 1},
    {"ipv6_1_dstAddr", 72, 32, 7, 8},
    {"ipv6_1_dstAddr", 80, 31, 7, 8},
    {"ipv6_1_dstAddr", 88, 30, 7, 8},
    {"ipv6_1_dstAddr", 96, 29, 7, 8},
    {"ipv6_1_dstAddr", 104, 28, 7, 8},
    {"ipv6_1_dstAddr", 112, 27, 7, 8},
    {"ipv6_1_dstAddr", 120, 26, 7, 8},
    {"ipv6_1_dstAddr", 128, 25, 7, 8},
    {"ipv6_1_dstAddr", 136, 24, 7, 8},
    {"ipv6_1_dstAddr", 144, 23, 7, 8},
    {"ipv6_1_dstAddr", 152, 22, 7, 8},
    {"ipv6_1_dstAddr", 160, 21, 7, 8},
    {"ipv6_1_dstAddr", 168, 20, 7, 8},
    {"ipv6_1_dstAddr", 176, 19, 7, 8},
    {"ipv6_1_dstAddr", 184, 18, 7, 8},
    {"ipv6_1_dstAddr", 192, 17, 7, 8},
};

// flow_key_native and flow_key_tunneled; the fields of the latter are those of the inner headers.
inline constexpr key_copy flow_key_key_copies[] = {
    {"ipv6_1_valid", 7, 0, 0, 1},
    {"ipv4_1_valid", 6, 1, 0, 1},
    {"tunnel_terminate", 5, 2, 0, 1},
};

// checksum.
inline constexpr key_copy checksum_key_copies[] = {
    {"tcp_valid", 7, 0, 0, 1},    {"udp_2_valid", 6, 1, 0, 1}, {"ipv6_2_valid", 5, 2, 0, 1},
    {"ipv4_2_valid", 4, 3, 0, 1}, {"udp_1_valid", 3, 4, 0, 1}, {"ipv6_1_valid", 2, 5, 0, 1},
    {"ipv4_1_valid", 1, 6, 0, 1}, {"icmp_valid", 0, 7, 0, 1},
};

struct key_table {
    uint32_t id;
    const char *name;
    uint16_t record_bytes;
    uint16_t image_bytes;
    std::span<const key_copy> copies;
};

inline constexpr key_table hash_keys[] = {
    {1, "flow_ohash", 77, 84, flow_key_copies},
    {2, "flow", 77, 84, flow_key_copies},
    {3, "vlan_mapping", 4, 3, vlan_mapping_key_copies},
    {4, "tunnel_terminate_sa_v4", 5, 5, sa_v4_key_copies},
    {5, "tunnel_terminate_sa_v6", 17, 17, sa_v6_key_copies},
    {6, "registered_mac", 8, 8, registered_mac_key_copies},
};

inline constexpr key_table ternary_keys[] = {
    {7, "vlan_mapping_otcam", 4, 3, vlan_mapping_key_copies},
    {8, "tunnel_terminate_v4", 21, 15, terminate_v4_key_copies},
    {9, "tunnel_terminate_v6", 33, 27, terminate_v6_key_copies},
    {10, "tunnel_terminate_sa_v4_otcam", 5, 5, sa_v4_key_copies},
    {11, "tunnel_terminate_sa_v6_otcam", 17, 17, sa_v6_key_copies},
    {12, "flow_key_native", 3, 1, flow_key_key_copies},
    {13, "flow_key_tunneled", 3, 1, flow_key_key_copies},
    {14, "registered_mac_otcam", 8, 8, registered_mac_key_copies},
    {15, "checksum", 8, 1, checksum_key_copies},
};

}  // namespace halden::test
