#include "host/memory/region.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <utility>

namespace halden::host {

namespace {

constexpr const char *anonymous_name = "adapter memory";

// Only a file knows which of its pages were touched, so anonymous memory is one too.
file anonymous_file() {
    const int descriptor = memfd_create("halden-adapter", MFD_CLOEXEC);
    if (descriptor < 0) fail_at(anonymous_name, std::strerror(errno));
    return {descriptor, anonymous_name};
}

constexpr size_t huge_page_bytes = size_t{2} << 20;
constexpr size_t page_bytes = 4096;

// Begins at a huge page, or such pages are not given.
uint8_t *map_huge(size_t bytes) {
    void *mapped = mmap(nullptr, bytes + huge_page_bytes, PROT_READ | PROT_WRITE,
                        MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (mapped == MAP_FAILED) fail_at(anonymous_name, std::strerror(errno));
    auto *first = static_cast<uint8_t *>(mapped);
    const size_t beyond = reinterpret_cast<uintptr_t>(first) % huge_page_bytes;
    const size_t skipped = beyond == 0 ? 0 : huge_page_bytes - beyond;
    if (skipped != 0) munmap(first, skipped);
    uint8_t *base = first + skipped;
    const size_t rounded = (bytes + page_bytes - 1) / page_bytes * page_bytes;
    munmap(base + rounded, bytes + huge_page_bytes - skipped - rounded);
    madvise(base, bytes, MADV_HUGEPAGE);  // a wish: without such pages the small ones serve
    return base;
}

}  // namespace

region::region(backing from, size_t bytes)
    : file_(std::move(from.on)),
      how_(from.how),
      on_flush_(std::move(from.on_flush)),
      bytes_(bytes) {
    if (!file_.is_open() && how_ == mapping::shared) {
        if (from.pages == paging::huge) {
            base_ = map_huge(bytes);
            return;
        }
        file_ = anonymous_file();
    }
    map();
}

void region::map() {
    if (file_.is_open()) {
        struct stat status = {};
        if (fstat(file_.descriptor(), &status) != 0) file_.fail(std::strerror(errno));
        const auto found = static_cast<size_t>(status.st_size);
        if (found != 0 && found != bytes_)
            file_.fail("has " + std::to_string(found) + " bytes, this memory has " +
                       std::to_string(bytes_));
        // Its maker was killed before it gave the file its size.
        if (found == 0 && how_ != mapping::shared) file_ = {};
        if (found == 0 && how_ == mapping::shared &&
            ftruncate(file_.descriptor(), static_cast<off_t>(bytes_)) != 0)
            file_.fail(std::strerror(errno));
        // What was stored here without a flush is built upon now.
        if (on_flush_ && fsync(file_.descriptor()) != 0) file_.fail(std::strerror(errno));
    }
    const int protection = how_ == mapping::read_only ? PROT_READ : PROT_READ | PROT_WRITE;
    const int kind = how_ == mapping::private_copy || !file_.is_open() ? MAP_PRIVATE : MAP_SHARED;
    const int origin = file_.is_open() ? 0 : MAP_ANONYMOUS;
    void *mapped =
        mmap(nullptr, bytes_, protection, kind | origin | MAP_NORESERVE, file_.descriptor(), 0);
    if (mapped == MAP_FAILED)
        fail_at(file_.is_open() ? file_.path() : anonymous_name, std::strerror(errno));
    base_ = static_cast<uint8_t *>(mapped);
}

region::~region() { munmap(base_, bytes_); }

bool region::flush(const void *first, size_t bytes) const {
    if (!on_flush_) [[likely]]
        return true;
    const auto offset = static_cast<size_t>(static_cast<const uint8_t *>(first) - base_);
    errno = EIO;
    if (!on_flush_(offset, bytes)) return false;
    const size_t page = offset / page_bytes * page_bytes;
    return msync(base_ + page, offset + bytes - page, MS_SYNC) == 0;
}

// The kernel's own table says which pages were touched, of those that are the process's alone.
bool region::next_used_page(size_t from, size_t &begin, size_t &end) const {
    constexpr uint64_t touched = uint64_t{3} << 62;  // present, or swapped out
    constexpr uint64_t of_file = uint64_t{1} << 61;  // still the file's
    constexpr size_t most = 512;                     // entries read at a time
    const file table(open("/proc/self/pagemap", O_RDONLY | O_CLOEXEC), "/proc/self/pagemap");
    const size_t first_page = reinterpret_cast<uintptr_t>(base_) / page_bytes;
    const size_t pages = (bytes_ + page_bytes - 1) / page_bytes;
    size_t found = pages, stop = pages;
    for (size_t page = from / page_bytes; table.is_open() && page < pages && found == pages;) {
        uint64_t entries[most];
        const size_t wanted = std::min(most, pages - page);
        const ssize_t got = pread(table.descriptor(), entries, wanted * sizeof entries[0],
                                  static_cast<off_t>((first_page + page) * sizeof entries[0]));
        if (got <= 0) {
            found = std::min(found, page);  // it cannot tell: everything may be used
            break;
        }
        const size_t count = static_cast<size_t>(got) / sizeof entries[0];
        for (size_t i = 0; i < count && stop == pages; ++i) {
            const bool used = (entries[i] & touched) != 0 && (entries[i] & of_file) == 0;
            if (used && found == pages) found = page + i;
            if (!used && found != pages) stop = page + i;
        }
        // What comes behind these entries is left to the next call: a scan of memory that is all
        // touched would otherwise look through all that is left of it again and again.
        page += count;
        if (found != pages) stop = std::min(stop, page);
    }
    if (!table.is_open()) found = from / page_bytes;
    begin = std::max(from, found * page_bytes);
    end = std::min(bytes_, stop * page_bytes);
    return found < pages;
}

bool region::next_used_in_file(size_t from, size_t &begin, size_t &end) const {
    const off_t data = lseek(file_.descriptor(), static_cast<off_t>(from), SEEK_DATA);
    if (data < 0) {
        if (errno == ENXIO) return false;
        begin = from;  // a file system that cannot tell: everything may be used
        end = bytes_;
        return true;
    }
    // To the end of the page and no further: where the hole behind it begins is only found by
    // looking through all pages in between, and a scan would do so again for each of them.
    begin = static_cast<size_t>(data);
    end = std::min(bytes_, (begin / page_bytes + 1) * page_bytes);
    return begin < bytes_;
}

bool region::next_used(size_t from, size_t &begin, size_t &end) const {
    if (from >= bytes_) return false;
    if (how_ == mapping::read_only && !file_.is_open()) return false;
    if (!file_.is_open()) return next_used_page(from, begin, end);
    const bool in_file = next_used_in_file(from, begin, end);
    if (how_ != mapping::private_copy) return in_file;
    // Whichever comes first: what the file holds, or what this process has stored.
    size_t stored_begin = 0, stored_end = 0;
    if (!next_used_page(from, stored_begin, stored_end)) return in_file;
    if (!in_file || stored_begin < begin) {
        begin = stored_begin;
        end = stored_end;
    }
    return true;
}

}  // namespace halden::host
