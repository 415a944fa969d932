#pragma once

// Copies between a caller's buffer and rows that other threads may be reading or writing. Every
// access to a row is a 64-bit atomic: a reader that sees a new word also sees whatever was stored
// before it.

#include <atomic>
#include <cstdint>
#include <cstring>

namespace halden::host {

inline constexpr uint32_t word_bytes = 8;

// `row` is aligned to a word and holds whole words; `bytes` of it are taken.
inline void store_words(uint8_t *row, const uint8_t *from, uint32_t bytes) {
    for (uint32_t at = 0; at < bytes; at += word_bytes) {
        uint64_t word;
        std::memcpy(&word, from + at, word_bytes);
        std::atomic_ref<uint64_t>(*reinterpret_cast<uint64_t *>(row + at))
            .store(word, std::memory_order_release);
    }
}

inline void load_words(uint8_t *to, const uint8_t *row, uint32_t bytes) {
    for (uint32_t at = 0; at < bytes; at += word_bytes) {
        auto *place = reinterpret_cast<uint64_t *>(const_cast<uint8_t *>(row) + at);
        const uint64_t word = std::atomic_ref<uint64_t>(*place).load(std::memory_order_acquire);
        std::memcpy(to + at, &word, word_bytes);
    }
}

}  // namespace halden::host
