#pragma once

// The software records of one entry, with their fields by number.

#include <cstdint>
#include <vector>

#include "p4gen/halden/pipeline/pipeline.h"
#include "tools/haldenctl/value.h"

namespace halden::tool {

// Field values in a packed record: little-endian, at the field's own storage.
wide field_value(const uint8_t *record, unsigned offset, unsigned bits);
void set_field_value(uint8_t *record, unsigned offset, unsigned bits, wide value);

// Key and mask are empty for tables without; the action id stands in the data's first byte.
struct records {
    explicit records(const pipeline::table &table);

    const pipeline::action *action() const;  // null when the id is not one of the table's
    uint8_t action_id() const { return data[0]; }

    wide key_value(size_t n) const;
    wide mask_value(size_t n) const;  // all ones for tables without masks
    void set_key(size_t n, wide value, wide mask_bits);
    // Of the fields of `action()`.
    wide data_value(size_t n) const;
    void set_data(size_t n, wide value);

    uint8_t *key_pointer() { return key.empty() ? nullptr : key.data(); }
    uint8_t *mask_pointer() { return mask.empty() ? nullptr : mask.data(); }

    const pipeline::table *of;
    std::vector<uint8_t> key, mask, data;
};

// The key's hardware images, in wire order.
struct key_images {
    std::vector<uint8_t> key, mask;
};
key_images images_of(records &entry);

}  // namespace halden::tool
