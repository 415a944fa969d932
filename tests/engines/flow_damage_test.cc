// Hints that lead in circles, as a damaged memory may hold them: every call comes to an end, says
// so where it cannot do its work, and changes nothing then.

#include "tests/engines/flow_bed.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace halden;
using namespace halden::test;
namespace lay = flow_layout;

struct circle {
    const char *name;
    std::vector<uint32_t> rows;  // of the overflow, each with hints to the next one
    uint32_t first_slot, last_slot;
    bool valid;  // the rows hold flows
};

void PrintTo(const circle &tested, std::ostream *out) { *out << tested.name; }

// One bucket: the flow of the main row, one behind its first slot and one behind its second. Behind
// the first begins the circle.
class FlowCircle : public testing::TestWithParam<circle> {
  protected:
    FlowCircle() {
        const uint32_t hash = hash_of(0) & 0x3ff;
        numbers_ = {1000, 0};  // main row, row 1
        const std::vector<uint64_t> same = numbers_with_hash(0x3ff, hash, 3);
        missing_ = {same[1], same[2]};
        numbers_.push_back(numbers_with_hash(0x3ff, hash ^ 1, 1)[0]);
        for (const uint64_t number : numbers_)
            EXPECT_EQ(bed_.insert(number, static_cast<uint32_t>(number + 7)), SDK_RET_OK);
        for (size_t i = 0; i < GetParam().rows.size(); ++i) {
            const auto &rows = GetParam().rows;
            damage(rows[i], rows[(i + 1) % rows.size()], hash);
        }
        before_ = bed_.memories();
    }
    void damage(uint32_t row, uint32_t next, uint32_t hash) {
        uint8_t *memory = bed_.hardware().hbm_rows(flow_ohash) + size_t{128} * row;
        flow_hash_entry_t entry;
        std::reverse_copy(memory, memory + 128, entry.body());
        for (uint32_t slot = GetParam().first_slot; slot <= GetParam().last_slot; ++slot)
            entry.set_hint_hash(slot, next, slot == 1 ? hash : hash ^ slot << 4);
        entry.set_entry_valid(GetParam().valid ? 1 : 0);
        std::reverse_copy(entry.body(), entry.body() + 128, memory);
    }
    void expect_nothing_was_changed() { EXPECT_TRUE(bed_.memories() == before_); }
    sdk_ret_t found(uint64_t number) {
        uint32_t flow_idx = 0;
        const sdk_ret_t result = bed_.get(number, &flow_idx);
        if (result == SDK_RET_OK) {
            EXPECT_EQ(flow_idx, number + 7);
        }
        return result;
    }

    flow_bed bed_{{1, 32}};
    std::vector<uint64_t> numbers_;
    std::vector<uint64_t> missing_;  // keys whose way leads into the circle
    memory_image before_;
};

TEST_P(FlowCircle, SingleCallsEnd) {
    EXPECT_EQ(found(numbers_[0]), 0u);
    EXPECT_EQ(found(numbers_[1]), GetParam().valid ? 0u : 4u);
    EXPECT_EQ(found(numbers_[2]), 0u);
    for (const uint64_t number : missing_) {
        EXPECT_EQ(found(number), 4u);
        EXPECT_EQ(bed_.seen_by_hardware(number), -1);
        EXPECT_EQ(bed_.update(number, 1), 4u);
        EXPECT_EQ(bed_.remove(number), 4u);
        EXPECT_EQ(bed_.insert(number, 1), 255u);
    }
    expect_nothing_was_changed();
}

TEST_P(FlowCircle, BatchesEnd) {
    bed_.as_batches = true;
    EXPECT_EQ(found(numbers_[0]), 0u);
    EXPECT_EQ(found(numbers_[2]), 0u);
    for (const uint64_t number : missing_) {
        EXPECT_EQ(found(number), 4u);
        EXPECT_EQ(bed_.remove(number), 4u);
        EXPECT_EQ(bed_.insert(number, 1), 255u);
    }
    expect_nothing_was_changed();
}

// Every flow is listed once, in a circle or not, and nothing that is no flow.
TEST_P(FlowCircle, LookingOverAllFlowsEnds) {
    std::map<uint64_t, unsigned> listed;
    ftl_access::for_each(bed_.table(), [&](const ftl_access::stored_flow &stored) {
        flow_hash_entry_t entry;
        stored.copy_to(entry);
        for (const uint64_t number : numbers_) {
            flow_hash_entry_t key = entry_of(number);
            if (entry.compare_key(&key)) {
                ++listed[number];
                return true;
            }
        }
        ADD_FAILURE() << "no flow of this table";
        return true;
    });
    EXPECT_EQ(listed[numbers_[0]], 1u);
    EXPECT_EQ(listed[numbers_[1]], GetParam().valid ? 1u : 0u);
    EXPECT_EQ(listed[numbers_[2]], 1u);
    const auto figures = ftl_access::statistics(bed_.table());
    EXPECT_EQ(figures.main_used, 1u);
    EXPECT_EQ(figures.overflow_used, GetParam().valid ? 2u : 1u);
    expect_nothing_was_changed();
}

TEST_P(FlowCircle, IsCutByRestoring) {
    ASSERT_EQ(bed_.table().restore_state(), SDK_RET_OK);
    bed_.flows.clear();
    for (const uint64_t number : numbers_)
        if (found(number) == SDK_RET_OK) bed_.flows[number] = static_cast<uint32_t>(number + 7);
    EXPECT_EQ(bed_.flows.size(), GetParam().valid ? 3u : 2u);
    // Rows without a flow are cut off, and stay: nobody said that they may go.
    bed_.rows_apart = GetParam().valid ? 0 : static_cast<uint32_t>(GetParam().rows.size());
    bed_.expect_exactly_the_flows(missing_);
    for (const uint64_t number : missing_) EXPECT_EQ(bed_.insert(number, 9), SDK_RET_OK);
    bed_.expect_exactly_the_flows(numbers_);
    EXPECT_EQ(ftl_access::count(bed_.table()), bed_.flows.size());
}

INSTANTIATE_TEST_SUITE_P(Damages, FlowCircle,
                         testing::Values(circle{"ARowToItself", {1}, 1, 1, true},
                                         circle{"ARowToItselfBySpill", {1}, 9, 9, true},
                                         circle{"ARowToItselfByEverySlot", {1}, 1, 9, true},
                                         circle{"AnEmptyRowToItselfByEverySlot", {1}, 1, 9, false},
                                         circle{"ThreeRowsByEverySlot", {1, 5, 6}, 1, 9, false},
                                         circle{"ThreeRowsByOneSlot", {1, 5, 6}, 1, 1, false},
                                         circle{"ThreeRowsBySpill", {1, 5, 6}, 9, 9, false}),
                         [](const auto &tested) { return std::string(tested.param.name); });

// Hints of many main rows to one row of the overflow, which can be emptied only once: the flows
// still go one by one, and what came back to the free rows serves new flows.
TEST(FlowDamage, ManyHintsToOneRow) {
    flow_bed bed({64, 4});
    std::vector<uint64_t> numbers;
    for (uint64_t number = 0; bed.main_rows_in_use() < 32; ++number)
        if (bed.insert(number, 1) == SDK_RET_OK) {
            numbers.push_back(number);
            if (bed.overflow_rows_in_use() == 0) continue;
            ASSERT_EQ(bed.remove(number), SDK_RET_OK);
            numbers.pop_back();
        }
    for (uint32_t row = 0; row < 64; ++row) {
        uint8_t *memory = bed.hardware().hbm_rows(flow) + size_t{128} * row;
        flow_hash_entry_t entry;
        std::reverse_copy(memory, memory + 128, entry.body());
        entry.set_hint_hash(1, 1, 0x155);
        if (lay::get_bits<lay::entry_valid>(entry.body()) != 0)
            std::reverse_copy(entry.body(), entry.body() + 128, memory);
    }
    for (const uint64_t number : numbers) {
        EXPECT_EQ(bed.remove(number), SDK_RET_OK) << number;
        EXPECT_EQ(bed.get(number), SDK_RET_ENTRY_NOT_FOUND) << number;
    }
    EXPECT_EQ(ftl_access::count(bed.table()), 0u);
    for (const uint64_t number : numbers) EXPECT_EQ(bed.insert(number, 2), SDK_RET_OK) << number;
    bed.expect_exactly_the_flows(numbers_up_to(200));
}

// Also not after a flow that stood there has gone.
TEST(FlowDamage, RowsThatAreLeftOutServeNoNewFlow) {
    flow_bed bed({1, 64});
    for (uint64_t number = 0; number < 3; ++number) ASSERT_EQ(bed.insert(number, 1), SDK_RET_OK);
    EXPECT_EQ(bed.overflow_rows_in_use(), 2u);
    const auto in_rows_below = [&](uint32_t end) {
        unsigned count = 0;
        ftl_access::for_each(bed.table(), [&](const ftl_access::stored_flow &stored) {
            count += stored.table == flow_ohash && stored.row < end;
            return true;
        });
        return count;
    };
    ftl_access::leave_out_overflow_rows(bed.table(), 32);
    ASSERT_EQ(bed.remove(2), SDK_RET_OK);
    EXPECT_EQ(in_rows_below(32), 1u);
    for (uint64_t number = 3; number < 8; ++number) ASSERT_EQ(bed.insert(number, 1), SDK_RET_OK);
    EXPECT_EQ(in_rows_below(32), 1u);
    ASSERT_EQ(bed.table().restore_state(), SDK_RET_OK);
    for (uint64_t number = 8; number < 12; ++number) ASSERT_EQ(bed.insert(number, 1), SDK_RET_OK);
    EXPECT_EQ(in_rows_below(32), 1u);
    bed.expect_exactly_the_flows(numbers_up_to(20));
}

}  // namespace
