// A table whose genhash_ fails: whatever it answers is the result of every call, and nothing is
// changed.

#include "tests/engines/flow_bed.h"
#include "tests/engines/flow_derived.h"

#include <gtest/gtest.h>

namespace {

using namespace halden;
using namespace halden::test;

constexpr sdk_ret_t codes[] = {SDK_RET_OOM, SDK_RET_INVALID_ARG, SDK_RET_ENTRY_NOT_FOUND,
                               SDK_RET_ERR, static_cast<sdk_ret_t>(1234)};

class FlowFailingHash : public testing::TestWithParam<sdk_ret_t> {
  protected:
    FlowFailingHash() {
        for (uint64_t number = 0; number < 60; ++number)
            EXPECT_EQ(bed_.insert(number, static_cast<uint32_t>(number)), SDK_RET_OK);
        before_ = bed_.memories();
    }
    table_of_failing_hashes &table() {
        return static_cast<table_of_failing_hashes &>(bed_.table());
    }
    void expect_nothing_was_changed() {
        EXPECT_TRUE(bed_.memories() == before_);
        expect_the_flows();
    }
    // All flows are there, and the table works again once hashes do.
    void expect_the_flows() {
        table().fail_no_more();
        EXPECT_EQ(ftl_access::count(table()), 60u);
        bed_.expect_exactly_the_flows(numbers_up_to(140));
        EXPECT_EQ(bed_.insert(60, 60), SDK_RET_OK);
        EXPECT_EQ(bed_.remove(60), SDK_RET_OK);
    }
    void expect_no_store() {
        ftl_access::set_write_hook(
            table(), [](uint32_t, uint32_t) { ADD_FAILURE() << "something was stored"; });
    }

    flow_bed bed_{{16, 256}, &make_table<table_of_failing_hashes>};
    memory_image before_;
};

// By present keys and by missing ones.
TEST_P(FlowFailingHash, SingleCallsAnswerItsCode) {
    expect_no_store();
    for (const uint64_t number : {5u, 77u}) {
        flow_hash_entry_t entry = entry_of(number, 99);
        const flow_hash_entry_t given = entry;
        sdk_table_api_params_t call = {};
        call.entry = &entry;
        table().fail_with(GetParam());
        EXPECT_EQ(table().insert(&call), GetParam());
        EXPECT_EQ(table().get(&call), GetParam());
        EXPECT_EQ(table().update(&call), GetParam());
        EXPECT_EQ(table().remove(&call), GetParam());
        EXPECT_EQ(std::memcmp(entry.body(), given.body(), 128), 0);
        EXPECT_EQ(entry.valid, 0u);
        EXPECT_FALSE(call.hash_valid);
    }
    ftl_access::set_write_hook(table(), {});
    expect_nothing_was_changed();
}

TEST_P(FlowFailingHash, EveryEntryOfABatchGetsItsCode) {
    expect_no_store();
    std::vector<kept_entry> entries;
    std::vector<base_table_entry_t *> pointers;
    for (uint64_t number = 20; number < 100; ++number) entries.push_back({entry_of(number, 99)});
    for (kept_entry &kept : entries) pointers.push_back(&kept.entry);
    for (const auto call :
         {&ftl_access::insert_batch, &ftl_access::get_batch, &ftl_access::remove_batch}) {
        std::vector<sdk_ret_t> results(80, SDK_RET_OK);
        table().fail_with(GetParam());
        EXPECT_EQ(call(table(), pointers, results), 0u);
        EXPECT_EQ(results, std::vector<sdk_ret_t>(80, GetParam()));
    }
    for (const kept_entry &kept : entries)
        EXPECT_EQ(flow_layout::get_bits<flow_layout::flow_idx>(kept.entry.body()), 99u);
    ftl_access::set_write_hook(table(), {});
    expect_nothing_was_changed();
}

// The hashes of the first entries of the call succeed; only these are carried out.
TEST_P(FlowFailingHash, TheOtherEntriesOfABatchAreTreated) {
    for (const uint32_t passes : {1u, 15u, 16u, 17u, 32u, 39u}) {
        SCOPED_TRACE(passes);
        std::vector<kept_entry> entries;
        std::vector<base_table_entry_t *> pointers;
        for (uint64_t number = 100; number < 140; ++number)
            entries.push_back({entry_of(number, 99)});
        for (kept_entry &kept : entries) pointers.push_back(&kept.entry);
        std::vector<sdk_ret_t> expected(40, GetParam());
        std::fill_n(expected.begin(), passes, SDK_RET_OK);
        for (const auto call :
             {&ftl_access::insert_batch, &ftl_access::get_batch, &ftl_access::remove_batch}) {
            std::vector<sdk_ret_t> results(40, SDK_RET_NO_RESOURCE);
            table().fail_with(GetParam(), passes);
            EXPECT_EQ(call(table(), pointers, results), passes);
            EXPECT_EQ(results, expected);
            EXPECT_EQ(ftl_access::count(table()),
                      call == &ftl_access::remove_batch ? 60 : 60 + passes);
        }
    }
    expect_the_flows();
}

TEST_P(FlowFailingHash, RestoringAnswersItsCode) {
    expect_no_store();
    table().fail_with(GetParam());
    EXPECT_EQ(table().restore_state(), GetParam());
    ftl_access::set_write_hook(table(), {});
    expect_nothing_was_changed();
}

// However many hashes succeed before: the code is answered, and no flow is lost.
TEST_P(FlowFailingHash, RestoringThatFailsInTheMiddleDeletesNothing) {
    unsigned failed = 0;
    for (uint32_t passes = 1; passes < 200; ++passes) {
        SCOPED_TRACE(passes);
        table().fail_with(GetParam(), passes);
        const sdk_ret_t result = table().restore_state();
        table().fail_no_more();
        if (result == SDK_RET_OK) break;
        ++failed;
        ASSERT_EQ(result, GetParam());
        ASSERT_TRUE(bed_.memories() == before_);
        ASSERT_EQ(ftl_access::count(table()), 60u);
        bed_.expect_exactly_the_flows(numbers_up_to(100));
        if (HasFatalFailure()) return;
    }
    EXPECT_GT(failed, 20u);
    EXPECT_EQ(table().restore_state(), SDK_RET_OK);
    expect_nothing_was_changed();
}

// The same with a removal that was cut off behind any of its stores: what the failing restoring did
// costs the next one no flow.
TEST_P(FlowFailingHash, RestoringTornRowsThatFailsInTheMiddleLosesNoFlow) {
    const auto flows = bed_.flows;
    const std::vector<uint64_t> all = numbers_up_to(60);
    unsigned cut = 0, failed = 0;
    // Flows that others hang on, and leaves.
    for (const uint64_t removed : {0u, 1u, 20u, 59u}) {
        std::vector<memory_image> torn;
        ftl_access::set_write_hook(table(),
                                   [&](uint32_t, uint32_t) { torn.push_back(bed_.memories()); });
        ASSERT_EQ(bed_.remove(removed), SDK_RET_OK);
        ftl_access::set_write_hook(table(), {});
        for (const memory_image &image : torn) {
            ++cut;
            for (uint32_t passes = 0;; passes += 3) {
                SCOPED_TRACE(testing::Message()
                             << "flow " << removed << ", cut " << cut << ", hashes " << passes);
                bed_.put_memories(image);
                table().fail_with(GetParam(), passes);
                const sdk_ret_t result = table().restore_state();
                table().fail_no_more();
                ASSERT_TRUE(result == SDK_RET_OK || result == GetParam());
                failed += result != SDK_RET_OK;
                ASSERT_EQ(table().restore_state(), SDK_RET_OK);
                bed_.flows = flows;
                if (bed_.get(removed) != SDK_RET_OK) bed_.flows.erase(removed);
                bed_.expect_exactly_the_flows(all);
                if (HasFatalFailure()) return;
                ASSERT_EQ(ftl_access::count(table()), bed_.flows.size());
                if (result == SDK_RET_OK) break;
            }
        }
        bed_.put_memories(before_);
        ASSERT_EQ(table().restore_state(), SDK_RET_OK);
        bed_.flows = flows;
    }
    EXPECT_GT(cut, 20u);
    EXPECT_GT(failed, 100u);
}

INSTANTIATE_TEST_SUITE_P(Codes, FlowFailingHash, testing::ValuesIn(codes),
                         [](const auto &tested) { return "Code" + std::to_string(tested.param); });

// The code by which the engine says that a call is still to be made is a result like any other
// where it comes from a hash.
TEST(FlowFailingHashRetry, ABatchPassesItOn) {
    flow_bed bed({16, 256}, &make_table<table_of_failing_hashes>);
    auto &table = static_cast<table_of_failing_hashes &>(bed.table());
    for (const uint32_t passes : {0u, 1u, 33u}) {
        SCOPED_TRACE(passes);
        std::vector<kept_entry> entries;
        std::vector<base_table_entry_t *> pointers;
        for (uint64_t number = 0; number < 40; ++number) entries.push_back({entry_of(number, 99)});
        for (kept_entry &kept : entries) pointers.push_back(&kept.entry);
        std::vector<sdk_ret_t> expected(40, SDK_RET_RETRY);
        std::fill_n(expected.begin(), passes, SDK_RET_OK);
        for (const auto call :
             {&ftl_access::insert_batch, &ftl_access::get_batch, &ftl_access::remove_batch}) {
            std::vector<sdk_ret_t> results(40, SDK_RET_NO_RESOURCE);
            table.fail_with(SDK_RET_RETRY, passes);
            EXPECT_EQ(call(table, pointers, results), passes);
            EXPECT_EQ(results, expected);
        }
        EXPECT_EQ(bed.memories(), memory_image());
    }
}

}  // namespace
