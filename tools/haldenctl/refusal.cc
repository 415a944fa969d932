#include "tools/haldenctl/refusal.h"

#include "host/memory/memory_map.h"
#include "host/view/lookup.h"
#include "p4gen/halden/pipeline/words.h"

namespace halden::tool {

using namespace pipeline;

namespace {

// Rows of a chain, as the flow table's engine is made with: one for each hint slot.
constexpr uint32_t longest_chain = 8;

failure exists(host::adapter &adapter, records entry, uint32_t index) {
    std::string text = "there is such an entry";
    if (!is_keyed(entry.of->kind))
        text += ", in row " + std::to_string(index);
    else if (const auto found = row_of(adapter, entry))
        text += ", in row " + std::to_string(found->row) +
                (found->of == entry.of ? "" : " of " + std::string(found->of->name));
    return failure(text);
}

}  // namespace

const char *name_of(table_call call) {
    switch (call) {
        case table_call::create:
            return "create";
        case table_call::update:
            return "update";
        case table_call::remove:
            return "delete";
        case table_call::find:
            return "find";
    }
    return "?";
}

std::string full_text(host::adapter &adapter, const table &t) {
    // Row 0 of the flows' overflow is never used: a hint of 0 leads nowhere.
    const uint32_t rows = adapter.depth(t.id) - (t.id == host::flow_ohash_table ? 1 : 0);
    return std::string(t.name) + " is full: " + std::to_string(rows) + " of " +
           std::to_string(rows) + " rows";
}

bool refusals::is_full(uint32_t table) {
    // A flow table's overflow may be long, and nobody asks twice about the rows in front.
    const bool flows = table == host::flow_ohash_table;
    uint32_t row = flows ? std::max(looked_at_, 1u) : 0;
    const uint32_t end = adapter_->depth(table);
    while (row < end && adapter_->next_used(table, row) == row) ++row;
    if (flows) looked_at_ = row;
    return row == end;
}

// Empty when there is room.
std::string refusals::no_room_for(const records &entry) {
    const table &t = *entry.of;
    if (has_mask(t.kind)) return is_full(t.id) ? full_text(*adapter_, t) : "";
    if (!is_hash(t.kind)) return {};
    records wanted = entry;
    const auto at = host::view::lookup(*adapter_, t.id, images_of(wanted).key.data());
    if (!at.row_in_use) return {};
    const bool flows = t.id == host::flow_table;
    const table &overflow = flows ? *find_table(host::flow_ohash_table) : *overflow_of(t);
    if (is_full(overflow.id)) return "its row is taken and " + full_text(*adapter_, overflow);
    if (flows && at.path >= longest_chain)
        return "its row is taken and its chain in " + std::string(overflow.name) +
               " is full: " + std::to_string(longest_chain) + " of " +
               std::to_string(longest_chain) + " rows";
    return {};
}

failure refusals::reason(table_call call, const records &entry, uint32_t index) {
    const tev_tbl_ret_t found = find_entry(entry, index);
    const bool create = call == table_call::create;
    if (create && found == TEV_TBL_RET_OK) return exists(*adapter_, entry, index);
    if (!create && found == TEV_TBL_RET_ENTRY_NOT_FOUND)
        return failure("there is none", exit_status::missed);
    if (create && found == TEV_TBL_RET_ENTRY_NOT_FOUND)
        if (const std::string text = no_room_for(entry); !text.empty()) return failure(text);
    // What is wrong with the memory is said when the adapter is closed.
    return failure(adapter_->troubles().empty()
                       ? "the adapter refused it; --log-level error says why"
                       : "memory that it needs cannot be read",
                   exit_status::adapter);
}

}  // namespace halden::tool
