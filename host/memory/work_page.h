#pragma once

// Work under way: which rows the engines are changing at this very moment, in memory that outlives
// the process. An operation of several stores names its rows before the first store and takes the
// name back after the last one. So whoever finds the memories of a process that was killed knows
// what was begun, and need look at nothing else; a process that only read named nothing.
//
//     offset   bytes
//          0       8   the format, "halden-1"; zero: not known what was under way
//         64   8 * 49  by table id: a ternary table's move, from << 32 | to, each row plus 1
//       4096   8 * 4096  by group of buckets of the flow table (bucket modulo 4096, or modulo the
//                      number of buckets where there are fewer):
//                      (bucket + 1) << 32 | main row's entry changes << 31 | overflow row
//
// Words are the machine's own, 0 while nothing is under way. The overflow row is the one that the
// operation makes or empties, 0 for none. Each word has one writer at a time: the holder of the
// table's or of the group's lock.
//
// In a directory this is the file engines-at-work. An older process left an empty file of that name
// for as long as it had engines: then anything may have been under way. After an orderly end there
// is no such file.

#include "host/memory/memory_map.h"
#include "host/memory/region.h"

#include <atomic>
#include <cstdint>
#include <span>
#include <string>

namespace halden::host {

class work_page {
  public:
    static constexpr uint32_t groups = 4096;
    static constexpr size_t tables_at = 64;
    static constexpr size_t groups_at = 4096;
    static constexpr size_t bytes = groups_at + size_t{groups} * sizeof(uint64_t);

    // `is_new`: nothing was under way before. Throws std::runtime_error with the path and the
    // reason.
    work_page(backing from, bool is_new);

    // False when it is not known what was under way: everything is to be looked at once.
    bool is_known() const { return word(0).load(std::memory_order_acquire) != 0; }
    void set_known() { word(0).store(format, std::memory_order_release); }
    // Whether anything is left to finish.
    bool is_idle() const;

    std::atomic_ref<uint64_t> of_table(uint32_t table) const {
        return word(tables_at + size_t{table} * sizeof(uint64_t));
    }
    // Of the flow table, `groups` words.
    uint64_t *of_groups() const { return words() + groups_at / sizeof(uint64_t); }
    // All of it, for copies.
    std::span<uint64_t> all() const { return {words(), bytes / sizeof(uint64_t)}; }

  private:
    static constexpr uint64_t format = 0x312d6e65646c6168;  // "halden-1"
    uint64_t *words() const { return reinterpret_cast<uint64_t *>(memory_.base()); }
    std::atomic_ref<uint64_t> word(size_t offset) const {
        return std::atomic_ref<uint64_t>(words()[offset / sizeof(uint64_t)]);
    }

    region memory_;
};

}  // namespace halden::host
