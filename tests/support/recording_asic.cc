// The ASIC access layer and the pipeline-wide entry points, recorded.

#include <algorithm>
#include <cstring>

#include "sdk/asic/pd.h"
#include "sdk/p4pd_global.h"
#include "tests/support/recording_host.h"

using namespace halden::test;

namespace {

recording_host &host() { return recording_host::get(); }

read_answer answer(const char *name, uint32_t tableid, uint32_t index) {
    return host().on_read ? host().on_read(name, tableid, index) : read_answer{};
}

void fill(uint8_t *buffer, const std::vector<uint8_t> &bytes) {
    std::copy(bytes.begin(), bytes.end(), buffer);
}

}  // namespace

namespace sdk::asic::pd {

// Images are kept over their lengths.
int asicpd_table_entry_write(uint32_t tableid, uint32_t index, uint8_t *entry, uint16_t entry_bits,
                             uint8_t *mask, bool flag) {
    recording_host::scope inside;
    host().record("asicpd_table_entry_write",
                  {number(tableid), number(index), image(entry, entry_bits), number(entry_bits),
                   image(mask, entry_bits), number(flag)});
    return host().asic_result;
}

int asicpd_table_entry_read(uint32_t tableid, uint32_t index, uint8_t *entry, uint16_t *entry_bits,
                            bool flag) {
    recording_host::scope inside;
    host().record("asicpd_table_entry_read", {number(tableid), number(index), pointer(entry),
                                              pointer(entry_bits), number(flag)});
    const read_answer row = answer("asicpd_table_entry_read", tableid, index);
    fill(entry, row.entry);
    *entry_bits = row.bits;
    return row.result;
}

int asicpd_tcam_table_entry_write(uint32_t tableid, uint32_t index, uint8_t *key, uint8_t *mask,
                                  uint16_t width, bool flag) {
    recording_host::scope inside;
    host().record("asicpd_tcam_table_entry_write",
                  {number(tableid), number(index), image(key, width), image(mask, width),
                   number(width), number(flag)});
    return host().asic_result;
}

int asicpd_tcam_table_entry_read(uint32_t tableid, uint32_t index, uint8_t *key, uint8_t *mask,
                                 uint16_t *width, void *extra, bool flag) {
    recording_host::scope inside;
    host().record("asicpd_tcam_table_entry_read",
                  {number(tableid), number(index), pointer(key), pointer(mask), pointer(width),
                   pointer(extra), number(flag)});
    const read_answer row = answer("asicpd_tcam_table_entry_read", tableid, index);
    fill(key, row.entry);
    fill(mask, row.mask);
    *width = row.bits;
    return row.result;
}

int asicpd_hbm_table_entry_write(uint32_t tableid, uint32_t index, uint8_t *entry,
                                 uint32_t reserved, uint16_t entry_bits) {
    recording_host::scope inside;
    host().record("asicpd_hbm_table_entry_write",
                  {number(tableid), number(index), image(entry, entry_bits), number(reserved),
                   number(entry_bits)});
    return host().asic_result;
}

int asicpd_hbm_table_entry_read(uint32_t tableid, uint32_t index, uint8_t *entry,
                                uint16_t *entry_bits) {
    recording_host::scope inside;
    host().record("asicpd_hbm_table_entry_read",
                  {number(tableid), number(index), pointer(entry), pointer(entry_bits)});
    const read_answer row = answer("asicpd_hbm_table_entry_read", tableid, index);
    fill(entry, row.entry);
    *entry_bits = row.bits;
    return row.result;
}

uint8_t asicpd_get_action_pc(uint32_t tableid, uint8_t actionid) {
    recording_host::scope inside;
    host().record("asicpd_get_action_pc", {number(tableid), number(actionid)});
    return host().on_action_pc ? host().on_action_pc(tableid, actionid)
                               : static_cast<uint8_t>(0x20 + actionid);
}

uint8_t asicpd_get_action_id(uint32_t tableid, uint8_t actionpc) {
    recording_host::scope inside;
    host().record("asicpd_get_action_id", {number(tableid), number(actionpc)});
    return host().on_action_id ? host().on_action_id(tableid, actionpc)
                               : static_cast<uint8_t>(actionpc - 0x20);
}

}  // namespace sdk::asic::pd

p4pd_error_t p4pd_table_properties_get(uint32_t tableid, p4pd_table_properties_t *properties) {
    recording_host::scope inside;
    host().record("p4pd_table_properties_get", {number(tableid), pointer(properties)});
    return host().on_properties ? host().on_properties(tableid, properties) : P4PD_FAIL;
}

p4pd_error_t p4pd_global_table_properties_get(uint32_t tableid, void *properties) {
    recording_host::scope inside;
    host().record("p4pd_global_table_properties_get", {number(tableid), pointer(properties)});
    return host().on_global_properties ? host().on_global_properties(tableid, properties)
                                       : P4PD_FAIL;
}

p4pd_error_t p4pd_global_entry_write(uint32_t tableid, uint32_t index, uint8_t *hwkey,
                                     uint8_t *hwkey_mask, void *actiondata, bool flag) {
    recording_host::scope inside;
    host().record("p4pd_global_entry_write",
                  {number(tableid), number(index), pointer(hwkey), pointer(hwkey_mask),
                   pointer(actiondata), number(flag)});
    return host().global_write_result;
}

p4pd_error_t p4pd_global_entry_read(uint32_t tableid, uint32_t index, void *swkey, void *swkey_mask,
                                    void *actiondata, void *extra, bool flag) {
    recording_host::scope inside;
    const call made =
        host().record("p4pd_global_entry_read",
                      {number(tableid), number(index), pointer(swkey), pointer(swkey_mask),
                       pointer(actiondata), pointer(extra), number(flag)});
    return host().on_global_entry_read ? host().on_global_entry_read(made) : P4PD_SUCCESS;
}

p4pd_error_t p4pd_global_table_ds_decoded_string_get(uint32_t tableid, uint32_t index, void *swkey,
                                                     void *swkey_mask, void *actiondata,
                                                     char *buffer, uint16_t buf_len) {
    recording_host::scope inside;
    const call made =
        host().record("p4pd_global_table_ds_decoded_string_get",
                      {number(tableid), number(index), pointer(swkey), pointer(swkey_mask),
                       pointer(actiondata), pointer(buffer), number(buf_len)});
    if (buffer != nullptr && buf_len > 0) buffer[0] = '\0';
    return host().on_decode ? host().on_decode(made, buffer, buf_len) : P4PD_SUCCESS;
}
