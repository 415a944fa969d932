// Small tables, and one way of spoiling them per macro.

#include "p4gen/halden/pipeline/pipeline.h"

using namespace halden::pipeline;

constexpr field rows[] = {
    {"port", 11},
#if defined(CASE_twice)
    {"port", 5},
#elif defined(CASE_no_bits)
    {"tag", 0},
#elif defined(CASE_nameless_field)
    {"", 5},
#else
    {"tag", 5},
#endif
};
constexpr action actions[] = {
#if defined(CASE_nameless_action)
    {"", rows},
#else
    {"go", rows},
#endif
#if defined(CASE_program)
    {"stop", {}},
#endif
};
constexpr key_field key[] = {
#if defined(CASE_overlap)
    {"vlan", 12, split(0, 7)},
#elif defined(CASE_gap)
    {"vlan", 12, split(0, 31)},
#elif defined(CASE_beyond)
    {"vlan", 12, split(1017, 15)},
#elif defined(CASE_narrow_split)
    {"vlan", 8, split(0, 15)},
#elif defined(CASE_wide_split)
    {"vlan", 17, split(0, 15)},
#else
    {"vlan", 12, split(0, 15)},
#endif
#if defined(CASE_flag)
    {"tagged", 2, flag(11)},
#else
    {"tagged", 1, flag(11)},
#endif
};
constexpr field index_rows[] = {{"index", 4}};

constexpr table keyed = {
    .id = 1,
#if defined(CASE_name)
    .name = "",
#else
    .name = "keyed",
#endif
#if defined(CASE_keyless)
    .kind = kind::keyless,
#else
    .kind = kind::hash_sram,
#endif
    .key = key,
    .key_bits = 13,
#if defined(CASE_owned)
    .owner = 1,
#endif
#if !defined(CASE_no_action)
    .actions = actions,
#endif
#if defined(CASE_sum)
    .data_bits = 17,
#else
    .data_bits = 16,
#endif
#if defined(CASE_key_record)
    .key_bytes = 4,
#elif defined(CASE_narrow_split)
    .key_bytes = 2,
#elif defined(CASE_wide_split)
    .key_bytes = 5,
#else
    .key_bytes = 3,
#endif
#if defined(CASE_record)
    .data_bytes = 5,
#else
    .data_bytes = 4,
#endif
#if !defined(CASE_doc)
    .doc = "A table made for this test.",
#endif
};
static_assert(well_formed(keyed));

constexpr table indexed = {
    .id = 2,
    .name = "indexed",
    .kind = kind::index_sram,
#if !defined(CASE_no_index)
    .index = index_rows,
#endif
#if defined(CASE_index)
    .index_max = 16,
#else
    .index_max = 15,
#endif
    .actions = actions,
    .data_bits = 16,
    .data_bytes = 4,
    .doc = "A table made for this test.",
};
#if !defined(CASE_program)
static_assert(well_formed(indexed));
#endif

// A field of 128 bits is an address; there is nothing wider.
constexpr field wide_rows[] = {
#if defined(CASE_wide)
    {"address", 129},
#else
    {"address", 128},
#endif
};
constexpr action wide_actions[] = {{"go", wide_rows}};
constexpr table wide = {
    .id = 3,
    .name = "wide",
    .kind = kind::index_sram,
    .index = index_rows,
    .index_max = 15,
    .actions = wide_actions,
    .data_bits = record_bits<field>(wide_rows),
    .data_bytes = 1 + record_bytes<field>(wide_rows),
    .doc = "A table made for this test.",
};
static_assert(well_formed(wide));

// The pair of a hash table and its overflow.
constexpr table overflow = {
#if defined(CASE_order)
    .id = 3,
#else
    .id = 2,
#endif
    .name = "overflow",
    .kind = kind::overflow_tcam,
    .key = key,
    .key_bits = 13,
#if !defined(CASE_ownerless)
    .owner = 1,
#endif
    .overflow_base = 16,
    .actions = actions,
    .data_bits = 16,
    .key_bytes = 3,
    .data_bytes = 4,
    .doc = "A table made for this test.",
};
#if defined(CASE_ownerless)
static_assert(well_formed(overflow));
#endif

constexpr key_field shorter_key[] = {{"vlan", 12, split(0, 15)}};
constexpr field fewer_rows[] = {{"port", 11}, {"tag", 4}};
constexpr action with_fewer[] = {{"go", fewer_rows}};
consteval table owner_of_overflow() {
    table out = keyed;
#if defined(CASE_owners_kind)
    out.kind = kind::tcam;
#elif defined(CASE_owners_key)
    out.key = shorter_key;
    out.key_bits = 12;
    out.key_bytes = 2;
#elif defined(CASE_owners_data)
    out.actions = with_fewer;
    out.data_bits = 15;
#endif
    return out;
}
constexpr table other_owner = owner_of_overflow();
#if !defined(CASE_program)
constexpr const table *pair[] = {&other_owner, &overflow};
static_assert(well_formed_pipeline(pair));
#endif
