#pragma once

// The calls by which keys are built.

#include <string>

#include "tests/contract/expect_calls.h"
#include "tests/contract/key_copies.h"

namespace halden::test {

inline const std::string key_copy_call = "p4pd_utils_copy_into_hwentry";

// A software key and its mask; exact keys have none.
struct software_key {
    const uint8_t *key = nullptr;
    const uint8_t *mask = nullptr;
};

// The calls that build the key of table `id` (1 to 15) into the images named `key` and `key mask`.
// The bytes of an exact key are copied from the record named `software key`; a ternary one is
// copied twice, its bytes AND the mask's into the key image, then the mask's AND NOT its own into
// the mask image. With `repeat` the first byte is copied a second time.
expected key_calls(uint32_t id, const software_key &from, bool repeat = false);

// Whether the calls are those of the key and then `rest`. The first byte of the keys of
// tunnel_terminate_sa_v4 and its overflow may be copied once or twice.
testing::AssertionResult key_calls_are(uint32_t id, const software_key &from,
                                       const expected &rest = {});

}  // namespace halden::test
