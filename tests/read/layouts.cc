#include "tests/read/layouts.h"

namespace halden::read_tests {

namespace {

struct key_row {
    uint32_t table;
    const char *name;
    uint32_t first_byte;
    uint32_t size;
};
constexpr key_row key_rows[] = {
#define KEY(id, table, field, first_byte, bytes) {id, #field, first_byte, bytes},
#define KEY_AND_MASK(id, table, field, first_byte, bytes) {id, #field, first_byte, bytes},
#include "tests/reference/key_fields.def"
#undef KEY
#undef KEY_AND_MASK
};

struct data_row {
    uint32_t table;
    uint32_t action;
    const char *name;
    uint32_t first_byte;
    uint32_t size;
    uint32_t width;
    uint32_t position;
};
constexpr data_row data_rows[] = {
#define DATA(id, action, table, struct_name, field, first_byte, bytes, width, position) \
    {id, action, #field, first_byte, bytes, width, position},
#include "tests/reference/index_data_fields.def"
#include "tests/reference/keyed_data_fields.def"
#undef DATA
};

// Bits of key in front of the data of a hash row; an overflow row keeps the same room.
uint32_t key_room(uint32_t id) {
    switch (id) {
        case 3:
        case 7:
            return 24;
        case 4:
        case 10:
            return 40;
        case 5:
        case 11:
            return 136;
        case 6:
        case 14:
            return 60;
        default:
            return 0;
    }
}

}  // namespace

std::vector<key_field> key_fields(uint32_t id) {
    std::vector<key_field> out;
    for (const key_row &row : key_rows)
        if (row.table == id) out.push_back({row.name, row.first_byte, row.size});
    return out;
}

std::vector<data_field> data_fields(uint32_t id, uint32_t action) {
    std::vector<data_field> out;
    for (const data_row &row : data_rows)
        if (row.table == id && row.action == action)
            out.push_back(
                {row.name, row.first_byte, row.size, row.width, key_room(id) + row.position});
    return out;
}

bool has_programs(uint32_t id) {
    return id == 12 || id == 13 || id == 15 || id == 22 || id == 23 || id == 37 || id == 38;
}

bytes kept_key_bits(uint32_t id) {
    bytes out(reference::table_of(id).key_bytes);
    for (const key_call &call : key_calls(id))
        for (uint32_t i = 0; i < call.width; ++i) {
            const uint32_t bit = call.record_bit + i;
            out.at(call.record_byte + bit / 8) |= static_cast<uint8_t>(1u << bit % 8);
        }
    return out;
}

bytes kept_data_bits(uint32_t id, uint32_t action) {
    bytes out(reference::table_of(id).data_bytes);
    out[0] = 0xff;
    for (const data_field &field : data_fields(id, action))
        for (uint32_t i = 0; i < field.width; ++i)
            out.at(field.first_byte + i / 8) |= static_cast<uint8_t>(1u << i % 8);
    return out;
}

}  // namespace halden::read_tests
