#pragma once

// The operations of a flow entry on its body, for those who know that an entry is a
// flow_hash_entry_t and nothing derived from it. flow_hash_entry_t's own operations are these.
//
// Bodies are read and written in aligned 64-bit words only (see flow_entry_layout.h).

#include "ftl/flow_entry_layout.h"

#include <type_traits>
#include <utility>

namespace flow_layout {

inline constexpr uint32_t data_word = flow_idx.first / 64;
inline constexpr uint64_t data_mask = low_bits(flow_idx.width) << flow_idx.first % 64;
inline constexpr uint32_t valid_word = entry_valid.first / 64;
inline constexpr uint64_t valid_mask = uint64_t{1} << entry_valid.first % 64;
static_assert(flow_idx.first % 64 + flow_idx.width <= 64);

// The hints, of the more slot too: where they are 0 no chain goes on, whatever hashes and flag say.
consteval word_masks mask_of_chain() {
    word_masks masks{};
    const auto add = [&](range r) {
        for (uint32_t bit = r.first; bit < r.first + 0u + r.width; ++bit)
            masks[bit / 64] |= uint64_t{1} << bit % 64;
    };
    add(more_hints);
    for (uint32_t slot = 1; slot <= hint_slots; ++slot) add(hints[slot]);
    return masks;
}
inline constexpr word_masks chain_mask = mask_of_chain();
inline constexpr uint32_t first_chain_word = more_hints.first / 64;
inline constexpr uint32_t last_chain_word = hints[1].first / 64;

// Calls `f(word index)` for every body word with key bits, unrolled: all masks become constants.
template <typename F>
inline void for_key_words(F f) {
    [&]<size_t... I>(std::index_sequence<I...>) {
        (f(std::integral_constant<uint32_t, first_key_word + I>{}), ...);
    }(std::make_index_sequence<body_words - first_key_word>{});
}

inline void copy_key(uint8_t *to, const uint8_t *from) {
    for_key_words([&](auto i) {
        constexpr uint64_t mask = key_mask[i];
        if constexpr (mask == ~uint64_t{0}) {
            store_word(to, i, load_word(from, i));
        } else {
            store_word(to, i, (load_word(to, i) & ~mask) | (load_word(from, i) & mask));
        }
    });
}

inline void zero_key(uint8_t *body) {
    for_key_words([&](auto i) { store_word(body, i, load_word(body, i) & ~key_mask[i]); });
}

inline bool same_key(const uint8_t *a, const uint8_t *b) {
    uint64_t difference = 0;
    for_key_words([&](auto i) { difference |= (load_word(a, i) ^ load_word(b, i)) & key_mask[i]; });
    return difference == 0;
}

inline void copy_data(uint8_t *to, const uint8_t *from) {
    const uint64_t kept = load_word(to, data_word) & ~data_mask;
    store_word(to, data_word, kept | (load_word(from, data_word) & data_mask));
}

inline bool same_data(const uint8_t *a, const uint8_t *b) {
    return ((load_word(a, data_word) ^ load_word(b, data_word)) & data_mask) == 0;
}

inline void zero_data(uint8_t *body) {
    store_word(body, data_word, load_word(body, data_word) & ~data_mask);
}

inline void zero_hints(uint8_t *body) {
    for (uint32_t i = 0; i <= metadata_flow_key_dip.first / 64; ++i)
        store_word(body, i, load_word(body, i) & ~hints_mask[i]);
}

inline bool is_valid(const uint8_t *body) {
    return (load_word(body, valid_word) & valid_mask) != 0;
}

inline void set_valid(uint8_t *body, bool valid) {
    const uint64_t kept = load_word(body, valid_word) & ~valid_mask;
    store_word(body, valid_word, kept | (valid ? valid_mask : 0));
}

// Slots from 1; every number above 8 is the more slot.
inline range hint_range(uint32_t slot) { return slot > hint_slots ? more_hints : hints[slot]; }
inline range hash_range(uint32_t slot) { return slot > hint_slots ? more_hashes : hashes[slot]; }

inline void set_hint(uint8_t *body, uint32_t slot, uint32_t hint, uint32_t hash) {
    write_bits(body, hint_range(slot), hint);
    write_bits(body, hash_range(slot), slot > hint_slots ? 1 : hash);
}

// The highest slot in use, 0 when there is none; the more slot counts only with hint and flag.
inline uint32_t last_hint(const uint8_t *body) {
    uint64_t any = 0;
    for (uint32_t i = 0; i <= last_chain_word; ++i) any |= load_word(body, i) & chain_mask[i];
    if (any == 0) return 0;
    if (get_bits<more_hints>(body) != 0 && get_bits<more_hashes>(body) == 1) return more_slot;
    for (uint32_t slot = hint_slots; slot > 0; --slot)
        if (read_bits(body, hints[slot]) != 0) return slot;
    return 0;
}

}  // namespace flow_layout
