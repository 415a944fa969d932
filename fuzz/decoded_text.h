#pragma once

// What holds for the text of either decoder, whatever it is given.

#include <algorithm>
#include <string>

#include "fuzz/input.h"
#include "sdk/p4pd_error.h"

namespace halden::fuzz {

inline constexpr uint16_t roomy = 8192;  // more than any text
inline constexpr size_t guard = 64;

// `decode(char *buffer, uint16_t size)` is called for a roomy buffer and for one of `size` bytes.
// `banner` is the length of the first line, behind which an unknown table is told.
template <class Decode>
void check_text(uint16_t size, bool known_table, size_t banner, Decode decode) {
    const block whole(roomy, 0x5a);
    const p4pd_error_t result = decode(whole.text(), roomy);
    require(result == (known_table ? P4PD_SUCCESS : P4PD_FAIL), "the result tells a known table");
    const std::string text = whole.text();
    require(text.size() < roomy - 1, "no text fills the roomy buffer");
    require(known_table ? text.size() > banner : text.size() == banner,
            "an unknown table has a banner alone");

    // Cut to the buffer: the front of the whole text, then zeros; and nothing beyond the buffer.
    const block cut(size, 0xff);
    const p4pd_error_t cut_result = decode(cut.text(), size);
    require(cut_result == (known_table || size <= banner ? P4PD_SUCCESS : P4PD_FAIL),
            "a buffer of the banner hides an unknown table");
    std::string expected(size, '\0');
    if (size != 0)
        std::copy_n(text.begin(), std::min(text.size(), size - size_t{1}), expected.begin());
    require(cut.view() == expected, "a cut text is the front of the whole, zeros behind it");

    const block guarded(guard + size + guard, 'Z');
    decode(guarded.text() + guard, size);
    require(guarded.view() == std::string(guard, 'Z') + expected + std::string(guard, 'Z'),
            "nothing is written beside the buffer");
}

}  // namespace halden::fuzz
