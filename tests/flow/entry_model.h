#pragma once

// A flow entry as 1024 single bits: where its fields stand is typed here once more, and what is
// computed from it is computed bit by bit.

#include <bitset>
#include <cstdint>
#include <cstring>
#include <random>
#include <string_view>

#include "ftl/flow_hash_entry.h"

namespace halden::test {

enum class part : uint8_t { key, data, hint, valid };

struct place {
    std::string_view name;
    unsigned first;  // bit of the body
    unsigned width;
    part of;
};

inline constexpr place places[] = {
    {"pad_low", 0, 91, part::hint},
    {"entry_valid", 91, 1, part::valid},
    {"more_hints", 92, 21, part::hint},
    {"more_hashes", 113, 1, part::hint},
    {"hint8", 114, 21, part::hint},
    {"hash8", 135, 10, part::hint},
    {"hint7", 145, 21, part::hint},
    {"hash7", 166, 10, part::hint},
    {"hint6", 176, 21, part::hint},
    {"hash6", 197, 10, part::hint},
    {"hint5", 207, 21, part::hint},
    {"hash5", 228, 10, part::hint},
    {"hint4", 238, 21, part::hint},
    {"hash4", 259, 10, part::hint},
    {"hint3", 269, 21, part::hint},
    {"hash3", 290, 10, part::hint},
    {"hint2", 300, 21, part::hint},
    {"hash2", 321, 10, part::hint},
    {"hint1", 331, 21, part::hint},
    {"metadata_flow_key_sip", 352, 128, part::key},
    {"hash1", 480, 10, part::hint},
    {"flow_idx", 490, 22, part::data},
    {"pad_mid", 512, 40, part::hint},
    {"metadata_flow_key_dip", 552, 128, part::key},
    {"metadata_flow_key_sport", 680, 16, part::key},
    {"metadata_flow_key_dport", 696, 16, part::key},
    {"metadata_flow_key_smac", 712, 48, part::key},
    {"metadata_flow_key_dmac", 760, 48, part::key},
    {"metadata_flow_key_ktype", 808, 8, part::key},
    {"metadata_flow_key_port_id", 816, 11, part::key},
    {"metadata_flow_key_rsvd", 827, 5, part::key},
    {"metadata_flow_key_outer_flow_id", 832, 16, part::key},
    {"metadata_flow_key_vni", 848, 24, part::key},
    {"metadata_flow_key_vlan", 872, 16, part::key},
    {"metadata_flow_key_proto", 888, 8, part::key},
    {"metadata_flow_key_spare", 896, 128, part::key},
};

// Bit n is bit n % 8 of byte n / 8 of the body, which stands behind virtual table and valid word.
using entry_bits = std::bitset<1024>;

inline constexpr size_t body_at = 16;

inline entry_bits bits_of(const flow_hash_entry_t &entry) {
    uint8_t bytes[144];
    std::memcpy(bytes, static_cast<const void *>(&entry), sizeof bytes);
    entry_bits bits;
    for (size_t n = 0; n < 1024; ++n) bits[n] = (bytes[body_at + n / 8] >> n % 8 & 1) != 0;
    return bits;
}

inline void set_bits(flow_hash_entry_t &entry, const entry_bits &bits) {
    for (size_t n = 0; n < 1024; ++n) {
        uint8_t &byte = entry.body()[n / 8];
        const auto one = static_cast<uint8_t>(1u << n % 8);
        byte = static_cast<uint8_t>(bits[n] ? byte | one : byte & ~one);
    }
}

inline const place &place_of(std::string_view name) {
    for (const place &p : places)
        if (p.name == name) return p;
    throw std::string_view("no such field");
}

inline entry_bits mask_of(const place &p) {
    entry_bits mask;
    for (unsigned n = 0; n < p.width; ++n) mask.set(p.first + n);
    return mask;
}

inline entry_bits mask_of(part of) {
    entry_bits mask;
    for (const place &p : places)
        if (p.of == of) mask |= mask_of(p);
    return mask;
}

inline uint64_t value_of(const entry_bits &bits, std::string_view name) {
    const place &p = place_of(name);
    uint64_t value = 0;
    for (unsigned n = 0; n < p.width; ++n) value |= uint64_t{bits[p.first + n]} << n;
    return value;
}

inline entry_bits with(entry_bits bits, std::string_view name, uint64_t value) {
    const place &p = place_of(name);
    for (unsigned n = 0; n < p.width; ++n) bits[p.first + n] = n < 64 && (value >> n & 1) != 0;
    return bits;
}

inline entry_bits random_bits(std::mt19937_64 &random) {
    entry_bits bits;
    for (size_t n = 0; n < 1024; n += 64) {
        const uint64_t word = random();
        for (size_t i = 0; i < 64; ++i) bits[n + i] = (word >> i & 1) != 0;
    }
    return bits;
}

// One bit of the CRC: polynomial 0x04C11DB7, most significant bit first.
inline uint32_t crc_step(uint32_t crc, bool bit) {
    const bool divides = ((crc >> 31) != 0) != bit;
    crc <<= 1;
    return divides ? crc ^ 0x04C11DB7u : crc;
}

inline uint32_t crc_bit_by_bit(const uint8_t *data, size_t bytes) {
    uint32_t crc = 0;
    for (size_t i = 0; i < bytes; ++i)
        for (int bit = 7; bit >= 0; --bit) crc = crc_step(crc, (data[i] >> bit & 1) != 0);
    return crc;
}

}  // namespace halden::test
