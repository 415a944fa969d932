#include "tools/haldenctl/failure.h"

#include <cstdint>

namespace halden::tool {

std::string printable(std::string_view text) {
    constexpr char digits[] = "0123456789abcdef";
    std::string out;
    for (char c : text) {
        const auto byte = static_cast<uint8_t>(c);
        if (byte >= 0x20 && byte != 0x7f)
            out += c;
        else
            out += {'\\', 'x', digits[byte >> 4], digits[byte & 15]};
    }
    return out;
}

std::string quotable(std::string_view given) {
    constexpr size_t most = 60;
    if (given.size() <= most) return printable(given);
    size_t end = most;
    while (end > 0 && (given[end] & 0xc0) == 0x80) --end;
    return printable(given.substr(0, end)) + "...";
}

}  // namespace halden::tool
