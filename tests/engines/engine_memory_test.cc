// The table engines when memory runs out: no engine, or a refused call, and nothing kept.

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "host/adapter.h"
#include "host/engines/access.h"
#include "host/trace/trace.h"

namespace {

// Of the calling thread: blocks that are not deleted yet, and how many calls are left until one is
// refused (0: none will be).
thread_local long live = 0;
thread_local unsigned until_refused = 0;

void *allocated(size_t size) noexcept {
    if (until_refused > 0 && --until_refused == 0) return nullptr;
    void *block = std::malloc(size);
    if (block != nullptr) ++live;
    return block;
}

void released(void *block) noexcept {
    if (block != nullptr) --live;
    std::free(block);
}

}  // namespace

// The program's operators stand before those of the libraries.
void *operator new(size_t size) {
    if (void *block = allocated(size)) return block;
    throw std::bad_alloc();
}
void *operator new(size_t size, const std::nothrow_t &) noexcept { return allocated(size); }
void operator delete(void *block) noexcept { released(block); }
void operator delete(void *block, size_t) noexcept { released(block); }
void operator delete(void *block, const std::nothrow_t &) noexcept { released(block); }

namespace halden::test {
namespace {

using sdk::table::directmap;
using sdk::table::slhash;
using sdk::table::sltcam;

constexpr uint32_t vlan_mapping = 3;
constexpr uint32_t checksum = 15;
constexpr uint32_t lif_mapping = 16;

class EngineMemory : public testing::Test {
  protected:
    EngineMemory() { host::trace::set_level("off"); }

    template <class Engine>
    static Engine *keyed(uint32_t table) {
        sdk::table::sdk_table_factory_params_t params = {};
        params.table_id = table;
        return Engine::factory(&params);
    }

    // Refuses each allocation of the factory in turn, then all of them by an injected fault.
    template <class Engine, class Make>
    void expect_an_engine_or_nothing(uint32_t table, Make make) {
        Engine::destroy(make());  // what the adapter makes for the first engine stays
        const long before = live;
        Engine *made = nullptr;
        unsigned refused = 0;
        for (unsigned nth = 1; made == nullptr && nth < 100; ++nth) {
            until_refused = nth;
            made = make();
            until_refused = 0;
            if (made != nullptr) continue;
            ++refused;
            EXPECT_EQ(live, before) << "allocation " << nth;
        }
        ASSERT_NE(made, nullptr);
        EXPECT_GE(refused, 2u) << "the engine's own, and at least one of its parts";
        EXPECT_GT(live, before);
        Engine::destroy(made);
        EXPECT_EQ(live, before);

        adapter_->faults().inject({.call = host::asic_call::allocate, .table = table});
        EXPECT_EQ(make(), nullptr);
        made = make();
        EXPECT_NE(made, nullptr) << "the fault was met once";
        Engine::destroy(made);
    }

    std::unique_ptr<host::adapter> adapter_ =
        host::adapter::anonymous({.flow_rows = 16, .flow_ohash_rows = 16});
    host::scoped_current current_{*adapter_};
};

TEST_F(EngineMemory, AnIndexEngineIsMadeWholeOrNotAtAll) {
    expect_an_engine_or_nothing<directmap>(lif_mapping, [] {
        return directmap::factory("a name that no string keeps within itself", lif_mapping, 1024, 8,
                                  true, true, nullptr);
    });
}

TEST_F(EngineMemory, AHashEngineIsMadeWholeOrNotAtAll) {
    expect_an_engine_or_nothing<slhash>(vlan_mapping, [] { return keyed<slhash>(vlan_mapping); });
}

TEST_F(EngineMemory, ATernaryEngineIsMadeWholeOrNotAtAll) {
    expect_an_engine_or_nothing<sltcam>(checksum, [] { return keyed<sltcam>(checksum); });
}

// One call of an engine for a key, with all data zero; its first allocation is refused if asked.
template <class Engine>
sdk_ret_t call(Engine &engine, sdk_ret_t (Engine::*function)(sdk::table::sdk_table_api_params_t *),
               uint64_t key, bool refuse = false) {
    uint8_t data[128] = {};
    sdk::table::sdk_table_api_params_t params = {};
    params.key = &key;
    params.data = data;
    until_refused = refuse ? 1 : 0;
    const sdk_ret_t result = (engine.*function)(&params);
    until_refused = 0;
    return result;
}

TEST_F(EngineMemory, ARefusedTernaryInsertChangesNothing) {
    sltcam *engine = keyed<sltcam>(checksum);
    ASSERT_NE(engine, nullptr);
    const long before = live;
    EXPECT_EQ(call(*engine, &sltcam::insert, 1, true), SDK_RET_OOM);
    EXPECT_EQ(live, before);
    EXPECT_EQ(call(*engine, &sltcam::get, 1), SDK_RET_ENTRY_NOT_FOUND);
    EXPECT_EQ(adapter_->next_used(checksum, 0), adapter_->depth(checksum)) << "no row is in use";
    EXPECT_EQ(call(*engine, &sltcam::insert, 1), SDK_RET_OK);
    EXPECT_EQ(call(*engine, &sltcam::get, 1), SDK_RET_OK);
    sltcam::destroy(engine);
}

// An entry in its own row needs no memory; one that overflows does.
TEST_F(EngineMemory, ARefusedInsertIntoTheOverflowChangesNothing) {
    slhash *engine = keyed<slhash>(vlan_mapping);
    ASSERT_NE(engine, nullptr);
    // The adapter makes the table's rows at their first use.
    EXPECT_EQ(call(*engine, &slhash::get, 0), SDK_RET_ENTRY_NOT_FOUND);
    sdk_ret_t result = SDK_RET_OK;
    uint64_t key = 0;
    for (uint64_t n = 0; n < 1 << 16 && result == SDK_RET_OK; ++n) {
        key = (n & 0xfff) | n >> 12 << 16;  // vlan_id, l2seg
        result = call(*engine, &slhash::insert, key, true);
    }
    ASSERT_EQ(result, SDK_RET_OOM);
    EXPECT_EQ(sdk::table::slhash_access::statistics(*engine).overflow_used, 0u);
    EXPECT_EQ(call(*engine, &slhash::get, key), SDK_RET_ENTRY_NOT_FOUND);
    EXPECT_EQ(call(*engine, &slhash::insert, key), SDK_RET_OK);
    EXPECT_EQ(sdk::table::slhash_access::statistics(*engine).overflow_used, 1u);
    EXPECT_EQ(call(*engine, &slhash::get, key), SDK_RET_OK);
    slhash::destroy(engine);
}

}  // namespace
}  // namespace halden::test
