#pragma once

// A look inside the table engines, for tools and tests: how full a table is and what its calls
// did. Not to be mixed with writes to the table.

#include "sdk/table/directmap.h"
#include "sdk/table/slhash.h"
#include "sdk/table/sltcam.h"

#include <cstdint>

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

}  // namespace halden::host

namespace sdk::table {

class directmap_access {
  public:
    static halden::host::engine_statistics statistics(const directmap &table);
};

class slhash_access {
  public:
    static halden::host::engine_statistics statistics(const slhash &table);
};

class sltcam_access {
  public:
    static halden::host::engine_statistics statistics(const sltcam &table);
};

}  // namespace sdk::table
