// p4pd_table_ds_decoded_string_get: software records as text.
//
//     Table Entry Fields
//     Table : P4TBL_ID_VLAN_MAPPING, Index : 0x5/5
//     Key :
//     vlan_id : 0x64
//     ...
//     Action : VLAN_MAPPING_VLAN_MAPPING_ID
//     rmac_vrf : 0x1

#include "p4gen/halden/pipeline/pipeline.h"
#include "p4gen/halden/src/p4pd_decode.h"
#include "p4pd.h"

namespace halden::p4pd {
namespace {

void add_field(text &out, std::string_view name, std::string_view suffix, uint16_t bits,
               const uint8_t *value) {
    out.add(name);
    out.add(suffix);
    out.add(" : 0x");
    const uint16_t bytes = pipeline::storage_bytes(bits);
    if (pipeline::is_array(bits))
        for (uint16_t i = 0; i < bytes; ++i) out.add_hex_byte(value[i]);
    else
        out.add_hex(scalar_at(value, bytes));
    out.add("\n");
}

void add_key(text &out, const pipeline::table &table, const uint8_t *key, const uint8_t *mask) {
    out.add("Key :\n");
    for (size_t at = 0; const pipeline::key_field &f : table.key) {
        if (out.full()) return;
        add_field(out, f.name, "", f.bits, key + at);
        if (mask != nullptr) add_field(out, f.name, "_mask", f.bits, mask + at);
        at += pipeline::storage_bytes(f.bits);
    }
}

void add_action(text &out, const pipeline::table &table, const uint8_t *record) {
    const size_t action = record[0];
    if (action >= table.actions.size()) return;
    out.add("Action : ");
    add_action_name(out, table, action);
    out.add("\n");
    for (size_t at = 1; const pipeline::field &f : table.actions[action].fields) {
        if (out.full()) return;
        add_field(out, f.name, "", f.bits, record + at);
        at += pipeline::storage_bytes(f.bits);
    }
}

}  // namespace
}  // namespace halden::p4pd

p4pd_error_t p4pd_table_ds_decoded_string_get(uint32_t tableid, uint32_t index, void *swkey,
                                              void *swkey_mask, void *action_data, char *buffer,
                                              uint16_t buf_len) {
    using namespace halden;
    p4pd::text out(buffer, buf_len);
    out.add("Table Entry Fields\n");
    if (out.full()) return P4PD_SUCCESS;  // before the id: a small buffer hides a bad one
    const pipeline::table *table = pipeline::find_table(tableid);
    if (table == nullptr) return P4PD_FAIL;

    out.add("Table : ");
    add_table_name(out, *table);
    out.add(", Index : 0x");
    out.add_hex(index);
    out.add("/");
    out.add_decimal(index);
    out.add("\n");
    if (out.full()) return P4PD_SUCCESS;

    // Without its key a hash entry says nothing; a ternary entry's action does.
    const auto *key = static_cast<const uint8_t *>(swkey);
    const auto *mask = static_cast<const uint8_t *>(swkey_mask);
    if (pipeline::is_hash(table->kind)) {
        if (key == nullptr) return P4PD_SUCCESS;
        p4pd::add_key(out, *table, key, nullptr);
    } else if (pipeline::has_mask(table->kind) && key != nullptr && mask != nullptr) {
        p4pd::add_key(out, *table, key, mask);
    }
    if (action_data != nullptr && !out.full())
        p4pd::add_action(out, *table, static_cast<const uint8_t *>(action_data));
    return P4PD_SUCCESS;
}
