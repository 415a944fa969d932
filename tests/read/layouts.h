#pragma once

// What a reader takes apart, written out: which routine of the host unpacks which bits of a key
// image (key_calls.cc), and the fields of the records with their places (tests/reference/*.def).
// Nothing here comes from the library or its description.

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "tests/reference/model.h"

namespace halden::read_tests {

using reference::bytes;
using reference::kind;

// A call of p4pd_utils_copy_be_src_to_le_dest (a run) or p4pd_utils_copy_single_bit.
struct key_call {
    bool single;
    uint32_t record_byte;  // where the destination starts
    uint32_t record_bit;   // bit of that byte, 0 the lowest
    uint32_t image_bit;
    uint32_t width;
};
std::span<const key_call> key_calls(uint32_t id);  // in order; none for tables without a key

struct key_field {
    std::string name;
    uint32_t first_byte;
    uint32_t size;
};
std::vector<key_field> key_fields(uint32_t id);

struct data_field {
    std::string name;
    uint32_t first_byte;  // of the record, whose byte 0 is the action id
    uint32_t size;
    uint32_t width;     // bits in the hardware
    uint32_t position;  // of its highest bit in the row, behind the program counter if there is one
};
std::vector<data_field> data_fields(uint32_t id, uint32_t action);

// Rows of the table begin with a program counter.
bool has_programs(uint32_t id);

// The bits of a record that the hardware keeps: ones, in the record's own layout.
bytes kept_key_bits(uint32_t id);
bytes kept_data_bits(uint32_t id, uint32_t action);  // the action id among them

inline std::string table_name(uint32_t id) { return reference::table_of(id).name; }

}  // namespace halden::read_tests
