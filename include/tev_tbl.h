#pragma once

// The table API: six functions for each of the 35 tables that have an engine.
//
// Written by halden-emit from p4gen/halden/pipeline; do not edit. To make it again:
//     cmake --build build/release --target halden-emit && build/release/halden-emit .

// tev_tbl_<table>_create       adds an entry                                    spec
// tev_tbl_<table>_update       replaces the data of an entry that is there      spec
// tev_tbl_<table>_delete       takes an entry out                               key
// tev_tbl_<table>_read         fills the action id and the data of `info`       key, info
// tev_tbl_<table>_find         tells whether an entry is there                  key
// tev_tbl_<table>_table_clear  is not implemented and changes nothing
//
//     tev_tbl_lif_mapping_spec_t spec = {.action_id = LIF_MAPPING_LIF_MAPPING_ID, .key = {.index = 5}};
//     spec.action_u.lif_mapping.src_lport = 1234;
//     if (tev_tbl_lif_mapping_create(&spec) != TEV_TBL_RET_OK) ...
//
// Records are packed and belong to the caller; nothing is kept past a call. `info` has the shape of
// a spec: read leaves its key (and mask) as they are, and on failure all of it.
//
// Results (tev_tbl_ret.h): 2 for a null pointer or an index beyond the table, 9 when an entry cannot
// be written or removed, 15 when it cannot be read. An absent entry is 15 to read and 4 to find. Each
// failure but that 4 is sent to the host's trace function, once; success is silent.
//
// A key of a ternary table alone, without a mask, finds the entry that was made with that key.
//
// No function allocates or locks; calls run in parallel as far as the engines allow. The host has
// published its state (sdk/impl_state.h) before the first call.

#include "p4pd_records.h"
#include "tev_tbl_ret.h"

#ifdef __cplusplus
extern "C" {
#endif

#pragma GCC visibility push(default)

/* --- flow (2) ---
 * Flow table: a packet's full flow key to its flow_info entry.
 * exact match with a wide key, one HBM row an entry.
 * The engine owns the hint chain and the valid bit: a spec's more_hashes and entry_valid are not
 * read, and values wider than their field are cut.
 */

typedef flow_swkey_t tev_tbl_flow_key_t;

typedef struct HALDEN_PACKED tev_tbl_flow_spec_ {
    uint8_t action_id; /* 0 to 0 */
    tev_tbl_flow_key_t key;
    union {
        flow_flow_hash_t flow_hash;
    } action_u;
} tev_tbl_flow_spec_t;
typedef tev_tbl_flow_spec_t tev_tbl_flow_info_t;

tev_tbl_ret_t tev_tbl_flow_create(const tev_tbl_flow_spec_t *spec);
tev_tbl_ret_t tev_tbl_flow_read(const tev_tbl_flow_key_t *key, tev_tbl_flow_info_t *info);
tev_tbl_ret_t tev_tbl_flow_update(const tev_tbl_flow_spec_t *spec);
tev_tbl_ret_t tev_tbl_flow_delete(const tev_tbl_flow_key_t *key);
tev_tbl_ret_t tev_tbl_flow_find(const tev_tbl_flow_key_t *key);
tev_tbl_ret_t tev_tbl_flow_table_clear(void);

/* --- vlan_mapping (3) ---
 * VLAN on a layer-2 segment: the VRF and the segment it maps to.
 * exact match, one SRAM row an entry.
 */

typedef vlan_mapping_swkey_t tev_tbl_vlan_mapping_key_t;

typedef struct HALDEN_PACKED tev_tbl_vlan_mapping_spec_ {
    uint8_t action_id; /* 0 to 0 */
    tev_tbl_vlan_mapping_key_t key;
    union {
        vlan_mapping_vlan_mapping_t vlan_mapping;
    } action_u;
} tev_tbl_vlan_mapping_spec_t;
typedef tev_tbl_vlan_mapping_spec_t tev_tbl_vlan_mapping_info_t;

tev_tbl_ret_t tev_tbl_vlan_mapping_create(const tev_tbl_vlan_mapping_spec_t *spec);
tev_tbl_ret_t tev_tbl_vlan_mapping_read(const tev_tbl_vlan_mapping_key_t *key, tev_tbl_vlan_mapping_info_t *info);
tev_tbl_ret_t tev_tbl_vlan_mapping_update(const tev_tbl_vlan_mapping_spec_t *spec);
tev_tbl_ret_t tev_tbl_vlan_mapping_delete(const tev_tbl_vlan_mapping_key_t *key);
tev_tbl_ret_t tev_tbl_vlan_mapping_find(const tev_tbl_vlan_mapping_key_t *key);
tev_tbl_ret_t tev_tbl_vlan_mapping_table_clear(void);

/* --- tunnel_terminate_sa_v4 (4) ---
 * Remote IPv4 tunnel endpoint: the outer flow id of its packets.
 * exact match, one SRAM row an entry.
 */

typedef tunnel_terminate_sa_v4_swkey_t tev_tbl_tunnel_terminate_sa_v4_key_t;

typedef struct HALDEN_PACKED tev_tbl_tunnel_terminate_sa_v4_spec_ {
    uint8_t action_id; /* 0 to 0 */
    tev_tbl_tunnel_terminate_sa_v4_key_t key;
    union {
        tunnel_terminate_sa_v4_tunnel_terminate_sa_a_t tunnel_terminate_sa_a;
    } action_u;
} tev_tbl_tunnel_terminate_sa_v4_spec_t;
typedef tev_tbl_tunnel_terminate_sa_v4_spec_t tev_tbl_tunnel_terminate_sa_v4_info_t;

tev_tbl_ret_t tev_tbl_tunnel_terminate_sa_v4_create(const tev_tbl_tunnel_terminate_sa_v4_spec_t *spec);
tev_tbl_ret_t tev_tbl_tunnel_terminate_sa_v4_read(const tev_tbl_tunnel_terminate_sa_v4_key_t *key, tev_tbl_tunnel_terminate_sa_v4_info_t *info);
tev_tbl_ret_t tev_tbl_tunnel_terminate_sa_v4_update(const tev_tbl_tunnel_terminate_sa_v4_spec_t *spec);
tev_tbl_ret_t tev_tbl_tunnel_terminate_sa_v4_delete(const tev_tbl_tunnel_terminate_sa_v4_key_t *key);
tev_tbl_ret_t tev_tbl_tunnel_terminate_sa_v4_find(const tev_tbl_tunnel_terminate_sa_v4_key_t *key);
tev_tbl_ret_t tev_tbl_tunnel_terminate_sa_v4_table_clear(void);

/* --- tunnel_terminate_sa_v6 (5) ---
 * Remote IPv6 tunnel endpoint: the outer flow id of its packets.
 * exact match, one SRAM row an entry.
 */

typedef tunnel_terminate_sa_v6_swkey_t tev_tbl_tunnel_terminate_sa_v6_key_t;

typedef struct HALDEN_PACKED tev_tbl_tunnel_terminate_sa_v6_spec_ {
    uint8_t action_id; /* 0 to 0 */
    tev_tbl_tunnel_terminate_sa_v6_key_t key;
    union {
        tunnel_terminate_sa_v6_tunnel_terminate_sa_a_t tunnel_terminate_sa_a;
    } action_u;
} tev_tbl_tunnel_terminate_sa_v6_spec_t;
typedef tev_tbl_tunnel_terminate_sa_v6_spec_t tev_tbl_tunnel_terminate_sa_v6_info_t;

tev_tbl_ret_t tev_tbl_tunnel_terminate_sa_v6_create(const tev_tbl_tunnel_terminate_sa_v6_spec_t *spec);
tev_tbl_ret_t tev_tbl_tunnel_terminate_sa_v6_read(const tev_tbl_tunnel_terminate_sa_v6_key_t *key, tev_tbl_tunnel_terminate_sa_v6_info_t *info);
tev_tbl_ret_t tev_tbl_tunnel_terminate_sa_v6_update(const tev_tbl_tunnel_terminate_sa_v6_spec_t *spec);
tev_tbl_ret_t tev_tbl_tunnel_terminate_sa_v6_delete(const tev_tbl_tunnel_terminate_sa_v6_key_t *key);
tev_tbl_ret_t tev_tbl_tunnel_terminate_sa_v6_find(const tev_tbl_tunnel_terminate_sa_v6_key_t *key);
tev_tbl_ret_t tev_tbl_tunnel_terminate_sa_v6_table_clear(void);

/* --- registered_mac (6) ---
 * Registered destination MAC in a VRF: the port and queue that receive it.
 * exact match, one SRAM row an entry.
 */

typedef registered_mac_swkey_t tev_tbl_registered_mac_key_t;

typedef struct HALDEN_PACKED tev_tbl_registered_mac_spec_ {
    uint8_t action_id; /* 0 to 0 */
    tev_tbl_registered_mac_key_t key;
    union {
        registered_mac_registered_mac_t registered_mac;
    } action_u;
} tev_tbl_registered_mac_spec_t;
typedef tev_tbl_registered_mac_spec_t tev_tbl_registered_mac_info_t;

tev_tbl_ret_t tev_tbl_registered_mac_create(const tev_tbl_registered_mac_spec_t *spec);
tev_tbl_ret_t tev_tbl_registered_mac_read(const tev_tbl_registered_mac_key_t *key, tev_tbl_registered_mac_info_t *info);
tev_tbl_ret_t tev_tbl_registered_mac_update(const tev_tbl_registered_mac_spec_t *spec);
tev_tbl_ret_t tev_tbl_registered_mac_delete(const tev_tbl_registered_mac_key_t *key);
tev_tbl_ret_t tev_tbl_registered_mac_find(const tev_tbl_registered_mac_key_t *key);
tev_tbl_ret_t tev_tbl_registered_mac_table_clear(void);

/* --- tunnel_terminate_v4 (8) ---
 * Outer headers of an IPv4 tunnel that ends here: the local tunnel endpoint.
 * ternary match, data in SRAM at the same row.
 */

typedef tunnel_terminate_v4_swkey_t tev_tbl_tunnel_terminate_v4_key_t;

typedef struct HALDEN_PACKED tev_tbl_tunnel_terminate_v4_spec_ {
    uint8_t action_id; /* 0 to 0 */
    tev_tbl_tunnel_terminate_v4_key_t key;
    uint8_t has_mask; /* 0: every key bit is matched, `mask` is not read */
    tunnel_terminate_v4_swkey_mask_t mask;
    union {
        tunnel_terminate_v4_tunnel_terminate_a_t tunnel_terminate_a;
    } action_u;
} tev_tbl_tunnel_terminate_v4_spec_t;
typedef tev_tbl_tunnel_terminate_v4_spec_t tev_tbl_tunnel_terminate_v4_info_t;

tev_tbl_ret_t tev_tbl_tunnel_terminate_v4_create(const tev_tbl_tunnel_terminate_v4_spec_t *spec);
tev_tbl_ret_t tev_tbl_tunnel_terminate_v4_read(const tev_tbl_tunnel_terminate_v4_key_t *key, tev_tbl_tunnel_terminate_v4_info_t *info);
tev_tbl_ret_t tev_tbl_tunnel_terminate_v4_update(const tev_tbl_tunnel_terminate_v4_spec_t *spec);
tev_tbl_ret_t tev_tbl_tunnel_terminate_v4_delete(const tev_tbl_tunnel_terminate_v4_key_t *key);
tev_tbl_ret_t tev_tbl_tunnel_terminate_v4_find(const tev_tbl_tunnel_terminate_v4_key_t *key);
tev_tbl_ret_t tev_tbl_tunnel_terminate_v4_table_clear(void);

/* --- tunnel_terminate_v6 (9) ---
 * Outer headers of an IPv6 tunnel that ends here: the local tunnel endpoint.
 * ternary match, data in SRAM at the same row.
 */

typedef tunnel_terminate_v6_swkey_t tev_tbl_tunnel_terminate_v6_key_t;

typedef struct HALDEN_PACKED tev_tbl_tunnel_terminate_v6_spec_ {
    uint8_t action_id; /* 0 to 0 */
    tev_tbl_tunnel_terminate_v6_key_t key;
    uint8_t has_mask; /* 0: every key bit is matched, `mask` is not read */
    tunnel_terminate_v6_swkey_mask_t mask;
    union {
        tunnel_terminate_v6_tunnel_terminate_a_t tunnel_terminate_a;
    } action_u;
} tev_tbl_tunnel_terminate_v6_spec_t;
typedef tev_tbl_tunnel_terminate_v6_spec_t tev_tbl_tunnel_terminate_v6_info_t;

tev_tbl_ret_t tev_tbl_tunnel_terminate_v6_create(const tev_tbl_tunnel_terminate_v6_spec_t *spec);
tev_tbl_ret_t tev_tbl_tunnel_terminate_v6_read(const tev_tbl_tunnel_terminate_v6_key_t *key, tev_tbl_tunnel_terminate_v6_info_t *info);
tev_tbl_ret_t tev_tbl_tunnel_terminate_v6_update(const tev_tbl_tunnel_terminate_v6_spec_t *spec);
tev_tbl_ret_t tev_tbl_tunnel_terminate_v6_delete(const tev_tbl_tunnel_terminate_v6_key_t *key);
tev_tbl_ret_t tev_tbl_tunnel_terminate_v6_find(const tev_tbl_tunnel_terminate_v6_key_t *key);
tev_tbl_ret_t tev_tbl_tunnel_terminate_v6_table_clear(void);

/* --- flow_key_native (12) ---
 * How the flow key of a packet without a terminated tunnel is built.
 * ternary match, data in SRAM at the same row.
 */

typedef flow_key_native_swkey_t tev_tbl_flow_key_native_key_t;

typedef struct HALDEN_PACKED tev_tbl_flow_key_native_spec_ {
    uint8_t action_id; /* 0 to 3 */
    tev_tbl_flow_key_native_key_t key;
    uint8_t has_mask; /* 0: every key bit is matched, `mask` is not read */
    flow_key_native_swkey_mask_t mask;
    union {
        flow_key_native_native_ipv4_packet_t native_ipv4_packet;
        flow_key_native_native_ipv6_packet_t native_ipv6_packet;
    } action_u;
} tev_tbl_flow_key_native_spec_t;
typedef tev_tbl_flow_key_native_spec_t tev_tbl_flow_key_native_info_t;

tev_tbl_ret_t tev_tbl_flow_key_native_create(const tev_tbl_flow_key_native_spec_t *spec);
tev_tbl_ret_t tev_tbl_flow_key_native_read(const tev_tbl_flow_key_native_key_t *key, tev_tbl_flow_key_native_info_t *info);
tev_tbl_ret_t tev_tbl_flow_key_native_update(const tev_tbl_flow_key_native_spec_t *spec);
tev_tbl_ret_t tev_tbl_flow_key_native_delete(const tev_tbl_flow_key_native_key_t *key);
tev_tbl_ret_t tev_tbl_flow_key_native_find(const tev_tbl_flow_key_native_key_t *key);
tev_tbl_ret_t tev_tbl_flow_key_native_table_clear(void);

/* --- flow_key_tunneled (13) ---
 * How the flow key of a packet from a terminated tunnel is built.
 * ternary match, data in SRAM at the same row.
 */

typedef flow_key_tunneled_swkey_t tev_tbl_flow_key_tunneled_key_t;

typedef struct HALDEN_PACKED tev_tbl_flow_key_tunneled_spec_ {
    uint8_t action_id; /* 0 to 3 */
    tev_tbl_flow_key_tunneled_key_t key;
    uint8_t has_mask; /* 0: every key bit is matched, `mask` is not read */
    flow_key_tunneled_swkey_mask_t mask;
    union {
        uint8_t unused; /* no action carries data */
    } action_u;
} tev_tbl_flow_key_tunneled_spec_t;
typedef tev_tbl_flow_key_tunneled_spec_t tev_tbl_flow_key_tunneled_info_t;

tev_tbl_ret_t tev_tbl_flow_key_tunneled_create(const tev_tbl_flow_key_tunneled_spec_t *spec);
tev_tbl_ret_t tev_tbl_flow_key_tunneled_read(const tev_tbl_flow_key_tunneled_key_t *key, tev_tbl_flow_key_tunneled_info_t *info);
tev_tbl_ret_t tev_tbl_flow_key_tunneled_update(const tev_tbl_flow_key_tunneled_spec_t *spec);
tev_tbl_ret_t tev_tbl_flow_key_tunneled_delete(const tev_tbl_flow_key_tunneled_key_t *key);
tev_tbl_ret_t tev_tbl_flow_key_tunneled_find(const tev_tbl_flow_key_tunneled_key_t *key);
tev_tbl_ret_t tev_tbl_flow_key_tunneled_table_clear(void);

/* --- checksum (15) ---
 * Headers present in an outgoing packet: which checksums are updated.
 * ternary match, data in SRAM at the same row.
 */

typedef checksum_swkey_t tev_tbl_checksum_key_t;

typedef struct HALDEN_PACKED tev_tbl_checksum_spec_ {
    uint8_t action_id; /* 0 to 21 */
    tev_tbl_checksum_key_t key;
    uint8_t has_mask; /* 0: every key bit is matched, `mask` is not read */
    checksum_swkey_mask_t mask;
    union {
        uint8_t unused; /* no action carries data */
    } action_u;
} tev_tbl_checksum_spec_t;
typedef tev_tbl_checksum_spec_t tev_tbl_checksum_info_t;

tev_tbl_ret_t tev_tbl_checksum_create(const tev_tbl_checksum_spec_t *spec);
tev_tbl_ret_t tev_tbl_checksum_read(const tev_tbl_checksum_key_t *key, tev_tbl_checksum_info_t *info);
tev_tbl_ret_t tev_tbl_checksum_update(const tev_tbl_checksum_spec_t *spec);
tev_tbl_ret_t tev_tbl_checksum_delete(const tev_tbl_checksum_key_t *key);
tev_tbl_ret_t tev_tbl_checksum_find(const tev_tbl_checksum_key_t *key);
tev_tbl_ret_t tev_tbl_checksum_table_clear(void);

/* --- lif_mapping (16) ---
 * Logical interface: its port, VRF and layer-2 segment.
 * row index, SRAM, rows 0 to 1023.
 */

typedef struct HALDEN_PACKED tev_tbl_lif_mapping_key_ {
    uint16_t index;           /* 11 bits are looked at */
} tev_tbl_lif_mapping_key_t;

typedef struct HALDEN_PACKED tev_tbl_lif_mapping_spec_ {
    uint8_t action_id; /* 0 to 0 */
    tev_tbl_lif_mapping_key_t key;
    union {
        lif_mapping_lif_mapping_t lif_mapping;
    } action_u;
} tev_tbl_lif_mapping_spec_t;
typedef tev_tbl_lif_mapping_spec_t tev_tbl_lif_mapping_info_t;

tev_tbl_ret_t tev_tbl_lif_mapping_create(const tev_tbl_lif_mapping_spec_t *spec);
tev_tbl_ret_t tev_tbl_lif_mapping_read(const tev_tbl_lif_mapping_key_t *key, tev_tbl_lif_mapping_info_t *info);
tev_tbl_ret_t tev_tbl_lif_mapping_update(const tev_tbl_lif_mapping_spec_t *spec);
tev_tbl_ret_t tev_tbl_lif_mapping_delete(const tev_tbl_lif_mapping_key_t *key);
tev_tbl_ret_t tev_tbl_lif_mapping_find(const tev_tbl_lif_mapping_key_t *key);
tev_tbl_ret_t tev_tbl_lif_mapping_table_clear(void);

/* --- lif_vela_mapping (17) ---
 * Logical interface in flow mode: port, tag and flow key type.
 * row index, SRAM, rows 0 to 1023.
 */

typedef struct HALDEN_PACKED tev_tbl_lif_vela_mapping_key_ {
    uint16_t index;           /* 11 bits are looked at */
} tev_tbl_lif_vela_mapping_key_t;

typedef struct HALDEN_PACKED tev_tbl_lif_vela_mapping_spec_ {
    uint8_t action_id; /* 0 to 0 */
    tev_tbl_lif_vela_mapping_key_t key;
    union {
        lif_vela_mapping_lif_vela_mapping_t lif_vela_mapping;
    } action_u;
} tev_tbl_lif_vela_mapping_spec_t;
typedef tev_tbl_lif_vela_mapping_spec_t tev_tbl_lif_vela_mapping_info_t;

tev_tbl_ret_t tev_tbl_lif_vela_mapping_create(const tev_tbl_lif_vela_mapping_spec_t *spec);
tev_tbl_ret_t tev_tbl_lif_vela_mapping_read(const tev_tbl_lif_vela_mapping_key_t *key, tev_tbl_lif_vela_mapping_info_t *info);
tev_tbl_ret_t tev_tbl_lif_vela_mapping_update(const tev_tbl_lif_vela_mapping_spec_t *spec);
tev_tbl_ret_t tev_tbl_lif_vela_mapping_delete(const tev_tbl_lif_vela_mapping_key_t *key);
tev_tbl_ret_t tev_tbl_lif_vela_mapping_find(const tev_tbl_lif_vela_mapping_key_t *key);
tev_tbl_ret_t tev_tbl_lif_vela_mapping_table_clear(void);

/* --- vlan_vela_mapping (18) ---
 * VLAN in flow mode: the interfaces it maps to on each uplink.
 * row index, SRAM, rows 0 to 4095.
 */

typedef struct HALDEN_PACKED tev_tbl_vlan_vela_mapping_key_ {
    uint16_t index;           /* 12 bits are looked at */
} tev_tbl_vlan_vela_mapping_key_t;

typedef struct HALDEN_PACKED tev_tbl_vlan_vela_mapping_spec_ {
    uint8_t action_id; /* 0 to 0 */
    tev_tbl_vlan_vela_mapping_key_t key;
    union {
        vlan_vela_mapping_vlan_vela_mapping_t vlan_vela_mapping;
    } action_u;
} tev_tbl_vlan_vela_mapping_spec_t;
typedef tev_tbl_vlan_vela_mapping_spec_t tev_tbl_vlan_vela_mapping_info_t;

tev_tbl_ret_t tev_tbl_vlan_vela_mapping_create(const tev_tbl_vlan_vela_mapping_spec_t *spec);
tev_tbl_ret_t tev_tbl_vlan_vela_mapping_read(const tev_tbl_vlan_vela_mapping_key_t *key, tev_tbl_vlan_vela_mapping_info_t *info);
tev_tbl_ret_t tev_tbl_vlan_vela_mapping_update(const tev_tbl_vlan_vela_mapping_spec_t *spec);
tev_tbl_ret_t tev_tbl_vlan_vela_mapping_delete(const tev_tbl_vlan_vela_mapping_key_t *key);
tev_tbl_ret_t tev_tbl_vlan_vela_mapping_find(const tev_tbl_vlan_vela_mapping_key_t *key);
tev_tbl_ret_t tev_tbl_vlan_vela_mapping_table_clear(void);

/* --- vlan_vela_ctag_mapping (19) ---
 * Customer VLAN in flow mode: the interfaces it maps to on each uplink.
 * row index, SRAM, rows 0 to 4095.
 */

typedef struct HALDEN_PACKED tev_tbl_vlan_vela_ctag_mapping_key_ {
    uint16_t index;           /* 12 bits are looked at */
} tev_tbl_vlan_vela_ctag_mapping_key_t;

typedef struct HALDEN_PACKED tev_tbl_vlan_vela_ctag_mapping_spec_ {
    uint8_t action_id; /* 0 to 0 */
    tev_tbl_vlan_vela_ctag_mapping_key_t key;
    union {
        vlan_vela_ctag_mapping_vlan_vela_ctag_mapping_t vlan_vela_ctag_mapping;
    } action_u;
} tev_tbl_vlan_vela_ctag_mapping_spec_t;
typedef tev_tbl_vlan_vela_ctag_mapping_spec_t tev_tbl_vlan_vela_ctag_mapping_info_t;

tev_tbl_ret_t tev_tbl_vlan_vela_ctag_mapping_create(const tev_tbl_vlan_vela_ctag_mapping_spec_t *spec);
tev_tbl_ret_t tev_tbl_vlan_vela_ctag_mapping_read(const tev_tbl_vlan_vela_ctag_mapping_key_t *key, tev_tbl_vlan_vela_ctag_mapping_info_t *info);
tev_tbl_ret_t tev_tbl_vlan_vela_ctag_mapping_update(const tev_tbl_vlan_vela_ctag_mapping_spec_t *spec);
tev_tbl_ret_t tev_tbl_vlan_vela_ctag_mapping_delete(const tev_tbl_vlan_vela_ctag_mapping_key_t *key);
tev_tbl_ret_t tev_tbl_vlan_vela_ctag_mapping_find(const tev_tbl_vlan_vela_ctag_mapping_key_t *key);
tev_tbl_ret_t tev_tbl_vlan_vela_ctag_mapping_table_clear(void);

/* --- validate_packet_vela (20) ---
 * Header checks in flow mode: the logical port of each physical port.
 * row index, SRAM, rows 0 to 0.
 */

typedef struct HALDEN_PACKED tev_tbl_validate_packet_vela_key_ {
    uint8_t index;            /* 3 bits are looked at */
} tev_tbl_validate_packet_vela_key_t;

typedef struct HALDEN_PACKED tev_tbl_validate_packet_vela_spec_ {
    uint8_t action_id; /* 0 to 0 */
    tev_tbl_validate_packet_vela_key_t key;
    union {
        validate_packet_vela_validate_headers_vela_t validate_headers_vela;
    } action_u;
} tev_tbl_validate_packet_vela_spec_t;
typedef tev_tbl_validate_packet_vela_spec_t tev_tbl_validate_packet_vela_info_t;

tev_tbl_ret_t tev_tbl_validate_packet_vela_create(const tev_tbl_validate_packet_vela_spec_t *spec);
tev_tbl_ret_t tev_tbl_validate_packet_vela_read(const tev_tbl_validate_packet_vela_key_t *key, tev_tbl_validate_packet_vela_info_t *info);
tev_tbl_ret_t tev_tbl_validate_packet_vela_update(const tev_tbl_validate_packet_vela_spec_t *spec);
tev_tbl_ret_t tev_tbl_validate_packet_vela_delete(const tev_tbl_validate_packet_vela_key_t *key);
tev_tbl_ret_t tev_tbl_validate_packet_vela_find(const tev_tbl_validate_packet_vela_key_t *key);
tev_tbl_ret_t tev_tbl_validate_packet_vela_table_clear(void);

/* --- flow_info (21) ---
 * What happens to a flow's packets: destination, rewrites, tracking, export.
 * row index, HBM, rows 0 to 2097151.
 */

typedef struct HALDEN_PACKED tev_tbl_flow_info_key_ {
    uint32_t index;           /* 24 bits are looked at */
} tev_tbl_flow_info_key_t;

typedef struct HALDEN_PACKED tev_tbl_flow_info_spec_ {
    uint8_t action_id; /* 0 to 0 */
    tev_tbl_flow_info_key_t key;
    union {
        flow_info_flow_info_a_t flow_info_a;
    } action_u;
} tev_tbl_flow_info_spec_t;
typedef tev_tbl_flow_info_spec_t tev_tbl_flow_info_info_t;

tev_tbl_ret_t tev_tbl_flow_info_create(const tev_tbl_flow_info_spec_t *spec);
tev_tbl_ret_t tev_tbl_flow_info_read(const tev_tbl_flow_info_key_t *key, tev_tbl_flow_info_info_t *info);
tev_tbl_ret_t tev_tbl_flow_info_update(const tev_tbl_flow_info_spec_t *spec);
tev_tbl_ret_t tev_tbl_flow_info_delete(const tev_tbl_flow_info_key_t *key);
tev_tbl_ret_t tev_tbl_flow_info_find(const tev_tbl_flow_info_key_t *key);
tev_tbl_ret_t tev_tbl_flow_info_table_clear(void);

/* --- conntrack_ingress (22) ---
 * TCP connection tracking of arriving packets.
 * row index, HBM, rows 0 to 2097151.
 */

typedef struct HALDEN_PACKED tev_tbl_conntrack_ingress_key_ {
    uint32_t index;           /* 22 bits are looked at */
} tev_tbl_conntrack_ingress_key_t;

typedef struct HALDEN_PACKED tev_tbl_conntrack_ingress_spec_ {
    uint8_t action_id; /* 0 to 1 */
    tev_tbl_conntrack_ingress_key_t key;
    union {
        conntrack_ingress_conntrack_ingress_full_t conntrack_ingress_full;
        conntrack_ingress_conntrack_ingress_sloppy_t conntrack_ingress_sloppy;
    } action_u;
} tev_tbl_conntrack_ingress_spec_t;
typedef tev_tbl_conntrack_ingress_spec_t tev_tbl_conntrack_ingress_info_t;

tev_tbl_ret_t tev_tbl_conntrack_ingress_create(const tev_tbl_conntrack_ingress_spec_t *spec);
tev_tbl_ret_t tev_tbl_conntrack_ingress_read(const tev_tbl_conntrack_ingress_key_t *key, tev_tbl_conntrack_ingress_info_t *info);
tev_tbl_ret_t tev_tbl_conntrack_ingress_update(const tev_tbl_conntrack_ingress_spec_t *spec);
tev_tbl_ret_t tev_tbl_conntrack_ingress_delete(const tev_tbl_conntrack_ingress_key_t *key);
tev_tbl_ret_t tev_tbl_conntrack_ingress_find(const tev_tbl_conntrack_ingress_key_t *key);
tev_tbl_ret_t tev_tbl_conntrack_ingress_table_clear(void);

/* --- conntrack_egress (23) ---
 * TCP connection tracking of leaving packets.
 * row index, HBM, rows 0 to 2097151.
 */

typedef struct HALDEN_PACKED tev_tbl_conntrack_egress_key_ {
    uint32_t index;           /* 22 bits are looked at */
} tev_tbl_conntrack_egress_key_t;

typedef struct HALDEN_PACKED tev_tbl_conntrack_egress_spec_ {
    uint8_t action_id; /* 0 to 1 */
    tev_tbl_conntrack_egress_key_t key;
    union {
        conntrack_egress_conntrack_egress_full_t conntrack_egress_full;
        conntrack_egress_conntrack_egress_sloppy_t conntrack_egress_sloppy;
    } action_u;
} tev_tbl_conntrack_egress_spec_t;
typedef tev_tbl_conntrack_egress_spec_t tev_tbl_conntrack_egress_info_t;

tev_tbl_ret_t tev_tbl_conntrack_egress_create(const tev_tbl_conntrack_egress_spec_t *spec);
tev_tbl_ret_t tev_tbl_conntrack_egress_read(const tev_tbl_conntrack_egress_key_t *key, tev_tbl_conntrack_egress_info_t *info);
tev_tbl_ret_t tev_tbl_conntrack_egress_update(const tev_tbl_conntrack_egress_spec_t *spec);
tev_tbl_ret_t tev_tbl_conntrack_egress_delete(const tev_tbl_conntrack_egress_key_t *key);
tev_tbl_ret_t tev_tbl_conntrack_egress_find(const tev_tbl_conntrack_egress_key_t *key);
tev_tbl_ret_t tev_tbl_conntrack_egress_table_clear(void);

/* --- l2seg (24) ---
 * Layer-2 segment: who receives its unknown and broadcast traffic.
 * row index, SRAM, rows 0 to 4095.
 */

typedef struct HALDEN_PACKED tev_tbl_l2seg_key_ {
    uint16_t index;           /* 12 bits are looked at */
} tev_tbl_l2seg_key_t;

typedef struct HALDEN_PACKED tev_tbl_l2seg_spec_ {
    uint8_t action_id; /* 0 to 0 */
    tev_tbl_l2seg_key_t key;
    union {
        l2seg_l2seg_t l2seg;
    } action_u;
} tev_tbl_l2seg_spec_t;
typedef tev_tbl_l2seg_spec_t tev_tbl_l2seg_info_t;

tev_tbl_ret_t tev_tbl_l2seg_create(const tev_tbl_l2seg_spec_t *spec);
tev_tbl_ret_t tev_tbl_l2seg_read(const tev_tbl_l2seg_key_t *key, tev_tbl_l2seg_info_t *info);
tev_tbl_ret_t tev_tbl_l2seg_update(const tev_tbl_l2seg_spec_t *spec);
tev_tbl_ret_t tev_tbl_l2seg_delete(const tev_tbl_l2seg_key_t *key);
tev_tbl_ret_t tev_tbl_l2seg_find(const tev_tbl_l2seg_key_t *key);
tev_tbl_ret_t tev_tbl_l2seg_table_clear(void);

/* --- p4i_stats (25) ---
 * Counters of the ingress pipeline.
 * row index, SRAM, rows 0 to 0.
 */

typedef struct HALDEN_PACKED tev_tbl_p4i_stats_key_ {
    uint16_t index;           /* 12 bits are looked at */
} tev_tbl_p4i_stats_key_t;

typedef struct HALDEN_PACKED tev_tbl_p4i_stats_spec_ {
    uint8_t action_id; /* 0 to 0 */
    tev_tbl_p4i_stats_key_t key;
    union {
        p4i_stats_p4i_stats_t p4i_stats;
    } action_u;
} tev_tbl_p4i_stats_spec_t;
typedef tev_tbl_p4i_stats_spec_t tev_tbl_p4i_stats_info_t;

tev_tbl_ret_t tev_tbl_p4i_stats_create(const tev_tbl_p4i_stats_spec_t *spec);
tev_tbl_ret_t tev_tbl_p4i_stats_read(const tev_tbl_p4i_stats_key_t *key, tev_tbl_p4i_stats_info_t *info);
tev_tbl_ret_t tev_tbl_p4i_stats_update(const tev_tbl_p4i_stats_spec_t *spec);
tev_tbl_ret_t tev_tbl_p4i_stats_delete(const tev_tbl_p4i_stats_key_t *key);
tev_tbl_ret_t tev_tbl_p4i_stats_find(const tev_tbl_p4i_stats_key_t *key);
tev_tbl_ret_t tev_tbl_p4i_stats_table_clear(void);

/* --- lif_tx_stats (26) ---
 * Counters of packets sent to a logical interface.
 * row index, HBM, rows 0 to 16383.
 */

typedef struct HALDEN_PACKED tev_tbl_lif_tx_stats_key_ {
    uint16_t index;           /* 16 bits are looked at */
} tev_tbl_lif_tx_stats_key_t;

typedef struct HALDEN_PACKED tev_tbl_lif_tx_stats_spec_ {
    uint8_t action_id; /* 0 to 0 */
    tev_tbl_lif_tx_stats_key_t key;
    union {
        lif_tx_stats_lif_tx_stats_t lif_tx_stats;
    } action_u;
} tev_tbl_lif_tx_stats_spec_t;
typedef tev_tbl_lif_tx_stats_spec_t tev_tbl_lif_tx_stats_info_t;

tev_tbl_ret_t tev_tbl_lif_tx_stats_create(const tev_tbl_lif_tx_stats_spec_t *spec);
tev_tbl_ret_t tev_tbl_lif_tx_stats_read(const tev_tbl_lif_tx_stats_key_t *key, tev_tbl_lif_tx_stats_info_t *info);
tev_tbl_ret_t tev_tbl_lif_tx_stats_update(const tev_tbl_lif_tx_stats_spec_t *spec);
tev_tbl_ret_t tev_tbl_lif_tx_stats_delete(const tev_tbl_lif_tx_stats_key_t *key);
tev_tbl_ret_t tev_tbl_lif_tx_stats_find(const tev_tbl_lif_tx_stats_key_t *key);
tev_tbl_ret_t tev_tbl_lif_tx_stats_table_clear(void);

/* --- lport_tx_stats (27) ---
 * Counters of packets sent to a logical port.
 * row index, HBM, rows 0 to 16383.
 */

typedef struct HALDEN_PACKED tev_tbl_lport_tx_stats_key_ {
    uint16_t index;           /* 16 bits are looked at */
} tev_tbl_lport_tx_stats_key_t;

typedef struct HALDEN_PACKED tev_tbl_lport_tx_stats_spec_ {
    uint8_t action_id; /* 0 to 0 */
    tev_tbl_lport_tx_stats_key_t key;
    union {
        lport_tx_stats_lport_tx_stats_t lport_tx_stats;
    } action_u;
} tev_tbl_lport_tx_stats_spec_t;
typedef tev_tbl_lport_tx_stats_spec_t tev_tbl_lport_tx_stats_info_t;

tev_tbl_ret_t tev_tbl_lport_tx_stats_create(const tev_tbl_lport_tx_stats_spec_t *spec);
tev_tbl_ret_t tev_tbl_lport_tx_stats_read(const tev_tbl_lport_tx_stats_key_t *key, tev_tbl_lport_tx_stats_info_t *info);
tev_tbl_ret_t tev_tbl_lport_tx_stats_update(const tev_tbl_lport_tx_stats_spec_t *spec);
tev_tbl_ret_t tev_tbl_lport_tx_stats_delete(const tev_tbl_lport_tx_stats_key_t *key);
tev_tbl_ret_t tev_tbl_lport_tx_stats_find(const tev_tbl_lport_tx_stats_key_t *key);
tev_tbl_ret_t tev_tbl_lport_tx_stats_table_clear(void);

/* --- ct_ingress_stats (28) ---
 * Connection tracking verdicts of arriving packets.
 * row index, HBM, rows 0 to 4095.
 */

typedef struct HALDEN_PACKED tev_tbl_ct_ingress_stats_key_ {
    uint16_t index;           /* 12 bits are looked at */
} tev_tbl_ct_ingress_stats_key_t;

typedef struct HALDEN_PACKED tev_tbl_ct_ingress_stats_spec_ {
    uint8_t action_id; /* 0 to 0 */
    tev_tbl_ct_ingress_stats_key_t key;
    union {
        ct_ingress_stats_ct_ingress_stats_t ct_ingress_stats;
    } action_u;
} tev_tbl_ct_ingress_stats_spec_t;
typedef tev_tbl_ct_ingress_stats_spec_t tev_tbl_ct_ingress_stats_info_t;

tev_tbl_ret_t tev_tbl_ct_ingress_stats_create(const tev_tbl_ct_ingress_stats_spec_t *spec);
tev_tbl_ret_t tev_tbl_ct_ingress_stats_read(const tev_tbl_ct_ingress_stats_key_t *key, tev_tbl_ct_ingress_stats_info_t *info);
tev_tbl_ret_t tev_tbl_ct_ingress_stats_update(const tev_tbl_ct_ingress_stats_spec_t *spec);
tev_tbl_ret_t tev_tbl_ct_ingress_stats_delete(const tev_tbl_ct_ingress_stats_key_t *key);
tev_tbl_ret_t tev_tbl_ct_ingress_stats_find(const tev_tbl_ct_ingress_stats_key_t *key);
tev_tbl_ret_t tev_tbl_ct_ingress_stats_table_clear(void);

/* --- ct_egress_stats (29) ---
 * Connection tracking verdicts of leaving packets.
 * row index, HBM, rows 0 to 4095.
 */

typedef struct HALDEN_PACKED tev_tbl_ct_egress_stats_key_ {
    uint16_t index;           /* 12 bits are looked at */
} tev_tbl_ct_egress_stats_key_t;

typedef struct HALDEN_PACKED tev_tbl_ct_egress_stats_spec_ {
    uint8_t action_id; /* 0 to 0 */
    tev_tbl_ct_egress_stats_key_t key;
    union {
        ct_egress_stats_ct_egress_stats_t ct_egress_stats;
    } action_u;
} tev_tbl_ct_egress_stats_spec_t;
typedef tev_tbl_ct_egress_stats_spec_t tev_tbl_ct_egress_stats_info_t;

tev_tbl_ret_t tev_tbl_ct_egress_stats_create(const tev_tbl_ct_egress_stats_spec_t *spec);
tev_tbl_ret_t tev_tbl_ct_egress_stats_read(const tev_tbl_ct_egress_stats_key_t *key, tev_tbl_ct_egress_stats_info_t *info);
tev_tbl_ret_t tev_tbl_ct_egress_stats_update(const tev_tbl_ct_egress_stats_spec_t *spec);
tev_tbl_ret_t tev_tbl_ct_egress_stats_delete(const tev_tbl_ct_egress_stats_key_t *key);
tev_tbl_ret_t tev_tbl_ct_egress_stats_find(const tev_tbl_ct_egress_stats_key_t *key);
tev_tbl_ret_t tev_tbl_ct_egress_stats_table_clear(void);

/* --- mirror_rewrite (30) ---
 * Mirror session: where the copies go and how they are marked.
 * row index, SRAM, rows 0 to 15.
 */

typedef struct HALDEN_PACKED tev_tbl_mirror_rewrite_key_ {
    uint8_t index_high;       /* 3 bits are looked at */
    uint8_t index_low;        /* 1 bits are looked at */
} tev_tbl_mirror_rewrite_key_t;

typedef struct HALDEN_PACKED tev_tbl_mirror_rewrite_spec_ {
    uint8_t action_id; /* 0 to 0 */
    tev_tbl_mirror_rewrite_key_t key;
    union {
        mirror_rewrite_mirror_rewrite_a_t mirror_rewrite_a;
    } action_u;
} tev_tbl_mirror_rewrite_spec_t;
typedef tev_tbl_mirror_rewrite_spec_t tev_tbl_mirror_rewrite_info_t;

tev_tbl_ret_t tev_tbl_mirror_rewrite_create(const tev_tbl_mirror_rewrite_spec_t *spec);
tev_tbl_ret_t tev_tbl_mirror_rewrite_read(const tev_tbl_mirror_rewrite_key_t *key, tev_tbl_mirror_rewrite_info_t *info);
tev_tbl_ret_t tev_tbl_mirror_rewrite_update(const tev_tbl_mirror_rewrite_spec_t *spec);
tev_tbl_ret_t tev_tbl_mirror_rewrite_delete(const tev_tbl_mirror_rewrite_key_t *key);
tev_tbl_ret_t tev_tbl_mirror_rewrite_find(const tev_tbl_mirror_rewrite_key_t *key);
tev_tbl_ret_t tev_tbl_mirror_rewrite_table_clear(void);

/* --- mirror_rewrite_l3 (31) ---
 * Layer-3 carrier of a mirror session's copies.
 * row index, HBM, rows 0 to 8191.
 */

typedef struct HALDEN_PACKED tev_tbl_mirror_rewrite_l3_key_ {
    uint8_t index_high;       /* 3 bits are looked at */
    uint16_t index_low;       /* 10 bits are looked at */
} tev_tbl_mirror_rewrite_l3_key_t;

typedef struct HALDEN_PACKED tev_tbl_mirror_rewrite_l3_spec_ {
    uint8_t action_id; /* 0 to 0 */
    tev_tbl_mirror_rewrite_l3_key_t key;
    union {
        mirror_rewrite_l3_mirror_rewrite_l3_a_t mirror_rewrite_l3_a;
    } action_u;
} tev_tbl_mirror_rewrite_l3_spec_t;
typedef tev_tbl_mirror_rewrite_l3_spec_t tev_tbl_mirror_rewrite_l3_info_t;

tev_tbl_ret_t tev_tbl_mirror_rewrite_l3_create(const tev_tbl_mirror_rewrite_l3_spec_t *spec);
tev_tbl_ret_t tev_tbl_mirror_rewrite_l3_read(const tev_tbl_mirror_rewrite_l3_key_t *key, tev_tbl_mirror_rewrite_l3_info_t *info);
tev_tbl_ret_t tev_tbl_mirror_rewrite_l3_update(const tev_tbl_mirror_rewrite_l3_spec_t *spec);
tev_tbl_ret_t tev_tbl_mirror_rewrite_l3_delete(const tev_tbl_mirror_rewrite_l3_key_t *key);
tev_tbl_ret_t tev_tbl_mirror_rewrite_l3_find(const tev_tbl_mirror_rewrite_l3_key_t *key);
tev_tbl_ret_t tev_tbl_mirror_rewrite_l3_table_clear(void);

/* --- flow_rewrite (32) ---
 * Header rewrite of a flow: VLAN, DSCP, MACs, encapsulation.
 * row index, HBM, rows 0 to 2097151.
 */

typedef struct HALDEN_PACKED tev_tbl_flow_rewrite_key_ {
    uint32_t index;           /* 24 bits are looked at */
} tev_tbl_flow_rewrite_key_t;

typedef struct HALDEN_PACKED tev_tbl_flow_rewrite_spec_ {
    uint8_t action_id; /* 0 to 0 */
    tev_tbl_flow_rewrite_key_t key;
    union {
        flow_rewrite_flow_rewrite_a_t flow_rewrite_a;
    } action_u;
} tev_tbl_flow_rewrite_spec_t;
typedef tev_tbl_flow_rewrite_spec_t tev_tbl_flow_rewrite_info_t;

tev_tbl_ret_t tev_tbl_flow_rewrite_create(const tev_tbl_flow_rewrite_spec_t *spec);
tev_tbl_ret_t tev_tbl_flow_rewrite_read(const tev_tbl_flow_rewrite_key_t *key, tev_tbl_flow_rewrite_info_t *info);
tev_tbl_ret_t tev_tbl_flow_rewrite_update(const tev_tbl_flow_rewrite_spec_t *spec);
tev_tbl_ret_t tev_tbl_flow_rewrite_delete(const tev_tbl_flow_rewrite_key_t *key);
tev_tbl_ret_t tev_tbl_flow_rewrite_find(const tev_tbl_flow_rewrite_key_t *key);
tev_tbl_ret_t tev_tbl_flow_rewrite_table_clear(void);

/* --- nat_rewrite (33) ---
 * Address translation of a flow.
 * row index, HBM, rows 0 to 2097151.
 */

typedef struct HALDEN_PACKED tev_tbl_nat_rewrite_key_ {
    uint32_t index;           /* 22 bits are looked at */
} tev_tbl_nat_rewrite_key_t;

typedef struct HALDEN_PACKED tev_tbl_nat_rewrite_spec_ {
    uint8_t action_id; /* 0 to 0 */
    tev_tbl_nat_rewrite_key_t key;
    union {
        nat_rewrite_nat_rewrite_a_t nat_rewrite_a;
    } action_u;
} tev_tbl_nat_rewrite_spec_t;
typedef tev_tbl_nat_rewrite_spec_t tev_tbl_nat_rewrite_info_t;

tev_tbl_ret_t tev_tbl_nat_rewrite_create(const tev_tbl_nat_rewrite_spec_t *spec);
tev_tbl_ret_t tev_tbl_nat_rewrite_read(const tev_tbl_nat_rewrite_key_t *key, tev_tbl_nat_rewrite_info_t *info);
tev_tbl_ret_t tev_tbl_nat_rewrite_update(const tev_tbl_nat_rewrite_spec_t *spec);
tev_tbl_ret_t tev_tbl_nat_rewrite_delete(const tev_tbl_nat_rewrite_key_t *key);
tev_tbl_ret_t tev_tbl_nat_rewrite_find(const tev_tbl_nat_rewrite_key_t *key);
tev_tbl_ret_t tev_tbl_nat_rewrite_table_clear(void);

/* --- tunnel_encap (34) ---
 * Tunnel: the outer headers put in front of a packet.
 * row index, HBM, rows 0 to 8191.
 */

typedef struct HALDEN_PACKED tev_tbl_tunnel_encap_key_ {
    uint16_t index;           /* 13 bits are looked at */
} tev_tbl_tunnel_encap_key_t;

typedef struct HALDEN_PACKED tev_tbl_tunnel_encap_spec_ {
    uint8_t action_id; /* 0 to 0 */
    tev_tbl_tunnel_encap_key_t key;
    union {
        tunnel_encap_tunnel_encap_a_t tunnel_encap_a;
    } action_u;
} tev_tbl_tunnel_encap_spec_t;
typedef tev_tbl_tunnel_encap_spec_t tev_tbl_tunnel_encap_info_t;

tev_tbl_ret_t tev_tbl_tunnel_encap_create(const tev_tbl_tunnel_encap_spec_t *spec);
tev_tbl_ret_t tev_tbl_tunnel_encap_read(const tev_tbl_tunnel_encap_key_t *key, tev_tbl_tunnel_encap_info_t *info);
tev_tbl_ret_t tev_tbl_tunnel_encap_update(const tev_tbl_tunnel_encap_spec_t *spec);
tev_tbl_ret_t tev_tbl_tunnel_encap_delete(const tev_tbl_tunnel_encap_key_t *key);
tev_tbl_ret_t tev_tbl_tunnel_encap_find(const tev_tbl_tunnel_encap_key_t *key);
tev_tbl_ret_t tev_tbl_tunnel_encap_table_clear(void);

/* --- ipfix_ingress (35) ---
 * Flow export counters of arriving packets.
 * row index, HBM, rows 0 to 2097151.
 */

typedef struct HALDEN_PACKED tev_tbl_ipfix_ingress_key_ {
    uint32_t index;           /* 24 bits are looked at */
} tev_tbl_ipfix_ingress_key_t;

typedef struct HALDEN_PACKED tev_tbl_ipfix_ingress_spec_ {
    uint8_t action_id; /* 0 to 0 */
    tev_tbl_ipfix_ingress_key_t key;
    union {
        ipfix_ingress_ipfix_t ipfix;
    } action_u;
} tev_tbl_ipfix_ingress_spec_t;
typedef tev_tbl_ipfix_ingress_spec_t tev_tbl_ipfix_ingress_info_t;

tev_tbl_ret_t tev_tbl_ipfix_ingress_create(const tev_tbl_ipfix_ingress_spec_t *spec);
tev_tbl_ret_t tev_tbl_ipfix_ingress_read(const tev_tbl_ipfix_ingress_key_t *key, tev_tbl_ipfix_ingress_info_t *info);
tev_tbl_ret_t tev_tbl_ipfix_ingress_update(const tev_tbl_ipfix_ingress_spec_t *spec);
tev_tbl_ret_t tev_tbl_ipfix_ingress_delete(const tev_tbl_ipfix_ingress_key_t *key);
tev_tbl_ret_t tev_tbl_ipfix_ingress_find(const tev_tbl_ipfix_ingress_key_t *key);
tev_tbl_ret_t tev_tbl_ipfix_ingress_table_clear(void);

/* --- ipfix_egress (36) ---
 * Flow export counters of leaving packets.
 * row index, HBM, rows 0 to 2097151.
 */

typedef struct HALDEN_PACKED tev_tbl_ipfix_egress_key_ {
    uint32_t index;           /* 24 bits are looked at */
} tev_tbl_ipfix_egress_key_t;

typedef struct HALDEN_PACKED tev_tbl_ipfix_egress_spec_ {
    uint8_t action_id; /* 0 to 0 */
    tev_tbl_ipfix_egress_key_t key;
    union {
        ipfix_egress_ipfix_t ipfix;
    } action_u;
} tev_tbl_ipfix_egress_spec_t;
typedef tev_tbl_ipfix_egress_spec_t tev_tbl_ipfix_egress_info_t;

tev_tbl_ret_t tev_tbl_ipfix_egress_create(const tev_tbl_ipfix_egress_spec_t *spec);
tev_tbl_ret_t tev_tbl_ipfix_egress_read(const tev_tbl_ipfix_egress_key_t *key, tev_tbl_ipfix_egress_info_t *info);
tev_tbl_ret_t tev_tbl_ipfix_egress_update(const tev_tbl_ipfix_egress_spec_t *spec);
tev_tbl_ret_t tev_tbl_ipfix_egress_delete(const tev_tbl_ipfix_egress_key_t *key);
tev_tbl_ret_t tev_tbl_ipfix_egress_find(const tev_tbl_ipfix_egress_key_t *key);
tev_tbl_ret_t tev_tbl_ipfix_egress_table_clear(void);

/* --- output_mapping (37) ---
 * Logical output port: interface, VLAN handling, egress ports.
 * row index, SRAM, rows 0 to 1023.
 */

typedef struct HALDEN_PACKED tev_tbl_output_mapping_key_ {
    uint16_t index;           /* 11 bits are looked at */
} tev_tbl_output_mapping_key_t;

typedef struct HALDEN_PACKED tev_tbl_output_mapping_spec_ {
    uint8_t action_id; /* 0 to 1 */
    tev_tbl_output_mapping_key_t key;
    union {
        output_mapping_output_mapping_a_t output_mapping_a;
    } action_u;
} tev_tbl_output_mapping_spec_t;
typedef tev_tbl_output_mapping_spec_t tev_tbl_output_mapping_info_t;

tev_tbl_ret_t tev_tbl_output_mapping_create(const tev_tbl_output_mapping_spec_t *spec);
tev_tbl_ret_t tev_tbl_output_mapping_read(const tev_tbl_output_mapping_key_t *key, tev_tbl_output_mapping_info_t *info);
tev_tbl_ret_t tev_tbl_output_mapping_update(const tev_tbl_output_mapping_spec_t *spec);
tev_tbl_ret_t tev_tbl_output_mapping_delete(const tev_tbl_output_mapping_key_t *key);
tev_tbl_ret_t tev_tbl_output_mapping_find(const tev_tbl_output_mapping_key_t *key);
tev_tbl_ret_t tev_tbl_output_mapping_table_clear(void);

/* --- p4plus_app (38) ---
 * Receive application: how a packet is handed to its queue.
 * row index, SRAM, rows 0 to 15.
 */

typedef struct HALDEN_PACKED tev_tbl_p4plus_app_key_ {
    uint8_t index;            /* 4 bits are looked at */
} tev_tbl_p4plus_app_key_t;

typedef struct HALDEN_PACKED tev_tbl_p4plus_app_spec_ {
    uint8_t action_id; /* 0 to 2 */
    tev_tbl_p4plus_app_key_t key;
    union {
        uint8_t unused; /* no action carries data */
    } action_u;
} tev_tbl_p4plus_app_spec_t;
typedef tev_tbl_p4plus_app_spec_t tev_tbl_p4plus_app_info_t;

tev_tbl_ret_t tev_tbl_p4plus_app_create(const tev_tbl_p4plus_app_spec_t *spec);
tev_tbl_ret_t tev_tbl_p4plus_app_read(const tev_tbl_p4plus_app_key_t *key, tev_tbl_p4plus_app_info_t *info);
tev_tbl_ret_t tev_tbl_p4plus_app_update(const tev_tbl_p4plus_app_spec_t *spec);
tev_tbl_ret_t tev_tbl_p4plus_app_delete(const tev_tbl_p4plus_app_key_t *key);
tev_tbl_ret_t tev_tbl_p4plus_app_find(const tev_tbl_p4plus_app_key_t *key);
tev_tbl_ret_t tev_tbl_p4plus_app_table_clear(void);

/* --- p4e_stats (39) ---
 * Counters of the egress pipeline.
 * row index, SRAM, rows 0 to 0.
 */

typedef struct HALDEN_PACKED tev_tbl_p4e_stats_key_ {
    uint16_t index;           /* 12 bits are looked at */
} tev_tbl_p4e_stats_key_t;

typedef struct HALDEN_PACKED tev_tbl_p4e_stats_spec_ {
    uint8_t action_id; /* 0 to 0 */
    tev_tbl_p4e_stats_key_t key;
    union {
        p4e_stats_p4e_stats_t p4e_stats;
    } action_u;
} tev_tbl_p4e_stats_spec_t;
typedef tev_tbl_p4e_stats_spec_t tev_tbl_p4e_stats_info_t;

tev_tbl_ret_t tev_tbl_p4e_stats_create(const tev_tbl_p4e_stats_spec_t *spec);
tev_tbl_ret_t tev_tbl_p4e_stats_read(const tev_tbl_p4e_stats_key_t *key, tev_tbl_p4e_stats_info_t *info);
tev_tbl_ret_t tev_tbl_p4e_stats_update(const tev_tbl_p4e_stats_spec_t *spec);
tev_tbl_ret_t tev_tbl_p4e_stats_delete(const tev_tbl_p4e_stats_key_t *key);
tev_tbl_ret_t tev_tbl_p4e_stats_find(const tev_tbl_p4e_stats_key_t *key);
tev_tbl_ret_t tev_tbl_p4e_stats_table_clear(void);

/* --- lport_rx_stats (40) ---
 * Counters of packets received from a logical port.
 * row index, HBM, rows 0 to 16383.
 */

typedef struct HALDEN_PACKED tev_tbl_lport_rx_stats_key_ {
    uint16_t index;           /* 16 bits are looked at */
} tev_tbl_lport_rx_stats_key_t;

typedef struct HALDEN_PACKED tev_tbl_lport_rx_stats_spec_ {
    uint8_t action_id; /* 0 to 0 */
    tev_tbl_lport_rx_stats_key_t key;
    union {
        lport_rx_stats_lport_rx_stats_t lport_rx_stats;
    } action_u;
} tev_tbl_lport_rx_stats_spec_t;
typedef tev_tbl_lport_rx_stats_spec_t tev_tbl_lport_rx_stats_info_t;

tev_tbl_ret_t tev_tbl_lport_rx_stats_create(const tev_tbl_lport_rx_stats_spec_t *spec);
tev_tbl_ret_t tev_tbl_lport_rx_stats_read(const tev_tbl_lport_rx_stats_key_t *key, tev_tbl_lport_rx_stats_info_t *info);
tev_tbl_ret_t tev_tbl_lport_rx_stats_update(const tev_tbl_lport_rx_stats_spec_t *spec);
tev_tbl_ret_t tev_tbl_lport_rx_stats_delete(const tev_tbl_lport_rx_stats_key_t *key);
tev_tbl_ret_t tev_tbl_lport_rx_stats_find(const tev_tbl_lport_rx_stats_key_t *key);
tev_tbl_ret_t tev_tbl_lport_rx_stats_table_clear(void);

#pragma GCC visibility pop

#ifdef __cplusplus
}
#endif
