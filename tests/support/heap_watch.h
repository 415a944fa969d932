#pragma once

// The allocations of the calling thread, those of the library among them: the program defines the
// allocators for all. Those of the recording host are not counted.

#include <cstddef>

namespace halden::test {

struct heap_events {
    unsigned callocs = 0;
    unsigned others = 0;  // malloc (operator new calls it), realloc, aligned_alloc
    unsigned frees = 0;   // of what was not null
    unsigned refused = 0;
    size_t last_size = 0;  // of the last calloc, elements times size
    void *last_made = nullptr;
    void *last_freed = nullptr;
};

// Counts from here on; refuses the first `refuse` callocs.
void watch_heap(unsigned refuse = 0);
heap_events unwatch_heap();

// How often any thread freed this address since it was named here.
void watch_address(void *address);
unsigned frees_of_address();

}  // namespace halden::test
