// How an entry lies in its row.
//
//     index, TCAM data   [pc][key][data]
//     hash               [pc][before ... ][key at key_start][after]
//     wide hash          [pc][key, whole 512-bit flits][before ... ][rest of the key][after]
//
// The program counter is left out when it is 0xff; the positions of the rest are counted behind it.

#include "host/bits/bit_runs.h"
#include "sdk/p4pd_utils.h"

#include <algorithm>

namespace {

using namespace halden::host;

constexpr uint8_t no_program_counter = 0xff;
constexpr unsigned program_counter_bits = 8;
constexpr unsigned flit_bits = 512;

// Writes the program counter, if there is one, and returns the bit behind it.
unsigned put_program_counter(uint8_t *entry, uint8_t action_pc) {
    if (action_pc == no_program_counter) return 0;
    entry[0] = action_pc;
    return program_counter_bits;
}

struct part {
    const uint8_t *image;  // null: the room stays as it is
    unsigned bits;
};

void put(uint8_t *entry, unsigned at, const part &what, unsigned from = 0) {
    if (what.image != nullptr) bits::copy_image(entry, at, what.image, from, what.bits);
}

// An entry of a table always has the length of the table's key and data, also when an action leaves
// parts of the data out: rows are swizzled over their length, and the key must not move with the
// action.
uint16_t entry_length(unsigned end_of_parts, unsigned behind_pc, unsigned key_bits,
                      unsigned data_bits) {
    return static_cast<uint16_t>(std::max(end_of_parts, behind_pc + key_bits + data_bits));
}

}  // namespace

uint16_t p4pd_utils_p4table_entry_prepare(uint8_t *entry, uint8_t action_pc, uint8_t *key,
                                          uint16_t key_bits, uint8_t *data, uint16_t data_bits) {
    const unsigned key_at = put_program_counter(entry, action_pc);
    put(entry, key_at, {key, key_bits});
    put(entry, key_at + key_bits, {data, data_bits});
    return static_cast<uint16_t>(key_at + key_bits + data_bits);
}

uint16_t p4pd_utils_hash_table_entry_prepare(uint8_t *entry, uint8_t action_pc,
                                             uint16_t key_start_bit, uint8_t *key,
                                             uint16_t key_bits, uint16_t data_bits,
                                             uint8_t *before_key, uint16_t before_key_bits,
                                             uint8_t *after_key, uint16_t after_key_bits,
                                             uint16_t *entry_offset) {
    bits::require(before_key_bits <= key_start_bit, __func__, key_start_bit, before_key_bits);
    const unsigned start = put_program_counter(entry, action_pc);
    const unsigned after_at = start + key_start_bit + key_bits;
    put(entry, start, {before_key, before_key_bits});
    put(entry, start + key_start_bit, {key, key_bits});
    put(entry, after_at, {after_key, after_key_bits});
    *entry_offset = 0;
    return entry_length(after_at + after_key_bits, start, key_bits, data_bits);
}

uint16_t p4pd_utils_widekey_hash_table_entry_prepare(uint8_t *entry, uint8_t action_pc,
                                                     uint16_t key_start_bit, uint8_t *key,
                                                     uint16_t key_bits, uint16_t data_bits,
                                                     uint8_t *before_key, uint16_t before_key_bits,
                                                     uint8_t *after_key, uint16_t after_key_bits,
                                                     uint16_t *entry_offset) {
    bits::require(before_key_bits <= key_start_bit, __func__, key_start_bit, before_key_bits);
    const unsigned start = put_program_counter(entry, action_pc);
    const unsigned whole = key_bits / flit_bits * flit_bits;
    const unsigned rest = key_bits - whole;
    const unsigned rest_at = whole + key_start_bit;
    const unsigned after_at = start + rest_at + rest;
    put(entry, start, {key, whole});
    put(entry, start + whole, {before_key, before_key_bits});
    put(entry, start + rest_at, {key, rest}, rest_at);
    put(entry, after_at, {after_key, after_key_bits});
    *entry_offset = 0;
    return entry_length(after_at + after_key_bits, start, key_bits, data_bits);
}
