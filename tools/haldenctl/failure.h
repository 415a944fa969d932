#pragma once

// An error a person reads: one line that says where, what was given and what is allowed. The tool
// prints it on standard error and exits with 1.

#include <stdexcept>
#include <string>
#include <string_view>

namespace halden::tool {

class failure : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
    // The same, found inside `where`: "lif_mapping: src_lport: ...".
    failure inside(const std::string &where) const { return failure(where + ": " + what()); }
};

// Text as one line that leaves the terminal as it is: control characters as \x and two digits.
std::string printable(std::string_view text);
// What was given, as an error quotes it: printable, and cut when it is long, between characters.
std::string quotable(std::string_view given);

}  // namespace halden::tool
