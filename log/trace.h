#pragma once

// The one shape in which the library reports a failure. The host's trace function gets the format
// as it is, with the source path and the line of the report for the "[%s:%u] " that it opens with;
// the host expands it. So a report costs the library no formatting and no memory.
//
//     static constexpr auto refused = log::message("Could not update entry in ", t.name, " table");
//     HALDEN_TRACE_ERROR(source, refused.data());

#include <algorithm>
#include <array>
#include <string_view>

#include "sdk/trace.h"

namespace halden::log {

// The host's trace levels and modules that the library uses.
inline constexpr int error_level = 11;
inline constexpr int module = 1;

// "[%s:%u] " + before + name + after, terminated, composed by the compiler. `Name` is the length of
// the name, which has to be known for the size of the result.
template <size_t Name, size_t Before, size_t After>
consteval auto message(const char (&before)[Before], std::string_view name,
                       const char (&after)[After]) {
    constexpr std::string_view prefix = "[%s:%u] ";
    std::array<char, prefix.size() + Before - 1 + Name + After> out{};
    auto at = std::copy(prefix.begin(), prefix.end(), out.begin());
    at = std::copy_n(before, Before - 1, at);
    at = std::copy_n(name.begin(), Name, at);
    std::copy_n(after, After, at);
    return out;
}

}  // namespace halden::log

// Sends `format`; `path` names the reporting source. A macro, so that the line is the caller's.
#define HALDEN_TRACE_ERROR(path, format, ...)                                 \
    g_trace_cb(halden::log::error_level, halden::log::module, (format), path, \
               static_cast<unsigned>(__LINE__) __VA_OPT__(, ) __VA_ARGS__)
