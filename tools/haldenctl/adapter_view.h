#pragma once

// What stands on an adapter, for the screens of the tool.

#include <memory>
#include <optional>
#include <span>
#include <string>

#include "host/adapter.h"
#include "tools/haldenctl/options.h"
#include "tools/haldenctl/record.h"

namespace halden::tool {

// The adapter of the options; anonymous when they name none. It answers the library's imports as
// long as it lives, and shows its calls at the end when that is asked for.
//
// Only a command that makes entries opens with `create`: a name that was mistyped is an error to
// all others, and nothing is made of it.
class opened_adapter {
  public:
    opened_adapter() : opened_adapter(options(), host::access::create) {}
    // When it is not armed the faults and the record of the options wait for arm().
    opened_adapter(const options &given, host::access how, bool armed = true);
    void arm(const options &given);
    ~opened_adapter();
    opened_adapter(const opened_adapter &) = delete;
    opened_adapter &operator=(const opened_adapter &) = delete;
    host::adapter &operator*() const { return *adapter_; }
    host::adapter *operator->() const { return adapter_.get(); }
    // "adapter DIR" or "memory that ends with this command".
    std::string name() const;

  private:
    std::unique_ptr<host::adapter> adapter_;
    host::scoped_current current_;
    std::span<const given_fault> faults_;  // of the options, which outlive the adapter
    bool show_calls_ = false;
};

// One row's images in wire order, as the layout routines made them: swizzling is undone.
struct stored_row {
    std::vector<uint8_t> key, mask;  // TCAM images
    std::vector<uint8_t> data;
    uint32_t data_bits = 0;
    bool operator==(const stored_row &) const = default;
};
// `row` is the table's own, also for an overflow table. Nothing for an empty row.
std::optional<stored_row> stored_at(host::adapter &adapter, const pipeline::table &t, uint32_t row);

// The entry as the library reads it back. Nothing for an empty row.
std::optional<records> read_back(host::adapter &adapter, const pipeline::table &t, uint32_t row);

// A row as people write it; throws failure when the table has none such.
uint32_t parse_row(const pipeline::table &t, std::string_view text);
// Throws failure when the table has no such row.
void check_row(host::adapter &adapter, const pipeline::table &t, uint32_t row);

// The row whose entry has this very key, mask included: of the table or of its overflow.
struct found_row {
    const pipeline::table *of;
    uint32_t row;
};
std::optional<found_row> row_of(host::adapter &adapter, records &wanted);

// "SRAM row 5", "TCAM row 3, SRAM row 4099 of vlan_mapping": where an entry of that row stands.
std::string place_of(const pipeline::table &t, uint32_t row);

}  // namespace halden::tool
