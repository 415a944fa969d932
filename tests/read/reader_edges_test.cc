// Reads that do not end in a whole entry: unknown tables, half-empty TCAM entries, actions that the
// table has not, records that a kind does not touch.

#include "tests/read/reader_fixture.h"

namespace halden::read_tests {
namespace {

using test::calls_are;

class ReaderEdges : public ReaderTest {};

TEST_F(ReaderEdges, AnUnknownTableAnswersMinusOneAndReadsNothing) {
    for (const uint32_t id : {0u, 49u, 50u, 256u + 16u, 0x80000010u, UINT32_MAX}) {
        EXPECT_EQ(p4pd_entry_read(id, 0, key.data(), mask.data(), data.data(), nullptr, true), -1)
            << id;
        EXPECT_TRUE(host.calls().empty()) << id;
    }
    EXPECT_EQ(key, untouched);
    EXPECT_EQ(mask, untouched);
    EXPECT_EQ(data, untouched);
}

// An index table row that the ASIC layer reports with length 0.
TEST_F(ReaderEdges, AnEmptyIndexRowAnswersZeroAndLeavesTheRecordAsItWas) {
    for (uint32_t id = 16; id <= 40; ++id) {
        read_of read = full_read(id);
        read.bits = 0;
        answer_with(read, bytes(64, 0xff));
        EXPECT_EQ(perform(read), 0) << table_name(id);
        EXPECT_EQ(data, untouched) << table_name(id);
    }
}

// A single-action index table, whatever its row begins with.
TEST_F(ReaderEdges, ASingleActionIndexTableAlwaysReportsActionZero) {
    for (uint32_t id = 16; id <= 40; ++id) {
        if (has_programs(id)) continue;
        for (const uint8_t first : {uint8_t{0}, uint8_t{1}, uint8_t{0x80}, uint8_t{0xff}}) {
            fill_records();
            read_of read = full_read(id);
            read.program = first;
            answer_with(read, {});
            EXPECT_EQ(perform(read), 0);
            EXPECT_EQ(data[0], 0) << table_name(id) << ", first byte " << unsigned{first};
            for (const test::call &call : host.calls())
                EXPECT_NE(call.name, "asicpd_get_action_id") << table_name(id);
        }
    }
}

// An empty TCAM row: nothing is decoded and the data row is not read.
TEST_F(ReaderEdges, AnEmptyTcamRowFailsWithNothingDecoded) {
    for (uint32_t id = 7; id <= 15; ++id) {
        read_of read = full_read(id);
        read.width = 0;
        answer_with(read, bytes(64, 0xff), bytes(64, 0xff), bytes(64, 0xff));
        EXPECT_EQ(perform(read), -1) << table_name(id);
        EXPECT_EQ(host.calls().size(), 1u) << table_name(id);
        EXPECT_EQ(key, untouched);
        EXPECT_EQ(mask, untouched);
        EXPECT_EQ(data, untouched);
    }
}

// Key and mask come from the TCAM although the data row is empty; the data stays as it was.
TEST_F(ReaderEdges, ATcamEntryWithAnEmptyDataRowHasItsKeyAndMaskAlone) {
    for (uint32_t id = 7; id <= 15; ++id) {
        fill_records();
        read_of read = full_read(id);
        read.bits = 0;
        answer_with(read, {});
        EXPECT_EQ(perform(read), 0) << table_name(id);
        EXPECT_TRUE(calls_are(calls_of(read))) << table_name(id);
        EXPECT_NE(key, untouched);
        EXPECT_NE(mask, untouched);
        EXPECT_EQ(data, untouched) << table_name(id);
    }
}

// The data of an overflow table's row is asked for by its own id and the TCAM's own index.
TEST_F(ReaderEdges, AnOverflowTablesDataIsReadAtThePlainIndex) {
    for (const uint32_t id : {7u, 10u, 11u, 14u}) {
        read_of read = full_read(id);
        read.index = 5;
        answer_with(read, {});
        EXPECT_EQ(perform(read), 0);
        size_t rows = 0;
        for (const test::call &call : host.calls()) {
            if (call.name != "asicpd_table_entry_read") continue;
            ++rows;
            EXPECT_EQ(call.arguments[0].number, id);
            EXPECT_EQ(call.arguments[1].number, 5u);
        }
        EXPECT_EQ(rows, 1u) << table_name(id);
    }
}

// A program that belongs to no action of the table: its answer is kept, nothing is unpacked.
TEST_F(ReaderEdges, AnActionTheTableHasNotIsStoredWithoutData) {
    for (const uint32_t id : {12u, 13u, 15u, 22u, 23u, 37u, 38u})
        for (const uint32_t action : {reference::table_of(id).actions, 100u, 255u}) {
            fill_records();
            const read_of read = full_read(id, action);
            answer_with(read, {});
            EXPECT_EQ(perform(read), 0);
            EXPECT_TRUE(calls_are(calls_of(read))) << table_name(id);
            bytes want = untouched;
            want[0] = static_cast<uint8_t>(action);
            EXPECT_EQ(data, want) << table_name(id) << ", action " << action;
        }
}

// The program counter is the row's first byte, whatever its value.
TEST_F(ReaderEdges, TheFirstByteOfTheRowIsTheProgram) {
    for (const uint32_t id : {12u, 13u, 15u, 22u, 23u, 37u, 38u})
        for (unsigned program = 0; program < 256; ++program) {
            read_of read = full_read(id);
            read.program = static_cast<uint8_t>(program);
            answer_with(read, {});
            EXPECT_EQ(perform(read), 0);
            EXPECT_TRUE(calls_are(calls_of(read))) << table_name(id) << ", program " << program;
        }
}

// Null for the records that the table's kind has not.
TEST_F(ReaderEdges, RecordsTheTableHasNotMayBeNull) {
    for (uint32_t id = 1; id <= 48; ++id) {
        const reference::table &facts = reference::table_of(id);
        if (facts.has_tcam()) continue;
        const read_of read = full_read(id);
        answer_with(read, {});
        EXPECT_EQ(p4pd_entry_read(id, 0, facts.has_key() ? key.data() : nullptr, nullptr,
                                  data.data(), nullptr, false),
                  0)
            << table_name(id);
    }
}

// The extra output goes through to the TCAM read as it is.
TEST_F(ReaderEdges, TheExtraOutputReachesTheTcamReadAlone) {
    for (void *const given : {static_cast<void *>(nullptr), static_cast<void *>(&extra)})
        for (uint32_t id = 1; id <= 48; ++id) {
            const read_of read = full_read(id);
            answer_with(read, {});
            host.forget_calls();
            EXPECT_EQ(p4pd_entry_read(id, 0, key.data(), mask.data(), data.data(), given, false),
                      0);
            const test::call first = host.calls().at(0);
            if (!reference::table_of(id).has_tcam()) {
                EXPECT_NE(first.name, "asicpd_tcam_table_entry_read");
                continue;
            }
            ASSERT_EQ(first.name, "asicpd_tcam_table_entry_read");
            EXPECT_EQ(first.arguments[5].pointer, given) << table_name(id);
        }
}

}  // namespace
}  // namespace halden::read_tests
