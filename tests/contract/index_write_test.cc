// Writers of the tables without a key: the calls they make, in order, with every argument.

#include <array>

#include "tests/contract/entry_writes.h"
#include "tests/contract/index_tables.h"

namespace halden::test {
namespace {

constexpr uint32_t row = 0x00c0ffee;
constexpr int no_mask = -1;

// Every action id of a table, the first that it does not have, and some that no table has.
std::vector<uint8_t> action_ids(const index_table &t) {
    std::vector<uint8_t> ids;
    for (unsigned id = 0; id <= t.actions; ++id) ids.push_back(static_cast<uint8_t>(id));
    ids.push_back(0x80);
    ids.push_back(0xff);
    return ids;
}

// For every entry point, action, mask, flag and answer of the ASIC layer: write once.
template <class One>
void for_every_write(const index_table &t, One &&one) {
    for (entry_point way : entry_points) {
        for (bool flag : {false, true}) {
            for (uint8_t action : action_ids(t)) {
                SCOPED_TRACE(text(way, action, flag));
                one(way, action, no_mask, flag);
                if (way == entry_point::six_arguments) continue;
                for (uint8_t mask_action : action_ids(t)) {
                    SCOPED_TRACE("mask of action " + std::to_string(mask_action));
                    one(way, action, mask_action, flag);
                }
            }
        }
    }
}

class IndexWrite : public EntryWrite, public testing::WithParamInterface<index_table> {
  protected:
    const index_table &t() const { return GetParam(); }
    uint8_t pc(uint8_t action) const { return t().has_programs ? program_counter(action) : 0xff; }

    // Writes; answers what the writer answered.
    p4pd_error_t write_one(entry_point way, uint8_t action, int mask_action, bool flag) {
        begin();
        host_.asic_result = -5;  // not looked at
        use_record(t().record_bytes, action);
        if (mask_action != no_mask)
            use_mask_record(t().record_bytes, static_cast<uint8_t>(mask_action));
        // The key images are neither read nor written.
        uint8_t *key = static_cast<uint8_t *>(unreadable());
        return write(way, {t().id, row, key, key, record_.data(),
                           mask_action == no_mask ? nullptr : mask_record_.data(), flag});
    }

    // Up to the entries that are laid out: the mask's first, then the data's.
    expected layout(uint8_t action, int mask_action) const {
        expected calls;
        if (t().has_programs) calls.push_back({action_pc_call, {t().id, action}});
        if (mask_action != no_mask) {
            append_packing(calls, "packed mask", "mask record",
                           t().fields(static_cast<uint8_t>(mask_action)));
            calls.push_back(
                {prepare_call,
                 {at("mask entry"), pc(action), null, 0, at("packed mask"), t().data_bits}});
            calls.push_back(let_go("packed mask"));
        }
        append_packing(calls, "packed", "record", t().fields(action));
        calls.push_back(
            {prepare_call, {at("entry"), pc(action), null, 0, at("packed"), t().data_bits}});
        return calls;
    }
};

// --- SRAM ----------------------------------------------------------------------------------------

using IndexSram = IndexWrite;

// The mask's entry is swizzled over the length of the data's. An action that the table does not
// pack, its own or not, is written as zero data; the length handed on stays the table's.
TEST_P(IndexSram, MakesExactlyTheseCalls) {
    for_every_write(t(), [&](entry_point way, uint8_t action, int mask_action, bool flag) {
        EXPECT_EQ(write_one(way, action, mask_action, flag), 0);
        const bool masked = mask_action != no_mask;
        const uint16_t length = prepared(masked ? 1 : 0);
        expected want = layout(action, mask_action);
        want.push_back({swizzle_call, {at("entry"), length}});
        if (masked) want.push_back({swizzle_call, {at("mask entry"), length}});
        want.push_back(
            {sram_call,
             {t().id, row, at("entry"), length, masked ? at("mask entry") : null, flag}});
        EXPECT_TRUE(calls_are(want));
    });
}

INSTANTIATE_TEST_SUITE_P(Tables, IndexSram, testing::ValuesIn(index_sram_tables), table_name);

// --- HBM -----------------------------------------------------------------------------------------

using IndexHbm = IndexWrite;

// Nothing is swizzled; a mask is packed and laid out, and goes no further; the flag goes nowhere.
TEST_P(IndexHbm, MakesExactlyTheseCalls) {
    for_every_write(t(), [&](entry_point way, uint8_t action, int mask_action, bool flag) {
        EXPECT_EQ(write_one(way, action, mask_action, flag), 0);
        expected want = layout(action, mask_action);
        // The mask's entry is done with before the data's is made.
        if (mask_action != no_mask)
            want.insert(want.end() - 1 - static_cast<ptrdiff_t>(t().fields(action).size()),
                        let_go("mask entry"));
        want.push_back(
            {hbm_call, {t().id, row, at("entry"), 0, prepared(mask_action == no_mask ? 0 : 1)}});
        EXPECT_TRUE(calls_are(want));
    });
}

INSTANTIATE_TEST_SUITE_P(Tables, IndexHbm, testing::ValuesIn(index_hbm_tables), table_name);

// --- Keyless -------------------------------------------------------------------------------------

class Keyless : public EntryWrite, public testing::WithParamInterface<keyless_table> {};

// Neither record is read: a null action-data record and an unreadable mask will do.
TEST_P(Keyless, MakesExactlyTheseCalls) {
    const uint32_t id = GetParam().id;
    for (entry_point way : entry_points) {
        for (bool flag : {false, true}) {
            for (bool masked : {false, true}) {
                if (masked && way == entry_point::six_arguments) continue;
                for (void *data : {static_cast<void *>(nullptr), unreadable()}) {
                    SCOPED_TRACE(text(way, 0, flag) + (masked ? ", masked" : ""));
                    begin();
                    host_.asic_result = -5;
                    uint8_t *key = static_cast<uint8_t *>(unreadable());
                    EXPECT_EQ(write(way, {id, row, key, key, data, masked ? unreadable() : nullptr,
                                          flag}),
                              0);
                    const uint16_t length = prepared(masked ? 1 : 0);
                    expected want;
                    if (masked)
                        want.push_back(
                            {prepare_call, {at("mask entry"), 0xff, null, 0, anything, 0}});
                    want.push_back({prepare_call, {at("entry"), 0xff, null, 0, anything, 0}});
                    want.push_back({swizzle_call, {at("entry"), length}});
                    if (masked) want.push_back({swizzle_call, {at("mask entry"), length}});
                    want.push_back(
                        {sram_call,
                         {id, row, at("entry"), length, masked ? at("mask entry") : null, flag}});
                    EXPECT_TRUE(calls_are(want));
                }
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Tables, Keyless, testing::ValuesIn(keyless_tables), table_name);

// --- Cases of their own --------------------------------------------------------------------------

using UnkeyedWrite = EntryWrite;

TEST_F(UnkeyedWrite, ADataMaskForFlowInfoIsPackedButHasNoEffectOnTheHbmWrite) {
    use_record(64, 0);
    use_mask_record(64, 0);
    ASSERT_EQ(p4pd_entry_write_with_datamask(21, 3, nullptr, nullptr, record_.data(),
                                             mask_record_.data(), true),
              0);
    const std::vector<call> calls = host_.calls();
    ASSERT_EQ(calls.size(), 32u + 1 + 32 + 1 + 1);
    EXPECT_EQ(host_.text_of(calls[0]).substr(0, pack_call.size()), pack_call);
    EXPECT_EQ(calls[0].arguments[2].pointer, mask_record_.data() + 1);
    EXPECT_EQ(calls[32].name, prepare_call);
    EXPECT_NE(calls[32].arguments[4].pointer, nullptr);
    EXPECT_EQ(calls[66].name, hbm_call);
    ASSERT_EQ(calls[66].arguments.size(), 5u) << "no mask among them";
    EXPECT_EQ(calls[66].arguments[2].pointer, calls[65].arguments[0].pointer);
}

// A row is a 32-bit number that no writer looks at.
TEST_F(UnkeyedWrite, AnyIndexIsPassedOn) {
    for (uint32_t index : {0u, 2047u, 2048u, 0xffffffffu}) {
        begin();
        use_record(12, 0);
        ASSERT_EQ(p4pd_entry_write(16, index, nullptr, nullptr, record_.data(), false), 0);
        EXPECT_EQ(host_.calls().back().arguments[1].number, index);
    }
}

// The records are the caller's: they read the same afterwards.
TEST_F(UnkeyedWrite, TheRecordsAreLeftAlone) {
    use_record(64, 0);
    use_mask_record(64, 0);
    const std::vector<uint8_t> data = record_, mask = mask_record_;
    ASSERT_EQ(p4pd_entry_write_with_datamask(21, 3, nullptr, nullptr, record_.data(),
                                             mask_record_.data(), true),
              0);
    EXPECT_EQ(record_, data);
    EXPECT_EQ(mask_record_, mask);
}

}  // namespace
}  // namespace halden::test
