#pragma once

// Packing of action data: from an action-data record into a bit image, one call of the host's bit
// routine per field. Everything but the record's bytes is a constant of the table.

#include <cstddef>
#include <cstdint>
#include <utility>

#include "p4gen/halden/pipeline/pipeline.h"
#include "sdk/p4pd_utils.h"

namespace halden::p4pd {

using pipeline::kind;
using pipeline::table;

// The parameters start behind the record's action id.
inline constexpr size_t params_offset = 1;

// Packs fields First .. Last - 1 of action A, one after another from bit 0 of `image`.
template <const table &T, size_t A, size_t First, size_t Last>
[[gnu::always_inline]] inline void pack_fields(uint8_t *image, uint8_t *record) {
    [&]<size_t... I>(std::index_sequence<I...>) __attribute__((always_inline)) {
        constexpr auto fields = T.actions[A].fields;
        (p4pd_utils_copy_le_src_to_be_dest(
             image,
             static_cast<uint16_t>(pipeline::packed_offset(fields, First + I) -
                                   pipeline::packed_offset(fields, First)),
             record + params_offset + pipeline::record_offset(fields, First + I), 0,
             fields[First + I].bits),
         ...);
    }
    (std::make_index_sequence<Last - First>{});
}

// Packs the data of the action that the record's first byte names; an id that is none of the
// table's packs nothing.
template <const table &T>
[[gnu::always_inline]] inline void pack_action(uint8_t *image, uint8_t *record) {
    [&]<size_t... A>(std::index_sequence<A...>) __attribute__((always_inline)) {
        (
            [&]() __attribute__((always_inline)) {
                constexpr size_t count = T.actions[A].fields.size();
                if constexpr (count != 0)
                    if (record[0] == A) pack_fields<T, A, 0, count>(image, record);
            }(),
            ...);
    }
    (std::make_index_sequence<T.actions.size()>{});
}

}  // namespace halden::p4pd
