#pragma once

// Assertions that fire in every build. They are part of the library's behaviour, so they do not go
// through assert(), which NDEBUG takes away in release builds; and the text, file, line and
// function they report are fixed, whatever the source looks like today. This is the C library's own
// reporter: it prints them and aborts the process.

// The attribute stands as the C library writes it, whose own header may have been read before.
extern "C" void __assert_fail(const char *text, const char *file, unsigned int line,
                              const char *function) noexcept(true) __attribute__((__noreturn__));
