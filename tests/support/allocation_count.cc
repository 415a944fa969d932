#include "tests/support/allocation_count.h"

#include <atomic>
#include <cstddef>

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define HALDEN_SANITIZED_MALLOC 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define HALDEN_SANITIZED_MALLOC 1
#endif

namespace {

std::atomic<uint64_t> count = 0;

void counted() { count.fetch_add(1, std::memory_order_relaxed); }

}  // namespace

namespace halden::test {

uint64_t allocation_count() { return count.load(std::memory_order_relaxed); }

}  // namespace halden::test

#ifdef HALDEN_SANITIZED_MALLOC

// Of the sanitizers' run time; GCC has it without its header.
extern "C" int __sanitizer_install_malloc_and_free_hooks(
    void (*malloc_hook)(const volatile void *block, size_t size),
    void (*free_hook)(const volatile void *block));

namespace {

[[maybe_unused]] const int installed = __sanitizer_install_malloc_and_free_hooks(
    [](const volatile void *, size_t) { counted(); }, [](const volatile void *) {});

}  // namespace

#else

// The program's malloc stands before the C library's; these are the names it keeps for its own.
extern "C" {

void *__libc_malloc(size_t size);
void *__libc_calloc(size_t count, size_t size);
void *__libc_realloc(void *block, size_t size);
void *__libc_memalign(size_t alignment, size_t size);

void *malloc(size_t size) noexcept {
    counted();
    return __libc_malloc(size);
}
void *calloc(size_t items, size_t size) noexcept {
    counted();
    return __libc_calloc(items, size);
}
void *realloc(void *block, size_t size) noexcept {
    counted();
    return __libc_realloc(block, size);
}
void *aligned_alloc(size_t alignment, size_t size) noexcept {
    counted();
    return __libc_memalign(alignment, size);
}
void *memalign(size_t alignment, size_t size) noexcept {
    counted();
    return __libc_memalign(alignment, size);
}
int posix_memalign(void **block, size_t alignment, size_t size) noexcept {
    counted();
    *block = __libc_memalign(alignment, size);
    return *block == nullptr ? 12 : 0;  // ENOMEM
}

}  // extern "C"

#endif
