// The calls of the ASIC layer, answered by the process's current adapter.

#include "sdk/asic/pd.h"

#include "host/actions/actions.h"
#include "host/adapter.h"
#include "host/asic/outcome.h"

namespace sdk::asic::pd {

using halden::host::asic_call;
using halden::host::asic_outcome;
using halden::host::current;

namespace {

// An entry without its program is laid out in another way: who wrote or read one must learn of it.
bool refused(asic_call call, uint32_t tableid, uint32_t number) {
    return asic_outcome::note(current().faults().meet(call, tableid, number)) != SDK_RET_OK;
}

}  // namespace

int asicpd_table_entry_write(uint32_t tableid, uint32_t index, uint8_t *entry, uint16_t entry_bits,
                             uint8_t *mask, bool /*flag*/) {
    return asic_outcome::note(current().sram_write(tableid, index, entry, entry_bits, mask));
}

int asicpd_table_entry_read(uint32_t tableid, uint32_t index, uint8_t *entry, uint16_t *entry_bits,
                            bool /*flag*/) {
    return asic_outcome::note(current().sram_read(tableid, index, entry, entry_bits));
}

int asicpd_tcam_table_entry_write(uint32_t tableid, uint32_t index, uint8_t *key, uint8_t *mask,
                                  uint16_t width, bool /*flag*/) {
    return asic_outcome::note(current().tcam_write(tableid, index, key, mask, width));
}

int asicpd_tcam_table_entry_read(uint32_t tableid, uint32_t index, uint8_t *key, uint8_t *mask,
                                 uint16_t *width, void * /*extra*/, bool /*flag*/) {
    return asic_outcome::note(current().tcam_read(tableid, index, key, mask, width));
}

int asicpd_hbm_table_entry_write(uint32_t tableid, uint32_t index, uint8_t *entry,
                                 uint32_t /*reserved*/, uint16_t entry_bits) {
    return asic_outcome::note(current().hbm_write(tableid, index, entry, entry_bits));
}

int asicpd_hbm_table_entry_read(uint32_t tableid, uint32_t index, uint8_t *entry,
                                uint16_t *entry_bits) {
    return asic_outcome::note(current().hbm_read(tableid, index, entry, entry_bits));
}

uint8_t asicpd_get_action_pc(uint32_t tableid, uint8_t actionid) {
    if (refused(asic_call::action_pc, tableid, actionid)) return no_action_pc;
    return halden::host::program_of(tableid, actionid);
}

uint8_t asicpd_get_action_id(uint32_t tableid, uint8_t actionpc) {
    if (refused(asic_call::action_id, tableid, actionpc)) return halden::host::no_action;
    return halden::host::action_at(tableid, actionpc);
}

}  // namespace sdk::asic::pd
