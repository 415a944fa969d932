// One small table, and one way of spoiling it per macro.

#include "p4gen/halden/pipeline/model.h"

using namespace halden::pipeline;

constexpr field rows[] = {
    {"port", 11},
#if defined(CASE_twice)
    {"port", 5},
#elif defined(CASE_no_bits)
    {"tag", 0},
#else
    {"tag", 5},
#endif
};
constexpr action actions[] = {
    {"go", rows},
#if defined(CASE_program)
    {"stop", {}},
#endif
};
constexpr key_field key[] = {
#if defined(CASE_overlap)
    {"vlan", 12, split(0, 7)},
#elif defined(CASE_gap)
    {"vlan", 12, split(0, 31)},
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
    .name = "keyed",
#if defined(CASE_keyless)
    .kind = kind::keyless,
#else
    .kind = kind::hash_sram,
#endif
    .key = key,
    .key_bits = 13,
    .actions = actions,
#if defined(CASE_sum)
    .data_bits = 17,
#else
    .data_bits = 16,
#endif
#if defined(CASE_key_record)
    .key_bytes = 4,
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
    .index = index_rows,
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
