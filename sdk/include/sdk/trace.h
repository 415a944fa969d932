#pragma once

// The host's trace function. The library hands it every failure message, unformatted:
//
//     g_trace_cb(11, 1, "[%s:%u] ...", path, line, ...)
//
// The pointer is loaded at each message and never tested: the host sets it before the first table
// call. It may be called from several threads at once. Its result is ignored.

typedef int (*sdk_trace_cb_t)(int level, int module, const char *format, ...);

extern sdk_trace_cb_t g_trace_cb;
