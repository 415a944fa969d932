// The software records' sizes and offsets, literally, from C and from C++.

#include <cstddef>
#include <cstring>

#include "gtest/gtest.h"
#include "p4pd_records.h"
#include "tests/abi/record_layouts.h"

extern "C" {
unsigned c_size_of_flow_key(void);
unsigned c_size_of_flow_info(void);
unsigned c_offset_of_sip(void);
uint32_t c_read_source_address(const void *key);
}

namespace {

TEST(Records, CAndCxxSeeTheSameLayout) {
    EXPECT_EQ(c_size_of_flow_key(), 77u);
    EXPECT_EQ(c_size_of_flow_info(), 64u);
    EXPECT_EQ(c_offset_of_sip(), 61u);
}

TEST(Records, SizesOfEveryTable) {
    EXPECT_EQ(sizeof(flow_ohash_swkey_t), 77u);
    EXPECT_EQ(sizeof(flow_swkey_t), 77u);
    EXPECT_EQ(sizeof(vlan_mapping_swkey_t), 4u);
    EXPECT_EQ(sizeof(tunnel_terminate_sa_v4_swkey_t), 5u);
    EXPECT_EQ(sizeof(tunnel_terminate_sa_v6_swkey_t), 17u);
    EXPECT_EQ(sizeof(registered_mac_swkey_t), 8u);
    EXPECT_EQ(sizeof(vlan_mapping_otcam_swkey_t), 4u);
    EXPECT_EQ(sizeof(vlan_mapping_otcam_swkey_mask_t), 4u);
    EXPECT_EQ(sizeof(tunnel_terminate_v4_swkey_t), 21u);
    EXPECT_EQ(sizeof(tunnel_terminate_v4_swkey_mask_t), 21u);
    EXPECT_EQ(sizeof(tunnel_terminate_v6_swkey_t), 33u);
    EXPECT_EQ(sizeof(tunnel_terminate_v6_swkey_mask_t), 33u);
    EXPECT_EQ(sizeof(tunnel_terminate_sa_v4_otcam_swkey_mask_t), 5u);
    EXPECT_EQ(sizeof(tunnel_terminate_sa_v6_otcam_swkey_mask_t), 17u);
    EXPECT_EQ(sizeof(flow_key_native_swkey_t), 3u);
    EXPECT_EQ(sizeof(flow_key_tunneled_swkey_t), 3u);
    EXPECT_EQ(sizeof(registered_mac_otcam_swkey_mask_t), 8u);
    EXPECT_EQ(sizeof(checksum_swkey_t), 8u);
    EXPECT_EQ(sizeof(validate_packet_swkey_t), 1u);
    EXPECT_EQ(sizeof(p4plus_app_rss_2_swkey_t), 1u);

    EXPECT_EQ(sizeof(flow_ohash_actiondata_t), 59u);
    EXPECT_EQ(sizeof(flow_actiondata_t), 59u);
    EXPECT_EQ(sizeof(vlan_mapping_actiondata_t), 5u);
    EXPECT_EQ(sizeof(tunnel_terminate_sa_v4_actiondata_t), 4u);
    EXPECT_EQ(sizeof(tunnel_terminate_sa_v6_actiondata_t), 4u);
    EXPECT_EQ(sizeof(registered_mac_actiondata_t), 10u);
    EXPECT_EQ(sizeof(tunnel_terminate_v4_actiondata_t), 3u);
    EXPECT_EQ(sizeof(flow_key_native_actiondata_t), 3u);
    EXPECT_EQ(sizeof(flow_key_tunneled_actiondata_t), 2u);
    EXPECT_EQ(sizeof(checksum_actiondata_t), 2u);
    EXPECT_EQ(sizeof(lif_mapping_actiondata_t), 12u);
    EXPECT_EQ(sizeof(lif_vela_mapping_actiondata_t), 11u);
    EXPECT_EQ(sizeof(vlan_vela_mapping_actiondata_t), 14u);
    EXPECT_EQ(sizeof(vlan_vela_ctag_mapping_actiondata_t), 14u);
    EXPECT_EQ(sizeof(validate_packet_vela_actiondata_t), 9u);
    EXPECT_EQ(sizeof(flow_info_actiondata_t), 64u);
    EXPECT_EQ(sizeof(conntrack_ingress_actiondata_t), 27u);
    EXPECT_EQ(sizeof(conntrack_egress_actiondata_t), 27u);
    EXPECT_EQ(sizeof(l2seg_actiondata_t), 6u);
    EXPECT_EQ(sizeof(p4i_stats_actiondata_t), 49u);
    EXPECT_EQ(sizeof(lif_tx_stats_actiondata_t), 65u);
    EXPECT_EQ(sizeof(lport_tx_stats_actiondata_t), 65u);
    EXPECT_EQ(sizeof(ct_ingress_stats_actiondata_t), 65u);
    EXPECT_EQ(sizeof(ct_egress_stats_actiondata_t), 65u);
    EXPECT_EQ(sizeof(mirror_rewrite_actiondata_t), 28u);
    EXPECT_EQ(sizeof(mirror_rewrite_l3_actiondata_t), 73u);
    EXPECT_EQ(sizeof(flow_rewrite_actiondata_t), 39u);
    EXPECT_EQ(sizeof(nat_rewrite_actiondata_t), 35u);
    EXPECT_EQ(sizeof(tunnel_encap_actiondata_t), 60u);
    EXPECT_EQ(sizeof(ipfix_ingress_actiondata_t), 18u);
    EXPECT_EQ(sizeof(ipfix_egress_actiondata_t), 18u);
    EXPECT_EQ(sizeof(output_mapping_actiondata_t), 18u);
    EXPECT_EQ(sizeof(p4plus_app_actiondata_t), 2u);
    EXPECT_EQ(sizeof(p4e_stats_actiondata_t), 49u);
    EXPECT_EQ(sizeof(lport_rx_stats_actiondata_t), 65u);
    EXPECT_EQ(sizeof(validate_packet_actiondata_t), 2u);
    EXPECT_EQ(sizeof(p4plus_app_rss_mirror_actiondata_t), 2u);
}

TEST(Records, A32BitFieldAtAnOddAddressIsReadWithoutAFault) {
    alignas(8) unsigned char room[16] = {};
    for (size_t shift = 0; shift < 8; ++shift) {
        unsigned char *key = room + shift;
        const unsigned char bytes[5] = {9, 0x04, 0x03, 0x02, 0x01};
        std::memcpy(key, bytes, sizeof bytes);
        EXPECT_EQ(c_read_source_address(key), 0x01020304u);
    }
}

}  // namespace
