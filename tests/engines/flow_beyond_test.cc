// Hints to rows beyond the overflow table, as a damaged memory may hold them, met by calls without
// a restore first. Right behind the table's four rows, in the same page of memory, stands a row
// that only looks like a flow: whoever follows the hint finds it. The farthest row that a hint can
// name lies in no memory at all.

#include "tests/engines/flow_bed.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <tuple>

namespace {

using namespace halden;
using namespace halden::test;

constexpr uint32_t overflow_rows = 4;
constexpr uint32_t last_row_of_page = 31, farthest_row = 0x1fffff;
constexpr uint32_t own_slot = 1, spill_slot = 9;
constexpr uint64_t kept = 1000;  // the flow of the one main row, which holds the hint

// Hint, slot, whether the caller's entries are of a derived class.
class FlowBeyond : public testing::TestWithParam<std::tuple<uint32_t, uint32_t, bool>> {
  protected:
    FlowBeyond() {
        const auto &[hint, slot, derived] = GetParam();
        bed_.derived_callers = derived;
        const uint32_t hash = hash_of(0) & 0x3ff;
        sought_ = numbers_with_hash(0x3ff, hash, 1)[0];
        EXPECT_EQ(bed_.insert(kept, 1007), SDK_RET_OK);
        uint8_t *memory = bed_.hardware().hbm_rows(flow);
        flow_hash_entry_t entry;
        std::reverse_copy(memory, memory + 128, entry.body());
        entry.set_hint_hash(slot, hint, slot == own_slot ? hash : 1);
        std::reverse_copy(entry.body(), entry.body() + 128, memory);
        if (hint <= last_row_of_page) {
            flow_hash_entry_t bait = entry_of(sought_, 77);
            bait.set_entry_valid(1);
            std::reverse_copy(bait.body(), bait.body() + 128, row_of_page(hint));
        }
        before_ = bed_.memories();
        std::memcpy(page_, row_of_page(0), sizeof page_);
    }
    uint8_t *row_of_page(uint32_t row) {
        return bed_.hardware().hbm_rows(flow_ohash) + size_t{128} * row;
    }
    void expect_nothing_was_changed() {
        EXPECT_TRUE(bed_.memories() == before_);
        EXPECT_EQ(std::memcmp(page_, row_of_page(0), sizeof page_), 0);
    }
    void expect_the_kept_flow() {
        uint32_t flow_idx = 0;
        EXPECT_EQ(bed_.get(kept, &flow_idx), SDK_RET_OK);
        EXPECT_EQ(flow_idx, 1007u);
    }

    flow_bed bed_{{1, overflow_rows}};
    uint64_t sought_ = 0;
    memory_image before_;
    uint8_t page_[4096];
};

TEST_P(FlowBeyond, SingleCallsDoNotGoThere) {
    expect_the_kept_flow();
    EXPECT_EQ(bed_.get(sought_), 4u);
    EXPECT_EQ(bed_.seen_by_hardware(sought_), -1);
    EXPECT_EQ(bed_.update(sought_, 1), 4u);
    EXPECT_EQ(bed_.remove(sought_), 4u);
    EXPECT_EQ(bed_.insert(sought_, 1), 255u);
    EXPECT_EQ(bed_.remove(kept), 255u) << "no leaf can take its place";
    expect_the_kept_flow();
    expect_nothing_was_changed();
}

TEST_P(FlowBeyond, BatchesDoNotGoThere) {
    bed_.as_batches = true;
    expect_the_kept_flow();
    EXPECT_EQ(bed_.get(sought_), 4u);
    EXPECT_EQ(bed_.remove(sought_), 4u);
    EXPECT_EQ(bed_.insert(sought_, 1), 255u);
    EXPECT_EQ(bed_.remove(kept), 255u);
    expect_nothing_was_changed();
}

TEST_P(FlowBeyond, LookingOverAllFlowsDoesNotGoThere) {
    std::vector<uint32_t> found;
    ftl_access::for_each(bed_.table(), [&](const ftl_access::stored_flow &stored) {
        EXPECT_EQ(stored.table, flow);
        found.push_back(stored.row);
        return true;
    });
    EXPECT_EQ(found, std::vector<uint32_t>{0});
    EXPECT_EQ(ftl_access::statistics(bed_.table()).flows(), 1u);
    expect_nothing_was_changed();
}

TEST_P(FlowBeyond, RestoringTakesTheHintAway) {
    ASSERT_EQ(bed_.table().restore_state(), SDK_RET_OK);
    EXPECT_EQ(std::memcmp(page_, row_of_page(0), sizeof page_), 0);
    bed_.expect_exactly_the_flows({sought_});
    EXPECT_EQ(bed_.insert(sought_, 9), SDK_RET_OK);
    bed_.expect_exactly_the_flows({});
    EXPECT_EQ(bed_.remove(kept), SDK_RET_OK);
    bed_.expect_exactly_the_flows({kept});
}

std::string name_of(const testing::TestParamInfo<FlowBeyond::ParamType> &tested) {
    const auto &[hint, slot, derived] = tested.param;
    return "Row" + std::to_string(hint) + (slot == own_slot ? "BySlot" : "BySpill") +
           (derived ? "DerivedCallers" : "");
}
INSTANTIATE_TEST_SUITE_P(Hints, FlowBeyond,
                         testing::Combine(testing::Values(overflow_rows, overflow_rows + 1,
                                                          last_row_of_page, farthest_row),
                                          testing::Values(own_slot, spill_slot), testing::Bool()),
                         name_of);

}  // namespace
