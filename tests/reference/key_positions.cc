// Where the bits of the key records stand in the key images: {last record byte, how many bytes
// downwards, highest bit taken of each, how many bits of each, position in the image}.

#include "tests/reference/model.h"

namespace halden::reference {

namespace {

constexpr key_run flow[] = {
    {15, 16, 7, 8, 0},    // spare
    {16, 1, 7, 8, 128},   // proto
    {18, 2, 7, 8, 136},   // vlan
    {21, 3, 7, 8, 152},   // vni, without its top byte
    {24, 2, 7, 8, 176},   // outer_flow_id
    {25, 1, 4, 5, 192},   // rsvd
    {27, 1, 2, 3, 197},   // port_id, bits 10 to 8
    {26, 1, 7, 8, 200},   // port_id, bits 7 to 0
    {28, 1, 7, 8, 208},   // ktype
    {34, 6, 7, 8, 216},   // dmac
    {40, 6, 7, 8, 264},   // smac
    {42, 2, 7, 8, 312},   // dport
    {44, 2, 7, 8, 328},   // sport
    {60, 16, 7, 8, 344},  // dip
    {76, 16, 7, 8, 544},  // sip, behind the data before the key
};
// The two 12-bit fields: low byte, low byte, high nibble, high nibble.
constexpr key_run vlan_mapping[] = {
    {0, 1, 7, 8, 0},
    {2, 1, 7, 8, 8},
    {1, 1, 3, 4, 16},
    {3, 1, 3, 4, 20},
};
constexpr key_run tunnel_terminate_sa_v4[] = {
    {0, 1, 7, 8, 0},
    {4, 4, 7, 8, 8},
};
constexpr key_run tunnel_terminate_sa_v6[] = {
    {0, 1, 7, 8, 0},
    {16, 16, 7, 8, 8},
};
constexpr key_run registered_mac[] = {
    {5, 6, 7, 8, 0},
    {6, 1, 7, 8, 48},
    {7, 1, 3, 4, 56},
};
constexpr key_run tunnel_terminate_v4[] = {
    {0, 1, 7, 8, 0},     // lif_id, low byte
    {3, 1, 7, 8, 8},     // p4plus_vlan_id, low byte
    {14, 6, 7, 8, 16},   // hdr_ethernet_1_dstAddr
    {15, 1, 7, 8, 64},   // vlan_id, low byte
    {20, 4, 7, 8, 72},   // ipv4_1_dstAddr
    {1, 1, 2, 3, 104},   // lif_id, bits 10 to 8
    {2, 1, 0, 1, 107},   // hdr_p4plus_to_p4_insert_vlan_tag
    {4, 1, 3, 4, 108},   // p4plus_vlan_id, bits 11 to 8
    {5, 1, 0, 1, 112},   // geneve_1_valid
    {6, 1, 0, 1, 113},   // vxlan_1_valid
    {7, 1, 0, 1, 114},   // ipv4_1_valid
    {8, 1, 0, 1, 115},   // hdr_ctag_1_valid
    {16, 1, 3, 4, 116},  // vlan_id, bits 11 to 8
};
constexpr key_run tunnel_terminate_v6[] = {
    {0, 1, 7, 8, 0},     // lif_id, low byte
    {3, 1, 7, 8, 8},     // p4plus_vlan_id, low byte
    {14, 6, 7, 8, 16},   // hdr_ethernet_1_dstAddr
    {15, 1, 7, 8, 64},   // vlan_id, low byte
    {32, 16, 7, 8, 72},  // ipv6_1_dstAddr
    {1, 1, 2, 3, 200},   // lif_id, bits 10 to 8
    {2, 1, 0, 1, 203},   // hdr_p4plus_to_p4_insert_vlan_tag
    {4, 1, 3, 4, 204},   // p4plus_vlan_id, bits 11 to 8
    {5, 1, 0, 1, 208},   // geneve_1_valid
    {6, 1, 0, 1, 209},   // vxlan_1_valid
    {7, 1, 0, 1, 210},   // ipv6_1_valid
    {8, 1, 0, 1, 211},   // hdr_ctag_1_valid
    {16, 1, 3, 4, 212},  // vlan_id, bits 11 to 8
};
constexpr key_run flow_key[] = {
    {0, 1, 0, 1, 0},
    {1, 1, 0, 1, 1},
    {2, 1, 0, 1, 2},
};
constexpr key_run checksum[] = {
    {0, 1, 0, 1, 0}, {1, 1, 0, 1, 1}, {2, 1, 0, 1, 2}, {3, 1, 0, 1, 3},
    {4, 1, 0, 1, 4}, {5, 1, 0, 1, 5}, {6, 1, 0, 1, 6}, {7, 1, 0, 1, 7},
};

constexpr by_key_record<key_run> all = {
    .flow = flow,
    .vlan_mapping = vlan_mapping,
    .tunnel_terminate_sa_v4 = tunnel_terminate_sa_v4,
    .tunnel_terminate_sa_v6 = tunnel_terminate_sa_v6,
    .registered_mac = registered_mac,
    .tunnel_terminate_v4 = tunnel_terminate_v4,
    .tunnel_terminate_v6 = tunnel_terminate_v6,
    .flow_key = flow_key,
    .checksum = checksum,
};

}  // namespace

std::span<const key_run> key_positions(uint32_t id) { return all.of(id); }

}  // namespace halden::reference
