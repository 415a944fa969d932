#pragma once

// The 48 tables of the pipeline in id order, each checked while this header is compiled.
//
// The order is fixed: the hash tables (flow_ohash before flow), the ternary tables and the overflow
// TCAMs as the compiler interleaved them, the index tables, the keyless tables.

#include <array>
#include <span>

#include "p4gen/halden/pipeline/hash_tables.h"
#include "p4gen/halden/pipeline/interface_tables.h"
#include "p4gen/halden/pipeline/output_tables.h"
#include "p4gen/halden/pipeline/stats_tables.h"
#include "p4gen/halden/pipeline/tcam_tables.h"

// Calls X(table) for every table, in id order.
#define HALDEN_FOR_EACH_TABLE(X)    \
    X(flow_ohash)                   \
    X(flow)                         \
    X(vlan_mapping)                 \
    X(tunnel_terminate_sa_v4)       \
    X(tunnel_terminate_sa_v6)       \
    X(registered_mac)               \
    X(vlan_mapping_otcam)           \
    X(tunnel_terminate_v4)          \
    X(tunnel_terminate_v6)          \
    X(tunnel_terminate_sa_v4_otcam) \
    X(tunnel_terminate_sa_v6_otcam) \
    X(flow_key_native)              \
    X(flow_key_tunneled)            \
    X(registered_mac_otcam)         \
    X(checksum)                     \
    X(lif_mapping)                  \
    X(lif_vela_mapping)             \
    X(vlan_vela_mapping)            \
    X(vlan_vela_ctag_mapping)       \
    X(validate_packet_vela)         \
    X(flow_info)                    \
    X(conntrack_ingress)            \
    X(conntrack_egress)             \
    X(l2seg)                        \
    X(p4i_stats)                    \
    X(lif_tx_stats)                 \
    X(lport_tx_stats)               \
    X(ct_ingress_stats)             \
    X(ct_egress_stats)              \
    X(mirror_rewrite)               \
    X(mirror_rewrite_l3)            \
    X(flow_rewrite)                 \
    X(nat_rewrite)                  \
    X(tunnel_encap)                 \
    X(ipfix_ingress)                \
    X(ipfix_egress)                 \
    X(output_mapping)               \
    X(p4plus_app)                   \
    X(p4e_stats)                    \
    X(lport_rx_stats)               \
    X(validate_packet)              \
    X(p4plus_offload)               \
    X(replica_rewrite)              \
    X(tunnel_decap)                 \
    X(p4plus_app_rss_0)             \
    X(p4plus_app_rss_mirror)        \
    X(p4plus_app_rss_1)             \
    X(p4plus_app_rss_2)

namespace halden::pipeline {

inline constexpr uint32_t first_table = 1;
inline constexpr uint32_t table_count = 48;

inline constexpr std::array<const table *, table_count> tables = {
#define HALDEN_TABLE_ADDRESS(t) &t,
    HALDEN_FOR_EACH_TABLE(HALDEN_TABLE_ADDRESS)
#undef HALDEN_TABLE_ADDRESS
};

// Null for an id that is no table's.
constexpr const table *find_table(uint32_t id) {
    return id - first_table < table_count ? tables[id - first_table] : nullptr;
}

consteval bool well_formed_pipeline(std::span<const table *const> all) {
    for (uint32_t i = 0; i < all.size(); ++i) {
        const table &t = *all[i];
        if (t.id != first_table + i) bad_description("table ids are not in order");
        if (!well_formed(t)) return false;
        if (t.owner != 0) {
            const table &owner = *all[t.owner - first_table];
            if (owner.kind != kind::hash_sram || owner.key_bits != t.key_bits ||
                owner.data_bits != t.data_bits)
                bad_description("an overflow table is not laid out like its owner");
        }
    }
    return true;
}
static_assert(well_formed_pipeline(tables));

}  // namespace halden::pipeline
