#pragma once

// How an entry of each kind of table is written. One template per kind; the table's lengths,
// offsets and ids are constants of its instance, so a writer is straight-line code.
//
//   - index, SRAM: [pc][data], swizzled, with an optional mask entry
//   - index, HBM: [pc][data] as it is; a mask is packed and dropped
//   - keyless: the empty entry, with an optional mask entry
//   - TCAM: the data row in SRAM, then key and mask in the TCAM
//   - overflow TCAM: the data row in the owner's SRAM window, then key and mask in the TCAM
//   - hash, SRAM: [key][data], swizzled
//   - hash, HBM: the wide key, with data on both sides of its last part
//
// The templates are inlined into the named writers (gen/entry_writers.cc), which are the functions
// one finds in the object code.
//
// Every image is the call's own and zero before use. What the ASIC layer answers is not looked at.

#include "p4gen/halden/src/fail.h"
#include "p4gen/halden/src/pack.h"
#include "sdk/asic/pd.h"
#include "sdk/p4pd_error.h"

namespace halden::p4pd {

inline constexpr size_t packed_bytes = 512;
inline constexpr size_t entry_bytes = 1024;
inline constexpr size_t wide_entry_bytes = 6144;

// Bits of a wide key that share a flit with data: the data in front of them takes the flit's first.
template <const table &T>
inline constexpr uint16_t bits_before_key =
    pipeline::packed_offset(T.actions[0].fields, T.fields_before_key);

// --- Action programs -----------------------------------------------------------------------------

// Signature of a table's writer as the program check prints it.
template <const table &T>
struct writer_signature {
    static constexpr size_t size = 512;
    char text[size] = {};
    consteval writer_signature() {
        size_t at = 0;
        auto add = [&](std::string_view part) {
            for (char c : part) text[at++] = c;
        };
        add("p4pd_error_t ");
        add(T.name);
        add("_entry_write(uint32_t, uint32_t, ");
        if (pipeline::has_mask(T.kind)) add("uint8_t*, uint8_t*, ");
        add(T.name);
        add("_actiondata_t*, ");
        add(T.name);
        add("_actiondata_t*, bool)");
    }
};

// Program counter that goes in front of the entry: none for a table of one action. An action
// without a program is a fault of the loaded program and ends the process.
template <const table &T>
[[gnu::always_inline]] inline uint8_t action_pc(uint32_t tableid, const uint8_t *record) {
    if constexpr (!pipeline::has_programs(T)) {
        return sdk::asic::pd::no_action_pc;
    } else {
        static constexpr writer_signature<T> signature;
        const uint8_t pc = sdk::asic::pd::asicpd_get_action_pc(tableid, record[0]);
        if (pc == sdk::asic::pd::no_action_pc)
            __assert_fail("action_pc != 0xff", p4pd_source, T.no_program_line, signature.text);
        return pc;
    }
}

// --- Entries without a key -----------------------------------------------------------------------

// Lays out [pc][data] in `entry` and returns its length in bits. The data's length is the table's,
// also when the action packs less.
template <const table &T>
[[gnu::always_inline]] inline uint16_t prepare_data(uint8_t *entry, uint8_t pc, uint8_t *record) {
    uint8_t packed[packed_bytes] = {};
    pack_action<T>(packed, record);
    return p4pd_utils_p4table_entry_prepare(entry, pc, nullptr, 0, packed, T.data_bits);
}

template <const table &T>
[[gnu::always_inline]] inline p4pd_error_t write_index_sram(uint32_t tableid, uint32_t index,
                                                            uint8_t *actiondata,
                                                            uint8_t *actiondata_mask, bool flag) {
    uint8_t entry[entry_bytes] = {};
    uint8_t mask_entry[entry_bytes] = {};
    const uint8_t pc = action_pc<T>(tableid, actiondata);
    if (actiondata_mask != nullptr) prepare_data<T>(mask_entry, pc, actiondata_mask);
    const uint16_t length = prepare_data<T>(entry, pc, actiondata);
    p4pd_utils_swizzle_bytes(entry, length);
    if (actiondata_mask != nullptr) p4pd_utils_swizzle_bytes(mask_entry, length);
    sdk::asic::pd::asicpd_table_entry_write(
        tableid, index, entry, length, actiondata_mask != nullptr ? mask_entry : nullptr, flag);
    return P4PD_SUCCESS;
}

template <const table &T>
[[gnu::always_inline]] inline p4pd_error_t write_index_hbm(uint32_t tableid, uint32_t index,
                                                           uint8_t *actiondata,
                                                           uint8_t *actiondata_mask,
                                                           bool /*flag*/) {
    uint8_t entry[entry_bytes] = {};
    const uint8_t pc = action_pc<T>(tableid, actiondata);
    if (actiondata_mask != nullptr) {
        uint8_t mask_entry[entry_bytes] = {};  // HBM writes take no mask
        prepare_data<T>(mask_entry, pc, actiondata_mask);
    }
    const uint16_t length = prepare_data<T>(entry, pc, actiondata);
    sdk::asic::pd::asicpd_hbm_table_entry_write(tableid, index, entry, 0, length);
    return P4PD_SUCCESS;
}

template <const table &T>
[[gnu::always_inline]] inline p4pd_error_t write_keyless(uint32_t tableid, uint32_t index,
                                                         uint8_t * /*actiondata*/,
                                                         uint8_t *actiondata_mask, bool flag) {
    uint8_t packed[packed_bytes] = {};
    uint8_t entry[entry_bytes] = {};
    uint8_t mask_entry[entry_bytes] = {};
    constexpr uint8_t pc = sdk::asic::pd::no_action_pc;
    if (actiondata_mask != nullptr)
        p4pd_utils_p4table_entry_prepare(mask_entry, pc, nullptr, 0, packed, 0);
    const uint16_t length = p4pd_utils_p4table_entry_prepare(entry, pc, nullptr, 0, packed, 0);
    p4pd_utils_swizzle_bytes(entry, length);
    if (actiondata_mask != nullptr) p4pd_utils_swizzle_bytes(mask_entry, length);
    sdk::asic::pd::asicpd_table_entry_write(
        tableid, index, entry, length, actiondata_mask != nullptr ? mask_entry : nullptr, flag);
    return P4PD_SUCCESS;
}

// --- TCAM ----------------------------------------------------------------------------------------

// Writes a key and its mask to a TCAM row. Both of the caller's buffers are left swizzled.
template <const table &T>
[[gnu::always_inline]] inline void write_tcam_row(uint32_t tableid, uint32_t index, uint8_t *hwkey,
                                                  uint8_t *hwkey_mask, bool flag) {
    p4pd_utils_swizzle_bytes(hwkey, T.key_bits);
    p4pd_utils_swizzle_bytes(hwkey_mask, T.key_bits);
    sdk::asic::pd::asicpd_tcam_table_entry_write(tableid, index, hwkey, hwkey_mask,
                                                 pipeline::tcam_width(T), flag);
}

template <const table &T>
[[gnu::always_inline]] inline p4pd_error_t write_tcam(uint32_t tableid, uint32_t index,
                                                      uint8_t *hwkey, uint8_t *hwkey_mask,
                                                      uint8_t *actiondata, uint8_t *actiondata_mask,
                                                      bool flag) {
    if (actiondata_mask != nullptr) return P4PD_FAIL;
    uint8_t entry[entry_bytes] = {};
    const uint8_t pc = action_pc<T>(tableid, actiondata);
    const uint16_t length = prepare_data<T>(entry, pc, actiondata);
    p4pd_utils_swizzle_bytes(entry, length);
    sdk::asic::pd::asicpd_table_entry_write(tableid, index, entry, length, nullptr, flag);
    write_tcam_row<T>(tableid, index, hwkey, hwkey_mask, flag);
    return P4PD_SUCCESS;
}

// --- Hash rows -----------------------------------------------------------------------------------

// Row of the owner's SRAM that holds the data of an overflow entry. The table id passed with it is
// the overflow table's own. Wraps like the 32-bit index it is.
template <const table &T>
constexpr uint32_t overflow_data_row(uint32_t index) {
    return index + T.overflow_base;
}

// Writes [key][data] to row `index`; a null key leaves the key's room zero, so that overflow data
// lies where the owner's does.
template <const table &T>
[[gnu::always_inline]] inline void write_hash_row(uint32_t tableid, uint32_t index, uint8_t *hwkey,
                                                  uint8_t *actiondata, bool flag) {
    uint8_t packed[packed_bytes] = {};
    uint8_t entry[entry_bytes] = {};
    pack_action<T>(packed, actiondata);
    const uint16_t packed_bits = actiondata[0] == 0 ? T.data_bits : uint16_t{0};
    uint16_t offset = 0;
    const uint16_t length = p4pd_utils_hash_table_entry_prepare(
        entry, sdk::asic::pd::no_action_pc, 0, hwkey, T.key_bits, T.data_bits, nullptr, 0, packed,
        packed_bits, &offset);
    p4pd_utils_swizzle_bytes(entry + offset, length);
    sdk::asic::pd::asicpd_table_entry_write(tableid, index, entry + offset, length, nullptr, flag);
}

template <const table &T>
[[gnu::always_inline]] inline p4pd_error_t write_hash_sram(uint32_t tableid, uint32_t index,
                                                           uint8_t *hwkey, uint8_t *actiondata,
                                                           uint8_t *actiondata_mask, bool flag) {
    if (actiondata_mask != nullptr) return P4PD_FAIL;
    write_hash_row<T>(tableid, index, hwkey, actiondata, flag);
    return P4PD_SUCCESS;
}

template <const table &T>
[[gnu::always_inline]] inline p4pd_error_t write_overflow_tcam(uint32_t tableid, uint32_t index,
                                                               uint8_t *hwkey, uint8_t *hwkey_mask,
                                                               uint8_t *actiondata,
                                                               uint8_t *actiondata_mask,
                                                               bool flag) {
    if (actiondata_mask != nullptr) return P4PD_FAIL;
    write_hash_row<T>(tableid, overflow_data_row<T>(index), nullptr, actiondata, flag);
    write_tcam_row<T>(tableid, index, hwkey, hwkey_mask, flag);
    return P4PD_SUCCESS;
}

template <const table &T>
[[gnu::always_inline]] inline p4pd_error_t write_hash_hbm(uint32_t tableid, uint32_t index,
                                                          uint8_t *hwkey, uint8_t *actiondata,
                                                          uint8_t *actiondata_mask, bool /*flag*/) {
    if (actiondata_mask != nullptr) return P4PD_FAIL;
    uint8_t before_key[packed_bytes] = {};
    uint8_t after_key[packed_bytes] = {};
    uint8_t entry[wide_entry_bytes] = {};
    uint16_t before_bits = 0, after_bits = 0;
    if (actiondata[0] == 0) {
        pack_fields<T, 0, 0, T.fields_before_key>(before_key, actiondata);
        pack_fields<T, 0, T.fields_before_key, T.actions[0].fields.size()>(after_key, actiondata);
        before_bits = bits_before_key<T>;
        after_bits = T.data_bits - bits_before_key<T>;
    }
    uint16_t offset = 0;
    const uint16_t length = p4pd_utils_widekey_hash_table_entry_prepare(
        entry, sdk::asic::pd::no_action_pc, bits_before_key<T>, hwkey, T.key_bits, T.data_bits,
        before_key, before_bits, after_key, after_bits, &offset);
    sdk::asic::pd::asicpd_hbm_table_entry_write(tableid, index, entry + offset, 0, length);
    return P4PD_SUCCESS;
}

}  // namespace halden::p4pd
