#include "host/engines/flow/ftl_access.h"

#include "host/engines/flow/engine.h"

#include <algorithm>

namespace halden::host::flow {

void stored_flow::copy_to(base_table_entry_t &entry) const {
    std::reverse_copy(image.begin(), image.end(), body_of(&entry));
    entry.set_entry_valid(1);
}

}  // namespace halden::host::flow

namespace sdk::table {

using halden::host::flow::bucket_row;

using halden::host::flow::engine;

namespace {

using batch_operation = size_t (engine::*)(std::span<base_table_entry_t *const>, sdk_ret_t *);
using single_call = sdk_ret_t (ftl_base::*)(sdk_table_api_params_ *);

// Results that have no room are not asked for: such entries are left out. Where faults may be met,
// each entry is a call of its own, as it is to them.
size_t call_batch(ftl_base &table, engine *made, batch_operation operation, single_call single,
                  std::span<base_table_entry_t *const> entries, std::span<sdk_ret_t> results) {
    const size_t count = std::min(entries.size(), results.size());
    if (made != nullptr && made->is_mapped() && !made->memory().faults().armed())
        return (made->*operation)(entries.first(count), results.data());
    size_t succeeded = 0;
    for (size_t i = 0; i < count; ++i) {
        sdk_table_api_params_ call = {};
        call.entry = entries[i];
        results[i] = (table.*single)(&call);
        succeeded += results[i] == SDK_RET_OK;
    }
    return succeeded;
}

}  // namespace

size_t ftl_access::insert_batch(ftl_base &table, std::span<base_table_entry_t *const> entries,
                                std::span<sdk_ret_t> results) {
    return call_batch(table, table.impl_, &engine::insert, &ftl_base::insert, entries, results);
}

size_t ftl_access::remove_batch(ftl_base &table, std::span<base_table_entry_t *const> entries,
                                std::span<sdk_ret_t> results) {
    return call_batch(table, table.impl_, &engine::remove, &ftl_base::remove, entries, results);
}

size_t ftl_access::get_batch(ftl_base &table, std::span<base_table_entry_t *const> entries,
                             std::span<sdk_ret_t> results) {
    return call_batch(table, table.impl_, &engine::get, &ftl_base::get, entries, results);
}

uint64_t ftl_access::count(const ftl_base &table) {
    return table.impl_ != nullptr ? table.impl_->count() : 0;
}

void ftl_access::for_each(ftl_base &table, const std::function<bool(const stored_flow &)> &see) {
    if (table.impl_ == nullptr) return;
    table.impl_->for_each_bucket([&](const std::vector<bucket_row> &bucket) {
        return std::all_of(bucket.begin(), bucket.end(), [&](const bucket_row &one) {
            return see({one.at.table, one.at.row, one.path, one.image});
        });
    });
}

ftl_access::flow_statistics ftl_access::statistics(ftl_base &table) {
    flow_statistics out;
    if (table.impl_ == nullptr) return out;
    out.main_depth = table.impl_->memory().main_rows();
    out.overflow_depth = table.impl_->memory().overflow_rows();
    for_each(table, [&](const stored_flow &flow) {
        ++(flow.table == halden::host::flow_table ? out.main_used : out.overflow_used);
        ++out.path_lengths[std::min<size_t>(flow.path, out.path_lengths.size() - 1)];
        out.longest_path = std::max(out.longest_path, flow.path);
        return true;
    });
    return out;
}

void ftl_access::set_write_hook(ftl_base &table, write_hook hook) {
    if (table.impl_ != nullptr) table.impl_->memory().set_hook(std::move(hook));
}

sdk_ret_t ftl_access::finish_work(ftl_base &table) {
    return table.impl_ != nullptr ? table.impl_->finish_work() : SDK_RET_INVALID_ARG;
}

void ftl_access::leave_out_overflow_rows(ftl_base &table, uint32_t end) {
    if (table.impl_ != nullptr) table.impl_->leave_out(end);
}

}  // namespace sdk::table
