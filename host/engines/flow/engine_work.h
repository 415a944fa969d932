#pragma once

// The engine's work on single rows, for entries behind either kind of handle (entry_handle.h).

#include "host/engines/flow/engine.h"
#include "host/engines/flow/row_view.h"

#include <type_traits>

namespace halden::host::flow {

// --- Ways ----------------------------------------------------------------------------------------

// The slot by which a key of `hash` goes on, with its hint; 0 when the path ends here.
template <typename E>
uint32_t engine::next_slot(E entry, uint32_t hash, uint32_t &hint) const {
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
template <typename E>
uint32_t engine::free_slot(E entry) const {
    const uint32_t last = entry->find_last_hint();
    if (last < hints_) return last + 1;
    for (uint32_t slot = 1; slot <= hints_; ++slot) {
        uint32_t hint = 0;
        entry->get_hint(slot, hint);
        if (hint == 0) return slot;
    }
    return more_slot_;
}

// Reads a row: whether it is in use and whether it holds the key; and the slot by which a key of
// `hash` goes on.
template <typename E>
inline engine::seen_row engine::look(const place &at, E cursor, E key, uint32_t hash) const {
    seen_row seen;
    if constexpr (std::is_same_v<E, plain_entry>) {
        const row_view row(at);
        seen.in_use = row.is_valid();
        seen.has_key = seen.in_use && row.has_key_of(key.body());
        if (!seen.has_key && row.copy_hints(cursor.body()))
            seen.slot = next_slot(cursor, hash, seen.hint);
    } else {
        rows::load(at, body_of(cursor));
        seen.in_use = cursor->get_entry_valid() != 0;
        seen.has_key = seen.in_use && cursor->compare_key(key);
        if (!seen.has_key) seen.slot = next_slot(cursor, hash, seen.hint);
    }
    return seen;
}

// Whether the key is in the table; `at` becomes its row. What `cursor` holds at the end is of no
// meaning.
template <typename E>
bool engine::holds(E cursor, E key, uint32_t hash, place &at) const {
    at = rows_.main(main_row(hash));
    for (uint32_t steps = 0; steps <= longest_walk; ++steps) {
        const seen_row seen = look(at, cursor, key, hash);
        if (seen.has_key || seen.slot == 0 || seen.hint >= rows_.overflow_rows())
            return seen.has_key;
        at = rows_.overflow(seen.hint);
    }
    return false;
}

// The same with all that a change needs to know.
template <typename E>
walk engine::find(E cursor, E key, uint32_t hash) const {
    walk way;
    way.at = rows_.main(main_row(hash));
    for (uint32_t steps = 0;; ++steps) {
        const seen_row seen = look(way.at, cursor, key, hash);
        if (steps == 0) way.main_in_use = seen.in_use;
        way.found = seen.has_key;
        if (seen.has_key || seen.slot == 0) return way;
        if (seen.hint >= rows_.overflow_rows() || steps == longest_walk) {
            way.broken = true;
            return way;
        }
        if (seen.slot == more_slot_) {
            ++way.continued;
            way.chained = 0;
        } else {
            ++way.chained;
        }
        way.parent = way.at;
        way.slot = seen.slot;
        way.at = rows_.overflow(seen.hint);
    }
}

// The last row of the bucket's part behind `from`: the more chain before the slots, so that it is
// the more chain that grows shorter. At the end `cursor` holds that row.
template <typename E>
walk engine::leaf_under(const place &from, E cursor) const {
    walk way;
    way.at = from;
    for (uint32_t steps = 0;; ++steps) {
        rows::load(way.at, body_of(cursor));
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

// Makes the caller's whole entry of one that was read whole. Word by word: they were just written
// that way, and the wider loads of a copy would wait for them.
template <typename E>
void engine::give(base_table_entry_t *entry, E from) {
    for_row_words([&](auto i) {
        uint64_t word = flow_layout::load_word(body_of(from), i);
        __asm__("" : "+r"(word));
        flow_layout::store_word(body_of(entry), i, word);
    });
    if constexpr (std::is_same_v<E, plain_entry>) {
        entry->valid = 1;
        flow_layout::set_valid(body_of(entry), true);
    } else {
        entry->set_entry_valid(1);
    }
}

// --- Stores --------------------------------------------------------------------------------------

// The hints of the entry stay. A caller's more flag is kept although its hint is not: without a
// hint it leads nowhere.
template <typename E>
void engine::take_key_and_data(E entry, E from) const {
    entry->copy_key_data(from);
    uint32_t hint = 0, flag = 0;
    from->get_hint_hash(more_slot_, hint, flag);
    if (flag == 0) return;
    entry->get_hint(more_slot_, hint);
    entry->set_hint_hash(more_slot_, hint, 1);
}

// What differs from the row is hints and hashes. Where the entry's layout is known, only their
// words are looked at.
template <typename E>
void engine::store_hints(const place &row, E entry) const {
    if constexpr (std::is_same_v<E, plain_entry>) {
        rows_.store_changed<flow_layout::first_chain_word, flow_layout::data_word>(row,
                                                                                   entry.body());
    } else {
        rows_.store_changed(row, body_of(entry));
    }
}

// The same for the valid bit.
template <typename E>
void engine::store_valid(const place &row, E entry) const {
    if constexpr (std::is_same_v<E, plain_entry>) {
        constexpr uint32_t word = flow_layout::valid_word;
        rows_.store_changed<word, word>(row, entry.body());
    } else {
        rows_.store_changed(row, body_of(entry));
    }
}

template <typename E>
void engine::link(const place &parent, E parent_entry, uint32_t slot, uint32_t row, uint32_t hash) {
    parent_entry->set_hint_hash(slot, 0, hint_hash(hash));
    store_hints(parent, parent_entry);
    parent_entry->set_hint_hash(slot, row, hint_hash(hash));
    store_hints(parent, parent_entry);
}

template <typename E>
void engine::unlink(const place &parent, E parent_entry, uint32_t slot) {
    uint32_t hint = 0, hash = 0;
    rows::load(parent, body_of(parent_entry));
    parent_entry->get_hint_hash(slot, hint, hash);
    parent_entry->set_hint_hash(slot, 0, hash);
    store_hints(parent, parent_entry);
    parent_entry->set_hint_hash(slot, 0, 0);
    store_hints(parent, parent_entry);
}

// Not valid first, then nothing at all. `entry` holds the row.
template <typename E>
void engine::empty(const place &row, E entry) {
    entry->set_entry_valid(0);
    store_valid(row, entry);
    entry->clear();
    rows_.store_changed(row, body_of(entry));
}

// Another key and its data in a row whose hints stay. `entry` holds the row.
template <typename E>
void engine::replace(const place &row, E entry, E by) {
    if (entry->get_entry_valid() != 0) {
        entry->set_entry_valid(0);
        store_valid(row, entry);
    }
    take_key_and_data(entry, by);
    rows_.store_changed(row, body_of(entry));
    entry->set_entry_valid(1);
    store_valid(row, entry);
}

}  // namespace halden::host::flow
