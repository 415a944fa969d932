#pragma once

// How the entries of a file come into the tables:
//
//     a table with an engine       through the table API, at the row that the engine chooses
//     flow_ohash                   as a flow: chains and hints are the engine's
//     an overflow TCAM             as an entry of the hash table, which overflows again if it has
//     to
//       with bits left out         as the row that is written, or the next that is free: the engine
//                                  knows whole keys alone
//     a table without an engine    as its row
//
// Rows are written first: engines take up what they find. Of the entries of a ternary table the
// more specific ones come first, so that those of equal specificity keep the order of the file.

#include <string>
#include <vector>

#include "host/adapter.h"
#include "tools/haldenctl/entry_file.h"

namespace halden::tool {

struct planned_entry {
    file_entry *given;  // its records are those of the table that takes them
    size_t number;      // in the file, from 1
    uint32_t row;       // of an index table; of what is written as a row, where it begins to look
    bool as_row;
};

// All that can be seen to be wrong with the entries is found here: throws failure, with the place.
// In the order in which they are to be carried out.
std::vector<planned_entry> plan_entries(host::adapter &adapter, std::vector<file_entry> &entries);

// "1 to 5, 9, 12 to 14": of ascending numbers; many ranges are cut.
std::string ranges_of(const std::vector<size_t> &numbers);

// "tunnel_terminate_v4  ipv4_1_dstAddr 10.0.0.0/16", "l2seg  index 5"
std::string name_of(const planned_entry &entry);

// Equal for keys that hardware takes for one.
std::string identity_of(records &entry);

}  // namespace halden::tool
