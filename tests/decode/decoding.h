#pragma once

// The decoders under test, called with buffers of exactly the size they are told, and raw entries
// made from records by the slow model.

#include <cstdint>
#include <random>
#include <string>

#include "tests/decode/slow_printer.h"

namespace halden::decode_tests {

// What the decoder left in its buffer, which was full of something else. Bytes before and behind
// the buffer are checked.
printed record_text(uint32_t id, uint32_t index, const records &given, size_t size);

struct raw_entry {
    bytes first;
    bytes second;  // the other word of a TCAM entry; empty: not given
    uint16_t bits;
};
printed entry_text(uint32_t id, uint32_t index, const raw_entry &entry, size_t size);

// Program counters of the actions, as the recording host answers them here.
uint8_t program_of(uint32_t action);
void answer_programs();

// Both words of a TCAM entry.
raw_entry key_entry(uint32_t id, const bytes &key, const bytes &mask);
// A data row as the decoder takes it: TCAM data rows as the memory holds them, over whole 16-bit
// words; the others unswizzled. `program` is the first byte in a table of several actions.
raw_entry data_entry(uint32_t id, const bytes &key, const bytes &data, uint8_t program);

// What comes out of an entry again: the bits that the hardware keeps.
bytes kept_key(uint32_t id, const bytes &key);
bytes kept_key(uint32_t id, const bytes &key, const bytes &mask);
bytes kept_data(uint32_t id, const bytes &data);

inline constexpr size_t roomy = 8192;  // more than any text

}  // namespace halden::decode_tests
