// The grammar of values: what is read as which number, and what is refused with which words.

#include "tools/haldenctl/value.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tools/haldenctl/failure.h"

namespace halden::tool {
namespace {

using namespace std::string_view_literals;
using testing::HasSubstr;

constexpr wide number(uint64_t high, uint64_t low) { return wide{high} << 64 | low; }

template <class Read>
std::string refusal(Read read) {
    try {
        read();
    } catch (const failure &error) {
        return error.what();
    }
    return "nothing was refused";
}

struct accepted {
    std::string_view text;
    unsigned bits;
    wide value;
};

class Value : public testing::TestWithParam<accepted> {};

TEST_P(Value, IsReadAs) {
    const auto &[text, bits, value] = GetParam();
    EXPECT_TRUE(parse_value(text, bits) == value) << text << ": " << decimal(value);
}

constexpr accepted numbers[] = {
    {"0", 1, 0},
    {"1", 1, 1},
    {"true", 1, 1},
    {"false", 1, 0},
    {"2047", 11, 2047},
    {"00002047", 11, 2047},
    {"0x7ff", 11, 2047},
    {"0X7Ff", 11, 2047},
    {"0b101", 3, 5},
    {"0B101", 3, 5},
    {"1_000_000", 20, 1000000},
    {"0xde_ad", 16, 0xdead},
    {"0b1_0", 2, 2},
    {"4294967295", 32, 4294967295u},
    {"18446744073709551615", 64, ~uint64_t{0}},
    {"18446744073709551616", 65, number(1, 0)},
    {"340282366920938463463374607431768211455", 128, ~wide{0}},
    {"0xffffffffffffffffffffffffffffffff", 128, ~wide{0}},
    {"0x00000000000000000000000000000000000001", 1, 1},
};
INSTANTIATE_TEST_SUITE_P(Numbers, Value, testing::ValuesIn(numbers));

constexpr accepted addresses[] = {
    {"02:00:5e:10:00:01", 48, 0x02005e100001},
    {"02-00-5E-10-00-01", 48, 0x02005e100001},
    {"FF:FF:FF:FF:FF:FF", 48, 0xffffffffffff},
    {"192.0.2.1", 32, 0xc0000201},
    {"0.0.0.0", 32, 0},
    {"255.255.255.255", 32, 0xffffffff},
    {"192.0.2.1", 128, 0xc0000201},
    {"::", 128, 0},
    {"::1", 128, 1},
    {"2001:db8::1", 128, number(0x20010db800000000, 1)},
    {"2001:DB8::1", 128, number(0x20010db800000000, 1)},
    {"1:2:3:4:5:6:7:8", 128, number(0x0001000200030004, 0x0005000600070008)},
    {"::ffff:192.0.2.1", 128, 0xffffc0000201},
};
INSTANTIATE_TEST_SUITE_P(Addresses, Value, testing::ValuesIn(addresses));

struct refused {
    std::string_view text;
    unsigned bits;
    std::string_view words;
};

class NoValue : public testing::TestWithParam<refused> {};

TEST_P(NoValue, IsRefusedWith) {
    const auto &[text, bits, words] = GetParam();
    EXPECT_EQ(refusal([&, text = text, bits = bits] { parse_value(text, bits); }), words);
}

constexpr refused no_numbers[] = {
    {"", 11, "no value was given; allowed: 0 to 2047 (0x7ff)"},
    {" ", 11, "' ' is no value; allowed: 0 to 2047 (0x7ff)"},
    {" 1", 11, "' 1' is no value; allowed: 0 to 2047 (0x7ff)"},
    {"1 ", 11, "'1 ' is no value; allowed: 0 to 2047 (0x7ff)"},
    {"1\n", 11, "'1\\x0a' is no value; allowed: 0 to 2047 (0x7ff)"},
    {"1\0"sv, 11, "'1\\x00' is no value; allowed: 0 to 2047 (0x7ff)"},
    {"\0"sv, 1, "'\\x00' is no value; allowed: 0 to 1"},
    {"\xff", 3, "'\\xff' is no value; allowed: 0 to 7"},
    {"-1", 11, "'-1' is no value; allowed: 0 to 2047 (0x7ff)"},
    {"+1", 11, "'+1' is no value; allowed: 0 to 2047 (0x7ff)"},
    {"1.5", 11, "'1.5' is no value; allowed: 0 to 2047 (0x7ff)"},
    {"1e3", 11, "'1e3' is no value; allowed: 0 to 2047 (0x7ff)"},
    {"0x", 11, "'0x' is no value; allowed: 0 to 2047 (0x7ff)"},
    {"0X", 11, "'0X' is no value; allowed: 0 to 2047 (0x7ff)"},
    {"0xg", 11, "'0xg' is no value; allowed: 0 to 2047 (0x7ff)"},
    {"x10", 11, "'x10' is no value; allowed: 0 to 2047 (0x7ff)"},
    {"0x0x1", 11, "'0x0x1' is no value; allowed: 0 to 2047 (0x7ff)"},
    {"0b", 11, "'0b' is no value; allowed: 0 to 2047 (0x7ff)"},
    {"0b2", 11, "'0b2' is no value; allowed: 0 to 2047 (0x7ff)"},
    {"1f", 11, "'1f' is no value; allowed: 0 to 2047 (0x7ff)"},
    {"_", 11, "'_' is no value; allowed: 0 to 2047 (0x7ff)"},
    {"_1", 11, "'_1' is no value; allowed: 0 to 2047 (0x7ff)"},
    {"1_", 11, "'1_' is no value; allowed: 0 to 2047 (0x7ff)"},
    {"1__0", 11, "'1__0' is no value; allowed: 0 to 2047 (0x7ff)"},
    {"0x_1", 11, "'0x_1' is no value; allowed: 0 to 2047 (0x7ff)"},
    {"True", 1, "'True' is no value; allowed: 0 to 1"},
    {"null", 1, "'null' is no value; allowed: 0 to 1"},
    {"true", 2, "'true' is for one-bit fields; allowed: 0 to 3"},
    {"false", 32, "'false' is for one-bit fields; allowed: 0 to 4294967295 (0xffffffff)"},
    {"2", 1, "2 does not fit 1 bit; allowed: 0 to 1"},
    {"2048", 11, "2048 does not fit 11 bits; allowed: 0 to 2047 (0x7ff)"},
    {"0x800", 11, "0x800 does not fit 11 bits; allowed: 0 to 2047 (0x7ff)"},
    {"4294967297", 11, "4294967297 does not fit 11 bits; allowed: 0 to 2047 (0x7ff)"},
    {"340282366920938463463374607431768211456", 128,
     "340282366920938463463374607431768211456 does not fit 128 bits; allowed: 0 to "
     "0xffffffffffffffffffffffffffffffff"},
    {"340282366920938463463374607431768211457", 1,
     "340282366920938463463374607431768211457 does not fit 1 bit; allowed: 0 to 1"},
    {"*", 4, "'*' has a mask, and this field takes none; allowed: 0 to 15 (0xf)"},
    {"&&&", 4, "'&&&' has a mask, and this field takes none; allowed: 0 to 15 (0xf)"},
    {"1&&&1", 4, "'1&&&1' has a mask, and this field takes none; allowed: 0 to 15 (0xf)"},
    {"1/4", 4, "'1/4' is no value; allowed: 0 to 15 (0xf)"},
};
INSTANTIATE_TEST_SUITE_P(Numbers, NoValue, testing::ValuesIn(no_numbers));

constexpr refused no_addresses[] = {
    {"02:00:5e:10:00", 48,
     "'02:00:5e:10:00' is no MAC address; allowed: six pairs of hex digits, as 02:00:5e:10:00:01"},
    {"02:00:5e:10:00:01:02", 48,
     "'02:00:5e:10:00:01:02' is no MAC address; allowed: six pairs of hex digits, as "
     "02:00:5e:10:00:01"},
    {"02:00:5e:10:00:0g", 48,
     "'02:00:5e:10:00:0g' is no MAC address; allowed: six pairs of hex digits, as "
     "02:00:5e:10:00:01"},
    {"02:00-5e:10-00:01", 48,
     "'02:00-5e:10-00:01' is no MAC address; allowed: six pairs of hex digits, as "
     "02:00:5e:10:00:01"},
    {"02:00:5e:10:00:01", 32,
     "the MAC address 02:00:5e:10:00:01 does not fit 32 bits; allowed: 0 to 4294967295 "
     "(0xffffffff)"},
    {"0200.5e10.0001", 48,
     "'0200.5e10.0001' is no value; allowed: 0 to 281474976710655 (0xffffffffffff), or a MAC "
     "address"},
    {"10.0.0.1", 11, "the IPv4 address 10.0.0.1 does not fit 11 bits; allowed: 0 to 2047 (0x7ff)"},
    {"10.0.0.256", 32,
     "'10.0.0.256' is no IPv4 address; allowed: four numbers from 0 to 255, as 192.0.2.1"},
    {"10.0.0", 32,
     "'10.0.0' is no IPv4 address; allowed: four numbers from 0 to 255, as 192.0.2.1"},
    {"10.0.0.1.1", 32,
     "'10.0.0.1.1' is no IPv4 address; allowed: four numbers from 0 to 255, as 192.0.2.1"},
    {"10.0.0.01", 32,
     "'10.0.0.01' is no IPv4 address; allowed: four numbers from 0 to 255, as 192.0.2.1"},
    {"10.0.0.1 ", 32,
     "'10.0.0.1 ' is no IPv4 address; allowed: four numbers from 0 to 255, as 192.0.2.1"},
    {"10.0.0.1\0.2"sv, 32,
     "'10.0.0.1\\x00.2' is no IPv4 address; allowed: four numbers from 0 to 255, as 192.0.2.1"},
    {"10.0.0.0/8", 32,
     "'10.0.0.0/8' is no IPv4 address; allowed: four numbers from 0 to 255, as 192.0.2.1"},
    {"1::2::3", 128, "'1::2::3' is no IPv6 address; allowed: groups of hex digits, as 2001:db8::1"},
    {"1:2:3:4:5:6:7:8:9", 128,
     "'1:2:3:4:5:6:7:8:9' is no IPv6 address; allowed: groups of hex digits, as 2001:db8::1"},
    {"12345::", 128, "'12345::' is no IPv6 address; allowed: groups of hex digits, as 2001:db8::1"},
    {":::", 128, "':::' is no IPv6 address; allowed: groups of hex digits, as 2001:db8::1"},
    {":", 128, "':' is no IPv6 address; allowed: groups of hex digits, as 2001:db8::1"},
    {"fe80::1%eth0", 128,
     "'fe80::1%eth0' is no IPv6 address; allowed: groups of hex digits, as 2001:db8::1"},
    {"::1\0"sv, 128,
     "'::1\\x00' is no IPv6 address; allowed: groups of hex digits, as 2001:db8::1"},
    {"::1", 32, "the IPv6 address ::1 does not fit 32 bits; allowed: 0 to 4294967295 (0xffffffff)"},
    {"1:2", 11, "'1:2' is no value; allowed: 0 to 2047 (0x7ff)"},
    {"everywhere", 32,
     "'everywhere' is no value; allowed: 0 to 4294967295 (0xffffffff), or an IPv4 address"},
};
INSTANTIATE_TEST_SUITE_P(Addresses, NoValue, testing::ValuesIn(no_addresses));

TEST(NoValue, OfAnyLengthIsQuotedShort) {
    const std::string digits(100000, '9');
    EXPECT_EQ(refusal([&] { parse_value(digits, 16); }),
              std::string(60, '9') + "... does not fit 16 bits; allowed: 0 to 65535 (0xffff)");
    EXPECT_LT(refusal([&] { parse_value(std::string(100000, 'z'), 16); }).size(), 130u);
    EXPECT_LT(refusal([&] { parse_masked(digits + "&&&" + digits, 16); }).size(), 130u);
    EXPECT_LT(refusal([&] { parse_masked("1.0.0.0/" + digits, 32); }).size(), 130u);
}

struct masked_case {
    std::string_view text;
    unsigned bits;
    wide value, mask;
    bool masked;
};

class Masked : public testing::TestWithParam<masked_case> {};

TEST_P(Masked, IsReadAs) {
    const masked_case &c = GetParam();
    const written_value read = parse_masked(c.text, c.bits);
    EXPECT_TRUE(read.value == c.value) << c.text << ": " << hexadecimal(read.value);
    EXPECT_TRUE(read.mask == c.mask) << c.text << ": " << hexadecimal(read.mask);
    EXPECT_EQ(read.masked, c.masked) << c.text;
}

constexpr masked_case masks[] = {
    {"*", 11, 0, 0, true},
    {"5", 11, 5, 0x7ff, false},
    {"0x10&&&0xf0", 8, 0x10, 0xf0, true},
    {"0&&&0", 8, 0, 0, true},
    {"1&&&0b1", 8, 1, 1, true},
    {"10.0.0.0/8", 32, 0x0a000000, 0xff000000, true},
    {"10.0.0.1/32", 32, 0x0a000001, 0xffffffff, true},
    {"0.0.0.0/0", 32, 0, 0, true},
    {"10.0.0.0&&&255.0.0.0", 32, 0x0a000000, 0xff000000, true},
    {"0xa0/3", 8, 0xa0, 0xe0, true},
    {"02:00:5e:00:00:00/24", 48, 0x02005e000000, 0xffffff000000, true},
    {"02:00:00:00:00:01&&&ff:00:00:00:00:01", 48, 0x020000000001, 0xff0000000001, true},
    {"2001:db8::/32", 128, number(0x20010db800000000, 0), number(0xffffffff00000000, 0), true},
    {"::/0", 128, 0, 0, true},
    {"::1/128", 128, 1, ~wide{0}, true},
    {"10.1.0.0/16", 128, 0x0a010000, number(~uint64_t{0}, 0xffffffffffff0000), true},
};
INSTANTIATE_TEST_SUITE_P(Masks, Masked, testing::ValuesIn(masks));

class NoMasked : public testing::TestWithParam<refused> {};

TEST_P(NoMasked, IsRefusedWith) {
    const auto &[text, bits, words] = GetParam();
    EXPECT_EQ(refusal([&, text = text, bits = bits] { parse_masked(text, bits); }), words);
}

constexpr refused no_masks[] = {
    {"", 4, "no value was given; allowed: 0 to 15 (0xf)"},
    {"&&&", 4, "no value was given; allowed: 0 to 15 (0xf)"},
    {"1&&&", 4, "no value was given; allowed: 0 to 15 (0xf)"},
    {"&&&1", 4, "no value was given; allowed: 0 to 15 (0xf)"},
    {"&&&&&&", 4, "'&&&' is no value; allowed: 0 to 15 (0xf)"},
    {"1&&1", 4, "'1&&1' is no value; allowed: 0 to 15 (0xf)"},
    {"1&&&1&&&1", 4, "'1&&&1' is no value; allowed: 0 to 15 (0xf)"},
    {"**", 4, "'**' is no value; allowed: 0 to 15 (0xf)"},
    {"*&&&1", 4, "'*' is no value; allowed: 0 to 15 (0xf)"},
    {"1&&&*", 4, "'*' is no value; allowed: 0 to 15 (0xf)"},
    {"1&&&16", 4, "16 does not fit 4 bits; allowed: 0 to 15 (0xf)"},
    {"16&&&15", 4, "16 does not fit 4 bits; allowed: 0 to 15 (0xf)"},
    {"3&&&2", 4,
     "'3&&&2' has value bits outside its mask, so nothing would match; allowed: bits of 0x2"},
    {"10.0.0.1/8", 32,
     "'10.0.0.1/8' has value bits outside its mask, so nothing would match; allowed: bits of "
     "0xff000000"},
    {"/8", 32, "no value was given; allowed: 0 to 4294967295 (0xffffffff)"},
    {"10.0.0.0/", 32, "/ is no prefix length; allowed: 0 to 32"},
    {"10.0.0.0/33", 32, "/33 is no prefix length; allowed: 0 to 32"},
    {"10.0.0.0/33", 128, "/33 is no prefix length; allowed: 0 to 32"},
    {"10.0.0.0/-1", 32, "/-1 is no prefix length; allowed: 0 to 32"},
    {"10.0.0.0/ 8", 32, "/ 8 is no prefix length; allowed: 0 to 32"},
    {"10.0.0.0/8 ", 32, "/8  is no prefix length; allowed: 0 to 32"},
    {"10.0.0.0/0x8", 32, "/0x8 is no prefix length; allowed: 0 to 32"},
    {"10.0.0.0/8/8", 32, "/8/8 is no prefix length; allowed: 0 to 32"},
    {"10.0.0.0/4294967304", 32, "/4294967304 is no prefix length; allowed: 0 to 32"},
    {"10.0.0.0/255.0.0.0", 32, "/255.0.0.0 is no prefix length; allowed: 0 to 32"},
    {"2001:db8::/129", 128, "/129 is no prefix length; allowed: 0 to 128"},
    {"1/5", 4, "/5 is no prefix length; allowed: 0 to 4"},
};
INSTANTIATE_TEST_SUITE_P(Masks, NoMasked, testing::ValuesIn(no_masks));

struct printed {
    wide value;
    std::string_view field;
    unsigned bits;
    std::string_view word, shown;
};

class Printed : public testing::TestWithParam<printed> {};

TEST_P(Printed, InTheNotationOfItsField) {
    const printed &c = GetParam();
    EXPECT_EQ(word_of(c.value, c.field, c.bits), c.word);
    EXPECT_EQ(shown(c.value, c.field, c.bits), c.shown);
    EXPECT_TRUE(parse_value(c.word, c.bits) == c.value);
}

constexpr printed prints[] = {
    {9, "src_lport", 11, "9", "9"},
    {10, "src_lport", 11, "10", "10 (0xa)"},
    {~uint64_t{0}, "count", 64, "18446744073709551615",
     "18446744073709551615 (0xffffffffffffffff)"},
    {number(1, 0), "spare", 80, "0x10000000000000000", "0x10000000000000000"},
    {0x02005e100001, "dmac", 48, "02:00:5e:10:00:01", "02:00:5e:10:00:01"},
    {0, "dmac", 48, "00:00:00:00:00:00", "00:00:00:00:00:00"},
    {0xc0000201, "ipv4_1_dstAddr", 32, "192.0.2.1", "192.0.2.1"},
    {0xc0000201, "timestamp", 32, "3221225985", "3221225985 (0xc0000201)"},
    {0xc0000201, "dst", 128, "192.0.2.1", "192.0.2.1"},
    {0, "dst", 128, "::", "::"},
    {1, "dst", 128, "::1", "::1"},
    {number(0x20010db800000000, 1), "dst", 128, "2001:db8::1", "2001:db8::1"},
};
INSTANTIATE_TEST_SUITE_P(Notations, Printed, testing::ValuesIn(prints));

struct printed_mask {
    wide value, mask;
    std::string_view field;
    unsigned bits;
    std::string_view word;
};

class PrintedMask : public testing::TestWithParam<printed_mask> {};

TEST_P(PrintedMask, IsReadBack) {
    const printed_mask &c = GetParam();
    EXPECT_EQ(masked_word_of(c.value, c.mask, c.field, c.bits), c.word);
    const written_value read = parse_masked(c.word, c.bits);
    EXPECT_TRUE(read.value == c.value && read.mask == c.mask) << c.word;
}

constexpr printed_mask printed_masks[] = {
    {0, 0, "lif_id", 11, "*"},
    {5, 0x7ff, "lif_id", 11, "5"},
    {0x10, 0xf0, "lif_id", 11, "0x10&&&0xf0"},
    {0x0a000000, 0xff000000, "ipv4_1_dstAddr", 32, "10.0.0.0/8"},
    {0x0a000001, 0xff000001, "ipv4_1_dstAddr", 32, "0xa000001&&&0xff000001"},
    {0, 0xff000000, "ipv4_1_dstAddr", 32, "0.0.0.0/8"},
    {0x02005e000000, 0xffffff000000, "dmac", 48, "02:00:5e:00:00:00&&&ff:ff:ff:00:00:00"},
    {number(0x20010db800000000, 0), number(0xffffffff00000000, 0), "dst", 128, "2001:db8::/32"},
    {0x0a010000, number(~uint64_t{0}, 0xffffffffffff0000), "dst", 128, "10.1.0.0/16"},
    {0x0a010000, 0xffff0000, "dst", 128, "0xa010000&&&0xffff0000"},
    {0, number(0xffff000000000000, 0), "dst", 128, "::/16"},
};
INSTANTIATE_TEST_SUITE_P(Notations, PrintedMask, testing::ValuesIn(printed_masks));

struct hex_case {
    std::string_view text, bytes;
};

TEST(Hex, IsRead) {
    for (const auto &[text, bytes] : std::initializer_list<hex_case>{{"", ""},
                                                                     {"0x", ""},
                                                                     {"00", "\0"sv},
                                                                     {"0x01fF", "\x01\xff"},
                                                                     {"01 02:03\n04\t", "\1\2\3\4"},
                                                                     {"0 1", "\1"}})
        EXPECT_EQ(bytes_of_hex(text), bytes) << text;
}

TEST(Hex, IsRefused) {
    const auto hex = [](std::string_view text) { return refusal([&] { bytes_of_hex(text); }); };
    EXPECT_EQ(hex("0"), "an odd number of hex digits was given (1); allowed: two for every byte");
    EXPECT_EQ(hex("0x0x00"), "'x' is no hex digit; allowed: 0 to 9, a to f, spaces and colons");
    EXPECT_EQ(hex("00\xff"), "'\\xff' is no hex digit; allowed: 0 to 9, a to f, spaces and colons");
    EXPECT_EQ(hex("0\0"sv), "'\\x00' is no hex digit; allowed: 0 to 9, a to f, spaces and colons");
    EXPECT_THAT(hex("\xc3" + std::string(100000, '\x80')), HasSubstr("..."));
}

}  // namespace
}  // namespace halden::tool
