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

// more_hashes 0 and more_hints 0 in the spec: a later read gives more_hashes 1.
TEST_F(FlowApi, AFlowIsReadBackWithTheMoreFlag) {
    for (unsigned round = 0; round < 100; ++round) {
        SCOPED_TRACE(round);
        tev_tbl_flow_spec_t spec = random_spec();
        spec.action_u.flow_hash.more_hashes = round % 2;
        spec.action_u.flow_hash.more_hints = 0;
        ASSERT_EQ(tev_tbl_flow_create(&spec), 0u);
        const tev_tbl_flow_info_t before = random_spec();
        tev_tbl_flow_info_t info = before;
        ASSERT_EQ(tev_tbl_flow_read(&spec.key, &info), 0u);
        EXPECT_EQ(info.action_id, 0u);
        EXPECT_EQ(+info.action_u.flow_hash.flow_idx, spec.action_u.flow_hash.flow_idx & 0x3fffffu);
        EXPECT_EQ(info.action_u.flow_hash.more_hashes, 1u);
        EXPECT_EQ(+info.action_u.flow_hash.more_hints, 0u);
        EXPECT_EQ(+info.action_u.flow_hash.hash1, 0u);
        EXPECT_EQ(+info.action_u.flow_hash.hint1, 0u);
        EXPECT_EQ(+info.action_u.flow_hash.hash8, 0u);
        EXPECT_EQ(+info.action_u.flow_hash.hint8, 0u);
        EXPECT_EQ(std::memcmp(&info.key, &before.key, sizeof info.key), 0);
    }
}

// Values wider than their field are cut: keys that differ in cut bits only are the same flow.
TEST_F(FlowApi, WideValuesAreCut) {
    tev_tbl_flow_spec_t spec = {};
    spec.key.metadata_flow_key_vni = 0xff000001;
    spec.key.metadata_flow_key_port_id = 0xf802;
    spec.key.metadata_flow_key_rsvd = 0xe3;
    spec.action_u.flow_hash.flow_idx = 0xffc00004;
    ASSERT_EQ(tev_tbl_flow_create(&spec), 0u);
    tev_tbl_flow_key_t key = {};
    key.metadata_flow_key_vni = 1;
    key.metadata_flow_key_port_id = 2;
    key.metadata_flow_key_rsvd = 3;
    tev_tbl_flow_info_t info = {};
    ASSERT_EQ(tev_tbl_flow_read(&key, &info), 0u);
    EXPECT_EQ(+info.action_u.flow_hash.flow_idx, 4u);
    EXPECT_EQ(tev_tbl_flow_create(&spec), 9u);
    key.metadata_flow_key_rsvd = 2;
    EXPECT_EQ(tev_tbl_flow_find(&key), 4u);
}

TEST_F(FlowApi, AnswersForMissingAndPresentFlows) {
    tev_tbl_flow_spec_t spec = random_spec();
    spec.action_u.flow_hash.flow_idx = 0x123456;
    const tev_tbl_flow_info_t before = random_spec();
    const auto expect_missing = [&] {
        tev_tbl_flow_info_t info = before;
        EXPECT_EQ(tev_tbl_flow_read(&spec.key, &info), 15u);
        EXPECT_EQ(std::memcmp(&info, &before, sizeof info), 0);
        EXPECT_EQ(tev_tbl_flow_find(&spec.key), 4u);
        EXPECT_EQ(tev_tbl_flow_update(&spec), 9u);
        EXPECT_EQ(tev_tbl_flow_delete(&spec.key), 9u);
        EXPECT_EQ(adapter_->next_used(flow, 0), 4194304u);
        EXPECT_FALSE(look_up(spec).hit);
    };
    const auto expect_flow_idx = [&](uint32_t flow_idx) {
        tev_tbl_flow_info_t info = {};
        EXPECT_EQ(tev_tbl_flow_find(&spec.key), 0u);
        EXPECT_EQ(tev_tbl_flow_read(&spec.key, &info), 0u);
        EXPECT_EQ(+info.action_u.flow_hash.flow_idx, flow_idx);
        const host::view::answer found = look_up(spec);
        ASSERT_TRUE(found.hit);
        // The top 22 bits of the word at byte 64.
        EXPECT_EQ(found.image[64] << 14 | found.image[65] << 6 | found.image[66] >> 2, flow_idx);
    };

    expect_missing();
    EXPECT_EQ(tev_tbl_flow_create(&spec), 0u);
    expect_flow_idx(0x123456);
    // Created twice: refused, and the first one stands.
    spec.action_u.flow_hash.flow_idx = 0x222222;
    EXPECT_EQ(tev_tbl_flow_create(&spec), 9u);
    expect_flow_idx(0x123456);
    EXPECT_EQ(tev_tbl_flow_update(&spec), 0u);
    expect_flow_idx(0x222222);
    EXPECT_EQ(tev_tbl_flow_table_clear(), 255u);
    expect_flow_idx(0x222222);
    EXPECT_EQ(tev_tbl_flow_delete(&spec.key), 0u);
    expect_missing();
    EXPECT_EQ(tev_tbl_flow_create(&spec), 0u);
    expect_flow_idx(0x222222);
}

}  // namespace
