#pragma once

// A look inside the table engines, for tools and tests: how full a table is, what its calls did,
// and every entry it holds. Not to be mixed with writes to the table.

#include "host/engines/engine.h"
#include "sdk/table/directmap.h"
#include "sdk/table/slhash.h"
#include "sdk/table/sltcam.h"

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
