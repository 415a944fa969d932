#pragma once

// Both decoders a second time, slowly: one bounded print per piece of text into the caller's
// buffer, the room left counted down by each piece's whole length, from field lists that are
// written out in tests/reference and names that are written out in tests/names.

#include <cstdint>
#include <string>

#include "tests/read/layouts.h"

namespace halden::decode_tests {

using reference::bytes;

struct printed {
    int result;
    std::string buffer;  // all of it, `size` bytes
};

// Null where the caller gives null.
struct records {
    const bytes *key = nullptr;
    const bytes *mask = nullptr;
    const bytes *data = nullptr;
};

printed slow_record_text(uint32_t id, uint32_t index, const records &given, size_t size);

// A raw entry's text, from the records that it holds. With both words of a TCAM entry that is key
// and mask; a `second_word` for another kind shows in the banner alone.
printed slow_entry_text(uint32_t id, uint32_t index, const records &held, bool second_word,
                        size_t size);

}  // namespace halden::decode_tests
