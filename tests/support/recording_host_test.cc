// The recording host itself: what it keeps, how it reads, what it answers.

#include "tests/support/recording_host.h"

#include <array>

#include "gmock/gmock.h"
#include "sdk/asic/pd.h"
#include "sdk/p4pd_utils.h"
#include "sdk/trace.h"
#include "tests/contract/expect_calls.h"

namespace halden::test {
namespace {

using testing::ElementsAre;

class RecordingHost : public testing::Test {
  protected:
    RecordingHost() { host.reset(); }
    ~RecordingHost() override { host.reset(); }
    recording_host &host = recording_host::get();
    std::array<uint8_t, 16> buffer{1, 2, 3, 4};
};

TEST_F(RecordingHost, KeepsCallsInOrderWithNamedPlaces) {
    host.name_buffer("image", buffer.data(), 8);
    host.name_buffer("record", buffer.data() + 8, 8);
    p4pd_utils_copy_le_src_to_be_dest(buffer.data(), 11, buffer.data() + 10, 0, 12);
    sdk::asic::pd::asicpd_table_entry_write(16, 5, buffer.data(), 49, nullptr, true);
    EXPECT_THAT(host.text(), ElementsAre("p4pd_utils_copy_le_src_to_be_dest image 11 record+2 0 12",
                                         "asicpd_table_entry_write 16 5 image 49 null 1"));
}

TEST_F(RecordingHost, KeepsTheBytesBehindAnImage) {
    sdk::asic::pd::asicpd_hbm_table_entry_write(21, 1, buffer.data(), 0, 17);
    const std::vector<call> calls = host.calls();
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_THAT(calls[0].arguments[2].bytes, ElementsAre(1, 2, 3));
}

TEST_F(RecordingHost, PreparesAnswerTheLengthOfTheirPartsOrWhatTheyAreTold) {
    uint8_t *data = buffer.data();
    EXPECT_EQ(p4pd_utils_p4table_entry_prepare(data, 0xff, nullptr, 0, data, 49), 49);
    EXPECT_EQ(p4pd_utils_p4table_entry_prepare(data, 3, nullptr, 0, data, 49), 57);
    host.entry_offset = 3;
    uint16_t offset = 0;
    EXPECT_EQ(p4pd_utils_hash_table_entry_prepare(data, 0xff, 0, data, 24, 24, nullptr, 0, data, 24,
                                                  &offset),
              48);
    EXPECT_EQ(offset, 3);
    host.on_prepare = [](const call &) { return uint16_t{77}; };
    EXPECT_EQ(p4pd_utils_p4table_entry_prepare(data, 0xff, nullptr, 0, data, 49), 77);
}

TEST_F(RecordingHost, ReadsAnswerAnEmptyRowUnlessToldOtherwise) {
    uint16_t bits = 9;
    sdk::asic::pd::asicpd_table_entry_read(16, 1, buffer.data(), &bits, false);
    EXPECT_EQ(bits, 0);
    host.on_read = [](const char *name, uint32_t tableid, uint32_t index) {
        EXPECT_STREQ(name, "asicpd_table_entry_read");
        return read_answer{{static_cast<uint8_t>(tableid), static_cast<uint8_t>(index)}, {}, 16, 0};
    };
    sdk::asic::pd::asicpd_table_entry_read(16, 7, buffer.data(), &bits, false);
    EXPECT_EQ(bits, 16);
    EXPECT_THAT(buffer, testing::Contains(16));
    EXPECT_EQ(buffer[1], 7);
}

TEST_F(RecordingHost, ActionProgramsAreAnsweredPerTableAndAction) {
    EXPECT_EQ(sdk::asic::pd::asicpd_get_action_pc(37, 1), 0x21);
    host.on_action_pc = [](uint32_t tableid, uint8_t) { return static_cast<uint8_t>(tableid); };
    EXPECT_EQ(sdk::asic::pd::asicpd_get_action_pc(37, 1), 37);
    EXPECT_THAT(host.text(), ElementsAre("asicpd_get_action_pc 37 1", "asicpd_get_action_pc 37 1"));
}

TEST_F(RecordingHost, TraceMessagesAreExpanded) {
    g_trace_cb(11, 1, "[%s:%u] %s %u", "file", 12u, "row", 7u);
    const std::vector<trace_message> messages = host.messages();
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].level, 11);
    EXPECT_EQ(messages[0].module, 1);
    EXPECT_EQ(messages[0].format, "[%s:%u] %s %u");
    EXPECT_EQ(messages[0].path, "file");
    EXPECT_EQ(messages[0].line, 12u);
    EXPECT_EQ(messages[0].text, "[file:12] row 7");
}

// An expectation must fail for each way in which a call can differ.
TEST_F(RecordingHost, ExpectationsTellCallsApart) {
    std::array<uint8_t, 8> other{};
    host.name_buffer("record", buffer.data(), buffer.size());
    p4pd_utils_copy_le_src_to_be_dest(other.data(), 3, buffer.data() + 1, 0, 11);
    p4pd_utils_swizzle_bytes(other.data(), 11);
    const auto want = [](std::string name, expected_call swizzle) {
        return expected{{std::move(name), {at("image"), 3, at("record", 1), 0, 11}},
                        std::move(swizzle)};
    };
    const char *copy = "p4pd_utils_copy_le_src_to_be_dest";
    const char *swizzle = "p4pd_utils_swizzle_bytes";
    EXPECT_TRUE(calls_are(want(copy, {swizzle, {at("image"), 11}})));
    EXPECT_FALSE(calls_are(want(swizzle, {swizzle, {at("image"), 11}}))) << "another routine";
    EXPECT_FALSE(calls_are(want(copy, {swizzle, {at("image"), 12}}))) << "another number";
    EXPECT_FALSE(calls_are(want(copy, {swizzle, {at("mask"), 11}}))) << "one buffer, two names";
    EXPECT_FALSE(calls_are(want(copy, {swizzle, {at("image", 1), 11}}))) << "another offset";
    EXPECT_FALSE(calls_are(want(copy, {swizzle, {at("record"), 11}}))) << "another buffer";
    EXPECT_FALSE(calls_are(want(copy, {swizzle, {null, 11}}))) << "an address, not null";
    EXPECT_FALSE(calls_are({{copy, {at("image"), 3, at("record", 1), 0, 11}}})) << "too few";
    expected more = want(copy, {swizzle, {at("image"), 11}});
    more.push_back({swizzle, {at("image"), 11}});
    EXPECT_FALSE(calls_are(more)) << "too many";
}

TEST_F(RecordingHost, ABufferServesAsAnotherOnceItsNameIsLetGo) {
    std::array<uint8_t, 8> other{};
    p4pd_utils_swizzle_bytes(other.data(), 8);
    p4pd_utils_swizzle_bytes(other.data(), 8);
    const expected_call one{"p4pd_utils_swizzle_bytes", {at("one"), 8}};
    const expected_call two{"p4pd_utils_swizzle_bytes", {at("two"), 8}};
    EXPECT_FALSE(calls_are({one, two}));
    EXPECT_TRUE(calls_are({one, let_go("one"), two}));
    EXPECT_TRUE(calls_are({let_go("never used"), one, one}));
    EXPECT_FALSE(calls_are({one, let_go("two"), two}));
    EXPECT_FALSE(calls_are({one, let_go("one")})) << "one call too few is expected";
}

TEST_F(RecordingHost, ExpectationsTellBytesApart) {
    std::array<uint8_t, 8> other{0x12, 0x34};
    p4pd_utils_swizzle_bytes(other.data(), 16);
    const auto bytes = [](std::vector<uint8_t> held) {
        return expected{{"p4pd_utils_swizzle_bytes", {holding{std::move(held)}, 16}}};
    };
    EXPECT_TRUE(calls_are(bytes({0x12, 0x34})));
    EXPECT_FALSE(calls_are(bytes({0x12, 0x35}))) << "another byte";
    EXPECT_FALSE(calls_are(bytes({0x12}))) << "too few";
    EXPECT_FALSE(calls_are(bytes({0x12, 0x34, 0}))) << "too many";
}

}  // namespace
}  // namespace halden::test
