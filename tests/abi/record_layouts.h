/* Sizes and offsets of every record of every table, from the tables that are written out in
 * tests/reference. Compiled as C and as C++. */

#pragma once

#include <assert.h>
#include <stddef.h>

#include "p4pd_records.h"

#define AT(record, field, first_byte, bytes)                                    \
    static_assert(offsetof(record, field) == (first_byte), #record "." #field); \
    static_assert(sizeof(((record *)0)->field) == (bytes), #record "." #field);

#define KEY(id, table, field, first_byte, bytes) AT(table##_swkey_t, field, first_byte, bytes)
#define KEY_AND_MASK(id, table, field, first_byte, bytes) \
    AT(table##_swkey_t, field, first_byte, bytes)         \
    AT(table##_swkey_mask_t, field##_mask, first_byte, bytes)
#include "tests/reference/key_fields.def"
#undef KEY
#undef KEY_AND_MASK

#define DATA(id, action, table, struct_name, field, first_byte, bytes, width, position) \
    AT(table##_actiondata_t, action_u.struct_name.field, first_byte, bytes)
#include "tests/reference/index_data_fields.def"
#include "tests/reference/keyed_data_fields.def"
#undef DATA
#undef AT

#define SIZE(record, bytes) static_assert(sizeof(record) == (bytes), #record);
#define FLOW(name, bytes) SIZE(name##_swkey_t, bytes)
#define HASH(name, bytes) SIZE(name##_swkey_t, bytes)
#define OVERFLOW(name, bytes) SIZE(name##_swkey_t, bytes) SIZE(name##_swkey_mask_t, bytes)
#define TCAM(name, bytes) SIZE(name##_swkey_t, bytes) SIZE(name##_swkey_mask_t, bytes)
#define INDEX_SRAM(name, bytes)
#define INDEX_HBM(name, bytes)
#define KEYLESS(name, bytes) SIZE(name##_swkey_t, bytes)
#define TABLE(id, name, kind, key_bytes, data_bytes, actions, key_bits, tcam_width, data_bits) \
    kind(name, key_bytes) SIZE(name##_actiondata_t, data_bytes) static_assert(                 \
        offsetof(name##_actiondata_t, action_id) == 0, #name);                                 \
    static_assert(offsetof(name##_actiondata_t, action_u) == 1, #name);
#include "tests/reference/tables.def"
#undef SIZE
#undef FLOW
#undef HASH
#undef OVERFLOW
#undef TCAM
#undef INDEX_SRAM
#undef INDEX_HBM
#undef KEYLESS
#undef TABLE
