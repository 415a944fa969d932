#pragma once

// A second account of what all tables hold, kept in a plain map: changes are made through the table
// API and through the adapter's row calls, and what is there afterwards is held against the map, by
// the engines' answers and by memory alone.
//
//     shadow wanted;
//     const operation op{change::create, table, entry, 7};
//     const bool must_pass = wanted.accepts(op);
//     if (wanted.run(hardware, op) == TEV_TBL_RET_OK) wanted.note(op);
//     for (const std::string &wrong : wanted.differences(hardware)) ...
//
// Every table has a few candidates, made once: entries by number, chosen so that they get into each
// other's way (rows of one hash, masks that overlap, flows of few buckets). What an entry holds is
// a number too, from which its record is made. So an operation is four numbers, and can be sent
// through a pipe or be read from a fuzzer's bytes.
//
// The images come from the slow model (tests/reference), the look-ups from the adapter's view of
// the hardware: no engine vouches for itself.

#include "host/adapter.h"
#include "tests/tableapi/tables.h"

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace halden::test {

enum class change : uint8_t { create, update, remove };
inline constexpr unsigned changes = 3;

struct operation {
    change what;
    uint16_t table;  // number in shadow::tables(), not the id
    uint16_t entry;  // number of the candidate
    uint32_t value;  // what it shall hold; not looked at by remove

    bool operator==(const operation &) const = default;
};

// How a table is written: by its engine, or row by row without one.
enum class shadow_kind : uint8_t { index, hash, ternary, flow, raw_sram, raw_tcam, raw_hbm };

struct candidate {
    bytes key, mask;           // records; a mask in ternary tables alone
    bytes ones, zeros;         // ternary: what hardware compares
    uint32_t specificity = 0;  // bits that are compared
    bytes packet;              // keyed tables: the key image of a packet with the key's values
    uint32_t row = 0;          // index tables and raw rows
};

struct shadow_table {
    shadow_kind kind;
    uint32_t id;
    std::string name;
    api_table api;  // not of raw tables
    std::vector<candidate> candidates;
};

class shadow {
  public:
    // Small enough that flows of one bucket are many.
    static constexpr host::adapter_options depths = {.flow_rows = 16, .flow_ohash_rows = 256};

    // All tables of the table API but three, whose rows are written raw, and two without an engine.
    static std::span<const shadow_table> tables();
    static uint16_t number_of(uint32_t id);  // of the table with this id
    static std::string text_of(const operation &op);

    // Makes the call; TEV_TBL_RET_OK or how it failed. A raw row's failure is the adapter's.
    static uint32_t run(host::adapter &hardware, const operation &op);

    // Whether the table, as far as the map knows, must take the operation. A new flow may still be
    // refused: its chain has an end.
    bool accepts(const operation &op) const;
    static bool may_be_refused(const operation &op);
    // The operation was done.
    void note(const operation &op);

    bool has(uint16_t table, uint16_t entry) const { return values_.count({table, entry}) != 0; }
    size_t size() const { return values_.size(); }
    size_t size_of(uint16_t table) const;

    // What stands where an operation was cut off: all of the old or all of the new. The map takes
    // it over. Otherwise a complaint.
    std::string settle(host::adapter &hardware, const operation &cut_off);

    // What engines and memory hold otherwise than the map; engines must be at work. Nothing when
    // all is well.
    std::vector<std::string> differences(host::adapter &hardware) const;
    std::vector<std::string> differences_of(host::adapter &hardware, uint16_t table) const;
    std::vector<std::string> hardware_differences_of(host::adapter &hardware, uint16_t table) const;
    // The same by memory alone, without engines, leaving out the entries of operations under way:
    // that is how the adapter forwards packets while a process is dead.
    std::vector<std::string> hardware_differences(host::adapter &hardware,
                                                  std::span<const operation> under_way) const;

  private:
    using place = std::pair<uint16_t, uint16_t>;

    void compare_with_hardware(host::adapter &hardware, place at,
                               std::vector<std::string> &out) const;
    void compare_with_engine(host::adapter &hardware, place at,
                             std::vector<std::string> &out) const;
    void compare_by_memory(host::adapter &hardware, uint16_t table,
                           std::span<const operation> under_way,
                           std::vector<std::string> &out) const;
    void compare_ternary(host::adapter &hardware, uint16_t table,
                         std::span<const operation> under_way, std::vector<std::string> &out) const;
    std::optional<uint32_t> value_of(place at) const;

    std::map<place, uint32_t> values_;
};

}  // namespace halden::test
