#pragma once

// The functions of the table API by table, with records as bytes, and what is known of each table.

#include <cstdint>
#include <ostream>
#include <span>
#include <string>
#include <vector>

#include "tev_tbl_impl_state.h"
#include "tev_tbl_ret.h"

namespace halden::test {

using bytes = std::vector<uint8_t>;

enum class api_kind { index, hash, tcam };

struct api_table {
    const char *name;
    api_kind kind;
    uint32_t id;
    uint64_t index_max;  // index tables only
    uint32_t key_bytes;
    uint32_t data_bytes;  // behind the action id

    tev_tbl_ret_t (*create)(const void *spec);
    tev_tbl_ret_t (*read)(const void *key, void *info);
    tev_tbl_ret_t (*update)(const void *spec);
    tev_tbl_ret_t (*remove)(const void *key);
    tev_tbl_ret_t (*find)(const void *key);
    tev_tbl_ret_t (*table_clear)();
    const void *(*engine)(api::impl::tev_tbl_impl_state &);

    // As the compiler has them.
    uint32_t spec_size, key_size, info_size;

    uint32_t mask_at() const { return 1 + key_bytes + 1; }  // ternary tables only
    uint32_t data_at() const {
        return 1 + key_bytes + (kind == api_kind::tcam ? 1 + key_bytes : 0);
    }
    uint32_t spec_bytes() const { return data_at() + data_bytes; }
};

// All but the flow table: 34.
std::span<const api_table> api_tables();
std::vector<api_table> api_tables_of(api_kind kind);
inline void PrintTo(const api_table &t, std::ostream *out) { *out << t.name; }

// The index record that maps to `row`.
bytes key_of_row(const api_table &t, uint64_t row);

}  // namespace halden::test
