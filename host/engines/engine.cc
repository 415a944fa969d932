#include "host/engines/engine.h"

#include "host/asic/outcome.h"
#include "host/memory/memory_map.h"
#include "p4pd.h"
#include "sdk/p4pd_utils.h"

#include <bit>
#include <cstring>

namespace halden::host {

namespace {

// No action has it, so a data record that still opens with it was not read.
constexpr uint8_t not_read = 0xff;
// The reading routines' rows; see sdk/asic/pd.h.
constexpr size_t read_bytes = 1024;

}  // namespace

uint32_t ternary_key::specificity() const {
    uint32_t bits = 0;
    for (size_t i = 0; i < record_room; ++i)
        bits += static_cast<uint32_t>(std::popcount(static_cast<uint8_t>(ones[i] | zeros[i])));
    return bits;
}

table_rows::table_rows(adapter &hardware, uint32_t table) : hardware_(hardware), table_(table) {
    if (p4pd_table_properties_get(table, &properties_) != P4PD_SUCCESS) throw cannot_start();
}

ternary_key table_rows::images_of(const void *key, const void *mask) const {
    ternary_key out;
    record_bytes whole_key = {}, whole_mask;
    whole_mask.fill(0xff);
    std::memcpy(whole_key.data(), key, key_bytes());
    if (mask != nullptr) std::memcpy(whole_mask.data(), mask, key_bytes());
    p4pd_hwkey_hwmask_build(table_, whole_key.data(), whole_mask.data(), out.ones.data(),
                            out.zeros.data());
    return out;
}

sdk_ret_t table_rows::images_at(uint32_t row, ternary_key &out) const {
    uint8_t ones[read_bytes] = {}, zeros[read_bytes] = {};
    uint16_t width = 0;
    if (sdk_ret_t bad = hardware_.tcam_read(table_, row, ones, zeros, &width)) return bad;
    if (width == 0) return SDK_RET_ENTRY_NOT_FOUND;
    p4pd_utils_swizzle_bytes(ones, width);
    p4pd_utils_swizzle_bytes(zeros, width);
    out = {};
    std::memcpy(out.ones.data(), ones, width / 8u);
    std::memcpy(out.zeros.data(), zeros, width / 8u);
    return SDK_RET_OK;
}

bool table_rows::knows_action(const void *data) const {
    return *static_cast<const uint8_t *>(data) < p4pd_get_max_action_id(table_);
}

sdk_ret_t table_rows::write_once(uint32_t row, const ternary_key *images, const void *data) const {
    // The writers swizzle the images they are given.
    ternary_key swizzled;
    if (images != nullptr) swizzled = *images;
    record_bytes record = {};
    std::memcpy(record.data(), data, data_bytes());
    const asic_outcome outcome;
    if (p4pd_global_entry_write(table_, row, swizzled.ones.data(), swizzled.zeros.data(),
                                record.data(), false) != P4PD_SUCCESS)
        return SDK_RET_HW_PROGRAM_ERR;
    return outcome.refusal();
}

sdk_ret_t table_rows::write(uint32_t row, const ternary_key *images, const void *data) const {
    // Nothing is written over damage, in whichever memory of the row it is.
    if (sdk_ret_t bad = hardware_.check_row(table_, row)) return bad;
    record_bytes old;
    const sdk_ret_t before = read(row, old);
    if (before != SDK_RET_OK && before != SDK_RET_ENTRY_NOT_FOUND) return before;
    const sdk_ret_t result = write_once(row, images, data);
    if (result == SDK_RET_OK) return SDK_RET_OK;
    // A TCAM row may have been written although its data was not, or the other way round.
    if (before == SDK_RET_OK)
        static_cast<void>(write_once(row, images, old.data()));
    else
        static_cast<void>(clear(row));
    return result;
}

sdk_ret_t table_rows::read(uint32_t row, record_bytes &data, record_bytes *key) const {
    record_bytes own_key, mask = {};
    if (key == nullptr) key = &own_key;
    data.fill(0);
    key->fill(0);
    data[0] = not_read;
    const asic_outcome outcome;
    // An empty TCAM row is a failure to the reader, an empty row of the others is not.
    const p4pd_error_t result =
        p4pd_global_entry_read(table_, row, key->data(), mask.data(), data.data(), nullptr, true);
    if (outcome.refusal() != SDK_RET_OK) return outcome.refusal();
    if (result == P4PD_SUCCESS && data[0] != not_read) return SDK_RET_OK;
    // In use, and its program is none of the table's actions: somebody's, and no entry.
    return in_use(row) ? SDK_RET_DAMAGED : SDK_RET_ENTRY_NOT_FOUND;
}

sdk_ret_t table_rows::clear(uint32_t row) const {
    const sdk_ret_t result = hardware_.clear_row(table_, row);
    // Out of hardware's sight is what counts; data without a TCAM row is nobody's.
    if (result != SDK_RET_OK && table_memory_of(table_)->has_tcam() && !in_use(row))
        return SDK_RET_OK;
    return result;
}

uint32_t table_rows::count_used() const {
    uint32_t used = 0;
    for (uint32_t row = hardware_.next_used(table_, 0); row < rows();
         row = hardware_.next_used(table_, row + 1))
        ++used;
    return used;
}

bool memory_is_refused(uint32_t table) {
    return current().faults().meet(asic_call::allocate, table, 0) != SDK_RET_OK;
}

engine_statistics call_counters::statistics() const {
    engine_statistics out;
    out.inserts = inserts;
    out.updates = updates;
    out.removes = removes;
    out.lookups = lookups;
    out.failures = failures;
    out.collisions = collisions;
    out.moves = moves;
    return out;
}

}  // namespace halden::host
