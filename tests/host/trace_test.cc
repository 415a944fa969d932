// Where messages go: expanded as printf does, by level, to a file or to standard error.

#include "host/trace/trace.h"

#include "sdk/trace.h"
#include "tests/support/scratch_directory.h"

#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

namespace trace = halden::host::trace;
using halden::test::scratch_directory;
using halden::test::text_of;
using halden::test::write_text;
using testing::MatchesRegex;

constexpr const char *source = "p4gen/halden/src/tev_tbl";

class Trace : public testing::Test {
  protected:
    void SetUp() override {
        trace::set_level("info");
        trace::set_pattern("%l|%v");
        ASSERT_TRUE(trace::set_file(file_));
    }
    void TearDown() override { trace::set_file({}); }
    std::string written() const {
        trace::flush();
        return text_of(file_);
    }

    scratch_directory scratch_;
    std::string file_ = scratch_.file("log");
};

TEST_F(Trace, TheLibrarysMessageIsExpanded) {
    g_trace_cb(11, 1, "[%s:%u] Table lif_mapping key %lu is beyond range", source, 120u, 2047ul);
    EXPECT_EQ(written(),
              "error|[p4gen/halden/src/tev_tbl:120] Table lif_mapping key 2047 is beyond range\n");
}

TEST_F(Trace, ABigKeyKeepsItsSixtyFourBits) {
    g_trace_cb(11, 1, "[%s:%u] Table flow_info key %lu is beyond range", source, 7u,
               18446744073709551615ul);
    EXPECT_EQ(written(),
              "error|[p4gen/halden/src/tev_tbl:7] Table flow_info key "
              "18446744073709551615 is beyond range\n");
}

TEST_F(Trace, TheCallAnswersTheLengthOfTheText) {
    EXPECT_EQ(g_trace_cb(11, 1, "[%s:%u] spec is null", "a", 9u), 18);
}

// A message is data: braces are no placeholders of the logger's own.
TEST_F(Trace, BracesAndPercentSignsStay) {
    g_trace_cb(11, 1, "100%% {} {0} %s", "{:d}");
    EXPECT_EQ(written(), "error|100% {} {0} {:d}\n");
}

TEST_F(Trace, LongMessagesAreWhole) {
    for (size_t length : {size_t{510}, size_t{511}, size_t{512}, size_t{513}, size_t{5000}}) {
        ASSERT_TRUE(trace::set_file(scratch_.file(std::to_string(length))));
        const std::string text(length, 'x');
        EXPECT_EQ(g_trace_cb(11, 1, "%s", text.c_str()), static_cast<int>(length));
        trace::flush();
        EXPECT_EQ(text_of(scratch_.file(std::to_string(length))), "error|" + text + "\n");
    }
}

TEST_F(Trace, OtherLevelsOfTheLibraryAreInformation) {
    g_trace_cb(10, 1, "one");
    g_trace_cb(11, 1, "two");
    EXPECT_EQ(written(), "info|one\nerror|two\n");
}

TEST_F(Trace, TheAdaptersOwnMessagesGoTheSameWay) {
    trace::error("table %u: index %u is beyond %u", 16u, 1024u, 1023u);
    EXPECT_EQ(written(), "error|table 16: index 1024 is beyond 1023\n");
}

TEST_F(Trace, TheLevelHoldsMessagesBack) {
    ASSERT_TRUE(trace::set_level("error"));
    g_trace_cb(10, 1, "information");
    g_trace_cb(11, 1, "error");
    ASSERT_TRUE(trace::set_level("critical"));
    g_trace_cb(11, 1, "error again");
    ASSERT_TRUE(trace::set_level("off"));
    g_trace_cb(11, 1, "and again");
    ASSERT_TRUE(trace::set_level("trace"));
    g_trace_cb(10, 1, "everything");
    EXPECT_EQ(written(), "error|error\ninfo|everything\n");
}

// A wide character that the locale cannot write: the format itself is better than nothing.
TEST_F(Trace, AMessageThatCannotBeExpandedIsWrittenAsItsFormat) {
    EXPECT_EQ(g_trace_cb(11, 1, "before %ls after", L"\x20ac"), -1);
    EXPECT_EQ(written(), "error|before %ls after\n");
}

TEST_F(Trace, ANameThatIsNoLevelChangesNothing) {
    ASSERT_TRUE(trace::set_level("error"));
    for (const char *name : {"", "err", "Error", "verbose", "0"})
        EXPECT_FALSE(trace::set_level(name)) << name;
    g_trace_cb(10, 1, "information");
    EXPECT_EQ(written(), "");
    for (const char *name : {"trace", "debug", "info", "warning", "error", "critical", "off"})
        EXPECT_TRUE(trace::set_level(name)) << name;
}

TEST_F(Trace, TheFileIsAppendedTo) {
    write_text(file_, "from before\n");
    ASSERT_TRUE(trace::set_file(file_));
    g_trace_cb(11, 1, "one");
    EXPECT_EQ(written(), "from before\nerror|one\n");
}

TEST_F(Trace, LevelAndPatternOutliveAChangeOfFile) {
    ASSERT_TRUE(trace::set_level("error"));
    trace::set_pattern("<%v>");
    const std::string second = scratch_.file("second");
    ASSERT_TRUE(trace::set_file(second));
    g_trace_cb(10, 1, "information");
    g_trace_cb(11, 1, "error");
    trace::flush();
    EXPECT_EQ(text_of(second), "<error>\n");
    EXPECT_EQ(text_of(file_), "");
}

TEST_F(Trace, AFileThatCannotBeOpenedChangesNothing) {
    write_text(scratch_.file("a file"), "");
    EXPECT_FALSE(trace::set_file(scratch_.file("a file") + "/log"));
    g_trace_cb(11, 1, "one");
    EXPECT_EQ(written(), "error|one\n");
}

// A failure must not be lost with the process: errors reach the file without a flush.
TEST_F(Trace, AnErrorIsInTheFileAtOnce) {
    g_trace_cb(11, 1, "one");
    EXPECT_EQ(text_of(file_), "error|one\n");
}

TEST_F(Trace, LinesOfManyThreadsStayWhole) {
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < 4; ++i)
        threads.emplace_back([i] {
            for (unsigned n = 0; n < 200; ++n) g_trace_cb(11, 1, "thread %u says %u", i, n);
        });
    for (std::thread &each : threads) each.join();
    const std::string all = written();
    unsigned lines = 0;
    for (size_t at = 0; at < all.size(); ++lines) {
        const size_t end = all.find('\n', at);
        ASSERT_NE(end, std::string::npos);
        EXPECT_THAT(all.substr(at, end - at), MatchesRegex("error.thread [0-3] says [0-9]+"));
        at = end + 1;
    }
    EXPECT_EQ(lines, 800u);
}

}  // namespace
