#pragma once

// Rows that the recording ASIC layer was given, answered to its reads. The bit routines are the
// adapter's own.

#include <cstdint>
#include <map>
#include <string>
#include <tuple>

#include "tests/read/layouts.h"
#include "tests/support/recording_host.h"

namespace halden::read_tests {

class row_memory {
  public:
    row_memory();
    ~row_memory();
    row_memory(const row_memory &) = delete;
    row_memory &operator=(const row_memory &) = delete;

  private:
    using row_key = std::tuple<std::string, uint32_t, uint32_t>;  // memory, table, row
    struct row {
        bytes image, mask;
        uint16_t bits;
    };

    void take(const test::call &call);
    test::read_answer answer(const std::string &read, uint32_t table, uint32_t index) const;

    std::map<row_key, row> rows_;
};

// Program counter of an action on this host.
inline uint8_t program_of(uint32_t action) { return static_cast<uint8_t>(0x60 + action); }

}  // namespace halden::read_tests
