// The CRC by carry-less multiplication. The algorithm is written once, over a vector of two 64-bit
// halves; each processor supplies the vector.

#include "crc32.h"
#include "crc32_poly.h"
#include "ftl/flow_entry_layout.h"

#if defined(__x86_64__)
#include <immintrin.h>
#define CLMUL_TARGET __attribute__((target("pclmul,ssse3,sse4.1")))
#elif defined(__aarch64__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
#include <arm_neon.h>
#include <asm/hwcap.h>
#include <sys/auxv.h>
#if defined(__clang__)
#define CLMUL_TARGET __attribute__((target("aes")))
#else
#define CLMUL_TARGET __attribute__((target("+crypto")))
#endif
#endif

namespace flow_crc {

#if defined(CLMUL_TARGET)
namespace {

namespace lay = flow_layout;

#define CLMUL_INLINE CLMUL_TARGET __attribute__((always_inline)) inline

#if defined(__x86_64__)

using vec = __m128i;

CLMUL_INLINE vec pair(uint64_t low, uint64_t high) {
    return _mm_set_epi64x(static_cast<long long>(high), static_cast<long long>(low));
}
// Two 8-byte loads, not one of 16: entries have just been written in 8-byte stores, and a wider
// load would wait for them to leave the store buffer. The empty asm keeps compilers from joining
// the two.
CLMUL_INLINE vec load_words(const uint8_t *p) {
    vec v = _mm_loadl_epi64(reinterpret_cast<const __m128i *>(p));
    __asm__("" : "+x"(v));
    return _mm_castps_si128(
        _mm_loadh_pi(_mm_castsi128_ps(v), reinterpret_cast<const __m64 *>(p + 8)));
}
CLMUL_INLINE vec load_bytes(const uint8_t *p) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i *>(p));
}
CLMUL_INLINE void store_bytes(uint8_t *p, vec v) {
    _mm_storeu_si128(reinterpret_cast<__m128i *>(p), v);
}
CLMUL_INLINE vec reverse(vec v) {
    return _mm_shuffle_epi8(v, _mm_set_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15));
}
CLMUL_INLINE vec multiply_low(vec a, vec b) { return _mm_clmulepi64_si128(a, b, 0x00); }
CLMUL_INLINE vec multiply_high(vec a, vec b) { return _mm_clmulepi64_si128(a, b, 0x11); }
CLMUL_INLINE vec add(vec a, vec b) { return _mm_xor_si128(a, b); }
CLMUL_INLINE vec keep(vec a, vec b) { return _mm_and_si128(a, b); }
CLMUL_INLINE vec upper_32(vec v) { return _mm_srli_epi64(v, 32); }
CLMUL_INLINE uint32_t lowest_32(vec v) { return static_cast<uint32_t>(_mm_cvtsi128_si32(v)); }

bool supported() {
    return __builtin_cpu_supports("pclmul") && __builtin_cpu_supports("ssse3") &&
           __builtin_cpu_supports("sse4.1");
}
constexpr char routine_name[] = "pclmulqdq";

#else

using vec = uint64x2_t;

CLMUL_INLINE vec pair(uint64_t low, uint64_t high) {
    return vcombine_u64(vcreate_u64(low), vcreate_u64(high));
}
CLMUL_INLINE vec load_bytes(const uint8_t *p) { return vreinterpretq_u64_u8(vld1q_u8(p)); }
CLMUL_INLINE vec load_words(const uint8_t *p) { return load_bytes(p); }
CLMUL_INLINE void store_bytes(uint8_t *p, vec v) { vst1q_u8(p, vreinterpretq_u8_u64(v)); }
CLMUL_INLINE vec reverse(vec v) {
    const uint8x16_t swapped = vrev64q_u8(vreinterpretq_u8_u64(v));
    return vreinterpretq_u64_u8(vextq_u8(swapped, swapped, 8));
}
CLMUL_INLINE vec product(uint64_t a, uint64_t b) {
    return vreinterpretq_u64_p128(vmull_p64(static_cast<poly64_t>(a), static_cast<poly64_t>(b)));
}
CLMUL_INLINE vec multiply_low(vec a, vec b) {
    return product(vgetq_lane_u64(a, 0), vgetq_lane_u64(b, 0));
}
CLMUL_INLINE vec multiply_high(vec a, vec b) {
    return product(vgetq_lane_u64(a, 1), vgetq_lane_u64(b, 1));
}
CLMUL_INLINE vec add(vec a, vec b) { return veorq_u64(a, b); }
CLMUL_INLINE vec keep(vec a, vec b) { return vandq_u64(a, b); }
CLMUL_INLINE vec upper_32(vec v) { return vshrq_n_u64(v, 32); }
CLMUL_INLINE uint32_t lowest_32(vec v) { return vgetq_lane_u32(vreinterpretq_u32_u64(v), 0); }

bool supported() { return (getauxval(AT_HWCAP) & HWCAP_PMULL) != 0; }
constexpr char routine_name[] = "pmull";

#endif

// Remainder of a polynomial of at most 96 bits: one fold to 64 bits, then Barrett's reduction.
CLMUL_INLINE uint32_t remainder(vec p) {
    constexpr uint64_t fold = x_power(64);
    constexpr uint64_t inverse = barrett_quotient();
    const vec r = add(p, multiply_high(p, pair(0, fold)));
    const vec quotient = upper_32(multiply_low(upper_32(r), pair(inverse, 0)));
    const vec multiple = multiply_low(quotient, pair(uint64_t{1} << 32 | generator, 0));
    return lowest_32(add(r, multiple));
}

CLMUL_TARGET uint32_t crc_clmul(const uint8_t *data, size_t bytes) {
    if (bytes < 16 || bytes % 16 != 0) return portable.crc(data, bytes);
    constexpr uint64_t weights[] = {x_power(128), x_power(192), x_power(32), x_power(96)};
    const vec ahead = pair(weights[0], weights[1]);
    vec sum = reverse(load_bytes(data));
    for (data += 16, bytes -= 16; bytes > 0; data += 16, bytes -= 16) {
        sum = add(add(multiply_low(sum, ahead), multiply_high(sum, ahead)),
                  reverse(load_bytes(data)));
    }
    const vec tail = pair(weights[2], weights[3]);
    return remainder(add(multiply_low(sum, tail), multiply_high(sum, tail)));
}

// Body words J and J + 1: writes their part of the image and returns their share of the remainder.
template <uint32_t J>
CLMUL_INLINE vec pack_words(uint8_t *image, const uint8_t *body) {
    constexpr uint64_t low = lay::key_mask[J];
    constexpr uint64_t high = lay::key_mask[J + 1];
    uint8_t *const to = image + lay::body_bytes - 8 * (J + 2);
    if constexpr (low == 0 && high == 0) {
        store_bytes(to, pair(0, 0));
        return pair(0, 0);
    } else {
        vec v = load_words(body + size_t{8} * J);
        if constexpr ((low & high) != ~uint64_t{0}) v = keep(v, pair(low, high));
        store_bytes(to, reverse(v));
        constexpr uint64_t low_weight = x_power(64 * J + 32);
        constexpr uint64_t high_weight = x_power(64 * J + 96);
        const vec weights = pair(low_weight, high_weight);
        if constexpr (low == 0) return multiply_high(v, weights);
        return add(multiply_low(v, weights), multiply_high(v, weights));
    }
}

CLMUL_TARGET uint32_t pack_key_clmul(uint8_t *image, const uint8_t *body) {
    const vec a = add(pack_words<0>(image, body), pack_words<2>(image, body));
    const vec b = add(pack_words<4>(image, body), pack_words<6>(image, body));
    const vec c = add(pack_words<8>(image, body), pack_words<10>(image, body));
    const vec d = add(pack_words<12>(image, body), pack_words<14>(image, body));
    return remainder(add(add(a, b), add(c, d)));
}

constexpr routines clmul = {crc_clmul, pack_key_clmul, routine_name};

}  // namespace

const routines *accelerated() { return supported() ? &clmul : nullptr; }

#else

const routines *accelerated() { return nullptr; }

#endif

}  // namespace flow_crc
