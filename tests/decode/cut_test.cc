// Every text of every table, cut at every length of the buffer from 0 to one beyond the whole text:
// the same bytes as the slow printer's, and the result 0.

#include "gtest/gtest.h"
#include "tests/decode/decoding.h"

namespace halden::decode_tests {
namespace {

class CutTexts : public testing::TestWithParam<uint32_t> {
  protected:
    CutTexts() {
        answer_programs();
        for (size_t i = 0; i < key.size(); ++i) key[i] = static_cast<uint8_t>(0x53 * i + 1);
        for (size_t i = 0; i < mask.size(); ++i) mask[i] = static_cast<uint8_t>(~(0x11 * i));
        for (size_t i = 1; i < data.size(); ++i) data[i] = static_cast<uint8_t>(0x6d * i + 9);
    }
    uint32_t id() const { return GetParam(); }
    const reference::table &facts() const { return reference::table_of(id()); }

    template <class Got, class Want>
    void at_every_length(Got got, Want want) {
        const size_t whole = std::string(want(roomy).buffer.c_str()).size();
        for (size_t size = 0; size <= whole + 2; ++size) {
            const printed cut = got(size), expected = want(size);
            ASSERT_EQ(cut.result, 0) << "size " << size;
            ASSERT_EQ(expected.result, 0) << "size " << size;
            ASSERT_EQ(cut.buffer, expected.buffer) << "size " << size;
            // A buffer of one byte more than the text is the first that holds it whole.
            ASSERT_EQ(std::string(cut.buffer.c_str()).size(),
                      size == 0 ? 0 : std::min(size - 1, whole));
        }
    }

    static constexpr uint32_t index = 0xfedcba98;
    bytes key = bytes(reference::table_of(GetParam()).key_bytes);
    bytes mask = bytes(reference::table_of(GetParam()).key_bytes);
    bytes data = bytes(reference::table_of(GetParam()).data_bytes);
};

TEST_P(CutTexts, OfRecords) {
    for (uint32_t action : {0u, facts().actions - 1, facts().actions}) {
        data[0] = static_cast<uint8_t>(action);
        const records given = {&key, &mask, &data};
        at_every_length([&](size_t size) { return record_text(id(), index, given, size); },
                        [&](size_t size) { return slow_record_text(id(), index, given, size); });
    }
}

TEST_P(CutTexts, OfDataRows) {
    for (uint32_t action = 0; action < facts().actions; ++action) {
        data[0] = static_cast<uint8_t>(action);
        const raw_entry entry = data_entry(id(), key, data, program_of(action));
        const bytes key_held = facts().has_key() ? kept_key(id(), key) : bytes();
        const bytes data_held = kept_data(id(), data);
        const records held = {&key_held, nullptr, &data_held};
        at_every_length(
            [&](size_t size) { return entry_text(id(), index, entry, size); },
            [&](size_t size) { return slow_entry_text(id(), index, held, false, size); });
    }
}

TEST_P(CutTexts, OfEntriesWithASecondWord) {
    const bool ternary = facts().has_tcam();
    raw_entry entry =
        ternary ? key_entry(id(), key, mask) : data_entry(id(), key, data, program_of(0));
    if (!ternary) entry.second = entry.first;
    const bytes key_held = ternary             ? kept_key(id(), key, mask)
                           : facts().has_key() ? kept_key(id(), key)
                                               : bytes();
    const bytes mask_held = ternary ? kept_key(id(), mask) : bytes();
    const bytes data_held = kept_data(id(), data);
    const records held = {&key_held, &mask_held, &data_held};
    at_every_length([&](size_t size) { return entry_text(id(), index, entry, size); },
                    [&](size_t size) { return slow_entry_text(id(), index, held, true, size); });
}

INSTANTIATE_TEST_SUITE_P(Tables, CutTexts, testing::Range(1u, 49u),
                         [](const auto &tested) { return read_tests::table_name(tested.param); });

}  // namespace
}  // namespace halden::decode_tests
