#include "host/trace/printable.h"

#include <cstddef>
#include <cstdint>

namespace halden::host::trace {

namespace {

// Bytes of the character of UTF-8 at the front of `text`; 0 when none starts there. Overlong forms,
// surrogates and what is beyond U+10FFFF are none.
size_t character_at(std::string_view text, uint32_t &code) {
    const auto byte = [&](size_t n) {
        return n < text.size() ? static_cast<uint8_t>(text[n]) : uint8_t{0};
    };
    const uint8_t first = byte(0);
    code = first;
    if (first < 0x80) return 1;
    const size_t size = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2;
    if (first < 0xc2 || first > 0xf4) return 0;
    code = first & (0x7fu >> size);
    for (size_t n = 1; n < size; ++n) {
        if ((byte(n) & 0xc0) != 0x80) return 0;
        code = code << 6 | (byte(n) & 0x3fu);
    }
    constexpr uint32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool surrogate = code >= 0xd800 && code <= 0xdfff;
    return code < least[size] || surrogate || code > 0x10ffff ? 0 : size;
}

// What a terminal may act upon: control characters, line and paragraph ends, the reading direction.
bool is_control(uint32_t code) {
    return code < 0x20 || (code >= 0x7f && code < 0xa0) || code == 0x2028 || code == 0x2029 ||
           (code >= 0x200e && code <= 0x200f) || (code >= 0x202a && code <= 0x202e) ||
           (code >= 0x2066 && code <= 0x2069);
}

}  // namespace

std::string printable(std::string_view text) {
    constexpr char digits[] = "0123456789abcdef";
    std::string out;
    while (!text.empty()) {
        uint32_t code = 0;
        const size_t size = character_at(text, code);
        const size_t taken = size == 0 ? 1 : size;
        if (size != 0 && !is_control(code))
            out += text.substr(0, size);
        else
            for (char c : text.substr(0, taken)) {
                const auto byte = static_cast<uint8_t>(c);
                out += {'\\', 'x', digits[byte >> 4], digits[byte & 15]};
            }
        text.remove_prefix(taken);
    }
    return out;
}

}  // namespace halden::host::trace
