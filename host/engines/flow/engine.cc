// Setting up, and the way to an entry.

#include "host/engines/flow/engine_work.h"

#include <algorithm>
#include <bit>
#include <new>

namespace halden::host::flow {

namespace {

// Enough that writers rarely meet, few enough to stay in the cache.
constexpr uint32_t most_stripes = 4096;

}  // namespace

// A class is known by its virtual table; flow_hash_entry_t's is that of an entry made here.
bool plain_entry::is_one(base_table_entry_t *entry) {
    static const flow_hash_entry_t one;
    const auto table_of = [](const base_table_entry_t *of) {
        const void *table;
        std::memcpy(&table, static_cast<const void *>(of), sizeof table);
        return table;
    };
    return table_of(entry) == table_of(&one);
}

engine::engine(sdk::table::ftl_base &table, const sdk_table_factory_params_ &params)
    : table_(table),
      table_id_(params.table_id),
      hints_(params.num_hints),
      more_slot_(table.get_entry(0, 0)->get_more_hint_slot()),
      max_chain_(params.max_chain),
      plain_(plain_entry::is_one(table.get_entry(0, 0))) {}

engine::~engine() {
    table_.ftl_free(table_id_, stripes_, false, stripe_count_ * sizeof(stripe));
    table_.ftl_free(table_id_, links_, false, rows_.overflow_rows() * sizeof(uint32_t));
}

sdk_ret_t engine::start(adapter &hardware) {
    if (!rows_.map(hardware)) return SDK_RET_OOM;
    main_shift_ = 32 - static_cast<uint32_t>(std::countr_zero(rows_.main_rows()));
    stripe_count_ = std::min(most_stripes, rows_.main_rows());
    void *memory = table_.ftl_calloc(table_id_, stripe_count_ * sizeof(stripe), false);
    if (memory == nullptr) return SDK_RET_OOM;
    stripes_ = ::new (memory) stripe[stripe_count_];
    links_ = static_cast<uint32_t *>(
        table_.ftl_calloc(table_id_, rows_.overflow_rows() * sizeof(uint32_t), false));
    if (links_ == nullptr) return SDK_RET_OOM;
    free_.start(links_, rows_.overflow_rows());
    note_rows_in_use();
    return SDK_RET_OK;
}

void engine::note_rows_in_use(uint32_t left_out) {
    const scratch_row mine;
    base_table_entry_t *entry = scratch(mine, 0);
    const auto is_valid = [&](const place &row) {
        rows::load(row, entry);
        return entry->get_entry_valid() != 0;
    };
    place at;
    main_before_ = overflow_before_ = 0;
    for (rows::used_rows used(rows_, flow_table); used.next(at);) main_before_ += is_valid(at);
    std::vector<bool> taken(left_out, true);
    uint32_t count = std::max(left_out, 1u) - 1;
    for (rows::used_rows used(rows_, flow_ohash_table); used.next(at);) {
        if (at.row >= taken.size()) taken.resize(at.row + 1);
        if (at.row != 0 && !taken[at.row]) ++count;
        taken[at.row] = true;
        overflow_before_ += is_valid(at);
    }
    free_.rebuild(std::move(taken), count);
    for (uint32_t i = 0; i < stripe_count_; ++i) stripes_[i].reset_counts();
}

void engine::leave_out(uint32_t end) { note_rows_in_use(end); }

// The caller's record stays as it is: it may be used again for another key.
sdk_ret_t engine::hash_of(const sdk_table_api_params_ &call, uint32_t &hash) const {
    sdk_table_api_params_ question = call;
    const sdk_ret_t result = table_.genhash_(&question);
    hash = question.hash_value;
    return result;
}

sdk_ret_t engine::get(base_table_entry_t *entry, uint32_t hash) {
    rows::prefetch(rows_.main(main_row(hash)));
    const scratch_row mine;
    return with(entry, mine, [&](auto caller, auto cursor, auto) {
        walk way;
        read_unchanged(stripe_of(main_row(hash)), [&] {
            way = find(cursor, caller, hash);
            if (way.found) rows::load(way.at, base_of(cursor));
        });
        if (!way.found) return SDK_RET_ENTRY_NOT_FOUND;
        fill(caller, cursor);
        return SDK_RET_OK;
    });
}

}  // namespace halden::host::flow
