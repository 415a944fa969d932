#include "tools/haldenctl/apply_steps.h"

#include "tools/haldenctl/entry_text.h"

namespace halden::tool {

using namespace pipeline;

step engine_steps::carry_out(const planned_entry &p) {
    const records &wanted = p.given->entry;
    records now = wanted;
    const tev_tbl_ret_t found = find_entry(now, p.row);
    if (found == TEV_TBL_RET_ENTRY_NOT_FOUND) {
        check(create_entry(wanted, p.row), table_call::create, p);
        return {change::created, data_line(wanted)};
    }
    check(found, table_call::find, p);
    check(read_entry(now, p.row), table_call::find, p);
    const std::string changes = difference_line(now, wanted);
    if (changes.empty()) return {change::none, {}};
    check(update_entry(wanted, p.row), table_call::update, p);
    return {change::updated, changes};
}

void engine_steps::check(tev_tbl_ret_t result, table_call call, const planned_entry &p) {
    if (result == TEV_TBL_RET_OK) return;
    throw refusals_.reason(call, p.given->entry, p.row).inside(name_of(call));
}

step row_steps::carry_out(const planned_entry &p) {
    records &wanted = p.given->entry;
    const table &t = *wanted.of;
    const uint32_t row = row_for(p);
    if (stored_at(adapter_, t, row) == writer_.image_of(wanted)) return {change::none, {}};
    const auto before = read_back(adapter_, t, row);
    const bool is_new = !before || before->action() == nullptr;
    try {
        writer_.write(wanted, row);
    } catch (const failure &error) {
        throw error.inside(name_of(is_new ? table_call::create : table_call::update));
    }
    if (is_keyed(t.kind)) rows_of(t)[identity_of(wanted)] = row;
    if (is_new) return {change::created, data_line(wanted)};
    return {change::updated, difference_line(*before, wanted)};
}

// The rows in use, read once.
row_steps::rows_by_key &row_steps::rows_of(const table &t) {
    const auto [at, fresh] = rows_.try_emplace(t.id);
    const uint32_t end = adapter_.depth(t.id);
    for (uint32_t row = fresh ? adapter_.next_used(t.id, 0) : end; row < end;
         row = adapter_.next_used(t.id, row + 1))
        if (auto entry = read_back(adapter_, t, row))
            at->second.try_emplace(identity_of(*entry), row);
    return at->second;
}

// An entry that is there stays in its row; a new one goes no further up than it says, so that the
// entries of a file keep their order.
uint32_t row_steps::row_for(const planned_entry &p) {
    records &wanted = p.given->entry;
    const table &t = *wanted.of;
    if (!is_keyed(t.kind)) return p.row;
    const rows_by_key &rows = rows_of(t);
    if (const auto known = rows.find(identity_of(wanted)); known != rows.end())
        return known->second;
    uint32_t row = p.row;
    while (row < adapter_.depth(t.id) && adapter_.next_used(t.id, row) == row) ++row;
    if (row < adapter_.depth(t.id)) return row;
    const failure no_room(p.row == 0 ? full_text(adapter_, t)
                                     : std::string(t.name) + " has no free row from row " +
                                           std::to_string(p.row) + " on");
    throw no_room.inside(name_of(table_call::create));
}

}  // namespace halden::tool
