#pragma once

// The software records of the 48 tables, and the ids of tables and actions.
//
// Written by halden-emit from p4gen/halden/pipeline; do not edit. To make it again:
//     cmake --build build/release --target halden-emit && build/release/halden-emit .

// Records are packed: a field may start at any byte, so take no pointer to one. Scalars are in host
// byte order. A field of more than 32 bits is an array of bytes, byte 0 the least significant: the
// MAC address 02:00:5e:00:00:01 is {0x01, 0x00, 0x00, 0x5e, 0x00, 0x02}. Each comment gives the bits
// that the hardware keeps; bits above them are dropped when an entry is written.
//
// An action-data record is the action id followed by the data of that action; the actions of a table
// overlay one another.

#include <stdint.h>

#define HALDEN_PACKED __attribute__((__packed__))

#ifdef __cplusplus
extern "C" {
#endif

/* Table ids. Valid ids are 1 to 48. */
typedef enum p4pd_table_id_ {
    P4TBL_ID_FLOW_OHASH = 1,                    /* exact match with a wide key, one HBM row an entry */
    P4TBL_ID_FLOW = 2,                          /* exact match with a wide key, one HBM row an entry */
    P4TBL_ID_VLAN_MAPPING = 3,                  /* exact match, one SRAM row an entry */
    P4TBL_ID_TUNNEL_TERMINATE_SA_V4 = 4,        /* exact match, one SRAM row an entry */
    P4TBL_ID_TUNNEL_TERMINATE_SA_V6 = 5,        /* exact match, one SRAM row an entry */
    P4TBL_ID_REGISTERED_MAC = 6,                /* exact match, one SRAM row an entry */
    P4TBL_ID_VLAN_MAPPING_OTCAM = 7,            /* ternary match, data in the SRAM of the hash table it serves */
    P4TBL_ID_TUNNEL_TERMINATE_V4 = 8,           /* ternary match, data in SRAM at the same row */
    P4TBL_ID_TUNNEL_TERMINATE_V6 = 9,           /* ternary match, data in SRAM at the same row */
    P4TBL_ID_TUNNEL_TERMINATE_SA_V4_OTCAM = 10, /* ternary match, data in the SRAM of the hash table it serves */
    P4TBL_ID_TUNNEL_TERMINATE_SA_V6_OTCAM = 11, /* ternary match, data in the SRAM of the hash table it serves */
    P4TBL_ID_FLOW_KEY_NATIVE = 12,              /* ternary match, data in SRAM at the same row */
    P4TBL_ID_FLOW_KEY_TUNNELED = 13,            /* ternary match, data in SRAM at the same row */
    P4TBL_ID_REGISTERED_MAC_OTCAM = 14,         /* ternary match, data in the SRAM of the hash table it serves */
    P4TBL_ID_CHECKSUM = 15,                     /* ternary match, data in SRAM at the same row */
    P4TBL_ID_LIF_MAPPING = 16,                  /* row index, SRAM */
    P4TBL_ID_LIF_VELA_MAPPING = 17,             /* row index, SRAM */
    P4TBL_ID_VLAN_VELA_MAPPING = 18,            /* row index, SRAM */
    P4TBL_ID_VLAN_VELA_CTAG_MAPPING = 19,       /* row index, SRAM */
    P4TBL_ID_VALIDATE_PACKET_VELA = 20,         /* row index, SRAM */
    P4TBL_ID_FLOW_INFO = 21,                    /* row index, HBM */
    P4TBL_ID_CONNTRACK_INGRESS = 22,            /* row index, HBM */
    P4TBL_ID_CONNTRACK_EGRESS = 23,             /* row index, HBM */
    P4TBL_ID_L2SEG = 24,                        /* row index, SRAM */
    P4TBL_ID_P4I_STATS = 25,                    /* row index, SRAM */
    P4TBL_ID_LIF_TX_STATS = 26,                 /* row index, HBM */
    P4TBL_ID_LPORT_TX_STATS = 27,               /* row index, HBM */
    P4TBL_ID_CT_INGRESS_STATS = 28,             /* row index, HBM */
    P4TBL_ID_CT_EGRESS_STATS = 29,              /* row index, HBM */
    P4TBL_ID_MIRROR_REWRITE = 30,               /* row index, SRAM */
    P4TBL_ID_MIRROR_REWRITE_L3 = 31,            /* row index, HBM */
    P4TBL_ID_FLOW_REWRITE = 32,                 /* row index, HBM */
    P4TBL_ID_NAT_REWRITE = 33,                  /* row index, HBM */
    P4TBL_ID_TUNNEL_ENCAP = 34,                 /* row index, HBM */
    P4TBL_ID_IPFIX_INGRESS = 35,                /* row index, HBM */
    P4TBL_ID_IPFIX_EGRESS = 36,                 /* row index, HBM */
    P4TBL_ID_OUTPUT_MAPPING = 37,               /* row index, SRAM */
    P4TBL_ID_P4PLUS_APP = 38,                   /* row index, SRAM */
    P4TBL_ID_P4E_STATS = 39,                    /* row index, SRAM */
    P4TBL_ID_LPORT_RX_STATS = 40,               /* row index, HBM */
    P4TBL_ID_VALIDATE_PACKET = 41,              /* no key and no data, an action program alone */
    P4TBL_ID_P4PLUS_OFFLOAD = 42,               /* no key and no data, an action program alone */
    P4TBL_ID_REPLICA_REWRITE = 43,              /* no key and no data, an action program alone */
    P4TBL_ID_TUNNEL_DECAP = 44,                 /* no key and no data, an action program alone */
    P4TBL_ID_P4PLUS_APP_RSS_0 = 45,             /* no key and no data, an action program alone */
    P4TBL_ID_P4PLUS_APP_RSS_MIRROR = 46,        /* no key and no data, an action program alone */
    P4TBL_ID_P4PLUS_APP_RSS_1 = 47,             /* no key and no data, an action program alone */
    P4TBL_ID_P4PLUS_APP_RSS_2 = 48,             /* no key and no data, an action program alone */
} p4pd_table_id_t;

/* --- flow_ohash (1) ---
 * Overflow of the flow table: entries reached through another entry's hint slots.
 * exact match with a wide key, one HBM row an entry.
 */

/* Key: 77 bytes, 640 bits in the hardware, 600 of them in fields. */
typedef struct HALDEN_PACKED flow_ohash_swkey_ {
    uint8_t metadata_flow_key_spare[16];      /* 128 bits: software's own; matched like the rest */
    uint8_t metadata_flow_key_proto;          /* 8 bits: IP protocol */
    uint16_t metadata_flow_key_vlan;          /* 16 bits: VLAN tag */
    uint32_t metadata_flow_key_vni;           /* 24 bits: virtual network identifier */
    uint16_t metadata_flow_key_outer_flow_id;  /* 16 bits: flow of the outer header */
    uint8_t metadata_flow_key_rsvd;           /* 5 bits: reserved; matched like the rest */
    uint16_t metadata_flow_key_port_id;       /* 11 bits: logical port */
    uint8_t metadata_flow_key_ktype;          /* 8 bits: key type */
    uint8_t metadata_flow_key_dmac[6];        /* 48 bits: destination MAC, byte 0 lowest */
    uint8_t metadata_flow_key_smac[6];        /* 48 bits: source MAC, byte 0 lowest */
    uint16_t metadata_flow_key_dport;         /* 16 bits: destination port */
    uint16_t metadata_flow_key_sport;         /* 16 bits: source port */
    uint8_t metadata_flow_key_dip[16];        /* 128 bits: destination address, byte 0 lowest */
    uint8_t metadata_flow_key_sip[16];        /* 128 bits: source address, byte 0 lowest */
} flow_ohash_swkey_t;

/* Data of FLOW_FLOW_HASH_ID: 293 bits in the hardware. */
typedef struct HALDEN_PACKED flow_ohash_flow_hash_ {
    uint32_t flow_idx;                        /* 22 bits: index of the flow's flow_info entry; the application word */
    uint16_t hash1;                           /* 10 bits: slot 1: hash bits of the chained flow */
    uint32_t hint1;                           /* 21 bits: slot 1: index of the chained overflow entry */
    uint16_t hash2;                           /* 10 bits */
    uint32_t hint2;                           /* 21 bits */
    uint16_t hash3;                           /* 10 bits */
    uint32_t hint3;                           /* 21 bits */
    uint16_t hash4;                           /* 10 bits */
    uint32_t hint4;                           /* 21 bits */
    uint16_t hash5;                           /* 10 bits */
    uint32_t hint5;                           /* 21 bits */
    uint16_t hash6;                           /* 10 bits */
    uint32_t hint6;                           /* 21 bits */
    uint16_t hash7;                           /* 10 bits */
    uint32_t hint7;                           /* 21 bits */
    uint16_t hash8;                           /* 10 bits */
    uint32_t hint8;                           /* 21 bits */
    uint8_t more_hashes;                      /* 1 bit: 1 when the chain goes on at more_hints */
    uint32_t more_hints;                      /* 21 bits: index of the overflow entry that continues the chain */
    uint8_t entry_valid;                      /* 1 bit: the hardware's valid bit */
} flow_ohash_flow_hash_t;

/* Action data: 59 bytes. */
typedef struct HALDEN_PACKED flow_ohash_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        flow_ohash_flow_hash_t flow_hash;
    } action_u;
} flow_ohash_actiondata_t;

/* --- flow (2) ---
 * Flow table: a packet's full flow key to its flow_info entry.
 * exact match with a wide key, one HBM row an entry.
 */

enum {
    FLOW_FLOW_HASH_ID = 0,
};

/* Key: 77 bytes, 640 bits in the hardware, 600 of them in fields. */
typedef struct HALDEN_PACKED flow_swkey_ {
    uint8_t metadata_flow_key_spare[16];      /* 128 bits: software's own; matched like the rest */
    uint8_t metadata_flow_key_proto;          /* 8 bits: IP protocol */
    uint16_t metadata_flow_key_vlan;          /* 16 bits: VLAN tag */
    uint32_t metadata_flow_key_vni;           /* 24 bits: virtual network identifier */
    uint16_t metadata_flow_key_outer_flow_id;  /* 16 bits: flow of the outer header */
    uint8_t metadata_flow_key_rsvd;           /* 5 bits: reserved; matched like the rest */
    uint16_t metadata_flow_key_port_id;       /* 11 bits: logical port */
    uint8_t metadata_flow_key_ktype;          /* 8 bits: key type */
    uint8_t metadata_flow_key_dmac[6];        /* 48 bits: destination MAC, byte 0 lowest */
    uint8_t metadata_flow_key_smac[6];        /* 48 bits: source MAC, byte 0 lowest */
    uint16_t metadata_flow_key_dport;         /* 16 bits: destination port */
    uint16_t metadata_flow_key_sport;         /* 16 bits: source port */
    uint8_t metadata_flow_key_dip[16];        /* 128 bits: destination address, byte 0 lowest */
    uint8_t metadata_flow_key_sip[16];        /* 128 bits: source address, byte 0 lowest */
} flow_swkey_t;

/* Data of FLOW_FLOW_HASH_ID: 293 bits in the hardware. */
typedef struct HALDEN_PACKED flow_flow_hash_ {
    uint32_t flow_idx;                        /* 22 bits: index of the flow's flow_info entry; the application word */
    uint16_t hash1;                           /* 10 bits: slot 1: hash bits of the chained flow */
    uint32_t hint1;                           /* 21 bits: slot 1: index of the chained overflow entry */
    uint16_t hash2;                           /* 10 bits */
    uint32_t hint2;                           /* 21 bits */
    uint16_t hash3;                           /* 10 bits */
    uint32_t hint3;                           /* 21 bits */
    uint16_t hash4;                           /* 10 bits */
    uint32_t hint4;                           /* 21 bits */
    uint16_t hash5;                           /* 10 bits */
    uint32_t hint5;                           /* 21 bits */
    uint16_t hash6;                           /* 10 bits */
    uint32_t hint6;                           /* 21 bits */
    uint16_t hash7;                           /* 10 bits */
    uint32_t hint7;                           /* 21 bits */
    uint16_t hash8;                           /* 10 bits */
    uint32_t hint8;                           /* 21 bits */
    uint8_t more_hashes;                      /* 1 bit: 1 when the chain goes on at more_hints */
    uint32_t more_hints;                      /* 21 bits: index of the overflow entry that continues the chain */
    uint8_t entry_valid;                      /* 1 bit: the hardware's valid bit */
} flow_flow_hash_t;

/* Action data: 59 bytes. */
typedef struct HALDEN_PACKED flow_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        flow_flow_hash_t flow_hash;
    } action_u;
} flow_actiondata_t;

/* --- vlan_mapping (3) ---
 * VLAN on a layer-2 segment: the VRF and the segment it maps to.
 * exact match, one SRAM row an entry.
 */

enum {
    VLAN_MAPPING_VLAN_MAPPING_ID = 0,
};

/* Key: 4 bytes, 24 bits in the hardware. */
typedef struct HALDEN_PACKED vlan_mapping_swkey_ {
    uint16_t vlan_id;                         /* 12 bits: VLAN identifier */
    uint16_t l2seg;                           /* 12 bits: layer-2 segment the packet came from */
} vlan_mapping_swkey_t;

/* Data of VLAN_MAPPING_VLAN_MAPPING_ID: 24 bits in the hardware. */
typedef struct HALDEN_PACKED vlan_mapping_vlan_mapping_ {
    uint16_t rmac_vrf;                        /* 12 bits: VRF in which the destination MAC is looked up */
    uint16_t l2seg;                           /* 12 bits: layer-2 segment the VLAN belongs to */
} vlan_mapping_vlan_mapping_t;

/* Action data: 5 bytes. */
typedef struct HALDEN_PACKED vlan_mapping_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        vlan_mapping_vlan_mapping_t vlan_mapping;
    } action_u;
} vlan_mapping_actiondata_t;

/* --- tunnel_terminate_sa_v4 (4) ---
 * Remote IPv4 tunnel endpoint: the outer flow id of its packets.
 * exact match, one SRAM row an entry.
 */

enum {
    TUNNEL_TERMINATE_SA_V4_TUNNEL_TERMINATE_SA_A_ID = 0,
};

/* Key: 5 bytes, 40 bits in the hardware. */
typedef struct HALDEN_PACKED tunnel_terminate_sa_v4_swkey_ {
    uint8_t local_vtep_idx;                   /* 8 bits: local tunnel endpoint that terminated the packet */
    uint32_t ipv4_1_srcAddr;                  /* 32 bits: outer IPv4 source address */
} tunnel_terminate_sa_v4_swkey_t;

/* Data of TUNNEL_TERMINATE_SA_V4_TUNNEL_TERMINATE_SA_A_ID: 17 bits in the hardware. */
typedef struct HALDEN_PACKED tunnel_terminate_sa_v4_tunnel_terminate_sa_a_ {
    uint16_t outer_flow_id;                   /* 16 bits: number of the remote tunnel endpoint, part of the flow key */
    uint8_t entry_valid;                      /* 1 bit */
} tunnel_terminate_sa_v4_tunnel_terminate_sa_a_t;

/* Action data: 4 bytes. */
typedef struct HALDEN_PACKED tunnel_terminate_sa_v4_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        tunnel_terminate_sa_v4_tunnel_terminate_sa_a_t tunnel_terminate_sa_a;
    } action_u;
} tunnel_terminate_sa_v4_actiondata_t;

/* --- tunnel_terminate_sa_v6 (5) ---
 * Remote IPv6 tunnel endpoint: the outer flow id of its packets.
 * exact match, one SRAM row an entry.
 */

enum {
    TUNNEL_TERMINATE_SA_V6_TUNNEL_TERMINATE_SA_A_ID = 0,
};

/* Key: 17 bytes, 136 bits in the hardware. */
typedef struct HALDEN_PACKED tunnel_terminate_sa_v6_swkey_ {
    uint8_t local_vtep_idx;                   /* 8 bits: local tunnel endpoint that terminated the packet */
    uint8_t ipv6_1_srcAddr[16];               /* 128 bits: outer IPv6 source address, byte 0 lowest */
} tunnel_terminate_sa_v6_swkey_t;

/* Data of TUNNEL_TERMINATE_SA_V6_TUNNEL_TERMINATE_SA_A_ID: 17 bits in the hardware. */
typedef struct HALDEN_PACKED tunnel_terminate_sa_v6_tunnel_terminate_sa_a_ {
    uint16_t outer_flow_id;                   /* 16 bits: number of the remote tunnel endpoint, part of the flow key */
    uint8_t entry_valid;                      /* 1 bit */
} tunnel_terminate_sa_v6_tunnel_terminate_sa_a_t;

/* Action data: 4 bytes. */
typedef struct HALDEN_PACKED tunnel_terminate_sa_v6_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        tunnel_terminate_sa_v6_tunnel_terminate_sa_a_t tunnel_terminate_sa_a;
    } action_u;
} tunnel_terminate_sa_v6_actiondata_t;

/* --- registered_mac (6) ---
 * Registered destination MAC in a VRF: the port and queue that receive it.
 * exact match, one SRAM row an entry.
 */

enum {
    REGISTERED_MAC_REGISTERED_MAC_ID = 0,
};

/* Key: 8 bytes, 60 bits in the hardware. */
typedef struct HALDEN_PACKED registered_mac_swkey_ {
    uint8_t hdr_ethernet_1_dstAddr[6];        /* 48 bits: destination MAC, byte 0 lowest */
    uint16_t metadata_classic_nic_rmac_vrf;   /* 12 bits: VRF of the receiving interface */
} registered_mac_swkey_t;

/* Data of REGISTERED_MAC_REGISTERED_MAC_ID: 52 bits in the hardware. */
typedef struct HALDEN_PACKED registered_mac_registered_mac_ {
    uint16_t dst_lport;                       /* 16 bits: logical port the MAC lives behind */
    uint32_t dst_qid;                         /* 24 bits: receive queue */
    uint16_t dst_pinned_lport;                /* 11 bits: logical port when the traffic is pinned to an uplink */
    uint8_t multicast_en;                     /* 1 bit: the entry is a multicast group */
} registered_mac_registered_mac_t;

/* Action data: 10 bytes. */
typedef struct HALDEN_PACKED registered_mac_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        registered_mac_registered_mac_t registered_mac;
    } action_u;
} registered_mac_actiondata_t;

/* --- vlan_mapping_otcam (7) ---
 * Overflow of vlan_mapping: entries whose hash row was taken.
 * ternary match, data in the SRAM of the hash table it serves.
 */

enum {
    VLAN_MAPPING_OTCAM_VLAN_MAPPING_ID = 0,
};

/* Key: 4 bytes, 24 bits in the hardware. */
typedef struct HALDEN_PACKED vlan_mapping_otcam_swkey_ {
    uint16_t vlan_id;                         /* 12 bits: VLAN identifier */
    uint16_t l2seg;                           /* 12 bits: layer-2 segment the packet came from */
} vlan_mapping_otcam_swkey_t;

/* Key mask: a bit that is 0 matches anything. */
typedef struct HALDEN_PACKED vlan_mapping_otcam_swkey_mask_ {
    uint16_t vlan_id_mask;                    /* 12 bits: VLAN identifier */
    uint16_t l2seg_mask;                      /* 12 bits: layer-2 segment the packet came from */
} vlan_mapping_otcam_swkey_mask_t;

/* Data of VLAN_MAPPING_OTCAM_VLAN_MAPPING_ID: 24 bits in the hardware. */
typedef struct HALDEN_PACKED vlan_mapping_otcam_vlan_mapping_ {
    uint16_t rmac_vrf;                        /* 12 bits: VRF in which the destination MAC is looked up */
    uint16_t l2seg;                           /* 12 bits: layer-2 segment the VLAN belongs to */
} vlan_mapping_otcam_vlan_mapping_t;

/* Action data: 5 bytes. */
typedef struct HALDEN_PACKED vlan_mapping_otcam_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        vlan_mapping_otcam_vlan_mapping_t vlan_mapping;
    } action_u;
} vlan_mapping_otcam_actiondata_t;

/* --- tunnel_terminate_v4 (8) ---
 * Outer headers of an IPv4 tunnel that ends here: the local tunnel endpoint.
 * ternary match, data in SRAM at the same row.
 */

enum {
    TUNNEL_TERMINATE_V4_TUNNEL_TERMINATE_A_ID = 0,
};

/* Key: 21 bytes, 120 bits in the hardware. */
typedef struct HALDEN_PACKED tunnel_terminate_v4_swkey_ {
    uint16_t lif_id;                          /* 11 bits: logical interface the packet came from */
    uint8_t hdr_p4plus_to_p4_insert_vlan_tag;  /* 1 bit: the sender asked for a VLAN tag */
    uint16_t p4plus_vlan_id;                  /* 12 bits: the VLAN it asked for */
    uint8_t geneve_1_valid;                   /* 1 bit: outer Geneve header present */
    uint8_t vxlan_1_valid;                    /* 1 bit: outer VXLAN header present */
    uint8_t ipv4_1_valid;                     /* 1 bit: outer IPv4 header present */
    uint8_t hdr_ctag_1_valid;                 /* 1 bit: outer VLAN tag present */
    uint8_t hdr_ethernet_1_dstAddr[6];        /* 48 bits: outer destination MAC, byte 0 lowest */
    uint16_t vlan_id;                         /* 12 bits: outer VLAN identifier */
    uint32_t ipv4_1_dstAddr;                  /* 32 bits: outer IPv4 destination address */
} tunnel_terminate_v4_swkey_t;

/* Key mask: a bit that is 0 matches anything. */
typedef struct HALDEN_PACKED tunnel_terminate_v4_swkey_mask_ {
    uint16_t lif_id_mask;                     /* 11 bits: logical interface the packet came from */
    uint8_t hdr_p4plus_to_p4_insert_vlan_tag_mask;  /* 1 bit: the sender asked for a VLAN tag */
    uint16_t p4plus_vlan_id_mask;             /* 12 bits: the VLAN it asked for */
    uint8_t geneve_1_valid_mask;              /* 1 bit: outer Geneve header present */
    uint8_t vxlan_1_valid_mask;               /* 1 bit: outer VXLAN header present */
    uint8_t ipv4_1_valid_mask;                /* 1 bit: outer IPv4 header present */
    uint8_t hdr_ctag_1_valid_mask;            /* 1 bit: outer VLAN tag present */
    uint8_t hdr_ethernet_1_dstAddr_mask[6];   /* 48 bits: outer destination MAC, byte 0 lowest */
    uint16_t vlan_id_mask;                    /* 12 bits: outer VLAN identifier */
    uint32_t ipv4_1_dstAddr_mask;             /* 32 bits: outer IPv4 destination address */
} tunnel_terminate_v4_swkey_mask_t;

/* Data of TUNNEL_TERMINATE_V4_TUNNEL_TERMINATE_A_ID: 9 bits in the hardware. */
typedef struct HALDEN_PACKED tunnel_terminate_v4_tunnel_terminate_a_ {
    uint8_t local_vtep_idx;                   /* 8 bits: local tunnel endpoint */
    uint8_t entry_valid;                      /* 1 bit */
} tunnel_terminate_v4_tunnel_terminate_a_t;

/* Action data: 3 bytes. */
typedef struct HALDEN_PACKED tunnel_terminate_v4_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        tunnel_terminate_v4_tunnel_terminate_a_t tunnel_terminate_a;
    } action_u;
} tunnel_terminate_v4_actiondata_t;

/* --- tunnel_terminate_v6 (9) ---
 * Outer headers of an IPv6 tunnel that ends here: the local tunnel endpoint.
 * ternary match, data in SRAM at the same row.
 */

enum {
    TUNNEL_TERMINATE_V6_TUNNEL_TERMINATE_A_ID = 0,
};

/* Key: 33 bytes, 216 bits in the hardware. */
typedef struct HALDEN_PACKED tunnel_terminate_v6_swkey_ {
    uint16_t lif_id;                          /* 11 bits: logical interface the packet came from */
    uint8_t hdr_p4plus_to_p4_insert_vlan_tag;  /* 1 bit: the sender asked for a VLAN tag */
    uint16_t p4plus_vlan_id;                  /* 12 bits: the VLAN it asked for */
    uint8_t geneve_1_valid;                   /* 1 bit: outer Geneve header present */
    uint8_t vxlan_1_valid;                    /* 1 bit: outer VXLAN header present */
    uint8_t ipv6_1_valid;                     /* 1 bit: outer IPv6 header present */
    uint8_t hdr_ctag_1_valid;                 /* 1 bit: outer VLAN tag present */
    uint8_t hdr_ethernet_1_dstAddr[6];        /* 48 bits: outer destination MAC, byte 0 lowest */
    uint16_t vlan_id;                         /* 12 bits: outer VLAN identifier */
    uint8_t ipv6_1_dstAddr[16];               /* 128 bits: outer IPv6 destination address, byte 0 lowest */
} tunnel_terminate_v6_swkey_t;

/* Key mask: a bit that is 0 matches anything. */
typedef struct HALDEN_PACKED tunnel_terminate_v6_swkey_mask_ {
    uint16_t lif_id_mask;                     /* 11 bits: logical interface the packet came from */
    uint8_t hdr_p4plus_to_p4_insert_vlan_tag_mask;  /* 1 bit: the sender asked for a VLAN tag */
    uint16_t p4plus_vlan_id_mask;             /* 12 bits: the VLAN it asked for */
    uint8_t geneve_1_valid_mask;              /* 1 bit: outer Geneve header present */
    uint8_t vxlan_1_valid_mask;               /* 1 bit: outer VXLAN header present */
    uint8_t ipv6_1_valid_mask;                /* 1 bit: outer IPv6 header present */
    uint8_t hdr_ctag_1_valid_mask;            /* 1 bit: outer VLAN tag present */
    uint8_t hdr_ethernet_1_dstAddr_mask[6];   /* 48 bits: outer destination MAC, byte 0 lowest */
    uint16_t vlan_id_mask;                    /* 12 bits: outer VLAN identifier */
    uint8_t ipv6_1_dstAddr_mask[16];          /* 128 bits: outer IPv6 destination address, byte 0 lowest */
} tunnel_terminate_v6_swkey_mask_t;

/* Data of TUNNEL_TERMINATE_V6_TUNNEL_TERMINATE_A_ID: 9 bits in the hardware. */
typedef struct HALDEN_PACKED tunnel_terminate_v6_tunnel_terminate_a_ {
    uint8_t local_vtep_idx;                   /* 8 bits: local tunnel endpoint */
    uint8_t entry_valid;                      /* 1 bit */
} tunnel_terminate_v6_tunnel_terminate_a_t;

/* Action data: 3 bytes. */
typedef struct HALDEN_PACKED tunnel_terminate_v6_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        tunnel_terminate_v6_tunnel_terminate_a_t tunnel_terminate_a;
    } action_u;
} tunnel_terminate_v6_actiondata_t;

/* --- tunnel_terminate_sa_v4_otcam (10) ---
 * Overflow of tunnel_terminate_sa_v4: entries whose hash row was taken.
 * ternary match, data in the SRAM of the hash table it serves.
 */

enum {
    TUNNEL_TERMINATE_SA_V4_OTCAM_TUNNEL_TERMINATE_SA_A_ID = 0,
};

/* Key: 5 bytes, 40 bits in the hardware. */
typedef struct HALDEN_PACKED tunnel_terminate_sa_v4_otcam_swkey_ {
    uint8_t local_vtep_idx;                   /* 8 bits: local tunnel endpoint that terminated the packet */
    uint32_t ipv4_1_srcAddr;                  /* 32 bits: outer IPv4 source address */
} tunnel_terminate_sa_v4_otcam_swkey_t;

/* Key mask: a bit that is 0 matches anything. */
typedef struct HALDEN_PACKED tunnel_terminate_sa_v4_otcam_swkey_mask_ {
    uint8_t local_vtep_idx_mask;              /* 8 bits: local tunnel endpoint that terminated the packet */
    uint32_t ipv4_1_srcAddr_mask;             /* 32 bits: outer IPv4 source address */
} tunnel_terminate_sa_v4_otcam_swkey_mask_t;

/* Data of TUNNEL_TERMINATE_SA_V4_OTCAM_TUNNEL_TERMINATE_SA_A_ID: 17 bits in the hardware. */
typedef struct HALDEN_PACKED tunnel_terminate_sa_v4_otcam_tunnel_terminate_sa_a_ {
    uint16_t outer_flow_id;                   /* 16 bits: number of the remote tunnel endpoint, part of the flow key */
    uint8_t entry_valid;                      /* 1 bit */
} tunnel_terminate_sa_v4_otcam_tunnel_terminate_sa_a_t;

/* Action data: 4 bytes. */
typedef struct HALDEN_PACKED tunnel_terminate_sa_v4_otcam_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        tunnel_terminate_sa_v4_otcam_tunnel_terminate_sa_a_t tunnel_terminate_sa_a;
    } action_u;
} tunnel_terminate_sa_v4_otcam_actiondata_t;

/* --- tunnel_terminate_sa_v6_otcam (11) ---
 * Overflow of tunnel_terminate_sa_v6: entries whose hash row was taken.
 * ternary match, data in the SRAM of the hash table it serves.
 */

enum {
    TUNNEL_TERMINATE_SA_V6_OTCAM_TUNNEL_TERMINATE_SA_A_ID = 0,
};

/* Key: 17 bytes, 136 bits in the hardware. */
typedef struct HALDEN_PACKED tunnel_terminate_sa_v6_otcam_swkey_ {
    uint8_t local_vtep_idx;                   /* 8 bits: local tunnel endpoint that terminated the packet */
    uint8_t ipv6_1_srcAddr[16];               /* 128 bits: outer IPv6 source address, byte 0 lowest */
} tunnel_terminate_sa_v6_otcam_swkey_t;

/* Key mask: a bit that is 0 matches anything. */
typedef struct HALDEN_PACKED tunnel_terminate_sa_v6_otcam_swkey_mask_ {
    uint8_t local_vtep_idx_mask;              /* 8 bits: local tunnel endpoint that terminated the packet */
    uint8_t ipv6_1_srcAddr_mask[16];          /* 128 bits: outer IPv6 source address, byte 0 lowest */
} tunnel_terminate_sa_v6_otcam_swkey_mask_t;

/* Data of TUNNEL_TERMINATE_SA_V6_OTCAM_TUNNEL_TERMINATE_SA_A_ID: 17 bits in the hardware. */
typedef struct HALDEN_PACKED tunnel_terminate_sa_v6_otcam_tunnel_terminate_sa_a_ {
    uint16_t outer_flow_id;                   /* 16 bits: number of the remote tunnel endpoint, part of the flow key */
    uint8_t entry_valid;                      /* 1 bit */
} tunnel_terminate_sa_v6_otcam_tunnel_terminate_sa_a_t;

/* Action data: 4 bytes. */
typedef struct HALDEN_PACKED tunnel_terminate_sa_v6_otcam_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        tunnel_terminate_sa_v6_otcam_tunnel_terminate_sa_a_t tunnel_terminate_sa_a;
    } action_u;
} tunnel_terminate_sa_v6_otcam_actiondata_t;

/* --- flow_key_native (12) ---
 * How the flow key of a packet without a terminated tunnel is built.
 * ternary match, data in SRAM at the same row.
 */

enum {
    FLOW_KEY_NATIVE_NOP_ID = 0,
    FLOW_KEY_NATIVE_NATIVE_IPV4_PACKET_ID = 1,
    FLOW_KEY_NATIVE_NATIVE_IPV6_PACKET_ID = 2,
    FLOW_KEY_NATIVE_NATIVE_NONIP_PACKET_ID = 3,
};

/* Key: 3 bytes, 3 bits in the hardware. */
typedef struct HALDEN_PACKED flow_key_native_swkey_ {
    uint8_t ipv6_1_valid;                     /* 1 bit: IPv6 header present */
    uint8_t ipv4_1_valid;                     /* 1 bit: IPv4 header present */
    uint8_t tunnel_terminate;                 /* 1 bit: the packet's tunnel ends here */
} flow_key_native_swkey_t;

/* Key mask: a bit that is 0 matches anything. */
typedef struct HALDEN_PACKED flow_key_native_swkey_mask_ {
    uint8_t ipv6_1_valid_mask;                /* 1 bit: IPv6 header present */
    uint8_t ipv4_1_valid_mask;                /* 1 bit: IPv4 header present */
    uint8_t tunnel_terminate_mask;            /* 1 bit: the packet's tunnel ends here */
} flow_key_native_swkey_mask_t;

/* Data of FLOW_KEY_NATIVE_NATIVE_IPV4_PACKET_ID: 12 bits in the hardware. */
typedef struct HALDEN_PACKED flow_key_native_native_ipv4_packet_ {
    uint8_t dscp_trace_msk;                   /* 6 bits: DSCP bits that are compared to decide on tracing */
    uint8_t dscp_trace_val;                   /* 6 bits: their value in traced packets */
} flow_key_native_native_ipv4_packet_t;

/* Data of FLOW_KEY_NATIVE_NATIVE_IPV6_PACKET_ID: 12 bits in the hardware. */
typedef struct HALDEN_PACKED flow_key_native_native_ipv6_packet_ {
    uint8_t dscp_trace_msk;                   /* 6 bits: DSCP bits that are compared to decide on tracing */
    uint8_t dscp_trace_val;                   /* 6 bits: their value in traced packets */
} flow_key_native_native_ipv6_packet_t;

/* Action data: 3 bytes. */
typedef struct HALDEN_PACKED flow_key_native_actiondata_ {
    uint8_t action_id; /* 0 to 3 */
    union {
        flow_key_native_native_ipv4_packet_t native_ipv4_packet;
        flow_key_native_native_ipv6_packet_t native_ipv6_packet;
    } action_u;
} flow_key_native_actiondata_t;

/* --- flow_key_tunneled (13) ---
 * How the flow key of a packet from a terminated tunnel is built.
 * ternary match, data in SRAM at the same row.
 */

enum {
    FLOW_KEY_TUNNELED_NOP_ID = 0,
    FLOW_KEY_TUNNELED_TUNNELED_IPV4_PACKET_ID = 1,
    FLOW_KEY_TUNNELED_TUNNELED_IPV6_PACKET_ID = 2,
    FLOW_KEY_TUNNELED_TUNNELED_NONIP_PACKET_ID = 3,
};

/* Key: 3 bytes, 3 bits in the hardware. */
typedef struct HALDEN_PACKED flow_key_tunneled_swkey_ {
    uint8_t ipv6_2_valid;                     /* 1 bit: inner IPv6 header present */
    uint8_t ipv4_2_valid;                     /* 1 bit: inner IPv4 header present */
    uint8_t tunnel_terminate;                 /* 1 bit: the packet's tunnel ends here */
} flow_key_tunneled_swkey_t;

/* Key mask: a bit that is 0 matches anything. */
typedef struct HALDEN_PACKED flow_key_tunneled_swkey_mask_ {
    uint8_t ipv6_2_valid_mask;                /* 1 bit: inner IPv6 header present */
    uint8_t ipv4_2_valid_mask;                /* 1 bit: inner IPv4 header present */
    uint8_t tunnel_terminate_mask;            /* 1 bit: the packet's tunnel ends here */
} flow_key_tunneled_swkey_mask_t;

/* Action data: 2 bytes. */
typedef struct HALDEN_PACKED flow_key_tunneled_actiondata_ {
    uint8_t action_id; /* 0 to 3 */
    union {
        uint8_t unused; /* no action carries data */
    } action_u;
} flow_key_tunneled_actiondata_t;

/* --- registered_mac_otcam (14) ---
 * Overflow of registered_mac: entries whose hash row was taken.
 * ternary match, data in the SRAM of the hash table it serves.
 */

enum {
    REGISTERED_MAC_OTCAM_REGISTERED_MAC_ID = 0,
};

/* Key: 8 bytes, 60 bits in the hardware. */
typedef struct HALDEN_PACKED registered_mac_otcam_swkey_ {
    uint8_t hdr_ethernet_1_dstAddr[6];        /* 48 bits: destination MAC, byte 0 lowest */
    uint16_t metadata_classic_nic_rmac_vrf;   /* 12 bits: VRF of the receiving interface */
} registered_mac_otcam_swkey_t;

/* Key mask: a bit that is 0 matches anything. */
typedef struct HALDEN_PACKED registered_mac_otcam_swkey_mask_ {
    uint8_t hdr_ethernet_1_dstAddr_mask[6];   /* 48 bits: destination MAC, byte 0 lowest */
    uint16_t metadata_classic_nic_rmac_vrf_mask;  /* 12 bits: VRF of the receiving interface */
} registered_mac_otcam_swkey_mask_t;

/* Data of REGISTERED_MAC_OTCAM_REGISTERED_MAC_ID: 52 bits in the hardware. */
typedef struct HALDEN_PACKED registered_mac_otcam_registered_mac_ {
    uint16_t dst_lport;                       /* 16 bits: logical port the MAC lives behind */
    uint32_t dst_qid;                         /* 24 bits: receive queue */
    uint16_t dst_pinned_lport;                /* 11 bits: logical port when the traffic is pinned to an uplink */
    uint8_t multicast_en;                     /* 1 bit: the entry is a multicast group */
} registered_mac_otcam_registered_mac_t;

/* Action data: 10 bytes. */
typedef struct HALDEN_PACKED registered_mac_otcam_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        registered_mac_otcam_registered_mac_t registered_mac;
    } action_u;
} registered_mac_otcam_actiondata_t;

/* --- checksum (15) ---
 * Headers present in an outgoing packet: which checksums are updated.
 * ternary match, data in SRAM at the same row.
 */

enum {
    CHECKSUM_UPDATE_L1_IPV4_CHECKSUM_ID = 0,
    CHECKSUM_UPDATE_L1_IPV4_UDP_CHECKSUM_ID = 1,
    CHECKSUM_UPDATE_L1_IPV4_TCP_CHECKSUM_ID = 2,
    CHECKSUM_UPDATE_L1_IPV4_ICMP_CHECKSUM_ID = 3,
    CHECKSUM_UPDATE_L1_IPV6_UDP_CHECKSUM_ID = 4,
    CHECKSUM_UPDATE_L1_IPV6_TCP_CHECKSUM_ID = 5,
    CHECKSUM_UPDATE_L1_IPV6_ICMP_CHECKSUM_ID = 6,
    CHECKSUM_UPDATE_IPV4_OUTER_IPV4_CHECKSUM_ID = 7,
    CHECKSUM_UPDATE_IPV4_OUTER_IPV4_UDP_CHECKSUM_ID = 8,
    CHECKSUM_UPDATE_IPV4_OUTER_IPV4_TCP_CHECKSUM_ID = 9,
    CHECKSUM_UPDATE_IPV4_OUTER_IPV4_ICMP_CHECKSUM_ID = 10,
    CHECKSUM_UPDATE_IPV4_OUTER_IPV6_UDP_CHECKSUM_ID = 11,
    CHECKSUM_UPDATE_IPV4_OUTER_IPV6_TCP_CHECKSUM_ID = 12,
    CHECKSUM_UPDATE_IPV4_OUTER_IPV6_ICMP_CHECKSUM_ID = 13,
    CHECKSUM_UPDATE_IPV6_OUTER_IPV4_CHECKSUM_ID = 14,
    CHECKSUM_UPDATE_IPV6_OUTER_IPV4_UDP_CHECKSUM_ID = 15,
    CHECKSUM_UPDATE_IPV6_OUTER_IPV4_TCP_CHECKSUM_ID = 16,
    CHECKSUM_UPDATE_IPV6_OUTER_IPV4_ICMP_CHECKSUM_ID = 17,
    CHECKSUM_UPDATE_IPV6_OUTER_IPV6_UDP_CHECKSUM_ID = 18,
    CHECKSUM_UPDATE_IPV6_OUTER_IPV6_TCP_CHECKSUM_ID = 19,
    CHECKSUM_UPDATE_IPV6_OUTER_IPV6_ICMP_CHECKSUM_ID = 20,
    CHECKSUM_UPDATE_NO_CHECKSUM_ID = 21,
};

/* Key: 8 bytes, 8 bits in the hardware. */
typedef struct HALDEN_PACKED checksum_swkey_ {
    uint8_t tcp_valid;                        /* 1 bit: TCP header present */
    uint8_t udp_2_valid;                      /* 1 bit: inner UDP header present */
    uint8_t ipv6_2_valid;                     /* 1 bit: inner IPv6 header present */
    uint8_t ipv4_2_valid;                     /* 1 bit: inner IPv4 header present */
    uint8_t udp_1_valid;                      /* 1 bit: outer UDP header present */
    uint8_t ipv6_1_valid;                     /* 1 bit: outer IPv6 header present */
    uint8_t ipv4_1_valid;                     /* 1 bit: outer IPv4 header present */
    uint8_t icmp_valid;                       /* 1 bit: ICMP header present */
} checksum_swkey_t;

/* Key mask: a bit that is 0 matches anything. */
typedef struct HALDEN_PACKED checksum_swkey_mask_ {
    uint8_t tcp_valid_mask;                   /* 1 bit: TCP header present */
    uint8_t udp_2_valid_mask;                 /* 1 bit: inner UDP header present */
    uint8_t ipv6_2_valid_mask;                /* 1 bit: inner IPv6 header present */
    uint8_t ipv4_2_valid_mask;                /* 1 bit: inner IPv4 header present */
    uint8_t udp_1_valid_mask;                 /* 1 bit: outer UDP header present */
    uint8_t ipv6_1_valid_mask;                /* 1 bit: outer IPv6 header present */
    uint8_t ipv4_1_valid_mask;                /* 1 bit: outer IPv4 header present */
    uint8_t icmp_valid_mask;                  /* 1 bit: ICMP header present */
} checksum_swkey_mask_t;

/* Action data: 2 bytes. */
typedef struct HALDEN_PACKED checksum_actiondata_ {
    uint8_t action_id; /* 0 to 21 */
    union {
        uint8_t unused; /* no action carries data */
    } action_u;
} checksum_actiondata_t;

/* --- lif_mapping (16) ---
 * Logical interface: its port, VRF and layer-2 segment.
 * row index, SRAM.
 */

enum {
    LIF_MAPPING_LIF_MAPPING_ID = 0,
};

/* Data of LIF_MAPPING_LIF_MAPPING_ID: 49 bits in the hardware. */
typedef struct HALDEN_PACKED lif_mapping_lif_mapping_ {
    uint16_t src_lport;                       /* 11 bits: logical port of the interface */
    uint8_t uplink;                           /* 1 bit: the interface is an uplink */
    uint8_t pinned_p2p;                       /* 1 bit: traffic goes to pinned_lport without a look-up */
    uint16_t pinned_lport;                    /* 11 bits: the port it is pinned to */
    uint16_t rmac_vrf;                        /* 12 bits: VRF in which destination MACs are looked up */
    uint16_t l2seg;                           /* 12 bits: layer-2 segment */
    uint8_t skip_ukuc_repl;                   /* 1 bit: unknown unicast is not replicated to it */
} lif_mapping_lif_mapping_t;

/* Action data: 12 bytes. */
typedef struct HALDEN_PACKED lif_mapping_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        lif_mapping_lif_mapping_t lif_mapping;
    } action_u;
} lif_mapping_actiondata_t;

/* --- lif_vela_mapping (17) ---
 * Logical interface in flow mode: port, tag and flow key type.
 * row index, SRAM.
 */

enum {
    LIF_VELA_MAPPING_LIF_VELA_MAPPING_ID = 0,
};

/* Data of LIF_VELA_MAPPING_LIF_VELA_MAPPING_ID: 44 bits in the hardware. */
typedef struct HALDEN_PACKED lif_vela_mapping_lif_vela_mapping_ {
    uint16_t src_lport;                       /* 11 bits: logical port of the interface */
    uint16_t src_tag;                         /* 16 bits: policy tag of its traffic */
    uint16_t rep_lport;                       /* 11 bits: port of the interface's representor */
    uint8_t flow_key_type;                    /* 2 bits: which flow key its packets build */
    uint8_t use_vlan_mapping;                 /* 1 bit: look the VLAN up before the interface */
    uint8_t pkt_capture;                      /* 1 bit: copy its packets to the capture port */
    uint8_t fwd_mode;                         /* 2 bits: forwarding mode */
} lif_vela_mapping_lif_vela_mapping_t;

/* Action data: 11 bytes. */
typedef struct HALDEN_PACKED lif_vela_mapping_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        lif_vela_mapping_lif_vela_mapping_t lif_vela_mapping;
    } action_u;
} lif_vela_mapping_actiondata_t;

/* --- vlan_vela_mapping (18) ---
 * VLAN in flow mode: the interfaces it maps to on each uplink.
 * row index, SRAM.
 */

enum {
    VLAN_VELA_MAPPING_VLAN_VELA_MAPPING_ID = 0,
};

/* Data of VLAN_VELA_MAPPING_VLAN_VELA_MAPPING_ID: 64 bits in the hardware. */
typedef struct HALDEN_PACKED vlan_vela_mapping_vlan_vela_mapping_ {
    uint16_t lif_0;                           /* 11 bits: logical interface of the VLAN on uplink 0 */
    uint16_t lif_1;                           /* 11 bits: logical interface of the VLAN on uplink 1 */
    uint16_t src_lport;                       /* 11 bits: logical port */
    uint16_t src_tag;                         /* 16 bits: policy tag */
    uint16_t rep_lport;                       /* 11 bits: port of the representor */
    uint8_t pkt_capture;                      /* 1 bit: copy packets to the capture port */
    uint8_t flow_key_type;                    /* 2 bits: which flow key the packets build */
    uint8_t vlan_valid;                       /* 1 bit: the row is in use */
} vlan_vela_mapping_vlan_vela_mapping_t;

/* Action data: 14 bytes. */
typedef struct HALDEN_PACKED vlan_vela_mapping_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        vlan_vela_mapping_vlan_vela_mapping_t vlan_vela_mapping;
    } action_u;
} vlan_vela_mapping_actiondata_t;

/* --- vlan_vela_ctag_mapping (19) ---
 * Customer VLAN in flow mode: the interfaces it maps to on each uplink.
 * row index, SRAM.
 */

enum {
    VLAN_VELA_CTAG_MAPPING_VLAN_VELA_CTAG_MAPPING_ID = 0,
};

/* Data of VLAN_VELA_CTAG_MAPPING_VLAN_VELA_CTAG_MAPPING_ID: 64 bits in the hardware. */
typedef struct HALDEN_PACKED vlan_vela_ctag_mapping_vlan_vela_ctag_mapping_ {
    uint16_t lif_0;                           /* 11 bits: logical interface of the VLAN on uplink 0 */
    uint16_t lif_1;                           /* 11 bits: logical interface of the VLAN on uplink 1 */
    uint16_t src_lport;                       /* 11 bits: logical port */
    uint16_t src_tag;                         /* 16 bits: policy tag */
    uint16_t rep_lport;                       /* 11 bits: port of the representor */
    uint8_t pkt_capture;                      /* 1 bit: copy packets to the capture port */
    uint8_t flow_key_type;                    /* 2 bits: which flow key the packets build */
    uint8_t vlan_valid;                       /* 1 bit: the row is in use */
} vlan_vela_ctag_mapping_vlan_vela_ctag_mapping_t;

/* Action data: 14 bytes. */
typedef struct HALDEN_PACKED vlan_vela_ctag_mapping_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        vlan_vela_ctag_mapping_vlan_vela_ctag_mapping_t vlan_vela_ctag_mapping;
    } action_u;
} vlan_vela_ctag_mapping_actiondata_t;

/* --- validate_packet_vela (20) ---
 * Header checks in flow mode: the logical port of each physical port.
 * row index, SRAM.
 */

enum {
    VALIDATE_PACKET_VELA_VALIDATE_HEADERS_VELA_ID = 0,
};

/* Data of VALIDATE_PACKET_VELA_VALIDATE_HEADERS_VELA_ID: 64 bits in the hardware. */
typedef struct HALDEN_PACKED validate_packet_vela_validate_headers_vela_ {
    uint16_t lport0;                          /* 16 bits: logical port of physical port 0 */
    uint16_t lport1;                          /* 16 bits */
    uint16_t lport2;                          /* 16 bits */
    uint16_t lport3;                          /* 16 bits */
} validate_packet_vela_validate_headers_vela_t;

/* Action data: 9 bytes. */
typedef struct HALDEN_PACKED validate_packet_vela_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        validate_packet_vela_validate_headers_vela_t validate_headers_vela;
    } action_u;
} validate_packet_vela_actiondata_t;

/* --- flow_info (21) ---
 * What happens to a flow's packets: destination, rewrites, tracking, export.
 * row index, HBM.
 */

enum {
    FLOW_INFO_FLOW_INFO_A_ID = 0,
};

/* Data of FLOW_INFO_FLOW_INFO_A_ID: 328 bits in the hardware. */
typedef struct HALDEN_PACKED flow_info_flow_info_a_ {
    uint32_t timestamp;                       /* 32 bits: time of the last packet */
    uint8_t count[8];                         /* 64 bits: packets seen */
    uint16_t src_tag;                         /* 16 bits */
    uint16_t dst_tag;                         /* 16 bits */
    uint16_t dst_lport;                       /* 11 bits: logical port the flow goes to */
    uint8_t dst_uplink;                       /* 1 bit */
    uint8_t dst_uplink_idx;                   /* 2 bits */
    uint8_t vdr_ttl_check;                    /* 1 bit: drop when the TTL runs out */
    uint8_t vdr_hops;                         /* 8 bits: routing hops to take off the TTL */
    uint8_t vdr_vld;                          /* 1 bit */
    uint8_t nat_vld;                          /* 1 bit */
    uint32_t nat_idx;                         /* 22 bits: nat_rewrite row */
    uint8_t encap;                            /* 1 bit */
    uint16_t encap_idx;                       /* 13 bits: tunnel_encap row */
    uint8_t decap;                            /* 1 bit */
    uint8_t ct_ingress_vld;                   /* 1 bit */
    uint8_t ct_ingress_dir;                   /* 1 bit */
    uint32_t ct_ingress_idx;                  /* 22 bits: conntrack_ingress row */
    uint16_t ct_ingress_stats;                /* 12 bits: ct_ingress_stats row */
    uint8_t ct_egress_vld;                    /* 1 bit */
    uint8_t ct_egress_dir;                    /* 1 bit */
    uint32_t ct_egress_idx;                   /* 22 bits: conntrack_egress row */
    uint16_t ct_egress_stats;                 /* 12 bits: ct_egress_stats row */
    uint8_t ipfix_ingress_vld;                /* 1 bit */
    uint32_t ipfix_ingress_idx;               /* 22 bits: ipfix_ingress row */
    uint8_t ipfix_egress_vld;                 /* 1 bit */
    uint32_t ipfix_egress_idx;                /* 22 bits: ipfix_egress row */
    uint8_t drop;                             /* 1 bit */
    uint8_t src_uplink;                       /* 1 bit */
    uint8_t src_uplink_idx;                   /* 2 bits */
    uint8_t mirror_ingress;                   /* 8 bits: mirror session of arriving packets */
    uint8_t mirror_egress;                    /* 8 bits: mirror session of leaving packets */
} flow_info_flow_info_a_t;

/* Action data: 64 bytes. */
typedef struct HALDEN_PACKED flow_info_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        flow_info_flow_info_a_t flow_info_a;
    } action_u;
} flow_info_actiondata_t;

/* --- conntrack_ingress (22) ---
 * TCP connection tracking of arriving packets.
 * row index, HBM.
 */

enum {
    CONNTRACK_INGRESS_CONNTRACK_INGRESS_FULL_ID = 0,
    CONNTRACK_INGRESS_CONNTRACK_INGRESS_SLOPPY_ID = 1,
};

/* Data of CONNTRACK_INGRESS_CONNTRACK_INGRESS_FULL_ID: 192 bits in the hardware. */
typedef struct HALDEN_PACKED conntrack_ingress_conntrack_ingress_full_ {
    uint32_t src_seqlo;                       /* 32 bits: lowest sequence number accepted from the source */
    uint32_t src_seqhi;                       /* 32 bits: highest */
    uint16_t src_max_win;                     /* 16 bits: largest window the source announced */
    uint8_t src_state;                        /* 4 bits: TCP state of the source side */
    uint8_t src_wscale;                       /* 4 bits: its window scale */
    uint32_t dst_seqlo;                       /* 32 bits */
    uint32_t dst_seqhi;                       /* 32 bits */
    uint16_t dst_max_win;                     /* 16 bits */
    uint8_t dst_state;                        /* 4 bits */
    uint8_t dst_wscale;                       /* 4 bits */
    uint8_t sw_state;                         /* 8 bits: software's own state */
    uint8_t ct_log;                           /* 8 bits: what is logged; full tracking only */
} conntrack_ingress_conntrack_ingress_full_t;

/* Data of CONNTRACK_INGRESS_CONNTRACK_INGRESS_SLOPPY_ID: 184 bits in the hardware. */
typedef struct HALDEN_PACKED conntrack_ingress_conntrack_ingress_sloppy_ {
    uint32_t src_seqlo;                       /* 32 bits: lowest sequence number accepted from the source */
    uint32_t src_seqhi;                       /* 32 bits: highest */
    uint16_t src_max_win;                     /* 16 bits: largest window the source announced */
    uint8_t src_state;                        /* 4 bits: TCP state of the source side */
    uint8_t src_wscale;                       /* 4 bits: its window scale */
    uint32_t dst_seqlo;                       /* 32 bits */
    uint32_t dst_seqhi;                       /* 32 bits */
    uint16_t dst_max_win;                     /* 16 bits */
    uint8_t dst_state;                        /* 4 bits */
    uint8_t dst_wscale;                       /* 4 bits */
    uint8_t sw_state;                         /* 8 bits: software's own state */
} conntrack_ingress_conntrack_ingress_sloppy_t;

/* Action data: 27 bytes. */
typedef struct HALDEN_PACKED conntrack_ingress_actiondata_ {
    uint8_t action_id; /* 0 to 1 */
    union {
        conntrack_ingress_conntrack_ingress_full_t conntrack_ingress_full;
        conntrack_ingress_conntrack_ingress_sloppy_t conntrack_ingress_sloppy;
    } action_u;
} conntrack_ingress_actiondata_t;

/* --- conntrack_egress (23) ---
 * TCP connection tracking of leaving packets.
 * row index, HBM.
 */

enum {
    CONNTRACK_EGRESS_CONNTRACK_EGRESS_FULL_ID = 0,
    CONNTRACK_EGRESS_CONNTRACK_EGRESS_SLOPPY_ID = 1,
};

/* Data of CONNTRACK_EGRESS_CONNTRACK_EGRESS_FULL_ID: 192 bits in the hardware. */
typedef struct HALDEN_PACKED conntrack_egress_conntrack_egress_full_ {
    uint32_t src_seqlo;                       /* 32 bits: lowest sequence number accepted from the source */
    uint32_t src_seqhi;                       /* 32 bits: highest */
    uint16_t src_max_win;                     /* 16 bits: largest window the source announced */
    uint8_t src_state;                        /* 4 bits: TCP state of the source side */
    uint8_t src_wscale;                       /* 4 bits: its window scale */
    uint32_t dst_seqlo;                       /* 32 bits */
    uint32_t dst_seqhi;                       /* 32 bits */
    uint16_t dst_max_win;                     /* 16 bits */
    uint8_t dst_state;                        /* 4 bits */
    uint8_t dst_wscale;                       /* 4 bits */
    uint8_t sw_state;                         /* 8 bits: software's own state */
    uint8_t ct_log;                           /* 8 bits: what is logged; full tracking only */
} conntrack_egress_conntrack_egress_full_t;

/* Data of CONNTRACK_EGRESS_CONNTRACK_EGRESS_SLOPPY_ID: 184 bits in the hardware. */
typedef struct HALDEN_PACKED conntrack_egress_conntrack_egress_sloppy_ {
    uint32_t src_seqlo;                       /* 32 bits: lowest sequence number accepted from the source */
    uint32_t src_seqhi;                       /* 32 bits: highest */
    uint16_t src_max_win;                     /* 16 bits: largest window the source announced */
    uint8_t src_state;                        /* 4 bits: TCP state of the source side */
    uint8_t src_wscale;                       /* 4 bits: its window scale */
    uint32_t dst_seqlo;                       /* 32 bits */
    uint32_t dst_seqhi;                       /* 32 bits */
    uint16_t dst_max_win;                     /* 16 bits */
    uint8_t dst_state;                        /* 4 bits */
    uint8_t dst_wscale;                       /* 4 bits */
    uint8_t sw_state;                         /* 8 bits: software's own state */
} conntrack_egress_conntrack_egress_sloppy_t;

/* Action data: 27 bytes. */
typedef struct HALDEN_PACKED conntrack_egress_actiondata_ {
    uint8_t action_id; /* 0 to 1 */
    union {
        conntrack_egress_conntrack_egress_full_t conntrack_egress_full;
        conntrack_egress_conntrack_egress_sloppy_t conntrack_egress_sloppy;
    } action_u;
} conntrack_egress_actiondata_t;

/* --- l2seg (24) ---
 * Layer-2 segment: who receives its unknown and broadcast traffic.
 * row index, SRAM.
 */

enum {
    L2SEG_L2SEG_ID = 0,
};

/* Data of L2SEG_L2SEG_ID: 19 bits in the hardware. */
typedef struct HALDEN_PACKED l2seg_l2seg_ {
    uint8_t host_rcvr_ukuc;                   /* 1 bit: the host receives unknown unicast */
    uint8_t host_rcvr_ukmc;                   /* 1 bit: the host receives unknown multicast */
    uint8_t host_rcvr_bcast;                  /* 1 bit: the host receives broadcast */
    uint16_t replicate_idx;                   /* 16 bits: replication list of the segment */
} l2seg_l2seg_t;

/* Action data: 6 bytes. */
typedef struct HALDEN_PACKED l2seg_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        l2seg_l2seg_t l2seg;
    } action_u;
} l2seg_actiondata_t;

/* --- p4i_stats (25) ---
 * Counters of the ingress pipeline.
 * row index, SRAM.
 */

enum {
    P4I_STATS_P4I_STATS_ID = 0,
};

/* Data of P4I_STATS_P4I_STATS_ID: 384 bits in the hardware. */
typedef struct HALDEN_PACKED p4i_stats_p4i_stats_ {
    uint8_t rx_from_host[8];                  /* 64 bits */
    uint8_t rx_from_switch[8];                /* 64 bits */
    uint8_t rx_from_cpu[8];                   /* 64 bits */
    uint8_t rx_user_csum_err[8];              /* 64 bits */
    uint8_t rx_substrate_csum_err[8];         /* 64 bits */
    uint8_t rx_malformed[8];                  /* 64 bits */
} p4i_stats_p4i_stats_t;

/* Action data: 49 bytes. */
typedef struct HALDEN_PACKED p4i_stats_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        p4i_stats_p4i_stats_t p4i_stats;
    } action_u;
} p4i_stats_actiondata_t;

/* --- lif_tx_stats (26) ---
 * Counters of packets sent to a logical interface.
 * row index, HBM.
 */

enum {
    LIF_TX_STATS_LIF_TX_STATS_ID = 0,
};

/* Data of LIF_TX_STATS_LIF_TX_STATS_ID: 512 bits in the hardware. */
typedef struct HALDEN_PACKED lif_tx_stats_lif_tx_stats_ {
    uint8_t ucast_bytes[8];                   /* 64 bits */
    uint8_t ucast_pkts[8];                    /* 64 bits */
    uint8_t mcast_bytes[8];                   /* 64 bits */
    uint8_t mcast_pkts[8];                    /* 64 bits */
    uint8_t bcast_bytes[8];                   /* 64 bits */
    uint8_t bcast_pkts[8];                    /* 64 bits */
    uint8_t pad1[8];                          /* 64 bits */
    uint8_t pad2[8];                          /* 64 bits */
} lif_tx_stats_lif_tx_stats_t;

/* Action data: 65 bytes. */
typedef struct HALDEN_PACKED lif_tx_stats_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        lif_tx_stats_lif_tx_stats_t lif_tx_stats;
    } action_u;
} lif_tx_stats_actiondata_t;

/* --- lport_tx_stats (27) ---
 * Counters of packets sent to a logical port.
 * row index, HBM.
 */

enum {
    LPORT_TX_STATS_LPORT_TX_STATS_ID = 0,
};

/* Data of LPORT_TX_STATS_LPORT_TX_STATS_ID: 512 bits in the hardware. */
typedef struct HALDEN_PACKED lport_tx_stats_lport_tx_stats_ {
    uint8_t ucast_bytes[8];                   /* 64 bits */
    uint8_t ucast_pkts[8];                    /* 64 bits */
    uint8_t mcast_bytes[8];                   /* 64 bits */
    uint8_t mcast_pkts[8];                    /* 64 bits */
    uint8_t bcast_bytes[8];                   /* 64 bits */
    uint8_t bcast_pkts[8];                    /* 64 bits */
    uint8_t pad0[8];                          /* 64 bits */
    uint8_t pad1[8];                          /* 64 bits */
} lport_tx_stats_lport_tx_stats_t;

/* Action data: 65 bytes. */
typedef struct HALDEN_PACKED lport_tx_stats_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        lport_tx_stats_lport_tx_stats_t lport_tx_stats;
    } action_u;
} lport_tx_stats_actiondata_t;

/* --- ct_ingress_stats (28) ---
 * Connection tracking verdicts of arriving packets.
 * row index, HBM.
 */

enum {
    CT_INGRESS_STATS_CT_INGRESS_STATS_ID = 0,
};

/* Data of CT_INGRESS_STATS_CT_INGRESS_STATS_ID: 512 bits in the hardware. */
typedef struct HALDEN_PACKED ct_ingress_stats_ct_ingress_stats_ {
    uint8_t pass_bytes_0[8];                  /* 64 bits */
    uint8_t pass_pkts_0[8];                   /* 64 bits */
    uint8_t drop_bytes_0[8];                  /* 64 bits */
    uint8_t drop_pkts_0[8];                   /* 64 bits */
    uint8_t pass_bytes_1[8];                  /* 64 bits */
    uint8_t pass_pkts_1[8];                   /* 64 bits */
    uint8_t drop_bytes_1[8];                  /* 64 bits */
    uint8_t drop_pkts_1[8];                   /* 64 bits */
} ct_ingress_stats_ct_ingress_stats_t;

/* Action data: 65 bytes. */
typedef struct HALDEN_PACKED ct_ingress_stats_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        ct_ingress_stats_ct_ingress_stats_t ct_ingress_stats;
    } action_u;
} ct_ingress_stats_actiondata_t;

/* --- ct_egress_stats (29) ---
 * Connection tracking verdicts of leaving packets.
 * row index, HBM.
 */

enum {
    CT_EGRESS_STATS_CT_EGRESS_STATS_ID = 0,
};

/* Data of CT_EGRESS_STATS_CT_EGRESS_STATS_ID: 512 bits in the hardware. */
typedef struct HALDEN_PACKED ct_egress_stats_ct_egress_stats_ {
    uint8_t pass_bytes_0[8];                  /* 64 bits */
    uint8_t pass_pkts_0[8];                   /* 64 bits */
    uint8_t drop_bytes_0[8];                  /* 64 bits */
    uint8_t drop_pkts_0[8];                   /* 64 bits */
    uint8_t pass_bytes_1[8];                  /* 64 bits */
    uint8_t pass_pkts_1[8];                   /* 64 bits */
    uint8_t drop_bytes_1[8];                  /* 64 bits */
    uint8_t drop_pkts_1[8];                   /* 64 bits */
} ct_egress_stats_ct_egress_stats_t;

/* Action data: 65 bytes. */
typedef struct HALDEN_PACKED ct_egress_stats_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        ct_egress_stats_ct_egress_stats_t ct_egress_stats;
    } action_u;
} ct_egress_stats_actiondata_t;

/* --- mirror_rewrite (30) ---
 * Mirror session: where the copies go and how they are marked.
 * row index, SRAM.
 */

enum {
    MIRROR_REWRITE_MIRROR_REWRITE_A_ID = 0,
};

/* Data of MIRROR_REWRITE_MIRROR_REWRITE_A_ID: 159 bits in the hardware. */
typedef struct HALDEN_PACKED mirror_rewrite_mirror_rewrite_a_ {
    uint16_t dst_lport;                       /* 16 bits: logical port the copy goes to */
    uint8_t reason;                           /* 8 bits: why the packet was mirrored */
    uint32_t flowCookie;                      /* 32 bits: software's own number of the flow */
    uint8_t vlan_push;                        /* 1 bit */
    uint8_t geneve_option_vld;                /* 1 bit */
    uint8_t geneve_option_dmac[6];            /* 48 bits */
    uint16_t vlan_id;                         /* 12 bits */
    uint8_t tunnel_rewrite_vld;               /* 1 bit */
    uint16_t tunnel_rewrite_idx;              /* 13 bits: tunnel_encap row */
    uint32_t tunnel_rewrite_vni;              /* 24 bits */
    uint8_t pkt_capture;                      /* 1 bit */
    uint8_t mirror_sw;                        /* 1 bit: the copy goes to software */
    uint8_t mirror_l3;                        /* 1 bit: the copy is carried over layer 3 */
} mirror_rewrite_mirror_rewrite_a_t;

/* Action data: 28 bytes. */
typedef struct HALDEN_PACKED mirror_rewrite_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        mirror_rewrite_mirror_rewrite_a_t mirror_rewrite_a;
    } action_u;
} mirror_rewrite_actiondata_t;

/* --- mirror_rewrite_l3 (31) ---
 * Layer-3 carrier of a mirror session's copies.
 * row index, HBM.
 */

enum {
    MIRROR_REWRITE_L3_MIRROR_REWRITE_L3_A_ID = 0,
};

/* Data of MIRROR_REWRITE_L3_MIRROR_REWRITE_L3_A_ID: 512 bits in the hardware. */
typedef struct HALDEN_PACKED mirror_rewrite_l3_mirror_rewrite_l3_a_ {
    uint32_t gre_key_seq;                     /* 32 bits: GRE key or sequence number */
    uint8_t mirror_type;                      /* 2 bits: encapsulation of the copy */
    uint8_t ipv6;                             /* 1 bit: the carrier is IPv6 */
    uint8_t vlan_vld;                         /* 1 bit */
    uint16_t vlan_id;                         /* 12 bits */
    uint8_t smac[6];                          /* 48 bits */
    uint8_t dmac[6];                          /* 48 bits */
    uint8_t ipsa[16];                         /* 128 bits: source address, byte 0 lowest */
    uint8_t ipda[16];                         /* 128 bits: destination address, byte 0 lowest */
    uint8_t tc;                               /* 8 bits: traffic class */
    uint8_t ttl;                              /* 8 bits */
    uint8_t erspan_hw_id;                     /* 6 bits */
    uint16_t erspan_session_id;               /* 10 bits */
    uint8_t erspan_timestamp_ns;              /* 1 bit */
    uint8_t trun_vld;                         /* 1 bit: copies are truncated */
    uint8_t l2_type;                          /* 2 bits */
    uint8_t cos;                              /* 3 bits */
    uint8_t spare1;                           /* 1 bit */
    uint16_t trun_len;                        /* 16 bits: bytes kept of a truncated copy */
    uint8_t spare2[7];                        /* 56 bits */
} mirror_rewrite_l3_mirror_rewrite_l3_a_t;

/* Action data: 73 bytes. */
typedef struct HALDEN_PACKED mirror_rewrite_l3_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        mirror_rewrite_l3_mirror_rewrite_l3_a_t mirror_rewrite_l3_a;
    } action_u;
} mirror_rewrite_l3_actiondata_t;

/* --- flow_rewrite (32) ---
 * Header rewrite of a flow: VLAN, DSCP, MACs, encapsulation.
 * row index, HBM.
 */

enum {
    FLOW_REWRITE_FLOW_REWRITE_A_ID = 0,
};

/* Data of FLOW_REWRITE_FLOW_REWRITE_A_ID: 223 bits in the hardware. */
typedef struct HALDEN_PACKED flow_rewrite_flow_rewrite_a_ {
    uint8_t vlan_pop;                         /* 1 bit */
    uint8_t vlan_push;                        /* 1 bit */
    uint8_t vlan_set_vid;                     /* 1 bit */
    uint16_t vlan_vid;                        /* 12 bits */
    uint8_t vlan_set_pcp;                     /* 1 bit */
    uint8_t vlan_pcp;                         /* 3 bits */
    uint8_t ip_dscp_set;                      /* 1 bit */
    uint8_t ip_dscp;                          /* 6 bits */
    uint8_t route;                            /* 1 bit: the packet is routed: new MACs, TTL taken down */
    uint8_t rss_override;                     /* 1 bit */
    uint8_t rss_override_qid;                 /* 6 bits */
    uint8_t smac[6];                          /* 48 bits: source MAC when routed */
    uint8_t dmac[6];                          /* 48 bits: destination MAC when routed */
    uint8_t hops;                             /* 8 bits */
    uint8_t kcp_vlan_push;                    /* 1 bit */
    uint16_t kcp_vlan_vid;                    /* 12 bits */
    uint32_t vni;                             /* 24 bits: virtual network identifier of the encapsulation */
    uint16_t encap_sport;                     /* 16 bits: UDP source port of the encapsulation */
    uint32_t flow_cookie;                     /* 32 bits: software's own number of the flow */
} flow_rewrite_flow_rewrite_a_t;

/* Action data: 39 bytes. */
typedef struct HALDEN_PACKED flow_rewrite_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        flow_rewrite_flow_rewrite_a_t flow_rewrite_a;
    } action_u;
} flow_rewrite_actiondata_t;

/* --- nat_rewrite (33) ---
 * Address translation of a flow.
 * row index, HBM.
 */

enum {
    NAT_REWRITE_NAT_REWRITE_A_ID = 0,
};

/* Data of NAT_REWRITE_NAT_REWRITE_A_ID: 258 bits in the hardware. */
typedef struct HALDEN_PACKED nat_rewrite_nat_rewrite_a_ {
    uint8_t ipsa[16];                         /* 128 bits: new source address, byte 0 lowest */
    uint8_t ipda[16];                         /* 128 bits: new destination address, byte 0 lowest */
    uint8_t ipsa_rw;                          /* 1 bit: the source is rewritten */
    uint8_t ipda_rw;                          /* 1 bit: the destination is rewritten */
} nat_rewrite_nat_rewrite_a_t;

/* Action data: 35 bytes. */
typedef struct HALDEN_PACKED nat_rewrite_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        nat_rewrite_nat_rewrite_a_t nat_rewrite_a;
    } action_u;
} nat_rewrite_actiondata_t;

/* --- tunnel_encap (34) ---
 * Tunnel: the outer headers put in front of a packet.
 * row index, HBM.
 */

enum {
    TUNNEL_ENCAP_TUNNEL_ENCAP_A_ID = 0,
};

/* Data of TUNNEL_ENCAP_TUNNEL_ENCAP_A_ID: 409 bits in the hardware. */
typedef struct HALDEN_PACKED tunnel_encap_tunnel_encap_a_ {
    uint8_t ipv6;                             /* 1 bit: outer header is IPv6 */
    uint8_t geneve;                           /* 1 bit: Geneve rather than VXLAN */
    uint8_t l2_type;                          /* 2 bits */
    uint8_t smac[6];                          /* 48 bits: outer source MAC */
    uint8_t dmac[6];                          /* 48 bits: outer destination MAC */
    uint8_t vlan_vld;                         /* 1 bit */
    uint16_t vlan_id;                         /* 12 bits */
    uint8_t tc_copy;                          /* 1 bit: the inner traffic class is copied out */
    uint8_t geneve_opt_label_vld;             /* 1 bit */
    uint8_t __pad_0;                          /* 5 bits: unused */
    uint8_t ipsa[16];                         /* 128 bits: outer source address, byte 0 lowest */
    uint8_t ipda[16];                         /* 128 bits: outer destination address, byte 0 lowest */
    uint8_t tc;                               /* 8 bits: outer traffic class */
    uint8_t ttl;                              /* 8 bits: outer TTL */
    uint32_t geneve_opt_label_labelID;        /* 17 bits */
} tunnel_encap_tunnel_encap_a_t;

/* Action data: 60 bytes. */
typedef struct HALDEN_PACKED tunnel_encap_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        tunnel_encap_tunnel_encap_a_t tunnel_encap_a;
    } action_u;
} tunnel_encap_actiondata_t;

/* --- ipfix_ingress (35) ---
 * Flow export counters of arriving packets.
 * row index, HBM.
 */

enum {
    IPFIX_INGRESS_IPFIX_ID = 0,
};

/* Data of IPFIX_INGRESS_IPFIX_ID: 136 bits in the hardware. */
typedef struct HALDEN_PACKED ipfix_ingress_ipfix_ {
    uint8_t pcnt[8];                          /* 64 bits: packets */
    uint8_t bcnt[8];                          /* 64 bits: bytes */
    uint8_t tcp_flags;                        /* 8 bits: TCP flags seen */
} ipfix_ingress_ipfix_t;

/* Action data: 18 bytes. */
typedef struct HALDEN_PACKED ipfix_ingress_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        ipfix_ingress_ipfix_t ipfix;
    } action_u;
} ipfix_ingress_actiondata_t;

/* --- ipfix_egress (36) ---
 * Flow export counters of leaving packets.
 * row index, HBM.
 */

enum {
    IPFIX_EGRESS_IPFIX_ID = 0,
};

/* Data of IPFIX_EGRESS_IPFIX_ID: 136 bits in the hardware. */
typedef struct HALDEN_PACKED ipfix_egress_ipfix_ {
    uint8_t pcnt[8];                          /* 64 bits: packets */
    uint8_t bcnt[8];                          /* 64 bits: bytes */
    uint8_t tcp_flags;                        /* 8 bits: TCP flags seen */
} ipfix_egress_ipfix_t;

/* Action data: 18 bytes. */
typedef struct HALDEN_PACKED ipfix_egress_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        ipfix_egress_ipfix_t ipfix;
    } action_u;
} ipfix_egress_actiondata_t;

/* --- output_mapping (37) ---
 * Logical output port: interface, VLAN handling, egress ports.
 * row index, SRAM.
 */

enum {
    OUTPUT_MAPPING_OUTPUT_MAPPING_A_ID = 0,
    OUTPUT_MAPPING_OUTPUT_MAPPING_DROP_A_ID = 1,
};

/* Data of OUTPUT_MAPPING_OUTPUT_MAPPING_A_ID: 70 bits in the hardware. */
typedef struct HALDEN_PACKED output_mapping_output_mapping_a_ {
    uint8_t vlan_strip;                       /* 1 bit */
    uint8_t pkt_capture;                      /* 1 bit */
    uint8_t nports;                           /* 2 bits: number of egress ports */
    uint8_t p4plus_app_id;                    /* 4 bits: application of the receive path */
    uint16_t dst_tag;                         /* 16 bits */
    uint16_t dst_lif;                         /* 11 bits: logical interface */
    uint16_t access_vlan_id;                  /* 12 bits: VLAN that is taken off */
    uint8_t vmk_metadata;                     /* 1 bit */
    uint8_t rss_inner;                        /* 1 bit: receive scaling hashes the inner headers */
    uint8_t vlan_push;                        /* 1 bit */
    uint16_t vlan_push_id;                    /* 12 bits */
    uint8_t egress_port1;                     /* 4 bits */
    uint8_t egress_port2;                     /* 4 bits */
} output_mapping_output_mapping_a_t;

/* Action data: 18 bytes. */
typedef struct HALDEN_PACKED output_mapping_actiondata_ {
    uint8_t action_id; /* 0 to 1 */
    union {
        output_mapping_output_mapping_a_t output_mapping_a;
    } action_u;
} output_mapping_actiondata_t;

/* --- p4plus_app (38) ---
 * Receive application: how a packet is handed to its queue.
 * row index, SRAM.
 */

enum {
    P4PLUS_APP_P4PLUS_APP_CLASSIC_NIC_A_ID = 0,
    P4PLUS_APP_P4PLUS_APP_KESTREL_QPL_A_ID = 1,
    P4PLUS_APP_NOP_A_ID = 2,
};

/* Action data: 2 bytes. */
typedef struct HALDEN_PACKED p4plus_app_actiondata_ {
    uint8_t action_id; /* 0 to 2 */
    union {
        uint8_t unused; /* no action carries data */
    } action_u;
} p4plus_app_actiondata_t;

/* --- p4e_stats (39) ---
 * Counters of the egress pipeline.
 * row index, SRAM.
 */

enum {
    P4E_STATS_P4E_STATS_ID = 0,
};

/* Data of P4E_STATS_P4E_STATS_ID: 384 bits in the hardware. */
typedef struct HALDEN_PACKED p4e_stats_p4e_stats_ {
    uint8_t tx_to_host[8];                    /* 64 bits */
    uint8_t tx_to_switch[8];                  /* 64 bits */
    uint8_t tx_to_cpu[8];                     /* 64 bits */
    uint8_t flow_miss[8];                     /* 64 bits */
    uint8_t conntrack_redir[8];               /* 64 bits */
    uint8_t drop[8];                          /* 64 bits */
} p4e_stats_p4e_stats_t;

/* Action data: 49 bytes. */
typedef struct HALDEN_PACKED p4e_stats_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        p4e_stats_p4e_stats_t p4e_stats;
    } action_u;
} p4e_stats_actiondata_t;

/* --- lport_rx_stats (40) ---
 * Counters of packets received from a logical port.
 * row index, HBM.
 */

enum {
    LPORT_RX_STATS_LPORT_RX_STATS_ID = 0,
};

/* Data of LPORT_RX_STATS_LPORT_RX_STATS_ID: 512 bits in the hardware. */
typedef struct HALDEN_PACKED lport_rx_stats_lport_rx_stats_ {
    uint8_t ucast_bytes[8];                   /* 64 bits */
    uint8_t ucast_pkts[8];                    /* 64 bits */
    uint8_t mcast_bytes[8];                   /* 64 bits */
    uint8_t mcast_pkts[8];                    /* 64 bits */
    uint8_t bcast_bytes[8];                   /* 64 bits */
    uint8_t bcast_pkts[8];                    /* 64 bits */
    uint8_t pad0[8];                          /* 64 bits */
    uint8_t pad1[8];                          /* 64 bits */
} lport_rx_stats_lport_rx_stats_t;

/* Action data: 65 bytes. */
typedef struct HALDEN_PACKED lport_rx_stats_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        lport_rx_stats_lport_rx_stats_t lport_rx_stats;
    } action_u;
} lport_rx_stats_actiondata_t;

/* --- validate_packet (41) ---
 * Header checks.
 * no key and no data, an action program alone.
 */

enum {
    VALIDATE_PACKET_VALIDATE_HEADERS_ID = 0,
};

/* Empty key: one unused byte. */
typedef struct HALDEN_PACKED validate_packet_swkey_ {
    uint8_t unused;
} validate_packet_swkey_t;

/* Action data: 2 bytes. */
typedef struct HALDEN_PACKED validate_packet_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        uint8_t unused; /* no action carries data */
    } action_u;
} validate_packet_actiondata_t;

/* --- p4plus_offload (42) ---
 * Offload metadata handed to the receive path.
 * no key and no data, an action program alone.
 */

enum {
    P4PLUS_OFFLOAD_P4PLUS_OFFLOAD_ID = 0,
};

/* Empty key: one unused byte. */
typedef struct HALDEN_PACKED p4plus_offload_swkey_ {
    uint8_t unused;
} p4plus_offload_swkey_t;

/* Action data: 2 bytes. */
typedef struct HALDEN_PACKED p4plus_offload_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        uint8_t unused; /* no action carries data */
    } action_u;
} p4plus_offload_actiondata_t;

/* --- replica_rewrite (43) ---
 * Metadata of replicated packets.
 * no key and no data, an action program alone.
 */

enum {
    REPLICA_REWRITE_REPLICA_REWRITE_A_ID = 0,
};

/* Empty key: one unused byte. */
typedef struct HALDEN_PACKED replica_rewrite_swkey_ {
    uint8_t unused;
} replica_rewrite_swkey_t;

/* Action data: 2 bytes. */
typedef struct HALDEN_PACKED replica_rewrite_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        uint8_t unused; /* no action carries data */
    } action_u;
} replica_rewrite_actiondata_t;

/* --- tunnel_decap (44) ---
 * Takes the outer headers of a terminated tunnel off.
 * no key and no data, an action program alone.
 */

enum {
    TUNNEL_DECAP_TUNNEL_DECAP_A_ID = 0,
};

/* Empty key: one unused byte. */
typedef struct HALDEN_PACKED tunnel_decap_swkey_ {
    uint8_t unused;
} tunnel_decap_swkey_t;

/* Action data: 2 bytes. */
typedef struct HALDEN_PACKED tunnel_decap_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        uint8_t unused; /* no action carries data */
    } action_u;
} tunnel_decap_actiondata_t;

/* --- p4plus_app_rss_0 (45) ---
 * Receive scaling of the first copy.
 * no key and no data, an action program alone.
 */

enum {
    P4PLUS_APP_RSS_0_HALDENEGRESSPIPELINE_P4PLUSREWRITE_P4PLUS_APP_RSS_0_A_ID = 0,
};

/* Empty key: one unused byte. */
typedef struct HALDEN_PACKED p4plus_app_rss_0_swkey_ {
    uint8_t unused;
} p4plus_app_rss_0_swkey_t;

/* Action data: 2 bytes. */
typedef struct HALDEN_PACKED p4plus_app_rss_0_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        uint8_t unused; /* no action carries data */
    } action_u;
} p4plus_app_rss_0_actiondata_t;

/* --- p4plus_app_rss_mirror (46) ---
 * Receive scaling of a mirrored copy.
 * no key and no data, an action program alone.
 */

enum {
    P4PLUS_APP_RSS_MIRROR_HALDENEGRESSPIPELINE_P4PLUSREWRITE_P4PLUS_APP_RSS_MIRROR_A_ID = 0,
};

/* Empty key: one unused byte. */
typedef struct HALDEN_PACKED p4plus_app_rss_mirror_swkey_ {
    uint8_t unused;
} p4plus_app_rss_mirror_swkey_t;

/* Action data: 2 bytes. */
typedef struct HALDEN_PACKED p4plus_app_rss_mirror_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        uint8_t unused; /* no action carries data */
    } action_u;
} p4plus_app_rss_mirror_actiondata_t;

/* --- p4plus_app_rss_1 (47) ---
 * Receive scaling of the second copy.
 * no key and no data, an action program alone.
 */

enum {
    P4PLUS_APP_RSS_1_HALDENEGRESSPIPELINE_P4PLUSREWRITE_P4PLUS_APP_RSS_1_A_ID = 0,
};

/* Empty key: one unused byte. */
typedef struct HALDEN_PACKED p4plus_app_rss_1_swkey_ {
    uint8_t unused;
} p4plus_app_rss_1_swkey_t;

/* Action data: 2 bytes. */
typedef struct HALDEN_PACKED p4plus_app_rss_1_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        uint8_t unused; /* no action carries data */
    } action_u;
} p4plus_app_rss_1_actiondata_t;

/* --- p4plus_app_rss_2 (48) ---
 * Receive scaling of the third copy.
 * no key and no data, an action program alone.
 */

enum {
    P4PLUS_APP_RSS_2_HALDENEGRESSPIPELINE_P4PLUSREWRITE_P4PLUS_APP_RSS_2_A_ID = 0,
};

/* Empty key: one unused byte. */
typedef struct HALDEN_PACKED p4plus_app_rss_2_swkey_ {
    uint8_t unused;
} p4plus_app_rss_2_swkey_t;

/* Action data: 2 bytes. */
typedef struct HALDEN_PACKED p4plus_app_rss_2_actiondata_ {
    uint8_t action_id; /* 0 to 0 */
    union {
        uint8_t unused; /* no action carries data */
    } action_u;
} p4plus_app_rss_2_actiondata_t;

#ifdef __cplusplus
}
#endif
