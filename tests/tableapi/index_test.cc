// The 25 index tables: the engine call of each function, the result of each engine code, and what
// is reported.

#include <cstring>
#include <set>

#include "tests/tableapi/fixture.h"
#include "tev_tbl.h"

namespace halden::test {

namespace {

class IndexTable : public OneTable {
  protected:
    const void *engine() { return t().engine(state->tables); }

    bytes spec_of_row(uint64_t row) {
        bytes spec = random_record(t().spec_bytes());
        const bytes key = key_of_row(t(), row);
        std::copy(key.begin(), key.end(), spec.begin() + 1);
        return spec;
    }
    std::vector<uint64_t> rows() const {
        return t().index_max == 0 ? std::vector<uint64_t>{0}
                                  : std::vector<uint64_t>{0, 1, t().index_max / 2, t().index_max};
    }
    // Keeps the data that stands behind argument `n` of an engine call.
    void keep_data(size_t n) {
        host.on_call = [this, n](const call &c) {
            if (c.name.rfind("directmap::", 0) != 0) return;
            const auto *at = static_cast<const uint8_t *>(c.arguments.at(n).pointer);
            data.assign(at, at + 1 + t().data_bytes);
        };
    }

    bytes data;
};

TEST_P(IndexTable, RecordsAreLaidOutAsPublished) {
    EXPECT_EQ(t().spec_size, 1 + t().key_bytes + t().data_bytes);
    EXPECT_EQ(t().info_size, t().spec_size);
    EXPECT_EQ(t().key_size, t().key_bytes);
}

TEST_P(IndexTable, CreateInsertsTheSpecWithoutItsKeyAtTheMappedRow) {
    for (const uint64_t row : rows()) {
        SCOPED_TRACE(row);
        const bytes spec = spec_of_row(row);
        keep_data(1);
        EXPECT_EQ(t().create(spec.data()), TEV_TBL_RET_OK);
        ASSERT_EQ(host.calls().size(), 1u);
        const call made = host.calls()[0];
        EXPECT_EQ(made.name, "directmap::insert_withid");
        EXPECT_EQ(made.arguments[0].pointer, engine());
        EXPECT_EQ(data, data_of(spec));
        EXPECT_EQ(made.arguments[2].number, row);
        EXPECT_EQ(made.arguments[3].pointer, nullptr);
        expect_silence();
        forget();
    }
}

TEST_P(IndexTable, UpdateReplacesTheDataOfTheMappedRow) {
    for (const uint64_t row : rows()) {
        SCOPED_TRACE(row);
        const bytes spec = spec_of_row(row);
        keep_data(2);
        EXPECT_EQ(t().update(spec.data()), TEV_TBL_RET_OK);
        ASSERT_EQ(host.calls().size(), 1u);
        const call made = host.calls()[0];
        EXPECT_EQ(made.name, "directmap::update");
        EXPECT_EQ(made.arguments[0].pointer, engine());
        EXPECT_EQ(made.arguments[1].number, row);
        EXPECT_EQ(data, data_of(spec));
        EXPECT_EQ(made.arguments[3].pointer, nullptr);
        expect_silence();
        forget();
    }
}

TEST_P(IndexTable, DeleteRemovesTheMappedRow) {
    for (const uint64_t row : rows()) {
        SCOPED_TRACE(row);
        EXPECT_EQ(t().remove(key_of_row(t(), row).data()), TEV_TBL_RET_OK);
        ASSERT_EQ(host.calls().size(), 1u);
        const call made = host.calls()[0];
        EXPECT_EQ(made.name, "directmap::remove");
        EXPECT_EQ(made.arguments[0].pointer, engine());
        EXPECT_EQ(made.arguments[1].number, row);
        EXPECT_EQ(made.arguments[2].pointer, nullptr);
        expect_silence();
        forget();
    }
}

// After a successful read the key bytes of the info record are unchanged.
TEST_P(IndexTable, ReadFillsActionIdAndDataAndLeavesTheKeyBytes) {
    for (const uint64_t row : rows()) {
        SCOPED_TRACE(row);
        const bytes stored = random_record(1 + t().data_bytes);
        host.on_engine = [&](const call &c) {
            std::memcpy(const_cast<void *>(c.arguments.at(2).pointer), stored.data(),
                        stored.size());
            return SDK_RET_OK;
        };
        const bytes before = random_record(t().spec_bytes() + 8);
        bytes info = before;
        EXPECT_EQ(t().read(key_of_row(t(), row).data(), info.data()), TEV_TBL_RET_OK);
        ASSERT_EQ(host.calls().size(), 1u);
        const call made = host.calls()[0];
        EXPECT_EQ(made.name, "directmap::retrieve");
        EXPECT_EQ(made.arguments[0].pointer, engine());
        EXPECT_EQ(made.arguments[1].number, row);
        bytes wanted = before;
        wanted[0] = stored[0];
        std::copy(stored.begin() + 1, stored.end(), wanted.begin() + t().data_at());
        EXPECT_EQ(info, wanted);
        expect_silence();
        forget();
    }
}

TEST_P(IndexTable, FindRetrievesAndDiscards) {
    for (const uint64_t row : rows()) {
        SCOPED_TRACE(row);
        EXPECT_EQ(t().find(key_of_row(t(), row).data()), TEV_TBL_RET_OK);
        ASSERT_EQ(host.calls().size(), 1u);
        const call made = host.calls()[0];
        EXPECT_EQ(made.name, "directmap::retrieve");
        EXPECT_EQ(made.arguments[0].pointer, engine());
        EXPECT_EQ(made.arguments[1].number, row);
        EXPECT_NE(made.arguments[2].pointer, nullptr);
        expect_silence();
        forget();
    }
}

TEST_P(IndexTable, EachEngineCodeOfAWriteIsMapped) {
    const uint64_t row = t().index_max;
    const bytes spec = spec_of_row(row), key = key_of_row(t(), row);
    for (const uint32_t code : engine_codes()) {
        SCOPED_TRACE(code);
        answer(code);
        const tev_tbl_ret_t wanted = code == 0 ? 0 : 9;
        EXPECT_EQ(t().create(spec.data()), wanted);
        if (code == 0)
            expect_silence();
        else
            expect_report(named("Could not insert entry in table ", " at index %lu"), row);
        EXPECT_EQ(engine_calls().size(), 1u);
        forget();
        EXPECT_EQ(t().update(spec.data()), wanted);
        if (code == 0)
            expect_silence();
        else
            expect_report(named("Could not update entry in table ", " at index %lu"), row);
        EXPECT_EQ(engine_calls().size(), 1u);
        forget();
        // The failure of a delete reads "Failed to clear".
        EXPECT_EQ(t().remove(key.data()), wanted);
        if (code == 0)
            expect_silence();
        else
            expect_report(named("Failed to clear ", " table at index %lu"), row);
        EXPECT_EQ(engine_calls().size(), 1u);
        forget();
    }
}

// An absent index (code 4): read answers 15 and reports it, find answers 4 and is silent. An engine
// failure other than 0 or 4 is 15 to find, with a report.
TEST_P(IndexTable, EachEngineCodeOfALookupIsMapped) {
    const uint64_t row = t().index_max;
    const bytes key = key_of_row(t(), row);
    for (const uint32_t code : engine_codes()) {
        SCOPED_TRACE(code);
        answer(code);
        const bytes before = random_record(t().spec_bytes());
        bytes info = before;
        EXPECT_EQ(t().read(key.data(), info.data()), code == 0 ? 0u : 15u);
        if (code == 0) {
            expect_silence();
        } else {
            expect_report(named("Failed to read ", " table at index %lu"), row);
            EXPECT_EQ(info, before) << "a failed read leaves the info record alone";
        }
        forget();
        EXPECT_EQ(t().find(key.data()), code == 0 ? 0u : code == 4 ? 4u : 15u);
        if (code == 0 || code == 4)
            expect_silence();
        else
            expect_report(named("Failed to look up ", " table at index %lu"), row);
        EXPECT_EQ(engine_calls().size(), 1u);
        forget();
    }
}

TEST_P(IndexTable, NullArgumentsAreRefusedBeforeTheEngine) {
    bytes info = random_record(t().spec_bytes());
    const bytes before = info, key = key_of_row(t(), 0);
    EXPECT_EQ(t().create(nullptr), 2u);
    expect_report("[%s:%u] spec is null");
    EXPECT_TRUE(host.calls().empty());
    forget();
    EXPECT_EQ(t().update(nullptr), 2u);
    expect_report("[%s:%u] spec is null");
    EXPECT_TRUE(host.calls().empty());
    forget();
    for (const bool with_key : {false, true})
        for (const bool with_info : {false, true}) {
            if (with_key && with_info) continue;
            EXPECT_EQ(t().read(with_key ? key.data() : nullptr, with_info ? info.data() : nullptr),
                      2u);
            expect_report("[%s:%u] key/info is null");
            EXPECT_TRUE(host.calls().empty());
            EXPECT_EQ(info, before);
            forget();
        }
    EXPECT_EQ(t().remove(nullptr), 2u);
    expect_report("[%s:%u] key is null");
    forget();
    EXPECT_EQ(t().find(nullptr), 2u);
    expect_report("[%s:%u] key is null");
    EXPECT_TRUE(host.calls().empty());
}

// Any table_clear answers 255 and leaves the table as it was.
TEST_P(IndexTable, TableClearIsNotImplemented) {
    EXPECT_EQ(t().table_clear(), 255u);
    expect_report("[%s:%u] Not implemented yet!");
    EXPECT_TRUE(host.calls().empty());
}

// The mapped row counts, in all its 64 bits; and every function asks for it with the table's id and
// the place of the key in the caller's record.
TEST_P(IndexTable, RowsBeyondTheHighestIndexAreRefusedByAllFive) {
    const std::string report = named("Table ", " key %lu is beyond range");
    for (const uint64_t row : {t().index_max + 1, uint64_t{1} << 32, ~uint64_t{0}}) {
        SCOPED_TRACE(row);
        uint32_t asked = 0;
        const void *asked_with = nullptr;
        on_index_map = [&](uint32_t tableid, const void *key) {
            asked = tableid;
            asked_with = key;
            return row;
        };
        const bytes spec = random_record(t().spec_bytes()), key = random_record(t().key_bytes);
        const bytes before = random_record(t().spec_bytes());
        bytes info = before;
        const auto expect_refusal = [&](tev_tbl_ret_t result, const void *key_at) {
            EXPECT_EQ(result, 2u);
            EXPECT_EQ(asked, t().id);
            EXPECT_EQ(asked_with, key_at);
            expect_report(report, row);
            EXPECT_TRUE(host.calls().empty());
            asked = 0;
            forget();
        };
        expect_refusal(t().create(spec.data()), spec.data() + 1);
        expect_refusal(t().update(spec.data()), spec.data() + 1);
        expect_refusal(t().read(key.data(), info.data()), key.data());
        expect_refusal(t().remove(key.data()), key.data());
        expect_refusal(t().find(key.data()), key.data());
        EXPECT_EQ(info, before);
    }
    on_index_map = [&](uint32_t, const void *) { return t().index_max; };
    const bytes spec = random_record(t().spec_bytes());
    EXPECT_EQ(t().create(spec.data()), 0u) << "the highest index is a row";
    ASSERT_EQ(host.calls().size(), 1u);
    EXPECT_EQ(host.calls()[0].arguments[2].number, t().index_max);
}

// Where the key has more bits than the table has rows, the library's own map leads beyond it.
TEST_P(IndexTable, KeysBeyondTheRangeAreRefusedByTheirMappedRow) {
    const uint64_t row = t().index_max + 1;
    const bytes key = key_of_row(t(), row);
    const bool reachable = t().id != 18 && t().id != 19 && t().id != 24 && t().id != 28 &&
                           t().id != 29 && t().id != 30 && t().id != 31 && t().id != 34 &&
                           t().id != 38;
    EXPECT_EQ(t().find(key.data()), reachable ? 2u : 0u);
    if (reachable) {
        expect_report(named("Table ", " key %lu is beyond range"), row);
        EXPECT_TRUE(host.calls().empty());
    } else {
        // The bits above the index are dropped.
        ASSERT_EQ(host.calls().size(), 1u);
        EXPECT_EQ(host.calls()[0].arguments[1].number, 0u);
    }
}

// The line of a report is that of its own operation and cause.
TEST_P(IndexTable, EveryReportNamesALineOfItsOwn) {
    const bytes spec = random_record(t().spec_bytes()), key = random_record(t().key_bytes);
    std::set<uint32_t> lines;
    const auto call_all = [&](const void *s, const void *k) { lines.merge(lines_of_five(s, k)); };
    call_all(nullptr, nullptr);
    on_index_map = [&](uint32_t, const void *) { return t().index_max + 1; };
    call_all(spec.data(), key.data());
    on_index_map = [&](uint32_t, const void *) { return t().index_max; };
    answer(SDK_RET_OOM);
    call_all(spec.data(), key.data());
    EXPECT_EQ(lines.size(), 15u);
}

INSTANTIATE_TEST_SUITE_P(All, IndexTable, testing::ValuesIn(api_tables_of(api_kind::index)),
                         [](const auto &tested) { return std::string(tested.param.name); });

TEST(IndexTables, AreTwentyFive) { EXPECT_EQ(api_tables_of(api_kind::index).size(), 25u); }

using IndexEdges = TableApi;

// A key that maps to row 1 of p4i_stats is beyond range; row 0 is accepted.
TEST_F(IndexEdges, P4iStatsHasOneRow) {
    tev_tbl_p4i_stats_spec_t spec = {};
    spec.key.index = 1;
    EXPECT_EQ(tev_tbl_p4i_stats_create(&spec), TEV_TBL_RET_INVALID_ARG);
    expect_report("[%s:%u] Table p4i_stats key %lu is beyond range", 1);
    forget();
    spec.key.index = 0;
    EXPECT_EQ(tev_tbl_p4i_stats_create(&spec), TEV_TBL_RET_OK);
    expect_silence();
}

// mirror_rewrite accepts row 15 and refuses 16, which its four key bits cannot reach by themselves.
TEST_F(IndexEdges, MirrorRewriteAcceptsRow15AndRefuses16) {
    tev_tbl_mirror_rewrite_spec_t spec = {};
    spec.key.index_high = 7;
    spec.key.index_low = 1;
    EXPECT_EQ(tev_tbl_mirror_rewrite_update(&spec), TEV_TBL_RET_OK);
    ASSERT_EQ(host.calls().size(), 1u);
    EXPECT_EQ(host.calls()[0].arguments[1].number, 15u);
    forget();
    on_index_map = [](uint32_t, const void *) { return uint64_t{16}; };
    EXPECT_EQ(tev_tbl_mirror_rewrite_update(&spec), TEV_TBL_RET_INVALID_ARG);
    expect_report("[%s:%u] Table mirror_rewrite key %lu is beyond range", 16);
    EXPECT_TRUE(host.calls().empty());
}

TEST_F(IndexEdges, AnAbsentLifMappingIsAFailureToReadAndSilentToFind) {
    answer(SDK_RET_ENTRY_NOT_FOUND);
    tev_tbl_lif_mapping_key_t key = {};
    tev_tbl_lif_mapping_info_t info = {};
    key.index = 9;
    EXPECT_EQ(tev_tbl_lif_mapping_read(&key, &info), TEV_TBL_RET_READ_FAILED);
    expect_report("[%s:%u] Failed to read lif_mapping table at index %lu", 9);
    forget();
    EXPECT_EQ(tev_tbl_lif_mapping_find(&key), TEV_TBL_RET_ENTRY_NOT_FOUND);
    expect_silence();
}

TEST_F(IndexEdges, FlowInfoReadWithoutAnInfoRecord) {
    tev_tbl_flow_info_key_t key = {};
    EXPECT_EQ(tev_tbl_flow_info_read(&key, nullptr), TEV_TBL_RET_INVALID_ARG);
    expect_report("[%s:%u] key/info is null");
}

// The record fields stand where the bytes go: a field of the key and one of the data.
TEST_F(IndexEdges, NamedFieldsReachTheEngine) {
    tev_tbl_mirror_rewrite_l3_spec_t spec = {};
    spec.key.index_high = 5;
    spec.key.index_low = 0x2a5;
    EXPECT_EQ(tev_tbl_mirror_rewrite_l3_create(&spec), TEV_TBL_RET_OK);
    ASSERT_EQ(host.calls().size(), 1u);
    EXPECT_EQ(host.calls()[0].arguments[2].number, 5u << 10 | 0x2a5u);
}

}  // namespace
}  // namespace halden::test
