#pragma once

// Where each field of a flow entry lies in its 128-byte body.
//
// The body is one 1024-bit little-endian number: bit n is bit n % 8 of byte n / 8. The fields
// follow one another without alignment, in the order of `fields` below, which is the only
// description of the layout; positions, masks and slot tables are computed from it at compile time.
//
//     bit 0                                                                             bit 1023
//     | pad | valid | more | hint8 hash8 ... hint2 hash2 hint1 | sip | hash1 flow_idx | pad | key
//     ...
//
// The hardware image of an entry is the body with its 128 bytes in reverse order. Seen as sixteen
// 64-bit words, image word 15 - j is body word j with its bytes swapped.
//
//     namespace lay = flow_layout;
//     lay::set_bits<lay::flow_idx>(entry.body(), 42);
//     uint64_t vni = lay::get_bits<lay::metadata_flow_key_vni>(entry.body());

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace flow_layout {

enum class group : uint8_t { hints, key, data, valid };

struct field {
    std::string_view name;
    uint16_t width;  // bits
    group part;
};

// Position and width of one field, in bits.
struct range {
    uint16_t first;
    uint16_t width;
};

inline constexpr field fields[] = {
    {"pad_low", 91, group::hints},
    {"entry_valid", 1, group::valid},
    {"more_hints", 21, group::hints},
    {"more_hashes", 1, group::hints},
    {"hint8", 21, group::hints},
    {"hash8", 10, group::hints},
    {"hint7", 21, group::hints},
    {"hash7", 10, group::hints},
    {"hint6", 21, group::hints},
    {"hash6", 10, group::hints},
    {"hint5", 21, group::hints},
    {"hash5", 10, group::hints},
    {"hint4", 21, group::hints},
    {"hash4", 10, group::hints},
    {"hint3", 21, group::hints},
    {"hash3", 10, group::hints},
    {"hint2", 21, group::hints},
    {"hash2", 10, group::hints},
    {"hint1", 21, group::hints},
    {"metadata_flow_key_sip", 128, group::key},
    {"hash1", 10, group::hints},  // apart from hint1: it shares the data word with flow_idx
    {"flow_idx", 22, group::data},
    {"pad_mid", 40, group::hints},
    {"metadata_flow_key_dip", 128, group::key},
    {"metadata_flow_key_sport", 16, group::key},
    {"metadata_flow_key_dport", 16, group::key},
    {"metadata_flow_key_smac", 48, group::key},
    {"metadata_flow_key_dmac", 48, group::key},
    {"metadata_flow_key_ktype", 8, group::key},
    {"metadata_flow_key_port_id", 11, group::key},
    {"metadata_flow_key_rsvd", 5, group::key},
    {"metadata_flow_key_outer_flow_id", 16, group::key},
    {"metadata_flow_key_vni", 24, group::key},
    {"metadata_flow_key_vlan", 16, group::key},
    {"metadata_flow_key_proto", 8, group::key},
    {"metadata_flow_key_spare", 128, group::key},
};

inline constexpr uint32_t body_bytes = 128;
inline constexpr uint32_t body_words = body_bytes / 8;
inline constexpr uint32_t hint_slots = 8;
inline constexpr uint32_t more_slot = 9;

using word_masks = std::array<uint64_t, body_words>;

// Position of the named field; a name that is not in `fields` does not compile.
consteval range at(std::string_view name) {
    uint32_t first = 0;
    for (const field &f : fields) {
        if (f.name == name) return {static_cast<uint16_t>(first), f.width};
        first += f.width;
    }
    throw "no such field in a flow entry";
}

// The bits of one group, word by word.
consteval word_masks mask_of(group part) {
    word_masks masks{};
    uint32_t bit = 0;
    for (const field &f : fields) {
        for (uint32_t i = 0; i < f.width; ++i, ++bit) {
            if (f.part == part) masks[bit / 64] |= uint64_t{1} << (bit % 64);
        }
    }
    return masks;
}

consteval uint32_t total_bits() {
    uint32_t bits = 0;
    for (const field &f : fields) bits += f.width;
    return bits;
}
static_assert(total_bits() == body_bytes * 8);

inline constexpr range pad_low = at("pad_low");
inline constexpr range entry_valid = at("entry_valid");
inline constexpr range more_hints = at("more_hints");
inline constexpr range more_hashes = at("more_hashes");
inline constexpr range flow_idx = at("flow_idx");
inline constexpr range pad_mid = at("pad_mid");
inline constexpr range metadata_flow_key_sip = at("metadata_flow_key_sip");
inline constexpr range metadata_flow_key_dip = at("metadata_flow_key_dip");
inline constexpr range metadata_flow_key_sport = at("metadata_flow_key_sport");
inline constexpr range metadata_flow_key_dport = at("metadata_flow_key_dport");
inline constexpr range metadata_flow_key_smac = at("metadata_flow_key_smac");
inline constexpr range metadata_flow_key_dmac = at("metadata_flow_key_dmac");
inline constexpr range metadata_flow_key_ktype = at("metadata_flow_key_ktype");
inline constexpr range metadata_flow_key_port_id = at("metadata_flow_key_port_id");
inline constexpr range metadata_flow_key_rsvd = at("metadata_flow_key_rsvd");
inline constexpr range metadata_flow_key_outer_flow_id = at("metadata_flow_key_outer_flow_id");
inline constexpr range metadata_flow_key_vni = at("metadata_flow_key_vni");
inline constexpr range metadata_flow_key_vlan = at("metadata_flow_key_vlan");
inline constexpr range metadata_flow_key_proto = at("metadata_flow_key_proto");
inline constexpr range metadata_flow_key_spare = at("metadata_flow_key_spare");

// Slot 1 to 8 by number; element 0 is unused.
inline constexpr range hints[] = {{},          at("hint1"), at("hint2"), at("hint3"), at("hint4"),
                                  at("hint5"), at("hint6"), at("hint7"), at("hint8")};
inline constexpr range hashes[] = {{},          at("hash1"), at("hash2"), at("hash3"), at("hash4"),
                                   at("hash5"), at("hash6"), at("hash7"), at("hash8")};

inline constexpr word_masks key_mask = mask_of(group::key);
inline constexpr word_masks hints_mask = mask_of(group::hints);

// The lowest body word that holds key bits; all words from here on hold some.
inline constexpr uint32_t first_key_word = metadata_flow_key_sip.first / 64;

constexpr uint64_t low_bits(uint32_t width) {
    return width >= 64 ? ~uint64_t{0} : (uint64_t{1} << width) - 1;
}

// Body word `index`, little-endian. Entries are always read and written in these aligned words: a
// narrow store followed by a wide load of the same bytes would stall on the store buffer.
inline uint64_t load_word(const uint8_t *body, uint32_t index) {
    uint64_t word;
    std::memcpy(&word, body + 8 * index, sizeof word);
    if constexpr (__BYTE_ORDER__ == __ORDER_BIG_ENDIAN__) word = __builtin_bswap64(word);
    return word;
}

inline void store_word(uint8_t *body, uint32_t index, uint64_t word) {
    if constexpr (__BYTE_ORDER__ == __ORDER_BIG_ENDIAN__) word = __builtin_bswap64(word);
    std::memcpy(body + 8 * index, &word, sizeof word);
}

// Field of up to 64 bits whose position is only known at run time.
inline uint64_t read_bits(const uint8_t *body, range r) {
    const uint32_t word = r.first / 64u;
    const uint32_t shift = r.first % 64u;
    uint64_t value = load_word(body, word) >> shift;
    if (shift + r.width > 64) value |= load_word(body, word + 1) << (64 - shift);
    return value & low_bits(r.width);
}

// Stores the low bits of `value`; every other bit of the body keeps its value.
inline void write_bits(uint8_t *body, range r, uint64_t value) {
    const uint64_t mask = low_bits(r.width);
    value &= mask;
    const uint32_t word = r.first / 64u;
    const uint32_t shift = r.first % 64u;
    store_word(body, word, (load_word(body, word) & ~(mask << shift)) | value << shift);
    if (shift + r.width > 64) {
        const uint32_t done = 64 - shift;
        store_word(body, word + 1, (load_word(body, word + 1) & ~(mask >> done)) | value >> done);
    }
}

template <range R>
uint64_t get_bits(const uint8_t *body) {
    static_assert(R.width <= 64, "longer fields are byte arrays: use get_bytes");
    return read_bits(body, R);
}

template <range R>
void set_bits(uint8_t *body, uint64_t value) {
    static_assert(R.width <= 64, "longer fields are byte arrays: use set_bytes");
    write_bits(body, R, value);
}

// Byte fields (the addresses and the spare bytes), stored byte 0 first.
template <range R>
const uint8_t *bytes_of(const uint8_t *body) {
    static_assert(R.first % 8 == 0 && R.width % 8 == 0);
    return body + R.first / 8;
}

template <range R>
void set_bytes(uint8_t *body, const void *source) {
    static_assert(R.first % 8 == 0 && R.width % 8 == 0);
    std::memcpy(body + R.first / 8, source, R.width / 8);
}

}  // namespace flow_layout
