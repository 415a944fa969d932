#pragma once

// The six operations of a table that is addressed by its key: hash tables, and ternary tables,
// whose spec may carry a mask. Records as the caller has them:
//
//     hash spec, info      | action id | key | action data |
//     ternary spec, info   | action id | key | has_mask | mask | action data |
//     engine data          | action id | action data |
//
// Every call hands the engine one parameter record with stack copies of the key, of the mask when
// there is one, and of the engine data; nothing of the caller's is kept.

#include "p4gen/halden/src/tev_tbl_common.h"

namespace halden::tev_tbl {

// Shared with the flow table.
template <const pl::table &T>
struct keyed_messages {
    template <size_t B, size_t A>
    static consteval auto of(const char (&before)[B], const char (&after)[A]) {
        return log::message<T.name.size()>(before, T.name, after);
    }
    static constexpr auto no_insert = of("Could not insert entry in table ", "");
    static constexpr auto no_update = of("Could not update entry in ", " table");
    static constexpr auto no_remove = of("Could not remove entry in ", " table");
    static constexpr auto no_read = of("Could not find entry in ", " table");
    static constexpr auto no_lookup = of("Could not lookup entry in ", " table");
};

template <const pl::table &T, auto Accessor>
struct keyed_table {
    using says = keyed_messages<T>;
    static constexpr bool ternary = pl::has_mask(T.kind);
    static constexpr size_t key_at = 1;
    static constexpr size_t has_mask_at = key_at + T.key_bytes;
    static constexpr size_t mask_at = has_mask_at + 1;
    static constexpr size_t data_at = ternary ? mask_at + T.key_bytes : has_mask_at;

    // One call of the engine, with the copies its record points at.
    struct call {
        sdk::table::sdk_table_api_params_t params;
        uint8_t key[T.key_bytes];
        uint8_t mask[ternary ? T.key_bytes : 1];
        uint8_t data[T.data_bytes];

        explicit call(const uint8_t *key_record) : params{}, data{} {
            std::memcpy(key, key_record, sizeof key);
            params.key = key;
            params.data = data;
            params.handle = sdk::table::handle_t::null();
            params.from_hardware = true;
        }
        call(const call &) = delete;
        call &operator=(const call &) = delete;

        void take_spec(const uint8_t *spec) {
            params.action_id = data[0] = spec[0];
            std::memcpy(data + 1, spec + data_at, sizeof data - 1);
            if constexpr (ternary) {
                if (spec[has_mask_at] == 0) return;
                std::memcpy(mask, spec + mask_at, sizeof mask);
                params.mask = mask;
            }
        }
    };

    static tev_tbl_ret_t create(const void *spec) {
        if (spec == nullptr) return TEV_TBL_REPORT(TEV_TBL_RET_INVALID_ARG, spec_is_null);
        call c(bytes_of(spec) + key_at);
        c.take_spec(bytes_of(spec));
        if (engine<Accessor>()->insert(&c.params) != SDK_RET_OK)
            return TEV_TBL_REPORT(TEV_TBL_RET_WRITE_FAILED, says::no_insert);
        return TEV_TBL_RET_OK;
    }

    static tev_tbl_ret_t read(const void *key, void *info) {
        if (key == nullptr || info == nullptr)
            return TEV_TBL_REPORT(TEV_TBL_RET_INVALID_ARG, key_or_info_is_null);
        call c(bytes_of(key));
        if (engine<Accessor>()->get(&c.params) != SDK_RET_OK)
            return TEV_TBL_REPORT(TEV_TBL_RET_READ_FAILED, says::no_read);
        bytes_of(info)[0] = c.data[0];
        std::memcpy(bytes_of(info) + data_at, c.data + 1, sizeof c.data - 1);
        return TEV_TBL_RET_OK;
    }

    static tev_tbl_ret_t update(const void *spec) {
        if (spec == nullptr) return TEV_TBL_REPORT(TEV_TBL_RET_INVALID_ARG, spec_is_null);
        call c(bytes_of(spec) + key_at);
        c.take_spec(bytes_of(spec));
        if (engine<Accessor>()->update(&c.params) != SDK_RET_OK)
            return TEV_TBL_REPORT(TEV_TBL_RET_WRITE_FAILED, says::no_update);
        return TEV_TBL_RET_OK;
    }

    static tev_tbl_ret_t remove(const void *key) {
        if (key == nullptr) return TEV_TBL_REPORT(TEV_TBL_RET_INVALID_ARG, key_is_null);
        call c(bytes_of(key));
        if (engine<Accessor>()->remove(&c.params) != SDK_RET_OK)
            return TEV_TBL_REPORT(TEV_TBL_RET_WRITE_FAILED, says::no_remove);
        return TEV_TBL_RET_OK;
    }

    static tev_tbl_ret_t find(const void *key) {
        if (key == nullptr) return TEV_TBL_REPORT(TEV_TBL_RET_INVALID_ARG, key_is_null);
        call c(bytes_of(key));
        const sdk_ret_t result = engine<Accessor>()->get(&c.params);
        if (result == SDK_RET_OK) return TEV_TBL_RET_OK;
        if (result == SDK_RET_ENTRY_NOT_FOUND) return TEV_TBL_RET_ENTRY_NOT_FOUND;
        return TEV_TBL_REPORT(TEV_TBL_RET_READ_FAILED, says::no_lookup);
    }
};

}  // namespace halden::tev_tbl
