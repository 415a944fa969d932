#pragma once

// The action programs of the loaded pipeline. A table's programs stand one after another from
// first_program: action n runs at first_program + n. So a program counter is never an action id by
// chance, and never the value that means "none".

#include <cstdint>

namespace halden::host {

inline constexpr uint8_t first_program = 0x10;
// Answered for a program counter at which none of the table's programs starts.
inline constexpr uint8_t no_action = 0xff;

// sdk::asic::pd::no_action_pc for an unknown table or action.
uint8_t program_of(uint32_t tableid, uint8_t actionid);
uint8_t action_at(uint32_t tableid, uint8_t program);

}  // namespace halden::host
