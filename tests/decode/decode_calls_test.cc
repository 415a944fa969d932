// What the decoders ask of the host: the record decoder nothing at all; the entry decoder the
// unpacking of what it prints, and a swizzle of what comes swizzled.

#include "p4pd.h"
#include "tests/contract/expect_calls.h"
#include "tests/read/layouts.h"

namespace halden::decode_tests {
namespace {

using read_tests::data_fields;
using read_tests::key_calls;
using reference::bytes;
using test::at;
using test::calls_are;
using test::expected;

class DecodeCalls : public testing::TestWithParam<uint32_t> {
  protected:
    DecodeCalls() {
        host.reset();
        host.on_action_id = [this](uint32_t, uint8_t) { return action; };
    }
    ~DecodeCalls() override { host.reset(); }
    uint32_t id() const { return GetParam(); }
    const reference::table &facts() const { return reference::table_of(id()); }
    int decode(uint32_t table, bool second_word, uint16_t size) {
        host.forget_calls();
        return p4pd_table_entry_decoded_string_get(
            table, 1, first.data(), second_word ? second.data() : nullptr, bits, text.data(), size);
    }
    void add_key(expected &want, const char *record, const char *image) {
        for (const read_tests::key_call &c : key_calls(id()))
            want.push_back(
                {c.single ? "p4pd_utils_copy_single_bit" : "p4pd_utils_copy_be_src_to_le_dest",
                 {at(record, c.record_byte), c.record_bit, at(image), c.image_bit, c.width}});
    }
    void add_data(expected &want) {
        if (read_tests::has_programs(id()))
            want.push_back({"asicpd_get_action_id", {id(), first[0]}});
        for (const read_tests::data_field &f : data_fields(id(), action))
            want.push_back(
                {"p4pd_utils_copy_be_adata_to_le_dest",
                 {at("data", f.first_byte), 0, at("row", read_tests::has_programs(id()) ? 1 : 0),
                  f.position, f.width}});
    }

    test::recording_host &host = test::recording_host::get();
    bytes first = bytes(128, 0x61), second = bytes(128, 0x17);
    std::vector<char> text = std::vector<char>(8192);
    uint16_t bits = 1024;
    uint8_t action = 0;
};

// TCAM rows are swizzled over the given length, the others not at all.
TEST_P(DecodeCalls, OfOneWord) {
    for (uint32_t n = 0; n < facts().actions; ++n) {
        action = static_cast<uint8_t>(n);
        EXPECT_EQ(decode(id(), false, 8192), 0);
        expected want;
        if (facts().has_tcam()) want.push_back({"p4pd_utils_swizzle_bytes", {at("row"), 1024}});
        if (!facts().has_tcam()) add_key(want, "key", "row");
        add_data(want);
        EXPECT_TRUE(calls_are(want)) << "action " << n;
    }
}

// The second word is swizzled first, whatever the table's kind.
TEST_P(DecodeCalls, OfTwoWords) {
    EXPECT_EQ(decode(id(), true, 8192), 0);
    expected want = {{"p4pd_utils_swizzle_bytes", {at("second"), 1024}}};
    if (facts().has_tcam()) {
        want.push_back({"p4pd_utils_swizzle_bytes", {at("row"), 1024}});
        add_key(want, "key", "row");
        add_key(want, "mask", "second");
    } else {
        add_key(want, "key", "row");
        add_data(want);
    }
    EXPECT_TRUE(calls_are(want));
}

// The swizzles take the length as it was given.
TEST_P(DecodeCalls, SwizzleTheGivenLength) {
    for (const unsigned given : {0u, 1u, 9u, 17u, 24u, 999u}) {
        bits = static_cast<uint16_t>(given);
        EXPECT_EQ(decode(id(), true, 8192), 0);
        std::vector<uint64_t> lengths;
        for (const test::call &call : host.calls())
            if (call.name == "p4pd_utils_swizzle_bytes")
                lengths.push_back(call.arguments[1].number);
        EXPECT_EQ(lengths, std::vector<uint64_t>(facts().has_tcam() ? 2 : 1, given));
    }
}

// The caller's words are copied before anything is done to them.
TEST_P(DecodeCalls, LeaveTheCallersWordsAlone) {
    host.name_buffer("first word", first.data(), first.size());
    host.name_buffer("second word", second.data(), second.size());
    EXPECT_EQ(decode(id(), true, 8192), 0);
    for (const std::string &line : host.text())
        EXPECT_EQ(line.find("word"), std::string::npos) << line;
}

// A buffer that the banner fills: the second word is swizzled, nothing else is asked.
TEST_P(DecodeCalls, OfASmallBufferEndBehindTheSecondWord) {
    EXPECT_EQ(decode(id(), true, 48), 0);
    EXPECT_TRUE(calls_are({{"p4pd_utils_swizzle_bytes", {at("second"), 1024}}}));
    EXPECT_EQ(decode(id(), false, 73), 0);
    EXPECT_TRUE(calls_are({}));
}

TEST_P(DecodeCalls, OfRecordsAreNone) {
    bytes key(facts().key_bytes), data(facts().data_bytes);
    host.forget_calls();
    EXPECT_EQ(p4pd_table_ds_decoded_string_get(id(), 1, key.data(), key.data(), data.data(),
                                               text.data(), 8192),
              0);
    EXPECT_TRUE(calls_are({}));
}

INSTANTIATE_TEST_SUITE_P(Tables, DecodeCalls, testing::Range(1u, 49u),
                         [](const auto &tested) { return read_tests::table_name(tested.param); });

class DecodeCallsOfUnknownTables : public DecodeCalls {};

TEST_P(DecodeCallsOfUnknownTables, EndBehindTheSecondWord) {
    EXPECT_EQ(decode(id(), true, 8192), -1);
    EXPECT_TRUE(calls_are({{"p4pd_utils_swizzle_bytes", {at("second"), 1024}}}));
    EXPECT_EQ(decode(id(), false, 8192), -1);
    EXPECT_TRUE(calls_are({}));
}

INSTANTIATE_TEST_SUITE_P(Ids, DecodeCallsOfUnknownTables, testing::Values(0u, 49u, UINT32_MAX));

}  // namespace
}  // namespace halden::decode_tests
