#pragma once

// Where the adapter's messages go: the library's, which arrive through g_trace_cb, and the
// adapter's own. One logger of the process takes both.
//
//     HALDEN_LOG_LEVEL    trace, debug, info (the default), warning, error, critical or off
//     HALDEN_LOG_PATTERN  of the line, as spdlog reads it
//     HALDEN_LOG_FILE     appended to; standard error when it is not given
//
// The variables are read at the first message or at the first of the calls below, which overrule
// them. All functions may be called from any thread.

#include <string>
#include <string_view>

namespace halden::host::trace {

// False, and nothing changed, for a name that is no level.
bool set_level(std::string_view name);
void set_pattern(const std::string &pattern);
// False, and nothing changed, when the file cannot be opened for appending; a directory that is
// missing in front of it is not made. An empty path goes back to standard error.
bool set_file(const std::string &path);
// Returns when everything logged so far has reached the file.
void flush();

// A message of the adapter's own, printf style.
[[gnu::format(printf, 1, 2)]] void error(const char *format, ...);

}  // namespace halden::host::trace
