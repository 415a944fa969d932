#include "host/actions/actions.h"

#include "p4pd.h"
#include "sdk/asic/pd.h"

namespace halden::host {

uint8_t program_of(uint32_t tableid, uint8_t actionid) {
    if (actionid >= p4pd_get_max_action_id(tableid)) return sdk::asic::pd::no_action_pc;
    return static_cast<uint8_t>(first_program + actionid);
}

uint8_t action_at(uint32_t tableid, uint8_t program) {
    const int action = program - first_program;
    if (action < 0 || action >= p4pd_get_max_action_id(tableid)) return no_action;
    return static_cast<uint8_t>(action);
}

}  // namespace halden::host
