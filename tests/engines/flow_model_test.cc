// The flow engine against a map, by thousands of random operations on small tables; behind every
// single word that the engine stores, the hardware still finds every flow. The engine works on
// plain flow entries in line and on entries of derived classes through their virtual operations:
// both ways, and their mixtures, are held against the map.

#include "tests/engines/flow_bed.h"
#include "tests/engines/flow_derived.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using namespace halden;
using namespace halden::test;

struct shape {
    const char *name;
    host::adapter_options depths;
    // Keys whose hash, under the mask, is 0: they fall in few buckets and share few hint hashes.
    uint32_t hash_mask;
    size_t keys;
    unsigned operations;
    uint32_t first_overflow_row = 1;
};

// Whose entries are of a derived class: the engine's scratch entries, and the callers'.
struct classes {
    const char *name;
    bool derived_scratch, derived_callers;
};

class FlowModel : public testing::TestWithParam<std::tuple<shape, classes>> {
  protected:
    FlowModel() { bed_.derived_callers = classes_.derived_callers; }

    // Behind every word: all flows but the one that an operation is about are where the packets
    // look for them, and the keys that are in no flow hit nothing.
    void watch_every_store() {
        ftl_access::leave_out_overflow_rows(bed_.table(), shape_.first_overflow_row);
        ftl_access::set_write_hook(bed_.table(), [this](uint32_t, uint32_t) {
            ++stores_;
            for (const uint64_t number : numbers_) {
                if (number == touched_) continue;
                const auto flow = bed_.flows.find(number);
                const int64_t expected = flow != bed_.flows.end() ? int64_t{flow->second} : -1;
                if (bed_.seen_by_hardware(number) != expected) ++wrong_;
            }
        });
    }
    void step() {
        touched_ = numbers_[random_() % numbers_.size()];
        const auto flow_idx = static_cast<uint32_t>(random_() & 0x3fffff);
        const bool there = bed_.flows.count(touched_) != 0;
        bed_.as_batches = random_() % 4 == 0;
        const uint64_t before = derived_entry::calls;
        carry_out(flow_idx, there);
        virtual_calls_ += derived_entry::calls - before;
    }
    void carry_out(uint32_t flow_idx, bool there) {
        switch (random_() % (filling_ ? 5 : 8)) {
            case 0:
                ASSERT_EQ(bed_.update(touched_, flow_idx),
                          there ? SDK_RET_OK : SDK_RET_ENTRY_NOT_FOUND);
                break;
            case 1:
            case 5:
            case 6:
            case 7:
                ASSERT_EQ(bed_.remove(touched_), there ? SDK_RET_OK : SDK_RET_ENTRY_NOT_FOUND);
                break;
            default: {
                const sdk_ret_t result = bed_.insert(touched_, flow_idx);
                if (there) {
                    ASSERT_EQ(result, SDK_RET_ENTRY_EXISTS);
                } else if (result != SDK_RET_OK) {
                    ASSERT_EQ(result, SDK_RET_NO_RESOURCE);
                    ++refused_;
                }
            }
        }
    }

    // All flows and no other ones are found and listed, and nothing is there to be put right.
    void expect_the_flows() {
        bed_.expect_exactly_the_flows(numbers_);
        if (HasFatalFailure()) return;
        auto listed = bed_.flows;
        ftl_access::for_each(bed_.table(), [&](const ftl_access::stored_flow &stored) {
            derived_entry entry;
            stored.copy_to(entry);
            EXPECT_EQ(entry.valid, 1u);
            const auto flow_idx = flow_layout::get_bits<flow_layout::flow_idx>(entry.body());
            const auto flow = std::find_if(listed.begin(), listed.end(), [&](const auto &one) {
                flow_hash_entry_t key = entry_of(one.first);
                return one.second == flow_idx && entry.compare_key(&key);
            });
            if (flow == listed.end()) {
                ADD_FAILURE() << "listed twice, or no flow of this table";
                return false;
            }
            listed.erase(flow);
            return true;
        });
        EXPECT_TRUE(listed.empty());
        const unsigned stores = stores_;
        ASSERT_EQ(bed_.table().restore_state(), SDK_RET_OK);
        ASSERT_EQ(stores_, stores);
        // Rows that were left out stay so.
        ASSERT_GE(bed_.hardware().next_used(flow_ohash, 0),
                  std::min(shape_.first_overflow_row, shape_.depths.flow_ohash_rows));
    }

    const shape shape_ = std::get<0>(GetParam());
    const classes classes_ = std::get<1>(GetParam());
    flow_bed bed_{shape_.depths, classes_.derived_scratch ? &make_table<table_of_derived_entries>
                                                          : &make_table<flow_hash>};
    std::vector<uint64_t> numbers_ = numbers_with_hash(shape_.hash_mask, 0, shape_.keys);
    std::mt19937_64 random_{20};
    uint64_t touched_ = 0;
    bool filling_ = true;
    uint64_t virtual_calls_ = 0;
    unsigned stores_ = 0, wrong_ = 0, refused_ = 0;
};

TEST_P(FlowModel, EveryFlowIsFoundAtEveryStore) {
    watch_every_store();
    for (unsigned i = 0; i < shape_.operations; ++i) {
        SCOPED_TRACE("operation " + std::to_string(i));
        filling_ = i / (shape_.operations / 6) % 2 == 0;
        step();
        if (HasFatalFailure()) return;
        ASSERT_EQ(wrong_, 0u);
        ASSERT_EQ(ftl_access::count(bed_.table()), bed_.flows.size());
        if (i % 100 == 0) expect_the_flows();
        if (HasFatalFailure()) return;
    }
    EXPECT_GT(stores_, shape_.operations);
    while (!bed_.flows.empty()) {
        touched_ = bed_.flows.begin()->first;
        ASSERT_EQ(bed_.remove(touched_), SDK_RET_OK);
        ASSERT_EQ(wrong_, 0u);
    }
    // Nothing is left behind: an empty table is all zero.
    EXPECT_EQ(bed_.memories(), memory_image());
    if (classes_.derived_scratch || classes_.derived_callers) {
        EXPECT_GT(virtual_calls_, 100u);
    } else {
        EXPECT_EQ(virtual_calls_, 0u);
    }
    for (const auto &row : table_of_derived_entries::entries)
        for (const derived_entry &entry : row) EXPECT_TRUE(entry.is_whole());
}

std::string name_of_tested(const testing::TestParamInfo<std::tuple<shape, classes>> &tested) {
    return std::string(std::get<1>(tested.param).name) + std::get<0>(tested.param).name;
}

INSTANTIATE_TEST_SUITE_P(
    Shapes, FlowModel,
    testing::Combine(
        testing::Values(shape{"SpreadOverSixtyFourRows", {64, 32}, 0, 110, 3000},
                        shape{"ManyHintHashesInOneRow", {1, 64}, 0, 70, 2500},
                        shape{"FourHintHashesInOneRow", {1, 64}, 0x3fc, 50, 2500},
                        shape{"OneHintHashInFourRows", {4, 64}, 0x3ff, 40, 2500},
                        // A row number of more than 20 bits reaches into both words of every hint.
                        shape{"HintsAcrossTwoWords", {1, 2097152}, 0, 50, 1500, 0x155551},
                        shape{"OverflowOfOneRow", {8, 2}, 0, 24, 2000},
                        shape{"NoOverflowAtAll", {8, 1}, 0, 24, 2000}),
        testing::Values(classes{"Plain", false, false})),
    name_of_tested);

INSTANTIATE_TEST_SUITE_P(
    VirtualOperations, FlowModel,
    testing::Combine(
        testing::Values(shape{"SpreadOverSixtyFourRows", {64, 32}, 0, 80, 900},
                        shape{"ManyHintHashesInOneRow", {1, 64}, 0, 50, 600},
                        shape{"FourHintHashesInOneRow", {1, 64}, 0x3fc, 40, 700},
                        shape{"HintsAcrossTwoWords", {1, 2097152}, 0, 40, 300, 0x155551},
                        shape{"OverflowOfOneRow", {8, 2}, 0, 20, 900}),
        testing::Values(classes{"AllDerived", true, true}, classes{"DerivedScratch", true, false},
                        classes{"DerivedCallers", false, true})),
    name_of_tested);

}  // namespace
