#include "tests/contract/heap_hook.h"

#include <cerrno>
#include <new>

#include "tests/support/recording_host.h"

namespace halden::test {

namespace {

bool watching = false;
size_t refuse_at = 0;
heap_use use;

bool watched() { return watching && !recording_host::inside(); }

// Counts one allocation; whether it is to be refused.
bool refused(size_t bytes) {
    if (!watched()) return false;
    if (use.allocations < heap_use::kept) use.bytes[use.allocations] = bytes;
    if (++use.allocations != refuse_at) return false;
    ++use.refused;
    return true;
}

}  // namespace

void watch_heap(size_t refuse) {
    use = {};
    refuse_at = refuse;
    watching = true;
}

heap_use unwatch_heap() {
    watching = false;
    return use;
}

heap_use heap_now() { return use; }

}  // namespace halden::test

using halden::test::refused;

// The linker's names: __real_ is what the name meant before.
extern "C" {

void *__real_malloc(size_t bytes);
void *__real_calloc(size_t count, size_t bytes);
void *__real_realloc(void *old, size_t bytes);
void *__real_aligned_alloc(size_t alignment, size_t bytes);
int __real_posix_memalign(void **made, size_t alignment, size_t bytes);
void __real_free(void *block);
void *__real__Znwm(size_t bytes);
void *__real__Znam(size_t bytes);
void *__real__ZnwmRKSt9nothrow_t(size_t bytes, const std::nothrow_t &tag);
void *__real__ZnamRKSt9nothrow_t(size_t bytes, const std::nothrow_t &tag);

void *__wrap_malloc(size_t bytes) { return refused(bytes) ? nullptr : __real_malloc(bytes); }

void *__wrap_calloc(size_t count, size_t bytes) {
    return refused(count * bytes) ? nullptr : __real_calloc(count, bytes);
}

void *__wrap_realloc(void *old, size_t bytes) {
    return refused(bytes) ? nullptr : __real_realloc(old, bytes);
}

void *__wrap_aligned_alloc(size_t alignment, size_t bytes) {
    return refused(bytes) ? nullptr : __real_aligned_alloc(alignment, bytes);
}

int __wrap_posix_memalign(void **made, size_t alignment, size_t bytes) {
    return refused(bytes) ? ENOMEM : __real_posix_memalign(made, alignment, bytes);
}

void __wrap_free(void *block) {
    if (block != nullptr && halden::test::watched()) ++halden::test::use.frees;
    __real_free(block);
}

void *__wrap__Znwm(size_t bytes) {
    if (refused(bytes)) throw std::bad_alloc();
    return __real__Znwm(bytes);
}

void *__wrap__Znam(size_t bytes) {
    if (refused(bytes)) throw std::bad_alloc();
    return __real__Znam(bytes);
}

void *__wrap__ZnwmRKSt9nothrow_t(size_t bytes, const std::nothrow_t &tag) {
    return refused(bytes) ? nullptr : __real__ZnwmRKSt9nothrow_t(bytes, tag);
}

void *__wrap__ZnamRKSt9nothrow_t(size_t bytes, const std::nothrow_t &tag) {
    return refused(bytes) ? nullptr : __real__ZnamRKSt9nothrow_t(bytes, tag);
}

}  // extern "C"
