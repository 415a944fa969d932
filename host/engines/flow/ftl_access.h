#pragma once

// What tools and tests may ask of a flow table beside the calls of the table API.
//
//     auto figures = sdk::table::ftl_access::statistics(*table);
//     sdk::table::ftl_access::for_each(*table, [](const auto &flow) {
//         flow_hash_entry_t entry;
//         flow.copy_to(entry);
//         ...
//     });

#include "host/memory/memory_map.h"
#include "sdk/table/ftl_base.h"

#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace halden::host::flow {

// Called behind every word that the engine stores in a row, from the storing thread, in the middle
// of the operation: it may look at the memories, and must not call the engine.
using write_hook = std::function<void(uint32_t table, uint32_t row)>;

// Where each flow stands, and how far a look-up walks to it.
struct flow_statistics {
    uint32_t main_depth = 0;
    uint32_t overflow_depth = 0;
    uint32_t main_used = 0;
    uint32_t overflow_used = 0;  // each of them a collision
    // Flows by the rows in front of them on their path: none, one, ... The last element counts all
    // longer paths as well.
    std::array<uint32_t, 17> path_lengths = {};
    uint32_t longest_path = 0;  // of all flows, not cut

    uint32_t flows() const { return main_used + overflow_used; }
};

// A flow as it stood in its row when its bucket was read.
struct stored_flow {
    uint32_t table;
    uint32_t row;
    uint32_t path;  // rows in front of it
    const flow_image &image;

    // Fills an entry of the table's class.
    void copy_to(base_table_entry_t &entry) const;
};

}  // namespace halden::host::flow

namespace sdk::table {

class ftl_access {
  public:
    using write_hook = halden::host::flow::write_hook;
    using flow_statistics = halden::host::flow::flow_statistics;
    using stored_flow = halden::host::flow::stored_flow;

    // The table's calls for many entries at once: the rows of some are fetched from memory while
    // others are worked on. Each entry is treated as by a call of its own, in no given order among
    // equal keys; `results`, as long as `entries`, gets each one's result. Returns how many calls
    // succeeded.
    static size_t insert_batch(ftl_base &table, std::span<base_table_entry_t *const> entries,
                               std::span<sdk_ret_t> results);
    static size_t remove_batch(ftl_base &table, std::span<base_table_entry_t *const> entries,
                               std::span<sdk_ret_t> results);
    static size_t get_batch(ftl_base &table, std::span<base_table_entry_t *const> entries,
                            std::span<sdk_ret_t> results);

    // Flows in the table, from counters; while writers are at work a little behind.
    static uint64_t count(const ftl_base &table);
    // Reads the whole table.
    static flow_statistics statistics(ftl_base &table);

    // Calls `see` for every flow, bucket by bucket in the order of the main rows, until it answers
    // false. Takes no lock: a bucket is read as it stands between two changes, and flows that come
    // or go meanwhile may or may not be seen. `see` may call the table.
    static void for_each(ftl_base &table, const std::function<bool(const stored_flow &)> &see);

    // Called behind every word that the engine stores in a row, in the middle of the operation. An
    // empty function ends it. No operation may be under way.
    static void set_write_hook(ftl_base &table, write_hook hook);

    // Completes or takes back what a process that was killed had begun, as the adapter's work page
    // names it; restore_state() does so too and goes over all flows. No operation may be under way.
    static sdk_ret_t finish_work(ftl_base &table);

    // From now on no new flow takes an overflow row below `end`. No operation may be under way.
    static void leave_out_overflow_rows(ftl_base &table, uint32_t end);
};

}  // namespace sdk::table
