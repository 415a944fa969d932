// The calls of the flow engine one by one: results, images, full tables, removal from every place
// of a chain.

#include "tests/engines/flow_bed.h"
#include "tests/engines/flow_derived.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

using namespace halden;
using namespace halden::test;

namespace lay = flow_layout;

TEST(FlowCalls, AnswerMissingAndPresentFlows) {
    flow_bed bed({64, 32});
    EXPECT_EQ(bed.get(1), 4u);
    EXPECT_EQ(bed.update(1, 5), 4u);
    EXPECT_EQ(bed.remove(1), 4u);
    EXPECT_EQ(bed.memories(), memory_image());
    EXPECT_EQ(bed.insert(1, 5), 0u);
    EXPECT_EQ(bed.insert(1, 6), 5u);
    uint32_t flow_idx = 0;
    EXPECT_EQ(bed.get(1, &flow_idx), 0u);
    EXPECT_EQ(flow_idx, 5u);
    EXPECT_EQ(bed.update(1, 0x3fffff), 0u);
    EXPECT_EQ(bed.get(1, &flow_idx), 0u);
    EXPECT_EQ(flow_idx, 0x3fffffu);
    EXPECT_EQ(bed.remove(1), 0u);
    EXPECT_EQ(bed.get(1), 4u);
    EXPECT_EQ(bed.memories(), memory_image());
}

TEST(FlowCalls, RefuseNullPointers) {
    flow_bed bed({64, 32});
    sdk_table_api_params_t call = {};
    for (sdk_table_api_params_t *params : {static_cast<sdk_table_api_params_t *>(nullptr), &call}) {
        EXPECT_EQ(bed.table().insert(params), 2u);
        EXPECT_EQ(bed.table().update(params), 2u);
        EXPECT_EQ(bed.table().remove(params), 2u);
        EXPECT_EQ(bed.table().get(params), 2u);
    }
}

// A table that was never given an engine.
TEST(FlowCalls, RefuseEverythingWithoutAnEngine) {
    flow_hash table;
    flow_hash_entry_t entry = entry_of(1);
    sdk_table_api_params_t call = {};
    call.entry = &entry;
    EXPECT_EQ(table.insert(&call), 2u);
    EXPECT_EQ(table.update(&call), 2u);
    EXPECT_EQ(table.remove(&call), 2u);
    EXPECT_EQ(table.get(&call), 2u);
    EXPECT_EQ(table.restore_state(), 2u);
    EXPECT_EQ(ftl_access::count(table), 0u);
    EXPECT_EQ(ftl_access::statistics(table).main_depth, 0u);
    ftl_access::for_each(table, [](const ftl_access::stored_flow &) {
        ADD_FAILURE() << "no flow can be there";
        return true;
    });
}

TEST(FlowCalls, LeaveTheCallersRecordAndAMissedEntryAlone) {
    flow_bed bed({64, 32});
    bed.insert(1, 5);
    for (const uint64_t number : {1u, 2u}) {
        flow_hash_entry_t entry = entry_of(number, 99);
        const flow_hash_entry_t before = entry;
        sdk_table_api_params_t call = {};
        call.entry = &entry;
        EXPECT_EQ(bed.table().get(&call), number == 1 ? 0u : 4u);
        EXPECT_FALSE(call.hash_valid);
        EXPECT_EQ(call.hash_value, 0u);
        if (number == 2) {
            EXPECT_EQ(std::memcmp(entry.body(), before.body(), 128), 0);
            EXPECT_EQ(entry.valid, 0u);
        }
    }
}

TEST(FlowCalls, TakeAHashThatTheCallerKnows) {
    flow_bed bed({64, 32});
    bed.insert(1, 5);
    flow_hash_entry_t entry = entry_of(1);
    sdk_table_api_params_t call = {};
    call.entry = &entry;
    call.hash_valid = true;
    call.hash_value = hash_of(1);
    EXPECT_EQ(bed.table().get(&call), 0u);
    call.hash_value = ~call.hash_value;  // another row
    EXPECT_EQ(bed.table().get(&call), 4u);
}

// A hash that the caller gives is used unchanged, by all four calls: the flow stands where the
// caller says, and only who gives the same hash finds it.
TEST(FlowCalls, AHashThatTheCallerGivesDecidesWhereAFlowStands) {
    flow_bed bed({16, 64});
    const auto hash_given_to = [](uint64_t number) {
        return static_cast<uint32_t>(number * 0x9e3779b9);
    };
    const auto with_hash = [&](uint64_t number, uint32_t hash, uint32_t flow_idx, auto operation) {
        flow_hash_entry_t entry = entry_of(number, flow_idx);
        sdk_table_api_params_t call = {};
        call.entry = &entry;
        call.hash_valid = true;
        call.hash_value = hash;
        const sdk_ret_t result = (bed.table().*operation)(&call);
        EXPECT_TRUE(call.hash_valid);
        EXPECT_EQ(call.hash_value, hash);
        if (operation == &flow_hash::get && result == SDK_RET_OK) {
            EXPECT_EQ(lay::get_bits<lay::flow_idx>(entry.body()), number + 500);
        }
        return result;
    };
    unsigned rows[16] = {};
    for (uint64_t number = 0; number < 40; ++number) {
        const uint32_t hash = hash_given_to(number);
        ASSERT_EQ(with_hash(number, hash, 1, &flow_hash::insert), 0u);
        ASSERT_EQ(with_hash(number, hash, 1, &flow_hash::insert), 5u);
        ASSERT_EQ(with_hash(number, hash, static_cast<uint32_t>(number + 500), &flow_hash::update),
                  0u);
        // The four high bits name one of the sixteen rows.
        if (rows[hash >> 28]++ > 0) continue;
        const uint8_t *row = bed.hardware().hbm_rows(flow) + size_t{128} * (hash >> 28);
        flow_hash_entry_t stored, key = entry_of(number);
        std::reverse_copy(row, row + 128, stored.body());
        EXPECT_EQ(stored.get_entry_valid(), 1);
        EXPECT_TRUE(stored.compare_key(&key)) << number;
    }
    EXPECT_EQ(ftl_access::count(bed.table()), 40u);
    for (uint64_t number = 0; number < 40; ++number) {
        const uint32_t hash = hash_given_to(number);
        ASSERT_EQ(with_hash(number, hash, 0, &flow_hash::get), 0u);
        // Another row.
        ASSERT_EQ(with_hash(number, hash ^ 0x80000000, 0, &flow_hash::get), 4u);
        ASSERT_EQ(with_hash(number, hash ^ 0x80000000, 0, &flow_hash::update), 4u);
        ASSERT_EQ(with_hash(number, hash ^ 0x80000000, 0, &flow_hash::remove), 4u);
    }
    for (uint64_t number = 0; number < 40; ++number)
        ASSERT_EQ(with_hash(number, hash_given_to(number), 0, &flow_hash::remove), 0u);
    EXPECT_EQ(bed.memories(), memory_image());
}

// The caller's hints are nobody's business but the engine's; the more flag is kept, and leads
// nowhere.
TEST(FlowCalls, DoNotTakeTheCallersHints) {
    flow_bed bed({64, 32});
    flow_hash_entry_t entry = entry_of(1, 5);
    for (uint32_t slot = 1; slot <= 9; ++slot) entry.set_hint_hash(slot, 7, hash_of(2) & 0x3ff);
    sdk_table_api_params_t call = {};
    call.entry = &entry;
    ASSERT_EQ(bed.table().insert(&call), 0u);
    flow_hash_entry_t found = entry_of(1);
    call.entry = &found;
    ASSERT_EQ(bed.table().get(&call), 0u);
    for (uint32_t slot = 1; slot <= 9; ++slot) {
        uint32_t hint = 1, hash = 1;
        found.get_hint_hash(slot, hint, hash);
        EXPECT_EQ(hint, 0u) << slot;
        EXPECT_EQ(hash, slot == 9 ? 1u : 0u) << slot;
    }
    EXPECT_EQ(bed.seen_by_hardware(2), -1);
}

// --- Full

// Its comparison writes the very flow that is being read, before every look at it.
class restless_entry : public flow_hash_entry_t {
  public:
    restless_entry(flow_bed &bed, const flow_hash_entry_t &like, uint32_t times)
        : flow_hash_entry_t(like), bed_(bed), left_(times) {}
    bool compare_key(void *other) override {
        ++compared;
        if (left_ > 0) {
            --left_;
            EXPECT_EQ(bed_.update(1, ++written), SDK_RET_OK);
        }
        return flow_hash_entry_t::compare_key(other);
    }
    static inline uint32_t written = 0, compared = 0;

  private:
    flow_bed &bed_;
    uint32_t left_;
};
class table_of_restless_entries : public flow_hash {
  public:
    base_table_entry_t *get_entry(uint16_t row, int column) override {
        return column == 0 && restless != nullptr ? restless : flow_hash::get_entry(row, column);
    }
    static inline base_table_entry_t *restless = nullptr;
};

// A reader that every look finds a writer's change takes the lock in the end.
TEST(FlowCalls, AReaderComesToAnEndWhateverWritersDo) {
    flow_bed bed({1, 4}, make_table<table_of_restless_entries>);
    ASSERT_EQ(bed.insert(1, 5), SDK_RET_OK);
    restless_entry restless(bed, entry_of(1), 256);
    table_of_restless_entries::restless = &restless;
    flow_hash_entry_t plain = entry_of(1);
    derived_entry asked(plain);
    sdk_table_api_params_t call = {};
    call.entry = &asked;
    EXPECT_EQ(bed.table().get(&call), SDK_RET_OK);
    table_of_restless_entries::restless = nullptr;
    EXPECT_EQ(restless_entry::compared, 257u);
    EXPECT_EQ(flow_layout::get_bits<flow_layout::flow_idx>(asked.body()), 256u);
}

TEST(FlowFull, RefusesWithACodeAndChangesNothing) {
    for (const host::adapter_options depths :
         {host::adapter_options{64, 32}, {8, 64}, {1, 16}, {16, 1}, {1, 1}}) {
        SCOPED_TRACE(std::to_string(depths.flow_rows) + " and " +
                     std::to_string(depths.flow_ohash_rows));
        flow_bed bed(depths);
        const std::vector<uint64_t> numbers = numbers_up_to(400);
        unsigned refused = 0;
        for (const uint64_t number : numbers) {
            const memory_image before = bed.memories();
            const sdk_ret_t result = bed.insert(number, 77);
            if (result == SDK_RET_OK) continue;
            ++refused;
            ASSERT_EQ(result, 6u);
            ASSERT_EQ(bed.memories(), before);
        }
        EXPECT_GT(refused, 0u);
        bed.expect_exactly_the_flows(numbers);
        if (HasFatalFailure()) return;
        // All overflow rows but row 0 are in use, and with this many keys all main rows.
        EXPECT_EQ(bed.flows.size(), depths.flow_rows + depths.flow_ohash_rows - 1);
    }
}

// Behind one slot stand eight entries at most.
TEST(FlowFull, AChainOfOneHashTakesEightMoreThanItsMainRow) {
    flow_bed bed({1, 256});
    const std::vector<uint64_t> numbers = numbers_with_hash(0x3ff, 0x155, 12);
    for (size_t i = 0; i < 9; ++i) ASSERT_EQ(bed.insert(numbers[i], 1), 0u) << i;
    const memory_image full = bed.memories();
    for (size_t i = 9; i < 12; ++i) EXPECT_EQ(bed.insert(numbers[i], 1), 6u) << i;
    EXPECT_EQ(bed.memories(), full);
    bed.expect_exactly_the_flows(numbers);
    // Room for one again, and for other hashes all the time.
    EXPECT_EQ(bed.remove(numbers[4]), 0u);
    EXPECT_EQ(bed.insert(numbers[11], 1), 0u);
    EXPECT_EQ(bed.insert(numbers[10], 1), 6u);
    const uint64_t other = numbers_with_hash(0x3ff, 0x154, 1)[0];
    EXPECT_EQ(bed.insert(other, 1), 0u);
    bed.expect_exactly_the_flows(numbers);
}

// A bucket ends after eight more slots: nine rows with eight slots each, all of different hashes.
TEST(FlowFull, ABucketTakesEightContinuations) {
    flow_bed bed({1, 1024});
    std::vector<uint64_t> numbers;
    for (uint32_t hash = 0; hash < 100; ++hash)
        numbers.push_back(numbers_with_hash(0x3ff, hash, 1)[0]);
    for (size_t i = 0; i < 81; ++i) ASSERT_EQ(bed.insert(numbers[i], 1), 0u) << i;
    const memory_image full = bed.memories();
    for (size_t i = 81; i < 100; ++i) EXPECT_EQ(bed.insert(numbers[i], 1), 6u) << i;
    EXPECT_EQ(bed.memories(), full);
    bed.expect_exactly_the_flows(numbers);
    const auto figures = ftl_access::statistics(bed.table());
    EXPECT_EQ(figures.main_used, 1u);
    EXPECT_EQ(figures.overflow_used, 80u);
    EXPECT_EQ(figures.longest_path, 9u);
    EXPECT_EQ(figures.path_lengths[0], 1u);
    for (size_t i = 1; i <= 8; ++i) EXPECT_EQ(figures.path_lengths[i], 9u) << i;
    EXPECT_EQ(figures.path_lengths[9], 8u);
}

TEST(FlowFull, RandomKeysFillNinetyFivePercentOfTheMainTable) {
    flow_bed bed({65536, 32768});
    for (uint64_t number = 0; number < 62260; ++number)
        ASSERT_EQ(bed.insert(number, static_cast<uint32_t>(number)), 0u) << number;
    for (uint64_t number = 0; number < 62260; ++number) {
        uint32_t flow_idx = 0;
        ASSERT_EQ(bed.get(number, &flow_idx), 0u) << number;
        ASSERT_EQ(flow_idx, number);
    }
    for (uint64_t number = 62260; number < 124520; ++number) ASSERT_EQ(bed.get(number), 4u);
}

// --- Removal from chains

class FlowChain : public testing::TestWithParam<uint32_t> {};

// Chains of one hash (mask 0x3ff), trees of several hashes (0x3f0) and long more chains (0): every
// flow is removed once, with all others in place, and comes again.
TEST_P(FlowChain, AnyFlowCanBeRemovedAndComeAgain) {
    // A chain of one hash takes nine.
    const size_t keys = GetParam() == 0x3ff ? 9 : 40;
    const std::vector<uint64_t> more = numbers_with_hash(GetParam(), 0, keys);
    for (const uint64_t removed : more) {
        flow_bed bed({1, 128});
        for (const uint64_t number : more) ASSERT_EQ(bed.insert(number, 3), 0u);
        ASSERT_EQ(bed.remove(removed), 0u);
        bed.expect_exactly_the_flows(more);
        if (HasFatalFailure()) return;
        ASSERT_EQ(bed.insert(removed, 4), 0u);
        bed.expect_exactly_the_flows(more);
        if (HasFatalFailure()) return;
        for (const uint64_t number : more) ASSERT_EQ(bed.remove(number), 0u);
        ASSERT_EQ(bed.memories(), memory_image());
    }
}

INSTANTIATE_TEST_SUITE_P(HashMasks, FlowChain, testing::Values(0x3ffu, 0x3f0u, 0u));

// --- Set-up

TEST(FlowSetUp, AFailingAllocationGivesNoTable) {
    auto adapter = host::adapter::anonymous({64, 32});
    host::scoped_current use(*adapter);
    for (uint32_t passed = 0; passed < 3; ++passed) {
        adapter->faults().inject(
            {.call = host::asic_call::allocate, .table = flow, .skip = passed});
        sdk::table::sdk_table_factory_params_t params = {};
        EXPECT_EQ(flow_hash::factory(&params), nullptr) << passed;
        adapter->faults().clear();
    }
    sdk::table::sdk_table_factory_params_t params = {};
    flow_hash *table = flow_hash::factory(&params);
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(params.table_id, 2u);
    EXPECT_EQ(params.num_hints, 8u);
    EXPECT_EQ(params.max_chain, 8u);
    flow_hash::destroy(table);
}

TEST(FlowSetUp, OnlyTheFlowTableHasAFlowEngine) {
    auto adapter = host::adapter::anonymous({64, 32});
    host::scoped_current use(*adapter);
    for (const uint32_t id : {1u, 3u, 48u}) {
        sdk::table::sdk_table_factory_params_t params = {};
        params.table_id = id;
        EXPECT_EQ(flow_hash::factory(&params), nullptr) << id;
    }
}

TEST(FlowSetUp, TablesOnTwoAdaptersStandSideBySide) {
    flow_bed one({16, 16});
    flow_bed two({16, 16});
    for (uint64_t number = 0; number < 20; ++number) ASSERT_EQ(one.insert(number, 1), 0u);
    for (uint64_t number = 10; number < 30; ++number) ASSERT_EQ(two.insert(number, 2), 0u);
    one.expect_exactly_the_flows(numbers_up_to(30));
    two.expect_exactly_the_flows(numbers_up_to(30));
}

// Memory from the engine is zero, whichever pages it comes from.
// Its parameters go to the engine as they are; flow_hash itself gives always the same.
class table_as_asked : public flow_hash {
  public:
    sdk_ret_t init(sdk::table::sdk_table_factory_params_t *params) {
        return ftl_base::init_(params);
    }
};
class short_entry : public flow_hash_entry_t {
  public:
    uint32_t entry_size() override { return 64; }
};
class table_of_short_entries : public table_as_asked {
  public:
    base_table_entry_t *get_entry(uint16_t, int) override { return &entry_; }

  private:
    short_entry entry_;
};

TEST(FlowSetUp, ParametersThatNoTableCanHaveAreRefused) {
    auto adapter = host::adapter::anonymous({64, 32});
    host::scoped_current use(*adapter);
    const auto asked = [](uint32_t table, uint32_t hints, uint32_t chain) {
        table_as_asked made;
        sdk::table::sdk_table_factory_params_t params = {};
        params.table_id = table;
        params.num_hints = hints;
        params.max_chain = chain;
        return made.init(&params);
    };
    EXPECT_EQ(asked(flow, 0, 8), SDK_RET_INVALID_ARG);
    EXPECT_EQ(asked(flow, 9, 8), SDK_RET_INVALID_ARG) << "slot 9 is where a chain goes on";
    EXPECT_EQ(asked(flow, 8, 0), SDK_RET_INVALID_ARG);
    EXPECT_EQ(asked(flow_ohash, 8, 8), SDK_RET_INVALID_ARG);
    table_as_asked made;
    EXPECT_EQ(made.init(nullptr), SDK_RET_INVALID_ARG);
    sdk::table::sdk_table_factory_params_t params = {};
    params.table_id = flow;
    params.num_hints = params.max_chain = 8;
    table_of_short_entries cut;
    EXPECT_EQ(cut.init(&params), SDK_RET_INVALID_ARG) << "a row has 128 bytes";
}

TEST(FlowSetUp, ATableIsSetUpOnce) {
    flow_bed bed({64, 32});
    ASSERT_EQ(bed.insert(1, 5), SDK_RET_OK);
    sdk::table::sdk_table_factory_params_t params = {};
    EXPECT_EQ(bed.table().init_(&params), SDK_RET_INVALID_ARG);
    bed.expect_exactly_the_flows({2});
}

TEST(FlowSetUp, NothingIsDestroyedAndFreed) {
    flow_hash::destroy(nullptr);
    // As the factory leaves it when the engine cannot be made.
    flow_hash::destroy(::new (std::calloc(1, sizeof(flow_hash))) flow_hash);
    flow_hash table;
    table.ftl_free(flow, nullptr, false, 1);
    table.ftl_free(flow, nullptr, true, 1);
    ftl_access::set_write_hook(table, {});
    ftl_access::leave_out_overflow_rows(table, 1);
    base_table_entry_t *none = nullptr;
    sdk_ret_t result = SDK_RET_OK;
    EXPECT_EQ(ftl_access::insert_batch(table, {&none, 1}, {&result, 1}), 0u);
    EXPECT_EQ(result, SDK_RET_INVALID_ARG);
}

TEST(FlowSetUp, MemoryIsZero) {
    flow_bed bed({64, 32});
    for (const bool huge : {false, true}) {
        auto *memory = static_cast<uint8_t *>(bed.table().ftl_calloc(flow, 1 << 22, huge));
        ASSERT_NE(memory, nullptr);
        EXPECT_TRUE(std::all_of(memory, memory + (1 << 22), [](uint8_t b) { return b == 0; }));
        std::memset(memory, 1, 1 << 22);
        bed.table().ftl_free(flow, memory, huge, 1 << 22);
    }
}

}  // namespace
