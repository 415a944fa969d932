#pragma once

// The tables with a key, as the tests of their writers know them.

#include "tests/contract/keyed_fields.h"

namespace halden::test {

// Tables in SRAM and in the TCAM.
struct keyed_table {
    uint32_t id;
    const char *name;
    uint16_t key_bits;    // of the key in the entry, and of the swizzles of key and mask
    uint16_t tcam_width;  // 0 for a hash table
    uint32_t data_row;    // added to the index for the row of the data
    uint16_t data_bits;
    uint16_t record_bytes;  // of the action-data record
    uint8_t actions;
    bool has_programs;  // asks for the action's program counter
    packed_fields data_fields;

    packed_fields fields(uint8_t action) const {
        // flow_key_native, the one table with data and several actions, packs for 1 and 2 alone.
        const bool packs = id == 12 ? action == 1 || action == 2 : action == 0;
        return packs ? data_fields : packed_fields{};
    }
};

inline constexpr keyed_table hash_sram_tables[] = {
    {3, "vlan_mapping", 24, 0, 0, 24, 5, 1, false, vlan_mapping_fields},
    {4, "tunnel_terminate_sa_v4", 40, 0, 0, 17, 4, 1, false, tunnel_terminate_sa_fields},
    {5, "tunnel_terminate_sa_v6", 136, 0, 0, 17, 4, 1, false, tunnel_terminate_sa_fields},
    {6, "registered_mac", 60, 0, 0, 52, 10, 1, false, registered_mac_fields},
};

inline constexpr keyed_table overflow_tables[] = {
    {7, "vlan_mapping_otcam", 24, 32, 4096, 24, 5, 1, false, vlan_mapping_fields},
    {10, "tunnel_terminate_sa_v4_otcam", 40, 48, 8192, 17, 4, 1, false, tunnel_terminate_sa_fields},
    {11, "tunnel_terminate_sa_v6_otcam", 136, 144, 8192, 17, 4, 1, false,
     tunnel_terminate_sa_fields},
    {14, "registered_mac_otcam", 60, 64, 4096, 52, 10, 1, false, registered_mac_fields},
};

inline constexpr keyed_table tcam_tables[] = {
    {8, "tunnel_terminate_v4", 120, 128, 0, 9, 3, 1, false, tunnel_terminate_fields},
    {9, "tunnel_terminate_v6", 216, 224, 0, 9, 3, 1, false, tunnel_terminate_fields},
    {12, "flow_key_native", 3, 16, 0, 12, 3, 4, true, flow_key_native_fields},
    {13, "flow_key_tunneled", 3, 16, 0, 0, 2, 4, true, {}},
    {15, "checksum", 8, 16, 0, 0, 2, 22, true, {}},
};

struct flow_table {
    uint32_t id;
    const char *name;
};

inline constexpr flow_table flow_tables[] = {{1, "flow_ohash"}, {2, "flow"}};

}  // namespace halden::test
