#include "tests/support/heap_watch.h"

#include <atomic>
#include <cstdlib>

#include "tests/support/recording_host.h"

extern "C" {
void *__libc_malloc(size_t);
void *__libc_calloc(size_t, size_t);
void *__libc_realloc(void *, size_t);
void *__libc_memalign(size_t, size_t);
void __libc_free(void *);
}

namespace halden::test {

namespace {

thread_local bool watching = false;
thread_local unsigned to_refuse = 0;
thread_local heap_events events;
std::atomic<void *> named = nullptr;
std::atomic<unsigned> named_frees = 0;

bool watched() { return watching && !recording_host::inside(); }
void count_other() {
    if (watched()) ++events.others;
}

}  // namespace

void watch_heap(unsigned refuse) {
    events = {};
    to_refuse = refuse;
    watching = true;
}

heap_events unwatch_heap() {
    watching = false;
    return events;
}

void watch_address(void *address) {
    named_frees = 0;
    named = address;
}

unsigned frees_of_address() { return named_frees; }

}  // namespace halden::test

using namespace halden::test;

extern "C" void *malloc(size_t size) noexcept {
    count_other();
    return __libc_malloc(size);
}
extern "C" void *calloc(size_t count, size_t size) noexcept {
    if (!watched()) return __libc_calloc(count, size);
    ++events.callocs;
    events.last_size = count * size;
    if (to_refuse > 0) {
        --to_refuse;
        ++events.refused;
        return nullptr;
    }
    return events.last_made = __libc_calloc(count, size);
}
extern "C" void *realloc(void *memory, size_t size) noexcept {
    count_other();
    return __libc_realloc(memory, size);
}
extern "C" void *aligned_alloc(size_t alignment, size_t size) noexcept {
    count_other();
    return __libc_memalign(alignment, size);
}
extern "C" void free(void *memory) noexcept {
    if (memory != nullptr) {
        if (memory == named) ++named_frees;
        if (watched()) {
            ++events.frees;
            events.last_freed = memory;
        }
    }
    __libc_free(memory);
}
