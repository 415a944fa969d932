#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace halden::test {

// A field of an action-data record and its place in the packed image.
struct packed_field {
    const char *name;
    uint16_t bit;    // first bit in the packed image
    uint16_t byte;   // first byte in the record
    uint16_t width;  // bits
};

using packed_fields = std::span<const packed_field>;

}  // namespace halden::test
