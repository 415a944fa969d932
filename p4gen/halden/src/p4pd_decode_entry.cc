// p4pd_table_entry_decoded_string_get: a raw hardware entry as text, unpacked by the readers' own
// unpackers.
//
//     !!!! Decode HW table entry into (Table Key + Actiondata)/Actiondata!!!!
//     Table: P4TBL_ID_VLAN_MAPPING, Index 0x5/5
//     vlan_id: 0x64
//     ...
//     Action: VLAN_MAPPING_VLAN_MAPPING_ID
//     rmac_vrf: 0x1

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "p4gen/halden/pipeline/pipeline.h"
#include "p4gen/halden/src/entry_read.h"
#include "p4gen/halden/src/p4pd_decode.h"
#include "p4pd.h"

namespace halden::p4pd {
namespace {

constexpr size_t record_room = 128;
static_assert(std::ranges::all_of(pipeline::tables, [](const pipeline::table *t) {
    return t->key_bytes <= record_room && t->data_bytes <= record_room;
}));

struct unpackers {
    void (*key)(uint8_t *image, uint8_t *record);
    void (*row)(uint8_t *row, uint8_t *record);
};
constexpr unpackers unpackers_by_table[] = {
#define HALDEN_UNPACKERS(name) {unpack_key<pipeline::name>, unpack_row<pipeline::name>},
    HALDEN_FOR_EACH_TABLE(HALDEN_UNPACKERS)
#undef HALDEN_UNPACKERS
};

// The entry's bytes, zero behind them. An entry that does not fit is a fault of the caller's that
// nothing sensible can be printed for: it ends the process, in every build.
void copy_entry(uint8_t (&to)[row_buffer_bytes], const uint8_t *entry, uint16_t bits) {
    const size_t bytes = (bits + 7u) / 8;
    if (bytes > sizeof to) {
        std::fprintf(stderr, "p4pd: a hardware entry of %u bits is longer than %zu\n", bits,
                     sizeof to * 8);
        std::abort();
    }
    if (bytes != 0) std::memcpy(to, entry, bytes);
}

// `indent` stands in front of each byte of an array.
void add_field(text &out, std::string_view name, std::string_view suffix, std::string_view indent,
               uint16_t bits, const uint8_t *value) {
    out.add(name);
    out.add(suffix);
    const uint16_t bytes = pipeline::storage_bytes(bits);
    if (pipeline::is_array(bits)) {
        out.add(": \n");
        for (uint16_t i = 0; i < bytes; ++i) {
            out.add(indent);
            out.add("0x");
            out.add_hex(value[i]);
            out.add(" :");
        }
    } else {
        out.add(": 0x");
        out.add_hex(scalar_at(value, bytes));
    }
    out.add("\n");
}

void add_key(text &out, const pipeline::table &table, const uint8_t *key, const uint8_t *mask) {
    for (size_t at = 0; const pipeline::key_field &f : table.key) {
        if (out.full()) return;
        add_field(out, f.name, "", "", f.bits, key + at);
        if (mask != nullptr) add_field(out, f.name, "_mask", "", f.bits, mask + at);
        at += pipeline::storage_bytes(f.bits);
    }
}

void add_action(text &out, const pipeline::table &table, const uint8_t *record) {
    const size_t action = record[0];
    if (action >= table.actions.size() || out.full()) return;
    out.add("Action: ");
    add_action_name(out, table, action);
    out.add("\n");
    for (size_t at = 1; const pipeline::field &f : table.actions[action].fields) {
        if (out.full()) return;
        add_field(out, f.name, "", "  ", f.bits, record + at);
        at += pipeline::storage_bytes(f.bits);
    }
}

// Both images of a ternary key.
void add_ternary_key(text &out, const pipeline::table &table, const unpackers &unpack, uint8_t *x,
                     uint8_t *y) {
    uint8_t key[record_room] = {}, mask[record_room] = {};
    decode_ternary(x, y, pipeline::tcam_width(table) / 8);
    unpack.key(x, key);
    unpack.key(y, mask);
    add_key(out, table, key, mask);
}

void add_row(text &out, const pipeline::table &table, const unpackers &unpack, uint8_t *row) {
    uint8_t key[record_room] = {}, data[record_room] = {};
    const bool with_key = pipeline::is_hash(table.kind);
    if (with_key) unpack.key(row, key);
    unpack.row(row, data);
    if (with_key) add_key(out, table, key, nullptr);
    add_action(out, table, data);
}

}  // namespace
}  // namespace halden::p4pd

p4pd_error_t p4pd_table_entry_decoded_string_get(uint32_t tableid, uint32_t index, uint8_t *hwentry,
                                                 uint8_t *hwentry_y, uint16_t hwentry_len,
                                                 char *buffer, uint16_t buf_size) {
    using namespace halden;
    uint8_t x[p4pd::row_buffer_bytes] = {}, y[p4pd::row_buffer_bytes] = {};
    if (hwentry_y != nullptr) {
        p4pd::copy_entry(y, hwentry_y, hwentry_len);
        p4pd_utils_swizzle_bytes(y, hwentry_len);
    }
    p4pd::text out(buffer, buf_size);
    out.add(hwentry_y != nullptr
                ? "!!!! Decode HW table entry into Table Key !!!! \n"
                : "!!!! Decode HW table entry into (Table Key + Actiondata)/Actiondata!!!! \n");
    if (out.full()) return P4PD_SUCCESS;  // before the id: a small buffer hides a bad one
    const pipeline::table *table = pipeline::find_table(tableid);
    if (table == nullptr) return P4PD_FAIL;

    // Ternary rows come as the memory holds them; SRAM rows of the other kinds are expected
    // unswizzled, as HBM rows are anyway.
    const bool ternary = pipeline::has_mask(table->kind);
    p4pd::copy_entry(x, hwentry, hwentry_len);
    if (ternary) p4pd_utils_swizzle_bytes(x, hwentry_len);

    out.add("Table: ");
    add_table_name(out, *table);
    out.add(", Index 0x");
    out.add_hex(index);
    out.add("/");
    out.add_decimal(index);
    out.add("\n");
    if (out.full()) return P4PD_SUCCESS;

    const p4pd::unpackers &unpack = p4pd::unpackers_by_table[tableid - pipeline::first_table];
    if (ternary && hwentry_y != nullptr) {
        p4pd::add_ternary_key(out, *table, unpack, x, y);
        return P4PD_SUCCESS;
    }
    if (ternary) {
        out.add("!!!! Decode Tcam table Action Data !!!! \n");
        if (out.full()) return P4PD_SUCCESS;
    }
    p4pd::add_row(out, *table, unpack, x);
    return P4PD_SUCCESS;
}
