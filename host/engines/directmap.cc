// The index table engine. A row is taken when the memory says so: there is nothing else to keep.

#include "sdk/table/directmap.h"

#include "host/engines/access.h"
#include "host/engines/engine.h"

#include <cstring>
#include <mutex>
#include <new>
#include <string>

namespace sdk::table {

using namespace halden::host;

struct directmap::impl {
    impl(const char *table_name, uint32_t id, uint32_t table_depth, uint16_t size, bool lock,
         bool trace, table_health_cb callback)
        : rows(current(), id),
          name(table_name),
          depth(table_depth),
          data_size(size),
          thread_safe(lock),
          health(callback),
          counters(trace) {}

    bool is_row(uint32_t index) const { return index < depth; }
    std::unique_lock<std::mutex> enter() {
        return thread_safe ? std::unique_lock(mutex) : std::unique_lock<std::mutex>();
    }
    // The record that the mask, if there is one, leaves of the old and the new data.
    record_bytes masked(const record_bytes &old, const void *data, const void *mask) const {
        record_bytes out = {};
        std::memcpy(out.data(), data, data_size);
        if (mask == nullptr) return out;
        record_bytes bits = {};
        std::memcpy(bits.data(), mask, data_size);
        for (size_t i = 1; i < data_size; ++i)
            out[i] = static_cast<uint8_t>((old[i] & ~bits[i]) | (out[i] & bits[i]));
        return out;
    }
    void tell_health() {
        if (health != nullptr) health(rows.table(), name.c_str(), rows.count_used(), depth);
    }

    table_rows rows;
    std::string name;
    uint32_t depth;
    uint16_t data_size;
    bool thread_safe;
    table_health_cb health;
    std::mutex mutex;
    call_counters counters;
};

directmap *directmap::factory(const char *name, uint32_t table_id, uint32_t depth,
                              uint16_t data_size, bool thread_safe, bool entry_trace,
                              table_health_cb health) {
    if (name == nullptr || depth == 0 || data_size == 0 || data_size > record_room ||
        memory_is_refused(table_id))
        return nullptr;
    return with_parts(new (std::nothrow) directmap, &directmap::impl_, name, table_id, depth,
                      data_size, thread_safe, entry_trace, health);
}

void directmap::destroy(directmap *table) {
    if (table == nullptr) return;
    delete table->impl_;
    delete table;
}

sdk_ret_t directmap::insert_withid(void *data, uint32_t index, void *mask) {
    const auto lock = impl_->enter();
    const auto run = [&] {
        if (data == nullptr || !impl_->is_row(index) || !impl_->rows.knows_action(data))
            return SDK_RET_INVALID_ARG;
        record_bytes old;
        const sdk_ret_t found = impl_->rows.read(index, old);
        if (found == SDK_RET_OK) return SDK_RET_ENTRY_EXISTS;
        if (found != SDK_RET_ENTRY_NOT_FOUND) return found;
        return impl_->rows.write(index, nullptr, impl_->masked({}, data, mask).data());
    };
    const sdk_ret_t result = impl_->counters.done(impl_->counters.inserts,
                                                  impl_->rows.meet(asic_call::insert, index, run));
    if (result == SDK_RET_OK) impl_->tell_health();
    return result;
}

sdk_ret_t directmap::update(uint32_t index, void *data, void *mask) {
    const auto lock = impl_->enter();
    const auto run = [&] {
        if (data == nullptr || !impl_->is_row(index) || !impl_->rows.knows_action(data))
            return SDK_RET_INVALID_ARG;
        record_bytes old;
        if (sdk_ret_t bad = impl_->rows.read(index, old)) return bad;
        return impl_->rows.write(index, nullptr, impl_->masked(old, data, mask).data());
    };
    return impl_->counters.done(impl_->counters.updates,
                                impl_->rows.meet(asic_call::update, index, run));
}

// With a mask, the bits it selects become zero and the entry stays.
sdk_ret_t directmap::remove(uint32_t index, void *mask) {
    const auto lock = impl_->enter();
    const auto run = [&] {
        if (!impl_->is_row(index)) return SDK_RET_INVALID_ARG;
        record_bytes old;
        if (sdk_ret_t bad = impl_->rows.read(index, old)) return bad;
        if (mask == nullptr) return impl_->rows.clear(index);
        record_bytes nothing = {};
        nothing[0] = old[0];
        return impl_->rows.write(index, nullptr, impl_->masked(old, nothing.data(), mask).data());
    };
    const sdk_ret_t result = impl_->counters.done(impl_->counters.removes,
                                                  impl_->rows.meet(asic_call::remove, index, run));
    if (result == SDK_RET_OK) impl_->tell_health();
    return result;
}

sdk_ret_t directmap::retrieve(uint32_t index, void *data) {
    const auto lock = impl_->enter();
    const auto run = [&] {
        if (data == nullptr || !impl_->is_row(index)) return SDK_RET_INVALID_ARG;
        record_bytes found;
        if (sdk_ret_t bad = impl_->rows.read(index, found)) return bad;
        std::memcpy(data, found.data(), impl_->data_size);
        return SDK_RET_OK;
    };
    return impl_->counters.done(impl_->counters.lookups,
                                impl_->rows.meet(asic_call::get, index, run));
}

engine_statistics directmap_access::statistics(const directmap &table) {
    engine_statistics out = table.impl_->counters.statistics();
    out.rows = table.impl_->depth;
    out.used = table.impl_->rows.count_used();
    return out;
}

}  // namespace sdk::table
