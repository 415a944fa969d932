// Which bytes of the caller's records a reader touches. The recording host copies nothing, so what
// a reader leaves behind is what it does by itself: each field that it unpacks is zero first, the
// action id is stored, and everything else stays as the caller left it.

#include "tests/read/reader_fixture.h"

namespace halden::read_tests {
namespace {

class ReaderRecords : public ReaderTest, public testing::WithParamInterface<uint32_t> {
  protected:
    uint32_t id() const { return GetParam(); }
    const reference::table &facts() const { return reference::table_of(id()); }
    bytes with_key_cleared() const {
        bytes out = untouched;
        for (const key_field &field : key_fields(id()))
            std::fill_n(out.begin() + field.first_byte, field.size, uint8_t{0});
        return out;
    }
};

TEST_P(ReaderRecords, FieldsAreClearedAndNothingElse) {
    for (uint32_t action = 0; action < facts().actions; ++action) {
        fill_records();
        const read_of read = full_read(id(), action);
        answer_with(read, bytes(1024, 0xff), bytes(64, 0xff), bytes(64, 0xff));
        ASSERT_EQ(perform(read), 0);
        EXPECT_EQ(key, facts().has_key() ? with_key_cleared() : untouched);
        EXPECT_EQ(mask, facts().has_tcam() ? with_key_cleared() : untouched);
        bytes want = untouched;
        want[0] = static_cast<uint8_t>(action);
        for (const data_field &field : data_fields(id(), action))
            std::fill_n(want.begin() + field.first_byte, field.size, uint8_t{0});
        EXPECT_EQ(data, want) << "action " << action;
    }
}

// A field may start at any byte of the caller's record.
TEST_P(ReaderRecords, MayStandAtOddAddresses) {
    const read_of read = full_read(id());
    answer_with(read, bytes(1024, 0xff), bytes(64, 0xff), bytes(64, 0xff));
    ASSERT_EQ(perform(read), 0);
    const bytes even_key = key, even_mask = mask, even_data = data;
    fill_records();
    ASSERT_EQ(
        p4pd_entry_read(id(), 0, key.data() + 1, mask.data() + 1, data.data() + 1, nullptr, false),
        0);
    EXPECT_EQ(bytes(key.begin() + 1, key.end()), bytes(even_key.begin(), even_key.end() - 1));
    EXPECT_EQ(bytes(mask.begin() + 1, mask.end()), bytes(even_mask.begin(), even_mask.end() - 1));
    EXPECT_EQ(bytes(data.begin() + 1, data.end()), bytes(even_data.begin(), even_data.end() - 1));
}

INSTANTIATE_TEST_SUITE_P(Tables, ReaderRecords, testing::Range(1u, 49u),
                         [](const auto &tested) { return table_name(tested.param); });

}  // namespace
}  // namespace halden::read_tests
