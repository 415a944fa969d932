#pragma once

// The six operations of an index table. Records as the caller has them:
//
//     spec, info    | action id | index record | action data |
//     engine data   | action id | action data |
//
// The row that the index record maps to, not the record itself, is held against the table's highest
// index and named in every report.

#include "p4gen/halden/src/tev_tbl_common.h"
#include "p4pd.h"

namespace halden::tev_tbl {

template <const pl::table &T>
struct index_messages {
    template <size_t B, size_t A>
    static consteval auto of(const char (&before)[B], const char (&after)[A]) {
        return log::message<T.name.size()>(before, T.name, after);
    }
    static constexpr auto beyond_range = of("Table ", " key %lu is beyond range");
    static constexpr auto no_insert = of("Could not insert entry in table ", " at index %lu");
    static constexpr auto no_update = of("Could not update entry in table ", " at index %lu");
    static constexpr auto no_read = of("Failed to read ", " table at index %lu");
    static constexpr auto no_remove = of("Failed to clear ", " table at index %lu");
    static constexpr auto no_lookup = of("Failed to look up ", " table at index %lu");
};

template <const pl::table &T, auto Accessor>
struct index_table {
    using says = index_messages<T>;
    static constexpr size_t key_bytes = pl::record_bytes(T.index);

    struct data_record {
        uint8_t bytes[T.data_bytes];
    };

    static data_record data_of(const void *spec) {
        data_record out;
        out.bytes[0] = bytes_of(spec)[0];
        std::memcpy(out.bytes + 1, bytes_of(spec) + 1 + key_bytes, T.data_bytes - 1);
        return out;
    }
    static uint64_t row_of(const uint8_t *key) {
        return p4pd_index_to_hwindex_map(T.id, const_cast<uint8_t *>(key));
    }

    static tev_tbl_ret_t create(const void *spec) {
        if (spec == nullptr) return TEV_TBL_REPORT(TEV_TBL_RET_INVALID_ARG, spec_is_null);
        const uint64_t row = row_of(bytes_of(spec) + 1);
        if (row > T.index_max)
            return TEV_TBL_REPORT(TEV_TBL_RET_INVALID_ARG, says::beyond_range, row);
        data_record data = data_of(spec);
        if (engine<Accessor>()->insert_withid(&data, static_cast<uint32_t>(row), nullptr) !=
            SDK_RET_OK)
            return TEV_TBL_REPORT(TEV_TBL_RET_WRITE_FAILED, says::no_insert, row);
        return TEV_TBL_RET_OK;
    }

    static tev_tbl_ret_t read(const void *key, void *info) {
        if (key == nullptr || info == nullptr)
            return TEV_TBL_REPORT(TEV_TBL_RET_INVALID_ARG, key_or_info_is_null);
        const uint64_t row = row_of(bytes_of(key));
        if (row > T.index_max)
            return TEV_TBL_REPORT(TEV_TBL_RET_INVALID_ARG, says::beyond_range, row);
        data_record data = {};
        if (engine<Accessor>()->retrieve(static_cast<uint32_t>(row), &data) != SDK_RET_OK)
            return TEV_TBL_REPORT(TEV_TBL_RET_READ_FAILED, says::no_read, row);
        bytes_of(info)[0] = data.bytes[0];
        std::memcpy(bytes_of(info) + 1 + key_bytes, data.bytes + 1, T.data_bytes - 1);
        return TEV_TBL_RET_OK;
    }

    static tev_tbl_ret_t update(const void *spec) {
        if (spec == nullptr) return TEV_TBL_REPORT(TEV_TBL_RET_INVALID_ARG, spec_is_null);
        const uint64_t row = row_of(bytes_of(spec) + 1);
        if (row > T.index_max)
            return TEV_TBL_REPORT(TEV_TBL_RET_INVALID_ARG, says::beyond_range, row);
        data_record data = data_of(spec);
        if (engine<Accessor>()->update(static_cast<uint32_t>(row), &data, nullptr) != SDK_RET_OK)
            return TEV_TBL_REPORT(TEV_TBL_RET_WRITE_FAILED, says::no_update, row);
        return TEV_TBL_RET_OK;
    }

    static tev_tbl_ret_t remove(const void *key) {
        if (key == nullptr) return TEV_TBL_REPORT(TEV_TBL_RET_INVALID_ARG, key_is_null);
        const uint64_t row = row_of(bytes_of(key));
        if (row > T.index_max)
            return TEV_TBL_REPORT(TEV_TBL_RET_INVALID_ARG, says::beyond_range, row);
        if (engine<Accessor>()->remove(static_cast<uint32_t>(row), nullptr) != SDK_RET_OK)
            return TEV_TBL_REPORT(TEV_TBL_RET_WRITE_FAILED, says::no_remove, row);
        return TEV_TBL_RET_OK;
    }

    static tev_tbl_ret_t find(const void *key) {
        if (key == nullptr) return TEV_TBL_REPORT(TEV_TBL_RET_INVALID_ARG, key_is_null);
        const uint64_t row = row_of(bytes_of(key));
        if (row > T.index_max)
            return TEV_TBL_REPORT(TEV_TBL_RET_INVALID_ARG, says::beyond_range, row);
        data_record data = {};
        const sdk_ret_t result = engine<Accessor>()->retrieve(static_cast<uint32_t>(row), &data);
        if (result == SDK_RET_OK) return TEV_TBL_RET_OK;
        if (result == SDK_RET_ENTRY_NOT_FOUND) return TEV_TBL_RET_ENTRY_NOT_FOUND;
        return TEV_TBL_REPORT(TEV_TBL_RET_READ_FAILED, says::no_lookup, row);
    }
};

}  // namespace halden::tev_tbl
