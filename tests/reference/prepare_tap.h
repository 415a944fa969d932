#pragma once

// Keeps what the library hands to the entry-prepare routines, then lets the host's routines do
// their work: the program's own definitions stand before the host's.

#include <cstdint>
#include <vector>

namespace halden::reference {

struct prepared {
    uint8_t action_pc;
    std::vector<uint8_t> data;  // bytes of the data, or of what stands behind the key
    uint16_t data_bits;
    std::vector<uint8_t> before_key;
    uint16_t before_key_bits;
};

// The calls since the last take, oldest first.
std::vector<prepared> take_prepared();

}  // namespace halden::reference
