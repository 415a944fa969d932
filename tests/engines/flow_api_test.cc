// The flow table from the caller's records to memory and back: the table API over the real engine.

#include "host/state/table_state.h"
#include "host/trace/trace.h"
#include "host/view/lookup.h"
#include "tests/reference/model.h"

#include "p4pd.h"
#include "tev_tbl.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

namespace {

using namespace halden;
using reference::bytes;

constexpr uint32_t flow = 2;
constexpr size_t row_bytes = 128;

class FlowApi : public testing::Test {
  protected:
    FlowApi() { host::trace::set_level("off"); }  // refusals are part of these tests

    tev_tbl_flow_spec_t random_spec() {
        tev_tbl_flow_spec_t spec;
        uint8_t record[sizeof spec];
        for (uint8_t &byte : record) byte = static_cast<uint8_t>(random_());
        std::memcpy(&spec, record, sizeof spec);
        return spec;
    }
    static bytes key_record(const tev_tbl_flow_spec_t &spec) {
        bytes out(sizeof spec.key);
        std::memcpy(out.data(), &spec.key, out.size());
        return out;
    }
    host::view::answer look_up(const tev_tbl_flow_spec_t &spec) {
        const bytes key = key_record(spec);
        const bytes packet =
            reference::build_key(flow, key, bytes(key.size(), 0xff), row_bytes).key;
        return host::view::lookup(*adapter_, flow, packet.data());
    }

    // So many rows that no two of a few hundred flows share one.
    std::unique_ptr<host::adapter> adapter_ =
        host::adapter::anonymous({.flow_rows = 4194304, .flow_ohash_rows = 1024});
    host::table_state state_{*adapter_};
    std::mt19937_64 random_{5};
};

// Two ways into memory: through the table API and the engine, and through the library's packer.
// Hints that a caller gives are not stored.
TEST_F(FlowApi, TheRowEqualsWhatTheLibraryPacksForTheSameRecords) {
    auto other = host::adapter::anonymous({.flow_rows = 64, .flow_ohash_rows = 32});
    for (unsigned round = 0; round < 300; ++round) {
        SCOPED_TRACE(round);
        const tev_tbl_flow_spec_t spec = random_spec();
        ASSERT_EQ(tev_tbl_flow_create(&spec), 0u);

        flow_swkey_t key = spec.key;
        flow_actiondata_t data = {};
        data.action_u.flow_hash.flow_idx = spec.action_u.flow_hash.flow_idx;
        data.action_u.flow_hash.more_hashes = 1;
        data.action_u.flow_hash.entry_valid = 1;
        {
            host::scoped_current use(*other);
            ASSERT_EQ(p4pd_entry_install(flow, 3, &key, nullptr, &data), 0);
        }
        const uint8_t *packed = other->hbm_rows(flow) + 3 * row_bytes;

        const host::view::answer found = look_up(spec);
        ASSERT_TRUE(found.hit);
        EXPECT_EQ(found.table, flow);
        EXPECT_EQ(found.bits, 1024u);
        EXPECT_EQ(found.image, bytes(packed, packed + row_bytes));
        const uint8_t *stored = adapter_->hbm_rows(flow) + size_t{found.row} * row_bytes;
        EXPECT_EQ(bytes(stored, stored + row_bytes), bytes(packed, packed + row_bytes));
    }
}

}  // namespace
