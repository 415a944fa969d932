// The layouts of the host's rows, case by case.

#include "sdk/p4pd_utils.h"

#include <algorithm>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using bytes = std::vector<uint8_t>;

bytes cut(const bytes &from, size_t first, size_t count) {
    return {from.begin() + static_cast<long>(first),
            from.begin() + static_cast<long>(first + count)};
}

TEST(P4TablePrepare, NoProgramCounterMeansDataFromBitZero) {
    bytes entry(16), data{0xab, 0xcd, 0xe0};
    EXPECT_EQ(p4pd_utils_p4table_entry_prepare(entry.data(), 0xff, nullptr, 0, data.data(), 19),
              19);
    EXPECT_THAT(cut(entry, 0, 4), ElementsAre(0xab, 0xcd, 0xe0, 0x00));
}

TEST(P4TablePrepare, ProgramCounterIsTheFirstByte) {
    bytes entry(16), data{0xab, 0xc0};
    EXPECT_EQ(p4pd_utils_p4table_entry_prepare(entry.data(), 0x24, nullptr, 0, data.data(), 12),
              20);
    EXPECT_THAT(cut(entry, 0, 4), ElementsAre(0x24, 0xab, 0xc0, 0x00));
    bytes bare(4);
    EXPECT_EQ(p4pd_utils_p4table_entry_prepare(bare.data(), 0x20, nullptr, 0, data.data(), 0), 8);
    EXPECT_THAT(bare, ElementsAre(0x20, 0x00, 0x00, 0x00));
}

TEST(P4TablePrepare, KeyStandsBeforeData) {
    bytes entry(16), key{0xf0}, data{0xff};
    EXPECT_EQ(p4pd_utils_p4table_entry_prepare(entry.data(), 0xff, key.data(), 5, data.data(), 4),
              9);
    EXPECT_THAT(cut(entry, 0, 2), ElementsAre(0xf7, 0x80));
}

TEST(HashPrepare, DataStandsBehindTheKey) {
    bytes entry(1024), key{0x11, 0x22, 0x33}, data{0xab, 0xcd, 0xef};
    uint16_t offset = 77;
    EXPECT_EQ(p4pd_utils_hash_table_entry_prepare(entry.data(), 0xff, 0, key.data(), 24, 24,
                                                  nullptr, 0, data.data(), 24, &offset),
              48);
    EXPECT_EQ(offset, 0);
    EXPECT_THAT(cut(entry, 0, 7), ElementsAre(0x11, 0x22, 0x33, 0xab, 0xcd, 0xef, 0x00));
}

// 60 key bits: the data starts in the low half of byte 7.
TEST(HashPrepare, DataMayStartInsideAByte) {
    bytes entry(1024), key{1, 2, 3, 4, 5, 6, 7, 0xa0}, data{0xff, 0, 0, 0, 0, 0, 0xf0};
    uint16_t offset = 0;
    EXPECT_EQ(p4pd_utils_hash_table_entry_prepare(entry.data(), 0xff, 0, key.data(), 60, 52,
                                                  nullptr, 0, data.data(), 52, &offset),
              112);
    EXPECT_THAT(cut(entry, 0, 15),
                ElementsAre(1, 2, 3, 4, 5, 6, 7, 0xaf, 0xf0, 0, 0, 0, 0, 0x0f, 0));
}

TEST(HashPrepare, ANullKeyKeepsItsRoom) {
    bytes entry(1024), data{0xab, 0xcd, 0x80};
    uint16_t offset = 0;
    EXPECT_EQ(p4pd_utils_hash_table_entry_prepare(entry.data(), 0xff, 0, nullptr, 40, 17, nullptr,
                                                  0, data.data(), 17, &offset),
              57);
    EXPECT_THAT(cut(entry, 0, 9), ElementsAre(0, 0, 0, 0, 0, 0xab, 0xcd, 0x80, 0));
}

// An action that packs nothing leaves the row as long as it was, so the swizzled key stays in
// place.
TEST(HashPrepare, AnActionWithoutDataKeepsTheLength) {
    bytes entry(1024), key{0x11, 0x22, 0x33}, data{0xab, 0xcd, 0xef};
    uint16_t offset = 0;
    EXPECT_EQ(p4pd_utils_hash_table_entry_prepare(entry.data(), 0xff, 0, key.data(), 24, 24,
                                                  nullptr, 0, data.data(), 0, &offset),
              48);
    EXPECT_THAT(cut(entry, 0, 6), ElementsAre(0x11, 0x22, 0x33, 0, 0, 0));
}

TEST(HashPrepare, DataBeforeTheKeyAndProgramCounter) {
    bytes entry(1024), before{0xf0}, key{0xaa}, after{0xc0};
    uint16_t offset = 0;
    EXPECT_EQ(p4pd_utils_hash_table_entry_prepare(entry.data(), 0x30, 4, key.data(), 8, 6,
                                                  before.data(), 4, after.data(), 2, &offset),
              22);
    EXPECT_THAT(cut(entry, 0, 4), ElementsAre(0x30, 0xfa, 0xac, 0x00));
}

// The flow row: flit 0 is key, then 32 bits of data, 128 bits of key, 261 bits of data.
TEST(WideKeyPrepare, FlowRow) {
    bytes entry(6144), key(84), before{0xde, 0xad, 0xbe, 0xef}, after(33, 0x5a);
    for (size_t i = 0; i < 59; ++i) key[i] = static_cast<uint8_t>(i + 1);
    for (size_t i = 68; i < 84; ++i) key[i] = static_cast<uint8_t>(0x80 + i);
    after[32] = 0xf8;
    uint16_t offset = 77;
    EXPECT_EQ(
        p4pd_utils_widekey_hash_table_entry_prepare(entry.data(), 0xff, 32, key.data(), 640, 293,
                                                    before.data(), 32, after.data(), 261, &offset),
        933);
    EXPECT_EQ(offset, 0);
    EXPECT_EQ(cut(entry, 0, 59), cut(key, 0, 59));                        // bits 0 to 471
    EXPECT_THAT(cut(entry, 59, 5), Each(0));                              // bits 472 to 511
    EXPECT_THAT(cut(entry, 64, 4), ElementsAre(0xde, 0xad, 0xbe, 0xef));  // bits 512 to 543
    EXPECT_EQ(cut(entry, 68, 16), cut(key, 68, 16));                      // bits 544 to 671
    EXPECT_EQ(cut(entry, 84, 33), after);                                 // bits 672 to 932
    EXPECT_THAT(cut(entry, 117, 6144 - 117), Each(0));
}

TEST(WideKeyPrepare, WithoutDataTheKeyStaysInPlace) {
    bytes entry(6144), key(84, 0x3c);
    uint16_t offset = 0;
    bytes unused(64, 0xff);
    EXPECT_EQ(
        p4pd_utils_widekey_hash_table_entry_prepare(entry.data(), 0xff, 32, key.data(), 640, 293,
                                                    unused.data(), 0, unused.data(), 0, &offset),
        933);
    EXPECT_THAT(cut(entry, 0, 64), Each(0x3c));
    EXPECT_THAT(cut(entry, 64, 4), Each(0));
    EXPECT_THAT(cut(entry, 68, 16), Each(0x3c));
    EXPECT_THAT(cut(entry, 84, 64), Each(0));
}

TEST(PrepareDeathTest, DataThatRunsIntoTheKeyEndsTheProcess) {
    bytes entry(1024), any(8);
    uint16_t offset = 0;
    EXPECT_DEATH(p4pd_utils_hash_table_entry_prepare(entry.data(), 0xff, 0, any.data(), 8, 8,
                                                     any.data(), 1, any.data(), 8, &offset),
                 "p4pd_utils_hash_table_entry_prepare: cannot take 1 bits at bit 0");
    EXPECT_DEATH(
        p4pd_utils_widekey_hash_table_entry_prepare(entry.data(), 0xff, 32, any.data(), 8, 8,
                                                    any.data(), 33, any.data(), 8, &offset),
        "p4pd_utils_widekey_hash_table_entry_prepare: cannot take 33 bits at bit 32");
}

}  // namespace
