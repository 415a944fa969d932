// The flow engine against a map, by thousands of random operations on small tables; behind every
// single word that the engine stores, the hardware still finds every flow.

#include "tests/engines/flow_bed.h"

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

class FlowModel : public testing::TestWithParam<shape> {
  protected:
    // Behind every word: all flows but the one that an operation is about are where the packets
    // look for them, and the keys that are in no flow hit nothing.
    void watch_every_store() {
        ftl_access::leave_out_overflow_rows(bed_.table(), GetParam().first_overflow_row);
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

    flow_bed bed_{GetParam().depths};
    std::vector<uint64_t> numbers_ = numbers_with_hash(GetParam().hash_mask, 0, GetParam().keys);
    std::mt19937_64 random_{20};
    uint64_t touched_ = 0;
    bool filling_ = true;
    unsigned stores_ = 0, wrong_ = 0, refused_ = 0;
};

TEST_P(FlowModel, EveryFlowIsFoundAtEveryStore) {
    watch_every_store();
    for (unsigned i = 0; i < GetParam().operations; ++i) {
        SCOPED_TRACE("operation " + std::to_string(i));
        filling_ = i / 500 % 2 == 0;
        step();
        if (HasFatalFailure()) return;
        ASSERT_EQ(wrong_, 0u);
        ASSERT_EQ(ftl_access::count(bed_.table()), bed_.flows.size());
        if (i % 100 == 0) bed_.expect_exactly_the_flows(numbers_);
        if (HasFatalFailure()) return;
    }
    EXPECT_GT(stores_, GetParam().operations);
    while (!bed_.flows.empty()) {
        touched_ = bed_.flows.begin()->first;
        ASSERT_EQ(bed_.remove(touched_), SDK_RET_OK);
        ASSERT_EQ(wrong_, 0u);
    }
    // Nothing is left behind: an empty table is all zero.
    EXPECT_EQ(bed_.memories(), memory_image());
}

INSTANTIATE_TEST_SUITE_P(
    Shapes, FlowModel,
    testing::Values(shape{"SpreadOverSixtyFourRows", {64, 32}, 0, 110, 3000},
                    shape{"ManyHintHashesInOneRow", {1, 64}, 0, 70, 2500},
                    shape{"FourHintHashesInOneRow", {1, 64}, 0x3fc, 50, 2500},
                    shape{"OneHintHashInFourRows", {4, 64}, 0x3ff, 40, 2500},
                    // A row number of more than 20 bits reaches into both words of every hint.
                    shape{"HintsAcrossTwoWords", {1, 2097152}, 0, 50, 1500, 0x155551},
                    shape{"OverflowOfOneRow", {8, 2}, 0, 24, 2000},
                    shape{"NoOverflowAtAll", {8, 1}, 0, 24, 2000}),
    [](const auto &tested) { return std::string(tested.param.name); });

}  // namespace
