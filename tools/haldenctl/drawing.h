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

#include <string>
#include <vector>

#include "p4gen/halden/pipeline/layout.h"

namespace halden::tool {

std::string drawing(const std::vector<pipeline::run> &runs, unsigned indent);

}  // namespace halden::tool
