// The debug dump: p4pd_entry_read with a pointer as its last argument.

#include <unistd.h>

#include <cstdio>
#include <string>

#include "tests/read/reader_fixture.h"

namespace halden::read_tests {
namespace {

using test::anything;
using test::at;
using test::call;
using test::calls_are;

constexpr uint32_t every_row = 0xffffffff;

// Standard output as a file, with a piece of text in the stream's buffer that only a flush brings
// there.
class captured_stdout {
  public:
    captured_stdout() {
        std::fflush(stdout);
        saved_ = dup(STDOUT_FILENO);
        file_ = std::tmpfile();
        dup2(fileno(file_), STDOUT_FILENO);
        std::fputs("pending;", stdout);
    }
    ~captured_stdout() {
        std::fflush(stdout);
        dup2(saved_, STDOUT_FILENO);
        close(saved_);
        std::fclose(file_);
    }
    captured_stdout(const captured_stdout &) = delete;
    captured_stdout &operator=(const captured_stdout &) = delete;

    // What has reached the file so far.
    std::string text() const {
        std::string out(65536, '\0');
        const ssize_t size = pread(fileno(file_), out.data(), out.size(), 0);
        out.resize(size < 0 ? 0 : static_cast<size_t>(size));
        return out;
    }

  private:
    int saved_;
    std::FILE *file_;
};

class Dump : public ReaderTest {
  protected:
    Dump() {
        host.on_decode = [this](const call &made, char *buffer, uint16_t) {
            std::snprintf(buffer, 64, "row %u", static_cast<unsigned>(made.arguments[1].number));
            return decode_result;
        };
    }
    void set_depth(uint32_t depth, p4pd_error_t answer = 0) {
        host.on_global_properties = [=](uint32_t id, void *record) {
            auto *properties = static_cast<p4pd_table_properties_t *>(record);
            properties->tableid = id;
            properties->tabledepth = depth;
            return answer;
        };
    }
    // The last two arguments are not read, so they point nowhere.
    p4pd_error_t dump(uint32_t id, uint32_t index) {
        return p4pd_entry_read(id, index, key.data(), mask.data(), data.data(),
                               reinterpret_cast<void *>(8), reinterpret_cast<int *>(8));
    }
    static void add_row(test::expected &calls, uint32_t id, uint32_t row) {
        calls.push_back({"p4pd_global_entry_read",
                         {id, row, at("key"), at("mask"), at("data"), test::null, true}});
        calls.push_back({"p4pd_global_table_ds_decoded_string_get",
                         {id, row, at("key"), at("mask"), at("data"), at("text"), 2048}});
    }
    p4pd_error_t decode_result = 0;
};

TEST_F(Dump, OfOneRowReadsItThroughTheHostAndPrintsIt) {
    captured_stdout out;
    for (uint32_t id = 1; id <= 48; ++id) {
        host.forget_calls();
        EXPECT_EQ(dump(id, id * 3), 0);
        test::expected want;
        add_row(want, id, id * 3);
        EXPECT_TRUE(calls_are(want)) << table_name(id);
    }
    std::string want = "pending;";
    for (uint32_t id = 1; id <= 48; ++id) want += "row " + std::to_string(id * 3) + "\n";
    EXPECT_EQ(out.text(), want) << "flushed";
}

// An index of all ones: every row, as many as the host says.
TEST_F(Dump, OfEveryRowTakesTheDepthFromTheHost) {
    captured_stdout out;
    set_depth(3);
    EXPECT_EQ(dump(16, every_row), 0);
    test::expected want = {{"p4pd_global_table_properties_get", {16, anything}}};
    for (uint32_t row = 0; row < 3; ++row) add_row(want, 16, row);
    EXPECT_TRUE(calls_are(want));
    EXPECT_EQ(out.text(), "pending;row 0\nrow 1\nrow 2\n");
}

// The row before all ones is a row like any other.
TEST_F(Dump, OfTheLastIndexButOneIsOneRow) {
    captured_stdout out;
    EXPECT_EQ(dump(16, 0xfffffffe), 0);
    test::expected want;
    add_row(want, 16, 0xfffffffe);
    EXPECT_TRUE(calls_are(want));
    EXPECT_EQ(out.text(), "pending;row 4294967294\n");
}

// A depth of 0: standard output is flushed, the result is 0.
TEST_F(Dump, OfATableWithoutRowsFlushesAndSucceeds) {
    captured_stdout out;
    set_depth(0);
    EXPECT_EQ(dump(16, every_row), 0);
    EXPECT_TRUE(calls_are({{"p4pd_global_table_properties_get", {16, anything}}}));
    EXPECT_EQ(out.text(), "pending;");
}

TEST_F(Dump, FailsWhenTheHostDoesNotKnowTheTable) {
    for (const p4pd_error_t answer : {-1, 1, 5}) {
        captured_stdout out;
        host.forget_calls();
        set_depth(3, answer);
        EXPECT_EQ(dump(16, every_row), -1);
        EXPECT_TRUE(calls_are({{"p4pd_global_table_properties_get", {16, anything}}}));
        EXPECT_EQ(out.text(), "") << "not flushed";
    }
}

// A row that cannot be read ends the dump at once: nothing is decoded or printed for it.
TEST_F(Dump, EndsAtTheFirstRowThatFails) {
    for (const p4pd_error_t answer : {-1, 1, 9}) {
        captured_stdout out;
        host.forget_calls();
        set_depth(5);
        host.on_global_entry_read = [=](const call &made) {
            return made.arguments[1].number == 2 ? answer : 0;
        };
        EXPECT_EQ(dump(21, every_row), -1);
        test::expected want = {{"p4pd_global_table_properties_get", {21, anything}}};
        add_row(want, 21, 0);
        add_row(want, 21, 1);
        want.push_back({"p4pd_global_entry_read",
                        {21, 2, at("key"), at("mask"), at("data"), test::null, true}});
        EXPECT_TRUE(calls_are(want));
        std::fflush(stdout);
        EXPECT_EQ(out.text(), "pending;row 0\nrow 1\n");
    }
}

TEST_F(Dump, DoesNotFlushWhenItsOnlyRowFails) {
    captured_stdout out;
    host.on_global_entry_read = [](const call &) { return -1; };
    EXPECT_EQ(dump(3, 0), -1);
    EXPECT_EQ(out.text(), "");
}

// Which ids exist is for the host to say: this program's own ids are not looked at.
TEST_F(Dump, AsksTheHostAboutAnyTableId) {
    captured_stdout out;
    set_depth(1);
    for (const uint32_t id : {0u, 49u, UINT32_MAX}) {
        host.forget_calls();
        EXPECT_EQ(dump(id, 4), 0);
        test::expected want;
        add_row(want, id, 4);
        EXPECT_TRUE(calls_are(want)) << id;
        host.forget_calls();
        EXPECT_EQ(dump(id, every_row), 0);
        want = {{"p4pd_global_table_properties_get", {id, anything}}};
        add_row(want, id, 0);
        EXPECT_TRUE(calls_are(want)) << id;
    }
}

// What the decoder answers is not looked at; its text is printed, even when it is empty.
TEST_F(Dump, PrintsTheTextWhateverTheDecoderAnswers) {
    captured_stdout out;
    decode_result = -1;
    EXPECT_EQ(dump(16, 1), 0);
    host.on_decode = [](const call &, char *, uint16_t) { return -1; };
    EXPECT_EQ(dump(16, 2), 0);
    EXPECT_EQ(out.text(), "pending;row 1\n\n");
}

// The text is cleared for each row, so a short one shows nothing of the one before.
TEST_F(Dump, ClearsTheTextForEachRow) {
    captured_stdout out;
    set_depth(3);
    unsigned rows = 0;
    host.on_decode = [&](const call &, char *buffer, uint16_t size) {
        EXPECT_EQ(std::string(buffer, size), std::string(size, '\0')) << "row " << rows;
        ++rows;
        std::fill_n(buffer, size - 1, 'x');
        return 0;
    };
    EXPECT_EQ(dump(16, every_row), 0);
    EXPECT_EQ(rows, 3u);
    const std::string line = std::string(2047, 'x') + "\n";
    EXPECT_EQ(out.text(), "pending;" + line + line + line);
}

// Null records go to the host as they are.
TEST_F(Dump, HandsItsRecordsThroughUntouched) {
    captured_stdout out;
    EXPECT_EQ(
        p4pd_entry_read(41, 1, nullptr, nullptr, data.data(), nullptr, static_cast<int *>(nullptr)),
        0);
    EXPECT_TRUE(calls_are({
        {"p4pd_global_entry_read", {41, 1, test::null, test::null, at("data"), test::null, true}},
        {"p4pd_global_table_ds_decoded_string_get",
         {41, 1, test::null, test::null, at("data"), at("text"), 2048}},
    }));
    EXPECT_EQ(data, untouched);
}

}  // namespace
}  // namespace halden::read_tests
