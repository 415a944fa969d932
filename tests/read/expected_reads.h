#pragma once

// The imported calls of a reader, in order. The caller's buffers are named "key", "mask", "data"
// and "extra"; the reader's own are "x", "y" and "width" (TCAM), "row" and "bits".

#include <cstdint>

#include "tests/contract/expect_calls.h"
#include "tests/read/layouts.h"

namespace halden::read_tests {

struct read_of {
    uint32_t id;
    uint32_t index;
    uint32_t action;  // what asicpd_get_action_id answers; 0 for a table of one action
    uint8_t program;  // first byte of the row
    uint16_t bits;    // length of the data row
    uint16_t width;   // of the TCAM row
    bool flag;
};

test::expected calls_of(const read_of &read);

}  // namespace halden::read_tests
