#include "host/view/row_hash.h"

#include <array>
#include <bit>
#include <cstring>

#include "host/bits/bit_runs.h"
#include "host/memory/memory_map.h"

namespace halden::host::view {
namespace {

constexpr uint32_t polynomial = 0x04c11db7;

constexpr std::array<uint32_t, 256> make_steps() {
    std::array<uint32_t, 256> out = {};
    for (uint32_t byte = 0; byte < 256; ++byte) {
        uint32_t crc = byte << 24;
        for (int i = 0; i < 8; ++i) crc = crc << 1 ^ (crc >> 31 != 0 ? polynomial : 0);
        out[byte] = crc;
    }
    return out;
}
constexpr std::array<uint32_t, 256> steps = make_steps();

}  // namespace

uint32_t crc32(const uint8_t *bytes, size_t count) {
    uint32_t crc = 0;
    for (size_t i = 0; i < count; ++i) crc = crc << 8 ^ steps[crc >> 24 ^ bytes[i]];
    return crc;
}

uint32_t flow_hash(const uint8_t *key_image) {
    uint8_t row[flow_row_bytes] = {};
    std::memcpy(row, key_image, flow_key_first_bytes);
    std::memcpy(row + flow_key_rest_byte, key_image + flow_key_rest_byte, flow_key_rest_bytes);
    return crc32(row, sizeof row);
}

uint32_t flow_row(uint32_t hash, uint32_t rows) {
    const int bits = std::countr_zero(rows);
    return bits == 0 ? 0 : hash >> (32 - bits);
}

uint32_t hash_row(uint32_t tableid, const uint8_t *key_image, uint32_t rows) {
    const table_memory *table = table_memory_of(tableid);
    if (table == nullptr || rows == 0) return 0;
    if (tableid == flow_table) return flow_row(flow_hash(key_image), rows);
    if (!table->is_hash()) return 0;
    uint8_t key[row_bytes] = {};
    bits::copy_image(key, 0, key_image, 0, table->key_bits);
    return crc32(key, bits::bytes_of(table->key_bits)) % rows;
}

}  // namespace halden::host::view
