#include "tools/haldenctl/value.h"

#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

#include "tools/haldenctl/failure.h"

namespace halden::tool {

namespace {

constexpr unsigned mac_bits = 48, ipv4_bits = 32, ipv6_bits = 128;

std::string quoted(std::string_view text) { return "'" + quotable(text) + "'"; }

int digit_of(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return 16;
}

// Bytes of the character of UTF-8 in front of `text`.
size_t character_size(std::string_view text) {
    size_t size = 1;
    while (size < text.size() && (text[size] & 0xc0) == 0x80) ++size;
    return size;
}

// Nothing when `text` is no number of the base. A '_' may stand between two digits.
std::optional<wide> number_of(std::string_view text, unsigned base, bool &too_wide) {
    wide value = 0;
    bool digit_before = false;
    for (char c : text) {
        if (c == '_' && digit_before) {
            digit_before = false;
            continue;
        }
        const unsigned digit = static_cast<unsigned>(digit_of(c));
        if (digit >= base) return std::nullopt;
        if (value > (~wide{0} - digit) / base) too_wide = true;
        value = value * base + digit;
        digit_before = true;
    }
    if (!digit_before) return std::nullopt;
    return value;
}

std::optional<wide> mac_of(std::string_view text) {
    if (text.size() != 17) return std::nullopt;
    wide value = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        if (i % 3 == 2) {
            if ((text[i] != ':' && text[i] != '-') || text[i] != text[2]) return std::nullopt;
            continue;
        }
        const int digit = digit_of(text[i]);
        if (digit > 15) return std::nullopt;
        value = value << 4 | static_cast<unsigned>(digit);
    }
    return value;
}

template <size_t N>
std::optional<wide> address_of(int family, std::string_view text) {
    std::array<uint8_t, N> bytes = {};
    if (text.find('\0') != text.npos) return std::nullopt;  // where inet_pton would stop
    if (inet_pton(family, std::string(text).c_str(), bytes.data()) != 1) return std::nullopt;
    wide value = 0;
    for (uint8_t byte : bytes) value = value << 8 | byte;
    return value;
}

template <size_t N>
std::string address_text(int family, wide value) {
    std::array<uint8_t, N> bytes = {};
    for (size_t i = 0; i < N; ++i) bytes[N - 1 - i] = static_cast<uint8_t>(value >> (8 * i));
    std::array<char, INET6_ADDRSTRLEN> out = {};
    inet_ntop(family, bytes.data(), out.data(), out.size());
    return out.data();
}

wide fitting(std::string_view text, wide value, unsigned bits, bool too_wide = false) {
    if (too_wide || value > all_ones(bits))
        throw failure(quotable(text) + " does not fit " + std::to_string(bits) +
                      (bits == 1 ? " bit; allowed: " : " bits; allowed: ") + range_of(bits));
    return value;
}

failure no_value(std::string_view text, unsigned bits) {
    return failure(quoted(text) + " is no value; allowed: " + range_of(bits) +
                   (bits == mac_bits    ? ", or a MAC address"
                    : bits == ipv4_bits ? ", or an IPv4 address"
                    : bits == ipv6_bits ? ", or an IP address"
                                        : ""));
}

// "0x10", "10.0.0.0", ... without a mask.
wide plain(std::string_view text, unsigned bits) {
    if (text.empty()) throw failure("no value was given; allowed: " + range_of(bits));
    if (text == "true" || text == "false") {
        if (bits != 1)
            throw failure(quoted(text) + " is for one-bit fields; allowed: " + range_of(bits));
        return text == "true" ? 1 : 0;
    }
    bool too_wide = false;
    const std::string_view digits = text.size() > 2 ? text.substr(2) : std::string_view();
    const bool prefixed = text.size() > 2 && text[0] == '0';
    std::optional<wide> value;
    if (prefixed && (text[1] == 'x' || text[1] == 'X'))
        value = number_of(digits, 16, too_wide);
    else if (prefixed && (text[1] == 'b' || text[1] == 'B'))
        value = number_of(digits, 2, too_wide);
    else
        value = number_of(text, 10, too_wide);
    if (value) return fitting(text, *value, bits, too_wide);

    if (const auto mac = mac_of(text)) {
        if (bits != mac_bits)
            throw failure("the MAC address " + quotable(text) + " does not fit " +
                          std::to_string(bits) + " bits; allowed: " + range_of(bits));
        return *mac;
    }
    // What looks like an address is called a wrong one only where an address may stand.
    const bool for_ip = bits == ipv4_bits || bits == ipv6_bits;
    if (text.find('.') != text.npos && text.find(':') == text.npos) {
        const auto address = address_of<4>(AF_INET, text);
        if (!address && !for_ip) throw no_value(text, bits);
        if (!address)
            throw failure(quoted(text) +
                          " is no IPv4 address; allowed: four numbers from 0 to 255, as 192.0.2.1");
        if (!for_ip)
            throw failure("the IPv4 address " + quotable(text) + " does not fit " +
                          std::to_string(bits) + " bits; allowed: " + range_of(bits));
        return *address;
    }
    if (text.find(':') != text.npos) {
        if (bits == mac_bits)
            throw failure(
                quoted(text) +
                " is no MAC address; allowed: six pairs of hex digits, as 02:00:5e:10:00:01");
        const auto address = address_of<16>(AF_INET6, text);
        if (!address && !for_ip) throw no_value(text, bits);
        if (!address)
            throw failure(quoted(text) +
                          " is no IPv6 address; allowed: groups of hex digits, as 2001:db8::1");
        if (bits != ipv6_bits)
            throw failure("the IPv6 address " + quotable(text) + " does not fit " +
                          std::to_string(bits) + " bits; allowed: " + range_of(bits));
        return *address;
    }
    throw no_value(text, bits);
}

// The mask of `length` leading bits.
wide prefix_mask(std::string_view value, std::string_view length, unsigned bits) {
    // An IPv4 address in a wider field stands in its low 32 bits, and so do its prefixes.
    const bool v4 = value.find('.') != value.npos && value.find(':') == value.npos;
    const unsigned most = v4 ? ipv4_bits : bits;
    const unsigned leading = prefix_length(length, most);
    const wide low = leading == 0 ? 0 : all_ones(leading) << (most - leading);
    return low | (all_ones(bits) & ~all_ones(most));
}

}  // namespace

unsigned prefix_length(std::string_view text, unsigned most) {
    unsigned value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value > most)
        throw failure("/" + quotable(text) + " is no prefix length; allowed: 0 to " +
                      std::to_string(most));
    return value;
}

notation notation_of(std::string_view field, unsigned bits) {
    const auto has = [&](std::string_view part) { return field.find(part) != field.npos; };
    if (bits == mac_bits) return notation::mac;
    if (bits == ipv4_bits && has("ipv4")) return notation::ipv4;
    if (bits == ipv6_bits && !has("spare")) return notation::ipv6;
    return notation::number;
}

wide parse_value(std::string_view text, unsigned bits) {
    if (text.find("&&&") != text.npos || text == "*")
        throw failure(quoted(text) +
                      " has a mask, and this field takes none; allowed: " + range_of(bits));
    return plain(text, bits);
}

written_value parse_masked(std::string_view text, unsigned bits) {
    if (text == "*") return {0, 0, true};
    written_value out{0, all_ones(bits), false};
    std::string_view value = text;
    if (const size_t at = text.find("&&&"); at != text.npos) {
        value = text.substr(0, at);
        out.mask = plain(text.substr(at + 3), bits);
        out.masked = true;
    } else if (const size_t slash = text.find('/'); slash != text.npos) {
        value = text.substr(0, slash);
        out.mask = prefix_mask(value, text.substr(slash + 1), bits);
        out.masked = true;
    }
    out.value = plain(value, bits);
    if ((out.value & ~out.mask) != 0)
        throw failure(quoted(text) + " has value bits outside its mask, so nothing would match; " +
                      "allowed: bits of " + hexadecimal(out.mask));
    return out;
}

std::string decimal(wide value) {
    std::string out;
    do {
        out += static_cast<char>('0' + static_cast<int>(value % 10));
        value /= 10;
    } while (value != 0);
    std::reverse(out.begin(), out.end());
    return out;
}

std::string hexadecimal(wide value) {
    std::string out;
    do {
        out += "0123456789abcdef"[static_cast<size_t>(value & 15)];
        value >>= 4;
    } while (value != 0);
    std::reverse(out.begin(), out.end());
    return "0x" + out;
}

std::string word_of(wide value, std::string_view field, unsigned bits) {
    switch (notation_of(field, bits)) {
        case notation::mac: {
            std::string out;
            for (int byte = 5; byte >= 0; --byte) {
                const auto b = static_cast<uint8_t>(value >> (8 * byte));
                if (!out.empty()) out += ':';
                out += hex_of(&b, 1);
            }
            return out;
        }
        case notation::ipv4:
            return address_text<4>(AF_INET, value);
        case notation::ipv6:
            // IPv4 addresses stand in the low bits; none begins with 0.
            if (value >= wide{1} << 24 && value < wide{1} << 32)
                return address_text<4>(AF_INET, value);
            return address_text<16>(AF_INET6, value);
        case notation::number:
            break;
    }
    return bits > 64 ? hexadecimal(value) : decimal(value);
}

std::string shown(wide value, std::string_view field, unsigned bits) {
    std::string word = word_of(value, field, bits);
    if (notation_of(field, bits) != notation::number || bits > 64 || value < 10) return word;
    return word + " (" + hexadecimal(value) + ")";
}

std::string masked_word_of(wide value, wide mask, std::string_view field, unsigned bits) {
    if (mask == all_ones(bits)) return word_of(value, field, bits);
    if (mask == 0) return "*";
    // A mask of leading ones, under an address.
    const notation how = notation_of(field, bits);
    if (how == notation::ipv4 || how == notation::ipv6) {
        const std::string word = word_of(value, field, bits);
        const bool v4 = word.find(':') == word.npos;
        const wide clear = all_ones(bits) & ~mask;
        if ((clear & (clear + 1)) == 0 && (!v4 || clear < wide{1} << 32)) {
            unsigned leading = v4 ? ipv4_bits : bits;
            for (wide rest = clear; rest != 0; rest >>= 1) --leading;
            return word + "/" + std::to_string(leading);
        }
    }
    if (how == notation::mac)
        return word_of(value, field, bits) + "&&&" + word_of(mask, field, bits);
    return hexadecimal(value) + "&&&" + hexadecimal(mask);
}

std::string range_of(unsigned bits) {
    const wide most = all_ones(bits);
    if (bits > 64) return "0 to " + hexadecimal(most);
    return "0 to " + decimal(most) + (most >= 10 ? " (" + hexadecimal(most) + ")" : "");
}

std::string hex_of(const uint8_t *bytes, size_t count) {
    std::string out;
    out.reserve(2 * count);
    for (size_t i = 0; i < count; ++i) {
        out += "0123456789abcdef"[bytes[i] >> 4];
        out += "0123456789abcdef"[bytes[i] & 15];
    }
    return out;
}

std::string bytes_of_hex(std::string_view text) {
    if (text.starts_with("0x") || text.starts_with("0X")) text.remove_prefix(2);
    std::string out;
    int high = -1;
    size_t digits = 0;
    for (size_t at = 0; at < text.size(); ++at) {
        const char c = text[at];
        if (c == ' ' || c == ':' || c == '\n' || c == '\t') continue;
        const int digit = digit_of(c);
        if (digit > 15)
            throw failure(quoted(text.substr(at, character_size(text.substr(at)))) +
                          " is no hex digit; allowed: 0 to 9, a to f, spaces and colons");
        ++digits;
        if (high < 0) {
            high = digit;
        } else {
            out += static_cast<char>(high << 4 | digit);
            high = -1;
        }
    }
    if (high >= 0)
        throw failure("an odd number of hex digits was given (" + std::to_string(digits) +
                      "); allowed: two for every byte");
    return out;
}

}  // namespace halden::tool
