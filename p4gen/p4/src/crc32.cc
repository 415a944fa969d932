#include "crc32.h"

#include <array>
#include <atomic>

#include "crc32_poly.h"
#include "ftl/flow_entry_layout.h"

namespace flow_crc {
namespace {

namespace lay = flow_layout;

// table[k][b] is the CRC of byte b followed by k zero bytes.
using tables = std::array<std::array<uint32_t, 256>, 8>;

consteval tables make_tables() {
    tables t{};
    for (uint32_t b = 0; b < 256; ++b) {
        uint32_t crc = b << 24;
        for (int i = 0; i < 8; ++i) crc = times_x(crc);
        t[0][b] = crc;
    }
    for (size_t k = 1; k < t.size(); ++k) {
        for (uint32_t b = 0; b < 256; ++b) {
            const uint32_t before = t[k - 1][b];
            t[k][b] = before << 8 ^ t[0][before >> 24];
        }
    }
    return t;
}

constexpr tables table = make_tables();

uint64_t load_be64(const uint8_t *data) {
    uint64_t word;
    __builtin_memcpy(&word, data, sizeof word);
    if constexpr (__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__) word = __builtin_bswap64(word);
    return word;
}

uint32_t crc_portable(const uint8_t *data, size_t bytes) {
    uint32_t crc = 0;
    for (; bytes >= 8; data += 8, bytes -= 8) {
        const uint64_t v = load_be64(data) ^ uint64_t { crc } << 32;
        crc = table[7][v >> 56] ^ table[6][v >> 48 & 0xff] ^ table[5][v >> 40 & 0xff] ^
              table[4][v >> 32 & 0xff] ^ table[3][v >> 24 & 0xff] ^ table[2][v >> 16 & 0xff] ^
              table[1][v >> 8 & 0xff] ^ table[0][v & 0xff];
    }
    for (; bytes > 0; ++data, --bytes) crc = crc << 8 ^ table[0][crc >> 24 ^ *data];
    return crc;
}

uint32_t pack_key_portable(uint8_t *image, const uint8_t *body) {
    for (uint32_t i = 0; i < lay::body_words; ++i) {
        const uint64_t word = lay::load_word(body, i) & lay::key_mask[i];
        lay::store_word(image, lay::body_words - 1 - i, __builtin_bswap64(word));
    }
    return crc_portable(image, lay::body_bytes);
}

}  // namespace

constexpr routines portable = {crc_portable, pack_key_portable, "portable"};

const routines &best() {
    // Asked once; several threads may ask at the same time and all find the same answer.
    static constinit std::atomic<const routines *> chosen{nullptr};
    const routines *r = chosen.load(std::memory_order_relaxed);
    if (r == nullptr) {
        r = accelerated();
        if (r == nullptr) r = &portable;
        chosen.store(r, std::memory_order_relaxed);
    }
    return *r;
}

}  // namespace flow_crc
