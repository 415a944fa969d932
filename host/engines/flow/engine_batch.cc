// Calls on many entries. A single call waits for memory twice or more: for the main row, then for
// each row behind it. Here an entry takes its steps some way behind those in front of it; a step
// ends with the next row on its way, which is there when the entry's turn comes again.

#include "host/engines/flow/engine_work.h"

#include <algorithm>

namespace halden::host::flow {

namespace {

// Entries between two steps of one: as many rows as a core can wait for at once.
constexpr size_t distance = 16;
// Few flows stand further from their main row.
constexpr unsigned steps = 2;
constexpr size_t most_under_way = 64;
static_assert(most_under_way > distance * (steps + 1));

}  // namespace

struct engine::batch_call {
    uint32_t hash;
    uint32_t version;
    place at;  // the row of the next step; none when there is nothing more to fetch
    bool done;
    bool takes_row;
};

// `work(entry, call, step, result)` is called for every entry, step by step, until it answers true;
// for each step in the order of the entries.
template <typename F>
size_t engine::in_steps(std::span<base_table_entry_t *const> entries, sdk_ret_t *results, F work) {
    batch_call calls[most_under_way];
    size_t succeeded = 0;
    const size_t count = entries.size();
    for (size_t now = 0; now < count + distance * (steps + 1); ++now) {
        if (now < count) results[now] = begin(entries[now], calls[now % most_under_way]);
        for (unsigned step = 0; step <= steps; ++step) {
            const size_t i = now - distance * (step + 1);
            if (i >= count) continue;  // of those in front, too: the number is unsigned
            batch_call &call = calls[i % most_under_way];
            if (call.done || !work(entries[i], call, step, results[i])) continue;
            call.done = true;
            succeeded += results[i] == SDK_RET_OK;
        }
    }
    return succeeded;
}

sdk_ret_t engine::begin(base_table_entry_t *entry, batch_call &call) {
    call.done = true;
    if (entry == nullptr) return SDK_RET_INVALID_ARG;
    sdk_table_api_params_ question = {};
    question.entry = entry;
    const sdk_ret_t result = hash_of(question, call.hash);
    if (result != SDK_RET_OK) return result;
    call.done = call.takes_row = false;
    call.at = rows_.main(main_row(call.hash));
    rows::prefetch(call.at);
    return result;
}

// Looks at one row, and fetches the one behind it to which an operation on the entry goes on; with
// `to_leaf` from the entry's own row also the first on the way to a leaf. What another thread
// changes meanwhile makes the guess useless, not wrong. Answers whether a new flow would take a new
// row.
bool engine::step_ahead(base_table_entry_t *entry, batch_call &call, bool to_leaf) {
    if (call.at.at == nullptr) return false;
    return with(entry, [&](auto caller, auto cursor, auto) {
        const place here = call.at;
        call.at.at = nullptr;
        const seen_row seen = look(here, cursor, caller, call.hash);
        if (seen.has_key) {
            if (!to_leaf) return false;
            uint32_t hint = 0;
            rows::load(here, body_of(cursor));
            const uint32_t slot = cursor->find_last_hint();
            if (slot == 0) return false;
            cursor->get_hint(slot, hint);
            if (hint < rows_.overflow_rows()) rows::prefetch(rows_.overflow(hint));
            return false;
        }
        if (seen.slot == 0) return seen.in_use;
        if (seen.hint >= rows_.overflow_rows()) return false;
        call.at = rows_.overflow(seen.hint);
        rows::prefetch(call.at);
        return false;
    });
}

size_t engine::insert(std::span<base_table_entry_t *const> entries, sdk_ret_t *results) {
    uint32_t new_rows = 0;  // that the entries under way are likely to take
    return in_steps(entries, results,
                    [&](base_table_entry_t *entry, batch_call &call, unsigned step, auto &result) {
                        if (step == steps) {
                            new_rows -= call.takes_row;
                            result = insert(entry, call.hash);
                            return true;
                        }
                        if (step_ahead(entry, call, false)) {
                            call.takes_row = true;
                            rows::prefetch_to_write(rows_.overflow(free_.peek(new_rows++)));
                        }
                        return false;
                    });
}

size_t engine::remove(std::span<base_table_entry_t *const> entries, sdk_ret_t *results) {
    return in_steps(entries, results,
                    [&](base_table_entry_t *entry, batch_call &call, unsigned step, auto &result) {
                        if (step == steps) {
                            result = remove(entry, call.hash);
                            return true;
                        }
                        step_ahead(entry, call, true);
                        return false;
                    });
}

// Answers false when the way goes on.
bool engine::step_of_get(base_table_entry_t *entry, batch_call &call, sdk_ret_t &result) {
    const stripe &shared = stripe_of(main_row(call.hash));
    return with(entry, [&](auto caller, auto cursor, auto) {
        const seen_row seen = look(call.at, cursor, caller, call.hash);
        if (seen.slot != 0 && seen.hint < rows_.overflow_rows()) {
            call.at = rows_.overflow(seen.hint);
            rows::prefetch(call.at);
            return false;
        }
        if (seen.has_key) rows::load(call.at, body_of(cursor));
        if (!shared.unchanged(call.version)) return false;
        result = SDK_RET_ENTRY_NOT_FOUND;
        if (!seen.has_key) return true;
        give(entry, cursor);
        result = SDK_RET_OK;
        return true;
    });
}

size_t engine::get(std::span<base_table_entry_t *const> entries, sdk_ret_t *results) {
    return in_steps(entries, results,
                    [&](base_table_entry_t *entry, batch_call &call, unsigned step, auto &result) {
                        if (step == 0) call.version = stripe_of(main_row(call.hash)).version();
                        if (step_of_get(entry, call, result)) return true;
                        if (step == steps) result = get(entry, call.hash);
                        return step == steps;
                    });
}

}  // namespace halden::host::flow
