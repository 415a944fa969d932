#pragma once

// One memory of one table: a sparse file that is mapped, either anonymous or in a directory. Pages
// that were never touched cost nothing, and the kernel keeps what was stored when the process dies.

#include "host/memory/file.h"
#include "host/memory/memory_map.h"

#include <cstddef>
#include <cstdint>
#include <functional>

namespace halden::host {

// What becomes of stores.
enum class mapping : uint8_t {
    shared,        // they are in the file at once
    read_only,     // there are none: a store is a fault of the program
    private_copy,  // the process that made them sees them, and nobody else
};

// What a region's bytes come from.
struct backing {
    file on = {};  // open for what `how` needs; without one the memory begins with zeros
    mapping how = mapping::shared;
    paging pages = paging::small;  // of memory without a file
    // Asks for flushes, and is told of each; what it refuses has failed.
    std::function<bool(size_t offset, size_t bytes)> on_flush = {};
};

class region {
  public:
    // Maps `bytes`. An empty file is made that long where stores reach it, and reads as zeros where
    // they do not. Throws std::runtime_error with the path and the reason.
    region(backing from, size_t bytes);
    ~region();
    region(const region &) = delete;
    region &operator=(const region &) = delete;

    uint8_t *base() const { return base_; }
    size_t size() const { return bytes_; }

    // The first bytes at or behind `from` that may hold anything but zeros; false when there are
    // none. More of them may follow right behind `end`. Lets a scan step over rows that were never
    // touched.
    bool next_used(size_t from, size_t &begin, size_t &end) const;

    // Returns when these bytes have reached the disk, at once where nobody asked for it. False when
    // they could not, with errno.
    bool flush(const void *first, size_t bytes) const;

  private:
    void map();
    bool next_used_in_file(size_t from, size_t &begin, size_t &end) const;
    bool next_used_page(size_t from, size_t &begin, size_t &end) const;

    file file_;  // none with huge pages, and where an absent one is read
    mapping how_;
    std::function<bool(size_t, size_t)> on_flush_;
    uint8_t *base_ = nullptr;
    size_t bytes_ = 0;
};

}  // namespace halden::host
