#pragma once

// One memory of one table: a sparse file mapped shared, either anonymous or in a directory. Pages
// that were never touched cost nothing, and the kernel keeps what was stored when the process dies.

#include "host/memory/memory_map.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace halden::host {

class region {
  public:
    // Maps `bytes` zero bytes. With an empty path the memory is anonymous; otherwise the file is
    // made when it is absent. Throws std::runtime_error with the path and the reason.
    region(const std::string &path, size_t bytes, paging pages = paging::small);
    ~region();
    region(const region &) = delete;
    region &operator=(const region &) = delete;

    uint8_t *base() const { return base_; }
    size_t size() const { return bytes_; }

    // The first bytes at or behind `from` that may hold anything but zeros; false when there are
    // none. More of them may follow right behind `end`. Lets a scan step over rows that were never
    // touched.
    bool next_used(size_t from, size_t &begin, size_t &end) const;

  private:
    bool next_used_page(size_t from, size_t &begin, size_t &end) const;

    int file_ = -1;  // none with huge pages
    uint8_t *base_ = nullptr;
    size_t bytes_ = 0;
};

}  // namespace halden::host
