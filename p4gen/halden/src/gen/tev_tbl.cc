// The functions of the table API.
//
// Written by halden-emit from p4gen/halden/pipeline; do not edit. To make it again:
//     cmake --build build/release --target halden-emit && build/release/halden-emit .

#include "tev_tbl.h"

#include "p4gen/halden/pipeline/pipeline.h"
#include "p4gen/halden/src/tev_tbl_flow.h"
#include "p4gen/halden/src/tev_tbl_index.h"
#include "p4gen/halden/src/tev_tbl_keyed.h"

using namespace halden::tev_tbl;

using flow_api = flow_table;
static_assert(sizeof(tev_tbl_flow_spec_t) == 136);
tev_tbl_ret_t tev_tbl_flow_create(const tev_tbl_flow_spec_t *spec) { return flow_api::create(spec); }
tev_tbl_ret_t tev_tbl_flow_read(const tev_tbl_flow_key_t *key, tev_tbl_flow_info_t *info) { return flow_api::read(key, info); }
tev_tbl_ret_t tev_tbl_flow_update(const tev_tbl_flow_spec_t *spec) { return flow_api::update(spec); }
tev_tbl_ret_t tev_tbl_flow_delete(const tev_tbl_flow_key_t *key) { return flow_api::remove(key); }
tev_tbl_ret_t tev_tbl_flow_find(const tev_tbl_flow_key_t *key) { return flow_api::find(key); }
tev_tbl_ret_t tev_tbl_flow_table_clear(void) { return table_clear(); }

using vlan_mapping_api = keyed_table<pl::vlan_mapping, &state::vlan_mapping_tbl>;
static_assert(sizeof(tev_tbl_vlan_mapping_spec_t) == 9);
tev_tbl_ret_t tev_tbl_vlan_mapping_create(const tev_tbl_vlan_mapping_spec_t *spec) { return vlan_mapping_api::create(spec); }
tev_tbl_ret_t tev_tbl_vlan_mapping_read(const tev_tbl_vlan_mapping_key_t *key, tev_tbl_vlan_mapping_info_t *info) { return vlan_mapping_api::read(key, info); }
tev_tbl_ret_t tev_tbl_vlan_mapping_update(const tev_tbl_vlan_mapping_spec_t *spec) { return vlan_mapping_api::update(spec); }
tev_tbl_ret_t tev_tbl_vlan_mapping_delete(const tev_tbl_vlan_mapping_key_t *key) { return vlan_mapping_api::remove(key); }
tev_tbl_ret_t tev_tbl_vlan_mapping_find(const tev_tbl_vlan_mapping_key_t *key) { return vlan_mapping_api::find(key); }
tev_tbl_ret_t tev_tbl_vlan_mapping_table_clear(void) { return table_clear(); }

using tunnel_terminate_sa_v4_api = keyed_table<pl::tunnel_terminate_sa_v4, &state::tunnel_terminate_sa_v4_tbl>;
static_assert(sizeof(tev_tbl_tunnel_terminate_sa_v4_spec_t) == 9);
tev_tbl_ret_t tev_tbl_tunnel_terminate_sa_v4_create(const tev_tbl_tunnel_terminate_sa_v4_spec_t *spec) { return tunnel_terminate_sa_v4_api::create(spec); }
tev_tbl_ret_t tev_tbl_tunnel_terminate_sa_v4_read(const tev_tbl_tunnel_terminate_sa_v4_key_t *key, tev_tbl_tunnel_terminate_sa_v4_info_t *info) { return tunnel_terminate_sa_v4_api::read(key, info); }
tev_tbl_ret_t tev_tbl_tunnel_terminate_sa_v4_update(const tev_tbl_tunnel_terminate_sa_v4_spec_t *spec) { return tunnel_terminate_sa_v4_api::update(spec); }
tev_tbl_ret_t tev_tbl_tunnel_terminate_sa_v4_delete(const tev_tbl_tunnel_terminate_sa_v4_key_t *key) { return tunnel_terminate_sa_v4_api::remove(key); }
tev_tbl_ret_t tev_tbl_tunnel_terminate_sa_v4_find(const tev_tbl_tunnel_terminate_sa_v4_key_t *key) { return tunnel_terminate_sa_v4_api::find(key); }
tev_tbl_ret_t tev_tbl_tunnel_terminate_sa_v4_table_clear(void) { return table_clear(); }

using tunnel_terminate_sa_v6_api = keyed_table<pl::tunnel_terminate_sa_v6, &state::tunnel_terminate_sa_v6_tbl>;
static_assert(sizeof(tev_tbl_tunnel_terminate_sa_v6_spec_t) == 21);
tev_tbl_ret_t tev_tbl_tunnel_terminate_sa_v6_create(const tev_tbl_tunnel_terminate_sa_v6_spec_t *spec) { return tunnel_terminate_sa_v6_api::create(spec); }
tev_tbl_ret_t tev_tbl_tunnel_terminate_sa_v6_read(const tev_tbl_tunnel_terminate_sa_v6_key_t *key, tev_tbl_tunnel_terminate_sa_v6_info_t *info) { return tunnel_terminate_sa_v6_api::read(key, info); }
tev_tbl_ret_t tev_tbl_tunnel_terminate_sa_v6_update(const tev_tbl_tunnel_terminate_sa_v6_spec_t *spec) { return tunnel_terminate_sa_v6_api::update(spec); }
tev_tbl_ret_t tev_tbl_tunnel_terminate_sa_v6_delete(const tev_tbl_tunnel_terminate_sa_v6_key_t *key) { return tunnel_terminate_sa_v6_api::remove(key); }
tev_tbl_ret_t tev_tbl_tunnel_terminate_sa_v6_find(const tev_tbl_tunnel_terminate_sa_v6_key_t *key) { return tunnel_terminate_sa_v6_api::find(key); }
tev_tbl_ret_t tev_tbl_tunnel_terminate_sa_v6_table_clear(void) { return table_clear(); }

using registered_mac_api = keyed_table<pl::registered_mac, &state::registered_mac_tbl>;
static_assert(sizeof(tev_tbl_registered_mac_spec_t) == 18);
tev_tbl_ret_t tev_tbl_registered_mac_create(const tev_tbl_registered_mac_spec_t *spec) { return registered_mac_api::create(spec); }
tev_tbl_ret_t tev_tbl_registered_mac_read(const tev_tbl_registered_mac_key_t *key, tev_tbl_registered_mac_info_t *info) { return registered_mac_api::read(key, info); }
tev_tbl_ret_t tev_tbl_registered_mac_update(const tev_tbl_registered_mac_spec_t *spec) { return registered_mac_api::update(spec); }
tev_tbl_ret_t tev_tbl_registered_mac_delete(const tev_tbl_registered_mac_key_t *key) { return registered_mac_api::remove(key); }
tev_tbl_ret_t tev_tbl_registered_mac_find(const tev_tbl_registered_mac_key_t *key) { return registered_mac_api::find(key); }
tev_tbl_ret_t tev_tbl_registered_mac_table_clear(void) { return table_clear(); }

using tunnel_terminate_v4_api = keyed_table<pl::tunnel_terminate_v4, &state::tunnel_terminate_v4_tbl>;
static_assert(sizeof(tev_tbl_tunnel_terminate_v4_spec_t) == 46);
tev_tbl_ret_t tev_tbl_tunnel_terminate_v4_create(const tev_tbl_tunnel_terminate_v4_spec_t *spec) { return tunnel_terminate_v4_api::create(spec); }
tev_tbl_ret_t tev_tbl_tunnel_terminate_v4_read(const tev_tbl_tunnel_terminate_v4_key_t *key, tev_tbl_tunnel_terminate_v4_info_t *info) { return tunnel_terminate_v4_api::read(key, info); }
tev_tbl_ret_t tev_tbl_tunnel_terminate_v4_update(const tev_tbl_tunnel_terminate_v4_spec_t *spec) { return tunnel_terminate_v4_api::update(spec); }
tev_tbl_ret_t tev_tbl_tunnel_terminate_v4_delete(const tev_tbl_tunnel_terminate_v4_key_t *key) { return tunnel_terminate_v4_api::remove(key); }
tev_tbl_ret_t tev_tbl_tunnel_terminate_v4_find(const tev_tbl_tunnel_terminate_v4_key_t *key) { return tunnel_terminate_v4_api::find(key); }
tev_tbl_ret_t tev_tbl_tunnel_terminate_v4_table_clear(void) { return table_clear(); }

using tunnel_terminate_v6_api = keyed_table<pl::tunnel_terminate_v6, &state::tunnel_terminate_v6_tbl>;
static_assert(sizeof(tev_tbl_tunnel_terminate_v6_spec_t) == 70);
tev_tbl_ret_t tev_tbl_tunnel_terminate_v6_create(const tev_tbl_tunnel_terminate_v6_spec_t *spec) { return tunnel_terminate_v6_api::create(spec); }
tev_tbl_ret_t tev_tbl_tunnel_terminate_v6_read(const tev_tbl_tunnel_terminate_v6_key_t *key, tev_tbl_tunnel_terminate_v6_info_t *info) { return tunnel_terminate_v6_api::read(key, info); }
tev_tbl_ret_t tev_tbl_tunnel_terminate_v6_update(const tev_tbl_tunnel_terminate_v6_spec_t *spec) { return tunnel_terminate_v6_api::update(spec); }
tev_tbl_ret_t tev_tbl_tunnel_terminate_v6_delete(const tev_tbl_tunnel_terminate_v6_key_t *key) { return tunnel_terminate_v6_api::remove(key); }
tev_tbl_ret_t tev_tbl_tunnel_terminate_v6_find(const tev_tbl_tunnel_terminate_v6_key_t *key) { return tunnel_terminate_v6_api::find(key); }
tev_tbl_ret_t tev_tbl_tunnel_terminate_v6_table_clear(void) { return table_clear(); }

using flow_key_native_api = keyed_table<pl::flow_key_native, &state::flow_key_native_tbl>;
static_assert(sizeof(tev_tbl_flow_key_native_spec_t) == 10);
tev_tbl_ret_t tev_tbl_flow_key_native_create(const tev_tbl_flow_key_native_spec_t *spec) { return flow_key_native_api::create(spec); }
tev_tbl_ret_t tev_tbl_flow_key_native_read(const tev_tbl_flow_key_native_key_t *key, tev_tbl_flow_key_native_info_t *info) { return flow_key_native_api::read(key, info); }
tev_tbl_ret_t tev_tbl_flow_key_native_update(const tev_tbl_flow_key_native_spec_t *spec) { return flow_key_native_api::update(spec); }
tev_tbl_ret_t tev_tbl_flow_key_native_delete(const tev_tbl_flow_key_native_key_t *key) { return flow_key_native_api::remove(key); }
tev_tbl_ret_t tev_tbl_flow_key_native_find(const tev_tbl_flow_key_native_key_t *key) { return flow_key_native_api::find(key); }
tev_tbl_ret_t tev_tbl_flow_key_native_table_clear(void) { return table_clear(); }

using flow_key_tunneled_api = keyed_table<pl::flow_key_tunneled, &state::flow_key_tunneled_tbl>;
static_assert(sizeof(tev_tbl_flow_key_tunneled_spec_t) == 9);
tev_tbl_ret_t tev_tbl_flow_key_tunneled_create(const tev_tbl_flow_key_tunneled_spec_t *spec) { return flow_key_tunneled_api::create(spec); }
tev_tbl_ret_t tev_tbl_flow_key_tunneled_read(const tev_tbl_flow_key_tunneled_key_t *key, tev_tbl_flow_key_tunneled_info_t *info) { return flow_key_tunneled_api::read(key, info); }
tev_tbl_ret_t tev_tbl_flow_key_tunneled_update(const tev_tbl_flow_key_tunneled_spec_t *spec) { return flow_key_tunneled_api::update(spec); }
tev_tbl_ret_t tev_tbl_flow_key_tunneled_delete(const tev_tbl_flow_key_tunneled_key_t *key) { return flow_key_tunneled_api::remove(key); }
tev_tbl_ret_t tev_tbl_flow_key_tunneled_find(const tev_tbl_flow_key_tunneled_key_t *key) { return flow_key_tunneled_api::find(key); }
tev_tbl_ret_t tev_tbl_flow_key_tunneled_table_clear(void) { return table_clear(); }

using checksum_api = keyed_table<pl::checksum, &state::checksum_tbl>;
static_assert(sizeof(tev_tbl_checksum_spec_t) == 19);
tev_tbl_ret_t tev_tbl_checksum_create(const tev_tbl_checksum_spec_t *spec) { return checksum_api::create(spec); }
tev_tbl_ret_t tev_tbl_checksum_read(const tev_tbl_checksum_key_t *key, tev_tbl_checksum_info_t *info) { return checksum_api::read(key, info); }
tev_tbl_ret_t tev_tbl_checksum_update(const tev_tbl_checksum_spec_t *spec) { return checksum_api::update(spec); }
tev_tbl_ret_t tev_tbl_checksum_delete(const tev_tbl_checksum_key_t *key) { return checksum_api::remove(key); }
tev_tbl_ret_t tev_tbl_checksum_find(const tev_tbl_checksum_key_t *key) { return checksum_api::find(key); }
tev_tbl_ret_t tev_tbl_checksum_table_clear(void) { return table_clear(); }

using lif_mapping_api = index_table<pl::lif_mapping, &state::lif_mapping_tbl>;
static_assert(sizeof(tev_tbl_lif_mapping_spec_t) == 14);
tev_tbl_ret_t tev_tbl_lif_mapping_create(const tev_tbl_lif_mapping_spec_t *spec) { return lif_mapping_api::create(spec); }
tev_tbl_ret_t tev_tbl_lif_mapping_read(const tev_tbl_lif_mapping_key_t *key, tev_tbl_lif_mapping_info_t *info) { return lif_mapping_api::read(key, info); }
tev_tbl_ret_t tev_tbl_lif_mapping_update(const tev_tbl_lif_mapping_spec_t *spec) { return lif_mapping_api::update(spec); }
tev_tbl_ret_t tev_tbl_lif_mapping_delete(const tev_tbl_lif_mapping_key_t *key) { return lif_mapping_api::remove(key); }
tev_tbl_ret_t tev_tbl_lif_mapping_find(const tev_tbl_lif_mapping_key_t *key) { return lif_mapping_api::find(key); }
tev_tbl_ret_t tev_tbl_lif_mapping_table_clear(void) { return table_clear(); }

using lif_vela_mapping_api = index_table<pl::lif_vela_mapping, &state::lif_vela_mapping_tbl>;
static_assert(sizeof(tev_tbl_lif_vela_mapping_spec_t) == 13);
tev_tbl_ret_t tev_tbl_lif_vela_mapping_create(const tev_tbl_lif_vela_mapping_spec_t *spec) { return lif_vela_mapping_api::create(spec); }
tev_tbl_ret_t tev_tbl_lif_vela_mapping_read(const tev_tbl_lif_vela_mapping_key_t *key, tev_tbl_lif_vela_mapping_info_t *info) { return lif_vela_mapping_api::read(key, info); }
tev_tbl_ret_t tev_tbl_lif_vela_mapping_update(const tev_tbl_lif_vela_mapping_spec_t *spec) { return lif_vela_mapping_api::update(spec); }
tev_tbl_ret_t tev_tbl_lif_vela_mapping_delete(const tev_tbl_lif_vela_mapping_key_t *key) { return lif_vela_mapping_api::remove(key); }
tev_tbl_ret_t tev_tbl_lif_vela_mapping_find(const tev_tbl_lif_vela_mapping_key_t *key) { return lif_vela_mapping_api::find(key); }
tev_tbl_ret_t tev_tbl_lif_vela_mapping_table_clear(void) { return table_clear(); }

using vlan_vela_mapping_api = index_table<pl::vlan_vela_mapping, &state::vlan_vela_mapping_tbl>;
static_assert(sizeof(tev_tbl_vlan_vela_mapping_spec_t) == 16);
tev_tbl_ret_t tev_tbl_vlan_vela_mapping_create(const tev_tbl_vlan_vela_mapping_spec_t *spec) { return vlan_vela_mapping_api::create(spec); }
tev_tbl_ret_t tev_tbl_vlan_vela_mapping_read(const tev_tbl_vlan_vela_mapping_key_t *key, tev_tbl_vlan_vela_mapping_info_t *info) { return vlan_vela_mapping_api::read(key, info); }
tev_tbl_ret_t tev_tbl_vlan_vela_mapping_update(const tev_tbl_vlan_vela_mapping_spec_t *spec) { return vlan_vela_mapping_api::update(spec); }
tev_tbl_ret_t tev_tbl_vlan_vela_mapping_delete(const tev_tbl_vlan_vela_mapping_key_t *key) { return vlan_vela_mapping_api::remove(key); }
tev_tbl_ret_t tev_tbl_vlan_vela_mapping_find(const tev_tbl_vlan_vela_mapping_key_t *key) { return vlan_vela_mapping_api::find(key); }
tev_tbl_ret_t tev_tbl_vlan_vela_mapping_table_clear(void) { return table_clear(); }

using vlan_vela_ctag_mapping_api = index_table<pl::vlan_vela_ctag_mapping, &state::vlan_vela_ctag_mapping_tbl>;
static_assert(sizeof(tev_tbl_vlan_vela_ctag_mapping_spec_t) == 16);
tev_tbl_ret_t tev_tbl_vlan_vela_ctag_mapping_create(const tev_tbl_vlan_vela_ctag_mapping_spec_t *spec) { return vlan_vela_ctag_mapping_api::create(spec); }
tev_tbl_ret_t tev_tbl_vlan_vela_ctag_mapping_read(const tev_tbl_vlan_vela_ctag_mapping_key_t *key, tev_tbl_vlan_vela_ctag_mapping_info_t *info) { return vlan_vela_ctag_mapping_api::read(key, info); }
tev_tbl_ret_t tev_tbl_vlan_vela_ctag_mapping_update(const tev_tbl_vlan_vela_ctag_mapping_spec_t *spec) { return vlan_vela_ctag_mapping_api::update(spec); }
tev_tbl_ret_t tev_tbl_vlan_vela_ctag_mapping_delete(const tev_tbl_vlan_vela_ctag_mapping_key_t *key) { return vlan_vela_ctag_mapping_api::remove(key); }
tev_tbl_ret_t tev_tbl_vlan_vela_ctag_mapping_find(const tev_tbl_vlan_vela_ctag_mapping_key_t *key) { return vlan_vela_ctag_mapping_api::find(key); }
tev_tbl_ret_t tev_tbl_vlan_vela_ctag_mapping_table_clear(void) { return table_clear(); }

using validate_packet_vela_api = index_table<pl::validate_packet_vela, &state::validate_packet_vela_tbl>;
static_assert(sizeof(tev_tbl_validate_packet_vela_spec_t) == 10);
tev_tbl_ret_t tev_tbl_validate_packet_vela_create(const tev_tbl_validate_packet_vela_spec_t *spec) { return validate_packet_vela_api::create(spec); }
tev_tbl_ret_t tev_tbl_validate_packet_vela_read(const tev_tbl_validate_packet_vela_key_t *key, tev_tbl_validate_packet_vela_info_t *info) { return validate_packet_vela_api::read(key, info); }
tev_tbl_ret_t tev_tbl_validate_packet_vela_update(const tev_tbl_validate_packet_vela_spec_t *spec) { return validate_packet_vela_api::update(spec); }
tev_tbl_ret_t tev_tbl_validate_packet_vela_delete(const tev_tbl_validate_packet_vela_key_t *key) { return validate_packet_vela_api::remove(key); }
tev_tbl_ret_t tev_tbl_validate_packet_vela_find(const tev_tbl_validate_packet_vela_key_t *key) { return validate_packet_vela_api::find(key); }
tev_tbl_ret_t tev_tbl_validate_packet_vela_table_clear(void) { return table_clear(); }

using flow_info_api = index_table<pl::flow_info, &state::flow_info_tbl>;
static_assert(sizeof(tev_tbl_flow_info_spec_t) == 68);
tev_tbl_ret_t tev_tbl_flow_info_create(const tev_tbl_flow_info_spec_t *spec) { return flow_info_api::create(spec); }
tev_tbl_ret_t tev_tbl_flow_info_read(const tev_tbl_flow_info_key_t *key, tev_tbl_flow_info_info_t *info) { return flow_info_api::read(key, info); }
tev_tbl_ret_t tev_tbl_flow_info_update(const tev_tbl_flow_info_spec_t *spec) { return flow_info_api::update(spec); }
tev_tbl_ret_t tev_tbl_flow_info_delete(const tev_tbl_flow_info_key_t *key) { return flow_info_api::remove(key); }
tev_tbl_ret_t tev_tbl_flow_info_find(const tev_tbl_flow_info_key_t *key) { return flow_info_api::find(key); }
tev_tbl_ret_t tev_tbl_flow_info_table_clear(void) { return table_clear(); }

using conntrack_ingress_api = index_table<pl::conntrack_ingress, &state::conntrack_ingress_tbl>;
static_assert(sizeof(tev_tbl_conntrack_ingress_spec_t) == 31);
tev_tbl_ret_t tev_tbl_conntrack_ingress_create(const tev_tbl_conntrack_ingress_spec_t *spec) { return conntrack_ingress_api::create(spec); }
tev_tbl_ret_t tev_tbl_conntrack_ingress_read(const tev_tbl_conntrack_ingress_key_t *key, tev_tbl_conntrack_ingress_info_t *info) { return conntrack_ingress_api::read(key, info); }
tev_tbl_ret_t tev_tbl_conntrack_ingress_update(const tev_tbl_conntrack_ingress_spec_t *spec) { return conntrack_ingress_api::update(spec); }
tev_tbl_ret_t tev_tbl_conntrack_ingress_delete(const tev_tbl_conntrack_ingress_key_t *key) { return conntrack_ingress_api::remove(key); }
tev_tbl_ret_t tev_tbl_conntrack_ingress_find(const tev_tbl_conntrack_ingress_key_t *key) { return conntrack_ingress_api::find(key); }
tev_tbl_ret_t tev_tbl_conntrack_ingress_table_clear(void) { return table_clear(); }

using conntrack_egress_api = index_table<pl::conntrack_egress, &state::conntrack_egress_tbl>;
static_assert(sizeof(tev_tbl_conntrack_egress_spec_t) == 31);
tev_tbl_ret_t tev_tbl_conntrack_egress_create(const tev_tbl_conntrack_egress_spec_t *spec) { return conntrack_egress_api::create(spec); }
tev_tbl_ret_t tev_tbl_conntrack_egress_read(const tev_tbl_conntrack_egress_key_t *key, tev_tbl_conntrack_egress_info_t *info) { return conntrack_egress_api::read(key, info); }
tev_tbl_ret_t tev_tbl_conntrack_egress_update(const tev_tbl_conntrack_egress_spec_t *spec) { return conntrack_egress_api::update(spec); }
tev_tbl_ret_t tev_tbl_conntrack_egress_delete(const tev_tbl_conntrack_egress_key_t *key) { return conntrack_egress_api::remove(key); }
tev_tbl_ret_t tev_tbl_conntrack_egress_find(const tev_tbl_conntrack_egress_key_t *key) { return conntrack_egress_api::find(key); }
tev_tbl_ret_t tev_tbl_conntrack_egress_table_clear(void) { return table_clear(); }

using l2seg_api = index_table<pl::l2seg, &state::l2seg_tbl>;
static_assert(sizeof(tev_tbl_l2seg_spec_t) == 8);
tev_tbl_ret_t tev_tbl_l2seg_create(const tev_tbl_l2seg_spec_t *spec) { return l2seg_api::create(spec); }
tev_tbl_ret_t tev_tbl_l2seg_read(const tev_tbl_l2seg_key_t *key, tev_tbl_l2seg_info_t *info) { return l2seg_api::read(key, info); }
tev_tbl_ret_t tev_tbl_l2seg_update(const tev_tbl_l2seg_spec_t *spec) { return l2seg_api::update(spec); }
tev_tbl_ret_t tev_tbl_l2seg_delete(const tev_tbl_l2seg_key_t *key) { return l2seg_api::remove(key); }
tev_tbl_ret_t tev_tbl_l2seg_find(const tev_tbl_l2seg_key_t *key) { return l2seg_api::find(key); }
tev_tbl_ret_t tev_tbl_l2seg_table_clear(void) { return table_clear(); }

using p4i_stats_api = index_table<pl::p4i_stats, &state::p4i_stats_tbl>;
static_assert(sizeof(tev_tbl_p4i_stats_spec_t) == 51);
tev_tbl_ret_t tev_tbl_p4i_stats_create(const tev_tbl_p4i_stats_spec_t *spec) { return p4i_stats_api::create(spec); }
tev_tbl_ret_t tev_tbl_p4i_stats_read(const tev_tbl_p4i_stats_key_t *key, tev_tbl_p4i_stats_info_t *info) { return p4i_stats_api::read(key, info); }
tev_tbl_ret_t tev_tbl_p4i_stats_update(const tev_tbl_p4i_stats_spec_t *spec) { return p4i_stats_api::update(spec); }
tev_tbl_ret_t tev_tbl_p4i_stats_delete(const tev_tbl_p4i_stats_key_t *key) { return p4i_stats_api::remove(key); }
tev_tbl_ret_t tev_tbl_p4i_stats_find(const tev_tbl_p4i_stats_key_t *key) { return p4i_stats_api::find(key); }
tev_tbl_ret_t tev_tbl_p4i_stats_table_clear(void) { return table_clear(); }

using lif_tx_stats_api = index_table<pl::lif_tx_stats, &state::lif_tx_stats_tbl>;
static_assert(sizeof(tev_tbl_lif_tx_stats_spec_t) == 67);
tev_tbl_ret_t tev_tbl_lif_tx_stats_create(const tev_tbl_lif_tx_stats_spec_t *spec) { return lif_tx_stats_api::create(spec); }
tev_tbl_ret_t tev_tbl_lif_tx_stats_read(const tev_tbl_lif_tx_stats_key_t *key, tev_tbl_lif_tx_stats_info_t *info) { return lif_tx_stats_api::read(key, info); }
tev_tbl_ret_t tev_tbl_lif_tx_stats_update(const tev_tbl_lif_tx_stats_spec_t *spec) { return lif_tx_stats_api::update(spec); }
tev_tbl_ret_t tev_tbl_lif_tx_stats_delete(const tev_tbl_lif_tx_stats_key_t *key) { return lif_tx_stats_api::remove(key); }
tev_tbl_ret_t tev_tbl_lif_tx_stats_find(const tev_tbl_lif_tx_stats_key_t *key) { return lif_tx_stats_api::find(key); }
tev_tbl_ret_t tev_tbl_lif_tx_stats_table_clear(void) { return table_clear(); }

using lport_tx_stats_api = index_table<pl::lport_tx_stats, &state::lport_tx_stats_tbl>;
static_assert(sizeof(tev_tbl_lport_tx_stats_spec_t) == 67);
tev_tbl_ret_t tev_tbl_lport_tx_stats_create(const tev_tbl_lport_tx_stats_spec_t *spec) { return lport_tx_stats_api::create(spec); }
tev_tbl_ret_t tev_tbl_lport_tx_stats_read(const tev_tbl_lport_tx_stats_key_t *key, tev_tbl_lport_tx_stats_info_t *info) { return lport_tx_stats_api::read(key, info); }
tev_tbl_ret_t tev_tbl_lport_tx_stats_update(const tev_tbl_lport_tx_stats_spec_t *spec) { return lport_tx_stats_api::update(spec); }
tev_tbl_ret_t tev_tbl_lport_tx_stats_delete(const tev_tbl_lport_tx_stats_key_t *key) { return lport_tx_stats_api::remove(key); }
tev_tbl_ret_t tev_tbl_lport_tx_stats_find(const tev_tbl_lport_tx_stats_key_t *key) { return lport_tx_stats_api::find(key); }
tev_tbl_ret_t tev_tbl_lport_tx_stats_table_clear(void) { return table_clear(); }

using ct_ingress_stats_api = index_table<pl::ct_ingress_stats, &state::ct_ingress_stats_tbl>;
static_assert(sizeof(tev_tbl_ct_ingress_stats_spec_t) == 67);
tev_tbl_ret_t tev_tbl_ct_ingress_stats_create(const tev_tbl_ct_ingress_stats_spec_t *spec) { return ct_ingress_stats_api::create(spec); }
tev_tbl_ret_t tev_tbl_ct_ingress_stats_read(const tev_tbl_ct_ingress_stats_key_t *key, tev_tbl_ct_ingress_stats_info_t *info) { return ct_ingress_stats_api::read(key, info); }
tev_tbl_ret_t tev_tbl_ct_ingress_stats_update(const tev_tbl_ct_ingress_stats_spec_t *spec) { return ct_ingress_stats_api::update(spec); }
tev_tbl_ret_t tev_tbl_ct_ingress_stats_delete(const tev_tbl_ct_ingress_stats_key_t *key) { return ct_ingress_stats_api::remove(key); }
tev_tbl_ret_t tev_tbl_ct_ingress_stats_find(const tev_tbl_ct_ingress_stats_key_t *key) { return ct_ingress_stats_api::find(key); }
tev_tbl_ret_t tev_tbl_ct_ingress_stats_table_clear(void) { return table_clear(); }

using ct_egress_stats_api = index_table<pl::ct_egress_stats, &state::ct_egress_stats_tbl>;
static_assert(sizeof(tev_tbl_ct_egress_stats_spec_t) == 67);
tev_tbl_ret_t tev_tbl_ct_egress_stats_create(const tev_tbl_ct_egress_stats_spec_t *spec) { return ct_egress_stats_api::create(spec); }
tev_tbl_ret_t tev_tbl_ct_egress_stats_read(const tev_tbl_ct_egress_stats_key_t *key, tev_tbl_ct_egress_stats_info_t *info) { return ct_egress_stats_api::read(key, info); }
tev_tbl_ret_t tev_tbl_ct_egress_stats_update(const tev_tbl_ct_egress_stats_spec_t *spec) { return ct_egress_stats_api::update(spec); }
tev_tbl_ret_t tev_tbl_ct_egress_stats_delete(const tev_tbl_ct_egress_stats_key_t *key) { return ct_egress_stats_api::remove(key); }
tev_tbl_ret_t tev_tbl_ct_egress_stats_find(const tev_tbl_ct_egress_stats_key_t *key) { return ct_egress_stats_api::find(key); }
tev_tbl_ret_t tev_tbl_ct_egress_stats_table_clear(void) { return table_clear(); }

using mirror_rewrite_api = index_table<pl::mirror_rewrite, &state::mirror_rewrite_tbl>;
static_assert(sizeof(tev_tbl_mirror_rewrite_spec_t) == 30);
tev_tbl_ret_t tev_tbl_mirror_rewrite_create(const tev_tbl_mirror_rewrite_spec_t *spec) { return mirror_rewrite_api::create(spec); }
tev_tbl_ret_t tev_tbl_mirror_rewrite_read(const tev_tbl_mirror_rewrite_key_t *key, tev_tbl_mirror_rewrite_info_t *info) { return mirror_rewrite_api::read(key, info); }
tev_tbl_ret_t tev_tbl_mirror_rewrite_update(const tev_tbl_mirror_rewrite_spec_t *spec) { return mirror_rewrite_api::update(spec); }
tev_tbl_ret_t tev_tbl_mirror_rewrite_delete(const tev_tbl_mirror_rewrite_key_t *key) { return mirror_rewrite_api::remove(key); }
tev_tbl_ret_t tev_tbl_mirror_rewrite_find(const tev_tbl_mirror_rewrite_key_t *key) { return mirror_rewrite_api::find(key); }
tev_tbl_ret_t tev_tbl_mirror_rewrite_table_clear(void) { return table_clear(); }

using mirror_rewrite_l3_api = index_table<pl::mirror_rewrite_l3, &state::mirror_rewrite_l3_tbl>;
static_assert(sizeof(tev_tbl_mirror_rewrite_l3_spec_t) == 76);
tev_tbl_ret_t tev_tbl_mirror_rewrite_l3_create(const tev_tbl_mirror_rewrite_l3_spec_t *spec) { return mirror_rewrite_l3_api::create(spec); }
tev_tbl_ret_t tev_tbl_mirror_rewrite_l3_read(const tev_tbl_mirror_rewrite_l3_key_t *key, tev_tbl_mirror_rewrite_l3_info_t *info) { return mirror_rewrite_l3_api::read(key, info); }
tev_tbl_ret_t tev_tbl_mirror_rewrite_l3_update(const tev_tbl_mirror_rewrite_l3_spec_t *spec) { return mirror_rewrite_l3_api::update(spec); }
tev_tbl_ret_t tev_tbl_mirror_rewrite_l3_delete(const tev_tbl_mirror_rewrite_l3_key_t *key) { return mirror_rewrite_l3_api::remove(key); }
tev_tbl_ret_t tev_tbl_mirror_rewrite_l3_find(const tev_tbl_mirror_rewrite_l3_key_t *key) { return mirror_rewrite_l3_api::find(key); }
tev_tbl_ret_t tev_tbl_mirror_rewrite_l3_table_clear(void) { return table_clear(); }

using flow_rewrite_api = index_table<pl::flow_rewrite, &state::flow_rewrite_tbl>;
static_assert(sizeof(tev_tbl_flow_rewrite_spec_t) == 43);
tev_tbl_ret_t tev_tbl_flow_rewrite_create(const tev_tbl_flow_rewrite_spec_t *spec) { return flow_rewrite_api::create(spec); }
tev_tbl_ret_t tev_tbl_flow_rewrite_read(const tev_tbl_flow_rewrite_key_t *key, tev_tbl_flow_rewrite_info_t *info) { return flow_rewrite_api::read(key, info); }
tev_tbl_ret_t tev_tbl_flow_rewrite_update(const tev_tbl_flow_rewrite_spec_t *spec) { return flow_rewrite_api::update(spec); }
tev_tbl_ret_t tev_tbl_flow_rewrite_delete(const tev_tbl_flow_rewrite_key_t *key) { return flow_rewrite_api::remove(key); }
tev_tbl_ret_t tev_tbl_flow_rewrite_find(const tev_tbl_flow_rewrite_key_t *key) { return flow_rewrite_api::find(key); }
tev_tbl_ret_t tev_tbl_flow_rewrite_table_clear(void) { return table_clear(); }

using nat_rewrite_api = index_table<pl::nat_rewrite, &state::nat_rewrite_tbl>;
static_assert(sizeof(tev_tbl_nat_rewrite_spec_t) == 39);
tev_tbl_ret_t tev_tbl_nat_rewrite_create(const tev_tbl_nat_rewrite_spec_t *spec) { return nat_rewrite_api::create(spec); }
tev_tbl_ret_t tev_tbl_nat_rewrite_read(const tev_tbl_nat_rewrite_key_t *key, tev_tbl_nat_rewrite_info_t *info) { return nat_rewrite_api::read(key, info); }
tev_tbl_ret_t tev_tbl_nat_rewrite_update(const tev_tbl_nat_rewrite_spec_t *spec) { return nat_rewrite_api::update(spec); }
tev_tbl_ret_t tev_tbl_nat_rewrite_delete(const tev_tbl_nat_rewrite_key_t *key) { return nat_rewrite_api::remove(key); }
tev_tbl_ret_t tev_tbl_nat_rewrite_find(const tev_tbl_nat_rewrite_key_t *key) { return nat_rewrite_api::find(key); }
tev_tbl_ret_t tev_tbl_nat_rewrite_table_clear(void) { return table_clear(); }

using tunnel_encap_api = index_table<pl::tunnel_encap, &state::tunnel_encap_tbl>;
static_assert(sizeof(tev_tbl_tunnel_encap_spec_t) == 62);
tev_tbl_ret_t tev_tbl_tunnel_encap_create(const tev_tbl_tunnel_encap_spec_t *spec) { return tunnel_encap_api::create(spec); }
tev_tbl_ret_t tev_tbl_tunnel_encap_read(const tev_tbl_tunnel_encap_key_t *key, tev_tbl_tunnel_encap_info_t *info) { return tunnel_encap_api::read(key, info); }
tev_tbl_ret_t tev_tbl_tunnel_encap_update(const tev_tbl_tunnel_encap_spec_t *spec) { return tunnel_encap_api::update(spec); }
tev_tbl_ret_t tev_tbl_tunnel_encap_delete(const tev_tbl_tunnel_encap_key_t *key) { return tunnel_encap_api::remove(key); }
tev_tbl_ret_t tev_tbl_tunnel_encap_find(const tev_tbl_tunnel_encap_key_t *key) { return tunnel_encap_api::find(key); }
tev_tbl_ret_t tev_tbl_tunnel_encap_table_clear(void) { return table_clear(); }

using ipfix_ingress_api = index_table<pl::ipfix_ingress, &state::ipfix_ingress_tbl>;
static_assert(sizeof(tev_tbl_ipfix_ingress_spec_t) == 22);
tev_tbl_ret_t tev_tbl_ipfix_ingress_create(const tev_tbl_ipfix_ingress_spec_t *spec) { return ipfix_ingress_api::create(spec); }
tev_tbl_ret_t tev_tbl_ipfix_ingress_read(const tev_tbl_ipfix_ingress_key_t *key, tev_tbl_ipfix_ingress_info_t *info) { return ipfix_ingress_api::read(key, info); }
tev_tbl_ret_t tev_tbl_ipfix_ingress_update(const tev_tbl_ipfix_ingress_spec_t *spec) { return ipfix_ingress_api::update(spec); }
tev_tbl_ret_t tev_tbl_ipfix_ingress_delete(const tev_tbl_ipfix_ingress_key_t *key) { return ipfix_ingress_api::remove(key); }
tev_tbl_ret_t tev_tbl_ipfix_ingress_find(const tev_tbl_ipfix_ingress_key_t *key) { return ipfix_ingress_api::find(key); }
tev_tbl_ret_t tev_tbl_ipfix_ingress_table_clear(void) { return table_clear(); }

using ipfix_egress_api = index_table<pl::ipfix_egress, &state::ipfix_egress_tbl>;
static_assert(sizeof(tev_tbl_ipfix_egress_spec_t) == 22);
tev_tbl_ret_t tev_tbl_ipfix_egress_create(const tev_tbl_ipfix_egress_spec_t *spec) { return ipfix_egress_api::create(spec); }
tev_tbl_ret_t tev_tbl_ipfix_egress_read(const tev_tbl_ipfix_egress_key_t *key, tev_tbl_ipfix_egress_info_t *info) { return ipfix_egress_api::read(key, info); }
tev_tbl_ret_t tev_tbl_ipfix_egress_update(const tev_tbl_ipfix_egress_spec_t *spec) { return ipfix_egress_api::update(spec); }
tev_tbl_ret_t tev_tbl_ipfix_egress_delete(const tev_tbl_ipfix_egress_key_t *key) { return ipfix_egress_api::remove(key); }
tev_tbl_ret_t tev_tbl_ipfix_egress_find(const tev_tbl_ipfix_egress_key_t *key) { return ipfix_egress_api::find(key); }
tev_tbl_ret_t tev_tbl_ipfix_egress_table_clear(void) { return table_clear(); }

using output_mapping_api = index_table<pl::output_mapping, &state::output_mapping_tbl>;
static_assert(sizeof(tev_tbl_output_mapping_spec_t) == 20);
tev_tbl_ret_t tev_tbl_output_mapping_create(const tev_tbl_output_mapping_spec_t *spec) { return output_mapping_api::create(spec); }
tev_tbl_ret_t tev_tbl_output_mapping_read(const tev_tbl_output_mapping_key_t *key, tev_tbl_output_mapping_info_t *info) { return output_mapping_api::read(key, info); }
tev_tbl_ret_t tev_tbl_output_mapping_update(const tev_tbl_output_mapping_spec_t *spec) { return output_mapping_api::update(spec); }
tev_tbl_ret_t tev_tbl_output_mapping_delete(const tev_tbl_output_mapping_key_t *key) { return output_mapping_api::remove(key); }
tev_tbl_ret_t tev_tbl_output_mapping_find(const tev_tbl_output_mapping_key_t *key) { return output_mapping_api::find(key); }
tev_tbl_ret_t tev_tbl_output_mapping_table_clear(void) { return table_clear(); }

using p4plus_app_api = index_table<pl::p4plus_app, &state::p4plus_app_tbl>;
static_assert(sizeof(tev_tbl_p4plus_app_spec_t) == 3);
tev_tbl_ret_t tev_tbl_p4plus_app_create(const tev_tbl_p4plus_app_spec_t *spec) { return p4plus_app_api::create(spec); }
tev_tbl_ret_t tev_tbl_p4plus_app_read(const tev_tbl_p4plus_app_key_t *key, tev_tbl_p4plus_app_info_t *info) { return p4plus_app_api::read(key, info); }
tev_tbl_ret_t tev_tbl_p4plus_app_update(const tev_tbl_p4plus_app_spec_t *spec) { return p4plus_app_api::update(spec); }
tev_tbl_ret_t tev_tbl_p4plus_app_delete(const tev_tbl_p4plus_app_key_t *key) { return p4plus_app_api::remove(key); }
tev_tbl_ret_t tev_tbl_p4plus_app_find(const tev_tbl_p4plus_app_key_t *key) { return p4plus_app_api::find(key); }
tev_tbl_ret_t tev_tbl_p4plus_app_table_clear(void) { return table_clear(); }

using p4e_stats_api = index_table<pl::p4e_stats, &state::p4e_stats_tbl>;
static_assert(sizeof(tev_tbl_p4e_stats_spec_t) == 51);
tev_tbl_ret_t tev_tbl_p4e_stats_create(const tev_tbl_p4e_stats_spec_t *spec) { return p4e_stats_api::create(spec); }
tev_tbl_ret_t tev_tbl_p4e_stats_read(const tev_tbl_p4e_stats_key_t *key, tev_tbl_p4e_stats_info_t *info) { return p4e_stats_api::read(key, info); }
tev_tbl_ret_t tev_tbl_p4e_stats_update(const tev_tbl_p4e_stats_spec_t *spec) { return p4e_stats_api::update(spec); }
tev_tbl_ret_t tev_tbl_p4e_stats_delete(const tev_tbl_p4e_stats_key_t *key) { return p4e_stats_api::remove(key); }
tev_tbl_ret_t tev_tbl_p4e_stats_find(const tev_tbl_p4e_stats_key_t *key) { return p4e_stats_api::find(key); }
tev_tbl_ret_t tev_tbl_p4e_stats_table_clear(void) { return table_clear(); }

using lport_rx_stats_api = index_table<pl::lport_rx_stats, &state::lport_rx_stats_tbl>;
static_assert(sizeof(tev_tbl_lport_rx_stats_spec_t) == 67);
tev_tbl_ret_t tev_tbl_lport_rx_stats_create(const tev_tbl_lport_rx_stats_spec_t *spec) { return lport_rx_stats_api::create(spec); }
tev_tbl_ret_t tev_tbl_lport_rx_stats_read(const tev_tbl_lport_rx_stats_key_t *key, tev_tbl_lport_rx_stats_info_t *info) { return lport_rx_stats_api::read(key, info); }
tev_tbl_ret_t tev_tbl_lport_rx_stats_update(const tev_tbl_lport_rx_stats_spec_t *spec) { return lport_rx_stats_api::update(spec); }
tev_tbl_ret_t tev_tbl_lport_rx_stats_delete(const tev_tbl_lport_rx_stats_key_t *key) { return lport_rx_stats_api::remove(key); }
tev_tbl_ret_t tev_tbl_lport_rx_stats_find(const tev_tbl_lport_rx_stats_key_t *key) { return lport_rx_stats_api::find(key); }
tev_tbl_ret_t tev_tbl_lport_rx_stats_table_clear(void) { return table_clear(); }

