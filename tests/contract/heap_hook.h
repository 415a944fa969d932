#pragma once

// Counts and fails allocations of the code that a program compiles into itself. The program is
// linked with the options of heap_hook.cmake, which send its calls of the allocators here; those of
// the recording host are let through.

#include <cstddef>

namespace halden::test {

struct heap_use {
    static constexpr size_t kept = 8;
    size_t allocations = 0;   // asked for
    size_t refused = 0;       // of them
    size_t frees = 0;         // of what was not null
    size_t bytes[kept] = {};  // sizes of the first ones
};

// Counts from here on, and refuses the nth allocation (from 1; 0 refuses none).
void watch_heap(size_t refuse = 0);
// What was counted; no more is.
heap_use unwatch_heap();
// What was counted so far.
heap_use heap_now();

}  // namespace halden::test
