#pragma once

// The engines of all tables over one adapter, used through the table API and judged by memory
// alone: images from the slow model, lookups as hardware makes them.

#include <memory>
#include <random>
#include <string>

#include "gtest/gtest.h"
#include "host/adapter.h"
#include "host/engines/access.h"
#include "host/state/table_state.h"
#include "host/view/lookup.h"
#include "tests/reference/model.h"
#include "tests/support/scratch_directory.h"
#include "tests/tableapi/tables.h"

namespace halden::test {

// Room for any image, and for every routine that reads a row.
inline constexpr uint32_t image_room = 128;

// The random bytes of a number: the same for the same number, so that nothing need be kept.
bytes bytes_of_number(uint64_t number, uint32_t size);

class TableBed : public testing::TestWithParam<api_table> {
  protected:
    // On memory of its own, or on a directory.
    TableBed();
    ~TableBed() override;
    void open(const std::string &directory = {});
    void close();

    const api_table &t() const { return GetParam(); }
    const reference::table &facts() const { return reference::table_of(t().id); }
    host::adapter &hardware() { return *adapter_; }
    api::impl::tev_tbl_impl_state &tables() { return state_->tables(); }

    // A random data record (action id and data) with an action of the table.
    bytes data_of_number(uint64_t number) const;
    // Program counter of the record's action in table `id`; none in a table of one action.
    uint8_t pc_of(uint32_t id, const bytes &data) const;

    // Key, mask (ternary tables; empty for none) and data as the caller's records.
    bytes spec_of(const bytes &key, const bytes &mask, const bytes &data) const;
    tev_tbl_ret_t create(const bytes &key, const bytes &data, const bytes &mask = {});
    tev_tbl_ret_t update(const bytes &key, const bytes &data, const bytes &mask = {});

    // What read gives for the key is what hardware keeps of `data`.
    void expect_reads(const bytes &key, const bytes &data);
    // The key image of a packet that has the record's values.
    bytes packet_of(const bytes &key) const;
    host::view::answer look_up(const bytes &packet) {
        return host::view::lookup(hardware(), t().id, packet.data());
    }
    // Hardware finds exactly this entry.
    bool hardware_finds(const bytes &key, const bytes &data);

  private:
    std::unique_ptr<host::adapter> adapter_;
    std::unique_ptr<host::table_state> state_;
};

inline std::string name_of_tested(const testing::TestParamInfo<api_table> &tested) {
    return tested.param.name;
}

}  // namespace halden::test
