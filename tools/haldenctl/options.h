#pragma once

// What the options in front of a command say.

#include <string>
#include <vector>

#include "host/faults/faults.h"

namespace halden::tool {

struct given_fault {
    std::string text;  // as it was typed
    host::fault fault;
    mutable bool met = false;  // by a call of the command
};

struct options {
    std::string adapter;              // directory; empty for memory that ends with the command
    bool sync = false;                // what is done outlives a power cut
    std::vector<given_fault> faults;  // that the command shall meet
    bool show_calls = false;          // its calls of the ASIC layer, at the end
};

// "sram-write,table=lif_mapping,skip=2,count=all,delay=10": a call of that table is refused behind
// two that pass, and all further ones; with a delay, in milliseconds, it is late instead. Throws
// failure, of usage.
host::fault fault_of(const std::string &text);

// The calls that can be named: "sram-write, sram-read, ...".
std::string fault_calls();

// Says at the end of the command which of its faults no call met, on standard error: a test that
// waits for one of them has shown nothing. The command's exit status stays what it is.
class fault_report {
  public:
    explicit fault_report(const options &given) : given_(given) {}
    ~fault_report();
    fault_report(const fault_report &) = delete;
    fault_report &operator=(const fault_report &) = delete;

  private:
    const options &given_;
};

}  // namespace halden::tool
