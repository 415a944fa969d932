// Hardware keys and masks, their lengths, and the rows of index tables.

#include <cstring>

#include "p4gen/halden/pipeline/pipeline.h"
#include "p4pd.h"
#include "sdk/p4pd_utils.h"

namespace {

namespace pl = halden::pipeline;
using pl::key_field;
using pl::placement;
using pl::table;

// The records a key is built from and the images it goes to. The masks are null for hash tables.
struct key_build {
    uint8_t *swkey, *swkey_mask;
    uint8_t *hwkey, *hwkey_mask;
};

// Copies `width` bits of record byte `byte`, downwards from `src_bit`, to `dest_bit`. A ternary key
// goes as key & mask to the key image and as mask & ~key to the mask image.
template <bool Ternary>
[[gnu::always_inline]] inline void copy_bits(const key_build &b, size_t byte, uint16_t src_bit,
                                             uint16_t dest_bit, uint16_t width) {
    if constexpr (Ternary) {
        const uint8_t key = b.swkey[byte], mask = b.swkey_mask[byte];
        uint8_t x = key & mask;
        uint8_t y = static_cast<uint8_t>(mask & ~key);
        p4pd_utils_copy_into_hwentry(b.hwkey, dest_bit, &x, src_bit, width);
        p4pd_utils_copy_into_hwentry(b.hwkey_mask, dest_bit, &y, src_bit, width);
    } else {
        p4pd_utils_copy_into_hwentry(b.hwkey, dest_bit, b.swkey + byte, src_bit, width);
    }
}

template <bool Ternary, const table &T, size_t I>
[[gnu::always_inline]] inline void build_field(const key_build &b) {
    static constexpr key_field f = T.key[I];
    constexpr size_t base = pl::record_offset(T.key, I);
    if constexpr (f.where.how == placement::form::flag) {
        copy_bits<Ternary>(b, base, 0, f.where.at, 1);
    } else if constexpr (f.where.how == placement::form::split) {
        copy_bits<Ternary>(b, base, 7, f.where.at, 8);
        [&]<size_t... N>(std::index_sequence<N...>) __attribute__((always_inline)) {
            (copy_bits<Ternary>(b, base + 1, static_cast<uint16_t>(f.bits - 9 - N),
                                static_cast<uint16_t>(f.where.high_at - N), 1),
             ...);
        }
        (std::make_index_sequence<f.bits - 8>{});
    } else {
        // The top byte may hold fewer than eight bits of the field; the rest go whole.
        static constexpr size_t bytes = (f.bits + 7) / 8;
        static constexpr uint16_t top = f.bits % 8 == 0 ? 8 : f.bits % 8;
        copy_bits<Ternary>(b, base + bytes - 1, top - 1, f.where.at, top);
        [&]<size_t... N>(std::index_sequence<N...>) __attribute__((always_inline)) {
            (copy_bits<Ternary>(b, base + bytes - 2 - N, 7,
                                static_cast<uint16_t>(f.where.at + top + 8 * N), 8),
             ...);
        }
        (std::make_index_sequence<bytes - 1>{});
    }
}

// Always succeeds; a builder answers false when its table's key cannot be built.
template <const table &T>
bool build_key(const key_build &b) {
    [&]<size_t... I>(std::index_sequence<I...>) __attribute__((always_inline)) {
        (build_field<pl::has_mask(T.kind), T, I>(b), ...);
    }
    (std::make_index_sequence<T.key.size()>{});
    return true;
}

// The last id for which having nothing to build counts as success. The keyless ids were meant to be
// the only ones beyond it; callers rely on the failure of ids 33 to 48.
constexpr uint32_t last_id_without_build = 32;

template <const table &T>
p4pd_error_t build(const key_build &b) {
    if constexpr (pl::is_keyed(T.kind))
        return build_key<T>(b) ? P4PD_SUCCESS : P4PD_FAIL;
    else
        return T.id <= last_id_without_build ? P4PD_SUCCESS : P4PD_FAIL;
}

// --- Index tables --------------------------------------------------------------------------------

// Reads an index field at its natural width, wherever in the record it stands.
template <uint16_t Bits>
uint64_t load_field(const uint8_t *at) {
    constexpr size_t bytes = pl::storage_bytes(Bits);
    static_assert(bytes == 1 || bytes == 2 || bytes == 4);
    if constexpr (bytes == 1) {
        return *at;
    } else if constexpr (bytes == 2) {
        uint16_t value;
        std::memcpy(&value, at, sizeof value);
        return value;
    } else {
        uint32_t value;
        std::memcpy(&value, at, sizeof value);
        return value;
    }
}

constexpr uint64_t no_index = ~uint64_t{0};

template <const table &T>
uint64_t row_index(const uint8_t *record) {
    if constexpr (!pl::is_index(T.kind)) {
        return no_index;
    } else {
        uint64_t row = 0;
        [&]<size_t... I>(std::index_sequence<I...>) __attribute__((always_inline)) {
            ((row = row << T.index[I].bits |
                    (load_field<T.index[I].bits>(record + pl::record_offset(T.index, I)) &
                     ((uint64_t{1} << T.index[I].bits) - 1))),
             ...);
        }
        (std::make_index_sequence<T.index.size()>{});
        return row;
    }
}

template <const table &T>
void query(uint32_t *key_bits, uint32_t *mask_bits, uint32_t *data_bits) {
    if constexpr (pl::is_keyed(T.kind)) *key_bits = pl::queried_key_bits(T);
    if constexpr (pl::has_mask(T.kind)) *mask_bits = pl::tcam_width(T);
    *data_bits = T.data_bits;
}

}  // namespace

void p4pd_hwentry_query(uint32_t tableid, uint32_t *hwkey_len, uint32_t *hwkeymask_len,
                        uint32_t *hwactiondata_len) {
    switch (tableid) {
#define HALDEN_QUERY(t)                                           \
    case pl::t.id:                                                \
        query<pl::t>(hwkey_len, hwkeymask_len, hwactiondata_len); \
        break;
        HALDEN_FOR_EACH_TABLE(HALDEN_QUERY)
#undef HALDEN_QUERY
        default:
            break;
    }
}

p4pd_error_t p4pd_hwkey_hwmask_build(uint32_t tableid, void *swkey, void *swkey_mask,
                                     uint8_t *hwkey, uint8_t *hwkey_mask) {
    const key_build b = {static_cast<uint8_t *>(swkey), static_cast<uint8_t *>(swkey_mask), hwkey,
                         hwkey_mask};
    switch (tableid) {
#define HALDEN_BUILD(t) \
    case pl::t.id:      \
        return build<pl::t>(b);
        HALDEN_FOR_EACH_TABLE(HALDEN_BUILD)
#undef HALDEN_BUILD
        default:
            return P4PD_FAIL;
    }
}

uint64_t p4pd_index_to_hwindex_map(uint32_t tableid, void *swkey) {
    const auto *record = static_cast<const uint8_t *>(swkey);
    switch (tableid) {
#define HALDEN_ROW(t) \
    case pl::t.id:    \
        return row_index<pl::t>(record);
        HALDEN_FOR_EACH_TABLE(HALDEN_ROW)
#undef HALDEN_ROW
        default:
            return no_index;
    }
}
