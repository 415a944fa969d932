// The exact imported calls of every table's reader, for every action, for rows that are empty, and
// what is passed through.

#include "tests/read/reader_fixture.h"

namespace halden::read_tests {
namespace {

using test::calls_are;

class ReaderCalls : public ReaderTest, public testing::WithParamInterface<uint32_t> {
  protected:
    uint32_t id() const { return GetParam(); }
    const reference::table &facts() const { return reference::table_of(id()); }
};

TEST_P(ReaderCalls, OfARowOfEveryAction) {
    for (uint32_t action = 0; action < facts().actions; ++action) {
        const read_of read = full_read(id(), action);
        answer_with(read, {});
        EXPECT_EQ(perform(read), 0);
        EXPECT_TRUE(calls_are(calls_of(read))) << "action " << action;
    }
}

// The first and the last row a caller can name; the index is not checked here.
TEST_P(ReaderCalls, TakeAnyIndexAndEitherFlag) {
    for (const uint32_t index : {0u, 1u, 4096u, 0x7fffffffu, UINT32_MAX})
        for (const bool flag : {false, true}) {
            read_of read = full_read(id());
            read.index = index;
            read.flag = flag;
            answer_with(read, {});
            EXPECT_EQ(perform(read), 0);
            EXPECT_TRUE(calls_are(calls_of(read))) << "index " << index << ", flag " << flag;
        }
}

// Index and keyless rows are swizzled over the length that came back, TCAM images and their data
// rows over whole 16-bit words of it, HBM rows not at all.
TEST_P(ReaderCalls, OfRowsOfAnyLength) {
    for (const unsigned bits :
         {1u, 7u, 8u, 9u, 15u, 16u, 17u, 31u, 32u, 33u, 511u, 512u, 8191u, 8192u}) {
        read_of read = full_read(id());
        read.bits = read.width = static_cast<uint16_t>(bits);
        answer_with(read, {});
        EXPECT_EQ(perform(read), 0);
        EXPECT_TRUE(calls_are(calls_of(read))) << bits << " bits";
    }
}

// A row of length 0: nothing is unpacked. An empty TCAM row is the one empty read that fails, and
// its data row is not read.
TEST_P(ReaderCalls, OfAnEmptyRow) {
    read_of read = full_read(id());
    read.bits = read.width = 0;
    answer_with(read, {});
    EXPECT_EQ(perform(read), facts().has_tcam() ? -1 : 0);
    EXPECT_TRUE(calls_are(calls_of(read)));
    EXPECT_EQ(key, untouched);
    EXPECT_EQ(mask, untouched);
    EXPECT_EQ(data, untouched);
}

// Results of the ASIC layer other than the length are not looked at.
TEST_P(ReaderCalls, DoNotDependOnTheResultsOfTheAsicLayer) {
    for (const int answered : {-1, 1, 255}) {
        result = answered;
        read_of read = full_read(id());
        answer_with(read, {});
        EXPECT_EQ(perform(read), 0);
        EXPECT_TRUE(calls_are(calls_of(read))) << "result " << answered;
        read.bits = read.width = 0;
        answer_with(read, {});
        EXPECT_EQ(perform(read), facts().has_tcam() ? -1 : 0);
        EXPECT_TRUE(calls_are(calls_of(read))) << "result " << answered << ", empty";
    }
}

// Buffers are zero before a row is read into them: 1024 bytes, 6144 for the wide-key rows.
TEST_P(ReaderCalls, HandZeroedBuffersToTheAsicLayer) {
    size_t buffers = 0;
    host.on_call = [&](const test::call &call) {
        if (!call.name.starts_with("asicpd_") || !call.name.ends_with("_entry_read")) return;
        const size_t size = facts().kind == kind::flow ? 6144 : 1024;
        const size_t images = call.name == "asicpd_tcam_table_entry_read" ? 2 : 1;
        for (size_t i = 0; i < images; ++i, ++buffers) {
            const auto *at = static_cast<const uint8_t *>(call.arguments[2 + i].pointer);
            EXPECT_EQ(bytes(at, at + size), bytes(size)) << call.name;
        }
    };
    const read_of read = full_read(id());
    answer_with(read, bytes(1024, 0xff), bytes(1024, 0xff), bytes(1024, 0xff));
    for (int i = 0; i < 2; ++i) EXPECT_EQ(perform(read), 0);
    EXPECT_EQ(buffers, facts().has_tcam() ? 6u : 2u);
}

INSTANTIATE_TEST_SUITE_P(Tables, ReaderCalls, testing::Range(1u, 49u),
                         [](const auto &tested) { return table_name(tested.param); });

// The expectations above are made of lists; here two are written out whole.
class ReaderCallsWrittenOut : public ReaderTest {};

TEST_F(ReaderCallsWrittenOut, LifMapping) {
    using test::at;
    const read_of read = {16, 7, 0, 0, 49, 0, true};
    answer_with(read, {});
    EXPECT_EQ(perform(read), 0);
    EXPECT_TRUE(calls_are({
        {"asicpd_table_entry_read", {16, 7, at("row"), at("bits"), true}},
        {"p4pd_utils_swizzle_bytes", {at("row"), 49}},
        {"p4pd_utils_copy_be_adata_to_le_dest", {at("data", 1), 0, at("row"), 0, 11}},
        {"p4pd_utils_copy_be_adata_to_le_dest", {at("data", 3), 0, at("row"), 11, 1}},
        {"p4pd_utils_copy_be_adata_to_le_dest", {at("data", 4), 0, at("row"), 12, 1}},
        {"p4pd_utils_copy_be_adata_to_le_dest", {at("data", 5), 0, at("row"), 13, 11}},
        {"p4pd_utils_copy_be_adata_to_le_dest", {at("data", 7), 0, at("row"), 24, 12}},
        {"p4pd_utils_copy_be_adata_to_le_dest", {at("data", 9), 0, at("row"), 36, 12}},
        {"p4pd_utils_copy_be_adata_to_le_dest", {at("data", 11), 0, at("row"), 48, 1}},
    }));
}

TEST_F(ReaderCallsWrittenOut, FlowKeyNative) {
    using test::at;
    const read_of read = {12, 3, 2, 0x44, 20, 3, false};
    answer_with(read, {});
    EXPECT_EQ(perform(read), 0);
    EXPECT_TRUE(calls_are({
        {"asicpd_tcam_table_entry_read",
         {12, 3, at("x"), at("y"), at("width"), at("extra"), false}},
        {"p4pd_utils_swizzle_bytes", {at("x"), 16}},
        {"p4pd_utils_swizzle_bytes", {at("y"), 16}},
        {"p4pd_utils_copy_single_bit", {at("key"), 0, at("x"), 7, 1}},
        {"p4pd_utils_copy_single_bit", {at("key", 1), 0, at("x"), 6, 1}},
        {"p4pd_utils_copy_single_bit", {at("key", 2), 0, at("x"), 5, 1}},
        {"p4pd_utils_copy_single_bit", {at("mask"), 0, at("y"), 7, 1}},
        {"p4pd_utils_copy_single_bit", {at("mask", 1), 0, at("y"), 6, 1}},
        {"p4pd_utils_copy_single_bit", {at("mask", 2), 0, at("y"), 5, 1}},
        {"asicpd_table_entry_read", {12, 3, at("row"), at("bits"), false}},
        {"p4pd_utils_swizzle_bytes", {at("row"), 32}},
        {"asicpd_get_action_id", {12, 0x44}},
        {"p4pd_utils_copy_be_adata_to_le_dest", {at("data", 1), 0, at("row", 1), 0, 6}},
        {"p4pd_utils_copy_be_adata_to_le_dest", {at("data", 2), 0, at("row", 1), 6, 6}},
    }));
    EXPECT_EQ(data[0], 2);
}

}  // namespace
}  // namespace halden::read_tests
