#pragma once

// A flow table on small memories of its own, with keys by number and a map that says what must be
// in it.

#include "ftl/flow_hash.h"
#include "host/adapter.h"
#include "host/engines/flow/ftl_access.h"

#include <cstdint>
#include <cstdlib>
#include <map>
#include <memory>
#include <new>
#include <span>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace halden::test {

using sdk::table::flow_hash;
using sdk::table::ftl_access;
using sdk::table::sdk_table_api_params_t;

inline constexpr uint32_t flow_ohash = 1, flow = 2;

// A key is spread from its number over all fourteen fields.
flow_hash_entry_t entry_of(uint64_t number, uint32_t flow_idx = 0);
// The packet's key as the hardware sees it: the body's bytes reversed.
std::vector<uint8_t> packet_of(uint64_t number);
// The library's hash of the key.
uint32_t hash_of(uint64_t number);
// The first `count` numbers from 0 on whose hash, under `mask`, is `value`.
std::vector<uint64_t> numbers_with_hash(uint32_t mask, uint32_t value, size_t count);
std::vector<uint64_t> numbers_up_to(uint64_t end);

// An entry that may stand in a container: the class itself has virtual operations and, as its table
// is fixed, no virtual destructor, which compilers do not like to see destroyed.
struct kept_entry {
    flow_hash_entry_t entry;
};

// Rows by table and number; pieces of the engine's words of work under way as those of table 0.
inline constexpr uint32_t work_pieces = 0;
using memory_image = std::map<std::pair<uint32_t, uint32_t>, host::flow_image>;

// A table of a class derived from flow_hash, as the factory makes one of the class itself.
template <class Table>
flow_hash *make_table() {
    void *memory = std::calloc(1, sizeof(Table));
    Table *table = ::new (memory) Table;
    sdk::table::sdk_table_factory_params_t params = {};
    if (table->init_(&params) == SDK_RET_OK) return table;
    std::free(memory);
    return nullptr;
}

class flow_bed {
  public:
    using table_maker = flow_hash *();

    explicit flow_bed(const host::adapter_options &options, const std::string &directory = {});
    flow_bed(const host::adapter_options &options, table_maker *make);
    ~flow_bed();
    flow_bed(const flow_bed &) = delete;
    flow_bed &operator=(const flow_bed &) = delete;

    host::adapter &hardware() { return *adapter_; }
    flow_hash &table() { return *table_; }

    // Engine calls by key number; the first three keep `flows` in step when they succeed.
    sdk_ret_t insert(uint64_t number, uint32_t flow_idx);
    sdk_ret_t update(uint64_t number, uint32_t flow_idx);
    sdk_ret_t remove(uint64_t number);
    sdk_ret_t get(uint64_t number, uint32_t *flow_idx = nullptr);

    // The flow_idx that the hardware's view finds for the key; -1 for a miss.
    int64_t seen_by_hardware(uint64_t number);
    // Every row of both memories, and of what is under way, that is not all zero.
    memory_image memories();
    void put_memories(const memory_image &image);
    uint32_t overflow_rows_in_use();
    uint32_t main_rows_in_use();

    // Every flow is found by engine and hardware with its data, every other of `numbers` by none.
    void expect_exactly_the_flows(const std::vector<uint64_t> &numbers);

    std::unordered_map<uint64_t, uint32_t> flows;
    // Rows in use that nothing leads to.
    uint32_t rows_apart = 0;

    // How the calls by key number are made: with entries of a derived class, and as the only entry
    // of a call for many.
    bool derived_callers = false;
    bool as_batches = false;

  private:
    using single_call = sdk_ret_t (sdk::table::ftl_base::*)(sdk_table_api_params_t *);
    using batch_call = size_t (*)(sdk::table::ftl_base &, std::span<base_table_entry_t *const>,
                                  std::span<sdk_ret_t>);
    sdk_ret_t call(flow_hash_entry_t &entry, single_call single, batch_call batch);
    sdk_ret_t call_as(flow_hash_entry_t &entry, single_call single, batch_call batch);
    uint32_t rows_in_use(uint32_t table);
    uint8_t *memory_at(std::pair<uint32_t, uint32_t> place);

    std::unique_ptr<host::adapter> adapter_;
    host::scoped_current current_;
    flow_hash *table_;
    std::unordered_map<uint64_t, std::vector<uint8_t>> packets_;
};

}  // namespace halden::test
