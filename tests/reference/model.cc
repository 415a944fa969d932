#include "tests/reference/model.h"

namespace halden::reference {

namespace {

constexpr table all_tables[] = {
#define FLOW kind::flow
#define HASH kind::hash
#define OVERFLOW kind::overflow
#define TCAM kind::tcam
#define INDEX_SRAM kind::index_sram
#define INDEX_HBM kind::index_hbm
#define KEYLESS kind::keyless
#define TABLE(id, name, kind, key_bytes, data_bytes, actions, key_bits, tcam_width, data_bits) \
    {id, #name, kind, key_bytes, data_bytes, actions, key_bits, tcam_width, data_bits},
#include "tests/reference/tables.def"
#undef TABLE
#undef FLOW
#undef HASH
#undef OVERFLOW
#undef TCAM
#undef INDEX_SRAM
#undef INDEX_HBM
#undef KEYLESS
};

struct data_field {
    uint32_t table;
    uint32_t action;
    uint32_t first_byte;
    uint32_t width;
    uint32_t position;
};

constexpr data_field data_fields[] = {
#define DATA(id, action, table, struct_name, field, first_byte, bytes, width, position) \
    {id, action, first_byte, width, position},
#include "tests/reference/index_data_fields.def"
#include "tests/reference/keyed_data_fields.def"
#undef DATA
};

// Where the flow tables' data lies in their entry.
constexpr uint32_t flow_before = 512;
constexpr uint32_t flow_after = 672;
constexpr uint32_t flow_bits = 933;

void put_field(bytes &image, uint32_t position, const bytes &record, const data_field &field) {
    for (uint32_t i = 0; i < field.width; ++i)
        put_bit(image, position + i, record_bit(record, field.first_byte, field.width - 1 - i));
}

template <class Use>
void for_fields(uint32_t id, uint32_t action, Use use) {
    for (const data_field &field : data_fields)
        if (field.table == id && field.action == action) use(field);
}

}  // namespace

std::span<const table> tables() { return all_tables; }
const table &table_of(uint32_t id) { return all_tables[id - 1]; }

void put_bit(bytes &image, uint32_t bit, bool value) {
    uint8_t &byte = image.at(bit / 8);
    const uint8_t mask = static_cast<uint8_t>(0x80u >> bit % 8);
    byte = static_cast<uint8_t>(value ? byte | mask : byte & ~mask);
}

bool image_bit(const bytes &image, uint32_t bit) {
    return (image.at(bit / 8) & (0x80u >> bit % 8)) != 0;
}

bool record_bit(const bytes &record, uint32_t byte, uint32_t bit) {
    return (record.at(byte + bit / 8) >> bit % 8 & 1) != 0;
}

key_images build_key(uint32_t id, const bytes &key, const bytes &mask, uint32_t size) {
    key_images out{bytes(size), bytes(size)};
    const bool ternary = table_of(id).has_tcam();
    for (const key_run &run : key_positions(id)) {
        uint32_t at = run.position;
        for (uint32_t n = 0; n < run.count; ++n) {
            for (uint32_t i = 0; i < run.width; ++i, ++at) {
                const uint32_t byte = run.last_byte - n, bit = run.top_bit - i;
                const bool k = record_bit(key, byte, bit);
                const bool m = ternary && record_bit(mask, byte, bit);
                put_bit(out.key, at, ternary ? k && m : k);
                put_bit(out.mask, at, m && !k);
            }
        }
    }
    return out;
}

bytes packed_data(uint32_t id, const bytes &record) {
    bytes out(512);
    for_fields(id, record.at(0),
               [&](const data_field &field) { put_field(out, field.position, record, field); });
    return out;
}

split_data packed_flow_data(uint32_t id, const bytes &record) {
    split_data out{bytes(512), bytes(512)};
    for_fields(id, record.at(0), [&](const data_field &field) {
        const bool before = field.position < flow_after;
        put_field(before ? out.before : out.after,
                  field.position - (before ? flow_before : flow_after), record, field);
    });
    return out;
}

image entry(uint32_t id, uint8_t pc, const bytes &key_image, const bytes &record) {
    const table &facts = table_of(id);
    image out{bytes(128), 0};
    if (facts.kind == kind::flow) {
        // The key's image has the entry's own positions; its gap holds the data before it.
        for (uint32_t bit = 0; bit < flow_after; ++bit)
            put_bit(out.data, bit, image_bit(key_image, bit));
        for_fields(id, record.at(0), [&](const data_field &field) {
            put_field(out.data, field.position, record, field);
        });
        out.bits = flow_bits;
        return out;
    }
    uint32_t at = 0;
    if (pc != no_pc) {
        for (uint32_t i = 0; i < 8; ++i) put_bit(out.data, i, (pc >> (7 - i) & 1) != 0);
        at = 8;
    }
    // An overflow entry keeps the room of the key, so that its data lies where its owner's lies.
    if (facts.kind == kind::hash)
        for (uint32_t i = 0; i < facts.key_bits; ++i)
            put_bit(out.data, at + i, image_bit(key_image, i));
    if (facts.kind == kind::hash || facts.kind == kind::overflow) at += facts.key_bits;
    if (facts.kind != kind::keyless) {
        for_fields(id, record.at(0), [&](const data_field &field) {
            put_field(out.data, at + field.position, record, field);
        });
    }
    out.bits = at + facts.data_bits;
    return out;
}

bytes as_stored(const bytes &image, uint32_t bits) {
    const uint32_t size = (bits + 15) / 16 * 2;
    bytes out(size);
    for (uint32_t i = 0; i < size; ++i) out[i] = image.at(size - 1 - i);
    return out;
}

}  // namespace halden::reference
