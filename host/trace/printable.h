#pragma once

// Names that came from outside, as part of a message.

#include <string>
#include <string_view>

namespace halden::host::trace {

// Text as one line that leaves the terminal as it is: control characters, those that turn the
// reading direction, and bytes that are no UTF-8, as \x and two digits.
std::string printable(std::string_view text);

}  // namespace halden::host::trace
