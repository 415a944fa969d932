#pragma once

// Polynomial arithmetic modulo the CRC's generator, at compile time.

#include <cstdint>

namespace flow_crc {

inline constexpr uint32_t generator = 0x04C11DB7;  // without its leading x^32

constexpr uint32_t times_x(uint32_t p) { return p << 1 ^ (p >> 31 != 0 ? generator : 0); }

// x^n modulo the generator.
constexpr uint32_t x_power(uint32_t n) {
    uint32_t p = 1;
    for (uint32_t i = 0; i < n; ++i) p = times_x(p);
    return p;
}

// The quotient of x^64 by the generator, 33 bits: what Barrett's reduction multiplies by.
constexpr uint64_t barrett_quotient() {
    uint64_t quotient = 0;
    uint64_t window = uint64_t{1} << 32;  // the 33 leading coefficients of what is left of x^64
    for (int i = 0; i <= 32; ++i) {
        const uint64_t bit = window >> 32 & 1;
        quotient = quotient << 1 | bit;
        if (bit != 0) window ^= uint64_t{1} << 32 | generator;
        window <<= 1;
    }
    return quotient;
}

}  // namespace flow_crc
