// The flow hash: the CRC of the hardware image of an entry's key, bit by bit and in literal values.

#include "ftl/flow_hash.h"
#include "p4gen/p4/src/crc32.h"
#include "tests/flow/entry_model.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

// The flow table keeps a thread's entry for hashing for good, also when the thread ends.
extern "C" const char *__lsan_default_suppressions();
extern "C" const char *__lsan_default_suppressions() { return "leak:flow_hash::genhash_\n"; }

namespace halden::test {
namespace {

using sdk::table::flow_hash;
using sdk::table::sdk_table_api_params_t;

// Body bit 1023 is the top bit of the image's first byte, body bit 0 the lowest of its last one.
uint32_t hash_bit_by_bit(const entry_bits &entry) {
    static const entry_bits key = mask_of(part::key);
    uint32_t crc = 0;
    for (size_t n = 1024; n-- > 0;) crc = crc_step(crc, key[n] && entry[n]);
    return crc;
}

uint32_t hash_of(const entry_bits &bits) {
    flow_hash table;
    flow_hash_entry_t entry;
    set_bits(entry, bits);
    sdk_table_api_params_t params{};
    params.entry = &entry;
    EXPECT_EQ(table.genhash_(&params), 0u);
    EXPECT_TRUE(params.hash_valid);
    return params.hash_value;
}

// --- The CRC routines, the portable and the accelerated ones by the same cases

class Crc : public testing::TestWithParam<const flow_crc::routines *> {};

TEST_P(Crc, OfTheDigitsOneToNineIs0x89A1897F) {
    const uint8_t digits[] = {'1', '2', '3', '4', '5', '6', '7', '8', '9'};
    EXPECT_EQ(GetParam()->crc(digits, sizeof digits), 0x89A1897Fu);
    EXPECT_EQ(crc_bit_by_bit(digits, sizeof digits), 0x89A1897Fu);
}

TEST_P(Crc, NoBytesGiveTheInitialValueZero) {
    const uint8_t nothing = 0xff;
    EXPECT_EQ(GetParam()->crc(&nothing, 0), 0u);
}

TEST_P(Crc, EqualsTheBitwiseOneForEveryLengthAndAlignment) {
    std::mt19937_64 random(3);
    std::vector<uint8_t> data(400);
    for (uint8_t &byte : data) byte = static_cast<uint8_t>(random());
    for (size_t at = 0; at < 16; ++at)
        for (size_t bytes = 0; bytes <= 384; ++bytes)
            ASSERT_EQ(GetParam()->crc(data.data() + at, bytes),
                      crc_bit_by_bit(data.data() + at, bytes))
                << at << " " << bytes;
}

TEST_P(Crc, PacksTheKeyAsTheReversedBodyWithAllElseZero) {
    std::mt19937_64 random(4);
    for (unsigned round = 0; round < 20000; ++round) {
        const entry_bits bits = random_bits(random);
        flow_hash_entry_t entry;
        set_bits(entry, bits);
        uint8_t image[128], expected[128] = {};
        std::fill(std::begin(image), std::end(image), uint8_t{0xa5});
        const entry_bits key = bits & mask_of(part::key);
        for (size_t n = 0; n < 1024; ++n)
            expected[127 - n / 8] |= static_cast<uint8_t>(unsigned{key[n]} << n % 8);
        ASSERT_EQ(GetParam()->pack_key(image, entry.body()), crc_bit_by_bit(expected, 128));
        ASSERT_TRUE(std::equal(std::begin(image), std::end(image), expected)) << round;
        ASSERT_EQ(bits_of(entry), bits);
    }
}

std::vector<const flow_crc::routines *> every_routine() {
    std::vector<const flow_crc::routines *> all = {&flow_crc::portable};
    if (flow_crc::accelerated() != nullptr) all.push_back(flow_crc::accelerated());
    return all;
}

INSTANTIATE_TEST_SUITE_P(Routines, Crc, testing::ValuesIn(every_routine()),
                         [](const auto &tested) { return std::string(tested.param->name); });

// Run once more on an emulated processor without carry-less multiplication, where the library
// itself has nothing but the portable routine.
TEST(CrcChoice, TheEmulatedProcessorHasThePortableRoutineOnly) {
    if (std::getenv("HALDEN_OLD_PROCESSOR") == nullptr) GTEST_SKIP() << "not emulated";
    EXPECT_EQ(flow_crc::accelerated(), nullptr);
    EXPECT_EQ(&flow_crc::best(), &flow_crc::portable);
}
TEST(CrcChoice, AProcessorThatHasTheFastRoutineUsesIt) {
    if (flow_crc::accelerated() == nullptr) GTEST_SKIP() << "it has none";
    EXPECT_EQ(&flow_crc::best(), flow_crc::accelerated());
}

// --- genhash_

TEST(Genhash, EqualsTheBitwiseHashOf100000RandomEntries) {
    flow_hash table;
    std::mt19937_64 random(5);
    for (unsigned round = 0; round < 100000; ++round) {
        const entry_bits bits = random_bits(random);
        flow_hash_entry_t entry;
        set_bits(entry, bits);
        entry.valid = random();
        const uint64_t valid = entry.valid;
        sdk_table_api_params_t params{};
        params.entry = &entry;
        params.hash_value = static_cast<uint32_t>(random());
        ASSERT_EQ(table.genhash_(&params), 0u);
        ASSERT_TRUE(params.hash_valid);
        ASSERT_EQ(params.hash_value, hash_bit_by_bit(bits)) << round;
        // The caller's entry is never changed.
        ASSERT_EQ(params.entry, &entry);
        ASSERT_EQ(bits_of(entry), bits);
        ASSERT_EQ(entry.valid, valid);
    }
}

struct bit_hashes {
    const char *field;
    uint32_t lowest;   // hash of the key in which the field's lowest bit alone is 1
    uint32_t highest;  // and its highest
};

TEST(Genhash, OfOneKeyBitInLiteralValues) {
    constexpr bit_hashes vectors[] = {
        {"sip", 0x8c3828a8, 0xf171cb53},   {"dip", 0x7c7d4156, 0x813b81d0},
        {"sport", 0x06b61e17, 0x2e3cbfb5}, {"dport", 0x5c797f6a, 0x11b63c26},
        {"smac", 0x236c784c, 0x35804666},  {"dmac", 0x6b008ccc, 0xfc0ed371},
        {"ktype", 0xfcdcbb55, 0xb267176d}, {"port_id", 0x600f336d, 0x87d89532},
        {"rsvd", 0x0b7037d3, 0xb7037d30},  {"outer_flow_id", 0x6ac7e7d7, 0xf5c22d0e},
        {"vni", 0xef4547ab, 0x7e8e3ea3},   {"vlan", 0xfd1c7d46, 0x750b7d69},
        {"proto", 0xea16fad2, 0xfc0c1f8c}, {"spare", 0xfcd922af, 0xccafffcc},
    };
    for (const bit_hashes &v : vectors) {
        SCOPED_TRACE(v.field);
        const place &p = place_of(std::string("metadata_flow_key_") + v.field);
        entry_bits bits;
        bits.set(p.first);
        EXPECT_EQ(hash_of(bits), v.lowest);
        bits.reset();
        bits.set(p.first + p.width - 1);
        EXPECT_EQ(hash_of(bits), v.highest);
    }
}

TEST(Genhash, OfWholeEntriesInLiteralValues) {
    entry_bits bits;
    EXPECT_EQ(hash_of(bits), 0u);
    EXPECT_EQ(hash_of(bits.set()), 0x79570040u);

    flow_hash_entry_t counting;
    for (unsigned i = 0; i < 128; ++i) counting.body()[i] = static_cast<uint8_t>(i);
    EXPECT_EQ(hash_of(bits_of(counting)), 0x062c9e02u);

    // 10.0.0.1:4791 to 10.0.0.2:443, TCP, VLAN 100; 00:11:22:33:44:55 to 66:77:88:99:aa:bb.
    bits = with({}, "metadata_flow_key_sip", 0x0100000a);
    bits = with(bits, "metadata_flow_key_dip", 0x0200000a);
    bits = with(bits, "metadata_flow_key_sport", 4791);
    bits = with(bits, "metadata_flow_key_dport", 443);
    bits = with(bits, "metadata_flow_key_proto", 6);
    bits = with(bits, "metadata_flow_key_vlan", 100);
    bits = with(bits, "metadata_flow_key_smac", 0x001122334455);
    bits = with(bits, "metadata_flow_key_dmac", 0x66778899aabb);
    EXPECT_EQ(hash_of(bits), 0x569722f7u);
}

// Two entries that differ only in flow_idx, in any hint slot or in entry_valid hash alike; entries
// that differ in any key bit, metadata_flow_key_rsvd and metadata_flow_key_spare included, hash
// apart.
TEST(Genhash, DependsOnEveryKeyBitAndOnNoOther) {
    std::mt19937_64 random(6);
    for (unsigned round = 0; round < 4; ++round) {
        const entry_bits bits = random_bits(random);
        const uint32_t hash = hash_of(bits);
        unsigned alike = 0, apart = 0;
        for (const place &p : places) {
            for (unsigned n = p.first; n < p.first + p.width; ++n) {
                entry_bits other = bits;
                const bool same = hash_of(other.flip(n)) == hash;
                ASSERT_EQ(same, p.of != part::key) << p.name << " bit " << n;
                ++(same ? alike : apart);
            }
        }
        EXPECT_EQ(apart, 600u);
        EXPECT_EQ(alike, 424u);
    }
}

// A call with the hash-valid flag set returns 0 and leaves the hash value as given.
TEST(Genhash, LeavesAValidHashAlone) {
    flow_hash table;
    std::mt19937_64 random(7);
    flow_hash_entry_t entry;
    const entry_bits bits = random_bits(random);
    set_bits(entry, bits);
    sdk_table_api_params_t params{};
    params.entry = &entry;
    for (uint32_t given : {0u, 1u, 0x89A1897Fu, 0xffffffffu}) {
        params.hash_valid = true;
        params.hash_value = given;
        EXPECT_EQ(table.genhash_(&params), 0u);
        EXPECT_EQ(params.hash_value, given);
        EXPECT_TRUE(params.hash_valid);
    }
    EXPECT_EQ(bits_of(entry), bits);
    params.hash_valid = false;
    EXPECT_EQ(table.genhash_(&params), 0u);
    EXPECT_EQ(params.hash_value, hash_bit_by_bit(bits));
}

TEST(Genhash, TouchesOnlyTheHashOfTheParameters) {
    flow_hash table;
    flow_hash_entry_t entry;
    uint8_t key = 0, mask = 0, data = 0;
    sdk_table_api_params_t params{};
    params.entry = &entry;
    params.key = &key;
    params.mask = &mask;
    params.data = &data;
    params.action_id = 9;
    params.handle = sdk::table::handle_t(77);
    params.from_hardware = true;
    params.hash_value = 5;
    EXPECT_EQ(table.genhash_(&params), 0u);
    EXPECT_EQ(params.entry, &entry);
    EXPECT_EQ(params.key, &key);
    EXPECT_EQ(params.mask, &mask);
    EXPECT_EQ(params.data, &data);
    EXPECT_EQ(params.action_id, 9);
    EXPECT_EQ(params.handle.tou64(), 77u);
    EXPECT_TRUE(params.from_hardware);
    EXPECT_EQ(params.hash_value, 0u);
}

// The scratch entry still holds the reversed image of the call before: nothing of it may show.
TEST(Genhash, TheSameKeyTwiceAndTwoKeysInterleavedHashAsAlone) {
    std::mt19937_64 random(8);
    const entry_bits a = random_bits(random), b = random_bits(random);
    const uint32_t hash_a = hash_bit_by_bit(a), hash_b = hash_bit_by_bit(b);
    ASSERT_NE(hash_a, hash_b);
    for (unsigned round = 0; round < 3; ++round) {
        EXPECT_EQ(hash_of(a), hash_a);
        EXPECT_EQ(hash_of(a), hash_a);
        EXPECT_EQ(hash_of(b), hash_b);
        EXPECT_EQ(hash_of(a), hash_a);
        EXPECT_EQ(hash_of(b), hash_b);
    }
}

TEST(Genhash, SeveralThreadsAtOnceHashAsOne) {
    std::vector<unsigned> wrong(4, 0), done(4, 0);
    std::vector<std::thread> threads;
    for (unsigned t = 0; t < 4; ++t) {
        threads.emplace_back([t, &wrong, &done] {
            std::mt19937_64 random(100 + t);
            for (; done[t] < 5000; ++done[t]) {
                const entry_bits bits = random_bits(random);
                if (hash_of(bits) != hash_bit_by_bit(bits)) ++wrong[t];
            }
        });
    }
    for (std::thread &thread : threads) thread.join();
    EXPECT_EQ(wrong, std::vector<unsigned>(4, 0));
    EXPECT_EQ(done, std::vector<unsigned>(4, 5000));
}

// --- Entries that report another size

class sized_entry : public flow_hash_entry_t {
  public:
    explicit sized_entry(uint32_t size) : size_(size) {}
    uint32_t entry_size() override { return size_; }

  private:
    uint32_t size_;
};

// In a thread of its own: the first call of a thread sizes its scratch entry.
uint32_t hash_with_size(const entry_bits &bits, uint32_t size) {
    uint32_t hash = 0;
    std::thread([&] {
        sized_entry entry(size);
        set_bits(entry, bits);
        flow_hash table;
        sdk_table_api_params_t params{};
        params.entry = &entry;
        EXPECT_EQ(table.genhash_(&params), 0u);
        EXPECT_TRUE(params.hash_valid);
        hash = params.hash_value;
    }).join();
    return hash;
}

// The bytes hashed are the size rounded up to 64; the bytes reversed are the size modulo 256.
TEST(Genhash, AnotherEntrySizeIsHashedAsItIsReported) {
    struct {
        uint32_t size, reversed, hashed;
    } constexpr sizes[] = {{0, 0, 0},       {1, 1, 64},      {63, 63, 64},    {64, 64, 64},
                           {65, 65, 128},   {100, 100, 128}, {127, 127, 128}, {128, 128, 128},
                           {129, 129, 192}, {200, 200, 256}, {255, 255, 256}, {256, 0, 256},
                           {300, 44, 320}};
    std::mt19937_64 random(9);
    const entry_bits bits = random_bits(random);
    for (const auto &s : sizes) {
        SCOPED_TRACE(s.size);
        std::vector<uint8_t> image(512);
        const entry_bits key = bits & mask_of(part::key);
        for (size_t n = 0; n < 1024; ++n)
            image[n / 8] |= static_cast<uint8_t>(unsigned{key[n]} << n % 8);
        std::reverse(image.begin(), image.begin() + s.reversed);
        EXPECT_EQ(hash_with_size(bits, s.size), crc_bit_by_bit(image.data(), s.hashed));
    }
}

}  // namespace
}  // namespace halden::test
