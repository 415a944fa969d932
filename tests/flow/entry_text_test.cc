// The text of a flow entry, and what comes of it in a buffer of any size.

#include "tests/flow/entry_model.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace halden::test {
namespace {

struct text {
    std::string key, data;
};

// Bytes in their stored order.
std::string sixteen_bytes(const entry_bits &bits, const char *field) {
    constexpr char digits[] = "0123456789abcdef";
    const unsigned first = place_of(field).first;
    std::string out;
    for (unsigned byte = 0; byte < 16; ++byte) {
        unsigned value = 0;
        for (unsigned n = 0; n < 8; ++n) value |= unsigned{bits[first + 8 * byte + n]} << n;
        if (byte != 0) out += ':';
        out += digits[value / 16];
        out += digits[value % 16];
    }
    return out;
}

text text_of(const entry_bits &bits) {
    text out;
    out.key = "key: metadata_flow_key_spare:" + sixteen_bytes(bits, "metadata_flow_key_spare");
    for (const char *field : {"proto", "vlan", "vni", "outer_flow_id", "rsvd", "port_id", "ktype",
                              "dmac", "smac", "dport", "sport"}) {
        const std::string name = std::string("metadata_flow_key_") + field;
        out.key += ", " + name + ": " + std::to_string(value_of(bits, name));
    }
    out.key += ", metadata_flow_key_dip:" + sixteen_bytes(bits, "metadata_flow_key_dip");
    out.key += ", metadata_flow_key_sip:" + sixteen_bytes(bits, "metadata_flow_key_sip");
    out.data = "data: flow_idx: " + std::to_string(value_of(bits, "flow_idx"));
    for (const char *field : {"hash1", "hint1", "hash2", "hint2", "hash3", "hint3", "hash4",
                              "hint4", "hash5", "hint5", "hash6", "hint6", "hash7", "hint7",
                              "hash8", "hint8", "more_hashes", "more_hints", "entry_valid"})
        out.data += std::string(", ") + field + ": " + std::to_string(value_of(bits, field));
    return out;
}

// What a formatter leaves in `room` bytes of a buffer.
void leave(std::string &buffer, size_t at, size_t room, const std::string &text) {
    if (room == 0) return;
    const size_t kept = std::min(room - 1, text.size());
    buffer.replace(at, kept, text, 0, kept);
    buffer[at + kept] = '\0';
}

// Holds an entry's text against the model for one buffer size; what lies behind is not touched.
void expect_text(const entry_bits &bits, const text &all, size_t len) {
    flow_hash_entry_t entry;
    set_bits(entry, bits);
    entry.valid = 1;
    std::string buffer(1600, '#'), expected(1600, '#');
    ASSERT_LT(len, buffer.size());
    base_table_entry_t &base = entry;
    const int result = base.tostr(buffer.data(), static_cast<uint32_t>(len));

    const size_t key = all.key.size();
    leave(expected, 0, len, all.key);
    size_t expected_result = key;
    if (key < len) {
        leave(expected, key, len - key, ", ");
        expected_result = 2;
        if (2 < len - key) {
            leave(expected, key + 2, len - key - 2, all.data);
            expected_result = all.data.size();
        }
    }
    ASSERT_EQ(result, static_cast<int>(expected_result)) << len;
    ASSERT_EQ(buffer, expected) << len;
    ASSERT_EQ(bits_of(entry), bits);
    ASSERT_EQ(entry.valid, 1u);
}

entry_bits example() {
    entry_bits bits;
    const auto bytes = [&bits](const char *field, unsigned first_value) {
        const unsigned first = place_of(field).first;
        for (unsigned byte = 0; byte < 16; ++byte)
            for (unsigned n = 0; n < 8; ++n)
                bits[first + 8 * byte + n] = ((first_value + byte) >> n & 1) != 0;
    };
    bytes("metadata_flow_key_spare", 0xf0);
    bytes("metadata_flow_key_dip", 0x10);
    bytes("metadata_flow_key_sip", 0x00);
    const std::pair<const char *, uint64_t> values[] = {{"metadata_flow_key_proto", 17},
                                                        {"metadata_flow_key_vlan", 4095},
                                                        {"metadata_flow_key_vni", 16777215},
                                                        {"metadata_flow_key_outer_flow_id", 65535},
                                                        {"metadata_flow_key_rsvd", 31},
                                                        {"metadata_flow_key_port_id", 2047},
                                                        {"metadata_flow_key_ktype", 255},
                                                        {"metadata_flow_key_dmac", 0xffffffffffff},
                                                        {"metadata_flow_key_smac", 0x010000000000},
                                                        {"metadata_flow_key_dport", 443},
                                                        {"metadata_flow_key_sport", 4791},
                                                        {"flow_idx", 4194303},
                                                        {"hash1", 1},
                                                        {"hint1", 11},
                                                        {"hash2", 2},
                                                        {"hint2", 22},
                                                        {"hash3", 3},
                                                        {"hint3", 33},
                                                        {"hash4", 4},
                                                        {"hint4", 44},
                                                        {"hash5", 5},
                                                        {"hint5", 55},
                                                        {"hash6", 6},
                                                        {"hint6", 66},
                                                        {"hash7", 7},
                                                        {"hint7", 77},
                                                        {"hash8", 1023},
                                                        {"hint8", 2097151},
                                                        {"more_hashes", 1},
                                                        {"more_hints", 1234567},
                                                        {"entry_valid", 1}};
    for (const auto &[name, value] : values) bits = with(bits, name, value);
    return bits;
}

constexpr char example_key[] =
    "key: metadata_flow_key_spare:f0:f1:f2:f3:f4:f5:f6:f7:f8:f9:fa:fb:fc:fd:fe:ff, "
    "metadata_flow_key_proto: 17, metadata_flow_key_vlan: 4095, metadata_flow_key_vni: 16777215, "
    "metadata_flow_key_outer_flow_id: 65535, metadata_flow_key_rsvd: 31, "
    "metadata_flow_key_port_id: 2047, metadata_flow_key_ktype: 255, "
    "metadata_flow_key_dmac: 281474976710655, metadata_flow_key_smac: 1099511627776, "
    "metadata_flow_key_dport: 443, metadata_flow_key_sport: 4791, "
    "metadata_flow_key_dip:10:11:12:13:14:15:16:17:18:19:1a:1b:1c:1d:1e:1f, "
    "metadata_flow_key_sip:00:01:02:03:04:05:06:07:08:09:0a:0b:0c:0d:0e:0f";
constexpr char example_data[] =
    "data: flow_idx: 4194303, hash1: 1, hint1: 11, hash2: 2, hint2: 22, hash3: 3, hint3: 33, "
    "hash4: 4, hint4: 44, hash5: 5, hint5: 55, hash6: 6, hint6: 66, hash7: 7, hint7: 77, "
    "hash8: 1023, hint8: 2097151, more_hashes: 1, more_hints: 1234567, entry_valid: 1";

// With a large buffer the result is the length of the data part alone.
TEST(FlowHashEntryText, OfAWholeEntryLiterally) {
    flow_hash_entry_t entry;
    set_bits(entry, example());
    char buffer[2000];
    EXPECT_EQ(entry.tostr(buffer, sizeof buffer), static_cast<int>(std::strlen(example_data)));
    EXPECT_EQ(std::string(buffer), std::string(example_key) + ", " + example_data);
}

// With a buffer too small for the key part the result is the key part's untruncated length, and no
// data part is written.
TEST(FlowHashEntryText, ABufferTooSmallForTheKeyGivesTheKeysWholeLength) {
    flow_hash_entry_t entry;
    set_bits(entry, example());
    char buffer[8] = "#######";
    EXPECT_EQ(entry.tostr(buffer, 6), static_cast<int>(std::strlen(example_key)));
    EXPECT_EQ(std::string(buffer), "key: ");
    EXPECT_EQ(buffer[6], '#');
    EXPECT_EQ(entry.tostr(nullptr, 0), static_cast<int>(std::strlen(example_key)));
}

// The separator alone gives 2; a result equal to the room left counts as cut.
TEST(FlowHashEntryText, TheResultAtEachBoundary) {
    flow_hash_entry_t entry;
    set_bits(entry, example());
    const size_t key = std::strlen(example_key);
    const int data = static_cast<int>(std::strlen(example_data));
    char buffer[2000];
    const auto result = [&](size_t len) { return entry.tostr(buffer, static_cast<uint32_t>(len)); };
    EXPECT_EQ(result(key - 1), static_cast<int>(key));
    EXPECT_EQ(result(key), static_cast<int>(key));
    EXPECT_EQ(result(key + 1), 2);
    EXPECT_EQ(std::string(buffer), example_key);
    EXPECT_EQ(result(key + 2), 2);
    EXPECT_EQ(std::string(buffer), std::string(example_key) + ",");
    EXPECT_EQ(result(key + 3), data);
    EXPECT_EQ(std::string(buffer), std::string(example_key) + ", ");
    EXPECT_EQ(result(key + 4), data);
    EXPECT_EQ(std::string(buffer), std::string(example_key) + ", d");
}

TEST(FlowHashEntryText, InABufferOfEverySize) {
    std::mt19937_64 random(31);
    for (const entry_bits &bits :
         {entry_bits(), entry_bits().set(), example(), random_bits(random)}) {
        const text all = text_of(bits);
        const size_t whole = all.key.size() + 2 + all.data.size();
        for (size_t len = 0; len <= whole + 3; ++len)
            ASSERT_NO_FATAL_FAILURE(expect_text(bits, all, len));
    }
    EXPECT_EQ(text_of(example()).key, example_key);
    EXPECT_EQ(text_of(example()).data, example_data);
}

TEST(FlowHashEntryText, OfRandomEntries) {
    std::mt19937_64 random(32);
    for (unsigned round = 0; round < 2000; ++round) {
        const entry_bits bits = random_bits(random);
        ASSERT_NO_FATAL_FAILURE(expect_text(bits, text_of(bits), 1500)) << round;
    }
}

}  // namespace
}  // namespace halden::test
