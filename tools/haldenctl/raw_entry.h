#pragma once

// Raw hardware entries: what a row's memory holds, and the image the layout routines made of it.

#include <string>
#include <vector>

#include "p4gen/halden/pipeline/layout.h"
#include "tools/haldenctl/record.h"

namespace halden::tool {

// A key image with its mask image, or a row of data; never both.
struct raw_entry {
    std::vector<uint8_t> entry;  // in wire order
    std::vector<uint8_t> y;      // TCAM: the mask image; empty otherwise
    uint16_t bits = 0;
};

// From hex digits as people give them. `as_stored`: in the byte order of the memory, so SRAM and
// TCAM are swizzled; else as images. `bits` 0 stands for all that is given. Throws failure for
// digits that are no bytes and for more than the table's row holds.
raw_entry read_raw(const pipeline::table &t, const std::string &entry, const std::string &y,
                   unsigned bits, bool as_stored);

// The bytes as the memory holds them: filled up to 16 bits and swizzled in SRAM and TCAM.
std::vector<uint8_t> as_stored(const pipeline::table &t, std::vector<uint8_t> image, unsigned bits);

// The records that the library reads from it. Without y, only the data's of a TCAM table; with y,
// only the key's.
records unpacked(const pipeline::table &t, const raw_entry &raw);

// What the bits of the entry are: of the key image with y, else of the row with the action that its
// program counter names. Runs beyond the entry's bits are left out.
std::vector<pipeline::run> runs_of(const pipeline::table &t, const raw_entry &raw);

// The bits of a run, the first on top.
wide bits_of(const std::vector<uint8_t> &image, const pipeline::run &r);

}  // namespace halden::tool
