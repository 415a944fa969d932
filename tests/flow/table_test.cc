// The flow table's object: how it is made and destroyed, the entries it hands out, and the size
// diagnostic that the library carries.

#include "ftl/flow_hash.h"
#include "tests/flow/entry_model.h"
#include "tests/support/heap_watch.h"
#include "tests/support/recording_host.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace halden::test {
namespace {

using sdk::table::flow_hash;
using sdk::table::ftl_base;
using sdk::table::sdk_table_factory_params_t;

char *some_text(void *, char *buffer, size_t) { return buffer; }
void some_health(uint32_t, const char *, uint32_t, uint32_t) {}

class FlowTable : public testing::Test {
  protected:
    FlowTable() { host_.reset(); }
    ~FlowTable() override { host_.reset(); }

    // The engine's only call so far, and the record it was given.
    call only_call(const char *name) {
        const std::vector<call> calls = host_.calls();
        EXPECT_EQ(calls.size(), 1u);
        if (calls.size() != 1) return {};
        EXPECT_EQ(calls[0].name, name);
        return calls[0];
    }
    void expect_engine_given(const sdk_table_factory_params_t &params) {
        const call made = only_call("ftl_base::init_");
        ASSERT_EQ(made.arguments.size(), 2u);
        EXPECT_EQ(made.arguments[1].pointer, &params);
        ASSERT_EQ(made.arguments[1].bytes.size(), sizeof params);
        EXPECT_EQ(std::memcmp(made.arguments[1].bytes.data(), &params, sizeof params), 0);
    }

    recording_host &host_ = recording_host::get();
};

TEST_F(FlowTable, FactoryTakesOneZeroedBlockAndNoOperatorNew) {
    sdk_table_factory_params_t params{};
    watch_heap();
    flow_hash *table = flow_hash::factory(&params);
    const heap_events heap = unwatch_heap();
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(heap.callocs, 1u);
    EXPECT_EQ(heap.last_size, sizeof(flow_hash));
    EXPECT_EQ(heap.last_made, table);
    EXPECT_EQ(heap.others, 0u);
    EXPECT_EQ(heap.frees, 0u);
    expect_engine_given(params);
    EXPECT_EQ(host_.calls()[0].arguments[0].pointer, static_cast<ftl_base *>(table));
    std::free(table);
}

TEST_F(FlowTable, FactoryIsNullWithoutMemoryAndAsksNoEngine) {
    sdk_table_factory_params_t params{};
    params.num_hints = 3;
    watch_heap(1);
    flow_hash *table = flow_hash::factory(&params);
    const heap_events heap = unwatch_heap();
    EXPECT_EQ(table, nullptr);
    EXPECT_EQ(heap.refused, 1u);
    EXPECT_EQ(heap.callocs, 1u);
    EXPECT_EQ(heap.others + heap.frees, 0u);
    EXPECT_TRUE(host_.calls().empty());
    EXPECT_EQ(params.table_id, 0u);
    EXPECT_EQ(params.num_hints, 3u);
}

TEST_F(FlowTable, FactoryFreesTheBlockAndIsNullWhenTheEngineRefuses) {
    for (const uint32_t refusal : {1u, 2u, 6u, 255u}) {
        SCOPED_TRACE(refusal);
        host_.reset();
        host_.on_engine = [refusal](const call &) { return static_cast<sdk_ret_t>(refusal); };
        sdk_table_factory_params_t params{};
        watch_heap();
        flow_hash *table = flow_hash::factory(&params);
        const heap_events heap = unwatch_heap();
        EXPECT_EQ(table, nullptr);
        EXPECT_EQ(heap.callocs, 1u);
        EXPECT_EQ(heap.others, 0u);
        EXPECT_EQ(heap.frees, 1u);
        EXPECT_EQ(heap.last_freed, heap.last_made);
        expect_engine_given(params);
        EXPECT_EQ(params.table_id, 2u);
    }
}

// With a first field of 5 it stays 5, with 0 it becomes 2; the second and third are 8 in both
// cases, whatever they were. What follows them is left alone.
TEST_F(FlowTable, InitFillsInTheFixedParameters) {
    struct {
        uint32_t given, expected;
    } constexpr ids[] = {{0, 2}, {1, 1}, {2, 2}, {5, 5}, {0xffffffff, 0xffffffff}};
    for (const auto &id : ids) {
        for (const uint32_t other : {0u, 1u, 8u, 9u, 0xffffffffu}) {
            SCOPED_TRACE(std::to_string(id.given) + " " + std::to_string(other));
            host_.reset();
            flow_hash table;
            sdk_table_factory_params_t params{};
            params.table_id = id.given;
            params.num_hints = other;
            params.max_chain = ~other;
            params.key_to_string = params.data_to_string = some_text;
            params.health = some_health;
            params.entry_trace = true;
            EXPECT_EQ(table.init_(&params), 0u);
            EXPECT_EQ(params.table_id, id.expected);
            EXPECT_EQ(params.num_hints, 8u);
            EXPECT_EQ(params.max_chain, 8u);
            EXPECT_EQ(params.key_to_string, some_text);
            EXPECT_EQ(params.data_to_string, some_text);
            EXPECT_EQ(params.health, some_health);
            EXPECT_TRUE(params.entry_trace);
            expect_engine_given(params);
        }
    }
}

TEST_F(FlowTable, InitReturnsWhatTheEngineReturns) {
    for (const uint32_t result : {0u, 1u, 2u, 7u, 255u}) {
        host_.on_engine = [result](const call &) { return static_cast<sdk_ret_t>(result); };
        flow_hash table;
        sdk_table_factory_params_t params{};
        EXPECT_EQ(table.init_(&params), result);
        EXPECT_EQ(params.num_hints, 8u);
    }
}

TEST_F(FlowTable, DestroyHandsTheObjectToTheEngineAndDoesNoMore) {
    sdk_table_factory_params_t params{};
    flow_hash *table = flow_hash::factory(&params);
    ASSERT_NE(table, nullptr);
    host_.forget_calls();
    watch_address(table);
    flow_hash::destroy(table);
    EXPECT_EQ(frees_of_address(), 0u);
    const call made = only_call("ftl_base::destroy");
    ASSERT_EQ(made.arguments.size(), 1u);
    EXPECT_EQ(made.arguments[0].pointer, table);
    std::free(table);

    host_.forget_calls();
    flow_hash::destroy(nullptr);
    EXPECT_EQ(only_call("ftl_base::destroy").arguments.at(0).pointer, nullptr);
}

// --- The static entries

TEST_F(FlowTable, TheEntriesAre16RowsOf8AllZeroAfterLoading) {
    static_assert(sizeof flow_hash::entry_ == 16u * 8 * 144);
    const flow_hash_entry_t zero;
    unsigned seen = 0;
    for (const auto &row : flow_hash::entry_) {
        for (const flow_hash_entry_t &entry : row) {
            EXPECT_EQ(std::memcmp(static_cast<const void *>(&entry),
                                  static_cast<const void *>(&zero), sizeof zero),
                      0);
            EXPECT_EQ(entry.valid, 0u);
            EXPECT_TRUE(bits_of(entry).none());
            ++seen;
        }
    }
    EXPECT_EQ(seen, 128u);
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "_ZN3sdk5table9flow_hash6entry_E"), &flow_hash::entry_);
}

TEST_F(FlowTable, GetEntryIsTheElementByRowAndColumn) {
    flow_hash table;
    ftl_base &engine = table;
    const auto *first = reinterpret_cast<const char *>(&flow_hash::entry_);
    for (uint16_t row = 0; row < 16; ++row)
        for (int column = 0; column < 8; ++column)
            EXPECT_EQ(reinterpret_cast<const char *>(engine.get_entry(row, column)),
                      first + (row * 8 + column) * 144);
}

TEST_F(FlowTable, GetEntryOfRow1Column0IsTheNinthElement) {
    flow_hash table;
    EXPECT_EQ(table.get_entry(1, 0), &flow_hash::entry_[0][0] + 8);
}

TEST_F(FlowTable, GetEntryChecksNeitherIndex) {
    flow_hash table;
    const auto at = [&](uint16_t row, int column) {
        return reinterpret_cast<const char *>(table.get_entry(row, column)) -
               reinterpret_cast<const char *>(&flow_hash::entry_);
    };
    EXPECT_EQ(at(0, 9), 9 * 144);
    EXPECT_EQ(at(1, -1), 7 * 144);
    EXPECT_EQ(at(15, 8), 128 * 144);
}

// --- The size diagnostic

constexpr char diagnostic[] = "struct flow_hash_entry_t, size (144 - 16 = 128), expected size 64\n";

// The library's main; this program has one of its own.
int (*library_main())() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void *>(&flow_hash::factory), &info) == 0) return nullptr;
    void *library = dlopen(info.dli_fname, RTLD_NOW | RTLD_NOLOAD);
    if (library == nullptr) return nullptr;
    void *found = dlsym(library, "main");
    Dl_info where{};
    if (found == nullptr || dladdr(found, &where) == 0) return nullptr;
    EXPECT_NE(std::string(where.dli_fname).find("libhalden"), std::string::npos);
    return reinterpret_cast<int (*)()>(found);
}

TEST_F(FlowTable, TheSizeDiagnosticPrintsTheMismatchAndReturnsMinusOne) {
    int (*const run)() = library_main();
    ASSERT_NE(run, nullptr);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int result = run();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), diagnostic);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(result, -1);
    EXPECT_TRUE(host_.calls().empty());
}

TEST_F(FlowTable, AProgramThatEndsWithTheSizeDiagnosticExitsWith255) {
    int (*const run)() = library_main();
    ASSERT_NE(run, nullptr);
    EXPECT_EXIT(std::exit(run()), testing::ExitedWithCode(255), "");
}

}  // namespace
}  // namespace halden::test
