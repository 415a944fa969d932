#pragma once

// What the table engines have in common: the table they serve, whole entries in and out of the
// adapter's memory through the pipeline's entry points, and their statistics.
//
// An engine serves the adapter that is current when it is made; that adapter stays current, and
// alive, as long as the engine. What stands in its memory then are the engine's first entries, so
// an engine made on an adapter that was filled by an earlier process goes on where that ended.

#include "host/adapter.h"
#include "host/engines/access.h"
#include "sdk/p4pd_global.h"
#include "sdk/table/types.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <new>

namespace halden::host {

// Room for any record, or for any key image of an SRAM table.
inline constexpr size_t record_room = 128;
using record_bytes = std::array<uint8_t, record_room>;

// An entry's images as the TCAM compares them: what must be one, and what must be zero.
struct ternary_key {
    record_bytes ones = {};
    record_bytes zeros = {};

    bool operator==(const ternary_key &) const = default;
    // Bits that are compared.
    uint32_t specificity() const;
};

// Thrown while an engine is made: the table's properties cannot be had.
struct cannot_start {};

class table_rows {
  public:
    table_rows(adapter &hardware, uint32_t table);

    uint32_t table() const { return table_; }
    uint32_t rows() const { return properties_.tabledepth; }
    uint16_t key_bytes() const { return properties_.key_struct_size; }
    uint16_t data_bytes() const { return properties_.actiondata_struct_size; }
    adapter &hardware() const { return hardware_; }

    // The images of a key record; without a mask every key bit is compared. Hash tables: `ones`
    // is the key image.
    ternary_key images_of(const void *key, const void *mask) const;
    // Those of a TCAM row.
    sdk_ret_t images_at(uint32_t row, ternary_key &out) const;

    // True for an action id the table has. The p4pd layer takes any other for a programming error
    // and ends the process.
    bool knows_action(const void *data) const;

    // Writes a whole entry; on failure a row that was empty is empty again, and one that was not
    // has its old data.
    sdk_ret_t write(uint32_t row, const ternary_key *images, const void *data) const;
    // Reads one; SDK_RET_ENTRY_NOT_FOUND for an empty row. Null for a key that is not wanted.
    sdk_ret_t read(uint32_t row, record_bytes &data, record_bytes *key = nullptr) const;
    sdk_ret_t clear(uint32_t row) const;
    // Whether hardware sees an entry there.
    bool in_use(uint32_t row) const { return hardware_.next_used(table_, row) == row; }

    // A method of the table's engine: nothing is done when a fault refuses it, and whatever it
    // throws when memory runs out is a result.
    template <class Method>
    sdk_ret_t meet(asic_call which, uint32_t index, Method method) const {
        if (sdk_ret_t injected = hardware_.faults().meet(which, table_, index)) return injected;
        try {
            return method();
        } catch (const std::bad_alloc &) {
            return SDK_RET_OOM;
        }
    }
    // To be asked before an entry is kept in memory of the engine's own.
    void take_memory() const {
        if (hardware_.faults().meet(asic_call::allocate, table_, 0) != SDK_RET_OK)
            throw std::bad_alloc();
    }

    uint32_t count_used() const;

  private:
    sdk_ret_t write_once(uint32_t row, const ternary_key *images, const void *data) const;

    adapter &hardware_;
    uint32_t table_;
    p4pd_table_properties_t properties_ = {};
};

// Whether the adapter is told to refuse an engine its memory.
bool memory_is_refused(uint32_t table);

// The end of every factory: gives a new engine, null when there was no memory for it, its `parts`.
// Null when there is none for them either, or they cannot start.
template <class Engine, class Parts, class... Given>
Engine *with_parts(Engine *made, Parts *Engine::*parts, const Given &...given) {
    if (made == nullptr) return nullptr;
    try {
        made->*parts = new Parts(given...);
        return made;
    } catch (const std::bad_alloc &) {
    } catch (const cannot_start &) {
    }
    Engine::destroy(made);
    return nullptr;
}

// A call, whatever it throws when memory runs out.
template <class Call>
sdk_ret_t guarded(Call call) {
    try {
        return call();
    } catch (const std::bad_alloc &) {
        return SDK_RET_OOM;
    }
}

// What an engine counts, when it is made with its entry trace on.
class call_counters {
  public:
    explicit call_counters(bool on) : on_(on) {}

    std::atomic<uint64_t> inserts = 0, updates = 0, removes = 0, lookups = 0, failures = 0,
                          collisions = 0, moves = 0;

    void add(std::atomic<uint64_t> &counter) {
        if (on_) counter.fetch_add(1, std::memory_order_relaxed);
    }
    // Counts a call by its result, which is passed on.
    sdk_ret_t done(std::atomic<uint64_t> &counter, sdk_ret_t result) {
        if (result == SDK_RET_OK)
            add(counter);
        else if (result != SDK_RET_ENTRY_NOT_FOUND)
            add(failures);
        return result;
    }
    engine_statistics statistics() const;

  private:
    bool on_;
};

}  // namespace halden::host
