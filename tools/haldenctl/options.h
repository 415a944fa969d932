#pragma once

// What the options in front of a command say.

#include <string>
#include <vector>

#include "host/faults/faults.h"

namespace halden::tool {

struct options {
    std::string adapter;              // directory; empty for memory that ends with the command
    bool sync = false;                // what is done outlives a power cut
    std::vector<host::fault> faults;  // that the command shall meet
    bool show_calls = false;          // its calls of the ASIC layer, at the end
};

// "sram-write,table=lif_mapping,skip=2,count=all,delay=10": a call of that table is refused behind
// two that pass, and all further ones; with a delay, in milliseconds, it is late instead. Throws
// failure, of usage.
host::fault fault_of(const std::string &text);

}  // namespace halden::tool
