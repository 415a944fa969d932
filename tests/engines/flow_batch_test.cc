// Many flow entries in one call: each is treated as by a call of its own.

#include "tests/engines/flow_bed.h"
#include "tests/engines/flow_derived.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace halden;
using namespace halden::test;

namespace lay = flow_layout;

struct batch {
    explicit batch(const std::vector<uint64_t> &numbers) {
        for (const uint64_t number : numbers)
            entries.push_back({entry_of(number, static_cast<uint32_t>(number + 1000))});
        for (kept_entry &kept : entries) pointers.push_back(&kept.entry);
        results.assign(numbers.size(), SDK_RET_ERR);
    }
    std::vector<kept_entry> entries;
    std::vector<base_table_entry_t *> pointers;
    std::vector<sdk_ret_t> results;
};

// More entries than one group, some twice, a null pointer, and chains of every length.
TEST(FlowBatch, EachEntryIsTreatedAsByACallOfItsOwn) {
    flow_bed bed({16, 128});
    std::vector<uint64_t> numbers = numbers_up_to(100);
    numbers.push_back(7);
    numbers.push_back(99);
    batch in(numbers);
    in.pointers.push_back(nullptr);
    in.results.push_back(SDK_RET_ERR);
    EXPECT_EQ(ftl_access::insert_batch(bed.table(), in.pointers, in.results), 100u);
    for (size_t i = 0; i < 100; ++i) ASSERT_EQ(in.results[i], 0u) << i;
    EXPECT_EQ(in.results[100], 5u);
    EXPECT_EQ(in.results[101], 5u);
    EXPECT_EQ(in.results[102], 2u);
    for (uint64_t number = 0; number < 100; ++number)
        bed.flows[number] = static_cast<uint32_t>(number + 1000);
    bed.expect_exactly_the_flows(numbers_up_to(150));

    batch out(numbers_up_to(150));
    for (kept_entry &kept : out.entries) kept.entry.clear_data();
    EXPECT_EQ(ftl_access::get_batch(bed.table(), out.pointers, out.results), 100u);
    for (size_t i = 0; i < 150; ++i) {
        ASSERT_EQ(out.results[i], i < 100 ? 0u : 4u) << i;
        ASSERT_EQ(lay::get_bits<lay::flow_idx>(out.entries[i].entry.body()),
                  i < 100 ? i + 1000 : 0u);
        ASSERT_EQ(out.entries[i].entry.valid, i < 100 ? 1u : 0u) << i;
    }

    batch gone({3, 3, 120, 50, 51, 52, 53, 99});
    EXPECT_EQ(ftl_access::remove_batch(bed.table(), gone.pointers, gone.results), 6u);
    const std::vector<sdk_ret_t> expected = {SDK_RET_OK,
                                             SDK_RET_ENTRY_NOT_FOUND,
                                             SDK_RET_ENTRY_NOT_FOUND,
                                             SDK_RET_OK,
                                             SDK_RET_OK,
                                             SDK_RET_OK,
                                             SDK_RET_OK,
                                             SDK_RET_OK};
    EXPECT_EQ(gone.results, expected);
    for (const uint64_t number : {3u, 50u, 51u, 52u, 53u, 99u}) bed.flows.erase(number);
    bed.expect_exactly_the_flows(numbers_up_to(150));
}

TEST(FlowBatch, AFullTableRefusesTheRest) {
    flow_bed bed({4, 8});
    batch in(numbers_up_to(60));
    EXPECT_EQ(ftl_access::insert_batch(bed.table(), in.pointers, in.results), 11u);
    EXPECT_EQ(std::count(in.results.begin(), in.results.end(), SDK_RET_OK), 11);
    EXPECT_EQ(std::count(in.results.begin(), in.results.end(), SDK_RET_NO_RESOURCE), 49);
    EXPECT_EQ(ftl_access::count(bed.table()), 11u);
}

// One call may hold entries of several classes; the table's own may be derived as well.
TEST(FlowBatch, EntriesOfTwoClassesInOneCall) {
    for (const bool derived_scratch : {false, true}) {
        SCOPED_TRACE(derived_scratch);
        flow_bed bed({16, 128}, derived_scratch ? &make_table<table_of_derived_entries>
                                                : &make_table<flow_hash>);
        batch plain(numbers_up_to(100));
        std::vector<kept_derived_entry> derived;
        for (const kept_entry &kept : plain.entries) derived.push_back({derived_entry(kept.entry)});
        std::vector<base_table_entry_t *> mixed = plain.pointers;
        for (size_t i = 0; i < 100; i += 3) mixed[i] = &derived[i].entry;
        EXPECT_EQ(ftl_access::insert_batch(bed.table(), mixed, plain.results), 100u);
        for (uint64_t number = 0; number < 100; ++number)
            bed.flows[number] = static_cast<uint32_t>(number + 1000);
        bed.expect_exactly_the_flows(numbers_up_to(120));

        for (size_t i = 0; i < 100; ++i) {
            plain.entries[i].entry.clear_data();
            derived[i].entry.clear_data();
        }
        EXPECT_EQ(ftl_access::get_batch(bed.table(), mixed, plain.results), 100u);
        for (size_t i = 0; i < 100; ++i) {
            auto *entry = static_cast<flow_hash_entry_t *>(mixed[i]);
            EXPECT_EQ(lay::get_bits<lay::flow_idx>(entry->body()), i + 1000) << i;
            EXPECT_EQ(entry->valid, 1u) << i;
            EXPECT_TRUE(derived[i].entry.is_whole());
        }
        EXPECT_EQ(ftl_access::remove_batch(bed.table(), mixed, plain.results), 100u);
        EXPECT_EQ(bed.memories(), memory_image());
    }
}

}  // namespace
