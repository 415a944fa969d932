// A formatter that fails, at each step of printing a flow entry: its negative result is the result,
// and no further step runs.

#include "ftl/flow_hash_entry.h"

#include <gtest/gtest.h>

#include <cstdarg>
#include <cstdio>

namespace {

int steps = 0;          // formatting steps so far
int failing_step = -1;  // this one fails

}  // namespace

// In front of the C library's own, also for the library under test; a library that is built with
// checked calls takes the second.
extern "C" {

__attribute__((visibility("default"), format(printf, 3, 4))) int snprintf(char *buffer, size_t size,
                                                                          const char *format,
                                                                          ...) noexcept {
    if (++steps == failing_step) return -5;
    va_list arguments;
    va_start(arguments, format);
    const int result = std::vsnprintf(buffer, size, format, arguments);
    va_end(arguments);
    return result;
}

__attribute__((visibility("default"), format(printf, 5, 6))) int __snprintf_chk(
    char *buffer, size_t size, int, size_t, const char *format, ...) noexcept {
    if (++steps == failing_step) return -5;
    va_list arguments;
    va_start(arguments, format);
    const int result = std::vsnprintf(buffer, size, format, arguments);
    va_end(arguments);
    return result;
}

}  // extern "C"

namespace {

class FlowHashEntryTextFailure : public testing::Test {
  protected:
    // Result of printing into a large buffer while step `failing` fails; 0 for none.
    int print(int failing) {
        buffer_.assign(4096, 0);
        steps = 0;
        failing_step = failing;
        const int result = entry_.tostr(buffer_.data(), static_cast<uint32_t>(buffer_.size()));
        failing_step = -1;
        return result;
    }
    std::string text() const { return buffer_.data(); }

    flow_hash_entry_t entry_;
    std::vector<char> buffer_;
};

TEST_F(FlowHashEntryTextFailure, EndsThePrintingAtEachStep) {
    const int of_data = print(0);
    EXPECT_EQ(steps, 3);
    const std::string whole = text();
    const size_t separator = whole.find(", data: ");
    ASSERT_NE(separator, std::string::npos);
    EXPECT_EQ(static_cast<size_t>(of_data), whole.size() - separator - 2);

    EXPECT_EQ(print(1), -5);
    EXPECT_EQ(steps, 1);
    EXPECT_EQ(text(), "");

    EXPECT_EQ(print(2), -5);
    EXPECT_EQ(steps, 2);
    EXPECT_EQ(text(), whole.substr(0, separator));

    EXPECT_EQ(print(3), -5);
    EXPECT_EQ(steps, 3);
    EXPECT_EQ(text(), whole.substr(0, separator + 2));
}

}  // namespace
