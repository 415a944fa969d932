#include "tests/tableapi/tables.h"

#include "tev_tbl.h"

namespace halden::test {

namespace {

#define API_TABLE(t, kind, id, max, key, data)                                              \
    {#t,                                                                                    \
     api_kind::kind,                                                                        \
     id,                                                                                    \
     max,                                                                                   \
     key,                                                                                   \
     data,                                                                                  \
     [](const void *spec) {                                                                 \
         return tev_tbl_##t##_create(static_cast<const tev_tbl_##t##_spec_t *>(spec));      \
     },                                                                                     \
     [](const void *key_record, void *info) {                                               \
         return tev_tbl_##t##_read(static_cast<const tev_tbl_##t##_key_t *>(key_record),    \
                                   static_cast<tev_tbl_##t##_info_t *>(info));              \
     },                                                                                     \
     [](const void *spec) {                                                                 \
         return tev_tbl_##t##_update(static_cast<const tev_tbl_##t##_spec_t *>(spec));      \
     },                                                                                     \
     [](const void *key_record) {                                                           \
         return tev_tbl_##t##_delete(static_cast<const tev_tbl_##t##_key_t *>(key_record)); \
     },                                                                                     \
     [](const void *key_record) {                                                           \
         return tev_tbl_##t##_find(static_cast<const tev_tbl_##t##_key_t *>(key_record));   \
     },                                                                                     \
     [] { return tev_tbl_##t##_table_clear(); },                                            \
     [](api::impl::tev_tbl_impl_state &state) -> const void * { return state.t##_tbl(); },  \
     sizeof(tev_tbl_##t##_spec_t),                                                          \
     sizeof(tev_tbl_##t##_key_t),                                                           \
     sizeof(tev_tbl_##t##_info_t)},

constexpr api_table all[] = {
#define INDEX(t, id, max, key, data) API_TABLE(t, index, id, max, key, data)
#define HASH(t, id, key, data) API_TABLE(t, hash, id, 0, key, data)
#define TCAM(t, id, key, data) API_TABLE(t, tcam, id, 0, key, data)
#include "tests/tableapi/tables.def"
};

}  // namespace

std::span<const api_table> api_tables() { return all; }

std::vector<api_table> api_tables_of(api_kind kind) {
    std::vector<api_table> out;
    for (const api_table &t : all)
        if (t.kind == kind) out.push_back(t);
    return out;
}

bytes key_of_row(const api_table &t, uint64_t row) {
    const auto byte = [&](unsigned shift) { return static_cast<uint8_t>(row >> shift); };
    // Two fields: the three low bits of the first stand above the second's.
    if (t.id == 30) return {static_cast<uint8_t>(row >> 1 & 7), static_cast<uint8_t>(row & 1)};
    if (t.id == 31)
        return {static_cast<uint8_t>(row >> 10 & 7), byte(0), static_cast<uint8_t>(row >> 8 & 3)};
    bytes out;
    for (unsigned i = 0; i < t.key_bytes; ++i) out.push_back(byte(8 * i));
    return out;
}

}  // namespace halden::test
