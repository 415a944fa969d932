// The raw-entry decoder on rows as the ASIC layer reads them: which kinds take them as they are,
// which want their bytes turned or their length rounded. And masked writes, which cannot change an
// action.

#include "host/adapter.h"
#include "p4pd.h"
#include "sdk/asic/pd.h"
#include "sdk/p4pd_utils.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace halden;

// A row as it was read; `y` is for the keys of ternary tables.
struct stored {
    uint8_t x[128] = {}, y[128] = {};
    uint16_t bits = 0;

    stored turned() const {
        stored out = *this;
        p4pd_utils_swizzle_bytes(out.x, bits);
        return out;
    }
    stored rounded() const {
        stored out = *this;
        out.bits = static_cast<uint16_t>((bits + 15) / 16 * 16);
        return out;
    }
};

stored sram(uint32_t table, uint32_t row) {
    stored out;
    sdk::asic::pd::asicpd_table_entry_read(table, row, out.x, &out.bits, false);
    return out;
}
stored hbm(uint32_t table, uint32_t row) {
    stored out;
    sdk::asic::pd::asicpd_hbm_table_entry_read(table, row, out.x, &out.bits);
    return out;
}
stored tcam(uint32_t table, uint32_t row) {
    stored out;
    sdk::asic::pd::asicpd_tcam_table_entry_read(table, row, out.x, out.y, &out.bits, nullptr,
                                                false);
    return out;
}

// Without the banner and the table's line, which are the same for any bytes.
std::string lines_of(const char *text) {
    const std::string all(text);
    const size_t table = all.find("Table: ");
    return table == std::string::npos ? all : all.substr(all.find('\n', table) + 1);
}
std::string data_text(uint32_t table, stored row) {
    char text[4096];
    EXPECT_EQ(
        p4pd_table_entry_decoded_string_get(table, 0, row.x, nullptr, row.bits, text, sizeof text),
        P4PD_SUCCESS);
    return lines_of(text);
}
std::string key_text(uint32_t table, stored row) {
    char text[4096];
    EXPECT_EQ(
        p4pd_table_entry_decoded_string_get(table, 0, row.x, row.y, row.bits, text, sizeof text),
        P4PD_SUCCESS);
    return lines_of(text);
}

class StoredRows : public testing::Test {
  protected:
    std::unique_ptr<host::adapter> adapter_ =
        host::adapter::anonymous({.flow_rows = 16, .flow_ohash_rows = 16});
    host::scoped_current current_{*adapter_};
};

TEST_F(StoredRows, HashRowsAreTurnedFirst) {
    vlan_mapping_swkey_t key = {};
    key.vlan_id = 0xabc;
    key.l2seg = 0x123;
    vlan_mapping_actiondata_t data = {};
    data.action_u.vlan_mapping.rmac_vrf = 0x456;
    data.action_u.vlan_mapping.l2seg = 0x789;
    ASSERT_EQ(p4pd_entry_install(P4TBL_ID_VLAN_MAPPING, 9, &key, nullptr, &data), P4PD_SUCCESS);
    const stored row = sram(P4TBL_ID_VLAN_MAPPING, 9);
    const char *text =
        "vlan_id: 0xabc\nl2seg: 0x123\nAction: VLAN_MAPPING_VLAN_MAPPING_ID\nrmac_vrf: 0x456\n"
        "l2seg: 0x789\n";
    EXPECT_EQ(data_text(P4TBL_ID_VLAN_MAPPING, row.turned()), text);
    EXPECT_NE(data_text(P4TBL_ID_VLAN_MAPPING, row), text);
}

TEST_F(StoredRows, IndexRowsInSramAreTurnedFirst) {
    l2seg_actiondata_t data = {};
    data.action_u.l2seg.host_rcvr_bcast = 1;
    data.action_u.l2seg.replicate_idx = 0xbeef;
    ASSERT_EQ(p4pd_entry_install(P4TBL_ID_L2SEG, 9, nullptr, nullptr, &data), P4PD_SUCCESS);
    const stored row = sram(P4TBL_ID_L2SEG, 9);
    const char *text =
        "Action: L2SEG_L2SEG_ID\nhost_rcvr_ukuc: 0x0\nhost_rcvr_ukmc: 0x0\nhost_rcvr_bcast: 0x1\n"
        "replicate_idx: 0xbeef\n";
    EXPECT_EQ(data_text(P4TBL_ID_L2SEG, row.turned()), text);
    EXPECT_NE(data_text(P4TBL_ID_L2SEG, row), text);
}

TEST_F(StoredRows, HbmRowsAreTakenAsTheyAre) {
    lport_tx_stats_actiondata_t stats = {};
    flow_swkey_t key = {};
    key.metadata_flow_key_sport = 0x1234;
    flow_actiondata_t data = {};
    data.action_u.flow_hash.flow_idx = 0x2bcde;
    data.action_u.flow_hash.entry_valid = 1;
    ASSERT_EQ(p4pd_entry_install(P4TBL_ID_LPORT_TX_STATS, 9, nullptr, nullptr, &stats),
              P4PD_SUCCESS);
    ASSERT_EQ(p4pd_entry_install(P4TBL_ID_FLOW, 9, &key, nullptr, &data), P4PD_SUCCESS);
    EXPECT_EQ(data_text(P4TBL_ID_LPORT_TX_STATS, hbm(P4TBL_ID_LPORT_TX_STATS, 9))
                  .rfind("Action: LPORT_TX_STATS_LPORT_TX_STATS_ID\n", 0),
              0u);
    const std::string flow = data_text(P4TBL_ID_FLOW, hbm(P4TBL_ID_FLOW, 9));
    EXPECT_NE(flow.find("metadata_flow_key_sport: 0x1234\n"), std::string::npos) << flow;
    EXPECT_NE(flow.find("flow_idx: 0x2bcde\n"), std::string::npos) << flow;
    EXPECT_NE(flow.find("entry_valid: 0x1\n"), std::string::npos) << flow;
}

TEST_F(StoredRows, TernaryRowsAreTakenAsTheyAreWhenTheirBytesAreEven) {
    tunnel_terminate_v4_swkey_t key = {};
    key.lif_id = 0x5a5;
    key.ipv4_1_dstAddr = 0x0a010203;
    tunnel_terminate_v4_swkey_mask_t mask = {};
    mask.lif_id_mask = 0x7ff;
    mask.ipv4_1_dstAddr_mask = 0xffff0000;
    tunnel_terminate_v4_actiondata_t data = {};
    ASSERT_EQ(p4pd_entry_install(P4TBL_ID_TUNNEL_TERMINATE_V4, 9, &key, &mask, &data),
              P4PD_SUCCESS);
    const std::string text =
        key_text(P4TBL_ID_TUNNEL_TERMINATE_V4, tcam(P4TBL_ID_TUNNEL_TERMINATE_V4, 9).rounded());
    EXPECT_NE(text.find("lif_id: 0x5a5\nlif_id_mask: 0x7ff\n"), std::string::npos) << text;
    EXPECT_NE(text.find("ipv4_1_dstAddr: 0xa010000\nipv4_1_dstAddr_mask: 0xffff0000\n"),
              std::string::npos)
        << text;
}

TEST_F(StoredRows, ALengthOfAnOddNumberOfBytesIsRounded) {
    flow_key_native_swkey_t native = {};
    flow_key_native_swkey_mask_t native_mask = {};
    flow_key_native_actiondata_t native_data = {};
    native_data.action_id = FLOW_KEY_NATIVE_NATIVE_NONIP_PACKET_ID;
    ASSERT_EQ(p4pd_entry_install(P4TBL_ID_FLOW_KEY_NATIVE, 9, &native, &native_mask, &native_data),
              P4PD_SUCCESS);
    checksum_swkey_t checksum = {};
    checksum.tcp_valid = 1;
    checksum_swkey_mask_t checksum_mask = {};
    checksum_mask.tcp_valid_mask = 1;
    checksum_mask.icmp_valid_mask = 1;
    checksum_actiondata_t checksum_data = {};
    checksum_data.action_id = CHECKSUM_UPDATE_NO_CHECKSUM_ID;
    ASSERT_EQ(p4pd_entry_install(P4TBL_ID_CHECKSUM, 9, &checksum, &checksum_mask, &checksum_data),
              P4PD_SUCCESS);

    const stored native_row = sram(P4TBL_ID_FLOW_KEY_NATIVE, 9);
    const stored checksum_row = sram(P4TBL_ID_CHECKSUM, 9);
    const stored checksum_key = tcam(P4TBL_ID_CHECKSUM, 9);
    ASSERT_EQ(native_row.bits, 20u);
    ASSERT_EQ(checksum_row.bits, 8u);
    EXPECT_NE(data_text(P4TBL_ID_FLOW_KEY_NATIVE, native_row.rounded())
                  .find("Action: FLOW_KEY_NATIVE_NATIVE_NONIP_PACKET_ID\n"),
              std::string::npos);
    EXPECT_NE(data_text(P4TBL_ID_CHECKSUM, checksum_row.rounded())
                  .find("Action: CHECKSUM_UPDATE_NO_CHECKSUM_ID\n"),
              std::string::npos);
    const std::string key = key_text(P4TBL_ID_CHECKSUM, checksum_key.rounded());
    EXPECT_NE(key.find("tcp_valid: 0x1\ntcp_valid_mask: 0x1\n"), std::string::npos) << key;
    EXPECT_NE(key.find("icmp_valid: 0x0\nicmp_valid_mask: 0x1\n"), std::string::npos) << key;
    EXPECT_NE(key.find("udp_1_valid_mask: 0x0\n"), std::string::npos) << key;
    // The action is in the byte that the length read leaves out.
    EXPECT_EQ(data_text(P4TBL_ID_FLOW_KEY_NATIVE, native_row)
                  .find("Action: FLOW_KEY_NATIVE_NATIVE_NONIP_PACKET_ID\n"),
              std::string::npos);
    EXPECT_EQ(
        data_text(P4TBL_ID_CHECKSUM, checksum_row).find("Action: CHECKSUM_UPDATE_NO_CHECKSUM_ID\n"),
        std::string::npos);
}

// Programs run at 0x10 and 0x11: the entry says 0x11, the mask's program selects its bits.
TEST_F(StoredRows, AMaskedWriteWithAnotherActionMixesThePrograms) {
    output_mapping_actiondata_t data = {}, mask = {};
    data.action_id = OUTPUT_MAPPING_OUTPUT_MAPPING_A_ID;
    ASSERT_EQ(p4pd_entry_install(P4TBL_ID_OUTPUT_MAPPING, 9, nullptr, nullptr, &data),
              P4PD_SUCCESS);
    ASSERT_EQ(sram(P4TBL_ID_OUTPUT_MAPPING, 9).turned().x[0], 0x10);

    // The row's own action: only what the mask selects changes.
    data.action_u.output_mapping_a.nports = 3;
    data.action_u.output_mapping_a.dst_tag = 0xffff;
    mask.action_u.output_mapping_a.nports = 3;
    ASSERT_EQ(p4pd_entry_write_with_datamask(P4TBL_ID_OUTPUT_MAPPING, 9, nullptr, nullptr, &data,
                                             &mask, false),
              P4PD_SUCCESS);
    const std::string text =
        data_text(P4TBL_ID_OUTPUT_MAPPING, sram(P4TBL_ID_OUTPUT_MAPPING, 9).turned());
    EXPECT_NE(text.find("Action: OUTPUT_MAPPING_OUTPUT_MAPPING_A_ID\n"), std::string::npos);
    EXPECT_NE(text.find("nports: 0x3\n"), std::string::npos) << text;
    EXPECT_NE(text.find("dst_tag: 0x0\n"), std::string::npos) << text;

    // From 0x11 back to 0x10 with the mask of 0x10: bit 0 is not selected and stays.
    data.action_id = OUTPUT_MAPPING_OUTPUT_MAPPING_DROP_A_ID;
    ASSERT_EQ(p4pd_entry_install(P4TBL_ID_OUTPUT_MAPPING, 9, nullptr, nullptr, &data),
              P4PD_SUCCESS);
    data.action_id = OUTPUT_MAPPING_OUTPUT_MAPPING_A_ID;
    ASSERT_EQ(p4pd_entry_write_with_datamask(P4TBL_ID_OUTPUT_MAPPING, 9, nullptr, nullptr, &data,
                                             &mask, false),
              P4PD_SUCCESS);
    EXPECT_EQ(sram(P4TBL_ID_OUTPUT_MAPPING, 9).turned().x[0], 0x11);
}

}  // namespace
