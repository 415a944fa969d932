#pragma once

// A look inside the table engines, for tools and tests: how full a table is, what its calls did,
// and every entry it holds. Not to be mixed with writes to the table.

#include "sdk/table/directmap.h"
#include "sdk/table/slhash.h"
#include "sdk/table/sltcam.h"

#include <cstdint>
#include <functional>
#include <span>

namespace halden::host {

struct engine_statistics {
    uint32_t rows = 0;
    uint32_t used = 0;
    uint32_t overflow_rows = 0;  // hash tables only
    uint32_t overflow_used = 0;

    // Calls that went through, and those that did not (an absent entry is no failure).
    uint64_t inserts = 0;
    uint64_t updates = 0;
    uint64_t removes = 0;
    uint64_t lookups = 0;
    uint64_t failures = 0;
    uint64_t collisions = 0;  // hash: inserts whose row was taken
    uint64_t moves = 0;       // ternary: entries moved to make room
};

// One entry as software sees it. The spans live as long as the call they are passed to.
struct stored_entry {
    uint32_t table;  // that holds it: the engine's own, or its overflow
    uint32_t row;
    std::span<const uint8_t> key;   // empty for index tables
    std::span<const uint8_t> mask;  // empty for tables without a TCAM
    std::span<const uint8_t> data;  // action-data record
};
using entry_visitor = std::function<void(const stored_entry &)>;

}  // namespace halden::host

namespace sdk::table {

class directmap_access {
  public:
    static halden::host::engine_statistics statistics(const directmap &table);
    // In row order.
    static void for_each(const directmap &table, const halden::host::entry_visitor &visit);
};

class slhash_access {
  public:
    static halden::host::engine_statistics statistics(const slhash &table);
    // The hash rows in row order, then the overflow.
    static void for_each(const slhash &table, const halden::host::entry_visitor &visit);
};

class sltcam_access {
  public:
    static halden::host::engine_statistics statistics(const sltcam &table);
    // In row order: more specific entries first.
    static void for_each(const sltcam &table, const halden::host::entry_visitor &visit);
};

}  // namespace sdk::table
