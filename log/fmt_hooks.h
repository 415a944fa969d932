#pragma once

// fmt and spdlog as this library is built with them. Include this before any of their headers, and
// none of them elsewhere: they are header-only here, so that each error path of the formatting code
// goes through the two hooks below, and hidden, so that a host's own copy stays another one.
//
//   * a format that cannot be carried out prints a stack trace to standard error and then throws;
//   * a broken precondition aborts, in release builds too.

#include <cstdio>
#include <cstring>

#include "log/fail.h"
#include "log/stack_trace.h"

#if defined(FMT_VERSION) || defined(SPDLOG_VERSION)
#error "fmt or spdlog was included before its hooks"
#endif

namespace halden::log {

// The condition of a negative value differs between versions of the library; it reads the same
// here.
[[noreturn]] inline void fmt_assertion_failed(const char *text, const char *message,
                                              const char *file, unsigned line,
                                              const char *function) {
    if (std::strcmp(message, "negative value") == 0) text = "(value >= 0) && \"negative value\"";
    __assert_fail(text, file, line, function);
}

}  // namespace halden::log

#ifndef FMT_HEADER_ONLY
#define FMT_HEADER_ONLY
#endif
#ifndef SPDLOG_HEADER_ONLY
#define SPDLOG_HEADER_ONLY
#endif
// The library's thread-local storage is kept to what the flow hash needs.
#define SPDLOG_NO_TLS

#define FMT_THROW(x) (halden::log::dump_stack(stderr), throw x)
#define FMT_ASSERT(condition, message)                                               \
    ((condition) ? static_cast<void>(0)                                              \
                 : halden::log::fmt_assertion_failed(                                \
                       "(" #condition ") && " #message, message, __FILE__, __LINE__, \
                       static_cast<const char *>(__PRETTY_FUNCTION__)))
