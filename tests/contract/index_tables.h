#pragma once

// The tables without a key, as the tests of their writers know them.

#include "tests/contract/index_hbm_fields.h"
#include "tests/contract/index_sram_fields.h"

namespace halden::test {

struct index_table {
    uint32_t id;
    const char *name;
    uint16_t data_bits;     // handed to the entry layout whatever the action packs
    uint16_t record_bytes;  // of the action-data record
    uint8_t actions;
    bool has_programs;  // asks for the action's program counter
    packed_fields action_0, action_1;

    packed_fields fields(uint8_t action) const {
        return action == 0 ? action_0 : action == 1 ? action_1 : packed_fields{};
    }
};

inline constexpr index_table index_sram_tables[] = {
    {16, "lif_mapping", 49, 12, 1, false, lif_mapping_fields, {}},
    {17, "lif_vela_mapping", 44, 11, 1, false, lif_vela_mapping_fields, {}},
    {18, "vlan_vela_mapping", 64, 14, 1, false, vlan_vela_fields, {}},
    {19, "vlan_vela_ctag_mapping", 64, 14, 1, false, vlan_vela_fields, {}},
    {20, "validate_packet_vela", 64, 9, 1, false, validate_packet_vela_fields, {}},
    {24, "l2seg", 19, 6, 1, false, l2seg_fields, {}},
    {25, "p4i_stats", 384, 49, 1, false, p4i_stats_fields, {}},
    {30, "mirror_rewrite", 159, 28, 1, false, mirror_rewrite_fields, {}},
    {37, "output_mapping", 70, 18, 2, true, output_mapping_fields, {}},
    {38, "p4plus_app", 0, 2, 3, true, {}, {}},
    {39, "p4e_stats", 384, 49, 1, false, p4e_stats_fields, {}},
};

inline constexpr index_table index_hbm_tables[] = {
    {21, "flow_info", 328, 64, 1, false, flow_info_fields, {}},
    {22, "conntrack_ingress", 192, 27, 2, true, conntrack_fields,
     packed_fields(conntrack_fields).first(11)},
    {23, "conntrack_egress", 192, 27, 2, true, conntrack_fields,
     packed_fields(conntrack_fields).first(11)},
    {26, "lif_tx_stats", 512, 65, 1, false, lif_tx_stats_fields, {}},
    {27, "lport_tx_stats", 512, 65, 1, false, lport_stats_fields, {}},
    {28, "ct_ingress_stats", 512, 65, 1, false, ct_stats_fields, {}},
    {29, "ct_egress_stats", 512, 65, 1, false, ct_stats_fields, {}},
    {31, "mirror_rewrite_l3", 512, 73, 1, false, mirror_rewrite_l3_fields, {}},
    {32, "flow_rewrite", 223, 39, 1, false, flow_rewrite_fields, {}},
    {33, "nat_rewrite", 258, 35, 1, false, nat_rewrite_fields, {}},
    {34, "tunnel_encap", 409, 60, 1, false, tunnel_encap_fields, {}},
    {35, "ipfix_ingress", 136, 18, 1, false, ipfix_fields, {}},
    {36, "ipfix_egress", 136, 18, 1, false, ipfix_fields, {}},
    {40, "lport_rx_stats", 512, 65, 1, false, lport_stats_fields, {}},
};

struct keyless_table {
    uint32_t id;
    const char *name;
};

inline constexpr keyless_table keyless_tables[] = {
    {41, "validate_packet"},  {42, "p4plus_offload"},   {43, "replica_rewrite"},
    {44, "tunnel_decap"},     {45, "p4plus_app_rss_0"}, {46, "p4plus_app_rss_mirror"},
    {47, "p4plus_app_rss_1"}, {48, "p4plus_app_rss_2"},
};

}  // namespace halden::test
