// The flow table's six functions: the whole entry that the engine gets, what read makes of the one
// it gives back, the result of each engine code, and what is reported.

#include <cstring>

#include "ftl/flow_hash_entry.h"
#include "tests/tableapi/fixture.h"
#include "tev_tbl.h"

namespace halden::test {
namespace {

constexpr uint32_t key_bytes = 77, spec_bytes = 136, data_at = 78;

// Where a field stands: its first byte and bytes in the record, its first bit and bits in the body.
struct field_place {
    const char *name;
    uint32_t byte, bytes;
    uint32_t bit, bits;
};

constexpr field_place key_fields[] = {
    {"spare", 0, 16, 896, 128},  {"proto", 16, 1, 888, 8},          {"vlan", 17, 2, 872, 16},
    {"vni", 19, 4, 848, 24},     {"outer_flow_id", 23, 2, 832, 16}, {"rsvd", 25, 1, 827, 5},
    {"port_id", 26, 2, 816, 11}, {"ktype", 28, 1, 808, 8},          {"dmac", 29, 6, 760, 48},
    {"smac", 35, 6, 712, 48},    {"dport", 41, 2, 696, 16},         {"sport", 43, 2, 680, 16},
    {"dip", 45, 16, 552, 128},   {"sip", 61, 16, 352, 128},
};

// more_hashes, at byte 52, is never taken from a spec; the last byte, 57, is the hardware's.
constexpr field_place data_fields[] = {
    {"flow_idx", 0, 4, 490, 22}, {"hash1", 4, 2, 480, 10},  {"hint1", 6, 4, 331, 21},
    {"hash2", 10, 2, 321, 10},   {"hint2", 12, 4, 300, 21}, {"hash3", 16, 2, 290, 10},
    {"hint3", 18, 4, 269, 21},   {"hash4", 22, 2, 259, 10}, {"hint4", 24, 4, 238, 21},
    {"hash5", 28, 2, 228, 10},   {"hint5", 30, 4, 207, 21}, {"hash6", 34, 2, 197, 10},
    {"hint6", 36, 4, 176, 21},   {"hash7", 40, 2, 166, 10}, {"hint7", 42, 4, 145, 21},
    {"hash8", 46, 2, 135, 10},   {"hint8", 48, 4, 114, 21}, {"more_hints", 53, 4, 92, 21},
};
constexpr uint32_t more_hashes_byte = 52, more_hashes_bit = 113;

bool bit_of(const uint8_t *record, uint32_t bit) { return (record[bit / 8] >> bit % 8 & 1) != 0; }
void set_bit(uint8_t *record, uint32_t bit, bool value) {
    if (value)
        record[bit / 8] = static_cast<uint8_t>(record[bit / 8] | 1u << bit % 8);
    else
        record[bit / 8] = static_cast<uint8_t>(record[bit / 8] & ~(1u << bit % 8));
}

// Bit by bit; what the field has no room for is dropped.
void put(bytes &body, const field_place &f, const uint8_t *record) {
    for (uint32_t i = 0; i < f.bits; ++i)
        set_bit(body.data(), f.bit + i, bit_of(record + f.byte, i));
}
void take(uint8_t *record, const field_place &f, const bytes &body) {
    for (uint32_t i = 0; i < 8 * f.bytes; ++i)
        set_bit(record + f.byte, i, i < f.bits && bit_of(body.data(), f.bit + i));
}

bytes body_of_key(const uint8_t *key) {
    bytes body(128);
    for (const field_place &f : key_fields) put(body, f, key);
    return body;
}
bytes body_of_spec(const bytes &spec) {
    bytes body = body_of_key(spec.data() + 1);
    for (const field_place &f : data_fields) put(body, f, spec.data() + data_at);
    set_bit(body.data(), more_hashes_bit, true);
    return body;
}

class FlowTable : public TableApi {
  protected:
    // Keeps the entry that an engine call points at.
    void watch() {
        host.on_call = [this](const call &c) {
            if (c.name.rfind("ftl_base::", 0) != 0) return;
            params = params_of(c);
            const auto *entry = static_cast<const flow_hash_entry_t *>(params.entry);
            body.assign(entry->body(), entry->body() + 128);
            valid = entry->valid;
        };
    }
    void expect_call(const char *name, const bytes &wanted) {
        ASSERT_EQ(host.calls().size(), 1u);
        EXPECT_EQ(host.calls()[0].name, name);
        EXPECT_EQ(host.calls()[0].arguments[0].pointer, state->tables.flow_tbl());
        EXPECT_EQ(body, wanted);
        EXPECT_EQ(valid, 0u);
        // All zero but the entry pointer: no key, mask or data, and the option is not set here.
        EXPECT_EQ(params.key, nullptr);
        EXPECT_EQ(params.mask, nullptr);
        EXPECT_EQ(params.data, nullptr);
        EXPECT_EQ(params.action_id, 0u);
        EXPECT_EQ(params.handle.tou64(), 0u);
        EXPECT_EQ(params.hash_value, 0u);
        EXPECT_FALSE(params.hash_valid);
        EXPECT_FALSE(params.from_hardware);
    }

    const tev_tbl_flow_spec_t *spec_at(const bytes &record) {
        return reinterpret_cast<const tev_tbl_flow_spec_t *>(record.data());
    }
    const tev_tbl_flow_key_t *key_at(const bytes &record) {
        return reinterpret_cast<const tev_tbl_flow_key_t *>(record.data());
    }
    tev_tbl_flow_info_t *info_at(bytes &record) {
        return reinterpret_cast<tev_tbl_flow_info_t *>(record.data());
    }

    sdk::table::sdk_table_api_params_ params = {};
    bytes body;
    uint64_t valid = 7;
};

TEST_F(FlowTable, RecordsAreLaidOutAsPublished) {
    EXPECT_EQ(sizeof(tev_tbl_flow_key_t), key_bytes);
    EXPECT_EQ(sizeof(tev_tbl_flow_spec_t), spec_bytes);
    EXPECT_EQ(sizeof(tev_tbl_flow_info_t), spec_bytes);
    EXPECT_EQ(offsetof(tev_tbl_flow_spec_t, action_u), data_at);
}

// Values wider than the entry's fields are cut to their low bits, without a message.
TEST_F(FlowTable, CreateAndUpdateFillTheEntryFieldByField) {
    for (unsigned round = 0; round < 50; ++round) {
        SCOPED_TRACE(round);
        const bytes spec = random_record(spec_bytes);
        watch();
        EXPECT_EQ(tev_tbl_flow_create(spec_at(spec)), TEV_TBL_RET_OK);
        expect_call("ftl_base::insert", body_of_spec(spec));
        forget();
        EXPECT_EQ(tev_tbl_flow_update(spec_at(spec)), TEV_TBL_RET_OK);
        expect_call("ftl_base::update", body_of_spec(spec));
        expect_silence();
        forget();
    }
}

TEST_F(FlowTable, WideValuesAreCut) {
    tev_tbl_flow_spec_t spec = {};
    spec.key.metadata_flow_key_vni = 0xff000001;
    spec.action_u.flow_hash.flow_idx = 0xffc00002;
    spec.action_u.flow_hash.hint3 = 0xffe00003;
    watch();
    EXPECT_EQ(tev_tbl_flow_create(&spec), TEV_TBL_RET_OK);
    bytes wanted(128);
    set_bit(wanted.data(), 848, true);      // vni 1
    set_bit(wanted.data(), 490 + 1, true);  // flow_idx 2
    set_bit(wanted.data(), 269, true);      // hint3 3
    set_bit(wanted.data(), 270, true);
    set_bit(wanted.data(), more_hashes_bit, true);
    expect_call("ftl_base::insert", wanted);
    expect_silence();
}

// more_hashes 0 and more_hints 0 in the spec: the entry is stored with more_hashes 1, and a later
// read gives 1.
TEST_F(FlowTable, MoreHashesIsStoredAsOneWhateverTheSpecSays) {
    tev_tbl_flow_spec_t spec = {};
    watch();
    EXPECT_EQ(tev_tbl_flow_create(&spec), TEV_TBL_RET_OK);
    EXPECT_TRUE(bit_of(body.data(), more_hashes_bit));
    const bytes stored = body;
    host.on_engine = [&](const call &c) {
        auto *entry = static_cast<flow_hash_entry_t *>(params_of(c).entry);
        std::memcpy(entry->body(), stored.data(), stored.size());
        return SDK_RET_OK;
    };
    tev_tbl_flow_info_t info = {};
    EXPECT_EQ(tev_tbl_flow_read(&spec.key, &info), TEV_TBL_RET_OK);
    EXPECT_EQ(info.action_u.flow_hash.more_hashes, 1);
    EXPECT_EQ(+info.action_u.flow_hash.more_hints, 0u);
}

TEST_F(FlowTable, KeyCallsFillTheKeyAlone) {
    for (unsigned round = 0; round < 20; ++round) {
        const bytes key = random_record(key_bytes);
        bytes info = random_record(spec_bytes);
        watch();
        EXPECT_EQ(tev_tbl_flow_read(key_at(key), info_at(info)), TEV_TBL_RET_OK);
        expect_call("ftl_base::get", body_of_key(key.data()));
        forget();
        EXPECT_EQ(tev_tbl_flow_delete(key_at(key)), TEV_TBL_RET_OK);
        expect_call("ftl_base::remove", body_of_key(key.data()));
        forget();
        EXPECT_EQ(tev_tbl_flow_find(key_at(key)), TEV_TBL_RET_OK);
        expect_call("ftl_base::get", body_of_key(key.data()));
        expect_silence();
        forget();
    }
}

TEST_F(FlowTable, ReadGivesTheDataAndLeavesTheKey) {
    for (unsigned round = 0; round < 50; ++round) {
        SCOPED_TRACE(round);
        const bytes key = random_record(key_bytes), stored = random_record(128);
        const bytes before = random_record(spec_bytes);
        host.on_engine = [&](const call &c) {
            auto *entry = static_cast<flow_hash_entry_t *>(params_of(c).entry);
            std::memcpy(entry->body(), stored.data(), stored.size());
            return SDK_RET_OK;
        };
        bytes info = before;
        EXPECT_EQ(tev_tbl_flow_read(key_at(key), info_at(info)), TEV_TBL_RET_OK);
        bytes wanted = before;
        wanted[0] = 0;
        for (const field_place &f : data_fields) take(wanted.data() + data_at, f, stored);
        wanted[data_at + more_hashes_byte] = bit_of(stored.data(), more_hashes_bit);
        EXPECT_EQ(info, wanted);
        expect_silence();
        forget();
    }
}

// A missing flow (code 4): read answers 15 and reports it, find answers 4 and is silent.
TEST_F(FlowTable, EachEngineCodeIsMapped) {
    const bytes spec = random_record(spec_bytes), key = random_record(key_bytes);
    for (const uint32_t code : engine_codes()) {
        SCOPED_TRACE(code);
        answer(code);
        const auto expect = [&](tev_tbl_ret_t result, tev_tbl_ret_t wanted,
                                const std::string &report) {
            EXPECT_EQ(result, wanted);
            if (wanted == 0 || wanted == 4)
                expect_silence();
            else
                expect_report(report);
            EXPECT_EQ(host.calls().size(), 1u);
            forget();
        };
        const bytes before = random_record(spec_bytes);
        bytes info = before;
        expect(tev_tbl_flow_create(spec_at(spec)), code == 0 ? 0 : 9,
               "[%s:%u] Could not insert entry in table flow");
        expect(tev_tbl_flow_update(spec_at(spec)), code == 0 ? 0 : 9,
               "[%s:%u] Could not update entry in flow table");
        expect(tev_tbl_flow_delete(key_at(key)), code == 0 ? 0 : 9,
               "[%s:%u] Could not remove entry in flow table");
        expect(tev_tbl_flow_read(key_at(key), info_at(info)), code == 0 ? 0 : 15,
               "[%s:%u] Could not find entry in flow table");
        if (code != 0) {
            EXPECT_EQ(info, before) << "a failed read leaves the info record alone";
        }
        expect(tev_tbl_flow_find(key_at(key)),
               code == 0   ? 0
               : code == 4 ? 4
                           : 15,
               "[%s:%u] Could not lookup entry in flow table");
    }
}

TEST_F(FlowTable, NullArgumentsAreRefusedBeforeTheEngine) {
    const bytes key = random_record(key_bytes), before = random_record(spec_bytes);
    bytes info = before;
    const auto expect_refusal = [&](tev_tbl_ret_t result, const char *report) {
        EXPECT_EQ(result, 2u);
        expect_report(report);
        EXPECT_TRUE(host.calls().empty());
        forget();
    };
    expect_refusal(tev_tbl_flow_create(nullptr), "[%s:%u] spec is null");
    expect_refusal(tev_tbl_flow_update(nullptr), "[%s:%u] spec is null");
    expect_refusal(tev_tbl_flow_read(nullptr, info_at(info)), "[%s:%u] key/info is null");
    expect_refusal(tev_tbl_flow_read(key_at(key), nullptr), "[%s:%u] key/info is null");
    expect_refusal(tev_tbl_flow_read(nullptr, nullptr), "[%s:%u] key/info is null");
    expect_refusal(tev_tbl_flow_delete(nullptr), "[%s:%u] key is null");
    expect_refusal(tev_tbl_flow_find(nullptr), "[%s:%u] key is null");
    EXPECT_EQ(info, before);
}

TEST_F(FlowTable, TableClearReportsAndDoesNothing) {
    EXPECT_EQ(tev_tbl_flow_table_clear(), TEV_TBL_RET_NOT_IMPLEMENTED);
    expect_report("[%s:%u] Not implemented yet!");
    EXPECT_TRUE(host.calls().empty());
}

}  // namespace
}  // namespace halden::test
