// The grammar of values: whatever the text, what is accepted fits its field, is what the digits
// say, and is read back from the word that is printed for it; what is refused is refused in one
// line.

#include <array>
#include <optional>
#include <string>

#include "fuzz/input.h"
#include "tools/haldenctl/failure.h"
#include "tools/haldenctl/value.h"

using namespace halden;
using namespace halden::fuzz;
using tool::wide;

namespace {

constexpr std::array<std::string_view, 3> fields = {"number", "ipv4_1_dstAddr", "spare"};
constexpr size_t longest_line = 600;  // 60 bytes are quoted, of up to four characters each

template <class Read>
auto unless_refused(Read read) -> std::optional<decltype(read())> {
    try {
        return read();
    } catch (const tool::failure &error) {
        const std::string line = error.what();
        require(line.size() <= longest_line, "an error is a line");
        require(line == tool::printable(line), "an error leaves the terminal alone");
        require(line.find("allowed: ") != line.npos, "an error says what is allowed");
        return std::nullopt;
    }
}

// Decimal arithmetic on digits, as one learns it: a * factor + more.
std::string times(const std::string &digits, unsigned factor, unsigned more) {
    std::string out;
    unsigned carry = more;
    for (size_t n = digits.size(); n-- > 0;) {
        carry += static_cast<unsigned>(digits[n] - '0') * factor;
        out.insert(out.begin(), static_cast<char>('0' + carry % 10));
        carry /= 10;
    }
    for (; carry != 0; carry /= 10) out.insert(out.begin(), static_cast<char>('0' + carry % 10));
    return out;
}

std::string stripped(std::string digits) {
    const size_t first = digits.find_first_not_of('0');
    return first == digits.npos ? "0" : digits.substr(first);
}

// The decimal digits of a plain number in any base; nothing for other texts.
std::optional<std::string> digits_of(std::string_view text) {
    unsigned base = 10;
    if (text.size() > 2 && text[0] == '0') {
        if (text[1] == 'x' || text[1] == 'X') base = 16;
        if (text[1] == 'b' || text[1] == 'B') base = 2;
        if (base != 10) text.remove_prefix(2);
    }
    constexpr size_t enough = 200;
    if (text.empty() || text.size() > enough) return std::nullopt;
    std::string out = "0";
    for (char c : text) {
        const std::string_view all = "0123456789abcdef0123456789ABCDEF";
        const size_t digit = all.find(c);
        if (digit == all.npos || digit % 16 >= base) return std::nullopt;
        out = times(out, base, static_cast<unsigned>(digit % 16));
    }
    return stripped(out);
}

bool at_most(const std::string &digits, const std::string &most) {
    return digits.size() != most.size() ? digits.size() < most.size() : digits <= most;
}

void check_plain(std::string_view text, unsigned bits, std::string_view field) {
    const auto value = unless_refused([&] { return tool::parse_value(text, bits); });
    if (const auto digits = digits_of(text)) {
        std::string most = "1";
        for (unsigned n = 1; n < bits; ++n) most = times(most, 2, 1);
        require(value.has_value() == at_most(*digits, most),
                "a number is accepted when it fits, and not otherwise");
        require(!value || tool::decimal(*value) == *digits, "a number is what its digits say");
    }
    if (!value) return;
    require(*value <= tool::all_ones(bits), "a value fits its field");
    require(tool::parse_value(tool::word_of(*value, field, bits), bits) == *value,
            "a word is read back as its value");
}

void check_masked(std::string_view text, unsigned bits, std::string_view field) {
    const auto v = unless_refused([&] { return tool::parse_masked(text, bits); });
    if (!v) return;
    require(v->mask <= tool::all_ones(bits), "a mask fits its field");
    require((v->value & ~v->mask) == 0, "a value lies within its mask");
    require(v->masked || v->mask == tool::all_ones(bits), "without a mask all bits count");
    const std::string word = tool::masked_word_of(v->value, v->mask, field, bits);
    const tool::written_value back = tool::parse_masked(word, bits);
    require(back.value == v->value && back.mask == v->mask, "a masked word is read back");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    input in(data, size);
    const unsigned bits = 1 + in.take<uint8_t>() % 128;
    const std::string_view field = fields[in.take<uint8_t>() % fields.size()];
    const std::string_view text = in.rest();
    check_plain(text, bits, field);
    check_masked(text, bits, field);
    unless_refused([&] { return tool::prefix_length(text, bits); });
    return 0;
}
