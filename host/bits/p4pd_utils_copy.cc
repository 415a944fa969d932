// The copies between software records and images. Where a bit of an image stands is decided here
// and nowhere else in the system.

#include "host/bits/bit_runs.h"
#include "sdk/p4pd_utils.h"

#include <algorithm>

namespace {

using namespace halden::host;

// One-bit copies number the bits of an image from the low end of each byte: a nibble sent as four
// single bits 7, 6, 5, 4 lands in the upper half of its byte in the order in which it was sent.
uint8_t one_bit_mask(unsigned bit) { return static_cast<uint8_t>(1u << (bit % 8)); }

void image_to_record(uint8_t *dest, unsigned dest_bit, const uint8_t *src, unsigned src_bit,
                     unsigned width) {
    while (width != 0) {
        // Pieces end at the byte borders of the record, so most stores are whole bytes.
        const unsigned top = (dest_bit + width) % 8;
        const unsigned n = std::min(top == 0 ? 8u : top, width);
        bits::put_record(dest, dest_bit + width - n, n, bits::take_image(src, src_bit, n));
        src_bit += n;
        width -= n;
    }
}

}  // namespace

void p4pd_utils_copy_into_hwentry(uint8_t *dest, uint16_t dest_bit, uint8_t *src, uint16_t src_bit,
                                  uint16_t width) {
    bits::require(src_bit < 8 && width >= 1 && width <= src_bit + 1, __func__, src_bit, width);
    const auto value = static_cast<uint8_t>(*src >> (src_bit + 1 - width)) & bits::low_ones(width);
    if (width > 1) {
        bits::put_image(dest, dest_bit, width, static_cast<uint8_t>(value));
        return;
    }
    uint8_t &byte = dest[dest_bit / 8];
    const uint8_t mask = one_bit_mask(dest_bit);
    byte = static_cast<uint8_t>(value ? byte | mask : byte & ~mask);
}

void p4pd_utils_copy_le_src_to_be_dest(uint8_t *dest, uint16_t dest_bit, uint8_t *src,
                                       uint16_t src_bit, uint16_t width) {
    unsigned to = dest_bit, left = width;
    while (left != 0) {
        // Pieces end at the byte borders of the image.
        const unsigned n = std::min(8u - to % 8, left);
        bits::put_image(dest, to, n, bits::take_record(src, src_bit + left - n, n));
        to += n;
        left -= n;
    }
}

void p4pd_utils_copy_be_src_to_le_dest(uint8_t *dest, uint16_t dest_bit, uint8_t *src,
                                       uint16_t src_bit, uint16_t width) {
    image_to_record(dest, dest_bit, src, src_bit, width);
}

void p4pd_utils_copy_be_adata_to_le_dest(uint8_t *dest, uint16_t dest_bit, uint8_t *src,
                                         uint16_t src_bit, uint16_t width) {
    image_to_record(dest, dest_bit, src, src_bit, width);
}

void p4pd_utils_copy_single_bit(uint8_t *dest, uint16_t dest_bit, uint8_t *src, uint16_t src_bit,
                                uint16_t width) {
    bits::require(dest_bit < 8 && width == 1, __func__, dest_bit, width);
    const bool set = (src[src_bit / 8] & one_bit_mask(src_bit)) != 0;
    const uint8_t mask = one_bit_mask(dest_bit);
    *dest = static_cast<uint8_t>(set ? *dest | mask : *dest & ~mask);
}

void p4pd_utils_swizzle_bytes(uint8_t *buffer, uint16_t bits) {
    std::reverse(buffer, buffer + bits::swizzled_bytes_of(bits));
}
