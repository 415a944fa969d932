// The 48 writers by name. The program compiles them in, for the library keeps them to itself.

#include "p4gen/halden/src/gen/entry_writers.h"
#include "tests/contract/entry_writes.h"

namespace halden::test {

p4pd_error_t write_with_named_writer(const write_request &r) {
    switch (r.tableid) {
#define HASH(id, table)                                                         \
    case id:                                                                    \
        return table##_entry_write(r.tableid, r.index, r.key,                   \
                                   static_cast<table##_actiondata_t *>(r.data), \
                                   static_cast<table##_actiondata_t *>(r.data_mask), r.flag);
#define TERNARY(id, table)                                                      \
    case id:                                                                    \
        return table##_entry_write(r.tableid, r.index, r.key, r.key_mask,       \
                                   static_cast<table##_actiondata_t *>(r.data), \
                                   static_cast<table##_actiondata_t *>(r.data_mask), r.flag);
#define UNKEYED(id, table)                                                      \
    case id:                                                                    \
        return table##_entry_write(r.tableid, r.index,                          \
                                   static_cast<table##_actiondata_t *>(r.data), \
                                   static_cast<table##_actiondata_t *>(r.data_mask), r.flag);
        HASH(1, flow_ohash)
        HASH(2, flow)
        HASH(3, vlan_mapping)
        HASH(4, tunnel_terminate_sa_v4)
        HASH(5, tunnel_terminate_sa_v6)
        HASH(6, registered_mac)
        TERNARY(7, vlan_mapping_otcam)
        TERNARY(8, tunnel_terminate_v4)
        TERNARY(9, tunnel_terminate_v6)
        TERNARY(10, tunnel_terminate_sa_v4_otcam)
        TERNARY(11, tunnel_terminate_sa_v6_otcam)
        TERNARY(12, flow_key_native)
        TERNARY(13, flow_key_tunneled)
        TERNARY(14, registered_mac_otcam)
        TERNARY(15, checksum)
        UNKEYED(16, lif_mapping)
        UNKEYED(17, lif_vela_mapping)
        UNKEYED(18, vlan_vela_mapping)
        UNKEYED(19, vlan_vela_ctag_mapping)
        UNKEYED(20, validate_packet_vela)
        UNKEYED(21, flow_info)
        UNKEYED(22, conntrack_ingress)
        UNKEYED(23, conntrack_egress)
        UNKEYED(24, l2seg)
        UNKEYED(25, p4i_stats)
        UNKEYED(26, lif_tx_stats)
        UNKEYED(27, lport_tx_stats)
        UNKEYED(28, ct_ingress_stats)
        UNKEYED(29, ct_egress_stats)
        UNKEYED(30, mirror_rewrite)
        UNKEYED(31, mirror_rewrite_l3)
        UNKEYED(32, flow_rewrite)
        UNKEYED(33, nat_rewrite)
        UNKEYED(34, tunnel_encap)
        UNKEYED(35, ipfix_ingress)
        UNKEYED(36, ipfix_egress)
        UNKEYED(37, output_mapping)
        UNKEYED(38, p4plus_app)
        UNKEYED(39, p4e_stats)
        UNKEYED(40, lport_rx_stats)
        UNKEYED(41, validate_packet)
        UNKEYED(42, p4plus_offload)
        UNKEYED(43, replica_rewrite)
        UNKEYED(44, tunnel_decap)
        UNKEYED(45, p4plus_app_rss_0)
        UNKEYED(46, p4plus_app_rss_mirror)
        UNKEYED(47, p4plus_app_rss_1)
        UNKEYED(48, p4plus_app_rss_2)
#undef UNKEYED
#undef TERNARY
#undef HASH
        default:
            ADD_FAILURE() << "no table " << r.tableid;
            return 1;
    }
}

}  // namespace halden::test
