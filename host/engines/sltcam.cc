// The ternary engine. The lowest row that matches wins in hardware, so rows are kept in the order
// of specificity (bits compared), the highest first; free rows may stand anywhere.
//
//     row   0  1  2  3  4  5  6  7            an entry of specificity 2 goes between 3 and 2 or
//           4  4  3  -  2  2  1  -            between 2 and 1: row 3 serves
//
// Where no row between the neighbours is free, the nearest free row is walked there: one entry of
// each class of equal specificity on the way moves from one end of its class to the other. An entry
// is copied before its old row is emptied, and copied within its class only, so at every instant
// hardware finds what it found before.

#include "sdk/table/sltcam.h"

#include "host/engines/access.h"
#include "host/engines/engine.h"
#include "host/memory/work_page.h"

#include <cstring>
#include <memory>
#include <mutex>
#include <new>
#include <shared_mutex>
#include <vector>

namespace sdk::table {

using namespace halden::host;

namespace {

struct tcam_entry {
    ternary_key images;
    // The key as it was given, whatever its mask leaves of it. After a restart the memory knows
    // only what the mask left.
    record_bytes given;
    uint32_t specificity;
};

}  // namespace

struct sltcam::impl {
    impl(uint32_t id, bool trace) : rows(current(), id), counters(trace), entries(rows.rows()) {
        finish_move();
        // Memory that cannot be mapped answers the same for every row.
        for (uint32_t row = 0; row < rows.rows() && unread != SDK_RET_OOM; ++row) {
            ternary_key images;
            const sdk_ret_t found = rows.images_at(row, images);
            if (found == SDK_RET_OK || found == SDK_RET_ENTRY_NOT_FOUND)
                usable.push_back(row);
            else
                unread = found;
            if (found != SDK_RET_OK) continue;
            if (of_an_unknown_move(row, images)) continue;
            entries[row] =
                std::make_unique<tcam_entry>(tcam_entry{images, images.ones, images.specificity()});
        }
    }

    static constexpr uint32_t none = UINT32_MAX;
    uint32_t end() const { return static_cast<uint32_t>(entries.size()); }

    uint32_t find_images(const ternary_key &images) const {
        for (uint32_t row = 0; row < end(); ++row)
            if (entries[row] != nullptr && entries[row]->images == images) return row;
        return none;
    }
    // With a mask, the entry of that very key and mask; without one, the most specific entry that
    // was made with the key.
    uint32_t find(const sdk_table_api_params_ *params) const {
        const ternary_key images = rows.images_of(params->key, params->mask);
        if (params->mask != nullptr) return find_images(images);
        for (uint32_t row = 0; row < end(); ++row)
            if (entries[row] != nullptr &&
                (entries[row]->given == images.ones || entries[row]->images.ones == images.ones))
                return row;
        return none;
    }

    // A key that was not found may stand in a row that could not be read.
    sdk_ret_t absent() const { return unread != SDK_RET_OK ? unread : SDK_RET_ENTRY_NOT_FOUND; }

    // By number among the usable rows.
    bool is_free(uint32_t n) const { return entries[usable[n]] == nullptr; }
    uint32_t specificity(uint32_t n) const { return entries[usable[n]]->specificity; }

    // What a process that was killed in the middle of a move left: the entry twice, or data without
    // a key where it was. The old row holds it until its key is gone.
    void finish_move() {
        work_page *work = work_of_tables();
        if (work == nullptr || !rows.hardware().is_writable()) return;
        const uint64_t word = work->of_table(rows.table()).load(std::memory_order_acquire);
        const uint64_t from = (word >> 32) - 1, to = (word & UINT32_MAX) - 1;
        if (word == 0 || from >= end() || to >= end()) return;
        const auto old_row = static_cast<uint32_t>(from), new_row = static_cast<uint32_t>(to);
        const sdk_ret_t result = rows.clear(rows.in_use(old_row) ? new_row : old_row);
        if (result == SDK_RET_OK) name_move(0);
    }
    // An older process that was killed did not say what it was moving: the same entry with the same
    // data in two rows.
    bool of_an_unknown_move(uint32_t row, const ternary_key &images) const {
        work_page *work = work_of_tables();
        const bool unknown = work != nullptr && !work->is_known() && rows.hardware().is_writable();
        const uint32_t other = unknown ? find_images(images) : none;
        record_bytes here, there;
        return other != none && rows.read(row, here) == SDK_RET_OK &&
               rows.read(other, there) == SDK_RET_OK && here == there &&
               rows.clear(row) == SDK_RET_OK;
    }
    work_page *work_of_tables() const { return rows.hardware().work(); }
    void name_move(uint64_t word) const {
        if (work_page *work = work_of_tables())
            work->of_table(rows.table()).store(word, std::memory_order_release);
    }

    // Empties a free row that a refused call could not.
    sdk_ret_t sweep();
    sdk_ret_t copy_and_clear(uint32_t from, uint32_t to, const record_bytes &data);
    sdk_ret_t move(uint32_t from, uint32_t to);
    sdk_ret_t make_room(uint32_t specificity, uint32_t &row);
    sdk_ret_t walk_up(uint32_t n, uint32_t high, uint32_t &row);
    sdk_ret_t walk_down(uint32_t n, uint32_t low, uint32_t &row);
    sdk_ret_t insert(const sdk_table_api_params_ *params);
    sdk_ret_t update(const sdk_table_api_params_ *params);
    sdk_ret_t remove(const sdk_table_api_params_ *params);
    sdk_ret_t get(const sdk_table_api_params_ *params) const;

    table_rows rows;
    call_counters counters;
    mutable std::shared_mutex mutex;
    std::vector<std::unique_ptr<tcam_entry>> entries;  // by row
    // In order. A damaged row is neither free nor an entry's, and entries move around it.
    std::vector<uint32_t> usable;
    sdk_ret_t unread = SDK_RET_OK;  // why a row could not be read
    // A free row that hardware still matches: every write was refused, that of undoing the first
    // one too. Harmless while nothing changes, so nothing is changed before it is gone.
    uint32_t left_behind = none;
};

sdk_ret_t sltcam::impl::sweep() {
    if (left_behind == none) return SDK_RET_OK;
    const sdk_ret_t result = rows.clear(left_behind);
    if (result != SDK_RET_OK) return result;
    left_behind = none;
    name_move(0);
    return result;
}

sdk_ret_t sltcam::impl::copy_and_clear(uint32_t from, uint32_t to, const record_bytes &data) {
    if (sdk_ret_t bad = rows.write(to, &entries[from]->images, data.data())) {
        if (rows.in_use(to)) left_behind = to;
        return bad;
    }
    if (sdk_ret_t bad = rows.clear(from)) {
        if (rows.clear(to) != SDK_RET_OK) left_behind = to;
        return bad;
    }
    return SDK_RET_OK;
}

// Copies an entry to a free row, then empties its old one.
sdk_ret_t sltcam::impl::move(uint32_t from, uint32_t to) {
    if (work_of_tables() == nullptr) return SDK_RET_OOM;
    record_bytes data;
    if (sdk_ret_t bad = rows.read(from, data)) return bad;
    name_move(uint64_t{from + 1} << 32 | (to + 1));
    const sdk_ret_t bad = copy_and_clear(from, to, data);
    // A row that is left behind stays named until it is swept.
    if (left_behind == none) name_move(0);
    if (bad != SDK_RET_OK) return bad;
    entries[to] = std::move(entries[from]);
    counters.add(counters.moves);
    return SDK_RET_OK;
}

// A free row behind every more specific entry and in front of every less specific one. Numbers here
// are those of usable rows.
sdk_ret_t sltcam::impl::make_room(uint32_t wanted, uint32_t &row) {
    const auto count = static_cast<uint32_t>(usable.size());
    uint32_t low = 0, high = count;  // low to high - 1 may be taken
    for (uint32_t n = 0; n < count; ++n) {
        if (is_free(n)) continue;
        if (specificity(n) > wanted) low = n + 1;
        if (specificity(n) < wanted && high == count) high = n;
    }
    uint32_t below = low, above = low;
    while (below < count && !is_free(below)) ++below;
    while (above > 0 && !is_free(above - 1)) --above;
    const bool has_below = below<count, has_above = above> 0;
    if (!has_below && !has_above)
        return count < entries.size() ? SDK_RET_DAMAGED : SDK_RET_NO_RESOURCE;

    const bool from_below =
        has_below && (!has_above || below < high || below - high <= low - above);
    const uint32_t found = from_below ? below : above - 1;
    const sdk_ret_t bad = rows.hardware().check_row(rows.table(), usable[found]);
    if (bad == SDK_RET_DAMAGED) {
        usable.erase(usable.begin() + found);
        return make_room(wanted, row);
    }
    if (bad != SDK_RET_OK) return bad;
    return from_below ? walk_up(found, high, row) : walk_down(found, low, row);
}

// From the free row up: the first entry of the class in front of it goes behind the last.
sdk_ret_t sltcam::impl::walk_up(uint32_t n, uint32_t high, uint32_t &row) {
    while (n > high) {
        uint32_t first = n - 1;
        while (first > high && specificity(first - 1) == specificity(n - 1)) --first;
        if (sdk_ret_t bad = move(usable[first], usable[n])) return bad;
        n = first;
    }
    row = usable[n];
    return SDK_RET_OK;
}

sdk_ret_t sltcam::impl::walk_down(uint32_t n, uint32_t low, uint32_t &row) {
    while (n + 1 < low) {
        uint32_t last = n + 1;
        while (last + 1 < low && specificity(last + 1) == specificity(n + 1)) ++last;
        if (sdk_ret_t bad = move(usable[last], usable[n])) return bad;
        n = last;
    }
    row = usable[n];
    return SDK_RET_OK;
}

sdk_ret_t sltcam::impl::insert(const sdk_table_api_params_ *params) {
    if (params == nullptr || params->key == nullptr || params->data == nullptr ||
        !rows.knows_action(params->data))
        return SDK_RET_INVALID_ARG;
    const std::unique_lock lock(mutex);
    rows.take_memory();
    auto entry = std::make_unique<tcam_entry>();
    entry->images = rows.images_of(params->key, params->mask);
    entry->given = rows.images_of(params->key, nullptr).ones;
    entry->specificity = entry->images.specificity();
    if (sdk_ret_t bad = sweep()) return bad;
    if (find_images(entry->images) != none) return SDK_RET_ENTRY_EXISTS;
    // Beside a damaged row there is room for others.
    if (unread != SDK_RET_OK && unread != SDK_RET_DAMAGED) return unread;
    uint32_t row = none;
    if (sdk_ret_t bad = make_room(entry->specificity, row)) return bad;
    if (sdk_ret_t bad = rows.write(row, &entry->images, params->data)) {
        if (rows.in_use(row)) left_behind = row;
        return bad;
    }
    entries[row] = std::move(entry);
    return SDK_RET_OK;
}

sdk_ret_t sltcam::impl::update(const sdk_table_api_params_ *params) {
    if (params == nullptr || params->key == nullptr || params->data == nullptr ||
        !rows.knows_action(params->data))
        return SDK_RET_INVALID_ARG;
    const std::unique_lock lock(mutex);
    if (sdk_ret_t bad = sweep()) return bad;
    const uint32_t row = find(params);
    if (row == none) return absent();
    return rows.write(row, &entries[row]->images, params->data);
}

sdk_ret_t sltcam::impl::remove(const sdk_table_api_params_ *params) {
    if (params == nullptr || params->key == nullptr) return SDK_RET_INVALID_ARG;
    const std::unique_lock lock(mutex);
    if (sdk_ret_t bad = sweep()) return bad;
    const uint32_t row = find(params);
    if (row == none) return absent();
    record_bytes data;
    if (sdk_ret_t bad = rows.read(row, data)) return bad;
    if (sdk_ret_t bad = rows.clear(row)) return bad;
    entries[row].reset();
    if (params->data != nullptr) std::memcpy(params->data, data.data(), rows.data_bytes());
    return SDK_RET_OK;
}

sdk_ret_t sltcam::impl::get(const sdk_table_api_params_ *params) const {
    if (params == nullptr || params->key == nullptr) return SDK_RET_INVALID_ARG;
    const std::shared_lock lock(mutex);
    const uint32_t row = find(params);
    if (row == none) return absent();
    record_bytes data;
    if (sdk_ret_t bad = rows.read(row, data)) return bad;
    if (params->data != nullptr) std::memcpy(params->data, data.data(), rows.data_bytes());
    return SDK_RET_OK;
}

sltcam *sltcam::factory(sdk_table_factory_params_ *params) {
    if (params == nullptr || memory_is_refused(params->table_id)) return nullptr;
    const table_memory *memory = table_memory_of(params->table_id);
    if (memory == nullptr || !memory->has_tcam()) return nullptr;
    return with_parts(new (std::nothrow) sltcam, &sltcam::impl_, params->table_id,
                      params->entry_trace);
}

void sltcam::destroy(sltcam *table) {
    if (table == nullptr) return;
    delete table->impl_;
    delete table;
}

sdk_ret_t sltcam::insert(sdk_table_api_params_ *params) {
    const auto run = [&] { return impl_->insert(params); };
    return impl_->counters.done(impl_->counters.inserts,
                                impl_->rows.meet(asic_call::insert, 0, run));
}
sdk_ret_t sltcam::update(sdk_table_api_params_ *params) {
    const auto run = [&] { return impl_->update(params); };
    return impl_->counters.done(impl_->counters.updates,
                                impl_->rows.meet(asic_call::update, 0, run));
}
sdk_ret_t sltcam::remove(sdk_table_api_params_ *params) {
    const auto run = [&] { return impl_->remove(params); };
    return impl_->counters.done(impl_->counters.removes,
                                impl_->rows.meet(asic_call::remove, 0, run));
}
sdk_ret_t sltcam::get(sdk_table_api_params_ *params) {
    const auto run = [&] { return impl_->get(params); };
    return impl_->counters.done(impl_->counters.lookups, impl_->rows.meet(asic_call::get, 0, run));
}

engine_statistics sltcam_access::statistics(const sltcam &table) {
    const sltcam::impl &in = *table.impl_;
    const std::shared_lock lock(in.mutex);
    engine_statistics out = in.counters.statistics();
    out.rows = in.rows.rows();
    for (const auto &entry : in.entries) out.used += entry != nullptr;
    return out;
}

}  // namespace sdk::table
