// The imported calls of the ASIC layer, as the library makes them: they reach the current adapter
// and answer its results as ints.

#include "sdk/asic/pd.h"

#include "tests/host/adapter_fixture.h"

#include <set>

namespace {

using namespace halden::test;
using namespace sdk::asic::pd;
using halden::host::asic_call;

class AsicCalls : public AdapterTest {};

TEST_F(AsicCalls, SramRowsGoThere) {
    bytes image(8, 0x21), back = room();
    uint16_t bits = 0xeeee;
    EXPECT_EQ(asicpd_table_entry_write(16, 5, image.data(), 49, nullptr, false), 0);
    EXPECT_EQ(asicpd_table_entry_read(16, 5, back.data(), &bits, false), 0);
    EXPECT_EQ(bits, 49);
    EXPECT_EQ(first(back, 8), image);
    EXPECT_EQ(adapter_->next_used(16, 0), 5u);
}

// This adapter has one copy of a table: the flag changes nothing.
TEST_F(AsicCalls, TheFlagChangesNothing) {
    bytes image(8, 0x21), mask(8, 0x0f), back = room();
    uint16_t bits = 0;
    EXPECT_EQ(asicpd_table_entry_write(16, 5, image.data(), 64, mask.data(), true), 0);
    EXPECT_EQ(asicpd_table_entry_read(16, 5, back.data(), &bits, true), 0);
    EXPECT_EQ(first(back, 8), bytes(8, 0x01));
    EXPECT_EQ(asicpd_tcam_table_entry_write(7, 5, image.data(), mask.data(), 32, true), 0);
    EXPECT_EQ(adapter_->next_used(7, 0), 5u);
}

TEST_F(AsicCalls, TcamRowsGoThereAndTheExtraOutputStays) {
    bytes x(4, 0x21), y(4, 0x42), key = room(), mask = room();
    uint16_t width = 0xeeee;
    uint32_t extra = 0x12345678;
    EXPECT_EQ(asicpd_tcam_table_entry_write(7, 9, x.data(), y.data(), 32, false), 0);
    EXPECT_EQ(asicpd_tcam_table_entry_read(7, 9, key.data(), mask.data(), &width, &extra, false),
              0);
    EXPECT_EQ(width, 32);
    EXPECT_EQ(first(key, 4), x);
    EXPECT_EQ(first(mask, 4), y);
    EXPECT_EQ(extra, 0x12345678u);
}

TEST_F(AsicCalls, HbmRowsGoThere) {
    bytes image(41, 0x21), back = room();
    uint16_t bits = 0xeeee;
    EXPECT_EQ(asicpd_hbm_table_entry_write(21, 9, image.data(), 0, 328), 0);
    EXPECT_EQ(asicpd_hbm_table_entry_read(21, 9, back.data(), &bits), 0);
    EXPECT_EQ(bits, 328);
    EXPECT_EQ(first(back, 41), image);
}

TEST_F(AsicCalls, RefusalsAreAnswered) {
    bytes image = room(), mask = room();
    uint16_t bits = 0xeeee;
    EXPECT_EQ(asicpd_table_entry_write(16, 1024, image.data(), 16, nullptr, false), 2);
    EXPECT_EQ(asicpd_tcam_table_entry_write(16, 0, image.data(), mask.data(), 16, false), 2);
    EXPECT_EQ(asicpd_hbm_table_entry_write(16, 0, image.data(), 0, 16), 2);
    EXPECT_EQ(asicpd_hbm_table_entry_read(49, 0, image.data(), &bits), 2);
    EXPECT_EQ(bits, 0);
    adapter_->faults().inject({.call = asic_call::sram_read});
    EXPECT_EQ(asicpd_table_entry_read(16, 0, image.data(), &bits, false), 7);
}

// --- Action programs -----------------------------------------------------------------------------

unsigned actions_of(uint32_t table) {
    switch (table) {
        case 12:
        case 13:
            return 4;
        case 15:
            return 22;
        case 22:
        case 23:
        case 37:
            return 2;
        case 38:
            return 3;
        default:
            return 1;
    }
}

// Every action of the program runs somewhere, no two of a table at one place, and each place leads
// back to its action.
TEST_F(AsicCalls, EveryActionHasAProgramOfItsOwn) {
    for (uint32_t table = 1; table <= 48; ++table) {
        SCOPED_TRACE(table);
        std::set<uint8_t> places;
        for (unsigned action = 0; action < actions_of(table); ++action) {
            const uint8_t place = asicpd_get_action_pc(table, static_cast<uint8_t>(action));
            EXPECT_NE(place, 0xff);
            EXPECT_EQ(asicpd_get_action_id(table, place), action);
            places.insert(place);
        }
        EXPECT_EQ(places.size(), actions_of(table));
        // Any other place is no action of the table.
        for (unsigned each = 0; each < 256; ++each) {
            const auto place = static_cast<uint8_t>(each);
            if (places.contains(place)) continue;
            EXPECT_GE(asicpd_get_action_id(table, place), actions_of(table)) << each;
        }
    }
}

TEST_F(AsicCalls, AProgramIsNeverAtItsActionsNumber) {
    for (uint8_t action = 0; action < 22; ++action)
        EXPECT_NE(asicpd_get_action_pc(15, action), action);
}

TEST_F(AsicCalls, AnActionOrATableThatIsNotThereHasNoProgram) {
    for (uint32_t table = 1; table <= 48; ++table)
        for (unsigned action = actions_of(table); action < 256; ++action)
            ASSERT_EQ(asicpd_get_action_pc(table, static_cast<uint8_t>(action)), 0xff)
                << table << " " << action;
    for (uint32_t table : {0u, 49u, 0xffffffffu}) {
        EXPECT_EQ(asicpd_get_action_pc(table, 0), 0xff);
        EXPECT_EQ(asicpd_get_action_id(table, 0x10), 0xff);
    }
}

TEST_F(AsicCalls, AFaultTakesAProgramAway) {
    const uint8_t place = asicpd_get_action_pc(12, 1);
    adapter_->faults().inject({.call = asic_call::action_pc, .table = 12});
    adapter_->faults().inject({.call = asic_call::action_id, .table = 12});
    EXPECT_EQ(asicpd_get_action_pc(13, 1), place);
    EXPECT_EQ(asicpd_get_action_pc(12, 1), 0xff);
    EXPECT_EQ(asicpd_get_action_id(12, place), 0xff);
    EXPECT_EQ(asicpd_get_action_pc(12, 1), place);
    EXPECT_EQ(asicpd_get_action_id(12, place), 1);
}

}  // namespace
