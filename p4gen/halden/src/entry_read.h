#pragma once

// How each kind of table is read back: the inverse of the key builders and the writers.
//
//     SRAM row ─swizzle─┐
//     HBM row ──────────┴▶ unpack_row ──▶ action-data record
//                         (hash rows) ──▶ unpack_key ──▶ key record
//     TCAM x, y ─swizzle▶ x & ~y, x ^ y ▶ unpack_key ──▶ key record, key-mask record
//
// Everything is a template over one described table and folds into straight-line code: every
// position, width and offset is a constant, and a field is one call of the host's bit routines
// (a split field one per piece). No position in an image is computed here beyond what the layout
// routines were given; the host's routines resolve them, both ways.
//
// A field is zeroed before it is unpacked, so nothing that the caller left in its storage bits
// survives. What is not unpacked - other actions, the rest of the record - stays as it was.

#include <cstdint>
#include <cstring>
#include <utility>

#include "p4gen/halden/pipeline/model.h"
#include "sdk/asic/pd.h"
#include "sdk/p4pd_error.h"
#include "sdk/p4pd_utils.h"

namespace halden::p4pd {

using pipeline::kind;
using pipeline::table;

inline constexpr size_t row_buffer_bytes = 1024;
inline constexpr size_t wide_row_buffer_bytes = 6144;

// Added to the index when the data row of a ternary table is read. The writers of overflow tables
// add the table's overflow_base; reads by an overflow table's id take the plain index and leave it
// to the ASIC layer to find the table's window in its owner's SRAM.
template <const table &T>
inline constexpr uint32_t data_row_read_base = 0;

constexpr uint16_t round_up_to_16(uint16_t bits) {
    const unsigned rest = bits % 16u;
    return static_cast<uint16_t>(rest == 0 ? bits : bits + (16 - rest));
}

// --- Key ----------------------------------------------------------------------------------------

template <const table &T, size_t N>
[[gnu::always_inline]] inline void unpack_key_field(uint8_t *image, uint8_t *record) {
    constexpr pipeline::key_field f = T.key[N];
    constexpr uint16_t offset = pipeline::record_offset(T.key, N);
    uint8_t *const dest = record + offset;
    std::memset(dest, 0, pipeline::storage_bytes(f.bits));
    if constexpr (f.where.how == pipeline::placement::form::whole) {
        p4pd_utils_copy_be_src_to_le_dest(dest, 0, image, f.where.at, f.bits);
    } else if constexpr (f.where.how == pipeline::placement::form::flag) {
        p4pd_utils_copy_single_bit(dest, 0, image, f.where.at, 1);
    } else {
        p4pd_utils_copy_be_src_to_le_dest(dest, 0, image, f.where.at, 8);
        // The bits above the low byte, the highest first, as they were placed one by one.
        [&]<size_t... I>(std::index_sequence<I...>) {
            (p4pd_utils_copy_single_bit(dest + 1, static_cast<uint16_t>(f.bits - 9 - I), image,
                                        static_cast<uint16_t>(f.where.high_at - I), 1),
             ...);
        }(std::make_index_sequence<f.bits - 8>{});
    }
}

// Key fields of the image into the key record (or, from a mask, into the key-mask record).
template <const table &T>
[[gnu::always_inline]] inline void unpack_key(uint8_t *image, uint8_t *record) {
    [&]<size_t... N>(std::index_sequence<N...>) {
        (unpack_key_field<T, N>(image, record), ...);
    }(std::make_index_sequence<T.key.size()>{});
}

// Ternary decode, in place: x becomes the key, y the mask.
inline void decode_ternary(uint8_t *x, uint8_t *y, size_t bytes) {
    for (size_t i = 0; i < bytes; ++i) {
        const uint8_t key = static_cast<uint8_t>(x[i] & ~y[i]);
        y[i] = static_cast<uint8_t>(x[i] ^ y[i]);
        x[i] = key;
    }
}

// --- Action data --------------------------------------------------------------------------------

// Bit of the row, counted behind the program counter if there is one, where a field stands.
template <const table &T>
constexpr uint16_t data_position(size_t action, size_t n) {
    const uint16_t packed = pipeline::packed_offset(T.actions[action].fields, n);
    if constexpr (pipeline::has_hash_row(T.kind)) {
        return static_cast<uint16_t>(T.key_bits + packed);
    } else if constexpr (T.kind == kind::hash_hbm) {
        // [whole flits of key][data before the key][rest of the key][data after the key]
        constexpr uint16_t whole_flits = T.key_bits / 512 * 512;
        const bool before = n < T.fields_before_key;
        return static_cast<uint16_t>((before ? whole_flits : T.key_bits) + packed);
    } else {
        return packed;
    }
}

template <const table &T, size_t Action, size_t N>
[[gnu::always_inline]] inline void unpack_data_field(uint8_t *row, uint8_t *record) {
    constexpr auto fields = T.actions[Action].fields;
    constexpr uint16_t bits = fields[N].bits;
    constexpr uint16_t offset = 1 + pipeline::record_offset(fields, N);
    constexpr uint16_t from = data_position<T>(Action, N);
    std::memset(record + offset, 0, pipeline::storage_bytes(bits));
    p4pd_utils_copy_be_adata_to_le_dest(record + offset, 0, row, from, bits);
}

template <const table &T, size_t Action>
[[gnu::always_inline]] inline void unpack_action(uint8_t *row, uint8_t *record) {
    [&]<size_t... N>(std::index_sequence<N...>) {
        (unpack_data_field<T, Action, N>(row, record), ...);
    }(std::make_index_sequence<T.actions[Action].fields.size()>{});
}

// Action id and data of an unswizzled row into the action-data record. In a table of several
// actions the row's first byte is the program counter; an id that is none of the table's is stored
// all the same and nothing is unpacked for it.
template <const table &T>
[[gnu::always_inline]] inline void unpack_row(uint8_t *row, uint8_t *record) {
    if constexpr (pipeline::has_programs(T)) {
        const uint8_t id = sdk::asic::pd::asicpd_get_action_id(T.id, row[0]);
        record[0] = id;
        [&]<size_t... A>(std::index_sequence<A...>) {
            ((id == A ? unpack_action<T, A>(row + 1, record) : void()), ...);
        }(std::make_index_sequence<T.actions.size()>{});
    } else {
        record[0] = 0;
        unpack_action<T, 0>(row, record);
    }
}

// --- Readers ------------------------------------------------------------------------------------

struct read_records {
    uint8_t *key;
    uint8_t *mask;
    uint8_t *data;
};

template <const table &T>
[[gnu::always_inline]] inline p4pd_error_t read_sram_entry(uint32_t index, const read_records &out,
                                                           bool flag) {
    uint8_t row[row_buffer_bytes] = {};
    uint16_t bits = 0;
    sdk::asic::pd::asicpd_table_entry_read(T.id, index, row, &bits, flag);
    p4pd_utils_swizzle_bytes(row, bits);
    if (bits == 0) return P4PD_SUCCESS;
    unpack_key<T>(row, out.key);
    unpack_row<T>(row, out.data);
    return P4PD_SUCCESS;
}

template <const table &T>
[[gnu::always_inline]] inline p4pd_error_t read_hbm_entry(uint32_t index, const read_records &out) {
    uint8_t row[T.kind == kind::hash_hbm ? wide_row_buffer_bytes : row_buffer_bytes] = {};
    uint16_t bits = 0;
    sdk::asic::pd::asicpd_hbm_table_entry_read(T.id, index, row, &bits);
    if (bits == 0) return P4PD_SUCCESS;
    unpack_key<T>(row, out.key);
    unpack_row<T>(row, out.data);
    return P4PD_SUCCESS;
}

template <const table &T>
[[gnu::always_inline]] inline p4pd_error_t read_tcam_entry(uint32_t index, const read_records &out,
                                                           void *extra, bool flag) {
    uint8_t x[row_buffer_bytes] = {}, y[row_buffer_bytes] = {};
    uint16_t width = 0;
    sdk::asic::pd::asicpd_tcam_table_entry_read(T.id, index, x, y, &width, extra, flag);
    if (width == 0) return P4PD_FAIL;
    p4pd_utils_swizzle_bytes(x, round_up_to_16(width));
    p4pd_utils_swizzle_bytes(y, round_up_to_16(width));
    decode_ternary(x, y, pipeline::tcam_width(T) / 8);
    unpack_key<T>(x, out.key);
    unpack_key<T>(y, out.mask);

    uint8_t row[row_buffer_bytes] = {};
    uint16_t bits = 0;
    sdk::asic::pd::asicpd_table_entry_read(T.id, index + data_row_read_base<T>, row, &bits, flag);
    if (bits == 0) return P4PD_SUCCESS;
    p4pd_utils_swizzle_bytes(row, round_up_to_16(bits));
    unpack_row<T>(row, out.data);
    return P4PD_SUCCESS;
}

template <const table &T>
[[gnu::always_inline]] inline p4pd_error_t read_entry(uint32_t index, const read_records &out,
                                                      void *extra, bool flag) {
    if constexpr (pipeline::has_mask(T.kind)) {
        return read_tcam_entry<T>(index, out, extra, flag);
    } else if constexpr (pipeline::is_hbm(T.kind)) {
        return read_hbm_entry<T>(index, out);
    } else {
        return read_sram_entry<T>(index, out, flag);
    }
}

}  // namespace halden::p4pd
