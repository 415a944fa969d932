#pragma once

// An image drawn 32 bits to a line, with the field that every bit belongs to:
//
//            0               8               16              24
//           +---------------------+-+-+---------------------+---------------+
//         0 |      src_lport      |a|b|    pinned_lport     |   rmac_vrf    >
//           +---------------------+-+-+---------------------+---------------+
//
// A name that does not fit its bits is a letter, explained below. '>' marks a field that goes on
// in the next line.

#include <cstdint>
#include <string>
#include <vector>

#include "p4gen/halden/pipeline/layout.h"

namespace halden::tool {

// With an image, its bits stand above the fields that they belong to.
std::string drawing(const std::vector<pipeline::run> &runs, unsigned indent,
                    const std::vector<uint8_t> *image = nullptr);

}  // namespace halden::tool
