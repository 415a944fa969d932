// The hardware's view of hash and ternary tables, on rows written out byte by byte.

#include "host/view/lookup.h"

#include "tests/host/adapter_fixture.h"

namespace {

using namespace halden::test;
using halden::host::view::answer;
using halden::host::view::lookup;
using testing::ElementsAre;
using testing::IsEmpty;

// 24 key bits, as a VLAN key has them. Its row of 4096 is 2903; the neighbour's is 1760.
const bytes key{0x12, 0x34, 0x56}, neighbour{0x12, 0x34, 0x57};
constexpr uint32_t row = 2903, neighbours_row = 1760;

class Lookup : public AdapterTest {
  protected:
    answer look(uint32_t table, bytes image) {
        image.resize(128);
        return lookup(*adapter_, table, image.data());
    }
    // The key and three bytes of data, swizzled.
    void put_hash_row(uint32_t at) {
        const bytes image{0xef, 0xcd, 0xab, 0x56, 0x34, 0x12};
        ASSERT_EQ(adapter_->sram_write(3, at, image.data(), 48, nullptr), SDK_RET_OK);
    }
    // A TCAM row of 24 bits in 32, swizzled; its data says `tag`.
    void put_overflow(uint32_t at, const bytes &x, const bytes &y, uint8_t tag) {
        const bytes data{tag, 0xcd, 0xab, 0x00, 0x00, 0x00};
        ASSERT_EQ(adapter_->sram_write(7, 4096 + at, data.data(), 48, nullptr), SDK_RET_OK);
        ASSERT_EQ(adapter_->tcam_write(7, at, x.data(), y.data(), 32), SDK_RET_OK);
    }
    const bytes exact_x_{0x00, 0x56, 0x34, 0x12}, exact_y_{0x00, 0xa9, 0xcb, 0xed};
};

TEST_F(Lookup, AnEmptyAdapterHasNothing) {
    for (uint32_t table = 0; table <= 49; ++table) {
        const answer found = look(table, bytes(128, 0x5a));
        EXPECT_FALSE(found.hit) << table;
        EXPECT_FALSE(found.row_in_use) << table;
        EXPECT_EQ(found.bits, 0) << table;
        EXPECT_THAT(found.image, IsEmpty()) << table;
    }
}

TEST_F(Lookup, AHashRowAnswersItsKeyWithTheUnswizzledRow) {
    put_hash_row(row);
    const answer found = look(3, key);
    EXPECT_TRUE(found.hit);
    EXPECT_EQ(found.table, 3u);
    EXPECT_EQ(found.row, row);
    EXPECT_EQ(found.bits, 48);
    EXPECT_THAT(found.image, ElementsAre(0x12, 0x34, 0x56, 0xab, 0xcd, 0xef));
    EXPECT_EQ(found.hashed_row, row);
    EXPECT_TRUE(found.row_in_use);
}

TEST_F(Lookup, AKeyOneBitOffMissesTheEntryInItsOwnRow) {
    put_hash_row(neighbours_row);
    const answer found = look(3, neighbour);
    EXPECT_FALSE(found.hit);
    EXPECT_EQ(found.hashed_row, neighbours_row);
    EXPECT_TRUE(found.row_in_use);
    // An entry in a row that is not its key's is never looked at.
    EXPECT_FALSE(look(3, key).hit);
    EXPECT_FALSE(look(3, key).row_in_use);
}

// Too short to hold a key: it may not match by the zeros behind it.
TEST_F(Lookup, ARowShorterThanTheKeyMatchesNothing) {
    const bytes image{0x34, 0x12};
    ASSERT_EQ(adapter_->sram_write(3, row, image.data(), 16, nullptr), SDK_RET_OK);
    EXPECT_FALSE(look(3, key).hit);
    EXPECT_TRUE(look(3, key).row_in_use);
}

TEST_F(Lookup, TheOverflowIsLookedAtAfterTheRow) {
    put_overflow(17, exact_x_, exact_y_, 0x99);
    const answer found = look(3, key);
    EXPECT_TRUE(found.hit);
    EXPECT_EQ(found.table, 7u);
    EXPECT_EQ(found.row, 17u);
    EXPECT_EQ(found.hashed_row, row);
    EXPECT_FALSE(found.row_in_use);
    EXPECT_THAT(found.image, ElementsAre(0x00, 0x00, 0x00, 0xab, 0xcd, 0x99));
    EXPECT_FALSE(look(3, neighbour).hit);
    put_hash_row(row);
    EXPECT_EQ(look(3, key).table, 3u);
}

TEST_F(Lookup, TheLowestTcamRowThatMatchesWins) {
    put_overflow(9, exact_x_, exact_y_, 0x09);
    put_overflow(4, {0, 0, 0, 0}, {0, 0, 0, 0}, 0x04);  // matches everything
    EXPECT_EQ(look(7, key).row, 4u);
    EXPECT_EQ(look(7, neighbour).row, 4u);
    adapter_->clear_row(7, 4);
    EXPECT_EQ(look(7, key).row, 9u);
    EXPECT_FALSE(look(7, neighbour).hit);
    put_overflow(0, exact_x_, exact_y_, 0x01);
    EXPECT_EQ(look(7, key).row, 0u);
    EXPECT_EQ(look(7, key).image.back(), 0x01);
}

// A wanted 1 stands in x, a wanted 0 in y; a bit in neither is don't care, a bit in both matches
// nothing.
TEST_F(Lookup, OnesAndZerosAreWantedApart) {
    put_overflow(0, {0x00, 0x01, 0x00, 0x00}, {0x00, 0x00, 0x00, 0x00}, 1);
    EXPECT_FALSE(look(7, key).hit);
    EXPECT_TRUE(look(7, neighbour).hit);
    put_overflow(0, {0x00, 0x00, 0x00, 0x00}, {0x00, 0x01, 0x00, 0x00}, 1);
    EXPECT_TRUE(look(7, key).hit);
    EXPECT_FALSE(look(7, neighbour).hit);
    put_overflow(0, {0x00, 0x01, 0x00, 0x00}, {0x00, 0x01, 0x00, 0x00}, 1);
    EXPECT_FALSE(look(7, key).hit);
    EXPECT_FALSE(look(7, neighbour).hit);
}

TEST_F(Lookup, ATcamRowWithoutDataIsAHitWithNoImage) {
    ASSERT_EQ(adapter_->tcam_write(7, 3, exact_x_.data(), exact_y_.data(), 32), SDK_RET_OK);
    const answer found = look(7, key);
    EXPECT_TRUE(found.hit);
    EXPECT_EQ(found.bits, 0);
    EXPECT_THAT(found.image, IsEmpty());
}

// One flag wanted set, one wanted clear, six that do not matter.
TEST_F(Lookup, ANarrowTernaryTableMatchesItsFlags) {
    const bytes x{0x00, 0x80}, y{0x00, 0x40}, data{0x00, 0x10};
    ASSERT_EQ(adapter_->sram_write(15, 200, data.data(), 8, nullptr), SDK_RET_OK);
    ASSERT_EQ(adapter_->tcam_write(15, 200, x.data(), y.data(), 16), SDK_RET_OK);
    EXPECT_TRUE(look(15, {0x80}).hit);
    EXPECT_TRUE(look(15, {0xbf}).hit);
    EXPECT_FALSE(look(15, {0xc0}).hit);
    EXPECT_FALSE(look(15, {0x00}).hit);
    EXPECT_EQ(look(15, {0x80}).row, 200u);
    EXPECT_THAT(look(15, {0x80}).image, ElementsAre(0x10));
}

TEST_F(Lookup, IndexTablesHaveNoKeyToLookUp) {
    const bytes image(64, 0x5a);
    adapter_->sram_write(16, 0, image.data(), 49, nullptr);
    adapter_->hbm_write(21, 0, image.data(), 328);
    adapter_->sram_write(41, 0, image.data(), 8, nullptr);
    for (uint32_t table : {16u, 21u, 41u}) EXPECT_FALSE(look(table, image).hit) << table;
}

}  // namespace
