// The hardware's way through the flow table, on rows written out bit by bit. The flow table of this
// adapter has 16 rows, its overflow 8.

#include "host/view/lookup.h"

#include "tests/host/adapter_fixture.h"

namespace {

using namespace halden::test;
using halden::host::view::answer;
using halden::host::view::lookup;

constexpr uint32_t overflow = 1, flow = 2;

// Key bytes 0 to 58 and 68 to 83. Its hash is 0x12b02277: row 1 of 16, hint hash 0x277.
bytes key_row() {
    bytes out(128);
    for (size_t i = 0; i < 59; ++i) out[i] = static_cast<uint8_t>(i + 1);
    for (size_t i = 68; i < 84; ++i) out[i] = static_cast<uint8_t>(i + 1);
    return out;
}
constexpr uint32_t row = 1;

bytes valid(bytes image) {
    image[116] |= 0x08;  // bit 932
    return image;
}
bytes another_key(bytes image) {
    image[83] ^= 0x01;
    return image;
}
// The first slot's hash at bits 534 to 543, its hint at 672 to 692.
bytes first_slot(bytes image, uint32_t hash, uint32_t hint) {
    image[66] = static_cast<uint8_t>((image[66] & 0xfc) | hash >> 8);
    image[67] = static_cast<uint8_t>(hash);
    image[84] = static_cast<uint8_t>(hint >> 13);
    image[85] = static_cast<uint8_t>(hint >> 5);
    image[86] = static_cast<uint8_t>(hint << 3 | (image[86] & 0x07));
    return image;
}
// The second slot's hash 0x277 at bits 693 to 702, its hint (below 16) at 703 to 723.
bytes second_slot(bytes image, uint32_t hint) {
    image[86] = static_cast<uint8_t>((image[86] & 0xf8) | 0x04);
    image[87] = 0xee;
    image[90] = static_cast<uint8_t>(hint << 4);
    return image;
}
// The flag at bit 910, the hint (below 16) at 911 to 931.
bytes more(bytes image, bool flag, uint32_t hint) {
    image[113] = flag ? 0x02 : 0x00;
    image[116] = static_cast<uint8_t>((image[116] & 0x0f) | hint << 4);
    return image;
}

class FlowLookup : public AdapterTest {
  protected:
    void put(uint32_t table, uint32_t at, const bytes &image) {
        ASSERT_EQ(adapter_->hbm_write(table, at, image.data(), 1024), SDK_RET_OK);
    }
    answer look() { return lookup(*adapter_, flow, key_row().data()); }
    void expect_hit(uint32_t table, uint32_t at, const bytes &image) {
        const answer found = look();
        EXPECT_TRUE(found.hit);
        EXPECT_EQ(found.table, table);
        EXPECT_EQ(found.row, at);
        EXPECT_EQ(found.bits, 1024);
        EXPECT_EQ(found.image, image);
        EXPECT_EQ(found.hashed_row, row);
        EXPECT_TRUE(found.row_in_use);
    }
    void expect_miss(bool in_use) {
        const answer found = look();
        EXPECT_FALSE(found.hit);
        EXPECT_EQ(found.table, 0u);
        EXPECT_EQ(found.row, 0u);
        EXPECT_EQ(found.bits, 0);
        EXPECT_EQ(found.hashed_row, row);
        EXPECT_EQ(found.row_in_use, in_use);
    }

    const bytes entry_ = valid(key_row()), stranger_ = valid(another_key(key_row()));
};

TEST_F(FlowLookup, AnEmptyTableMisses) { expect_miss(false); }

TEST_F(FlowLookup, TheHashedRowAnswersItsKey) {
    put(flow, row, entry_);
    expect_hit(flow, row, entry_);
}

TEST_F(FlowLookup, TheDataInTheKeysGapIsNoKey) {
    bytes entry = entry_;
    for (size_t i = 59; i < 68; ++i) entry[i] = 0xff;
    put(flow, row, entry);
    expect_hit(flow, row, entry);
}

TEST_F(FlowLookup, AnEntryThatIsNotValidMisses) {
    put(flow, row, key_row());
    expect_miss(true);
}

TEST_F(FlowLookup, AnotherKeyInTheRowMisses) {
    put(flow, row, stranger_);
    expect_miss(true);
    put(flow, 2, entry_);  // the right key in a row that is not its own
    expect_miss(true);
}

TEST_F(FlowLookup, ASlotWithTheHashLeadsOn) {
    put(overflow, 5, entry_);
    put(flow, row, first_slot(stranger_, 0x277, 5));
    expect_hit(overflow, 5, entry_);
    put(flow, row, second_slot(first_slot(stranger_, 0x276, 4), 5));
    expect_hit(overflow, 5, entry_);
}

TEST_F(FlowLookup, ASlotWithAnotherHashDoesNot) {
    put(overflow, 5, entry_);
    put(flow, row, first_slot(stranger_, 0x077, 5));
    expect_miss(true);
}

// Overflow row 0 is never used: a hint of 0 is no hint.
TEST_F(FlowLookup, AHintOfZeroLeadsNowhere) {
    put(overflow, 0, entry_);
    put(flow, row, more(first_slot(stranger_, 0x277, 0), true, 0));
    expect_miss(true);
}

TEST_F(FlowLookup, TheMoreSlotIsTakenWhenNoOtherMatches) {
    put(overflow, 6, entry_);
    put(flow, row, more(first_slot(stranger_, 0x276, 5), true, 6));
    expect_hit(overflow, 6, entry_);
    put(flow, row, more(first_slot(stranger_, 0x276, 5), false, 6));
    expect_miss(true);
    // A slot that matches goes first, wherever it leads.
    put(flow, row, more(first_slot(stranger_, 0x277, 5), true, 6));
    put(overflow, 5, stranger_);
    expect_miss(true);
}

TEST_F(FlowLookup, AChainIsFollowedToItsEnd) {
    put(flow, row, first_slot(stranger_, 0x277, 3));
    put(overflow, 3, more(stranger_, true, 4));
    put(overflow, 4, second_slot(stranger_, 7));
    put(overflow, 7, entry_);
    expect_hit(overflow, 7, entry_);
}

TEST_F(FlowLookup, AHintToAnEmptyRowOrBeyondTheOverflowEnds) {
    put(flow, row, first_slot(stranger_, 0x277, 3));
    expect_miss(true);
    put(flow, row, first_slot(stranger_, 0x277, 8));
    expect_miss(true);
    put(flow, row, first_slot(stranger_, 0x277, 0x1fffff));
    expect_miss(true);
    EXPECT_EQ(messages(), "");
}

TEST_F(FlowLookup, ACircleOfHintsEnds) {
    put(flow, row, first_slot(stranger_, 0x277, 3));
    put(overflow, 3, first_slot(stranger_, 0x277, 4));
    put(overflow, 4, first_slot(stranger_, 0x277, 3));
    expect_miss(true);
}

// The overflow table is reached through `flow` only.
TEST_F(FlowLookup, TheOverflowTableHasNoLookUpOfItsOwn) {
    for (uint32_t at = 0; at < 8; ++at) put(overflow, at, entry_);
    EXPECT_FALSE(lookup(*adapter_, overflow, key_row().data()).hit);
}

}  // namespace
