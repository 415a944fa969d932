#include "tools/haldenctl/record.h"

#include "p4pd.h"

namespace halden::tool {

using pipeline::record_offset;
using pipeline::storage_bytes;

wide field_value(const uint8_t *record, unsigned offset, unsigned bits) {
    wide value = 0;
    for (unsigned i = storage_bytes(static_cast<uint16_t>(bits)); i-- > 0;)
        value = value << 8 | record[offset + i];
    return value;
}

void set_field_value(uint8_t *record, unsigned offset, unsigned bits, wide value) {
    const unsigned bytes = storage_bytes(static_cast<uint16_t>(bits));
    for (unsigned i = 0; i < bytes; ++i, value >>= 8)
        record[offset + i] = static_cast<uint8_t>(value);
}

records::records(const pipeline::table &table)
    : of(&table),
      key(table.key_bytes),
      mask(pipeline::has_mask(table.kind) ? table.key_bytes : 0),
      data(table.data_bytes) {}

const pipeline::action *records::action() const {
    return action_id() < of->actions.size() ? &of->actions[action_id()] : nullptr;
}

wide records::key_value(size_t n) const {
    return field_value(key.data(), record_offset(of->key, n), of->key[n].bits);
}

wide records::mask_value(size_t n) const {
    if (mask.empty()) return all_ones(of->key[n].bits);
    return field_value(mask.data(), record_offset(of->key, n), of->key[n].bits);
}

void records::set_key(size_t n, wide value, wide mask_bits) {
    const unsigned at = record_offset(of->key, n);
    set_field_value(key.data(), at, of->key[n].bits, value);
    if (!mask.empty()) set_field_value(mask.data(), at, of->key[n].bits, mask_bits);
}

wide records::data_value(size_t n) const {
    const auto fields = action()->fields;
    return field_value(data.data(), 1u + record_offset(fields, n), fields[n].bits);
}

void records::set_data(size_t n, wide value) {
    const auto fields = action()->fields;
    set_field_value(data.data(), 1u + record_offset(fields, n), fields[n].bits, value);
}

key_images images_of(records &entry) {
    const pipeline::table &t = *entry.of;
    key_images out;
    if (!pipeline::is_keyed(t.kind)) return out;
    size_t bytes = (pipeline::queried_key_bits(t) + 7u) / 8;
    if (t.kind == pipeline::kind::hash_hbm) bytes = pipeline::wide_key_image_bytes;
    out.key.resize(bytes);
    if (pipeline::has_mask(t.kind)) out.mask.resize(bytes);
    p4pd_hwkey_hwmask_build(t.id, entry.key_pointer(), entry.mask_pointer(), out.key.data(),
                            out.mask.empty() ? nullptr : out.mask.data());
    return out;
}

}  // namespace halden::tool
