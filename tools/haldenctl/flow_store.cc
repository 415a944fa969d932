#include "tools/haldenctl/flow_store.h"

#include <cstring>

#include "ftl/flow_hash_entry.h"
#include "host/engines/flow/ftl_access.h"
#include "tools/haldenctl/failure.h"
#include "tools/haldenctl/interrupt.h"

namespace halden::tool {

using sdk::table::ftl_access;

flow_store::flow_store(opened_tables &tables) : tables_(tables), refusals_(*tables) {
    for (const uint32_t table : {host::flow_table, host::flow_ohash_table})
        if ((*tables).hbm_rows(table) == nullptr)
            throw failure(
                std::string(pipeline::find_table(table)->name) + ": its memory cannot be read",
                exit_status::adapter);
}

// The flows that point at each row of flow_info.
uint32_t &flow_store::uses_of(uint32_t index) {
    if (uses_.empty()) {
        uses_.resize(size_t{1} << flow_layout::flow_idx.width);
        ftl_access::for_each(
            *tables_.tables().flow_tbl(), [&](const ftl_access::stored_flow &stored) {
                flow_hash_entry_t entry;
                stored.copy_to(entry);
                ++uses_[flow_layout::get_bits<flow_layout::flow_idx>(entry.body())];
                return true;
            });
    }
    return uses_[index];
}

bool flow_store::is_left_over(uint32_t index) {
    return uses_of(index) == 0 && flow_data(*tables_, index).is_of_import();
}

bool flow_store::next_free_index(uint32_t &index) {
    const uint32_t rows = (*tables_).depth(flow_info_table);
    const auto used = [&](uint32_t table) {
        return (*tables_).next_used(table, searched_) == searched_;
    };
    for (; searched_ < rows; ++searched_) {
        index = searched_;
        if (!used(flow_info_table) && !used(ipfix_ingress_table)) return true;
        if (is_left_over(index) && flow_data(*tables_, index).remove()) return true;
    }
    return false;
}

void flow_store::for_each_left_over(const std::function<void(uint32_t index)> &see) {
    const uint32_t rows = (*tables_).depth(flow_info_table);
    for (uint32_t row = (*tables_).next_used(flow_info_table, 1); row < rows;
         row = (*tables_).next_used(flow_info_table, row + 1)) {
        stop_if_told();
        if (is_left_over(row)) see(row);
    }
}

uint32_t flow_store::count_left_over() {
    uint32_t rows = 0;
    for_each_left_over([&](uint32_t) { ++rows; });
    return rows;
}

uint32_t flow_store::remove_left_over() {
    uint32_t rows = 0;
    for_each_left_over([&](uint32_t index) { rows += flow_data(*tables_, index).remove(); });
    return rows;
}

add_result flow_store::add(const packets::flow &f, const flow_counts &counts) {
    tev_tbl_flow_spec_t spec = {};
    spec.key = packets::key_of(f);
    if (tev_tbl_flow_find(&spec.key) == TEV_TBL_RET_OK) {
        tev_tbl_flow_info_t found = spec;
        if (tev_tbl_flow_read(&spec.key, &found) != TEV_TBL_RET_OK) return add_result::refused;
        const uint32_t index = found.action_u.flow_hash.flow_idx;
        return flow_data(*tables_, index).add(counts) ? add_result::counted : add_result::refused;
    }
    uint32_t index = 0;
    if (!next_free_index(index)) return add_result::no_info_row;
    spec.action_u.flow_hash.flow_idx = index;
    if (!flow_data(*tables_, index).add(counts)) {
        flow_data(*tables_, index).remove();
        return add_result::refused;
    }
    if (tev_tbl_flow_create(&spec) == TEV_TBL_RET_OK) {
        if (!uses_.empty()) ++uses_[index];
        return add_result::added;
    }
    records entry(*pipeline::find_table(host::flow_table));
    std::memcpy(entry.key.data(), &spec.key, sizeof spec.key);
    const failure why = refusals_.reason(table_call::create, entry, 0);
    flow_data(*tables_, index).remove();
    if (why.status() != exit_status::refused) return add_result::refused;
    no_room_ = why.what();
    return add_result::no_room;
}

remove_result flow_store::remove(const stored_flow &f) {
    uint32_t &uses = uses_of(f.index);
    refusals_ = refusals(*tables_);
    if (tev_tbl_flow_delete(&f.key) != TEV_TBL_RET_OK) return remove_result::refused;
    searched_ = 1;
    if (--uses != 0) return remove_result::removed;
    return flow_data(*tables_, f.index).remove() ? remove_result::removed
                                                 : remove_result::data_left;
}

void flow_store::for_each(const std::function<void(const stored_flow &, uint32_t path)> &see) {
    ftl_access::for_each(*tables_.tables().flow_tbl(), [&](const ftl_access::stored_flow &entry) {
        if (const auto f = flow_at(*tables_, entry.table, entry.row)) see(*f, entry.path);
        return !told_to_stop();
    });
    stop_if_told();
}

std::optional<stored_flow> flow_at(host::adapter &adapter, uint32_t table, uint32_t row) {
    const auto read = read_back(adapter, *pipeline::find_table(table), row);
    if (!read) return std::nullopt;
    stored_flow out;
    std::memcpy(&out.key, read->key.data(), sizeof out.key);
    out.flow = packets::flow_of(out.key);
    out.index = static_cast<uint32_t>(read->data_value(0));
    out.table = table;
    out.row = row;
    out.counts = flow_data(adapter, out.index).counts();
    return out;
}

}  // namespace halden::tool
