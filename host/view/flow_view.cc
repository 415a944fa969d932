#include "host/view/flow_view.h"

#include <cstring>

#include "host/view/row_hash.h"

namespace halden::host::view {
namespace {

// Bits of a flow row, bit 0 the top bit of byte 0.
constexpr unsigned first_hash_bit = 534;  // the first slot's hash stands in front of the key's rest
constexpr unsigned first_hint_bit = 672;  // its hint behind it, and the other slots from there on
constexpr unsigned hint_bits = 21;
constexpr unsigned slot_bits = hint_hash_bits + hint_bits;
constexpr unsigned slots = 8;
constexpr unsigned more_hashes_bit = first_hint_bit + hint_bits + (slots - 1) * slot_bits;
constexpr unsigned more_hints_bit = more_hashes_bit + 1;
constexpr unsigned valid_bit = more_hints_bit + hint_bits;
static_assert(valid_bit == 932);

constexpr unsigned longest_walk = 4096;  // entries; a longer chain is a circle

uint32_t number_at(const flow_image &row, unsigned bit, unsigned count) {
    uint32_t out = 0;
    for (unsigned i = bit; i < bit + count; ++i) out = out << 1 | (row[i / 8] >> (7 - i % 8) & 1u);
    return out;
}

struct slot {
    uint32_t hash;
    uint32_t hint;
};
slot slot_of(const flow_image &row, unsigned n) {  // from 0
    if (n == 0)
        return {number_at(row, first_hash_bit, hint_hash_bits),
                number_at(row, first_hint_bit, hint_bits)};
    const unsigned at = first_hint_bit + hint_bits + (n - 1) * slot_bits;
    return {number_at(row, at, hint_hash_bits), number_at(row, at + hint_hash_bits, hint_bits)};
}

bool holds_key(const flow_image &row, const uint8_t *key_image) {
    return number_at(row, valid_bit, 1) == 1 &&
           std::memcmp(row.data(), key_image, flow_key_first_bytes) == 0 &&
           std::memcmp(row.data() + flow_key_rest_byte, key_image + flow_key_rest_byte,
                       flow_key_rest_bytes) == 0;
}

// The overflow row to go on with; 0 for none.
uint32_t next_row(const flow_image &row, uint32_t hash) {
    for (unsigned n = 0; n < slots; ++n) {
        const slot s = slot_of(row, n);
        if (s.hint != 0 && s.hash == hash) return s.hint;
    }
    return number_at(row, more_hashes_bit, 1) == 1 ? number_at(row, more_hints_bit, hint_bits) : 0;
}

}  // namespace

answer flow_lookup(adapter &hardware, const uint8_t *key_image) {
    answer out;
    const uint32_t hash = flow_hash(key_image);
    out.hashed_row = flow_row(hash, hardware.depth(flow_table));
    out.table = flow_table;
    out.row = out.hashed_row;
    for (unsigned i = 0; i < longest_walk; ++i) {
        flow_image row = {};
        out.unread = hardware.hbm_read(out.table, out.row, row.data(), &out.bits);
        if (i == 0) out.row_in_use = out.bits != 0;
        if (out.bits != 0 && holds_key(row, key_image)) {
            out.hit = true;
            out.image.assign(row.begin(), row.end());
            return out;
        }
        const uint32_t next = out.bits == 0 ? 0 : next_row(row, hint_hash(hash));
        if (out.unread != SDK_RET_OK || next == 0 || next >= hardware.depth(flow_ohash_table))
            break;
        out.table = flow_ohash_table;
        out.row = next;
        ++out.path;
    }
    out.table = out.row = 0;
    out.bits = 0;
    return out;
}

}  // namespace halden::host::view
