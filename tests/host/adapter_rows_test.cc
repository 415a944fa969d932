// The adapter's ASIC calls: what is kept, what is refused, and what a refusal leaves alone.

#include "tests/host/adapter_fixture.h"

#include <algorithm>

namespace {

using namespace halden::test;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;

class AdapterRows : public AdapterTest {
  protected:
    struct read_back {
        sdk_ret_t result;
        uint16_t bits;
        bytes image;  // as many bytes as the call changed the room's start to
    };
    static bytes cut(const bytes &from) {
        const auto end = std::find(from.begin(), from.end(), untouched);
        return {from.begin(), end};
    }
    read_back sram(uint32_t table, uint32_t index) {
        bytes image = room();
        uint16_t bits = 0xeeee;
        const sdk_ret_t result = adapter_->sram_read(table, index, image.data(), &bits);
        return {result, bits, cut(image)};
    }
    read_back hbm(uint32_t table, uint32_t index) {
        bytes image = room();
        uint16_t bits = 0xeeee;
        const sdk_ret_t result = adapter_->hbm_read(table, index, image.data(), &bits);
        return {result, bits, cut(image)};
    }
    sdk_ret_t put_sram(uint32_t table, uint32_t index, const bytes &image, uint16_t bits) {
        return adapter_->sram_write(table, index, image.data(), bits, nullptr);
    }
};

// --- SRAM ----------------------------------------------------------------------------------------

TEST_F(AdapterRows, AnEmptySramRowReadsAsLengthZeroAndTouchesNothing) {
    const read_back row = sram(16, 0);
    EXPECT_EQ(row.result, SDK_RET_OK);
    EXPECT_EQ(row.bits, 0);
    EXPECT_TRUE(row.image.empty());
}

// SRAM images are whole 16-bit words: 17 bits take four bytes, the read touches no fifth.
TEST_F(AdapterRows, AnSramRowKeepsItsWholeWords) {
    ASSERT_EQ(put_sram(16, 1023, {0x11, 0x22, 0x33, 0x44, 0x55}, 17), SDK_RET_OK);
    const read_back row = sram(16, 1023);
    EXPECT_EQ(row.result, SDK_RET_OK);
    EXPECT_EQ(row.bits, 17);
    EXPECT_THAT(row.image, ElementsAre(0x11, 0x22, 0x33, 0x44));
}

TEST_F(AdapterRows, AnSramRowHoldsItsFullWidthAndNoMore) {
    const bytes full(66, 0x5a);
    EXPECT_EQ(put_sram(25, 0, full, 512), SDK_RET_OK);
    EXPECT_EQ(sram(25, 0).image, bytes(64, 0x5a));
    EXPECT_EQ(put_sram(25, 0, full, 513), SDK_RET_INVALID_ARG);
    EXPECT_EQ(sram(25, 0).bits, 512);
    EXPECT_EQ(messages(),
              "error sram_write: table 25: an entry of 513 bits does not fit a row of "
              "512\n");
}

TEST_F(AdapterRows, AShorterWriteLeavesNothingOfTheOneBefore) {
    ASSERT_EQ(put_sram(16, 3, bytes(8, 0xff), 64), SDK_RET_OK);
    ASSERT_EQ(put_sram(16, 3, {0x01, 0x02}, 16), SDK_RET_OK);
    EXPECT_THAT(sram(16, 3).image, ElementsAre(0x01, 0x02));
    ASSERT_EQ(put_sram(16, 3, bytes(8, 0x00), 64), SDK_RET_OK);
    EXPECT_THAT(sram(16, 3).image, ElementsAre(0, 0, 0, 0, 0, 0, 0, 0));
}

TEST_F(AdapterRows, AMaskChangesItsOwnBitsOnly) {
    ASSERT_EQ(put_sram(16, 3, {0xf0, 0x0f}, 16), SDK_RET_OK);
    const bytes next{0x3c, 0xc3}, mask{0xff, 0x00};
    ASSERT_EQ(adapter_->sram_write(16, 3, next.data(), 16, mask.data()), SDK_RET_OK);
    EXPECT_THAT(sram(16, 3).image, ElementsAre(0x3c, 0x0f));
    const bytes some{0x0f, 0x18}, ones{0xff, 0xff};
    ASSERT_EQ(adapter_->sram_write(16, 3, ones.data(), 16, some.data()), SDK_RET_OK);
    EXPECT_THAT(sram(16, 3).image, ElementsAre(0x3f, 0x1f));
}

TEST_F(AdapterRows, AMaskOnAnEmptyRowWritesIntoZeros) {
    const bytes next{0xff, 0xff}, mask{0x81, 0x00};
    ASSERT_EQ(adapter_->sram_write(16, 9, next.data(), 16, mask.data()), SDK_RET_OK);
    EXPECT_THAT(sram(16, 9).image, ElementsAre(0x81, 0x00));
}

TEST_F(AdapterRows, TheFirstRowBeyondTheTableIsRefused) {
    EXPECT_EQ(put_sram(16, 1024, {1, 2}, 16), SDK_RET_INVALID_ARG);
    EXPECT_EQ(put_sram(41, 1, {1, 2}, 16), SDK_RET_INVALID_ARG);
    EXPECT_EQ(sram(16, 1024).result, SDK_RET_INVALID_ARG);
    EXPECT_EQ(sram(16, 0xffffffff).bits, 0);
    EXPECT_EQ(messages(),
              "error sram_write: table 16: index 1024 is beyond 1023\n"
              "error sram_write: table 41: index 1 is beyond 0\n"
              "error sram_read: table 16: index 1024 is beyond 1023\n"
              "error sram_read: table 16: index 4294967295 is beyond 1023\n");
}

TEST_F(AdapterRows, TablesWithoutSramAreRefused) {
    for (uint32_t table : {0u, 49u, 0xffffffffu, 1u, 2u, 21u, 40u}) {
        EXPECT_EQ(put_sram(table, 0, {1, 2}, 16), SDK_RET_INVALID_ARG) << table;
        EXPECT_EQ(sram(table, 0).result, SDK_RET_INVALID_ARG) << table;
        EXPECT_EQ(sram(table, 0).bits, 0) << table;
    }
    EXPECT_THAT(messages(), HasSubstr("error sram_write: table 49 has no SRAM\n"));
}

// The overflow row 5 of a VLAN is SRAM row 4101 of the VLAN table, however it is reached.
TEST_F(AdapterRows, AnOverflowRowIsARowOfItsOwner) {
    struct pair {
        uint32_t overflow, owner, base;
    };
    for (const pair &each : {pair{7, 3, 4096}, {10, 4, 8192}, {11, 5, 8192}, {14, 6, 4096}}) {
        SCOPED_TRACE(each.overflow);
        ASSERT_EQ(put_sram(each.overflow, each.base + 5, {0x12, 0x34}, 16), SDK_RET_OK);
        EXPECT_THAT(sram(each.overflow, 5).image, ElementsAre(0x12, 0x34));
        EXPECT_THAT(sram(each.overflow, each.base + 5).image, ElementsAre(0x12, 0x34));
        EXPECT_EQ(sram(each.overflow, 4).bits, 0);
        EXPECT_EQ(sram(each.owner, 5).bits, 0);
        // The owner's own rows end where the window begins.
        EXPECT_EQ(sram(each.owner, each.base + 5).result, SDK_RET_INVALID_ARG);
    }
}

TEST_F(AdapterRows, WritesOutsideTheOverflowWindowAreRefused) {
    EXPECT_EQ(put_sram(7, 5, {1, 2}, 16), SDK_RET_INVALID_ARG);
    EXPECT_EQ(put_sram(7, 4095, {1, 2}, 16), SDK_RET_INVALID_ARG);
    EXPECT_EQ(put_sram(7, 4096, {1, 2}, 16), SDK_RET_OK);
    EXPECT_EQ(put_sram(7, 4607, {1, 2}, 16), SDK_RET_OK);
    EXPECT_EQ(put_sram(7, 4608, {1, 2}, 16), SDK_RET_INVALID_ARG);
    EXPECT_EQ(sram(7, 512).result, SDK_RET_INVALID_ARG);
    EXPECT_EQ(sram(7, 511).result, SDK_RET_OK);
    EXPECT_THAT(messages(),
                HasSubstr("error sram_write: table 7: SRAM row 4608 is outside 4096 to 4607\n"));
}

// --- TCAM ----------------------------------------------------------------------------------------

TEST_F(AdapterRows, ATcamRowKeepsBothImages) {
    const bytes x{0x10, 0x20, 0x30, 0x40}, y{0x01, 0x02, 0x03, 0x04};
    ASSERT_EQ(adapter_->tcam_write(7, 511, x.data(), y.data(), 32), SDK_RET_OK);
    bytes key = room(), mask = room();
    uint16_t width = 0;
    ASSERT_EQ(adapter_->tcam_read(7, 511, key.data(), mask.data(), &width), SDK_RET_OK);
    EXPECT_EQ(width, 32);
    EXPECT_EQ(first(key, 4), x);
    EXPECT_EQ(first(mask, 4), y);
    EXPECT_EQ(key[4], untouched);
    EXPECT_EQ(mask[4], untouched);
    EXPECT_EQ(sram(7, 511).bits, 0);
}

TEST_F(AdapterRows, AnEmptyTcamRowReadsAsWidthZero) {
    bytes key = room(), mask = room();
    uint16_t width = 0xeeee;
    EXPECT_EQ(adapter_->tcam_read(15, 255, key.data(), mask.data(), &width), SDK_RET_OK);
    EXPECT_EQ(width, 0);
    EXPECT_THAT(key, Each(untouched));
    EXPECT_THAT(mask, Each(untouched));
}

TEST_F(AdapterRows, TcamWidthsAreWholeWordsUpToARow) {
    const bytes image(34, 0x11);
    for (uint16_t width : {uint16_t{0}, uint16_t{8}, uint16_t{24}, uint16_t{217}, uint16_t{257},
                           uint16_t{272}, uint16_t{0xfff0}})
        EXPECT_EQ(adapter_->tcam_write(9, 0, image.data(), image.data(), width),
                  SDK_RET_INVALID_ARG)
            << width;
    for (uint16_t width : {uint16_t{16}, uint16_t{224}, uint16_t{256}})
        EXPECT_EQ(adapter_->tcam_write(9, 0, image.data(), image.data(), width), SDK_RET_OK)
            << width;
    EXPECT_THAT(messages(), HasSubstr("error tcam_write: table 9: width 24 is not a multiple of 16 "
                                      "up to 256\n"));
}

TEST_F(AdapterRows, RowsAndTablesWithoutTcamAreRefused) {
    const bytes image(4, 0x11);
    bytes key = room(), mask = room();
    struct place {
        uint32_t table, row;
    };
    for (const place &each : {place{7, 512},
                              {12, 64},
                              {13, 64},
                              {15, 256},
                              {8, 512},
                              {0, 0},
                              {49, 0},
                              {2, 0},
                              {3, 0},
                              {16, 0},
                              {21, 0},
                              {41, 0}}) {
        SCOPED_TRACE(each.table);
        uint16_t width = 0xeeee;
        EXPECT_EQ(adapter_->tcam_write(each.table, each.row, image.data(), image.data(), 16),
                  SDK_RET_INVALID_ARG);
        EXPECT_EQ(adapter_->tcam_read(each.table, each.row, key.data(), mask.data(), &width),
                  SDK_RET_INVALID_ARG);
        EXPECT_EQ(width, 0);
    }
    EXPECT_THAT(messages(), HasSubstr("error tcam_write: table 7: index 512 is beyond 511\n"));
    EXPECT_THAT(messages(), HasSubstr("error tcam_read: table 16 has no TCAM\n"));
}

// --- HBM -----------------------------------------------------------------------------------------

// HBM images are not swizzled: 17 bits take three bytes.
TEST_F(AdapterRows, AnHbmRowKeepsItsBytes) {
    const bytes image{0x11, 0x22, 0x33, 0x44};
    ASSERT_EQ(adapter_->hbm_write(21, 2097151, image.data(), 17), SDK_RET_OK);
    const read_back row = hbm(21, 2097151);
    EXPECT_EQ(row.result, SDK_RET_OK);
    EXPECT_EQ(row.bits, 17);
    EXPECT_THAT(row.image, ElementsAre(0x11, 0x22, 0x33));
    EXPECT_EQ(hbm(21, 2097150).bits, 0);
}

// A flow row carries no length of its own: it reads as the whole row.
TEST_F(AdapterRows, AFlowRowIsAsLongAsTheRow) {
    const bytes image(117, 0x77);
    ASSERT_EQ(adapter_->hbm_write(2, 15, image.data(), 933), SDK_RET_OK);
    bytes wanted = image;
    wanted.resize(128);
    const read_back row = hbm(2, 15);
    EXPECT_EQ(row.bits, 1024);
    EXPECT_EQ(row.image, wanted);
    EXPECT_EQ(hbm(1, 7).bits, 0);
}

TEST_F(AdapterRows, HbmRowsHoldTheirWidthAndNoMore) {
    const bytes image(130, 0x66);
    EXPECT_EQ(adapter_->hbm_write(26, 0, image.data(), 512), SDK_RET_OK);
    EXPECT_EQ(adapter_->hbm_write(26, 0, image.data(), 513), SDK_RET_INVALID_ARG);
    EXPECT_EQ(adapter_->hbm_write(2, 0, image.data(), 1024), SDK_RET_OK);
    EXPECT_EQ(adapter_->hbm_write(2, 0, image.data(), 1025), SDK_RET_INVALID_ARG);
    EXPECT_EQ(hbm(26, 0).image, bytes(64, 0x66));
    EXPECT_EQ(hbm(2, 0).image, bytes(128, 0x66));
    EXPECT_EQ(messages(),
              "error hbm_write: table 26: an entry of 513 bits does not fit a row of 512\n"
              "error hbm_write: table 2: an entry of 1025 bits does not fit a row of 1024\n");
}

TEST_F(AdapterRows, RowsAndTablesWithoutHbmAreRefused) {
    const bytes image(4, 0x11);
    struct place {
        uint32_t table, row;
    };
    // The flow tables of this adapter have 16 and 8 rows.
    for (const place &each : {place{2, 16},
                              {1, 8},
                              {21, 2097152},
                              {26, 16384},
                              {28, 4096},
                              {31, 8192},
                              {0, 0},
                              {49, 0},
                              {3, 0},
                              {7, 0},
                              {16, 0},
                              {41, 0}}) {
        SCOPED_TRACE(each.table);
        EXPECT_EQ(adapter_->hbm_write(each.table, each.row, image.data(), 16), SDK_RET_INVALID_ARG);
        EXPECT_EQ(hbm(each.table, each.row).result, SDK_RET_INVALID_ARG);
        EXPECT_EQ(hbm(each.table, each.row).bits, 0);
    }
    EXPECT_THAT(messages(), HasSubstr("error hbm_write: table 2: index 16 is beyond 15\n"));
    EXPECT_THAT(messages(), HasSubstr("error hbm_read: table 41 has no HBM\n"));
}

TEST_F(AdapterRows, EnginesReachTheFlowRowsInPlace) {
    const bytes image(128, 0x21);
    ASSERT_EQ(adapter_->hbm_write(2, 3, image.data(), 1024), SDK_RET_OK);
    uint8_t *rows = adapter_->hbm_rows(2);
    ASSERT_NE(rows, nullptr);
    EXPECT_EQ(bytes(rows + 3 * 128, rows + 4 * 128), image);
    rows[5 * 128] = 0x42;
    EXPECT_EQ(hbm(2, 5).bits, 1024);
    EXPECT_EQ(hbm(2, 5).image[0], 0x42);
    ASSERT_NE(adapter_->hbm_rows(1), nullptr);
    EXPECT_NE(adapter_->hbm_rows(1), rows);
    for (uint32_t table : {0u, 3u, 16u, 21u, 48u, 49u})
        EXPECT_EQ(adapter_->hbm_rows(table), nullptr) << table;
}

// --- Whole entries -------------------------------------------------------------------------------

TEST_F(AdapterRows, ClearRowEmptiesOneRowOfEachKind) {
    const bytes image(128, 0x33);
    bytes key = room(), mask = room();
    uint16_t width = 0;

    for (uint32_t row : {4u, 5u}) {
        ASSERT_EQ(put_sram(16, row, image, 49), SDK_RET_OK);
        ASSERT_EQ(adapter_->hbm_write(21, row, image.data(), 328), SDK_RET_OK);
        ASSERT_EQ(adapter_->hbm_write(2, row, image.data(), 933), SDK_RET_OK);
        ASSERT_EQ(put_sram(8, row, image, 9), SDK_RET_OK);
        ASSERT_EQ(adapter_->tcam_write(8, row, image.data(), image.data(), 128), SDK_RET_OK);
        ASSERT_EQ(put_sram(7, 4096 + row, image, 48), SDK_RET_OK);
        ASSERT_EQ(adapter_->tcam_write(7, row, image.data(), image.data(), 32), SDK_RET_OK);
    }
    for (uint32_t table : {16u, 21u, 2u, 8u, 7u})
        EXPECT_EQ(adapter_->clear_row(table, 4), SDK_RET_OK) << table;

    EXPECT_EQ(sram(16, 4).bits, 0);
    EXPECT_EQ(sram(16, 5).bits, 49);
    EXPECT_EQ(hbm(21, 4).bits, 0);
    EXPECT_EQ(hbm(21, 5).bits, 328);
    EXPECT_EQ(hbm(2, 4).bits, 0);
    EXPECT_EQ(hbm(2, 5).bits, 1024);
    for (uint32_t table : {8u, 7u}) {
        EXPECT_EQ(sram(table, 4).bits, 0);
        EXPECT_NE(sram(table, 5).bits, 0);
        ASSERT_EQ(adapter_->tcam_read(table, 4, key.data(), mask.data(), &width), SDK_RET_OK);
        EXPECT_EQ(width, 0);
        ASSERT_EQ(adapter_->tcam_read(table, 5, key.data(), mask.data(), &width), SDK_RET_OK);
        EXPECT_NE(width, 0);
    }
    EXPECT_EQ(messages(), "");
}

// The overflow table's own row is meant, not the owner's.
TEST_F(AdapterRows, ClearRowRefusesRowsBeyondTheTable) {
    EXPECT_EQ(adapter_->clear_row(7, 512), SDK_RET_INVALID_ARG);
    EXPECT_EQ(adapter_->clear_row(7, 4096), SDK_RET_INVALID_ARG);
    EXPECT_EQ(adapter_->clear_row(2, 16), SDK_RET_INVALID_ARG);
    EXPECT_EQ(adapter_->clear_row(49, 0), SDK_RET_INVALID_ARG);
    EXPECT_EQ(adapter_->clear_row(0, 0), SDK_RET_INVALID_ARG);
    EXPECT_EQ(messages(),
              "error clear_row: table 7: index 512 is beyond 511\n"
              "error clear_row: table 7: index 4096 is beyond 511\n"
              "error clear_row: table 2: index 16 is beyond 15\n"
              "error clear_row: table 49 is unknown\n"
              "error clear_row: table 0 is unknown\n");
}

TEST_F(AdapterRows, NextUsedOfAnEmptyTableIsItsDepth) {
    EXPECT_EQ(adapter_->next_used(16, 0), 1024u);
    EXPECT_EQ(adapter_->next_used(16, 4000), 1024u);
    EXPECT_EQ(adapter_->next_used(21, 0), 2097152u);
    EXPECT_EQ(adapter_->next_used(2, 0), 16u);
    EXPECT_EQ(adapter_->next_used(41, 0), 1u);
    EXPECT_EQ(adapter_->next_used(0, 0), 0u);
    EXPECT_EQ(adapter_->next_used(49, 0), 0u);
}

TEST_F(AdapterRows, NextUsedWalksRowsInOrder) {
    const bytes image(128, 0x33);
    for (uint32_t row : {3u, 4u, 1023u}) ASSERT_EQ(put_sram(16, row, image, 49), SDK_RET_OK);
    EXPECT_EQ(adapter_->next_used(16, 0), 3u);
    EXPECT_EQ(adapter_->next_used(16, 3), 3u);
    EXPECT_EQ(adapter_->next_used(16, 4), 4u);
    EXPECT_EQ(adapter_->next_used(16, 5), 1023u);
    EXPECT_EQ(adapter_->next_used(16, 1024), 1024u);
    adapter_->clear_row(16, 3);
    EXPECT_EQ(adapter_->next_used(16, 0), 4u);
    ASSERT_EQ(adapter_->hbm_write(2, 9, image.data(), 933), SDK_RET_OK);
    EXPECT_EQ(adapter_->next_used(2, 0), 9u);
    EXPECT_EQ(adapter_->next_used(2, 10), 16u);
}

// A row that hardware cannot match is not in use, though its data stands in SRAM.
TEST_F(AdapterRows, NextUsedGoesByTheTcamWhereThereIsOne) {
    const bytes image(16, 0x33);
    ASSERT_EQ(put_sram(8, 2, image, 9), SDK_RET_OK);
    ASSERT_EQ(put_sram(7, 4098, image, 48), SDK_RET_OK);
    EXPECT_EQ(adapter_->next_used(8, 0), 512u);
    EXPECT_EQ(adapter_->next_used(7, 0), 512u);
    ASSERT_EQ(adapter_->tcam_write(8, 6, image.data(), image.data(), 128), SDK_RET_OK);
    ASSERT_EQ(adapter_->tcam_write(7, 9, image.data(), image.data(), 32), SDK_RET_OK);
    EXPECT_EQ(adapter_->next_used(8, 0), 6u);
    EXPECT_EQ(adapter_->next_used(7, 0), 9u);
}

// The overflow window lies behind the hash rows in the same memory; it is not the hash table's.
TEST_F(AdapterRows, NextUsedOfAHashTableEndsBeforeTheOverflowWindow) {
    const bytes image(8, 0x33);
    ASSERT_EQ(put_sram(7, 4096, image, 48), SDK_RET_OK);
    EXPECT_EQ(adapter_->next_used(3, 0), 4096u);
    ASSERT_EQ(put_sram(3, 4095, image, 48), SDK_RET_OK);
    EXPECT_EQ(adapter_->next_used(3, 0), 4095u);
}

}  // namespace
