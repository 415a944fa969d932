// Many flow entries in one call: each is treated as by a call of its own.

#include "tests/engines/flow_bed.h"
#include "tests/engines/flow_derived.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <span>

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

// Around every number of entries that can be under way at once.
TEST(FlowBatch, OfEverySizeUpToAThousand) {
    for (const uint64_t size :
         {0u, 1u, 2u, 15u, 16u, 17u, 31u, 32u, 33u, 47u, 48u, 49u, 63u, 64u, 65u, 1000u}) {
        SCOPED_TRACE(size);
        flow_bed bed({256, 1024});
        batch in(numbers_up_to(size));
        EXPECT_EQ(ftl_access::insert_batch(bed.table(), in.pointers, in.results), size);
        for (uint64_t number = 0; number < size; ++number) {
            ASSERT_EQ(in.results[number], 0u) << number;
            bed.flows[number] = static_cast<uint32_t>(number + 1000);
        }
        bed.expect_exactly_the_flows(numbers_up_to(size + 5));
        batch out(numbers_up_to(size));
        EXPECT_EQ(ftl_access::get_batch(bed.table(), out.pointers, out.results), size);
        batch gone(numbers_up_to(size));
        EXPECT_EQ(ftl_access::remove_batch(bed.table(), gone.pointers, gone.results), size);
        for (uint64_t number = 0; number < size; ++number) {
            ASSERT_EQ(out.results[number], 0u) << number;
            ASSERT_EQ(gone.results[number], 0u) << number;
        }
        EXPECT_EQ(ftl_access::count(bed.table()), 0u);
    }
}

// More entries than are under way at once, some twice, a null pointer, and chains of every length.
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

constexpr auto all_batch_calls = {&ftl_access::insert_batch, &ftl_access::remove_batch,
                                  &ftl_access::get_batch};

// Without room for its result an entry is left out.
TEST(FlowBatch, MoreEntriesThanResults) {
    flow_bed bed({16, 64});
    batch in(numbers_up_to(50));
    EXPECT_EQ(ftl_access::insert_batch(bed.table(), in.pointers, std::span(in.results).first(40)),
              40u);
    for (size_t i = 0; i < 50; ++i)
        EXPECT_EQ(in.results[i], i < 40 ? SDK_RET_OK : SDK_RET_ERR) << i;
    for (uint64_t number = 0; number < 40; ++number)
        bed.flows[number] = static_cast<uint32_t>(number + 1000);
    bed.expect_exactly_the_flows(numbers_up_to(50));

    batch out(numbers_up_to(50));
    for (kept_entry &kept : out.entries) kept.entry.clear_data();
    EXPECT_EQ(ftl_access::get_batch(bed.table(), out.pointers, std::span(out.results).first(3)),
              3u);
    EXPECT_EQ(out.results[3], SDK_RET_ERR);
    EXPECT_EQ(lay::get_bits<lay::flow_idx>(out.entries[2].entry.body()), 1002u);
    EXPECT_EQ(lay::get_bits<lay::flow_idx>(out.entries[3].entry.body()), 0u);

    batch gone(numbers_up_to(50));
    EXPECT_EQ(
        ftl_access::remove_batch(bed.table(), gone.pointers, std::span(gone.results).first(7)), 7u);
    EXPECT_EQ(gone.results[7], SDK_RET_ERR);
    for (uint64_t number = 0; number < 7; ++number) bed.flows.erase(number);
    bed.expect_exactly_the_flows(numbers_up_to(50));
}

TEST(FlowBatch, MoreResultsThanEntries) {
    flow_bed bed({16, 64});
    batch some(numbers_up_to(5));
    for (const auto call : all_batch_calls) {
        some.results.assign(9, SDK_RET_ERR);
        EXPECT_EQ(call(bed.table(), some.pointers, some.results),
                  call == &ftl_access::get_batch ? 0u : 5u);
        for (size_t i = 0; i < 5; ++i) EXPECT_NE(some.results[i], SDK_RET_ERR) << i;
        for (size_t i = 5; i < 9; ++i) EXPECT_EQ(some.results[i], SDK_RET_ERR) << i;
    }
}

TEST(FlowBatch, NoEntriesOrNoResults) {
    flow_bed bed({16, 64});
    bed.insert(0, 7);
    const memory_image before = bed.memories();
    batch one({0});
    for (const auto call : all_batch_calls) {
        EXPECT_EQ(call(bed.table(), {}, {}), 0u);
        EXPECT_EQ(call(bed.table(), {}, one.results), 0u);
        EXPECT_EQ(call(bed.table(), one.pointers, {}), 0u);
    }
    EXPECT_EQ(one.results[0], SDK_RET_ERR);
    EXPECT_EQ(bed.memories(), before);
}

// The first and the last of a group, whole groups, and nothing but null.
TEST(FlowBatch, NullEntriesAreRefusedAndTheOthersTreated) {
    for (const size_t every : {1u, 2u, 31u, 32u, 33u}) {
        SCOPED_TRACE(every);
        flow_bed bed({16, 128});
        batch some(numbers_up_to(70));
        unsigned given = 0;
        for (size_t i = 0; i < 70; ++i) {
            if (i % every == 0) some.pointers[i] = nullptr;
            given += some.pointers[i] != nullptr;
        }
        for (const auto call :
             {&ftl_access::insert_batch, &ftl_access::get_batch, &ftl_access::remove_batch}) {
            some.results.assign(70, SDK_RET_ERR);
            EXPECT_EQ(call(bed.table(), some.pointers, some.results), given);
            for (size_t i = 0; i < 70; ++i)
                EXPECT_EQ(some.results[i], i % every == 0 ? 2u : 0u) << i;
            EXPECT_EQ(ftl_access::count(bed.table()),
                      call == &ftl_access::remove_batch ? 0u : given);
        }
        EXPECT_EQ(bed.memories(), memory_image());
    }
}

// In no given order, one of them succeeds. Both stand in one group, then in two.
TEST(FlowBatch, TheSameObjectTwice) {
    for (const size_t again : {1u, 31u, 32u, 60u}) {
        SCOPED_TRACE(again);
        flow_bed bed({16, 128});
        batch some(numbers_up_to(70));
        some.pointers[again] = some.pointers[0];
        const auto results_of_both = [&] {
            return std::set<uint32_t>{some.results[0], some.results[again]};
        };
        EXPECT_EQ(ftl_access::insert_batch(bed.table(), some.pointers, some.results), 69u);
        EXPECT_EQ(results_of_both(), (std::set<uint32_t>{0, 5}));
        EXPECT_EQ(ftl_access::count(bed.table()), 69u);
        some.entries[0].entry.clear_data();
        EXPECT_EQ(ftl_access::get_batch(bed.table(), some.pointers, some.results), 70u);
        EXPECT_EQ(lay::get_bits<lay::flow_idx>(some.entries[0].entry.body()), 1000u);
        EXPECT_EQ(ftl_access::remove_batch(bed.table(), some.pointers, some.results), 69u);
        EXPECT_EQ(results_of_both(), (std::set<uint32_t>{0, 4}));
        EXPECT_EQ(bed.memories(), memory_image());
    }
}

// A table that was never given an engine refuses whatever it is asked.
TEST(FlowBatch, ATableWithoutAnEngine) {
    flow_hash table;
    batch some(numbers_up_to(40));
    for (const auto call : all_batch_calls) {
        some.results.assign(50, SDK_RET_ERR);
        EXPECT_EQ(call(table, some.pointers, some.results), 0u);
        for (size_t i = 0; i < 50; ++i) EXPECT_EQ(some.results[i], i < 40 ? 2u : 255u) << i;
        some.results.assign(50, SDK_RET_ERR);
        EXPECT_EQ(call(table, some.pointers, std::span(some.results).first(20)), 0u);
        for (size_t i = 0; i < 50; ++i) EXPECT_EQ(some.results[i], i < 20 ? 2u : 255u) << i;
        EXPECT_EQ(call(table, {}, some.results), 0u);
    }
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
