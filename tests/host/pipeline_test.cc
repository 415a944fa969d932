// The pipeline-wide entry points: what the host knows of each table, and the way back to the
// library.

#include "sdk/p4pd_global.h"

#include "p4pd.h"
#include "p4pd_records.h"
#include "tests/host/adapter_fixture.h"

#include <cstring>
#include <string>

namespace {

using namespace halden;
using namespace halden::test;

struct table_facts {
    uint32_t id;
    const char *name;
    uint32_t depth;
    uint16_t key_bytes;
    uint16_t data_bytes;
    uint32_t overflow;
};
constexpr table_facts tables[] = {
    {1, "flow_ohash", 2097152, 77, 59, 0},
    {2, "flow", 4194304, 77, 59, 0},
    {3, "vlan_mapping", 4096, 4, 5, 7},
    {4, "tunnel_terminate_sa_v4", 8192, 5, 4, 10},
    {5, "tunnel_terminate_sa_v6", 8192, 17, 4, 11},
    {6, "registered_mac", 4096, 8, 10, 14},
    {7, "vlan_mapping_otcam", 512, 4, 5, 0},
    {8, "tunnel_terminate_v4", 512, 21, 3, 0},
    {9, "tunnel_terminate_v6", 512, 33, 3, 0},
    {10, "tunnel_terminate_sa_v4_otcam", 512, 5, 4, 0},
    {11, "tunnel_terminate_sa_v6_otcam", 512, 17, 4, 0},
    {12, "flow_key_native", 64, 3, 3, 0},
    {13, "flow_key_tunneled", 64, 3, 2, 0},
    {14, "registered_mac_otcam", 512, 8, 10, 0},
    {15, "checksum", 256, 8, 2, 0},
    {16, "lif_mapping", 1024, 0, 12, 0},
    {17, "lif_vela_mapping", 1024, 0, 11, 0},
    {18, "vlan_vela_mapping", 4096, 0, 14, 0},
    {19, "vlan_vela_ctag_mapping", 4096, 0, 14, 0},
    {20, "validate_packet_vela", 1, 0, 9, 0},
    {21, "flow_info", 2097152, 0, 64, 0},
    {22, "conntrack_ingress", 2097152, 0, 27, 0},
    {23, "conntrack_egress", 2097152, 0, 27, 0},
    {24, "l2seg", 4096, 0, 6, 0},
    {25, "p4i_stats", 1, 0, 49, 0},
    {26, "lif_tx_stats", 16384, 0, 65, 0},
    {27, "lport_tx_stats", 16384, 0, 65, 0},
    {28, "ct_ingress_stats", 4096, 0, 65, 0},
    {29, "ct_egress_stats", 4096, 0, 65, 0},
    {30, "mirror_rewrite", 16, 0, 28, 0},
    {31, "mirror_rewrite_l3", 8192, 0, 73, 0},
    {32, "flow_rewrite", 2097152, 0, 39, 0},
    {33, "nat_rewrite", 2097152, 0, 35, 0},
    {34, "tunnel_encap", 8192, 0, 60, 0},
    {35, "ipfix_ingress", 2097152, 0, 18, 0},
    {36, "ipfix_egress", 2097152, 0, 18, 0},
    {37, "output_mapping", 1024, 0, 18, 0},
    {38, "p4plus_app", 16, 0, 2, 0},
    {39, "p4e_stats", 1, 0, 49, 0},
    {40, "lport_rx_stats", 16384, 0, 65, 0},
    {41, "validate_packet", 1, 1, 2, 0},
    {42, "p4plus_offload", 1, 1, 2, 0},
    {43, "replica_rewrite", 1, 1, 2, 0},
    {44, "tunnel_decap", 1, 1, 2, 0},
    {45, "p4plus_app_rss_0", 1, 1, 2, 0},
    {46, "p4plus_app_rss_mirror", 1, 1, 2, 0},
    {47, "p4plus_app_rss_1", 1, 1, 2, 0},
    {48, "p4plus_app_rss_2", 1, 1, 2, 0},
};
static_assert(std::size(tables) == 48);

TEST(TableProperties, OfAll48Tables) {
    const auto adapter = host::adapter::anonymous();
    const host::scoped_current use(*adapter);
    for (const table_facts &wanted : tables) {
        SCOPED_TRACE(wanted.name);
        p4pd_table_properties_t found;
        std::memset(static_cast<void *>(&found), 0xee, sizeof found);
        ASSERT_EQ(p4pd_table_properties_get(wanted.id, &found), 0);
        EXPECT_STREQ(found.tablename, wanted.name);
        EXPECT_EQ(found.tableid, wanted.id);
        EXPECT_EQ(found.tabledepth, wanted.depth);
        EXPECT_EQ(found.key_struct_size, wanted.key_bytes);
        EXPECT_EQ(found.actiondata_struct_size, wanted.data_bytes);
        EXPECT_EQ(found.overflow_tableid, wanted.overflow);
        EXPECT_EQ(adapter->depth(wanted.id), wanted.depth);

        p4pd_table_properties_t again = {};
        ASSERT_EQ(p4pd_global_table_properties_get(wanted.id, &again), 0);
        EXPECT_STREQ(again.tablename, wanted.name);
        EXPECT_EQ(again.tabledepth, wanted.depth);
    }
}

// The last row takes an entry, the row behind it takes none.
TEST(TableProperties, TheDepthIsWhatTheMemoryHolds) {
    const auto adapter = host::adapter::anonymous();
    host::trace::set_level("off");
    for (const table_facts &table : tables) {
        SCOPED_TRACE(table.name);
        EXPECT_EQ(adapter->clear_row(table.id, table.depth - 1), SDK_RET_OK);
        EXPECT_EQ(adapter->clear_row(table.id, table.depth), SDK_RET_INVALID_ARG);
    }
    host::trace::set_level("info");
}

TEST(TableProperties, OfNoTableAndIntoNothingAreRefused) {
    p4pd_table_properties_t found;
    std::memset(static_cast<void *>(&found), 0xee, sizeof found);
    const p4pd_table_properties_t before = found;
    for (uint32_t id : {0u, 49u, 0xffffffffu}) {
        EXPECT_EQ(p4pd_table_properties_get(id, &found), -1);
        EXPECT_EQ(p4pd_global_table_properties_get(id, &found), -1);
    }
    EXPECT_EQ(std::memcmp(&found, &before, sizeof found), 0);
    EXPECT_EQ(p4pd_table_properties_get(16, nullptr), -1);
    EXPECT_EQ(p4pd_global_table_properties_get(16, nullptr), -1);
}

class GlobalEntry : public AdapterTest {};

// An adapter made with smaller flow tables says so.
TEST_F(GlobalEntry, TheFlowTablesDepthsAreTheCurrentAdapters) {
    p4pd_table_properties_t found = {};
    ASSERT_EQ(p4pd_table_properties_get(2, &found), 0);
    EXPECT_EQ(found.tabledepth, 16u);
    ASSERT_EQ(p4pd_table_properties_get(1, &found), 0);
    EXPECT_EQ(found.tabledepth, 8u);
}

TEST_F(GlobalEntry, AnIndexEntryIsWrittenAndReadBack) {
    l2seg_actiondata_t data = {}, back = {};
    data.action_u.l2seg.host_rcvr_ukmc = 1;
    data.action_u.l2seg.replicate_idx = 0xbeef;
    ASSERT_EQ(p4pd_global_entry_write(24, 4095, nullptr, nullptr, &data, false), 0);
    ASSERT_EQ(p4pd_global_entry_read(24, 4095, nullptr, nullptr, &back, nullptr, false), 0);
    EXPECT_EQ(std::memcmp(&back, &data, sizeof data), 0);
    EXPECT_EQ(adapter_->next_used(24, 0), 4095u);
}

TEST_F(GlobalEntry, ATernaryEntryIsWrittenAndReadBack) {
    vlan_mapping_otcam_swkey_t key = {.vlan_id = 0xabc, .l2seg = 0x123};
    vlan_mapping_otcam_swkey_mask_t mask = {};
    mask.vlan_id_mask = 0xff0;
    mask.l2seg_mask = 0xfff;
    vlan_mapping_otcam_actiondata_t data = {};
    data.action_u.vlan_mapping.rmac_vrf = 0x456;
    data.action_u.vlan_mapping.l2seg = 0x789;
    bytes hwkey(128), hwmask(128);
    ASSERT_EQ(p4pd_hwkey_hwmask_build(7, &key, &mask, hwkey.data(), hwmask.data()), 0);
    ASSERT_EQ(p4pd_global_entry_write(7, 5, hwkey.data(), hwmask.data(), &data, false), 0);

    vlan_mapping_otcam_swkey_t key_back = {};
    vlan_mapping_otcam_swkey_mask_t mask_back = {};
    vlan_mapping_otcam_actiondata_t back = {};
    ASSERT_EQ(p4pd_global_entry_read(7, 5, &key_back, &mask_back, &back, nullptr, false), 0);
    EXPECT_EQ(+key_back.vlan_id, 0xab0);  // bits outside the mask read back as 0
    EXPECT_EQ(+key_back.l2seg, 0x123);
    EXPECT_EQ(+mask_back.vlan_id_mask, 0xff0);
    EXPECT_EQ(+mask_back.l2seg_mask, 0xfff);
    EXPECT_EQ(+back.action_u.vlan_mapping.rmac_vrf, 0x456);
    EXPECT_EQ(+back.action_u.vlan_mapping.l2seg, 0x789);
}

// The entry point that starts from software records comes through here.
TEST_F(GlobalEntry, TheFiveArgumentWriteArrives) {
    registered_mac_swkey_t key = {};
    registered_mac_actiondata_t data = {};
    data.action_u.registered_mac.dst_lport = 0x1234;
    ASSERT_EQ(p4pd_entry_write(6, 77, &key, nullptr, &data), 0);
    EXPECT_EQ(adapter_->next_used(6, 0), 77u);
}

TEST_F(GlobalEntry, NoTableIsRefused) {
    bytes anything(1024);
    for (uint32_t id : {0u, 49u}) {
        EXPECT_EQ(p4pd_global_entry_write(id, 0, anything.data(), anything.data(), anything.data(),
                                          false),
                  -1);
        EXPECT_EQ(p4pd_global_entry_read(id, 0, anything.data(), anything.data(), anything.data(),
                                         nullptr, false),
                  -1);
    }
    // An empty TCAM row is the one empty row that a read refuses.
    EXPECT_EQ(p4pd_global_entry_read(7, 5, anything.data(), anything.data(), anything.data(),
                                     nullptr, false),
              -1);
    EXPECT_EQ(p4pd_global_entry_read(16, 5, nullptr, nullptr, anything.data(), nullptr, false), 0);
}

TEST_F(GlobalEntry, RecordsAreDecoded) {
    vlan_mapping_swkey_t key = {.vlan_id = 0x64, .l2seg = 0x7};
    vlan_mapping_actiondata_t data = {};
    data.action_u.vlan_mapping.rmac_vrf = 0x3;
    data.action_u.vlan_mapping.l2seg = 0x9;
    char text[2048];
    ASSERT_EQ(p4pd_global_table_ds_decoded_string_get(3, 5, &key, nullptr, &data, text, 2048), 0);
    EXPECT_STREQ(text,
                 "Table Entry Fields\n"
                 "Table : P4TBL_ID_VLAN_MAPPING, Index : 0x5/5\n"
                 "Key :\n"
                 "vlan_id : 0x64\n"
                 "l2seg : 0x7\n"
                 "Action : VLAN_MAPPING_VLAN_MAPPING_ID\n"
                 "rmac_vrf : 0x3\n"
                 "l2seg : 0x9\n");
    EXPECT_EQ(p4pd_global_table_ds_decoded_string_get(49, 5, &key, nullptr, &data, text, 2048), -1);
}

}  // namespace
