// The one shape of every report: what the host's trace function is handed, and when.

#include "log/trace.h"

#include "tests/support/recording_host.h"

#include <cstdarg>
#include <cstdint>

#include "gtest/gtest.h"

namespace {

using halden::test::recording_host;
using halden::test::trace_message;

TEST(Trace, AReportCarriesLevelModuleFormatPathAndItsOwnLine) {
    recording_host &host = recording_host::get();
    host.reset();
    HALDEN_TRACE_ERROR("some/source", "[%s:%u] key is null");
    const unsigned line = __LINE__ - 1;
    const std::vector<trace_message> sent = host.messages();
    ASSERT_EQ(sent.size(), 1u);
    EXPECT_EQ(sent[0].level, 11);
    EXPECT_EQ(sent[0].module, 1);
    EXPECT_EQ(sent[0].format, "[%s:%u] key is null");
    EXPECT_EQ(sent[0].path, "some/source");
    EXPECT_EQ(sent[0].line, line);
    EXPECT_EQ(sent[0].text, "[some/source:" + std::to_string(line) + "] key is null");
}

TEST(Trace, FurtherArgumentsAreSixtyFourBitsWide) {
    recording_host &host = recording_host::get();
    host.reset();
    HALDEN_TRACE_ERROR("p", "[%s:%u] key %lu", uint64_t{0x123456789abcdef0});
    ASSERT_EQ(host.messages().size(), 1u);
    EXPECT_NE(host.messages()[0].text.find("key 1311768467463790320"), std::string::npos);
}

unsigned other_calls = 0;
int other_callback(int, int, const char *, ...) {
    ++other_calls;
    return -1;  // the result is ignored
}

TEST(Trace, TheCallbackIsLoadedAtEachMessage) {
    recording_host::get().reset();
    const sdk_trace_cb_t before = g_trace_cb;
    g_trace_cb = other_callback;
    HALDEN_TRACE_ERROR("p", "[%s:%u] x");
    HALDEN_TRACE_ERROR("p", "[%s:%u] y");
    g_trace_cb = before;
    HALDEN_TRACE_ERROR("p", "[%s:%u] z");
    EXPECT_EQ(other_calls, 2u);
    EXPECT_EQ(recording_host::get().messages().size(), 1u);
}

TEST(Trace, MessagesAreComposedByTheCompiler) {
    static constexpr auto text = halden::log::message<5>("in the ", "l2seg", " table");
    static_assert(std::string_view(text.data()) == "[%s:%u] in the l2seg table");
    EXPECT_EQ(text.size(), 27u) << "the terminator is the last byte";
    EXPECT_EQ(text.back(), '\0');
}

}  // namespace
