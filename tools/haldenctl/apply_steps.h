#pragma once

// One planned entry into the tables: created, updated, or left alone when it is there already. What
// is refused throws failure, with the call in front of the reason.

#include <map>
#include <unordered_map>

#include "tools/haldenctl/entry_plan.h"
#include "tools/haldenctl/refusal.h"
#include "tools/haldenctl/row_writer.h"

namespace halden::tool {

enum class change : uint8_t { created, updated, none };

struct step {
    change what;
    std::string difference;  // the data of a new entry, or what became another
};

// Through the table API: as a program with the file's entries would.
class engine_steps {
  public:
    explicit engine_steps(host::adapter &adapter) : refusals_(adapter) {}
    step carry_out(const planned_entry &p);

  private:
    void check(tev_tbl_ret_t result, table_call call, const planned_entry &p);

    refusals refusals_;
};

// Straight into memory, for what no engine serves.
class row_steps {
  public:
    explicit row_steps(host::adapter &adapter) : adapter_(adapter), writer_(adapter) {}
    step carry_out(const planned_entry &p);

  private:
    using rows_by_key = std::unordered_map<std::string, uint32_t>;
    rows_by_key &rows_of(const pipeline::table &t);
    uint32_t row_for(const planned_entry &p);

    host::adapter &adapter_;
    row_writer writer_;
    std::map<uint32_t, rows_by_key> rows_;  // by table
};

}  // namespace halden::tool
