#pragma once

// The key of a flow record, put into an entry's body a word at a time. Field by field, each narrow
// store would be waited for by the next wide load of the same word.

#include <cstddef>
#include <cstring>
#include <type_traits>
#include <utility>

#include "ftl/flow_entry_layout.h"
#include "p4pd_records.h"

namespace halden {

namespace flow_key_detail {

namespace lay = flow_layout;

// `bytes` bytes of the record from `offset` on, little-endian. Odd numbers are put together from
// whole loads: a copy of them into a word would be read back before it is stored.
template <size_t bytes>
inline uint64_t bytes_at(const uint8_t *record, size_t offset) {
    if constexpr (bytes == 1) {
        return record[offset];
    } else if constexpr (bytes == 2 || bytes == 4 || bytes == 8) {
        std::conditional_t<bytes == 2, uint16_t, std::conditional_t<bytes == 4, uint32_t, uint64_t>>
            value;
        std::memcpy(&value, record + offset, bytes);
        static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__);
        return value;
    } else {
        constexpr size_t low = bytes > 4 ? 4 : 2;
        return bytes_at<low>(record, offset) | bytes_at<bytes - low>(record, offset + low)
                                                   << 8 * low;
    }
}

// What of `field` lies in body word `word`. `record` has it at `offset`, `stored` bytes wide.
template <lay::range field, size_t stored, uint32_t word>
inline uint64_t part(const uint8_t *record, size_t offset) {
    constexpr uint32_t first = field.first, end = field.first + 0u + field.width;
    constexpr uint32_t low = word * 64, high = low + 64;
    if constexpr (end <= low || first >= high) {
        return 0;
    } else if constexpr (field.width <= 64 && stored <= 8) {
        const uint64_t value = bytes_at<stored>(record, offset) & lay::low_bits(field.width);
        if constexpr (first >= low)
            return value << (first - low);
        else
            return value >> (low - first);
    } else {
        // A long field is bytes, and begins at a byte.
        constexpr uint32_t from = first > low ? first : low, to = end < high ? end : high;
        static_assert(first % 8 == 0 && from % 8 == 0 && to % 8 == 0);
        return bytes_at<(to - from) / 8>(record, offset + (from - first) / 8) << (from - low);
    }
}

}  // namespace flow_key_detail

// Overwrites the body's words from the first with key bits on; of the word that the key shares with
// others, those are zeroed. `record` is a flow_swkey_t at any address.
inline void pack_flow_key(uint8_t *body, const uint8_t *record) {
    namespace lay = flow_layout;
    const auto word = [&]<uint32_t w>(std::integral_constant<uint32_t, w>) {
        uint64_t value = 0;
#define HALDEN_PART(name)                                                              \
    value |= flow_key_detail::part<lay::metadata_flow_key_##name,                      \
                                   sizeof(flow_swkey_t::metadata_flow_key_##name), w>( \
        record, offsetof(flow_swkey_t, metadata_flow_key_##name))
        HALDEN_PART(spare);
        HALDEN_PART(proto);
        HALDEN_PART(vlan);
        HALDEN_PART(vni);
        HALDEN_PART(outer_flow_id);
        HALDEN_PART(rsvd);
        HALDEN_PART(port_id);
        HALDEN_PART(ktype);
        HALDEN_PART(dmac);
        HALDEN_PART(smac);
        HALDEN_PART(dport);
        HALDEN_PART(sport);
        HALDEN_PART(dip);
        HALDEN_PART(sip);
#undef HALDEN_PART
        lay::store_word(body, w, value);
    };
    [&]<uint32_t... I>(std::integer_sequence<uint32_t, I...>) {
        (word(std::integral_constant<uint32_t, lay::first_key_word + I>{}), ...);
    }(std::make_integer_sequence<uint32_t, lay::body_words - lay::first_key_word>{});
}

}  // namespace halden
