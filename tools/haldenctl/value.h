#pragma once

// Field values as network engineers write them, and back.
//
//     1500   0x5dc   0b101   1_000_000             any field that is wide enough
//     true   false                                 one bit
//     02:00:5e:10:00:01   02-00-5E-10-00-01        48 bits
//     192.0.2.1                                    32 bits, or the low ones of 128
//     2001:db8::1                                  128 bits
//     0x10&&&0xf0   10.0.0.0/8   *                 ternary keys: value and mask
//
// A value is a number of up to 128 bits; in records it stands little-endian.

#include <cstdint>
#include <string>
#include <string_view>

namespace halden::tool {

__extension__ typedef unsigned __int128 wide;

// What a field of this name and width is usually written as.
enum class notation : uint8_t { number, mac, ipv4, ipv6 };
notation notation_of(std::string_view field, unsigned bits);

struct written_value {
    wide value = 0;
    wide mask = 0;  // all ones when none was written
    bool masked = false;
};

constexpr wide all_ones(unsigned bits) { return bits >= 128 ? ~wide{0} : (wide{1} << bits) - 1; }

// Throw failure: what was given and what is allowed, for a field of `bits` bits.
wide parse_value(std::string_view text, unsigned bits);
// With a mask or without; a value with bits outside its mask is refused, as it matches nothing.
written_value parse_masked(std::string_view text, unsigned bits);

// Behind the slash of a prefix: decimal digits, 0 to `most`.
unsigned prefix_length(std::string_view text, unsigned most);

std::string decimal(wide value);
std::string hexadecimal(wide value);  // with 0x, without leading zeros
// In the notation of the field: numbers from 10 on carry their hexadecimal form beside them.
std::string shown(wide value, std::string_view field, unsigned bits);
// One word that parse_value reads back as the same value.
std::string word_of(wide value, std::string_view field, unsigned bits);
std::string masked_word_of(wide value, wide mask, std::string_view field, unsigned bits);

// "0 to 4095 (0xfff)"
std::string range_of(unsigned bits);

// Bytes as hex digits; throws failure for odd lengths and other characters. Spaces, colons and a
// leading 0x are allowed.
std::string hex_of(const uint8_t *bytes, size_t count);
std::string bytes_of_hex(std::string_view text);

}  // namespace halden::tool
