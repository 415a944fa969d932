// Insert, update and remove: which words are stored, and in which order.

#include "host/engines/flow/engine.h"

namespace halden::host::flow {

// The hints of the entry stay. A caller's more flag is kept although its hint is not: without a
// hint it leads nowhere.
void engine::take_key_and_data(base_table_entry_t *entry, base_table_entry_t *from) const {
    entry->copy_key_data(from);
    uint32_t hint = 0, flag = 0;
    from->get_hint_hash(more_slot_, hint, flag);
    if (flag == 0) return;
    entry->get_hint(more_slot_, hint);
    entry->set_hint_hash(more_slot_, hint, 1);
}

void engine::link(const place &parent, base_table_entry_t *parent_entry, uint32_t slot,
                  uint32_t row, uint32_t hash) {
    parent_entry->set_hint_hash(slot, 0, hint_hash(hash));
    rows_.store_changed(parent, parent_entry);
    parent_entry->set_hint_hash(slot, row, hint_hash(hash));
    rows_.store_changed(parent, parent_entry);
}

void engine::unlink(const place &parent, base_table_entry_t *parent_entry, uint32_t slot) {
    uint32_t hint = 0, hash = 0;
    rows::load(parent, parent_entry);
    parent_entry->get_hint_hash(slot, hint, hash);
    parent_entry->set_hint_hash(slot, 0, hash);
    rows_.store_changed(parent, parent_entry);
    parent_entry->set_hint_hash(slot, 0, 0);
    rows_.store_changed(parent, parent_entry);
}

// Not valid first, then nothing at all.
void engine::empty(const place &row, base_table_entry_t *entry) {
    rows::load(row, entry);
    entry->set_entry_valid(0);
    rows_.store_changed(row, entry);
    entry->clear();
    rows_.store_changed(row, entry);
}

// Another key and its data in a row whose hints stay.
void engine::replace(const place &row, base_table_entry_t *entry, base_table_entry_t *by) {
    rows::load(row, entry);
    entry->set_entry_valid(0);
    rows_.store_changed(row, entry);
    take_key_and_data(entry, by);
    rows_.store_changed(row, entry);
    entry->set_entry_valid(1);
    rows_.store_changed(row, entry);
}

// The last row of the bucket's part behind `from`: the more chain before the slots, so that it is
// the more chain that grows shorter.
walk engine::leaf_under(const place &from, base_table_entry_t *cursor) const {
    walk way;
    way.at = from;
    for (uint32_t steps = 0;; ++steps) {
        rows::load(way.at, cursor);
        const uint32_t slot = cursor->find_last_hint();
        if (slot == 0) return way;
        uint32_t hint = 0;
        cursor->get_hint(slot, hint);
        if (hint >= rows_.overflow_rows() || steps == longest_walk) {
            way.broken = true;
            return way;
        }
        way.parent = way.at;
        way.slot = slot;
        way.at = rows_.overflow(hint);
    }
}

sdk_ret_t engine::insert(base_table_entry_t *entry, uint32_t hash) {
    const place main = rows_.main(main_row(hash));
    rows::prefetch(main);
    const scratch_row mine;
    base_table_entry_t *cursor = scratch(mine, 0), *fresh = scratch(mine, 1);
    stripe &shared = stripe_of(main_row(hash));
    const std::lock_guard guard(shared);

    const walk way = find(cursor, entry, hash);
    if (way.found) return SDK_RET_ENTRY_EXISTS;
    if (way.broken) return SDK_RET_ERR;
    if (!way.main_in_use) {
        const stripe_change change(shared);
        replace(main, fresh, entry);
        shared.count(1, 0);
        return SDK_RET_OK;
    }

    const uint32_t slot = free_slot(cursor);
    const uint32_t length = slot == more_slot_ ? way.continued : way.chained;
    if (length >= max_chain_) return SDK_RET_NO_RESOURCE;
    const uint32_t row = free_.take();
    if (row == 0) return SDK_RET_NO_RESOURCE;
    fresh->clear();
    take_key_and_data(fresh, entry);
    fresh->set_entry_valid(1);
    const stripe_change change(shared);
    rows_.store_changed(rows_.overflow(row), fresh);
    link(way.at, cursor, slot, row, hash);
    shared.count(0, 1);
    return SDK_RET_OK;
}

sdk_ret_t engine::update(base_table_entry_t *entry, uint32_t hash) {
    rows::prefetch(rows_.main(main_row(hash)));
    const scratch_row mine;
    base_table_entry_t *cursor = scratch(mine, 0);
    stripe &shared = stripe_of(main_row(hash));
    const std::lock_guard guard(shared);

    const walk way = find(cursor, entry, hash);
    if (!way.found) return SDK_RET_ENTRY_NOT_FOUND;
    const stripe_change change(shared);
    take_key_and_data(cursor, entry);
    rows_.store_changed(way.at, cursor);
    return SDK_RET_OK;
}

sdk_ret_t engine::remove(base_table_entry_t *entry, uint32_t hash) {
    rows::prefetch(rows_.main(main_row(hash)));
    const scratch_row mine;
    base_table_entry_t *cursor = scratch(mine, 0), *other = scratch(mine, 1);
    stripe &shared = stripe_of(main_row(hash));
    const std::lock_guard guard(shared);

    const walk way = find(cursor, entry, hash);
    if (!way.found) return SDK_RET_ENTRY_NOT_FOUND;
    walk leaf = leaf_under(way.at, cursor);
    if (leaf.broken) return SDK_RET_ERR;

    const stripe_change change(shared);
    if (leaf.slot != 0) {
        replace(way.at, other, cursor);
    } else {
        leaf = way;
    }
    if (leaf.at.is_main()) {
        empty(leaf.at, other);
        shared.count(-1, 0);
        return SDK_RET_OK;
    }
    unlink(leaf.parent, other, leaf.slot);
    empty(leaf.at, other);
    free_.give_back(leaf.at.row);
    shared.count(0, -1);
    return SDK_RET_OK;
}

}  // namespace halden::host::flow
