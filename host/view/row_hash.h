#pragma once

// The hash units of the pipeline: which row of an exact-match table a key belongs to.
//
// Both kinds use a CRC-32 with polynomial 0x04C11DB7, most significant bit first, initial value 0,
// no final inversion, over the key image in wire order:
//
//     SRAM   CRC of the key's bits, filled up with zeros to whole bytes; row = CRC modulo the rows
//     flow   CRC of the 128-byte row with everything but the key zero; row = the CRC's high bits,
//            the low 10 bits are the hash that hint slots are compared with

#include <cstddef>
#include <cstdint>

namespace halden::host::view {

inline constexpr unsigned hint_hash_bits = 10;

uint32_t crc32(const uint8_t *bytes, size_t count);

// Of a flow key's image (84 bytes).
uint32_t flow_hash(const uint8_t *key_image);
// `rows` is a power of two.
uint32_t flow_row(uint32_t hash, uint32_t rows);
inline uint32_t hint_hash(uint32_t hash) { return hash & ((1u << hint_hash_bits) - 1); }

// Row of an SRAM hash table, or of `flow`, from a key image; `rows` is the table's depth. 0 for
// every other table.
uint32_t hash_row(uint32_t tableid, const uint8_t *key_image, uint32_t rows);

}  // namespace halden::host::view
