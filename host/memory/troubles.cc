#include "host/memory/troubles.h"

#include <algorithm>

namespace halden::host {

void trouble_list::note(memory where, uint32_t table, uint32_t row, const std::string &name,
                        const std::string &what) {
    const std::lock_guard guard(lock_);
    size_t rows = 0;
    for (const trouble &one : met_) {
        if (one.where != where || one.table != table) continue;
        if (one.row == row || one.stands_for_others) return;
        ++rows;
    }
    if (rows < most_rows)
        met_.push_back({where, table, row, false, name + ": " + what});
    else
        met_.push_back({where, table, row, true, name + ": more rows are damaged"});
}

void trouble_list::forget(memory where, uint32_t table, uint32_t row) {
    const std::lock_guard guard(lock_);
    std::erase_if(met_, [&](const trouble &one) {
        return one.where == where && one.table == table && one.row == row && !one.stands_for_others;
    });
}

std::vector<std::string> trouble_list::texts() const {
    const std::lock_guard guard(lock_);
    std::vector<std::string> out;
    out.reserve(met_.size());
    for (const trouble &one : met_) out.push_back(one.text);
    return out;
}

}  // namespace halden::host
