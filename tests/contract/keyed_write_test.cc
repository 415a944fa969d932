// Writers of the tables with a key: the calls they make, in order, with every argument.

#include <algorithm>
#include <array>

#include "tests/contract/writer_calls.h"

namespace halden::test {
namespace {

class KeyedWriteBase : public EntryWrite {
  protected:
    void begin_with_images() {
        begin();
        host_.asic_result = -5;  // not looked at
        for (size_t i = 0; i < key_.size(); ++i) {
            key_[i] = static_cast<uint8_t>(i + 1);
            key_mask_[i] = static_cast<uint8_t>(0x80 + i);
        }
        host_.name_buffer("key", key_.data(), key_.size());
        host_.name_buffer("key mask", key_mask_.data(), key_mask_.size());
    }

    // For every entry point, flag and action id, and for an entry that starts somewhere in its
    // buffer.
    template <class One>
    void for_every_write(uint8_t actions, One &&one) {
        for (entry_point way : entry_points)
            for (bool flag : {false, true})
                for (uint8_t action : action_ids(actions))
                    for (uint16_t offset : {uint16_t{0}, uint16_t{5}}) {
                        SCOPED_TRACE(text(way, action, flag));
                        begin_with_images();
                        host_.entry_offset = offset;
                        one(way, written{.action = action, .flag = flag, .offset = offset});
                    }
    }

    // As many bytes as the widest image takes.
    std::array<uint8_t, 96> key_{}, key_mask_{};
};

class KeyedWrite : public KeyedWriteBase, public testing::WithParamInterface<keyed_table> {
  protected:
    const keyed_table &t() const { return GetParam(); }

    // The hash tables' mask is neither read nor written.
    p4pd_error_t write_one(entry_point way, const written &w) {
        use_record(t().record_bytes, w.action);
        uint8_t *mask =
            t().tcam_width == 0 ? static_cast<uint8_t *>(unreadable()) : key_mask_.data();
        return write(way,
                     {t().id, written_row, key_.data(), mask, record_.data(), nullptr, w.flag});
    }

    void expect_every_write(expected (*calls)(const keyed_table &, const written &)) {
        for_every_write(t().actions, [&](entry_point way, const written &w) {
            EXPECT_EQ(write_one(way, w), 0);
            EXPECT_TRUE(calls_are(calls(t(), w)));
        });
    }
};

using Tcam = KeyedWrite;
TEST_P(Tcam, MakesExactlyTheseCalls) { expect_every_write(tcam_calls); }
INSTANTIATE_TEST_SUITE_P(Tables, Tcam, testing::ValuesIn(tcam_tables), table_name);

using OverflowTcam = KeyedWrite;
TEST_P(OverflowTcam, MakesExactlyTheseCalls) { expect_every_write(overflow_calls); }
INSTANTIATE_TEST_SUITE_P(Tables, OverflowTcam, testing::ValuesIn(overflow_tables), table_name);

using HashSram = KeyedWrite;
TEST_P(HashSram, MakesExactlyTheseCalls) { expect_every_write(hash_sram_calls); }
INSTANTIATE_TEST_SUITE_P(Tables, HashSram, testing::ValuesIn(hash_sram_tables), table_name);

class HashHbm : public KeyedWriteBase, public testing::WithParamInterface<flow_table> {};

TEST_P(HashHbm, MakesExactlyTheseCalls) {
    for_every_write(1, [&](entry_point way, const written &w) {
        use_record(59, w.action);
        EXPECT_EQ(
            write(way, {GetParam().id, written_row, key_.data(),
                        static_cast<uint8_t *>(unreadable()), record_.data(), nullptr, w.flag}),
            0);
        EXPECT_TRUE(calls_are(flow_calls(GetParam(), w)));
    });
}

INSTANTIATE_TEST_SUITE_P(Tables, HashHbm, testing::ValuesIn(flow_tables), table_name);

// --- Cases of their own --------------------------------------------------------------------------

class KeyedWriteCases : public KeyedWriteBase {
  protected:
    KeyedWriteCases() { begin_with_images(); }
};

TEST_F(KeyedWriteCases, AtIndex5VlanMappingOtcamWritesDataRow4101AndTcamRow5) {
    use_record(5, 0);
    ASSERT_EQ(p4pd_entry_write_with_datamask(7, 5, key_.data(), key_mask_.data(), record_.data(),
                                             nullptr, false),
              0);
    EXPECT_TRUE(
        calls_are({{pack_call, {at("packed"), 0, at("record", 1), 0, 12}},
                   {pack_call, {at("packed"), 12, at("record", 3), 0, 12}},
                   {prepare_hash_call,
                    {at("entry"), 0xff, 0, null, 24, 24, null, 0, at("packed"), 24, anything}},
                   {swizzle_call, {at("entry"), 801}},
                   {sram_call, {7, 4101, at("entry"), 801, null, false}},
                   {swizzle_call, {at("key"), 24}},
                   {swizzle_call, {at("key mask"), 24}},
                   {tcam_call, {7, 5, at("key"), at("key mask"), 32, false}}}));
}

TEST_F(KeyedWriteCases, FlowWithActionId1HasNoDataBeforeOrAfterTheKey) {
    use_record(59, 1);
    ASSERT_EQ(
        p4pd_entry_write_with_datamask(2, 5, key_.data(), nullptr, record_.data(), nullptr, false),
        0);
    EXPECT_TRUE(calls_are(
        {{prepare_wide_call,
          {at("entry"), 0xff, 32, at("key"), 640, 293, at("before"), 0, at("after"), 0, anything}},
         {hbm_call, {2, 5, at("entry"), 0, 801}}}));
}

// An overflow row is counted in 32 bits, as the index is.
TEST_F(KeyedWriteCases, TheDataRowOfAnOverflowEntryWraps) {
    use_record(4, 1);
    ASSERT_EQ(p4pd_entry_write(10, 0xffffffff, key_.data(), key_mask_.data(), record_.data(), true),
              0);
    EXPECT_TRUE(
        calls_are({{prepare_hash_call,
                    {at("entry"), 0xff, 0, null, 40, 17, null, 0, at("packed"), 0, anything}},
                   {swizzle_call, {at("entry"), 801}},
                   {sram_call, {10, 8191, at("entry"), 801, null, true}},
                   {swizzle_call, {at("key"), 40}},
                   {swizzle_call, {at("key mask"), 40}},
                   {tcam_call, {10, 0xffffffffu, at("key"), at("key mask"), 48, true}}}));
}

// Swizzles as a host does it: the bytes of the length, rounded up to 16 bits, end to end.
void swizzle(const call &made) {
    auto *start = const_cast<uint8_t *>(static_cast<const uint8_t *>(made.arguments[0].pointer));
    std::reverse(start, start + (made.arguments[1].number + 15) / 16 * 2);
}

std::vector<uint8_t> first(const std::array<uint8_t, 96> &image, size_t bytes) {
    return {image.data(), image.data() + bytes};
}

TEST_F(KeyedWriteCases, WritingATcamEntryLeavesTheCallersKeyAndMaskSwizzled) {
    struct row_bytes {
        uint32_t id;
        size_t bytes;
    };
    for (auto [id, bytes] : {row_bytes{7, 4},
                             {8, 16},
                             {9, 28},
                             {10, 6},
                             {11, 18},
                             {12, 2},
                             {13, 2},
                             {14, 8},
                             {15, 2}}) {
        SCOPED_TRACE(id);
        begin_with_images();
        use_record(10, 0);
        const auto key = key_, key_mask = key_mask_;
        auto swizzled_key = key, swizzled_mask = key_mask;
        std::reverse(swizzled_key.data(), swizzled_key.data() + bytes);
        std::reverse(swizzled_mask.data(), swizzled_mask.data() + bytes);
        std::vector<uint8_t> written_key, written_mask;
        host_.on_call = [&](const call &made) {
            if (made.name == swizzle_call) swizzle(made);
            if (made.name != tcam_call) return;
            written_key = made.arguments[2].bytes;
            written_mask = made.arguments[3].bytes;
        };
        ASSERT_EQ(p4pd_entry_write(id, 5, key_.data(), key_mask_.data(), record_.data(), false), 0);
        EXPECT_EQ(key_, swizzled_key);
        EXPECT_EQ(key_mask_, swizzled_mask);
        // The row is written once both are.
        EXPECT_EQ(written_key, first(swizzled_key, bytes));
        EXPECT_EQ(written_mask, first(swizzled_mask, bytes));
    }
}

// The key of a hash entry is the caller's and stays as it was.
TEST_F(KeyedWriteCases, WritingAHashEntryLeavesTheCallersKeyAlone) {
    for (uint32_t id : {1u, 2u, 3u, 4u, 5u, 6u}) {
        SCOPED_TRACE(id);
        begin_with_images();
        use_record(59, 0);
        const auto key = key_, key_mask = key_mask_;
        host_.on_call = [](const call &made) {
            if (made.name == swizzle_call) swizzle(made);
        };
        ASSERT_EQ(p4pd_entry_write(id, 5, key_.data(), key_mask_.data(), record_.data(), false), 0);
        EXPECT_EQ(key_, key);
        EXPECT_EQ(key_mask_, key_mask);
    }
}

// The refusal comes before everything else, the question for the action's program included.
TEST_F(KeyedWriteCases, ADataMaskIsRefusedByEveryKeyedTableBeforeAnyCall) {
    for (uint32_t id = 1; id <= 15; ++id) {
        for (entry_point way : {entry_point::with_datamask, entry_point::named_writer}) {
            for (uint8_t action : {uint8_t{0}, uint8_t{1}, uint8_t{0xff}}) {
                SCOPED_TRACE(id);
                begin_with_images();
                host_.on_action_pc = [](uint32_t, uint8_t) { return uint8_t{0xff}; };
                use_record(59, action);
                use_mask_record(59, action);
                EXPECT_EQ(write(way, {id, 5, key_.data(), key_mask_.data(), record_.data(),
                                      mask_record_.data(), true}),
                          -1);
                EXPECT_TRUE(calls_are({}));
            }
        }
    }
}

// Ids outside 1 to 48 write nothing and read nothing.
TEST_F(KeyedWriteCases, UnknownIdsAreRefusedByEveryEntryPoint) {
    auto *none = static_cast<uint8_t *>(unreadable());
    for (uint32_t id : {0u, 49u, 50u, 256u + 16, 0x80000001u, 0xffffffffu}) {
        SCOPED_TRACE(id);
        begin_with_images();
        EXPECT_EQ(p4pd_entry_write_with_datamask(id, 5, none, none, none, nullptr, false), -1);
        EXPECT_EQ(p4pd_entry_write_with_datamask(id, 5, none, none, none, none, true), -1);
        EXPECT_EQ(p4pd_entry_write(id, 5, none, none, unreadable(), false), -1);
        EXPECT_EQ(p4pd_entry_write(id, 5, unreadable(), unreadable(), unreadable()), -1);
        EXPECT_EQ(p4pd_entry_install(id, 5, unreadable(), unreadable(), unreadable()), -1);
        EXPECT_TRUE(calls_are({}));
    }
}

}  // namespace
}  // namespace halden::test
