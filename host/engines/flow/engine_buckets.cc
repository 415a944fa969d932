// Reading whole buckets, for tools.

#include "host/engines/flow/engine.h"

#include <algorithm>

namespace halden::host::flow {

uint64_t engine::count() const {
    int64_t sum = int64_t{main_before_} + overflow_before_;
    for (uint32_t i = 0; i < stripe_count_; ++i)
        sum += stripes_[i].in_main() + stripes_[i].in_overflow();
    return static_cast<uint64_t>(sum);
}

// Goes to no overflow row twice: `seen` keeps damaged hints from leading it in circles.
void engine::collect(const place &at, uint32_t path, base_table_entry_t *cursor,
                     std::vector<bucket_row> &out, std::unordered_set<uint32_t> &seen) const {
    rows::load(at, body_of(cursor));
    if (cursor->get_entry_valid() != 0) {
        bucket_row &row = out.emplace_back();
        row.at = at;
        row.path = path;
        std::reverse_copy(body_of(cursor), body_of(cursor) + flow_row_bytes, row.image.begin());
    }
    const uint32_t last = cursor->find_last_hint();
    if (last == 0 || path == longest_walk) return;
    std::vector<uint32_t> hints;
    for (uint32_t slot = 1; slot <= last; ++slot) {
        uint32_t hint = 0;
        cursor->get_hint(slot, hint);
        if (hint != 0 && hint < rows_.overflow_rows()) hints.push_back(hint);
    }
    for (const uint32_t hint : hints)
        if (seen.insert(hint).second) collect(rows_.overflow(hint), path + 1, cursor, out, seen);
}

void engine::for_each_bucket(const std::function<bool(const std::vector<bucket_row> &)> &see) {
    if (!is_mapped()) return;
    std::vector<bucket_row> bucket;
    std::unordered_set<uint32_t> seen;
    place main;
    for (rows::used_rows used(rows_, flow_table); used.next(main);) {
        {
            const scratch_row mine;
            read_unchanged(stripe_of(main.row), [&] {
                bucket.clear();
                seen.clear();
                collect(main, 0, scratch(mine, 0), bucket, seen);
            });
        }
        if (!see(bucket)) return;
    }
}

}  // namespace halden::host::flow
