// Insert, update and remove: which words are stored, and in which order.

#include "host/engines/flow/bucket_work.h"
#include "host/engines/flow/engine_work.h"

#include <utility>

namespace halden::host::flow {

template <typename E>
sdk_ret_t engine::insert_as(E entry, E cursor, E fresh, uint32_t hash) {
    stripe &shared = stripe_of(main_row(hash));
    const std::lock_guard guard(shared);

    const walk way = find(cursor, entry, hash);
    if (way.found) return SDK_RET_ENTRY_EXISTS;
    if (way.broken) return SDK_RET_ERR;
    if (!way.main_in_use) {
        const place main = rows_.main(main_row(hash));
        rows::load(main, body_of(cursor));
        bucket_work work = begin_work(hash);
        work.names(0, true);
        return change(shared, [&] {
            replace(main, cursor, entry);
            shared.count(1, 0);
            return SDK_RET_OK;
        });
    }

    rows::load(way.at, body_of(cursor));
    const uint32_t slot = free_slot(cursor);
    const uint32_t length = slot == more_slot_ ? way.continued : way.chained;
    if (length >= max_chain_) return SDK_RET_NO_RESOURCE;
    const uint32_t row = free_.take();
    if (row == 0) return SDK_RET_NO_RESOURCE;
    fresh->clear();
    take_key_and_data(fresh, entry);
    fresh->set_entry_valid(1);
    bucket_work work = begin_work(hash);
    work.names(row, false);
    const sdk_ret_t result = change(shared, [&] {
        rows_.store_all(rows_.overflow(row), body_of(fresh));
        link(way.at, cursor, slot, row, hash);
        shared.count(0, 1);
        return SDK_RET_OK;
    });
    if (result != SDK_RET_OK) free_.give_back(row);
    return result;
}

sdk_ret_t engine::insert(base_table_entry_t *entry, uint32_t hash) {
    if (!rows_.is_writable()) return SDK_RET_HW_PROGRAM_ERR;
    rows::prefetch(rows_.main(main_row(hash)));
    return with(entry, [&](auto caller, auto cursor, auto fresh) {
        return rows_.kept(insert_as(caller, cursor, fresh, hash));
    });
}

sdk_ret_t engine::update(base_table_entry_t *entry, uint32_t hash) {
    if (!rows_.is_writable()) return SDK_RET_HW_PROGRAM_ERR;
    rows::prefetch(rows_.main(main_row(hash)));
    return with(entry, [&](auto caller, auto cursor, auto) {
        stripe &shared = stripe_of(main_row(hash));
        const std::lock_guard guard(shared);
        const walk way = find(cursor, caller, hash);
        if (!way.found) return SDK_RET_ENTRY_NOT_FOUND;
        rows::load(way.at, body_of(cursor));
        return rows_.kept(change(shared, [&] {
            take_key_and_data(cursor, caller);
            rows_.store_changed(way.at, body_of(cursor));
            return SDK_RET_OK;
        }));
    });
}

template <typename E>
sdk_ret_t engine::remove_as(E entry, E cursor, E other, uint32_t hash) {
    stripe &shared = stripe_of(main_row(hash));
    const std::lock_guard guard(shared);

    const walk way = find(cursor, entry, hash);
    if (!way.found) return SDK_RET_ENTRY_NOT_FOUND;
    rows::load(way.at, body_of(cursor));
    bucket_work work = begin_work(hash);
    return change(shared, [&] { return take_out(shared, work, way, cursor, other); });
}

// The row of `way`, which `cursor` holds, loses its flow.
template <typename E>
sdk_ret_t engine::take_out(stripe &shared, bucket_work &work, walk leaf, E cursor, E other) {
    const place from = leaf.at;
    while (cursor->find_last_hint() != 0) {
        leaf = leaf_under(from, other);
        if (leaf.broken) return SDK_RET_ERR;
        if (other->get_entry_valid() == 0) {
            // Damaged memory: a hint to a row that somebody emptied. Whose it is is not known here.
            work.names(0, false);
            unlink(leaf.parent, other, leaf.slot);
            rows::load(from, body_of(cursor));
            leaf.at = from;
            continue;
        }
        work.names(leaf.at.row, from.is_main());
        replace(from, cursor, other);
        std::swap(cursor, other);  // from here on the leaf is the row in hand
        break;
    }
    work.names(leaf.at.is_main() ? 0 : leaf.at.row, from.is_main());
    if (leaf.at.is_main()) {
        empty(leaf.at, cursor);
        shared.count(-1, 0);
        return SDK_RET_OK;
    }
    unlink(leaf.parent, other, leaf.slot);
    empty(leaf.at, cursor);
    if (leaf.at.row >= left_out_) free_.give_back(leaf.at.row);
    shared.count(0, -1);
    return SDK_RET_OK;
}

sdk_ret_t engine::remove(base_table_entry_t *entry, uint32_t hash) {
    if (!rows_.is_writable()) return SDK_RET_HW_PROGRAM_ERR;
    rows::prefetch(rows_.main(main_row(hash)));
    return with(entry, [&](auto caller, auto cursor, auto other) {
        return rows_.kept(remove_as(caller, cursor, other, hash));
    });
}

}  // namespace halden::host::flow
