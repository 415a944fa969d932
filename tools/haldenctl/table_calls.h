#pragma once

// The table API by table, for entries that are known at run time only.

#include <memory>
#include <string>

#include "host/state/table_state.h"
#include "tev_tbl_ret.h"
#include "tools/haldenctl/adapter_view.h"
#include "tools/haldenctl/record.h"

namespace halden::tool {

// An adapter with the engines of its tables.
class opened_tables {
  public:
    opened_tables(const options &given, host::access how)
        : opened_tables(given, how, engines_later{}) {
        make_engines();
    }
    // For work on the rows that engines shall take up when make_engines() follows.
    struct engines_later {};
    opened_tables(const options &given, host::access how, engines_later) : adapter_(given, how) {
        // What a killed process had begun may name rows that are written now.
        adapter_->faults().rest(true);
        if (adapter_->has_work_left()) host::table_state finished(*adapter_);
        adapter_->faults().rest(false);
    }
    // Reads the tables; faults and records of the options are for what the command itself does.
    void make_engines() {
        adapter_->faults().rest(true);
        state_ = std::make_unique<host::table_state>(*adapter_);
        adapter_->faults().rest(false);
    }
    host::adapter &operator*() const { return *adapter_; }
    const opened_adapter &adapter() const { return adapter_; }
    api::impl::tev_tbl_impl_state &tables() { return state_->tables(); }

  private:
    opened_adapter adapter_;
    std::unique_ptr<host::table_state> state_;
};

// Whether the table API serves it: overflow and keyless tables have no engine of their own.
bool has_engine(const pipeline::table &t);
// Throws failure for tables without, with what to use instead.
void check_engine(const pipeline::table &t);

// One call each. `index` is an index table's row and not looked at for others. In a ternary table
// the entry is the one with this very key and mask.
tev_tbl_ret_t create_entry(const records &entry, uint32_t index);
tev_tbl_ret_t update_entry(const records &entry, uint32_t index);
tev_tbl_ret_t delete_entry(const records &entry, uint32_t index);
tev_tbl_ret_t find_entry(const records &entry, uint32_t index);
// Fills the entry's data.
tev_tbl_ret_t read_entry(records &entry, uint32_t index);

// "9, write refused by the engine"
std::string name_of(tev_tbl_ret_t result);

}  // namespace halden::tool
