#pragma once

// Packed action data of the hash and TCAM tables: one row per field, {name, first bit in the
// packed image, first byte in the action-data record, bits}. Byte 0 of every record is the action
// id.

#include "tests/contract/packed_field.h"

namespace halden::test {

// flow and flow_ohash: the fields in front of the key, then those behind it, each from bit 0.
inline constexpr packed_field flow_before_key_fields[] = {
    {"flow_idx", 0, 1, 22},
    {"hash1", 22, 5, 10},
};

inline constexpr packed_field flow_after_key_fields[] = {
    {"hint1", 0, 7, 21},         {"hash2", 21, 11, 10},       {"hint2", 31, 13, 21},
    {"hash3", 52, 17, 10},       {"hint3", 62, 19, 21},       {"hash4", 83, 23, 10},
    {"hint4", 93, 25, 21},       {"hash5", 114, 29, 10},      {"hint5", 124, 31, 21},
    {"hash6", 145, 35, 10},      {"hint6", 155, 37, 21},      {"hash7", 176, 41, 10},
    {"hint7", 186, 43, 21},      {"hash8", 207, 47, 10},      {"hint8", 217, 49, 21},
    {"more_hashes", 238, 53, 1}, {"more_hints", 239, 54, 21}, {"entry_valid", 260, 58, 1},
};

// vlan_mapping and vlan_mapping_otcam
inline constexpr packed_field vlan_mapping_fields[] = {
    {"rmac_vrf", 0, 1, 12},
    {"l2seg", 12, 3, 12},
};

// All four tunnel_terminate_sa tables
inline constexpr packed_field tunnel_terminate_sa_fields[] = {
    {"outer_flow_id", 0, 1, 16},
    {"entry_valid", 16, 3, 1},
};

// registered_mac and registered_mac_otcam
inline constexpr packed_field registered_mac_fields[] = {
    {"dst_lport", 0, 1, 16},
    {"dst_qid", 16, 3, 24},
    {"dst_pinned_lport", 40, 7, 11},
    {"multicast_en", 51, 9, 1},
};

// tunnel_terminate_v4 and tunnel_terminate_v6
inline constexpr packed_field tunnel_terminate_fields[] = {
    {"local_vtep_idx", 0, 1, 8},
    {"entry_valid", 8, 2, 1},
};

// Actions 1 and 2; actions 0 and 3 pack nothing.
inline constexpr packed_field flow_key_native_fields[] = {
    {"dscp_trace_msk", 0, 1, 6},
    {"dscp_trace_val", 6, 2, 6},
};

}  // namespace halden::test
