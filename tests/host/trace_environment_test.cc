// What the environment says about the trace. It is read once, at the first message, so each case is
// a process that has logged nothing yet.

#include "host/trace/trace.h"

#include "sdk/trace.h"
#include "tests/support/scratch_directory.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <functional>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

namespace trace = halden::host::trace;
using halden::test::scratch_directory;
using halden::test::text_of;
using testing::IsEmpty;
using testing::MatchesRegex;

class TraceEnvironment : public testing::Test {
  protected:
    // Runs `what` in a process without any of the variables; its standard error is kept.
    void in_a_fresh_process(const std::function<void()> &what) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            for (const char *name : {"HALDEN_LOG_LEVEL", "HALDEN_LOG_PATTERN", "HALDEN_LOG_FILE"})
                unsetenv(name);
            const int file = open(scratch_.file("stderr").c_str(), O_WRONLY | O_CREAT, 0644);
            if (file < 0 || dup2(file, STDERR_FILENO) < 0) _exit(1);
            what();
            trace::flush();
            _exit(0);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFEXITED(status));
        ASSERT_EQ(WEXITSTATUS(status), 0);
    }
    std::string standard_error() const { return text_of(scratch_.file("stderr")); }
    void set(const char *name, const std::string &value) { setenv(name, value.c_str(), 1); }

    scratch_directory scratch_;
};

TEST_F(TraceEnvironment, WithoutVariablesMessagesGoToStandardErrorWithTheTime) {
    in_a_fresh_process([] {
        g_trace_cb(10, 1, "for your information");
        g_trace_cb(11, 1, "an error");
    });
    const std::string time = "[0-9]+-[0-9]+-[0-9]+ [0-9]+:[0-9]+:[0-9]+\\.[0-9]+ ";
    EXPECT_THAT(standard_error(),
                MatchesRegex(time + "info for your information\n" + time + "error an error\n"));
}

TEST_F(TraceEnvironment, LevelPatternAndFileAreTaken) {
    in_a_fresh_process([this] {
        set("HALDEN_LOG_LEVEL", "error");
        set("HALDEN_LOG_PATTERN", "(%l) %v");
        set("HALDEN_LOG_FILE", scratch_.file("log"));
        g_trace_cb(10, 1, "for your information");
        g_trace_cb(11, 1, "an error");
    });
    EXPECT_EQ(text_of(scratch_.file("log")), "(error) an error\n");
    EXPECT_THAT(standard_error(), IsEmpty());
}

TEST_F(TraceEnvironment, CallsOverruleTheVariables) {
    in_a_fresh_process([this] {
        set("HALDEN_LOG_LEVEL", "off");
        set("HALDEN_LOG_FILE", scratch_.file("log"));
        trace::set_level("info");
        trace::set_pattern("%v");
        trace::set_file(scratch_.file("other"));
        g_trace_cb(11, 1, "an error");
    });
    EXPECT_EQ(text_of(scratch_.file("other")), "an error\n");
    EXPECT_THAT(text_of(scratch_.file("log")), IsEmpty());
}

TEST_F(TraceEnvironment, ALevelThatIsNoneIsToldAndPassedOver) {
    in_a_fresh_process([this] {
        set("HALDEN_LOG_LEVEL", "loud");
        set("HALDEN_LOG_PATTERN", "%v");
        g_trace_cb(10, 1, "for your information");
    });
    EXPECT_THAT(standard_error(),
                MatchesRegex(".*warning HALDEN_LOG_LEVEL: 'loud' is none of trace, debug, info, "
                             "warning, error, critical, off\nfor your information\n"));
}

TEST_F(TraceEnvironment, AFileThatCannotBeOpenedIsToldAndStandardErrorTaken) {
    halden::test::write_text(scratch_.file("plain"), "");
    in_a_fresh_process([this] {
        set("HALDEN_LOG_PATTERN", "%v");
        set("HALDEN_LOG_FILE", scratch_.file("plain") + "/log");
        g_trace_cb(11, 1, "an error");
    });
    EXPECT_EQ(standard_error(), "HALDEN_LOG_FILE: '" + scratch_.file("plain") +
                                    "/log' cannot be opened for appending\nan error\n");
}

}  // namespace
