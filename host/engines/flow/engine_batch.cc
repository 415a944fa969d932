// Calls on many entries. A single call waits for memory twice or more: for the main row, then for
// each row behind it. Here the first wait is shared by a whole group, and so is the second.

#include "host/engines/flow/engine_work.h"

#include <algorithm>

namespace halden::host::flow {

namespace {

// As many rows as a core can wait for at once, and some more to work on meanwhile.
constexpr size_t group = 32;

}  // namespace

// Looks at the entry's main row. Where the path goes on, its next row is on its way when this
// returns; what another thread changes meanwhile makes the guess useless, not wrong.
template <typename E>
engine::seen_row engine::look_at_main(E cursor, E entry, uint32_t hash) const {
    const seen_row seen = look(rows_.main(main_row(hash)), cursor, entry, hash);
    if (seen.slot != 0 && seen.hint < rows_.overflow_rows())
        rows::prefetch(rows_.overflow(seen.hint));
    return seen;
}

// `one(entry, hash, mine, second)` is called twice for every entry, first for all of a group. The
// first call may leave the result to the second by answering SDK_RET_RETRY.
template <typename F>
size_t engine::in_groups(std::span<base_table_entry_t *const> entries, sdk_ret_t *results, F one) {
    const scratch_row mine;
    size_t succeeded = 0;
    uint32_t hashes[group];
    for (; !entries.empty(); entries = entries.subspan(std::min(group, entries.size()))) {
        const size_t count = std::min(group, entries.size());
        for (size_t i = 0; i < count; ++i) {
            results[i] = SDK_RET_INVALID_ARG;
            if (entries[i] == nullptr) continue;
            sdk_table_api_params_ question = {};
            question.entry = entries[i];
            results[i] = hash_of(question, hashes[i]);
            if (results[i] != SDK_RET_OK) continue;
            results[i] = SDK_RET_RETRY;
            rows::prefetch(rows_.main(main_row(hashes[i])));
        }
        for (const bool second : {false, true})
            for (size_t i = 0; i < count; ++i)
                if (results[i] == SDK_RET_RETRY)
                    results[i] = one(entries[i], hashes[i], mine, second);
        for (size_t i = 0; i < count; ++i) succeeded += results[i] == SDK_RET_OK;
        results += count;
    }
    return succeeded;
}

size_t engine::insert(std::span<base_table_entry_t *const> entries, sdk_ret_t *results) {
    return in_groups(
        entries, results,
        [&](base_table_entry_t *entry, uint32_t hash, const scratch_row &mine, bool second) {
            if (second) return insert(entry, hash);
            with(entry, mine,
                 [&](auto caller, auto cursor, auto) { look_at_main(cursor, caller, hash); });
            return SDK_RET_RETRY;
        });
}

size_t engine::remove(std::span<base_table_entry_t *const> entries, sdk_ret_t *results) {
    return in_groups(
        entries, results,
        [&](base_table_entry_t *entry, uint32_t hash, const scratch_row &mine, bool second) {
            if (second) return remove(entry, hash);
            with(entry, mine,
                 [&](auto caller, auto cursor, auto) { look_at_main(cursor, caller, hash); });
            return SDK_RET_RETRY;
        });
}

size_t engine::get(std::span<base_table_entry_t *const> entries, sdk_ret_t *results) {
    return in_groups(
        entries, results,
        [&](base_table_entry_t *entry, uint32_t hash, const scratch_row &mine, bool second) {
            if (second) return get(entry, hash);
            return with(entry, mine, [&](auto caller, auto cursor, auto) {
                const stripe &shared = stripe_of(main_row(hash));
                const uint32_t version = shared.version();
                const seen_row seen = look_at_main(cursor, caller, hash);
                if (seen.slot != 0) return SDK_RET_RETRY;
                if (seen.has_key) rows::load(rows_.main(main_row(hash)), base_of(cursor));
                if (!shared.unchanged(version)) return SDK_RET_RETRY;
                if (!seen.has_key) return SDK_RET_ENTRY_NOT_FOUND;
                fill(caller, cursor);
                return SDK_RET_OK;
            });
        });
}

}  // namespace halden::host::flow
