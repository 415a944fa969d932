// How each key image is taken apart, in record order: {single bit, record byte, record bit, image
// bit, width}. A field that stands in one run is one call. Where the high bits of a field were
// placed one by one they are taken back one by one, under the same bit numbers.

#include "tests/read/layouts.h"

namespace halden::read_tests {

namespace {

constexpr bool run = false;
constexpr bool single = true;

constexpr key_call flow[] = {
    {run, 0, 0, 0, 128},     // spare
    {run, 16, 0, 128, 8},    // proto
    {run, 17, 0, 136, 16},   // vlan
    {run, 19, 0, 152, 24},   // vni
    {run, 23, 0, 176, 16},   // outer_flow_id
    {run, 25, 0, 192, 5},    // rsvd
    {run, 26, 0, 197, 11},   // port_id
    {run, 28, 0, 208, 8},    // ktype
    {run, 29, 0, 216, 48},   // dmac
    {run, 35, 0, 264, 48},   // smac
    {run, 41, 0, 312, 16},   // dport
    {run, 43, 0, 328, 16},   // sport
    {run, 45, 0, 344, 128},  // dip
    {run, 61, 0, 544, 128},  // sip
};
constexpr key_call vlan_mapping[] = {
    {run, 0, 0, 0, 8},     {single, 1, 3, 23, 1}, {single, 1, 2, 22, 1},
    {single, 1, 1, 21, 1}, {single, 1, 0, 20, 1},  // vlan_id
    {run, 2, 0, 8, 8},     {single, 3, 3, 19, 1}, {single, 3, 2, 18, 1},
    {single, 3, 1, 17, 1}, {single, 3, 0, 16, 1},  // l2seg
};
constexpr key_call tunnel_terminate_sa_v4[] = {
    {run, 0, 0, 0, 8},   // local_vtep_idx
    {run, 1, 0, 8, 32},  // ipv4_1_srcAddr
};
constexpr key_call tunnel_terminate_sa_v6[] = {
    {run, 0, 0, 0, 8},    // local_vtep_idx
    {run, 1, 0, 8, 128},  // ipv6_1_srcAddr
};
constexpr key_call registered_mac[] = {
    {run, 0, 0, 0, 48},  // hdr_ethernet_1_dstAddr
    {run, 6, 0, 48, 8},    {single, 7, 3, 63, 1}, {single, 7, 2, 62, 1},
    {single, 7, 1, 61, 1}, {single, 7, 0, 60, 1},  // metadata_classic_nic_rmac_vrf
};
constexpr key_call tunnel_terminate_v4[] = {
    {run, 0, 0, 0, 8},       {single, 1, 2, 111, 1},  {single, 1, 1, 110, 1},
    {single, 1, 0, 109, 1},  // lif_id
    {single, 2, 0, 108, 1},  // hdr_p4plus_to_p4_insert_vlan_tag
    {run, 3, 0, 8, 8},       {single, 4, 3, 107, 1},  {single, 4, 2, 106, 1},
    {single, 4, 1, 105, 1},  {single, 4, 0, 104, 1},  // p4plus_vlan_id
    {single, 5, 0, 119, 1},                           // geneve_1_valid
    {single, 6, 0, 118, 1},                           // vxlan_1_valid
    {single, 7, 0, 117, 1},                           // ipv4_1_valid
    {single, 8, 0, 116, 1},                           // hdr_ctag_1_valid
    {run, 9, 0, 16, 48},                              // hdr_ethernet_1_dstAddr
    {run, 15, 0, 64, 8},     {single, 16, 3, 115, 1}, {single, 16, 2, 114, 1},
    {single, 16, 1, 113, 1}, {single, 16, 0, 112, 1},  // vlan_id
    {run, 17, 0, 72, 32},                              // ipv4_1_dstAddr
};
constexpr key_call tunnel_terminate_v6[] = {
    {run, 0, 0, 0, 8},       {single, 1, 2, 207, 1},  {single, 1, 1, 206, 1},
    {single, 1, 0, 205, 1},  // lif_id
    {single, 2, 0, 204, 1},  // hdr_p4plus_to_p4_insert_vlan_tag
    {run, 3, 0, 8, 8},       {single, 4, 3, 203, 1},  {single, 4, 2, 202, 1},
    {single, 4, 1, 201, 1},  {single, 4, 0, 200, 1},  // p4plus_vlan_id
    {single, 5, 0, 215, 1},                           // geneve_1_valid
    {single, 6, 0, 214, 1},                           // vxlan_1_valid
    {single, 7, 0, 213, 1},                           // ipv6_1_valid
    {single, 8, 0, 212, 1},                           // hdr_ctag_1_valid
    {run, 9, 0, 16, 48},                              // hdr_ethernet_1_dstAddr
    {run, 15, 0, 64, 8},     {single, 16, 3, 211, 1}, {single, 16, 2, 210, 1},
    {single, 16, 1, 209, 1}, {single, 16, 0, 208, 1},  // vlan_id
    {run, 17, 0, 72, 128},                             // ipv6_1_dstAddr
};
constexpr key_call flow_key[] = {
    {single, 0, 0, 7, 1},
    {single, 1, 0, 6, 1},
    {single, 2, 0, 5, 1},
};
constexpr key_call checksum[] = {
    {single, 0, 0, 7, 1}, {single, 1, 0, 6, 1}, {single, 2, 0, 5, 1}, {single, 3, 0, 4, 1},
    {single, 4, 0, 3, 1}, {single, 5, 0, 2, 1}, {single, 6, 0, 1, 1}, {single, 7, 0, 0, 1},
};

constexpr reference::by_key_record<key_call> all = {
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

std::span<const key_call> key_calls(uint32_t id) { return all.of(id); }

}  // namespace halden::read_tests
