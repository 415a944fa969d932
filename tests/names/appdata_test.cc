// The application word and the numbered hardware fields of the flow tables' action data.

#include <cstdint>
#include <cstring>
#include <vector>

#include "gtest/gtest.h"
#include "p4pd.h"

namespace {

using bytes = std::vector<uint8_t>;

struct place {
    uint32_t offset;  // from the byte behind the action id
    uint32_t size;
};
constexpr place hwfields[] = {{57, 1}, {4, 2},  {6, 4},  {10, 2}, {12, 4}, {16, 2}, {18, 4},
                              {22, 2}, {24, 4}, {28, 2}, {30, 4}, {34, 2}, {36, 4}, {40, 2},
                              {42, 4}, {46, 2}, {48, 4}, {52, 1}, {53, 4}};
constexpr uint32_t field_count = 19;
static_assert(std::size(hwfields) == field_count);

constexpr uint32_t flow_tables[] = {1, 2};
constexpr uint32_t other_tables[] = {0, 3, 7, 16, 21, 41, 48, 49, UINT32_MAX};
constexpr size_t record_bytes = 59;

// Every byte different, at an odd address, where a record behind an action id may stand.
class odd_record {
  public:
    odd_record() {
        for (size_t i = 0; i < record_bytes; ++i) at()[i] = static_cast<uint8_t>(0x40 + i);
    }
    uint8_t *at() { return storage_ + 1; }
    bytes content() { return {at(), at() + record_bytes}; }

  private:
    alignas(8) uint8_t storage_[record_bytes + 1] = {};
};

TEST(Appdata, TheWordHasFourBytes) {
    EXPECT_EQ(p4pd_actiondata_appdata_size_get(1, 0), 4u);
    EXPECT_EQ(p4pd_actiondata_appdata_size_get(2, 0), 4u);
}

TEST(Appdata, SetStoresTheWordInHostOrderAndNothingElse) {
    for (const uint32_t table : flow_tables) {
        odd_record record;
        bytes want = record.content();
        uint32_t word = 0xdeadbeef;
        std::memcpy(want.data() + 1, &word, sizeof word);
        EXPECT_EQ(p4pd_actiondata_appdata_set(table, 0, &word, record.at()), 0);
        EXPECT_EQ(record.content(), want) << "the action id is not stamped";
    }
}

TEST(Appdata, GetCopiesTheWordWhateverActionTheRecordNames) {
    for (const uint32_t table : flow_tables) {
        odd_record record;
        const bytes before = record.content();
        struct {
            uint32_t word = 0, guard = 0x55555555;
        } out;
        EXPECT_EQ(p4pd_actiondata_appdata_get(table, 0, &out.word, record.at()), 0);
        EXPECT_EQ(std::memcmp(&out.word, before.data() + 1, 4), 0);
        EXPECT_EQ(out.guard, 0x55555555u);
        EXPECT_EQ(record.content(), before);
    }
}

TEST(Appdata, OtherActionsAndTablesAreRefusedAndChangeNothing) {
    const auto refused = [](uint32_t table, uint8_t action) {
        odd_record record;
        const bytes before = record.content();
        uint32_t word = 0x01020304;
        EXPECT_EQ(p4pd_actiondata_appdata_set(table, action, &word, record.at()), -1);
        EXPECT_EQ(record.content(), before) << table;
        EXPECT_EQ(p4pd_actiondata_appdata_get(table, action, &word, record.at()), -1);
        EXPECT_EQ(word, 0x01020304u) << table;
    };
    for (const uint32_t table : flow_tables)
        for (const uint8_t action : {uint8_t{1}, uint8_t{2}, uint8_t{255}}) refused(table, action);
    for (const uint32_t table : other_tables)
        for (const uint8_t action : {uint8_t{0}, uint8_t{1}}) refused(table, action);
}

TEST(HwfieldsCount, NineteenForTheFlowTablesOnlyAction) {
    EXPECT_EQ(p4pd_actiondata_hwfields_count_get(1, 0), 19u);
    EXPECT_EQ(p4pd_actiondata_hwfields_count_get(2, 0), 19u);
}

// Table 3 among them.
TEST(HwfieldsCount, NoneForOtherActionsAndTables) {
    EXPECT_EQ(p4pd_actiondata_hwfields_count_get(3, 0), 0u);
    for (const uint32_t table : flow_tables)
        for (const uint8_t action : {uint8_t{1}, uint8_t{255}})
            EXPECT_EQ(p4pd_actiondata_hwfields_count_get(table, action), 0u);
    for (const uint32_t table : other_tables)
        EXPECT_EQ(p4pd_actiondata_hwfields_count_get(table, 0), 0u) << table;
}

TEST(HwfieldSet, StampsTheActionAndStoresTheFieldAlone) {
    for (const uint32_t table : flow_tables)
        for (uint32_t field = 0; field < field_count; ++field) {
            odd_record record;
            bytes want = record.content();
            bytes source(8);
            for (size_t i = 0; i < source.size(); ++i) source[i] = static_cast<uint8_t>(0xa0 + i);
            want[0] = 0;
            for (uint32_t i = 0; i < hwfields[field].size; ++i)
                want[1 + hwfields[field].offset + i] = source[i];
            EXPECT_EQ(p4pd_actiondata_hwfield_set(table, 0, field, source.data(), record.at()), 0);
            EXPECT_EQ(record.content(), want) << "table " << table << ", field " << field;
        }
}

// On table 2 action 1 is written into the action-id byte although the call fails.
TEST(HwfieldSet, AnotherActionIsStampedAndRefused) {
    for (const uint32_t table : flow_tables)
        for (const uint8_t action : {uint8_t{1}, uint8_t{7}, uint8_t{255}})
            for (const uint32_t field : {0u, 18u, 19u}) {
                odd_record record;
                bytes want = record.content();
                want[0] = action;
                uint8_t source[4] = {1, 2, 3, 4};
                EXPECT_EQ(p4pd_actiondata_hwfield_set(table, action, field, source, record.at()),
                          -1);
                EXPECT_EQ(record.content(), want);
            }
}

TEST(HwfieldSet, AFieldBeyondTheLastIsStampedAndRefused) {
    for (const uint32_t table : flow_tables)
        for (const uint32_t field : {19u, 20u, 255u, 256u, UINT32_MAX}) {
            odd_record record;
            bytes want = record.content();
            want[0] = 0;
            uint8_t source[4] = {1, 2, 3, 4};
            EXPECT_EQ(p4pd_actiondata_hwfield_set(table, 0, field, source, record.at()), -1);
            EXPECT_EQ(record.content(), want) << field;
        }
}

TEST(HwfieldSet, AnotherTableLeavesTheRecordAlone) {
    for (const uint32_t table : other_tables)
        for (const uint8_t action : {uint8_t{0}, uint8_t{1}}) {
            odd_record record;
            const bytes before = record.content();
            uint8_t source[4] = {1, 2, 3, 4};
            EXPECT_EQ(p4pd_actiondata_hwfield_set(table, action, 0, source, record.at()), -1);
            EXPECT_EQ(record.content(), before) << table;
        }
}

// Field 18 is four bytes at 53 behind the action id.
TEST(HwfieldGet, CopiesTheFieldAloneAndStampsNothing) {
    for (const uint32_t table : flow_tables)
        for (uint32_t field = 0; field < field_count; ++field) {
            odd_record record;
            const bytes before = record.content();
            bytes out(8, 0x5a), want(8, 0x5a);
            for (uint32_t i = 0; i < hwfields[field].size; ++i)
                want[i] = before[1 + hwfields[field].offset + i];
            EXPECT_EQ(p4pd_actiondata_hwfield_get(table, 0, field, out.data(), record.at()), 0);
            EXPECT_EQ(out, want) << "table " << table << ", field " << field;
            EXPECT_EQ(record.content(), before);
        }
}

// Field 19 among them.
TEST(HwfieldGet, FieldsBeyondTheLastOtherActionsAndTablesAreRefused) {
    const auto refused = [](uint32_t table, uint8_t action, uint32_t field) {
        odd_record record;
        const bytes before = record.content();
        bytes out(8, 0x5a);
        EXPECT_EQ(p4pd_actiondata_hwfield_get(table, action, field, out.data(), record.at()), -1);
        EXPECT_EQ(out, bytes(8, 0x5a));
        EXPECT_EQ(record.content(), before);
    };
    for (const uint32_t table : flow_tables) {
        for (const uint32_t field : {19u, 20u, 256u, UINT32_MAX}) refused(table, 0, field);
        for (const uint8_t action : {uint8_t{1}, uint8_t{255}}) refused(table, action, 18);
    }
    for (const uint32_t table : other_tables) refused(table, 0, 0);
}

// The size of a word that does not exist is a programming error.
using AppdataSizeDeathTest = testing::TestWithParam<std::pair<uint32_t, unsigned>>;

TEST_P(AppdataSizeDeathTest, NamesTheLineOfItsCase) {
    const auto [table, line] = GetParam();
    const uint8_t action = table == 1 || table == 2 ? 1 : 0;
    const std::string message =
        "p4gen/halden/src/p4pd:" + std::to_string(line) +
        ": uint32_t p4pd_actiondata_appdata_size_get\\(uint32_t, uint8_t\\): Assertion .0. failed";
    EXPECT_DEATH(p4pd_actiondata_appdata_size_get(table, action), message);
    EXPECT_DEATH(p4pd_actiondata_appdata_size_get(table, 255), message);
}

INSTANTIATE_TEST_SUITE_P(Tables, AppdataSizeDeathTest,
                         testing::Values(std::pair(1u, 34205u), std::pair(2u, 34217u),
                                         std::pair(3u, 34224u), std::pair(0u, 34224u),
                                         std::pair(48u, 34224u), std::pair(49u, 34224u),
                                         std::pair(UINT32_MAX, 34224u)),
                         [](const auto &tested) {
                             return "Table" + std::to_string(tested.param.first);
                         });

}  // namespace
