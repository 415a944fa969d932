// Random records and entries of every table and action: both decoders against the slow printer.

#include <random>

#include "gtest/gtest.h"
#include "tests/decode/decoding.h"

namespace halden::decode_tests {
namespace {

constexpr unsigned entries = 200;

class RandomTexts : public testing::TestWithParam<uint32_t> {
  protected:
    RandomTexts() : random_(GetParam()) { answer_programs(); }
    uint32_t id() const { return GetParam(); }
    const reference::table &facts() const { return reference::table_of(id()); }
    // Small values often, so that digits that are not printed show.
    bytes record(size_t size) {
        bytes out(size);
        const unsigned shift = random_() % 8;
        for (uint8_t &byte : out) byte = static_cast<uint8_t>((random_() & 0xff) >> shift);
        return out;
    }
    bytes data_record(uint32_t action) {
        bytes out = record(facts().data_bytes);
        out[0] = static_cast<uint8_t>(action);
        return out;
    }
    void expect_same(const printed &got, const printed &want) {
        ASSERT_EQ(got.result, want.result);
        ASSERT_EQ(std::string(got.buffer.c_str()), std::string(want.buffer.c_str()));
        ASSERT_EQ(got.buffer, want.buffer) << "behind the text";
    }

    std::mt19937 random_;
};

TEST_P(RandomTexts, OfRecords) {
    for (uint32_t action = 0; action < facts().actions; ++action)
        for (unsigned turn = 0; turn < entries; ++turn) {
            const bytes key = record(facts().key_bytes), mask = record(facts().key_bytes);
            // Ids that are none of the table's now and then.
            const bytes data = data_record(turn % 16 == 0 ? random_() % 256 : action);
            const unsigned given = turn % 4 == 0 ? random_() % 8 : 7;
            const records some = {(given & 1) != 0 ? &key : nullptr,
                                  (given & 2) != 0 ? &mask : nullptr,
                                  (given & 4) != 0 ? &data : nullptr};
            const auto index = static_cast<uint32_t>(random_());
            expect_same(record_text(id(), index, some, roomy),
                        slow_record_text(id(), index, some, roomy));
            if (HasFatalFailure()) return;
        }
}

TEST_P(RandomTexts, OfDataRows) {
    for (uint32_t action = 0; action < facts().actions; ++action)
        for (unsigned turn = 0; turn < entries; ++turn) {
            const bytes key = record(facts().key_bytes), data = data_record(action);
            const bytes key_held = facts().has_key() ? kept_key(id(), key) : bytes();
            const bytes data_held = kept_data(id(), data);
            raw_entry entry = data_entry(id(), key, data, program_of(action));
            const bool second = !facts().has_tcam() && turn % 2 != 0;
            if (second) entry.second = entry.first;
            const auto index = static_cast<uint32_t>(random_());
            expect_same(
                entry_text(id(), index, entry, roomy),
                slow_entry_text(id(), index, {&key_held, nullptr, &data_held}, second, roomy));
            if (HasFatalFailure()) return;
        }
}

TEST_P(RandomTexts, OfTernaryKeys) {
    if (!facts().has_tcam()) return;
    for (unsigned turn = 0; turn < entries; ++turn) {
        const bytes key = record(facts().key_bytes), mask = record(facts().key_bytes);
        const bytes key_held = kept_key(id(), key, mask), mask_held = kept_key(id(), mask);
        const auto index = static_cast<uint32_t>(random_());
        expect_same(entry_text(id(), index, key_entry(id(), key, mask), roomy),
                    slow_entry_text(id(), index, {&key_held, &mask_held, nullptr}, true, roomy));
        if (HasFatalFailure()) return;
    }
}

INSTANTIATE_TEST_SUITE_P(Tables, RandomTexts, testing::Range(1u, 49u),
                         [](const auto &tested) { return read_tests::table_name(tested.param); });

}  // namespace
}  // namespace halden::decode_tests
