#pragma once

// An error a person reads: one line that says where, what was given and what is allowed. The tool
// prints it on standard error and exits with 1.

#include <stdexcept>
#include <string>

namespace halden::tool {

class failure : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
    // The same, found inside `where`: "lif_mapping: src_lport: ...".
    failure inside(const std::string &where) const { return failure(where + ": " + what()); }
};

}  // namespace halden::tool
