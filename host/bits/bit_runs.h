#pragma once

// Runs of bits inside a byte buffer, in the two orders that the host meets.
//
//   image order    bit n is bit 7 - n % 8 of byte n / 8; the first bit of a run is its highest
//   record order   bit n is bit n % 8 of byte n / 8; the first bit of a run is its lowest
//
// Every function touches exactly the bytes that hold bits of the run, so a field at the end of a
// buffer is safe. Runs of `take` and `put` are 1 to 8 bits.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace halden::host::bits {

inline constexpr unsigned bits_per_byte = 8;

constexpr unsigned bytes_of(unsigned bits) { return (bits + 7) / bits_per_byte; }
// Swizzled images are stored and reversed in whole 16-bit words.
constexpr unsigned swizzled_bytes_of(unsigned bits) { return (bits + 15) / 16 * 2; }

constexpr uint8_t low_ones(unsigned n) { return static_cast<uint8_t>((1u << n) - 1); }

// A caller that breaks a routine's contract is a programming error of the pipeline's generator: no
// image made from it could be trusted, so the process ends with the routine and the numbers.
inline void require(bool holds, const char *routine, unsigned bit, unsigned width) {
    if (holds) return;
    std::fprintf(stderr, "%s: cannot take %u bits at bit %u\n", routine, width, bit);
    std::abort();
}

inline uint8_t take_image(const uint8_t *image, unsigned bit, unsigned n) {
    const unsigned first = bit / 8, used = bit % 8 + n;
    if (used <= 8) return static_cast<uint8_t>(image[first] >> (8 - used)) & low_ones(n);
    const unsigned two = static_cast<unsigned>(image[first] << 8 | image[first + 1]);
    return static_cast<uint8_t>(two >> (16 - used)) & low_ones(n);
}

inline void put_image(uint8_t *image, unsigned bit, unsigned n, uint8_t value) {
    const unsigned used = bit % 8 + n;
    uint8_t *at = image + bit / 8;
    if (used <= 8) {
        const unsigned shift = 8 - used;
        const unsigned mask = static_cast<unsigned>(low_ones(n)) << shift;
        at[0] = static_cast<uint8_t>((at[0] & ~mask) | ((unsigned{value} << shift) & mask));
        return;
    }
    const unsigned shift = 16 - used;
    const unsigned mask = static_cast<unsigned>(low_ones(n)) << shift;
    const unsigned moved = (unsigned{value} << shift) & mask;
    at[0] = static_cast<uint8_t>((at[0] & ~(mask >> 8)) | (moved >> 8));
    at[1] = static_cast<uint8_t>((at[1] & ~mask) | (moved & 0xff));
}

inline uint8_t take_record(const uint8_t *record, unsigned bit, unsigned n) {
    const unsigned first = bit / 8, shift = bit % 8;
    unsigned two = record[first];
    if (shift + n > 8) two |= static_cast<unsigned>(record[first + 1]) << 8;
    return static_cast<uint8_t>(two >> shift) & low_ones(n);
}

inline void put_record(uint8_t *record, unsigned bit, unsigned n, uint8_t value) {
    const unsigned shift = bit % 8;
    uint8_t *at = record + bit / 8;
    const unsigned mask = static_cast<unsigned>(low_ones(n)) << shift;
    const unsigned moved = (unsigned{value} << shift) & mask;
    at[0] = static_cast<uint8_t>((at[0] & ~mask) | (moved & 0xff));
    if (shift + n > 8) at[1] = static_cast<uint8_t>((at[1] & ~(mask >> 8)) | (moved >> 8));
}

// Copies `width` bits between images, any length, any alignment. The buffers do not overlap.
inline void copy_image(uint8_t *dest, unsigned dest_bit, const uint8_t *src, unsigned src_bit,
                       unsigned width) {
    if (dest_bit % 8 == 0 && src_bit % 8 == 0 && width >= 8) {
        std::memcpy(dest + dest_bit / 8, src + src_bit / 8, width / 8);
        dest_bit += width & ~7u;
        src_bit += width & ~7u;
        width &= 7u;
    }
    while (width != 0) {
        const unsigned n = width < 8 ? width : 8;
        put_image(dest, dest_bit, n, take_image(src, src_bit, n));
        dest_bit += n;
        src_bit += n;
        width -= n;
    }
}

}  // namespace halden::host::bits
