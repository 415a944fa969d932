// The four hash and five ternary tables: the engine call of each function with its parameter
// record, the result of each engine code, and what is reported.

#include <cstring>
#include <set>

#include "tests/tableapi/fixture.h"
#include "tev_tbl.h"

namespace halden::test {
namespace {

class KeyedTable : public OneTable {
  protected:
    bool ternary() const { return t().kind == api_kind::tcam; }
    std::string operation(const std::string &name) const {
        return (ternary() ? "sltcam::" : "slhash::") + name;
    }

    bytes part(const bytes &record, uint32_t at, uint32_t size) const {
        return bytes(record.begin() + at, record.begin() + at + size);
    }
    bytes key_of(const bytes &spec) const { return part(spec, 1, t().key_bytes); }

    // What an engine call pointed at when it was made.
    struct seen_call {
        sdk::table::sdk_table_api_params_ params;
        bytes key, mask, data;
    };
    void watch() {
        host.on_call = [this](const call &c) {
            if (c.name.find("::") == std::string::npos) return;
            seen.params = params_of(c);
            const auto copy = [](const void *at, uint32_t size) {
                const auto *start = static_cast<const uint8_t *>(at);
                return at == nullptr ? bytes() : bytes(start, start + size);
            };
            seen.key = copy(seen.params.key, t().key_bytes);
            seen.mask = copy(seen.params.mask, t().key_bytes);
            seen.data = copy(seen.params.data, 1 + t().data_bytes);
        };
    }
    // The one engine call: of `name`, on the table's engine, and its record but for the pointers.
    void expect_call(const std::string &name, uint8_t action_id) {
        ASSERT_EQ(host.calls().size(), 1u);
        EXPECT_EQ(host.calls()[0].name, operation(name));
        EXPECT_EQ(host.calls()[0].arguments[0].pointer, t().engine(state->tables));
        EXPECT_EQ(seen.params.entry, nullptr);
        EXPECT_EQ(seen.params.action_id, action_id);
        EXPECT_EQ(seen.params.handle.tou64(), 0u);
        EXPECT_EQ(seen.params.hash_value, 0u);
        EXPECT_FALSE(seen.params.hash_valid);
        EXPECT_TRUE(seen.params.from_hardware);
    }
    void expect_key_call(const std::string &name, const bytes &key) {
        expect_call(name, 0);
        EXPECT_EQ(seen.key, key);
        EXPECT_NE(seen.params.key, key.data()) << "a copy";
        EXPECT_EQ(seen.params.mask, nullptr);
        EXPECT_EQ(seen.data, bytes(1 + t().data_bytes)) << "the buffer is zeroed first";
    }

    seen_call seen = {};
};

TEST_P(KeyedTable, RecordsAreLaidOutAsPublished) {
    const uint32_t masks = ternary() ? 1 + t().key_bytes : 0;
    EXPECT_EQ(t().spec_size, 1 + t().key_bytes + masks + t().data_bytes);
    EXPECT_EQ(t().info_size, t().spec_size);
    EXPECT_EQ(t().key_size, t().key_bytes);
}

// A ternary spec with the flag zero passes a null mask even when mask bytes are there.
TEST_P(KeyedTable, CreateAndUpdatePassCopiesOfKeyMaskAndData) {
    for (const unsigned flag : {0u, 1u, 2u, 0x80u, 0xffu}) {
        SCOPED_TRACE(flag);
        bytes spec = random_record(t().spec_bytes());
        if (ternary()) spec[1 + t().key_bytes] = static_cast<uint8_t>(flag);
        const bytes before = spec;
        for (const bool update : {false, true}) {
            watch();
            EXPECT_EQ(update ? t().update(spec.data()) : t().create(spec.data()), 0u);
            expect_call(update ? "update" : "insert", spec[0]);
            EXPECT_EQ(seen.key, key_of(spec));
            EXPECT_EQ(seen.data, data_of(spec));
            if (ternary() && flag != 0)
                EXPECT_EQ(seen.mask, part(spec, t().mask_at(), t().key_bytes));
            else
                EXPECT_EQ(seen.params.mask, nullptr);
            const auto *record = spec.data();
            for (const void *at : {seen.params.key, seen.params.mask, seen.params.data})
                EXPECT_FALSE(at >= record && at < record + spec.size()) << "a copy";
            EXPECT_EQ(spec, before);
            expect_silence();
            forget();
        }
    }
}

// A ternary entry made with a mask is looked up and removed by its key alone, with a null mask.
TEST_P(KeyedTable, DeleteAndFindPassTheKeyAlone) {
    const bytes key = random_record(t().key_bytes);
    watch();
    EXPECT_EQ(t().remove(key.data()), 0u);
    expect_key_call("remove", key);
    expect_silence();
    forget();
    EXPECT_EQ(t().find(key.data()), 0u);
    expect_key_call("get", key);
    expect_silence();
}

TEST_P(KeyedTable, ReadFillsActionIdAndDataAndNothingElse) {
    const bytes key = random_record(t().key_bytes), stored = random_record(1 + t().data_bytes);
    const bytes before = random_record(t().spec_bytes() + 8);
    bytes info = before;
    watch();
    host.on_engine = [&](const call &c) {
        std::memcpy(params_of(c).data, stored.data(), stored.size());
        return SDK_RET_OK;
    };
    EXPECT_EQ(t().read(key.data(), info.data()), 0u);
    expect_key_call("get", key);
    bytes wanted = before;
    wanted[0] = stored[0];
    std::copy(stored.begin() + 1, stored.end(), wanted.begin() + t().data_at());
    EXPECT_EQ(info, wanted);
    expect_silence();
}

// A duplicate is reported like any other refusal, whatever the engine's code.
TEST_P(KeyedTable, EachEngineCodeOfAWriteIsMapped) {
    const bytes spec = random_record(t().spec_bytes()), key = random_record(t().key_bytes);
    for (const uint32_t code : engine_codes()) {
        SCOPED_TRACE(code);
        answer(code);
        const tev_tbl_ret_t wanted = code == 0 ? 0 : 9;
        const auto expect = [&](const std::string &report) {
            if (code == 0)
                expect_silence();
            else
                expect_report(report);
            EXPECT_EQ(host.calls().size(), 1u);
            forget();
        };
        EXPECT_EQ(t().create(spec.data()), wanted);
        expect(named("Could not insert entry in table ", ""));
        EXPECT_EQ(t().update(spec.data()), wanted);
        expect(named("Could not update entry in ", " table"));
        EXPECT_EQ(t().remove(key.data()), wanted);
        expect(named("Could not remove entry in ", " table"));
    }
}

TEST_P(KeyedTable, EachEngineCodeOfALookupIsMapped) {
    const bytes key = random_record(t().key_bytes);
    for (const uint32_t code : engine_codes()) {
        SCOPED_TRACE(code);
        answer(code);
        const bytes before = random_record(t().spec_bytes());
        bytes info = before;
        EXPECT_EQ(t().read(key.data(), info.data()), code == 0 ? 0u : 15u);
        if (code == 0) {
            expect_silence();
        } else {
            expect_report(named("Could not find entry in ", " table"));
            EXPECT_EQ(info, before);
        }
        forget();
        EXPECT_EQ(t().find(key.data()), code == 0 ? 0u : code == 4 ? 4u : 15u);
        if (code == 0 || code == 4)
            expect_silence();
        else
            expect_report(named("Could not lookup entry in ", " table"));
        EXPECT_EQ(host.calls().size(), 1u);
        forget();
    }
}

TEST_P(KeyedTable, NullArgumentsAreRefusedBeforeTheEngine) {
    const bytes key = random_record(t().key_bytes), before = random_record(t().spec_bytes());
    bytes info = before;
    const auto expect_refusal = [&](tev_tbl_ret_t result, const std::string &report) {
        EXPECT_EQ(result, 2u);
        expect_report(report);
        EXPECT_TRUE(host.calls().empty());
        EXPECT_EQ(info, before);
        forget();
    };
    expect_refusal(t().create(nullptr), "[%s:%u] spec is null");
    expect_refusal(t().update(nullptr), "[%s:%u] spec is null");
    expect_refusal(t().read(nullptr, info.data()), "[%s:%u] key/info is null");
    expect_refusal(t().read(key.data(), nullptr), "[%s:%u] key/info is null");
    expect_refusal(t().read(nullptr, nullptr), "[%s:%u] key/info is null");
    expect_refusal(t().remove(nullptr), "[%s:%u] key is null");
    expect_refusal(t().find(nullptr), "[%s:%u] key is null");
}

TEST_P(KeyedTable, TableClearIsNotImplemented) {
    EXPECT_EQ(t().table_clear(), 255u);
    expect_report("[%s:%u] Not implemented yet!");
    EXPECT_TRUE(host.calls().empty());
}

// The line of a report is that of its own operation and cause.
TEST_P(KeyedTable, EveryReportNamesALineOfItsOwn) {
    const bytes spec = random_record(t().spec_bytes()), key = random_record(t().key_bytes);
    std::set<uint32_t> lines;
    const auto call_all = [&](const void *s, const void *k) { lines.merge(lines_of_five(s, k)); };
    call_all(nullptr, nullptr);
    answer(SDK_RET_OOM);
    call_all(spec.data(), key.data());
    EXPECT_EQ(lines.size(), 10u);
}

INSTANTIATE_TEST_SUITE_P(Hash, KeyedTable, testing::ValuesIn(api_tables_of(api_kind::hash)),
                         [](const auto &tested) { return std::string(tested.param.name); });
INSTANTIATE_TEST_SUITE_P(Ternary, KeyedTable, testing::ValuesIn(api_tables_of(api_kind::tcam)),
                         [](const auto &tested) { return std::string(tested.param.name); });

TEST(KeyedTables, AreFourAndFive) {
    EXPECT_EQ(api_tables_of(api_kind::hash).size(), 4u);
    EXPECT_EQ(api_tables_of(api_kind::tcam).size(), 5u);
}

using KeyedEdges = TableApi;

TEST_F(KeyedEdges, AnAbsentRegisteredMacIsSilentToFindAndAFailureToRead) {
    answer(SDK_RET_ENTRY_NOT_FOUND);
    tev_tbl_registered_mac_key_t key = {};
    tev_tbl_registered_mac_info_t info = {};
    EXPECT_EQ(tev_tbl_registered_mac_find(&key), TEV_TBL_RET_ENTRY_NOT_FOUND);
    expect_silence();
    EXPECT_EQ(tev_tbl_registered_mac_read(&key, &info), TEV_TBL_RET_READ_FAILED);
    expect_report("[%s:%u] Could not find entry in registered_mac table");
}

TEST_F(KeyedEdges, VlanMappingCreateWithoutASpecDoesNotTouchTheEngine) {
    EXPECT_EQ(tev_tbl_vlan_mapping_create(nullptr), TEV_TBL_RET_INVALID_ARG);
    expect_report("[%s:%u] spec is null");
    EXPECT_TRUE(host.calls().empty());
}

TEST_F(KeyedEdges, ADuplicateVlanMappingIsAWriteFailure) {
    answer(SDK_RET_ENTRY_EXISTS);
    tev_tbl_vlan_mapping_spec_t spec = {};
    EXPECT_EQ(tev_tbl_vlan_mapping_create(&spec), TEV_TBL_RET_WRITE_FAILED);
    expect_report("[%s:%u] Could not insert entry in table vlan_mapping");
}

TEST_F(KeyedEdges, ChecksumCreateWithTheFlagZeroPassesANullMask) {
    tev_tbl_checksum_spec_t spec = {};
    std::memset(&spec.mask, 0xff, sizeof spec.mask);
    EXPECT_EQ(tev_tbl_checksum_create(&spec), TEV_TBL_RET_OK);
    ASSERT_EQ(host.calls().size(), 1u);
    EXPECT_EQ(params_of(host.calls()[0]).mask, nullptr);
    forget();
    spec.has_mask = 1;
    EXPECT_EQ(tev_tbl_checksum_create(&spec), TEV_TBL_RET_OK);
    ASSERT_EQ(host.calls().size(), 1u);
    EXPECT_NE(params_of(host.calls()[0]).mask, nullptr);
}

TEST_F(KeyedEdges, FlowKeyNativeDeleteRemovesByKeyAlone) {
    tev_tbl_flow_key_native_key_t key = {};
    EXPECT_EQ(tev_tbl_flow_key_native_delete(&key), TEV_TBL_RET_OK);
    ASSERT_EQ(host.calls().size(), 1u);
    EXPECT_EQ(host.calls()[0].name, "sltcam::remove");
    EXPECT_EQ(params_of(host.calls()[0]).mask, nullptr);
}

}  // namespace
}  // namespace halden::test
