// What the flow tables' action data holds, by number rather than by name: an engine copies and
// compares it without knowing the record.
//
//     record  [action id][flow_idx][hash1][hint1] ... [more_hashes][more_hints][entry_valid]
//                         app word  field 1  2    ...  17           18          0
//
// The record may stand at any address, so every access is a copy of bytes.

#include <array>
#include <cstring>

#include "p4gen/halden/pipeline/pipeline.h"
#include "p4gen/halden/src/fail.h"
#include "p4pd.h"

namespace {

using namespace halden::pipeline;

constexpr std::span<const field> parameters = flow_actions[0].fields;
constexpr uint32_t hwfield_count = 19;
static_assert(parameters.size() == hwfield_count + 1);

constexpr size_t parameter_of(uint32_t hwfield) {
    return hwfield == 0 ? parameters.size() - 1 : hwfield;
}
constexpr std::array<uint32_t, hwfield_count> hwfield_offset = [] {
    std::array<uint32_t, hwfield_count> offsets{};
    for (uint32_t i = 0; i < hwfield_count; ++i)
        offsets[i] = record_offset(parameters, parameter_of(i));
    return offsets;
}();
constexpr std::array<uint32_t, hwfield_count> hwfield_size = [] {
    std::array<uint32_t, hwfield_count> sizes{};
    for (uint32_t i = 0; i < hwfield_count; ++i)
        sizes[i] = storage_bytes(parameters[parameter_of(i)].bits);
    return sizes;
}();
constexpr uint32_t appdata_size = storage_bytes(parameters[0].bits);

bool is_flow_table(uint32_t tableid) { return tableid == flow_ohash.id || tableid == flow.id; }
bool has_appdata(uint32_t tableid, uint8_t actionid) {
    return is_flow_table(tableid) && actionid == 0;
}

uint8_t *parameter_area(void *actiondata) { return static_cast<uint8_t *>(actiondata) + 1; }

}  // namespace

uint32_t p4pd_actiondata_appdata_size_get(uint32_t tableid, uint8_t actionid) {
    if (has_appdata(tableid, actionid)) return appdata_size;
    const unsigned line = tableid == flow_ohash.id ? 34205 : tableid == flow.id ? 34217 : 34224;
    __assert_fail("0", halden::p4pd_source, line,
                  "uint32_t p4pd_actiondata_appdata_size_get(uint32_t, uint8_t)");
}

p4pd_error_t p4pd_actiondata_appdata_set(uint32_t tableid, uint8_t actionid, void *src,
                                         void *actiondata) {
    if (!has_appdata(tableid, actionid)) return P4PD_FAIL;
    std::memcpy(parameter_area(actiondata), src, appdata_size);
    return P4PD_SUCCESS;
}

p4pd_error_t p4pd_actiondata_appdata_get(uint32_t tableid, uint8_t actionid, void *dest,
                                         void *actiondata) {
    if (!has_appdata(tableid, actionid)) return P4PD_FAIL;
    std::memcpy(dest, parameter_area(actiondata), appdata_size);
    return P4PD_SUCCESS;
}

uint32_t p4pd_actiondata_hwfields_count_get(uint32_t tableid, uint8_t actionid) {
    return has_appdata(tableid, actionid) ? hwfield_count : 0;
}

p4pd_error_t p4pd_actiondata_hwfield_set(uint32_t tableid, uint8_t actionid, uint32_t field,
                                         uint8_t *src, void *actiondata) {
    if (!is_flow_table(tableid)) return P4PD_FAIL;
    *static_cast<uint8_t *>(actiondata) = actionid;  // even when the rest is refused
    if (actionid != 0 || field >= hwfield_count) return P4PD_FAIL;
    std::memcpy(parameter_area(actiondata) + hwfield_offset[field], src, hwfield_size[field]);
    return P4PD_SUCCESS;
}

p4pd_error_t p4pd_actiondata_hwfield_get(uint32_t tableid, uint8_t actionid, uint32_t field,
                                         uint8_t *dest, void *actiondata) {
    if (!has_appdata(tableid, actionid) || field >= hwfield_count) return P4PD_FAIL;
    std::memcpy(dest, parameter_area(actiondata) + hwfield_offset[field], hwfield_size[field]);
    return P4PD_SUCCESS;
}
