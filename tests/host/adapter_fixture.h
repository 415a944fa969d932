#pragma once

// An anonymous adapter with small flow tables, current while a test runs, and the messages that the
// test brought about.

#include "host/adapter.h"
#include "host/trace/trace.h"
#include "tests/support/scratch_directory.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace halden::test {

using bytes = std::vector<uint8_t>;

class AdapterTest : public testing::Test {
  protected:
    void SetUp() override {
        host::trace::set_pattern("%l %v");
        ASSERT_TRUE(host::trace::set_file(scratch_.file("messages")));
    }
    void TearDown() override { host::trace::set_file({}); }

    // Everything that was traced so far.
    std::string messages() const {
        host::trace::flush();
        return text_of(scratch_.file("messages"));
    }

    scratch_directory scratch_;
    std::unique_ptr<host::adapter> adapter_ =
        host::adapter::anonymous({.flow_rows = 16, .flow_ohash_rows = 8});
    host::scoped_current current_{*adapter_};
};

// A buffer for any read, full of a byte that no test writes.
inline constexpr uint8_t untouched = 0xc3;
inline bytes room() { return bytes(1024, untouched); }
inline bytes first(const bytes &from, size_t count) {
    return {from.begin(), from.begin() + static_cast<long>(count)};
}

}  // namespace halden::test
