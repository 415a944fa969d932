#pragma once

// Assertions that hold in every build. They are part of the library's behaviour, so they do not go
// through assert(), which NDEBUG removes; and the reported text, file, line and function are fixed
// by contract, whatever the source looks like today. This is the C library's own reporter.

extern "C" void __assert_fail(const char *assertion, const char *file, unsigned int line,
                              const char *function) noexcept __attribute__((__noreturn__));
