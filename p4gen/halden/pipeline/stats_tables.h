#pragma once

// Statistics tables (index tables of 64-bit counters) and the keyless tables.

#include "p4gen/halden/pipeline/index_records.h"
#include "p4gen/halden/pipeline/model.h"

namespace halden::pipeline {

// --- Statistics
// -----------------------------------------------------------------------------------

inline constexpr field p4i_stats_data[] = {
    {"rx_from_host", 64},     {"rx_from_switch", 64},        {"rx_from_cpu", 64},
    {"rx_user_csum_err", 64}, {"rx_substrate_csum_err", 64}, {"rx_malformed", 64},
};
inline constexpr action p4i_stats_actions[] = {{"p4i_stats", p4i_stats_data}};
inline constexpr table p4i_stats = {
    .id = 25,
    .name = "p4i_stats",
    .kind = kind::index_sram,
    .index = index_12,
    .actions = p4i_stats_actions,
    .data_bits = 384,
    .data_bytes = 49,
    .doc = "Counters of the ingress pipeline.",
};

inline constexpr field lif_tx_stats_data[] = {
    {"ucast_bytes", 64}, {"ucast_pkts", 64}, {"mcast_bytes", 64}, {"mcast_pkts", 64},
    {"bcast_bytes", 64}, {"bcast_pkts", 64}, {"pad1", 64},        {"pad2", 64},
};
inline constexpr action lif_tx_stats_actions[] = {{"lif_tx_stats", lif_tx_stats_data}};
inline constexpr table lif_tx_stats = {
    .id = 26,
    .name = "lif_tx_stats",
    .kind = kind::index_hbm,
    .index = index_16,
    .index_max = 16383,
    .actions = lif_tx_stats_actions,
    .data_bits = 512,
    .data_bytes = 65,
    .doc = "Counters of packets sent to a logical interface.",
};

inline constexpr field lport_stats_data[] = {
    {"ucast_bytes", 64}, {"ucast_pkts", 64}, {"mcast_bytes", 64}, {"mcast_pkts", 64},
    {"bcast_bytes", 64}, {"bcast_pkts", 64}, {"pad0", 64},        {"pad1", 64},
};
inline constexpr action lport_tx_stats_actions[] = {{"lport_tx_stats", lport_stats_data}};
inline constexpr table lport_tx_stats = {
    .id = 27,
    .name = "lport_tx_stats",
    .kind = kind::index_hbm,
    .index = index_16,
    .index_max = 16383,
    .actions = lport_tx_stats_actions,
    .data_bits = 512,
    .data_bytes = 65,
    .doc = "Counters of packets sent to a logical port.",
};
inline constexpr action lport_rx_stats_actions[] = {{"lport_rx_stats", lport_stats_data}};
inline constexpr table lport_rx_stats = {
    .id = 40,
    .name = "lport_rx_stats",
    .kind = kind::index_hbm,
    .index = index_16,
    .index_max = 16383,
    .actions = lport_rx_stats_actions,
    .data_bits = 512,
    .data_bytes = 65,
    .doc = "Counters of packets received from a logical port.",
};

inline constexpr field ct_stats_data[] = {
    {"pass_bytes_0", 64}, {"pass_pkts_0", 64}, {"drop_bytes_0", 64}, {"drop_pkts_0", 64},
    {"pass_bytes_1", 64}, {"pass_pkts_1", 64}, {"drop_bytes_1", 64}, {"drop_pkts_1", 64},
};
inline constexpr action ct_ingress_stats_actions[] = {{"ct_ingress_stats", ct_stats_data}};
inline constexpr table ct_ingress_stats = {
    .id = 28,
    .name = "ct_ingress_stats",
    .kind = kind::index_hbm,
    .index = index_12,
    .index_max = 4095,
    .actions = ct_ingress_stats_actions,
    .data_bits = 512,
    .data_bytes = 65,
    .doc = "Connection tracking verdicts of arriving packets.",
};
inline constexpr action ct_egress_stats_actions[] = {{"ct_egress_stats", ct_stats_data}};
inline constexpr table ct_egress_stats = {
    .id = 29,
    .name = "ct_egress_stats",
    .kind = kind::index_hbm,
    .index = index_12,
    .index_max = 4095,
    .actions = ct_egress_stats_actions,
    .data_bits = 512,
    .data_bytes = 65,
    .doc = "Connection tracking verdicts of leaving packets.",
};

inline constexpr field p4e_stats_data[] = {
    {"tx_to_host", 64}, {"tx_to_switch", 64},    {"tx_to_cpu", 64},
    {"flow_miss", 64},  {"conntrack_redir", 64}, {"drop", 64},
};
inline constexpr action p4e_stats_actions[] = {{"p4e_stats", p4e_stats_data}};
inline constexpr table p4e_stats = {
    .id = 39,
    .name = "p4e_stats",
    .kind = kind::index_sram,
    .index = index_12,
    .actions = p4e_stats_actions,
    .data_bits = 384,
    .data_bytes = 49,
    .doc = "Counters of the egress pipeline.",
};

// --- Keyless tables
// -------------------------------------------------------------------------------

inline constexpr action validate_packet_actions[] = {{"validate_headers", {}}};
inline constexpr table validate_packet = {
    .id = 41,
    .name = "validate_packet",
    .kind = kind::keyless,
    .actions = validate_packet_actions,
    .data_bytes = 2,
    .doc = "Header checks.",
};
inline constexpr action p4plus_offload_actions[] = {{"p4plus_offload", {}}};
inline constexpr table p4plus_offload = {
    .id = 42,
    .name = "p4plus_offload",
    .kind = kind::keyless,
    .actions = p4plus_offload_actions,
    .data_bytes = 2,
    .doc = "Offload metadata handed to the receive path.",
};
inline constexpr action replica_rewrite_actions[] = {{"replica_rewrite_a", {}}};
inline constexpr table replica_rewrite = {
    .id = 43,
    .name = "replica_rewrite",
    .kind = kind::keyless,
    .actions = replica_rewrite_actions,
    .data_bytes = 2,
    .doc = "Metadata of replicated packets.",
};
inline constexpr action tunnel_decap_actions[] = {{"tunnel_decap_a", {}}};
inline constexpr table tunnel_decap = {
    .id = 44,
    .name = "tunnel_decap",
    .kind = kind::keyless,
    .actions = tunnel_decap_actions,
    .data_bytes = 2,
    .doc = "Takes the outer headers of a terminated tunnel off.",
};
inline constexpr action p4plus_app_rss_0_actions[] = {
    {"HaldenEgressPipeline_P4PlusRewrite_p4plus_app_rss_0_a", {}}};
inline constexpr table p4plus_app_rss_0 = {
    .id = 45,
    .name = "p4plus_app_rss_0",
    .kind = kind::keyless,
    .actions = p4plus_app_rss_0_actions,
    .data_bytes = 2,
    .doc = "Receive scaling of the first copy.",
};
inline constexpr action p4plus_app_rss_mirror_actions[] = {
    {"HaldenEgressPipeline_P4PlusRewrite_p4plus_app_rss_mirror_a", {}}};
inline constexpr table p4plus_app_rss_mirror = {
    .id = 46,
    .name = "p4plus_app_rss_mirror",
    .kind = kind::keyless,
    .actions = p4plus_app_rss_mirror_actions,
    .data_bytes = 2,
    .doc = "Receive scaling of a mirrored copy.",
};
inline constexpr action p4plus_app_rss_1_actions[] = {
    {"HaldenEgressPipeline_P4PlusRewrite_p4plus_app_rss_1_a", {}}};
inline constexpr table p4plus_app_rss_1 = {
    .id = 47,
    .name = "p4plus_app_rss_1",
    .kind = kind::keyless,
    .actions = p4plus_app_rss_1_actions,
    .data_bytes = 2,
    .doc = "Receive scaling of the second copy.",
};
inline constexpr action p4plus_app_rss_2_actions[] = {
    {"HaldenEgressPipeline_P4PlusRewrite_p4plus_app_rss_2_a", {}}};
inline constexpr table p4plus_app_rss_2 = {
    .id = 48,
    .name = "p4plus_app_rss_2",
    .kind = kind::keyless,
    .actions = p4plus_app_rss_2_actions,
    .data_bytes = 2,
    .doc = "Receive scaling of the third copy.",
};

}  // namespace halden::pipeline
