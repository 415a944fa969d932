#pragma once

// Whether the adapter of this command met damage: then what was printed is not the whole answer,
// and the exit status says so, whatever else became of the command.

namespace halden::tool {

inline bool trouble_was_met = false;

}  // namespace halden::tool
