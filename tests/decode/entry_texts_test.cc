// The hardware-entry decoder's own rules, each text written out.

#include "gtest/gtest.h"
#include "p4pd.h"
#include "tests/decode/decoding.h"

namespace halden::decode_tests {
namespace {

constexpr uint32_t unknown_tables[] = {0, 49, 50, 256 + 16, UINT32_MAX};
const std::string data_banner =
    "!!!! Decode HW table entry into (Table Key + Actiondata)/Actiondata!!!! \n";
const std::string key_banner = "!!!! Decode HW table entry into Table Key !!!! \n";

class EntryTexts : public testing::Test {
  protected:
    EntryTexts() { answer_programs(); }
    static std::string text_of(uint32_t id, uint32_t index, const raw_entry &entry) {
        const printed got = entry_text(id, index, entry, roomy);
        EXPECT_EQ(got.result, 0);
        return got.buffer.c_str();
    }
};
using EntryTextsDeathTest = EntryTexts;

TEST_F(EntryTexts, TheBannersAre48And73Long) {
    EXPECT_EQ(key_banner.size(), 48u);
    EXPECT_EQ(data_banner.size(), 73u);
}

// [vlan_id low][l2seg low][l2seg high, vlan_id high nibble][12 bits rmac_vrf][12 bits l2seg]: of
// the key's third byte the upper half is the vlan_id's.
TEST_F(EntryTexts, AHashRowIsReadAsItIsUnswizzled) {
    const raw_entry entry = {{0x34, 0x78, 0x12, 0xab, 0xcd, 0xef}, {}, 48};
    EXPECT_EQ(text_of(3, 5, entry), data_banner +
                                        "Table: P4TBL_ID_VLAN_MAPPING, Index 0x5/5\n"
                                        "vlan_id: 0x134\n"
                                        "l2seg: 0x278\n"
                                        "Action: VLAN_MAPPING_VLAN_MAPPING_ID\n"
                                        "rmac_vrf: 0xabc\n"
                                        "l2seg: 0xdef\n");
}

// 64-bit counters: byte 0 of the record first, each byte without leading zeros, indented.
TEST_F(EntryTexts, AByteArrayOfActionDataIsIndentedPieces) {
    bytes raw(17);
    for (size_t i = 0; i < 8; ++i) raw[i] = static_cast<uint8_t>(i);
    raw[8] = 0xff;
    raw[16] = 0x1b;
    EXPECT_EQ(text_of(35, 0xabcdef, {raw, {}, 136}),
              data_banner +
                  "Table: P4TBL_ID_IPFIX_INGRESS, Index 0xabcdef/11259375\n"
                  "Action: IPFIX_INGRESS_IPFIX_ID\n"
                  "pcnt: \n"
                  "  0x7 :  0x6 :  0x5 :  0x4 :  0x3 :  0x2 :  0x1 :  0x0 :\n"
                  "bcnt: \n"
                  "  0x0 :  0x0 :  0x0 :  0x0 :  0x0 :  0x0 :  0x0 :  0xff :\n"
                  "tcp_flags: 0x1b\n");
}

TEST_F(EntryTexts, AByteArrayOfAKeyIsPiecesWithoutIndent) {
    bytes raw(15);
    for (size_t i = 0; i < 6; ++i) raw[i] = static_cast<uint8_t>(0x10 + i);
    raw[6] = 0x07;
    const std::string text = text_of(6, 0, {raw, {}, 112});
    EXPECT_TRUE(text.starts_with(data_banner + "Table: P4TBL_ID_REGISTERED_MAC, Index 0x0/0\n"
                                               "hdr_ethernet_1_dstAddr: \n"
                                               "0x15 :0x14 :0x13 :0x12 :0x11 :0x10 :\n"
                                               "metadata_classic_nic_rmac_vrf: 0x7\n"
                                               "Action: REGISTERED_MAC_REGISTERED_MAC_ID\n"))
        << text;
}

// Both words: key and mask, no action. The words come as the TCAM holds them, bytes reversed.
TEST_F(EntryTexts, BothTcamWordsGiveKeyAndMask) {
    // ipv6 is matched as 1, ipv4 as 0, tunnel_terminate not at all.
    const raw_entry entry = {{0x00, 0x80}, {0x00, 0x40}, 16};
    EXPECT_EQ(text_of(12, 3, entry), key_banner +
                                         "Table: P4TBL_ID_FLOW_KEY_NATIVE, Index 0x3/3\n"
                                         "ipv6_1_valid: 0x1\n"
                                         "ipv6_1_valid_mask: 0x1\n"
                                         "ipv4_1_valid: 0x0\n"
                                         "ipv4_1_valid_mask: 0x1\n"
                                         "tunnel_terminate: 0x0\n"
                                         "tunnel_terminate_mask: 0x0\n");
}

// One word of a TCAM table is its action data, swizzled, behind a banner of its own.
TEST_F(EntryTexts, OneTcamWordIsItsActionData) {
    // [program][6 bits dscp_trace_msk][6 bits dscp_trace_val], four bytes reversed.
    const raw_entry entry = {{0x00, 0x50, 0xfc, program_of(2)}, {}, 32};
    EXPECT_EQ(text_of(12, 3, entry), data_banner +
                                         "Table: P4TBL_ID_FLOW_KEY_NATIVE, Index 0x3/3\n"
                                         "!!!! Decode Tcam table Action Data !!!! \n"
                                         "Action: FLOW_KEY_NATIVE_NATIVE_IPV6_PACKET_ID\n"
                                         "dscp_trace_msk: 0x3f\n"
                                         "dscp_trace_val: 0x5\n");
}

// An overflow table's data row has the room of its owner's key in front of the data.
TEST_F(EntryTexts, AnOverflowRowsDataIsBehindTheKeysRoom) {
    const raw_entry entry = {{0x56, 0x34, 0x12, 0x00, 0x00, 0x00}, {}, 48};
    EXPECT_EQ(text_of(7, 0, entry), data_banner +
                                        "Table: P4TBL_ID_VLAN_MAPPING_OTCAM, Index 0x0/0\n"
                                        "!!!! Decode Tcam table Action Data !!!! \n"
                                        "Action: VLAN_MAPPING_OTCAM_VLAN_MAPPING_ID\n"
                                        "rmac_vrf: 0x123\n"
                                        "l2seg: 0x456\n");
}

// A second word, given or not, selects the banner even for tables that are no TCAM tables, and
// nothing else.
TEST_F(EntryTexts, TheSecondWordSelectsTheBannerOfAnyTable) {
    for (uint32_t id = 1; id <= 48; ++id) {
        if (reference::table_of(id).has_tcam()) continue;
        raw_entry entry = {bytes(128, 0x5a), {}, 1024};
        const std::string without = text_of(id, 1, entry);
        entry.second = bytes(128, 0xff);
        const std::string with = text_of(id, 1, entry);
        ASSERT_TRUE(without.starts_with(data_banner));
        ASSERT_TRUE(with.starts_with(key_banner));
        EXPECT_EQ(without.substr(data_banner.size()), with.substr(key_banner.size()));
    }
}

TEST_F(EntryTexts, AKeylessTableHasItsActionLineAlone) {
    EXPECT_EQ(text_of(41, 1, {{0}, {}, 0}), data_banner +
                                                "Table: P4TBL_ID_VALIDATE_PACKET, Index 0x1/1\n"
                                                "Action: VALIDATE_PACKET_VALIDATE_HEADERS_ID\n");
}

// A program of no action: no action line, result 0.
TEST_F(EntryTexts, AnUnknownProgramEndsTheTextBeforeTheAction) {
    EXPECT_EQ(text_of(37, 1, {bytes(16, 0xff), {}, 78}),
              data_banner + "Table: P4TBL_ID_OUTPUT_MAPPING, Index 0x1/1\n");
}

// An entry of no bits is decoded like one of zeros.
TEST_F(EntryTexts, AnEntryOfNoBitsIsDecodedAsZeros) {
    for (uint32_t id = 1; id <= 48; ++id) {
        const std::string zeros = text_of(id, 1, {bytes(1024), {}, 8192});
        EXPECT_EQ(text_of(id, 1, {{0xff}, {}, 0}), zeros);
    }
    EXPECT_EQ(text_of(24, 1, {{0xff}, {}, 0}), data_banner +
                                                   "Table: P4TBL_ID_L2SEG, Index 0x1/1\n"
                                                   "Action: L2SEG_L2SEG_ID\n"
                                                   "host_rcvr_ukuc: 0x0\n"
                                                   "host_rcvr_ukmc: 0x0\n"
                                                   "host_rcvr_bcast: 0x0\n"
                                                   "replicate_idx: 0x0\n");
}

// Bytes behind the given bits are not looked at; the last, begun one is.
TEST_F(EntryTexts, TheBytesOfTheGivenBitsAreUsed) {
    const bytes ones(8, 0xff);
    EXPECT_EQ(text_of(20, 1, {ones, {}, 33}), data_banner +
                                                  "Table: P4TBL_ID_VALIDATE_PACKET_VELA, Index "
                                                  "0x1/1\n"
                                                  "Action: VALIDATE_PACKET_VELA_VALIDATE_HEADERS_"
                                                  "VELA_ID\n"
                                                  "lport0: 0xffff\n"
                                                  "lport1: 0xffff\n"
                                                  "lport2: 0xff00\n"
                                                  "lport3: 0x0\n");
}

// A buffer no larger than the banner: result 0 even for an unknown table, the size being tested
// first.
TEST_F(EntryTexts, ABufferNoLargerThanTheBannerHidesAnUnknownTable) {
    for (const bool second : {false, true}) {
        const std::string &banner = second ? key_banner : data_banner;
        for (const uint32_t id : unknown_tables)
            for (size_t size = 0; size <= banner.size(); ++size) {
                const raw_entry entry = {bytes(8), second ? bytes(8) : bytes(), 64};
                const printed got = entry_text(id, 0, entry, size);
                EXPECT_EQ(got.result, 0) << "size " << size;
                std::string want(size, '\0');
                if (size > 1) want.replace(0, size - 1, banner, 0, size - 1);
                EXPECT_EQ(got.buffer, want);
            }
    }
}

// Unknown tables leave the banner alone, once it fits.
TEST_F(EntryTexts, AnUnknownTableIsMinusOneWithTheBannerAlone) {
    for (const bool second : {false, true}) {
        const std::string &banner = second ? key_banner : data_banner;
        for (const uint32_t id : unknown_tables)
            for (const size_t size : {banner.size() + 1, banner.size() + 2, roomy}) {
                const raw_entry entry = {bytes(8), second ? bytes(8) : bytes(), 64};
                const printed got = entry_text(id, 0, entry, size);
                EXPECT_EQ(got.result, -1) << "table " << id << ", size " << size;
                std::string want(size, '\0');
                want.replace(0, banner.size(), banner);
                EXPECT_EQ(got.buffer, want);
            }
    }
}

TEST_F(EntryTexts, TheWholeBufferIsZeroedFirst) {
    const bytes data(12);
    const records held = {nullptr, nullptr, &data};
    EXPECT_EQ(entry_text(16, 0, {bytes(8), {}, 49}, 65535).buffer,
              slow_entry_text(16, 0, held, false, 65535).buffer);
}

// 8192 bits are the most an entry may have.
TEST_F(EntryTexts, AnEntryOf8192BitsIsDecoded) {
    for (uint32_t id = 1; id <= 48; ++id) {
        EXPECT_EQ(entry_text(id, 0, {bytes(1024), {}, 8192}, roomy).result, 0);
        EXPECT_EQ(entry_text(id, 0, {bytes(1024), bytes(1024), 8192}, roomy).result, 0);
    }
}

// A longer one is a buffer overflow: it is not clipped, the process ends.
TEST_F(EntryTextsDeathTest, ALongerEntryAborts) {
    for (const unsigned bits : {8193u, 8200u, 65528u, 65529u, 65535u})
        for (const uint32_t id : {2u, 3u, 7u, 12u, 16u, 21u, 41u}) {
            const raw_entry entry = {bytes(8192), {}, static_cast<uint16_t>(bits)};
            EXPECT_EXIT(entry_text(id, 0, entry, roomy), testing::KilledBySignal(SIGABRT), "")
                << bits;
        }
}

// So is a longer second word, whatever the table and the buffer: it is copied first.
TEST_F(EntryTextsDeathTest, ALongerSecondWordAborts) {
    const raw_entry entry = {bytes(8192), bytes(8192), 8193};
    for (const uint32_t id : {0u, 7u, 16u, 49u})
        for (const size_t size : {size_t{0}, size_t{48}, roomy})
            EXPECT_EXIT(entry_text(id, 0, entry, size), testing::KilledBySignal(SIGABRT), "");
}

// The entry is copied after buffer and table are tested, so either hides its length.
TEST_F(EntryTexts, ALongerEntryIsNotLookedAtForAnUnknownTableOrASmallBuffer) {
    const raw_entry entry = {bytes(8192), {}, 65535};
    for (const uint32_t id : unknown_tables) {
        EXPECT_EQ(entry_text(id, 0, entry, roomy).result, -1);
        EXPECT_EQ(entry_text(id, 0, entry, 73).result, 0);
    }
    EXPECT_EQ(entry_text(16, 0, entry, 73).result, 0);
}

}  // namespace
}  // namespace halden::decode_tests
