#include "tools/haldenctl/failure.h"

namespace halden::tool {

std::string quotable(std::string_view given) {
    constexpr size_t most = 60, longest_character = 4;
    if (given.size() <= most) return printable(given);
    size_t end = most;
    while (end > most - longest_character && (given[end] & 0xc0) == 0x80) --end;
    return printable(given.substr(0, end)) + "...";
}

}  // namespace halden::tool
