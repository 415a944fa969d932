// Writers of the tables without a key: the calls they make, in order, with every argument.

#include "tests/contract/writer_calls.h"

namespace halden::test {
namespace {

// For every entry point, flag, action and mask: write once.
template <class One>
void for_every_write(const index_table &t, One &&one) {
    for (entry_point way : entry_points) {
        for (bool flag : {false, true}) {
            for (uint8_t action : action_ids(t.actions)) {
                SCOPED_TRACE(text(way, action, flag));
                one(way, written{.action = action, .flag = flag});
                if (way == entry_point::six_arguments) continue;
                for (uint8_t mask_action : action_ids(t.actions)) {
                    SCOPED_TRACE("mask of action " + std::to_string(mask_action));
                    one(way, written{.action = action, .mask_action = mask_action, .flag = flag});
                }
            }
        }
    }
}

class IndexWrite : public EntryWrite, public testing::WithParamInterface<index_table> {
  protected:
    const index_table &t() const { return GetParam(); }

    p4pd_error_t write_one(entry_point way, const written &w) {
        begin();
        host_.asic_result = -5;  // not looked at
        use_record(t().record_bytes, w.action);
        if (w.masked()) use_mask_record(t().record_bytes, static_cast<uint8_t>(w.mask_action));
        // The key images are neither read nor written.
        uint8_t *key = static_cast<uint8_t *>(unreadable());
        return write(way, {t().id, written_row, key, key, record_.data(),
                           w.masked() ? mask_record_.data() : nullptr, w.flag});
    }
};

using IndexSram = IndexWrite;

// An action that the table does not pack, its own or not, is written as zero data.
TEST_P(IndexSram, MakesExactlyTheseCalls) {
    for_every_write(t(), [&](entry_point way, const written &w) {
        EXPECT_EQ(write_one(way, w), 0);
        EXPECT_TRUE(calls_are(index_sram_calls(t(), w)));
    });
}

INSTANTIATE_TEST_SUITE_P(Tables, IndexSram, testing::ValuesIn(index_sram_tables), table_name);

using IndexHbm = IndexWrite;

TEST_P(IndexHbm, MakesExactlyTheseCalls) {
    for_every_write(t(), [&](entry_point way, const written &w) {
        EXPECT_EQ(write_one(way, w), 0);
        EXPECT_TRUE(calls_are(index_hbm_calls(t(), w)));
    });
}

INSTANTIATE_TEST_SUITE_P(Tables, IndexHbm, testing::ValuesIn(index_hbm_tables), table_name);

class Keyless : public EntryWrite, public testing::WithParamInterface<keyless_table> {};

// Neither record is read: a null action-data record and an unreadable mask will do.
TEST_P(Keyless, MakesExactlyTheseCalls) {
    auto *none = static_cast<uint8_t *>(unreadable());
    for (entry_point way : entry_points) {
        for (bool flag : {false, true}) {
            for (int mask_action : {no_mask, 0}) {
                const written w{.mask_action = mask_action, .flag = flag};
                if (w.masked() && way == entry_point::six_arguments) continue;
                for (uint8_t *data : {static_cast<uint8_t *>(nullptr), none}) {
                    SCOPED_TRACE(text(way, 0, flag) + (w.masked() ? ", masked" : ""));
                    begin();
                    host_.asic_result = -5;
                    EXPECT_EQ(write(way, {GetParam().id, written_row, none, none, data,
                                          w.masked() ? none : nullptr, flag}),
                              0);
                    EXPECT_TRUE(calls_are(keyless_calls(GetParam(), w)));
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
