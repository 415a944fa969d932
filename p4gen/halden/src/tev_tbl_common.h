#pragma once

// What the kinds of tables share: the way to their engine, the reports of a missing argument, and
// the result of each operation.

#include <cstdint>
#include <cstring>

#include "log/trace.h"
#include "p4gen/halden/pipeline/model.h"
#include "tev_tbl_impl_state.h"
#include "tev_tbl_ret.h"

namespace halden::tev_tbl {

namespace pl = pipeline;

// The source that every report of the table API names.
inline constexpr char source[] = "p4gen/halden/src/tev_tbl";

using state = api::impl::tev_tbl_impl_state;

// A table's engine by its accessor. The host has built its state before the first call.
template <auto Accessor>
auto *engine() {
    return (api::impl::g_tev_impl_state.state->tables.*Accessor)();
}

inline constexpr auto spec_is_null = log::message<0>("spec is null", {}, "");
inline constexpr auto key_or_info_is_null = log::message<0>("key/info is null", {}, "");
inline constexpr auto key_is_null = log::message<0>("key is null", {}, "");
inline constexpr auto not_implemented = log::message<0>("Not implemented yet!", {}, "");

// Reports, and answers, on behalf of the line it stands in.
#define TEV_TBL_REPORT(result, format, ...) \
    (HALDEN_TRACE_ERROR(source, (format).data() __VA_OPT__(, ) __VA_ARGS__), (result))

inline tev_tbl_ret_t table_clear() {
    return TEV_TBL_REPORT(TEV_TBL_RET_NOT_IMPLEMENTED, not_implemented);
}

// Copies to where records of the caller lie, which may be anywhere in memory.
inline uint8_t *bytes_of(void *record) { return static_cast<uint8_t *>(record); }
inline const uint8_t *bytes_of(const void *record) { return static_cast<const uint8_t *>(record); }

}  // namespace halden::tev_tbl
