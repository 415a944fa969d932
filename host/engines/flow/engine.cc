// Setting up, and the way to an entry.

#include "host/engines/flow/engine.h"

#include <algorithm>
#include <bit>
#include <new>

namespace halden::host::flow {

namespace {

// Enough that writers rarely meet, few enough to stay in the cache.
constexpr uint32_t most_stripes = 4096;

}  // namespace

engine::engine(sdk::table::ftl_base &table, const sdk_table_factory_params_ &params)
    : table_(table),
      table_id_(params.table_id),
      hints_(params.num_hints),
      more_slot_(table.get_entry(0, 0)->get_more_hint_slot()),
      max_chain_(params.max_chain) {}

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

// The slot by which a key of `hash` goes on, with its hint; 0 when the path ends here.
uint32_t engine::next_slot(base_table_entry_t *entry, uint32_t hash, uint32_t &hint) const {
    const uint32_t last = entry->find_last_hint();
    if (last == 0) return 0;
    const uint32_t wanted = hint_hash(hash);
    const uint32_t end = last == more_slot_ ? more_slot_ - 1 : last;
    for (uint32_t slot = 1; slot <= end; ++slot) {
        uint32_t slot_hash = 0;
        entry->get_hint_hash(slot, hint, slot_hash);
        if (hint != 0 && slot_hash == wanted) return slot;
    }
    if (last != more_slot_) return 0;
    entry->get_hint(more_slot_, hint);
    return more_slot_;
}

// For a new row behind `entry`, on which a path has ended: its more slot is free in any case.
uint32_t engine::free_slot(base_table_entry_t *entry) const {
    const uint32_t last = entry->find_last_hint();
    if (last < hints_) return last + 1;
    for (uint32_t slot = 1; slot <= hints_; ++slot) {
        uint32_t hint = 0;
        entry->get_hint(slot, hint);
        if (hint == 0) return slot;
    }
    return more_slot_;
}

walk engine::find(base_table_entry_t *cursor, base_table_entry_t *key, uint32_t hash) const {
    walk way;
    way.at = rows_.main(main_row(hash));
    for (uint32_t steps = 0;; ++steps) {
        rows::load(way.at, cursor);
        const bool in_use = cursor->get_entry_valid() != 0;
        if (steps == 0) way.main_in_use = in_use;
        if (in_use && cursor->compare_key(key)) {
            way.found = true;
            return way;
        }
        uint32_t hint = 0;
        const uint32_t slot = next_slot(cursor, hash, hint);
        if (slot == 0) return way;
        if (hint >= rows_.overflow_rows() || steps == longest_walk) {
            way.broken = true;
            return way;
        }
        if (slot == more_slot_) {
            ++way.continued;
            way.chained = 0;
        } else {
            ++way.chained;
        }
        way.parent = way.at;
        way.slot = slot;
        way.at = rows_.overflow(hint);
    }
}

// The caller's whole entry, from a scratch entry that was read whole.
void engine::fill(base_table_entry_t *entry, base_table_entry_t *from) {
    std::memcpy(body_of(entry), body_of(from), flow_row_bytes);
    entry->set_entry_valid(1);
}

sdk_ret_t engine::get(base_table_entry_t *entry, uint32_t hash) {
    rows::prefetch(rows_.main(main_row(hash)));
    const scratch_row mine;
    base_table_entry_t *cursor = scratch(mine, 0);
    walk way;
    read_unchanged(stripe_of(main_row(hash)), [&] { way = find(cursor, entry, hash); });
    if (!way.found) return SDK_RET_ENTRY_NOT_FOUND;
    fill(entry, cursor);
    return SDK_RET_OK;
}

}  // namespace halden::host::flow
