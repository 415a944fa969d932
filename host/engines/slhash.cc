// The exact-match engine.
//
//     key ──hash──▶ row of the hash table ──taken by another key──▶ a free row of the overflow TCAM
//
// An entry stays where it was put: a row that becomes free is taken by the next key that hashes
// there, and the entries that overflowed because of it stay in the TCAM, which hardware looks up
// after the row in any case.

#include "sdk/table/slhash.h"

#include "host/engines/access.h"
#include "host/engines/engine.h"
#include "host/view/row_hash.h"

#include <cstring>
#include <map>
#include <mutex>
#include <new>
#include <optional>
#include <shared_mutex>
#include <vector>

namespace sdk::table {

using namespace halden::host;

struct slhash::impl {
    impl(uint32_t id, uint32_t overflow_id, bool trace)
        : main(current(), id), overflow(current(), overflow_id), counters(trace) {
        // Memory that cannot be mapped answers the same for every row.
        for (uint32_t row = overflow.rows(); row-- > 0 && unread != SDK_RET_OOM;) {
            ternary_key images;
            const sdk_ret_t found = overflow.images_at(row, images);
            if (found == SDK_RET_ENTRY_NOT_FOUND)
                free_rows.push_back(row);
            else if (found != SDK_RET_OK)
                unread = found;
            else if (compares_whole_key(images))
                overflowed.insert_or_assign(images.ones, row);
            else
                ++masked_rows;
        }
    }

    // Somebody may have written rows whose masks leave out bits of the key. They are no entries of
    // the table, whatever their ones are the key of.
    bool compares_whole_key(const ternary_key &images) const {
        const record_bytes nothing = {};
        return images.specificity() == overflow.images_of(nothing.data(), nullptr).specificity();
    }

    struct place {
        const table_rows *table;
        uint32_t row;
    };

    uint32_t hashed_row(const record_bytes &image) const {
        return view::hash_row(main.table(), image.data(), main.rows());
    }

    // Where the key stands. `bad` becomes a read's failure, SDK_RET_ENTRY_NOT_FOUND when it stands
    // nowhere; `*hashed_taken` tells whether its own row holds another key.
    std::optional<place> find(const ternary_key &wanted, sdk_ret_t &bad, bool *hashed_taken) const {
        const uint32_t row = hashed_row(wanted.ones);
        record_bytes data, key;
        bad = main.read(row, data, &key);
        if (bad == SDK_RET_OK && main.images_of(key.data(), nullptr).ones == wanted.ones)
            return place{&main, row};
        if (bad != SDK_RET_OK && bad != SDK_RET_ENTRY_NOT_FOUND) return std::nullopt;
        if (hashed_taken != nullptr) *hashed_taken = bad == SDK_RET_OK;
        bad = SDK_RET_ENTRY_NOT_FOUND;
        const auto known = overflowed.find(wanted.ones);
        if (known == overflowed.end()) return std::nullopt;
        bad = SDK_RET_OK;
        return place{&overflow, known->second};
    }

    // A key that was not found may stand in a row that could not be read.
    sdk_ret_t unless_unread(sdk_ret_t bad) const {
        return bad == SDK_RET_ENTRY_NOT_FOUND && unread != SDK_RET_OK ? unread : bad;
    }

    // A key record may carry bits that the hardware has no room for; the images do not.
    static bool usable(const sdk_table_api_params_ *params) {
        return params != nullptr && params->key != nullptr && params->mask == nullptr;
    }

    // Empties the overflow row that a refused insert could not take back.
    sdk_ret_t sweep() {
        if (left_behind == none) return SDK_RET_OK;
        const sdk_ret_t result = overflow.clear(left_behind);
        if (result == SDK_RET_OK) left_behind = none;
        return result;
    }

    // The free row to take next. A row that cannot be read is neither free nor taken: it is stepped
    // over and not asked for again, and a table that is full but for such rows answers the damage.
    sdk_ret_t find_free(uint32_t &row) {
        while (!free_rows.empty()) {
            row = free_rows.back();
            const sdk_ret_t bad = main.hardware().check_row(overflow.table(), row);
            if (bad != SDK_RET_DAMAGED) return bad;
            stepped_over = true;
            free_rows.pop_back();
        }
        return unread == SDK_RET_DAMAGED || stepped_over ? SDK_RET_DAMAGED : SDK_RET_NO_RESOURCE;
    }

    sdk_ret_t insert(const sdk_table_api_params_ *params);
    sdk_ret_t update(const sdk_table_api_params_ *params);
    sdk_ret_t remove(const sdk_table_api_params_ *params);
    sdk_ret_t get(const sdk_table_api_params_ *params) const;

    table_rows main;
    table_rows overflow;
    call_counters counters;
    mutable std::shared_mutex mutex;
    std::map<record_bytes, uint32_t> overflowed;  // key image to TCAM row
    std::vector<uint32_t> free_rows;              // of the TCAM; the last is taken first
    uint32_t masked_rows = 0;                     // of the TCAM, and no entries
    static constexpr uint32_t none = UINT32_MAX;
    // Why an overflow row could not be read.
    sdk_ret_t unread = SDK_RET_OK;
    bool stepped_over = false;  // a row is free by its key, and its data is damaged
    // A free row that hardware matches. Nothing is changed before it is gone.
    uint32_t left_behind = none;
};

sdk_ret_t slhash::impl::insert(const sdk_table_api_params_ *params) {
    if (!usable(params) || params->data == nullptr || !main.knows_action(params->data))
        return SDK_RET_INVALID_ARG;
    const std::unique_lock lock(mutex);
    if (sdk_ret_t refused = sweep()) return refused;
    const ternary_key images = main.images_of(params->key, nullptr);
    sdk_ret_t bad = SDK_RET_OK;
    bool taken = false;
    if (find(images, bad, &taken)) return SDK_RET_ENTRY_EXISTS;
    if (bad != SDK_RET_ENTRY_NOT_FOUND) return bad;
    // Beside a damaged row there is room for others.
    if (unread != SDK_RET_OK && unread != SDK_RET_DAMAGED) return unread;
    if (!taken) return main.write(hashed_row(images.ones), &images, params->data);

    counters.add(counters.collisions);
    uint32_t row = none;
    if (sdk_ret_t refused = find_free(row)) return refused;
    const ternary_key ternary = overflow.images_of(params->key, nullptr);
    overflow.take_memory();
    // Known before the memory is touched, so that a shortage of memory changes nothing.
    const auto known = overflowed.emplace(ternary.ones, row).first;
    const sdk_ret_t result = overflow.write(row, &ternary, params->data);
    if (result == SDK_RET_OK)
        free_rows.pop_back();
    else
        overflowed.erase(known);
    if (result != SDK_RET_OK && overflow.in_use(row)) left_behind = row;
    return result;
}

sdk_ret_t slhash::impl::update(const sdk_table_api_params_ *params) {
    if (!usable(params) || params->data == nullptr || !main.knows_action(params->data))
        return SDK_RET_INVALID_ARG;
    const std::unique_lock lock(mutex);
    if (sdk_ret_t refused = sweep()) return refused;
    sdk_ret_t bad = SDK_RET_OK;
    const auto at = find(main.images_of(params->key, nullptr), bad, nullptr);
    if (!at) return unless_unread(bad);
    const ternary_key images = at->table->images_of(params->key, nullptr);
    return at->table->write(at->row, &images, params->data);
}

sdk_ret_t slhash::impl::remove(const sdk_table_api_params_ *params) {
    if (!usable(params)) return SDK_RET_INVALID_ARG;
    const std::unique_lock lock(mutex);
    if (sdk_ret_t refused = sweep()) return refused;
    const ternary_key images = main.images_of(params->key, nullptr);
    sdk_ret_t bad = SDK_RET_OK;
    const auto at = find(images, bad, nullptr);
    if (!at) return unless_unread(bad);
    record_bytes data;
    bad = at->table->read(at->row, data);
    if (bad != SDK_RET_OK) return bad;
    const bool in_overflow = at->table == &overflow;
    if (in_overflow) free_rows.reserve(free_rows.size() + 1);
    bad = at->table->clear(at->row);
    if (bad != SDK_RET_OK) return bad;
    if (in_overflow) {
        free_rows.push_back(at->row);
        overflowed.erase(images.ones);
    }
    if (params->data != nullptr) std::memcpy(params->data, data.data(), main.data_bytes());
    return SDK_RET_OK;
}

sdk_ret_t slhash::impl::get(const sdk_table_api_params_ *params) const {
    if (!usable(params)) return SDK_RET_INVALID_ARG;
    const std::shared_lock lock(mutex);
    sdk_ret_t bad = SDK_RET_OK;
    const auto at = find(main.images_of(params->key, nullptr), bad, nullptr);
    if (!at) return unless_unread(bad);
    record_bytes data;
    bad = at->table->read(at->row, data);
    if (bad != SDK_RET_OK) return bad;
    if (params->data != nullptr) std::memcpy(params->data, data.data(), main.data_bytes());
    return SDK_RET_OK;
}

slhash *slhash::factory(sdk_table_factory_params_ *params) {
    if (params == nullptr || memory_is_refused(params->table_id)) return nullptr;
    p4pd_table_properties_t properties = {};
    if (p4pd_table_properties_get(params->table_id, &properties) != P4PD_SUCCESS ||
        properties.overflow_tableid == 0)
        return nullptr;
    return with_parts(new (std::nothrow) slhash, &slhash::impl_, params->table_id,
                      properties.overflow_tableid, params->entry_trace);
}

void slhash::destroy(slhash *table) {
    if (table == nullptr) return;
    delete table->impl_;
    delete table;
}

sdk_ret_t slhash::insert(sdk_table_api_params_ *params) {
    const auto run = [&] { return impl_->insert(params); };
    return impl_->counters.done(impl_->counters.inserts,
                                impl_->main.meet(asic_call::insert, 0, run));
}
sdk_ret_t slhash::update(sdk_table_api_params_ *params) {
    const auto run = [&] { return impl_->update(params); };
    return impl_->counters.done(impl_->counters.updates,
                                impl_->main.meet(asic_call::update, 0, run));
}
sdk_ret_t slhash::remove(sdk_table_api_params_ *params) {
    const auto run = [&] { return impl_->remove(params); };
    return impl_->counters.done(impl_->counters.removes,
                                impl_->main.meet(asic_call::remove, 0, run));
}
sdk_ret_t slhash::get(sdk_table_api_params_ *params) {
    const auto run = [&] { return impl_->get(params); };
    return impl_->counters.done(impl_->counters.lookups, impl_->main.meet(asic_call::get, 0, run));
}

engine_statistics slhash_access::statistics(const slhash &table) {
    const slhash::impl &in = *table.impl_;
    const std::shared_lock lock(in.mutex);
    engine_statistics out = in.counters.statistics();
    out.rows = in.main.rows();
    out.used = in.main.count_used();
    out.overflow_rows = in.overflow.rows();
    out.overflow_used = static_cast<uint32_t>(in.overflowed.size()) + in.masked_rows;
    return out;
}

}  // namespace sdk::table
