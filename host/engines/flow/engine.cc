// Setting up, and the way to an entry.

#include "host/engines/flow/engine_work.h"

#include <algorithm>
#include <bit>
#include <new>

namespace halden::host::flow {

namespace {

// Enough that writers rarely meet, few enough to stay in the cache.
constexpr uint32_t most_stripes = work_page::groups;

}  // namespace

engine::engine(sdk::table::ftl_base &table, const sdk_table_factory_params_ &params)
    : table_(table),
      table_id_(params.table_id),
      hints_(params.num_hints),
      more_slot_(table.get_entry(0, 0)->get_more_hint_slot()),
      max_chain_(params.max_chain) {
    const flow_hash_entry_t plain;
    const void *own = virtual_table_of(table.get_entry(0, 0));
    if (own == virtual_table_of(&plain)) plain_table_ = own;
}

engine::~engine() {
    table_.ftl_free(table_id_, stripes_, false, stripe_count_ * sizeof(stripe));
    table_.ftl_free(table_id_, free_words_, false, rows_.overflow_rows() * sizeof(uint32_t));
}

sdk_ret_t engine::start(adapter &hardware) {
    if (!rows_.map(hardware)) return SDK_RET_OK;
    work_ = hardware.work();
    if (work_ == nullptr) return SDK_RET_OK;
    main_shift_ = 32 - static_cast<uint32_t>(std::countr_zero(rows_.main_rows()));
    stripe_count_ = std::min(most_stripes, rows_.main_rows());
    void *memory = table_.ftl_calloc(table_id_, stripe_count_ * sizeof(stripe), false);
    if (memory == nullptr) return SDK_RET_OOM;
    stripes_ = ::new (memory) stripe[stripe_count_];
    free_words_ = static_cast<uint32_t *>(
        table_.ftl_calloc(table_id_, rows_.overflow_rows() * sizeof(uint32_t), false));
    if (free_words_ == nullptr) return SDK_RET_OOM;
    free_.start(free_words_, rows_.overflow_rows());
    note_rows_in_use();
    return SDK_RET_OK;
}

void engine::note_rows_in_use() {
    const scratch_row mine;
    base_table_entry_t *entry = scratch(mine, 0);
    const auto is_valid = [&](const place &row) {
        rows::load(row, body_of(entry));
        return entry->get_entry_valid() != 0;
    };
    place at;
    main_before_ = overflow_before_ = 0;
    for (rows::used_rows used(rows_, flow_table); used.next(at);) main_before_ += is_valid(at);
    free_.begin();
    for (uint32_t row = 0; row < left_out_; ++row) free_.mark(row);
    for (rows::used_rows used(rows_, flow_ohash_table); used.next(at);) {
        free_.mark(at.row);
        overflow_before_ += is_valid(at);
    }
    for (uint32_t i = 0; i < stripe_count_; ++i) stripes_[i].reset_counts();
}

void engine::leave_out(uint32_t end) {
    left_out_ = std::min(end, rows_.overflow_rows());
    if (is_mapped()) note_rows_in_use();
}

sdk_ret_t engine::get(base_table_entry_t *entry, uint32_t hash) {
    rows::prefetch(rows_.main(main_row(hash)));
    return with(entry, [&](auto caller, auto cursor, auto) {
        bool found;
        read_unchanged(stripe_of(main_row(hash)), [&] {
            place at;
            found = holds(cursor, caller, hash, at);
            if (found) rows::load(at, body_of(cursor));
        });
        if (!found) return SDK_RET_ENTRY_NOT_FOUND;
        give(entry, cursor);
        return SDK_RET_OK;
    });
}

}  // namespace halden::host::flow
