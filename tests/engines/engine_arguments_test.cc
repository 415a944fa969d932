// The engines called directly, as the table API never calls them: masks, missing arguments, what
// their counters say.

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "host/adapter.h"
#include "host/engines/access.h"
#include "host/trace/trace.h"
#include "p4pd_records.h"

namespace halden::test {
namespace {

using sdk::table::directmap;
using sdk::table::sdk_table_api_params_t;
using sdk::table::sdk_table_factory_params_t;
using sdk::table::slhash;
using sdk::table::sltcam;

constexpr uint32_t vlan_mapping = 3, vlan_mapping_otcam = 7;
constexpr uint32_t tunnel_terminate_v4 = 8;
constexpr uint32_t lif_mapping = 16;

class EngineArguments : public testing::Test {
  protected:
    EngineArguments() { host::trace::set_level("off"); }

    // Every refusal of an engine is counted, and nothing else.
    static void expect_counts(const host::engine_statistics &seen, uint64_t inserts,
                              uint64_t updates, uint64_t removes, uint64_t lookups,
                              uint64_t failures) {
        EXPECT_EQ(seen.inserts, inserts);
        EXPECT_EQ(seen.updates, updates);
        EXPECT_EQ(seen.removes, removes);
        EXPECT_EQ(seen.lookups, lookups);
        EXPECT_EQ(seen.failures, failures);
    }

    std::unique_ptr<host::adapter> adapter_ =
        host::adapter::anonymous({.flow_rows = 16, .flow_ohash_rows = 16});
    host::scoped_current current_{*adapter_};
};

// --- Index tables
// ----------------------------------------------------------------------------------

struct health_call {
    uint32_t table;
    std::string name;
    uint32_t used, depth;

    bool operator==(const health_call &) const = default;
};
std::vector<health_call> health_calls;
void note_health(uint32_t table, const char *name, uint32_t used, uint32_t depth) {
    health_calls.push_back({table, name, used, depth});
}
void PrintTo(const health_call &call, std::ostream *out) {
    *out << call.table << " " << call.name << " " << call.used << "/" << call.depth;
}

class IndexArguments : public EngineArguments {
  protected:
    ~IndexArguments() override { directmap::destroy(engine_); }
    static directmap *made(bool counts = true) {
        return directmap::factory("lif_mapping", lif_mapping, 1024,
                                  sizeof(lif_mapping_actiondata_t), true, counts, nullptr);
    }
    static lif_mapping_actiondata_t data(uint16_t src_lport, uint16_t l2seg, uint8_t uplink) {
        lif_mapping_actiondata_t out = {};
        out.action_u.lif_mapping.src_lport = src_lport;
        out.action_u.lif_mapping.l2seg = l2seg;
        out.action_u.lif_mapping.uplink = uplink;
        return out;
    }
    // Selects src_lport and nothing else.
    static lif_mapping_actiondata_t port_mask() { return data(0x7ff, 0, 0); }
    void expect_row(uint32_t row, uint16_t src_lport, uint16_t l2seg, uint8_t uplink) {
        lif_mapping_actiondata_t found;
        std::memset(&found, 0x5a, sizeof found);
        ASSERT_EQ(engine_->retrieve(row, &found), SDK_RET_OK);
        const lif_mapping_actiondata_t wanted = data(src_lport, l2seg, uplink);
        EXPECT_EQ(std::memcmp(&found, &wanted, sizeof found), 0);
    }

    directmap *engine_ = made();
};

TEST_F(IndexArguments, AMaskedInsertStoresTheBitsOfTheMaskAlone) {
    lif_mapping_actiondata_t all = data(0x123, 0x456, 1), mask = port_mask();
    ASSERT_EQ(engine_->insert_withid(&all, 9, &mask), SDK_RET_OK);
    expect_row(9, 0x123, 0, 0);
    EXPECT_EQ(engine_->insert_withid(&all, 9, &mask), SDK_RET_ENTRY_EXISTS);
}

TEST_F(IndexArguments, AMaskedUpdateLeavesAllOtherBits) {
    lif_mapping_actiondata_t first = data(0x123, 0x456, 1), second = data(0x654, 0xabc, 0);
    lif_mapping_actiondata_t mask = port_mask(), nibble = data(0x0f0, 0, 0);
    ASSERT_EQ(engine_->insert_withid(&first, 9, nullptr), SDK_RET_OK);
    ASSERT_EQ(engine_->update(9, &second, &mask), SDK_RET_OK);
    expect_row(9, 0x654, 0x456, 1);
    ASSERT_EQ(engine_->update(9, &first, &nibble), SDK_RET_OK);
    expect_row(9, 0x624, 0x456, 1);
    EXPECT_EQ(engine_->update(8, &first, &mask), SDK_RET_ENTRY_NOT_FOUND);
}

TEST_F(IndexArguments, AMaskedRemoveEmptiesTheBitsOfTheMaskAndKeepsTheEntry) {
    lif_mapping_actiondata_t first = data(0x123, 0x456, 1), mask = port_mask();
    ASSERT_EQ(engine_->insert_withid(&first, 9, nullptr), SDK_RET_OK);
    ASSERT_EQ(engine_->remove(9, &mask), SDK_RET_OK);
    expect_row(9, 0, 0x456, 1);
    ASSERT_EQ(engine_->remove(9, nullptr), SDK_RET_OK);
    EXPECT_EQ(engine_->retrieve(9, &first), SDK_RET_ENTRY_NOT_FOUND);
    EXPECT_EQ(engine_->remove(9, &mask), SDK_RET_ENTRY_NOT_FOUND);
    EXPECT_EQ(adapter_->next_used(lif_mapping, 0), 1024u);
}

// Output_mapping has two actions: the mask's own action byte does not count, the data's does.
TEST_F(IndexArguments, TheActionIsTheDatasWhateverTheMaskSays) {
    constexpr uint32_t output_mapping = 37;
    directmap *engine =
        directmap::factory("output_mapping", output_mapping, 16,
                           sizeof(output_mapping_actiondata_t), false, true, nullptr);
    ASSERT_NE(engine, nullptr);
    output_mapping_actiondata_t drop = {}, go = {}, mask = {}, found = {};
    go.action_id = 1;
    ASSERT_EQ(engine->insert_withid(&go, 3, &mask), SDK_RET_OK);
    ASSERT_EQ(engine->retrieve(3, &found), SDK_RET_OK);
    EXPECT_EQ(found.action_id, 1);
    mask.action_id = 0xff;
    ASSERT_EQ(engine->remove(3, &mask), SDK_RET_OK);
    ASSERT_EQ(engine->retrieve(3, &found), SDK_RET_OK);
    EXPECT_EQ(found.action_id, 1) << "an entry whose bits are emptied keeps its action";
    ASSERT_EQ(engine->update(3, &drop, &mask), SDK_RET_OK);
    ASSERT_EQ(engine->retrieve(3, &found), SDK_RET_OK);
    EXPECT_EQ(found.action_id, 0);
    directmap::destroy(engine);
}

TEST_F(IndexArguments, MissingDataAndRowsThatAreNoneAreRefused) {
    lif_mapping_actiondata_t record = data(1, 2, 0);
    EXPECT_EQ(engine_->insert_withid(nullptr, 0, nullptr), SDK_RET_INVALID_ARG);
    EXPECT_EQ(engine_->insert_withid(&record, 1024, nullptr), SDK_RET_INVALID_ARG);
    EXPECT_EQ(engine_->update(1024, &record, nullptr), SDK_RET_INVALID_ARG);
    ASSERT_EQ(engine_->insert_withid(&record, 1023, nullptr), SDK_RET_OK);
    EXPECT_EQ(engine_->update(1023, nullptr, nullptr), SDK_RET_INVALID_ARG);
    EXPECT_EQ(engine_->retrieve(1023, nullptr), SDK_RET_INVALID_ARG);
    EXPECT_EQ(engine_->retrieve(1024, &record), SDK_RET_INVALID_ARG);
    EXPECT_EQ(engine_->remove(1024, nullptr), SDK_RET_INVALID_ARG);
    record.action_id = 1;  // the table has one action
    EXPECT_EQ(engine_->update(1023, &record, nullptr), SDK_RET_INVALID_ARG);
    expect_row(1023, 1, 2, 0);
}

TEST_F(IndexArguments, AnEngineIsMadeOfAWholeDescription) {
    const auto make = [](const char *name, uint32_t depth, uint16_t size) {
        directmap *engine = directmap::factory(name, lif_mapping, depth, size, true, true, nullptr);
        const bool was_made = engine != nullptr;
        directmap::destroy(engine);
        return was_made;
    };
    EXPECT_TRUE(make("a", 1, 1));
    EXPECT_TRUE(make("a", 1, 128));
    EXPECT_FALSE(make(nullptr, 1, 12));
    EXPECT_FALSE(make("a", 0, 12));
    EXPECT_FALSE(make("a", 1, 0));
    EXPECT_FALSE(make("a", 1, 129)) << "no record is so long";
    directmap::destroy(nullptr);
}

TEST_F(IndexArguments, CallsAreCountedByWhatBecameOfThem) {
    lif_mapping_actiondata_t record = data(1, 2, 0);
    EXPECT_EQ(engine_->retrieve(5, &record), SDK_RET_ENTRY_NOT_FOUND);
    expect_counts(sdk::table::directmap_access::statistics(*engine_), 0, 0, 0, 0, 0);
    for (const uint32_t row : {5u, 6u, 7u}) engine_->insert_withid(&record, row, nullptr);
    engine_->insert_withid(&record, 5, nullptr);  // there is one
    engine_->update(5, &record, nullptr);
    engine_->update(6, &record, nullptr);
    engine_->retrieve(6, &record);
    engine_->remove(7, nullptr);
    engine_->remove(7, nullptr);  // absent: neither a remove nor a failure
    engine_->retrieve(1024, &record);
    const auto figures = sdk::table::directmap_access::statistics(*engine_);
    expect_counts(figures, 3, 2, 1, 1, 2);
    EXPECT_EQ(figures.rows, 1024u);
    EXPECT_EQ(figures.used, 2u);
    EXPECT_EQ(figures.overflow_rows, 0u);
    EXPECT_EQ(figures.collisions, 0u);
    EXPECT_EQ(figures.moves, 0u);

    directmap *silent = made(false);
    EXPECT_EQ(silent->remove(5, nullptr), SDK_RET_OK);
    EXPECT_EQ(silent->remove(1024, nullptr), SDK_RET_INVALID_ARG);
    expect_counts(sdk::table::directmap_access::statistics(*silent), 0, 0, 0, 0, 0);
    EXPECT_EQ(sdk::table::directmap_access::statistics(*silent).used, 1u);
    directmap::destroy(silent);
}

TEST_F(IndexArguments, HealthIsToldWhenAnEntryCameOrWent) {
    health_calls.clear();
    directmap *engine = directmap::factory(
        "ports", lif_mapping, 1024, sizeof(lif_mapping_actiondata_t), true, true, note_health);
    lif_mapping_actiondata_t record = data(1, 2, 0);
    engine->insert_withid(&record, 5, nullptr);
    engine->insert_withid(&record, 5, nullptr);  // refused
    engine->update(5, &record, nullptr);
    engine->insert_withid(&record, 6, nullptr);
    engine->remove(5, nullptr);
    engine->remove(5, nullptr);  // absent
    EXPECT_EQ(health_calls, (std::vector<health_call>{{lif_mapping, "ports", 1, 1024},
                                                      {lif_mapping, "ports", 2, 1024},
                                                      {lif_mapping, "ports", 1, 1024}}));
    directmap::destroy(engine);
}

// --- Tables with keys
// ------------------------------------------------------------------------------

template <class Engine>
class KeyedArguments : public EngineArguments {
  public:
    using call = sdk_ret_t (Engine::*)(sdk_table_api_params_t *);

  protected:
    explicit KeyedArguments(uint32_t table) {
        sdk_table_factory_params_t params = {};
        params.table_id = table;
        params.entry_trace = true;
        engine_ = Engine::factory(&params);
    }
    ~KeyedArguments() override { Engine::destroy(engine_); }

    sdk_ret_t run(call function, void *key, void *data = nullptr, void *mask = nullptr) {
        sdk_table_api_params_t params = {};
        params.key = key;
        params.mask = mask;
        params.data = data;
        return (engine_->*function)(&params);
    }

    // Neither of the calls has what it needs.
    void expect_refusals(void *key, uint8_t *data) {
        EXPECT_EQ((engine_->*&Engine::insert)(nullptr), SDK_RET_INVALID_ARG);
        EXPECT_EQ((engine_->*&Engine::update)(nullptr), SDK_RET_INVALID_ARG);
        EXPECT_EQ((engine_->*&Engine::remove)(nullptr), SDK_RET_INVALID_ARG);
        EXPECT_EQ((engine_->*&Engine::get)(nullptr), SDK_RET_INVALID_ARG);
        EXPECT_EQ(run(&Engine::insert, nullptr, data), SDK_RET_INVALID_ARG);
        EXPECT_EQ(run(&Engine::update, nullptr, data), SDK_RET_INVALID_ARG);
        EXPECT_EQ(run(&Engine::remove, nullptr, data), SDK_RET_INVALID_ARG);
        EXPECT_EQ(run(&Engine::get, nullptr, data), SDK_RET_INVALID_ARG);
        EXPECT_EQ(run(&Engine::insert, key), SDK_RET_INVALID_ARG);
        EXPECT_EQ(run(&Engine::update, key), SDK_RET_INVALID_ARG);
        const uint8_t action = data[0];
        data[0] = 200;  // no table has so many actions
        EXPECT_EQ(run(&Engine::insert, key, data), SDK_RET_INVALID_ARG);
        EXPECT_EQ(run(&Engine::update, key, data), SDK_RET_INVALID_ARG);
        data[0] = action;
    }

    Engine *engine_ = nullptr;
};

class HashArguments : public KeyedArguments<slhash> {
  protected:
    HashArguments() : KeyedArguments(vlan_mapping) {}
    static vlan_mapping_actiondata_t data(uint16_t rmac_vrf) {
        vlan_mapping_actiondata_t out = {};
        out.action_u.vlan_mapping.rmac_vrf = rmac_vrf;
        return out;
    }
    host::engine_statistics figures() { return sdk::table::slhash_access::statistics(*engine_); }
    // Inserts keys until one stands in the overflow, and leaves the first of its row and that one.
    void collide(vlan_mapping_swkey_t &last) {
        const uint32_t none = adapter_->depth(vlan_mapping_otcam);
        for (uint32_t n = 0; adapter_->next_used(vlan_mapping_otcam, 0) == none; ++n) {
            last.vlan_id = static_cast<uint16_t>(n & 0xfff);
            last.l2seg = static_cast<uint16_t>(n >> 12);
            vlan_mapping_actiondata_t record = data(static_cast<uint16_t>(n & 0xfff));
            ASSERT_EQ(run(&slhash::insert, &last, &record), SDK_RET_OK);
        }
    }
};

TEST_F(HashArguments, WhatIsMissingIsRefused) {
    vlan_mapping_swkey_t key = {100, 7};
    vlan_mapping_actiondata_t record = data(3);
    expect_refusals(&key, reinterpret_cast<uint8_t *>(&record));
    vlan_mapping_swkey_t mask = {0xfff, 0xfff};
    EXPECT_EQ(run(&slhash::insert, &key, &record, &mask), SDK_RET_INVALID_ARG);
    EXPECT_EQ(run(&slhash::update, &key, &record, &mask), SDK_RET_INVALID_ARG);
    EXPECT_EQ(run(&slhash::remove, &key, &record, &mask), SDK_RET_INVALID_ARG);
    EXPECT_EQ(run(&slhash::get, &key, &record, &mask), SDK_RET_INVALID_ARG);
    expect_counts(figures(), 0, 0, 0, 0, 16);
    EXPECT_EQ(adapter_->next_used(vlan_mapping, 0), adapter_->depth(vlan_mapping));
}

TEST_F(HashArguments, RemoveHandsTheDataBack) {
    vlan_mapping_swkey_t key = {100, 7};
    vlan_mapping_actiondata_t record = data(0x123), found;
    ASSERT_EQ(run(&slhash::insert, &key, &record), SDK_RET_OK);
    std::memset(&found, 0x5a, sizeof found);
    ASSERT_EQ(run(&slhash::remove, &key, &found), SDK_RET_OK);
    EXPECT_EQ(std::memcmp(&found, &record, sizeof found), 0);
    std::memset(&found, 0x5a, sizeof found);
    EXPECT_EQ(run(&slhash::remove, &key, &found), SDK_RET_ENTRY_NOT_FOUND);
    EXPECT_EQ(found.action_id, 0x5a) << "a miss leaves the caller's record alone";

    ASSERT_EQ(run(&slhash::insert, &key, &record), SDK_RET_OK);
    EXPECT_EQ(run(&slhash::get, &key), SDK_RET_OK) << "data need not be wanted";
    EXPECT_EQ(run(&slhash::remove, &key), SDK_RET_OK);
}

TEST_F(HashArguments, RemoveFromTheOverflowHandsTheDataBack) {
    vlan_mapping_swkey_t last = {};
    collide(last);
    vlan_mapping_actiondata_t found = data(0);
    const vlan_mapping_actiondata_t wanted = data(last.vlan_id);
    ASSERT_EQ(run(&slhash::remove, &last, &found), SDK_RET_OK);
    EXPECT_EQ(std::memcmp(&found, &wanted, sizeof found), 0);
    EXPECT_EQ(adapter_->next_used(vlan_mapping_otcam, 0), adapter_->depth(vlan_mapping_otcam));
    EXPECT_EQ(run(&slhash::get, &last), SDK_RET_ENTRY_NOT_FOUND);
}

TEST_F(HashArguments, CallsAreCountedByWhatBecameOfThem) {
    vlan_mapping_swkey_t key = {};
    collide(key);
    const auto filled = figures();
    EXPECT_EQ(filled.collisions, 1u);
    EXPECT_EQ(filled.overflow_used, 1u);
    EXPECT_EQ(filled.overflow_rows, 512u);
    EXPECT_EQ(filled.rows, 4096u);
    EXPECT_EQ(filled.used + 1, filled.inserts);
    EXPECT_EQ(filled.moves, 0u);
    vlan_mapping_actiondata_t record = data(1);
    run(&slhash::insert, &key, &record);  // there is one: a failure, and no collision
    run(&slhash::update, &key, &record);
    run(&slhash::get, &key);
    run(&slhash::get, &key);
    run(&slhash::remove, &key);
    run(&slhash::remove, &key);  // absent
    run(&slhash::get, &key);     // absent
    expect_counts(figures(), filled.inserts, 1, 1, 2, 1);
    EXPECT_EQ(figures().collisions, 1u);
    EXPECT_EQ(figures().overflow_used, 0u);
}

TEST_F(HashArguments, OnlyAHashTableHasSuchAnEngine) {
    EXPECT_EQ(slhash::factory(nullptr), nullptr);
    for (const uint32_t table : {0u, vlan_mapping_otcam, tunnel_terminate_v4, lif_mapping, 49u}) {
        sdk_table_factory_params_t params = {};
        params.table_id = table;
        EXPECT_EQ(slhash::factory(&params), nullptr) << table;
    }
    slhash::destroy(nullptr);
}

class TernaryArguments : public KeyedArguments<sltcam> {
  protected:
    TernaryArguments() : KeyedArguments(tunnel_terminate_v4) {}
    host::engine_statistics figures() { return sdk::table::sltcam_access::statistics(*engine_); }
    static tunnel_terminate_v4_swkey_t key(uint8_t value) {
        tunnel_terminate_v4_swkey_t out;
        std::memset(&out, 0, sizeof out);
        reinterpret_cast<uint8_t *>(&out)[0] = value;
        return out;
    }
    static tunnel_terminate_v4_actiondata_t data(uint8_t value) {
        tunnel_terminate_v4_actiondata_t out;
        std::memset(&out, 0, sizeof out);
        reinterpret_cast<uint8_t *>(&out)[1] = value;
        return out;
    }
};

TEST_F(TernaryArguments, WhatIsMissingIsRefused) {
    auto wanted = key(1);
    auto record = data(1);
    expect_refusals(&wanted, reinterpret_cast<uint8_t *>(&record));
    expect_counts(figures(), 0, 0, 0, 0, 12);
    EXPECT_EQ(adapter_->next_used(tunnel_terminate_v4, 0), adapter_->depth(tunnel_terminate_v4));
}

TEST_F(TernaryArguments, RemoveHandsTheDataBack) {
    auto wanted = key(1);
    auto record = data(1), found = data(0);
    ASSERT_EQ(run(&sltcam::insert, &wanted, &record), SDK_RET_OK);
    ASSERT_EQ(run(&sltcam::get, &wanted), SDK_RET_OK) << "data need not be wanted";
    ASSERT_EQ(run(&sltcam::remove, &wanted, &found), SDK_RET_OK);
    EXPECT_EQ(std::memcmp(&found, &record, sizeof found), 0);
    found = data(9);
    EXPECT_EQ(run(&sltcam::remove, &wanted, &found), SDK_RET_ENTRY_NOT_FOUND);
    EXPECT_EQ(reinterpret_cast<uint8_t *>(&found)[1], 9) << "a miss leaves the record alone";
    ASSERT_EQ(run(&sltcam::insert, &wanted, &record), SDK_RET_OK);
    EXPECT_EQ(run(&sltcam::remove, &wanted), SDK_RET_OK);
}

TEST_F(TernaryArguments, CallsAreCountedByWhatBecameOfThem) {
    auto record = data(1);
    auto broad = key(0), one = key(1), none_of_it = key(0);
    ASSERT_EQ(run(&sltcam::insert, &broad, &record, &none_of_it), SDK_RET_OK);
    ASSERT_EQ(run(&sltcam::insert, &one, &record), SDK_RET_OK);
    EXPECT_EQ(figures().moves, 1u) << "the entry for all made room for the exact one";
    EXPECT_EQ(figures().used, 2u);
    EXPECT_EQ(figures().rows, 512u);
    EXPECT_EQ(run(&sltcam::insert, &one, &record), SDK_RET_ENTRY_EXISTS);
    EXPECT_EQ(run(&sltcam::update, &one, &record), SDK_RET_OK);
    EXPECT_EQ(run(&sltcam::get, &one, &record), SDK_RET_OK);
    EXPECT_EQ(run(&sltcam::remove, &one), SDK_RET_OK);
    EXPECT_EQ(run(&sltcam::remove, &one), SDK_RET_ENTRY_NOT_FOUND);
    EXPECT_EQ(run(&sltcam::get, &one), SDK_RET_ENTRY_NOT_FOUND);
    EXPECT_EQ(run(&sltcam::update, &one, &record), SDK_RET_ENTRY_NOT_FOUND);
    expect_counts(figures(), 2, 1, 1, 1, 1);
    EXPECT_EQ(figures().collisions, 0u);
    EXPECT_EQ(figures().used, 1u);
}

TEST_F(TernaryArguments, OnlyATableWithATcamHasSuchAnEngine) {
    EXPECT_EQ(sltcam::factory(nullptr), nullptr);
    for (const uint32_t table : {0u, vlan_mapping, lif_mapping, 49u}) {
        sdk_table_factory_params_t params = {};
        params.table_id = table;
        EXPECT_EQ(sltcam::factory(&params), nullptr) << table;
    }
    sltcam::destroy(nullptr);
}

}  // namespace
}  // namespace halden::test
