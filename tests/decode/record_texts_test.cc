// The record decoder's own rules, each text written out.

#include <thread>
#include <vector>

#include "gtest/gtest.h"
#include "p4pd.h"
#include "tests/decode/decoding.h"

namespace halden::decode_tests {
namespace {

constexpr uint32_t unknown_tables[] = {0, 49, 50, 256 + 16, UINT32_MAX};

std::string text_of(uint32_t id, uint32_t index, void *key, void *mask, void *data) {
    char buffer[4096];
    EXPECT_EQ(p4pd_table_ds_decoded_string_get(id, index, key, mask, data, buffer, sizeof buffer),
              0);
    return buffer;
}

vlan_mapping_actiondata_t vlan_data(uint8_t action, uint16_t rmac_vrf, uint16_t l2seg) {
    vlan_mapping_actiondata_t out = {};
    out.action_id = action;
    out.action_u.vlan_mapping = {rmac_vrf, l2seg};
    return out;
}

TEST(RecordTexts, AnEntryOfAHashTableHasEightLines) {
    vlan_mapping_swkey_t key = {100, 0xabc};
    vlan_mapping_actiondata_t data = vlan_data(0, 0xffff, 0);
    EXPECT_EQ(text_of(3, 5, &key, nullptr, &data),
              "Table Entry Fields\n"
              "Table : P4TBL_ID_VLAN_MAPPING, Index : 0x5/5\n"
              "Key :\n"
              "vlan_id : 0x64\n"
              "l2seg : 0xabc\n"
              "Action : VLAN_MAPPING_VLAN_MAPPING_ID\n"
              "rmac_vrf : 0xffff\n"
              "l2seg : 0x0\n");
}

// A hash table with a null key but valid action data prints no action line.
TEST(RecordTexts, AHashTableWithoutAKeyPrintsNoAction) {
    vlan_mapping_actiondata_t data = vlan_data(0, 1, 2);
    EXPECT_EQ(text_of(3, 5, nullptr, nullptr, &data),
              "Table Entry Fields\n"
              "Table : P4TBL_ID_VLAN_MAPPING, Index : 0x5/5\n");
}

// A TCAM table with a null mask prints its action without a key; an overflow table is one.
TEST(RecordTexts, ATcamTableWithoutKeyOrMaskPrintsItsActionAlone) {
    vlan_mapping_otcam_swkey_t key = {1, 2};
    vlan_mapping_otcam_actiondata_t data = {};
    data.action_u.vlan_mapping = {3, 4};
    const std::string want =
        "Table Entry Fields\n"
        "Table : P4TBL_ID_VLAN_MAPPING_OTCAM, Index : 0x5/5\n"
        "Action : VLAN_MAPPING_OTCAM_VLAN_MAPPING_ID\n"
        "rmac_vrf : 0x3\n"
        "l2seg : 0x4\n";
    EXPECT_EQ(text_of(7, 5, &key, nullptr, &data), want);
    EXPECT_EQ(text_of(7, 5, nullptr, &key, &data), want);
    EXPECT_EQ(text_of(7, 5, nullptr, nullptr, &data), want);
}

TEST(RecordTexts, ATcamTablesKeyFieldsAreFollowedByTheirMasks) {
    vlan_mapping_otcam_swkey_t key = {1, 2};
    vlan_mapping_otcam_swkey_mask_t mask = {0xfff, 0xf0f};
    EXPECT_EQ(text_of(7, 0, &key, &mask, nullptr),
              "Table Entry Fields\n"
              "Table : P4TBL_ID_VLAN_MAPPING_OTCAM, Index : 0x0/0\n"
              "Key :\n"
              "vlan_id : 0x1\n"
              "vlan_id_mask : 0xfff\n"
              "l2seg : 0x2\n"
              "l2seg_mask : 0xf0f\n");
}

// A MAC address gives twelve lower-case digits, byte 0 first.
TEST(RecordTexts, AByteArrayIsOneRunOfTwoDigitsPerByte) {
    registered_mac_swkey_t key = {{0x00, 0x01, 0xab, 0xCD, 0x0f, 0xf0}, 7};
    registered_mac_actiondata_t data = {};
    data.action_u.registered_mac = {0x12, 0x3456789a, 0, 1};
    EXPECT_EQ(text_of(6, 0xffffffff, &key, nullptr, &data),
              "Table Entry Fields\n"
              "Table : P4TBL_ID_REGISTERED_MAC, Index : 0xffffffff/4294967295\n"
              "Key :\n"
              "hdr_ethernet_1_dstAddr : 0x0001abcd0ff0\n"
              "metadata_classic_nic_rmac_vrf : 0x7\n"
              "Action : REGISTERED_MAC_REGISTERED_MAC_ID\n"
              "dst_lport : 0x12\n"
              "dst_qid : 0x3456789a\n"
              "dst_pinned_lport : 0x0\n"
              "multicast_en : 0x1\n");
}

// An action id beyond the last gives the text up to the action, and 0.
TEST(RecordTexts, AnUnknownActionEndsTheTextBeforeIt) {
    vlan_mapping_swkey_t key = {1, 2};
    for (const uint8_t action : {uint8_t{1}, uint8_t{2}, uint8_t{255}}) {
        vlan_mapping_actiondata_t data = vlan_data(action, 3, 4);
        EXPECT_EQ(text_of(3, 5, &key, nullptr, &data),
                  "Table Entry Fields\n"
                  "Table : P4TBL_ID_VLAN_MAPPING, Index : 0x5/5\n"
                  "Key :\n"
                  "vlan_id : 0x1\n"
                  "l2seg : 0x2\n");
        lif_mapping_actiondata_t lif = {};
        lif.action_id = action;
        EXPECT_EQ(text_of(16, 5, nullptr, nullptr, &lif),
                  "Table Entry Fields\n"
                  "Table : P4TBL_ID_LIF_MAPPING, Index : 0x5/5\n");
    }
}

// Of every table, with every id outside its range.
TEST(RecordTexts, NoTablePrintsDataOfAnActionItHasNot) {
    for (uint32_t id = 1; id <= 48; ++id) {
        const reference::table &facts = reference::table_of(id);
        bytes key(facts.key_bytes), data(facts.data_bytes, 0xff);
        const records without = {&key, &key, nullptr}, with = {&key, &key, &data};
        const printed want = slow_record_text(id, 1, without, roomy);
        for (uint32_t action = facts.actions; action < 256; ++action) {
            data[0] = static_cast<uint8_t>(action);
            EXPECT_EQ(record_text(id, 1, with, roomy).buffer, want.buffer)
                << facts.name << ", action " << action;
        }
    }
}

TEST(RecordTexts, AnActionWithoutDataIsItsLineAlone) {
    output_mapping_actiondata_t data = {};
    data.action_id = 1;
    EXPECT_EQ(text_of(37, 16, nullptr, nullptr, &data),
              "Table Entry Fields\n"
              "Table : P4TBL_ID_OUTPUT_MAPPING, Index : 0x10/16\n"
              "Action : OUTPUT_MAPPING_OUTPUT_MAPPING_DROP_A_ID\n");
}

// Actions of one table overlay one another: the second has eleven of the first's twelve fields.
TEST(RecordTexts, TheActionsFieldsAreThoseOfTheRecordsAction) {
    conntrack_ingress_actiondata_t data = {};
    data.action_u.conntrack_ingress_full.sw_state = 0x5a;
    data.action_u.conntrack_ingress_full.ct_log = 0xc3;
    const std::string full = text_of(22, 0, nullptr, nullptr, &data);
    EXPECT_NE(full.find("sw_state : 0x5a\nct_log : 0xc3\n"), std::string::npos) << full;
    data.action_id = 1;
    const std::string sloppy = text_of(22, 0, nullptr, nullptr, &data);
    EXPECT_NE(sloppy.find("sw_state : 0x5a\n"), std::string::npos) << sloppy;
    EXPECT_EQ(sloppy.find("ct_log"), std::string::npos) << sloppy;
}

// Tables 1 and 2 print the same fields under different table lines.
TEST(RecordTexts, BothFlowTablesDifferInTheirTableLineAlone) {
    flow_swkey_t key = {};
    flow_actiondata_t data = {};
    const std::string overflow = text_of(1, 0, &key, nullptr, &data);
    const std::string flow = text_of(2, 0, &key, nullptr, &data);
    const std::string banner = "Table Entry Fields\n";
    const std::string first = banner + "Table : P4TBL_ID_FLOW_OHASH, Index : 0x0/0\n";
    const std::string second = banner + "Table : P4TBL_ID_FLOW, Index : 0x0/0\n";
    ASSERT_TRUE(overflow.starts_with(first)) << overflow;
    ASSERT_TRUE(flow.starts_with(second)) << flow;
    EXPECT_EQ(overflow.substr(first.size()), flow.substr(second.size()));
}

// A buffer of 19 bytes or less: part of the banner and 0, for an unknown table too, because the
// size is tested first. From 20 bytes on an unknown table is -1 with the whole banner.
TEST(RecordTexts, ABufferNoLargerThanTheBannerHidesAnUnknownTable) {
    for (const uint32_t id : unknown_tables)
        for (size_t size = 0; size <= 19; ++size) {
            const printed got = record_text(id, 0, {}, size);
            EXPECT_EQ(got.result, 0) << "size " << size;
            std::string want(size, '\0');
            if (size > 1) want.replace(0, size - 1, "Table Entry Fields\n", size - 1);
            EXPECT_EQ(got.buffer, want);
        }
}

TEST(RecordTexts, AnUnknownTableLeavesTheBannerAlone) {
    const bytes key(100), data(100);
    for (const uint32_t id : unknown_tables)
        for (const size_t size : {size_t{20}, size_t{21}, roomy}) {
            const printed got = record_text(id, 0, {&key, &key, &data}, size);
            EXPECT_EQ(got.result, -1) << "table " << id << ", size " << size;
            std::string want(size, '\0');
            want.replace(0, 19, "Table Entry Fields\n");
            EXPECT_EQ(got.buffer, want);
        }
}

// The whole of the largest buffer is zero behind the text.
TEST(RecordTexts, TheWholeBufferIsZeroedFirst) {
    const bytes data(12);
    const printed got = record_text(16, 0, {nullptr, nullptr, &data}, 65535);
    EXPECT_EQ(got.result, 0);
    EXPECT_EQ(got.buffer, slow_record_text(16, 0, {nullptr, nullptr, &data}, 65535).buffer);
}

// A 32-bit field at an odd byte, in records at every alignment.
TEST(RecordTexts, RecordsMayStandAtAnyAddress) {
    for (size_t shift = 0; shift < 8; ++shift) {
        uint8_t key[16] = {}, data[16] = {};
        key[shift] = 9;
        for (size_t i = 0; i < 4; ++i) key[shift + 1 + i] = static_cast<uint8_t>(0x44 - 0x11 * i);
        data[shift + 1] = 0x34;
        data[shift + 2] = 0x12;
        data[shift + 3] = 1;
        EXPECT_EQ(text_of(4, 0, key + shift, nullptr, data + shift),
                  "Table Entry Fields\n"
                  "Table : P4TBL_ID_TUNNEL_TERMINATE_SA_V4, Index : 0x0/0\n"
                  "Key :\n"
                  "local_vtep_idx : 0x9\n"
                  "ipv4_1_srcAddr : 0x11223344\n"
                  "Action : TUNNEL_TERMINATE_SA_V4_TUNNEL_TERMINATE_SA_A_ID\n"
                  "outer_flow_id : 0x1234\n"
                  "entry_valid : 0x1\n");
    }
}

// From any number of threads with buffers of their own.
TEST(RecordTexts, ThreadsDoNotDisturbEachOther) {
    std::vector<std::thread> threads;
    for (uint32_t n = 0; n < 8; ++n)
        threads.emplace_back([n] {
            for (uint32_t turn = 0; turn < 50; ++turn)
                for (uint32_t id = 1; id <= 48; ++id) {
                    const reference::table &facts = reference::table_of(id);
                    const bytes key(facts.key_bytes, static_cast<uint8_t>(n * 16 + turn));
                    bytes data(facts.data_bytes, static_cast<uint8_t>(n));
                    data[0] = 0;
                    const records given = {&key, &key, &data};
                    ASSERT_EQ(record_text(id, n, given, 600 + turn).buffer,
                              slow_record_text(id, n, given, 600 + turn).buffer);
                }
        });
    for (std::thread &thread : threads) thread.join();
}

}  // namespace
}  // namespace halden::decode_tests
