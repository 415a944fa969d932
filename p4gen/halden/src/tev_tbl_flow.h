#pragma once

// The six operations of the flow table. Its engine works on whole entries, so the records are taken
// apart field by field, each cut to its width in the entry:
//
//     spec, info    | action id | flow key | flow_idx, hash1, hint1 ... more_hints | entry_valid |
//
// The last byte of a spec, and its action id and more_hashes, are never read: the engine sets the
// valid bit, and an entry is always stored with more_hashes 1.

#include "ftl/flow_hash_entry.h"
#include "p4gen/halden/pipeline/hash_tables.h"
#include "p4gen/halden/src/flow_key.h"
#include "p4gen/halden/src/tev_tbl_keyed.h"
#include "p4pd_records.h"

namespace halden::tev_tbl {

struct flow_table {
    using says = keyed_messages<pl::flow>;
    static constexpr size_t key_at = 1;
    static constexpr size_t data_at = key_at + sizeof(flow_swkey_t);

    // One call of the engine, with the entry its record points at.
    struct call {
        flow_hash_entry_t entry;
        sdk::table::sdk_table_api_params_t params;

        explicit call(const uint8_t *key) : params{} {
            pack_flow_key(entry.body(), key);
            params.entry = &entry;
        }
        call(const call &) = delete;
        call &operator=(const call &) = delete;

        void take_data(const uint8_t *spec) {
            namespace lay = flow_layout;
            flow_flow_hash_t data;
            std::memcpy(&data, spec + data_at, offsetof(flow_flow_hash_t, entry_valid));
            uint8_t *body = entry.body();
            lay::set_bits<lay::flow_idx>(body, data.flow_idx);
#define TEV_TBL_SLOT(n)                                \
    lay::set_bits<lay::hashes[n]>(body, data.hash##n); \
    lay::set_bits<lay::hints[n]>(body, data.hint##n)
            TEV_TBL_SLOT(1);
            TEV_TBL_SLOT(2);
            TEV_TBL_SLOT(3);
            TEV_TBL_SLOT(4);
            TEV_TBL_SLOT(5);
            TEV_TBL_SLOT(6);
            TEV_TBL_SLOT(7);
            TEV_TBL_SLOT(8);
#undef TEV_TBL_SLOT
            lay::set_bits<lay::more_hashes>(body, 1);
            lay::set_bits<lay::more_hints>(body, data.more_hints);
        }

        // Fills an info record but for its key and its last byte.
        void give(uint8_t *info) {
            flow_flow_hash_t data;
            data.flow_idx =
                static_cast<uint32_t>(flow_layout::get_bits<flow_layout::flow_idx>(entry.body()));
            // Record fields are packed and take no reference.
            uint32_t hint = 0, hash = 0;
#define TEV_TBL_SLOT(n)                 \
    entry.get_hint_hash(n, hint, hash); \
    data.hint##n = hint;                \
    data.hash##n = static_cast<uint16_t>(hash)
            TEV_TBL_SLOT(1);
            TEV_TBL_SLOT(2);
            TEV_TBL_SLOT(3);
            TEV_TBL_SLOT(4);
            TEV_TBL_SLOT(5);
            TEV_TBL_SLOT(6);
            TEV_TBL_SLOT(7);
            TEV_TBL_SLOT(8);
#undef TEV_TBL_SLOT
            entry.get_hint_hash(entry.get_more_hint_slot(), hint, hash);
            data.more_hints = hint;
            data.more_hashes = static_cast<uint8_t>(hash);
            info[0] = FLOW_FLOW_HASH_ID;
            std::memcpy(info + data_at, &data, offsetof(flow_flow_hash_t, entry_valid));
        }
    };

    static sdk::table::ftl_base *flows() { return engine<&state::flow_tbl>(); }

    static tev_tbl_ret_t create(const void *spec) {
        if (spec == nullptr) return TEV_TBL_REPORT(TEV_TBL_RET_INVALID_ARG, spec_is_null);
        call c(bytes_of(spec) + key_at);
        c.take_data(bytes_of(spec));
        if (flows()->insert(&c.params) != SDK_RET_OK)
            return TEV_TBL_REPORT(TEV_TBL_RET_WRITE_FAILED, says::no_insert);
        return TEV_TBL_RET_OK;
    }

    static tev_tbl_ret_t read(const void *key, void *info) {
        if (key == nullptr || info == nullptr)
            return TEV_TBL_REPORT(TEV_TBL_RET_INVALID_ARG, key_or_info_is_null);
        call c(bytes_of(key));
        if (flows()->get(&c.params) != SDK_RET_OK)
            return TEV_TBL_REPORT(TEV_TBL_RET_READ_FAILED, says::no_read);
        c.give(bytes_of(info));
        return TEV_TBL_RET_OK;
    }

    static tev_tbl_ret_t update(const void *spec) {
        if (spec == nullptr) return TEV_TBL_REPORT(TEV_TBL_RET_INVALID_ARG, spec_is_null);
        call c(bytes_of(spec) + key_at);
        c.take_data(bytes_of(spec));
        if (flows()->update(&c.params) != SDK_RET_OK)
            return TEV_TBL_REPORT(TEV_TBL_RET_WRITE_FAILED, says::no_update);
        return TEV_TBL_RET_OK;
    }

    static tev_tbl_ret_t remove(const void *key) {
        if (key == nullptr) return TEV_TBL_REPORT(TEV_TBL_RET_INVALID_ARG, key_is_null);
        call c(bytes_of(key));
        if (flows()->remove(&c.params) != SDK_RET_OK)
            return TEV_TBL_REPORT(TEV_TBL_RET_WRITE_FAILED, says::no_remove);
        return TEV_TBL_RET_OK;
    }

    static tev_tbl_ret_t find(const void *key) {
        if (key == nullptr) return TEV_TBL_REPORT(TEV_TBL_RET_INVALID_ARG, key_is_null);
        call c(bytes_of(key));
        const sdk_ret_t result = flows()->get(&c.params);
        if (result == SDK_RET_OK) return TEV_TBL_RET_OK;
        if (result == SDK_RET_ENTRY_NOT_FOUND) return TEV_TBL_RET_ENTRY_NOT_FOUND;
        return TEV_TBL_REPORT(TEV_TBL_RET_READ_FAILED, says::no_lookup);
    }
};

}  // namespace halden::tev_tbl
