// Real errors of the formatting library, each in a child process: the stack trace comes first, then
// the library's usual exception; a broken precondition aborts.

#include "log/fmt_hooks.h"

#include <spdlog/spdlog.h>

#include <exception>
#include <functional>
#include <string>

#include "gtest/gtest.h"

namespace {

struct bad_format {
    const char *name;
    std::function<std::string()> run;
    const char *text;  // of the exception
};

void run_and_report(const bad_format &bad) {
    try {
        bad.run();
    } catch (const fmt::format_error &error) {
        std::fprintf(stderr, "then thrown: %s\n", error.what());
        std::exit(3);
    }
    std::exit(0);
}

class FmtErrors : public testing::TestWithParam<bad_format> {};

TEST_P(FmtErrors, PrintAStackTraceAndThenThrow) {
    // One dump, at least one frame, and only then the exception.
    EXPECT_EXIT(run_and_report(GetParam()), testing::ExitedWithCode(3),
                std::string("^stack trace:\n  .*\n.*then thrown: .*") + GetParam().text);
}

const char *no_text = nullptr;

INSTANTIATE_TEST_SUITE_P(
    All, FmtErrors,
    testing::Values(
        bad_format{"a_null_string", [] { return fmt::format("{}", no_text); },
                   "string pointer is null"},
        bad_format{"a_number_format_for_a_text",
                   [] { return fmt::format(fmt::runtime("{:+}"), "text"); },
                   "requires numeric argument"},
        bad_format{"a_bad_type", [] { return fmt::format(fmt::runtime("{:y}"), 1); },
                   "invalid type specifier"},
        bad_format{"a_missing_argument", [] { return fmt::format(fmt::runtime("{} {}"), 1); },
                   "argument not found"},
        bad_format{"an_open_brace", [] { return fmt::format(fmt::runtime("{")); },
                   "invalid format string"},
        bad_format{"a_closing_brace", [] { return fmt::format(fmt::runtime("}")); },
                   "unmatched '}' in format string"},
        bad_format{"a_negative_width", [] { return fmt::format(fmt::runtime("{:{}}"), 1, -1); },
                   "negative width"},
        bad_format{"a_text_as_width", [] { return fmt::format(fmt::runtime("{:{}}"), 1, "w"); },
                   "width is not integer"},
        bad_format{"a_negative_precision",
                   [] { return fmt::format(fmt::runtime("{:.{}}"), 1.0, -1); },
                   "negative precision"},
        bad_format{"a_width_without_end",
                   [] { return fmt::format(fmt::runtime("{:99999999999}"), 1); },
                   "number is too big"}),
    [](const auto &tested) { return std::string(tested.param.name); });

TEST(FmtErrorsOfALogger, GoThroughTheSameHook) {
    EXPECT_EXIT(
        {
            spdlog::set_error_handler([](const std::string &text) {
                std::fprintf(stderr, "then handled: %s\n", text.c_str());
                std::exit(4);
            });
            spdlog::error(fmt::runtime("{} {}"), 1);
            std::exit(0);
        },
        testing::ExitedWithCode(4), "^stack trace:\n  .*\n.*then handled: argument not found");
}

TEST(FmtAssertions, ANegativeValueAbortsInEveryBuild) {
    EXPECT_DEATH(static_cast<void>(fmt::detail::to_unsigned(-1)),
                 "to_unsigned.*Assertion `\\(value >= 0\\) && \"negative value\"' failed");
    EXPECT_EQ(fmt::detail::to_unsigned(7), 7u);
}

TEST(FmtSuccess, PrintsNothing) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(fmt::format("{:>4}|{}", 7, "x"), "   7|x");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

}  // namespace
