#include "host/memory/region.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace halden::host {

namespace {

[[noreturn]] void fail(const std::string &path, const std::string &what) {
    throw std::runtime_error((path.empty() ? "adapter memory" : path) + ": " + what);
}

int open_file(const std::string &path) {
    // Only a file knows which of its pages were touched, so anonymous memory is one too.
    const int file = path.empty() ? memfd_create("halden-adapter", MFD_CLOEXEC)
                                  : open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (file < 0) fail(path, std::strerror(errno));
    return file;
}

constexpr size_t huge_page_bytes = size_t{2} << 20;
constexpr size_t page_bytes = 4096;

// Begins at a huge page, or such pages are not given.
uint8_t *map_huge(size_t bytes) {
    void *mapped = mmap(nullptr, bytes + huge_page_bytes, PROT_READ | PROT_WRITE,
                        MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (mapped == MAP_FAILED) fail({}, std::strerror(errno));
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

region::region(const std::string &path, size_t bytes, paging pages) : bytes_(bytes) {
    if (path.empty() && pages == paging::huge) {
        base_ = map_huge(bytes);
        return;
    }
    file_ = open_file(path);
    try {
        struct stat status = {};
        if (fstat(file_, &status) != 0) fail(path, std::strerror(errno));
        const auto found = static_cast<size_t>(status.st_size);
        if (found != 0 && found != bytes)
            fail(path, "has " + std::to_string(found) + " bytes, this memory has " +
                           std::to_string(bytes));
        if (found == 0 && ftruncate(file_, static_cast<off_t>(bytes)) != 0)
            fail(path, std::strerror(errno));
        void *mapped =
            mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_NORESERVE, file_, 0);
        if (mapped == MAP_FAILED) fail(path, std::strerror(errno));
        base_ = static_cast<uint8_t *>(mapped);
    } catch (...) {
        close(file_);
        throw;
    }
}

region::~region() {
    munmap(base_, bytes_);
    if (file_ >= 0) close(file_);
}

// The kernel's own table says which pages of memory without a file were touched.
bool region::next_used_page(size_t from, size_t &begin, size_t &end) const {
    constexpr uint64_t touched = uint64_t{3} << 62;  // present, or swapped out
    constexpr size_t most = 512;                     // entries read at a time
    const int table = open("/proc/self/pagemap", O_RDONLY | O_CLOEXEC);
    const size_t first_page = reinterpret_cast<uintptr_t>(base_) / page_bytes;
    const size_t pages = (bytes_ + page_bytes - 1) / page_bytes;
    size_t found = pages, stop = pages;
    for (size_t page = from / page_bytes; table >= 0 && page < pages && found == pages;) {
        uint64_t entries[most];
        const size_t wanted = std::min(most, pages - page);
        const ssize_t got = pread(table, entries, wanted * sizeof entries[0],
                                  static_cast<off_t>((first_page + page) * sizeof entries[0]));
        if (got <= 0) {
            found = std::min(found, page);  // it cannot tell: everything may be used
            break;
        }
        const size_t count = static_cast<size_t>(got) / sizeof entries[0];
        for (size_t i = 0; i < count && stop == pages; ++i) {
            const bool used = (entries[i] & touched) != 0;
            if (used && found == pages) found = page + i;
            if (!used && found != pages) stop = page + i;
        }
        // What comes behind these entries is left to the next call: a scan of memory that is all
        // touched would otherwise look through all that is left of it again and again.
        page += count;
        if (found != pages) stop = std::min(stop, page);
    }
    if (table < 0)
        found = from / page_bytes;
    else
        close(table);
    begin = std::max(from, found * page_bytes);
    end = std::min(bytes_, stop * page_bytes);
    return found < pages;
}

bool region::next_used(size_t from, size_t &begin, size_t &end) const {
    if (from >= bytes_) return false;
    if (file_ < 0) return next_used_page(from, begin, end);
    const off_t data = lseek(file_, static_cast<off_t>(from), SEEK_DATA);
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

}  // namespace halden::host
