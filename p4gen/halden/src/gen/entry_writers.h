#pragma once

// The writers of the 48 tables, internal to the library.
//
// Written by halden-emit from p4gen/halden/pipeline; do not edit. To make it again:
//     cmake --build build/release --target halden-emit && build/release/halden-emit .

#include <cstdint>

#include "p4pd_records.h"
#include "sdk/p4pd_error.h"

p4pd_error_t flow_ohash_entry_write(uint32_t tableid, uint32_t index, uint8_t *hwkey, flow_ohash_actiondata_t *actiondata, flow_ohash_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t flow_entry_write(uint32_t tableid, uint32_t index, uint8_t *hwkey, flow_actiondata_t *actiondata, flow_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t vlan_mapping_entry_write(uint32_t tableid, uint32_t index, uint8_t *hwkey, vlan_mapping_actiondata_t *actiondata, vlan_mapping_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t tunnel_terminate_sa_v4_entry_write(uint32_t tableid, uint32_t index, uint8_t *hwkey, tunnel_terminate_sa_v4_actiondata_t *actiondata, tunnel_terminate_sa_v4_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t tunnel_terminate_sa_v6_entry_write(uint32_t tableid, uint32_t index, uint8_t *hwkey, tunnel_terminate_sa_v6_actiondata_t *actiondata, tunnel_terminate_sa_v6_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t registered_mac_entry_write(uint32_t tableid, uint32_t index, uint8_t *hwkey, registered_mac_actiondata_t *actiondata, registered_mac_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t vlan_mapping_otcam_entry_write(uint32_t tableid, uint32_t index, uint8_t *hwkey, uint8_t *hwkey_mask, vlan_mapping_otcam_actiondata_t *actiondata, vlan_mapping_otcam_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t tunnel_terminate_v4_entry_write(uint32_t tableid, uint32_t index, uint8_t *hwkey, uint8_t *hwkey_mask, tunnel_terminate_v4_actiondata_t *actiondata, tunnel_terminate_v4_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t tunnel_terminate_v6_entry_write(uint32_t tableid, uint32_t index, uint8_t *hwkey, uint8_t *hwkey_mask, tunnel_terminate_v6_actiondata_t *actiondata, tunnel_terminate_v6_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t tunnel_terminate_sa_v4_otcam_entry_write(uint32_t tableid, uint32_t index, uint8_t *hwkey, uint8_t *hwkey_mask, tunnel_terminate_sa_v4_otcam_actiondata_t *actiondata, tunnel_terminate_sa_v4_otcam_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t tunnel_terminate_sa_v6_otcam_entry_write(uint32_t tableid, uint32_t index, uint8_t *hwkey, uint8_t *hwkey_mask, tunnel_terminate_sa_v6_otcam_actiondata_t *actiondata, tunnel_terminate_sa_v6_otcam_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t flow_key_native_entry_write(uint32_t tableid, uint32_t index, uint8_t *hwkey, uint8_t *hwkey_mask, flow_key_native_actiondata_t *actiondata, flow_key_native_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t flow_key_tunneled_entry_write(uint32_t tableid, uint32_t index, uint8_t *hwkey, uint8_t *hwkey_mask, flow_key_tunneled_actiondata_t *actiondata, flow_key_tunneled_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t registered_mac_otcam_entry_write(uint32_t tableid, uint32_t index, uint8_t *hwkey, uint8_t *hwkey_mask, registered_mac_otcam_actiondata_t *actiondata, registered_mac_otcam_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t checksum_entry_write(uint32_t tableid, uint32_t index, uint8_t *hwkey, uint8_t *hwkey_mask, checksum_actiondata_t *actiondata, checksum_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t lif_mapping_entry_write(uint32_t tableid, uint32_t index, lif_mapping_actiondata_t *actiondata, lif_mapping_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t lif_vela_mapping_entry_write(uint32_t tableid, uint32_t index, lif_vela_mapping_actiondata_t *actiondata, lif_vela_mapping_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t vlan_vela_mapping_entry_write(uint32_t tableid, uint32_t index, vlan_vela_mapping_actiondata_t *actiondata, vlan_vela_mapping_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t vlan_vela_ctag_mapping_entry_write(uint32_t tableid, uint32_t index, vlan_vela_ctag_mapping_actiondata_t *actiondata, vlan_vela_ctag_mapping_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t validate_packet_vela_entry_write(uint32_t tableid, uint32_t index, validate_packet_vela_actiondata_t *actiondata, validate_packet_vela_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t flow_info_entry_write(uint32_t tableid, uint32_t index, flow_info_actiondata_t *actiondata, flow_info_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t conntrack_ingress_entry_write(uint32_t tableid, uint32_t index, conntrack_ingress_actiondata_t *actiondata, conntrack_ingress_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t conntrack_egress_entry_write(uint32_t tableid, uint32_t index, conntrack_egress_actiondata_t *actiondata, conntrack_egress_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t l2seg_entry_write(uint32_t tableid, uint32_t index, l2seg_actiondata_t *actiondata, l2seg_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t p4i_stats_entry_write(uint32_t tableid, uint32_t index, p4i_stats_actiondata_t *actiondata, p4i_stats_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t lif_tx_stats_entry_write(uint32_t tableid, uint32_t index, lif_tx_stats_actiondata_t *actiondata, lif_tx_stats_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t lport_tx_stats_entry_write(uint32_t tableid, uint32_t index, lport_tx_stats_actiondata_t *actiondata, lport_tx_stats_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t ct_ingress_stats_entry_write(uint32_t tableid, uint32_t index, ct_ingress_stats_actiondata_t *actiondata, ct_ingress_stats_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t ct_egress_stats_entry_write(uint32_t tableid, uint32_t index, ct_egress_stats_actiondata_t *actiondata, ct_egress_stats_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t mirror_rewrite_entry_write(uint32_t tableid, uint32_t index, mirror_rewrite_actiondata_t *actiondata, mirror_rewrite_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t mirror_rewrite_l3_entry_write(uint32_t tableid, uint32_t index, mirror_rewrite_l3_actiondata_t *actiondata, mirror_rewrite_l3_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t flow_rewrite_entry_write(uint32_t tableid, uint32_t index, flow_rewrite_actiondata_t *actiondata, flow_rewrite_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t nat_rewrite_entry_write(uint32_t tableid, uint32_t index, nat_rewrite_actiondata_t *actiondata, nat_rewrite_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t tunnel_encap_entry_write(uint32_t tableid, uint32_t index, tunnel_encap_actiondata_t *actiondata, tunnel_encap_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t ipfix_ingress_entry_write(uint32_t tableid, uint32_t index, ipfix_ingress_actiondata_t *actiondata, ipfix_ingress_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t ipfix_egress_entry_write(uint32_t tableid, uint32_t index, ipfix_egress_actiondata_t *actiondata, ipfix_egress_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t output_mapping_entry_write(uint32_t tableid, uint32_t index, output_mapping_actiondata_t *actiondata, output_mapping_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t p4plus_app_entry_write(uint32_t tableid, uint32_t index, p4plus_app_actiondata_t *actiondata, p4plus_app_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t p4e_stats_entry_write(uint32_t tableid, uint32_t index, p4e_stats_actiondata_t *actiondata, p4e_stats_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t lport_rx_stats_entry_write(uint32_t tableid, uint32_t index, lport_rx_stats_actiondata_t *actiondata, lport_rx_stats_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t validate_packet_entry_write(uint32_t tableid, uint32_t index, validate_packet_actiondata_t *actiondata, validate_packet_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t p4plus_offload_entry_write(uint32_t tableid, uint32_t index, p4plus_offload_actiondata_t *actiondata, p4plus_offload_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t replica_rewrite_entry_write(uint32_t tableid, uint32_t index, replica_rewrite_actiondata_t *actiondata, replica_rewrite_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t tunnel_decap_entry_write(uint32_t tableid, uint32_t index, tunnel_decap_actiondata_t *actiondata, tunnel_decap_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t p4plus_app_rss_0_entry_write(uint32_t tableid, uint32_t index, p4plus_app_rss_0_actiondata_t *actiondata, p4plus_app_rss_0_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t p4plus_app_rss_mirror_entry_write(uint32_t tableid, uint32_t index, p4plus_app_rss_mirror_actiondata_t *actiondata, p4plus_app_rss_mirror_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t p4plus_app_rss_1_entry_write(uint32_t tableid, uint32_t index, p4plus_app_rss_1_actiondata_t *actiondata, p4plus_app_rss_1_actiondata_t *actiondata_mask, bool flag);
p4pd_error_t p4plus_app_rss_2_entry_write(uint32_t tableid, uint32_t index, p4plus_app_rss_2_actiondata_t *actiondata, p4plus_app_rss_2_actiondata_t *actiondata_mask, bool flag);
