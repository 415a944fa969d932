#pragma once

// Assertions that fire in every build. NDEBUG, which release builds define, takes assert() away,
// and a wrapped assert() prints its macro-expanded text; so the report function of the C library is
// called with the text, file, line and function that are to be printed. It aborts the process.

extern "C" [[noreturn]] void __assert_fail(const char *text, const char *file, unsigned int line,
                                           const char *function) noexcept(true);

namespace halden {

inline constexpr char p4pd_source[] = "p4gen/halden/src/p4pd";

}  // namespace halden
