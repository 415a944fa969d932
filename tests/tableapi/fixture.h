#pragma once

// A published table state over recording engines.

#include <functional>
#include <memory>
#include <optional>
#include <random>
#include <set>

#include "gtest/gtest.h"
#include "tests/support/recording_host.h"
#include "tests/tableapi/tables.h"

namespace halden::test {

// Answers the row of a key in place of the library's own function, while it is set.
extern std::function<uint64_t(uint32_t tableid, const void *key)> on_index_map;

class TableApi : public testing::Test {
  protected:
    TableApi();
    ~TableApi() override;

    bytes random_record(uint32_t size);

    // Nothing but one report was sent: `format`, and its one number when it has one.
    void expect_report(const std::string &format, std::optional<uint64_t> number = {});
    void expect_silence() { EXPECT_TRUE(host.messages().empty()); }
    // Forgets calls and messages, keeps the answers.
    void forget();

    // Calls of engines alone.
    std::vector<call> engine_calls() const;
    // What every engine answers from now on.
    void answer(uint32_t code) {
        host.on_engine = [code](const call &) { return static_cast<sdk_ret_t>(code); };
    }

    recording_host &host = recording_host::get();
    std::unique_ptr<api::impl::tev_host_state> state;
    std::mt19937_64 random{20240517};
};

// The tests of one table.
class OneTable : public TableApi, public testing::WithParamInterface<api_table> {
  protected:
    const api_table &t() const { return GetParam(); }
    // The format of a report that names the table.
    std::string named(const std::string &before, const std::string &after) const {
        return "[%s:%u] " + before + t().name + after;
    }
    // What the engine stores: the spec without its key and mask.
    bytes data_of(const bytes &spec) const;
    // The lines of the five reports that the five functions send on these arguments.
    std::set<uint32_t> lines_of_five(const void *spec, const void *key);
};

// Every code an engine might answer with.
std::vector<uint32_t> engine_codes();

// The parameter record that a hash, TCAM or flow engine was called with.
sdk::table::sdk_table_api_params_ params_of(const call &c);

}  // namespace halden::test
