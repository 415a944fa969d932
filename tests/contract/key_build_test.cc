// Building of hardware keys: the copies, in order, and the images they make.

#include "tests/contract/key_build.h"

#include <algorithm>
#include <array>

#include "p4pd.h"
#include "tests/contract/named.h"
#include "tests/support/recording_host.h"

namespace halden::test {
namespace {

void *unreadable() { return reinterpret_cast<void *>(uintptr_t{8}); }
uint8_t *unreadable_image() { return static_cast<uint8_t *>(unreadable()); }

using key_bytes = std::array<uint8_t, 96>;

class KeyBuildBase : public testing::Test {
  protected:
    KeyBuildBase() { begin(); }
    ~KeyBuildBase() override { host_.reset(); }

    void begin() {
        host_.reset();
        host_.name_buffer("software key", software_key_.data() + 1, 95);
        host_.name_buffer("key", key_.data(), key_.size());
        host_.name_buffer("key mask", key_mask_.data(), key_mask_.size());
        key_ = key_mask_ = {};
    }

    // The images come from copies as a host makes them: from the top bit of a byte on, but a copy
    // of one bit counts from the low end of its byte.
    void copy_as_a_host() {
        host_.on_call = [](const call &made) {
            ASSERT_EQ(made.name, key_copy_call);
            auto *image =
                const_cast<uint8_t *>(static_cast<const uint8_t *>(made.arguments[0].pointer));
            const uint64_t bit = made.arguments[1].number, from = made.arguments[3].number,
                           width = made.arguments[4].number;
            for (uint64_t i = 0; i < width; ++i) {
                const uint64_t to = bit + i;
                const auto place = static_cast<uint8_t>(1 << (width == 1 ? to % 8 : 7 - to % 8));
                const bool set = (made.arguments[2].bytes[0] >> (from - i) & 1) != 0;
                uint8_t &byte = image[to / 8];
                byte = static_cast<uint8_t>(set ? byte | place : byte & ~place);
            }
        };
    }

    // The records start one byte into their arrays, at an address that suits no wider field.
    p4pd_error_t build(uint32_t id) {
        return p4pd_hwkey_hwmask_build(id, software_key_.data() + 1, software_mask_.data() + 1,
                                       key_.data(), key_mask_.data());
    }

    recording_host &host_ = recording_host::get();
    key_bytes software_key_{}, software_mask_{};
    key_bytes key_{}, key_mask_{};
};

class KeyBuild : public KeyBuildBase, public testing::WithParamInterface<key_table> {};

// Records and images of exactly the key's size will do: the recording host touches what it copies.
TEST_P(KeyBuild, NeedsNoMoreThanItsRecordsAndImages) {
    const key_table &t = GetParam();
    std::vector<uint8_t> key(t.record_bytes, 0xff), mask(t.record_bytes, 0xff);
    std::vector<uint8_t> key_image(t.image_bytes), mask_image(t.image_bytes);
    EXPECT_EQ(
        p4pd_hwkey_hwmask_build(t.id, key.data(), mask.data(), key_image.data(), mask_image.data()),
        0);
    for (const call &made : host_.calls()) {
        const uint8_t *image = static_cast<const uint8_t *>(made.arguments[0].pointer);
        EXPECT_TRUE(image == key_image.data() || image == mask_image.data());
        EXPECT_LE(made.arguments[1].number + made.arguments[4].number, t.image_bytes * 8u);
    }
}

INSTANTIATE_TEST_SUITE_P(Exact, KeyBuild, testing::ValuesIn(hash_keys), table_name);
INSTANTIATE_TEST_SUITE_P(Ternary, KeyBuild, testing::ValuesIn(ternary_keys), table_name);

// --- Exact keys ----------------------------------------------------------------------------------

using ExactKey = KeyBuild;

// Only the key image is written; the masks are not even looked at.
TEST_P(ExactKey, MakesExactlyTheseCalls) {
    EXPECT_EQ(p4pd_hwkey_hwmask_build(GetParam().id, software_key_.data() + 1, unreadable(),
                                      key_.data(), unreadable_image()),
              0);
    EXPECT_TRUE(key_calls_are(GetParam().id, {software_key_.data() + 1}));
    begin();
    EXPECT_EQ(p4pd_hwkey_hwmask_build(GetParam().id, software_key_.data() + 1, nullptr, key_.data(),
                                      nullptr),
              0);
    EXPECT_TRUE(key_calls_are(GetParam().id, {software_key_.data() + 1}));
}

INSTANTIATE_TEST_SUITE_P(Tables, ExactKey, testing::ValuesIn(hash_keys), table_name);

// --- Ternary keys --------------------------------------------------------------------------------

using TernaryKey = KeyBuild;

TEST_P(TernaryKey, MakesExactlyTheseCalls) {
    struct pattern {
        unsigned key, key_step, mask, mask_step;
    };
    for (const pattern &p : {pattern{3, 37, 29, 91},
                             {0xff, 0, 0, 0},
                             {0xff, 0, 0xff, 0},
                             {0, 0, 0xff, 0},
                             {0xaa, 0, 0xcc, 0},
                             {1, 0, 0xfe, 0}}) {
        begin();
        for (unsigned i = 0; i < software_key_.size(); ++i) {
            software_key_[i] = static_cast<uint8_t>(p.key + i * p.key_step);
            software_mask_[i] = static_cast<uint8_t>(p.mask + i * p.mask_step);
        }
        const key_bytes key = software_key_, mask = software_mask_;
        EXPECT_EQ(build(GetParam().id), 0);
        EXPECT_TRUE(key_calls_are(GetParam().id, {key.data() + 1, mask.data() + 1}));
        EXPECT_EQ(software_key_, key) << "the key record is the caller's";
        EXPECT_EQ(software_mask_, mask) << "the mask record is the caller's";
    }
}

// Whatever the key says, a bit whose mask bit is 0 is 0 in both images.
TEST_P(TernaryKey, AKeyBitWhoseMaskBitIs0Is0InBothImages) {
    copy_as_a_host();
    software_key_.fill(0xff);
    EXPECT_EQ(build(GetParam().id), 0);
    EXPECT_EQ(key_, key_bytes{});
    EXPECT_EQ(key_mask_, key_bytes{});
}

// No image bit is set in both, and with all mask bits set each key bit is set in one.
TEST_P(TernaryKey, AMatchedBitIsSetInOneImage) {
    copy_as_a_host();
    software_mask_.fill(0xff);
    for (size_t i = 0; i < software_key_.size(); ++i)
        software_key_[i] = static_cast<uint8_t>(0x5a + 77 * i);
    EXPECT_EQ(build(GetParam().id), 0);
    const key_bytes mixed = key_, mixed_mask = key_mask_;
    begin();
    copy_as_a_host();
    software_key_.fill(0xff);
    EXPECT_EQ(build(GetParam().id), 0);
    EXPECT_EQ(key_mask_, key_bytes{});
    for (size_t i = 0; i < key_.size(); ++i) {
        EXPECT_EQ(mixed[i] & mixed_mask[i], 0);
        EXPECT_EQ(mixed[i] | mixed_mask[i], key_[i]);
    }
}

INSTANTIATE_TEST_SUITE_P(Tables, TernaryKey, testing::ValuesIn(ternary_keys), table_name);

// --- Cases of their own --------------------------------------------------------------------------

using KeyBuildCases = KeyBuildBase;

TEST_F(KeyBuildCases, AFirstKeyField1AndASecond0OfChecksumSetBit7OfTheKeyAndBit6OfTheMask) {
    copy_as_a_host();
    std::fill_n(software_mask_.begin() + 1, 8, uint8_t{1});
    software_key_[1] = 1;
    for (size_t i = 3; i <= 8; ++i) software_key_[i] = 1;
    EXPECT_EQ(build(15), 0);
    EXPECT_EQ(key_[0], 0xbf);
    EXPECT_EQ(key_mask_[0], 0x40);
    const std::vector<call> calls = host_.calls();
    ASSERT_EQ(calls.size(), 16u);
    EXPECT_EQ(calls[0].arguments[1].number, 7u);
    EXPECT_EQ(calls[0].arguments[2].bytes[0], 1);
    EXPECT_EQ(calls[3].arguments[1].number, 6u);
    EXPECT_EQ(calls[3].arguments[2].bytes[0], 1);
}

// A flag is one bit: a key or mask byte without its lowest bit says nothing.
TEST_F(KeyBuildCases, OnlyTheLowestBitOfAFlagAndItsMaskCounts) {
    copy_as_a_host();
    for (uint32_t id : {12u, 13u, 15u}) {
        software_key_.fill(0xff);
        software_mask_.fill(0xfe);
        EXPECT_EQ(build(id), 0);
        EXPECT_EQ(key_, key_bytes{}) << id;
        EXPECT_EQ(key_mask_, key_bytes{}) << id;
    }
}

// A 32-bit field that starts at an odd byte is read without a fault.
TEST_F(KeyBuildCases, AnAddressRightAfterAOneByteFieldIsReadWhereItStands) {
    copy_as_a_host();
    for (size_t at : {size_t{0}, size_t{1}, size_t{2}, size_t{3}}) {
        key_ = {};
        software_key_ = {};
        const std::array<uint8_t, 5> record{0x77, 0x04, 0x03, 0x02, 0x01};
        std::ranges::copy(record, software_key_.begin() + static_cast<ptrdiff_t>(at));
        EXPECT_EQ(
            p4pd_hwkey_hwmask_build(4, software_key_.data() + at, nullptr, key_.data(), nullptr),
            0);
        EXPECT_TRUE(std::ranges::equal(std::array<uint8_t, 5>{0x77, 0x01, 0x02, 0x03, 0x04},
                                       std::span(key_).first(5)));
    }
}

// A table and its overflow share the key's layout; only the mask
// differs.
TEST_F(KeyBuildCases, TablesThatShareTheirLayoutBuildTheSameKey) {
    struct pair {
        uint32_t one, other;
    };
    software_mask_.fill(0xff);
    for (size_t i = 0; i < software_key_.size(); ++i)
        software_key_[i] = static_cast<uint8_t>(0x5a + 77 * i);
    for (auto [one, other] : {pair{1, 2}, {4, 10}, {5, 11}, {6, 14}, {3, 7}}) {
        begin();
        copy_as_a_host();
        EXPECT_EQ(build(one), 0);
        const key_bytes first = key_;
        begin();
        copy_as_a_host();
        EXPECT_EQ(build(other), 0);
        EXPECT_EQ(key_, first) << one << " and " << other;
        EXPECT_EQ(key_mask_ == key_bytes{}, other == 2) << "only the overflow has a mask";
    }
}

TEST_F(KeyBuildCases, FlowLeavesBits472To543AloneAndPutsByte76AtBit544) {
    copy_as_a_host();
    for (uint32_t id : {1u, 2u}) {
        begin();
        copy_as_a_host();
        key_.fill(0xa5);
        software_key_.fill(0);
        software_key_[1 + 76] = 0xc3;
        EXPECT_EQ(build(id), 0);
        for (size_t byte = 0; byte < 59; ++byte) EXPECT_EQ(key_[byte], 0) << byte;
        for (size_t byte = 59; byte < 68; ++byte) EXPECT_EQ(key_[byte], 0xa5) << byte;
        EXPECT_EQ(key_[68], 0xc3);
        for (size_t byte = 69; byte < 84; ++byte) EXPECT_EQ(key_[byte], 0) << byte;
        for (size_t byte = 84; byte < 96; ++byte) EXPECT_EQ(key_[byte], 0xa5) << byte;
    }
}

// The hardware's VNI has 24 bits.
TEST_F(KeyBuildCases, FlowDropsTheTopByteOfTheVni) {
    copy_as_a_host();
    software_key_[1 + 22] = 0xff;
    EXPECT_EQ(build(2), 0);
    EXPECT_EQ(key_, key_bytes{});
}

// Key bits above a field's width in the hardware are dropped.
TEST_F(KeyBuildCases, BitsBeyondAFieldsWidthAreDropped) {
    copy_as_a_host();
    software_key_[1 + 25] = 0xe0;  // the flow key's reserved field has 5 bits
    software_key_[1 + 27] = 0xf8;  // and its port 11
    EXPECT_EQ(build(2), 0);
    EXPECT_EQ(key_, key_bytes{});
    software_key_ = {};
    software_key_[1 + 1] = 0xf0;  // both fields of vlan_mapping have 12
    software_key_[1 + 3] = 0xf0;
    EXPECT_EQ(build(3), 0);
    EXPECT_EQ(key_, key_bytes{});
    software_key_ = {};
    software_key_[1 + 7] = 0xf0;  // so does the VRF of registered_mac
    EXPECT_EQ(build(6), 0);
    EXPECT_EQ(key_, key_bytes{});
}

TEST_F(KeyBuildCases, TheHighNibblesOfVlanMappingShareTheLastByte) {
    copy_as_a_host();
    software_key_ = {0, 0xbc, 0x0a, 0xef, 0x0d};
    EXPECT_EQ(build(3), 0);
    EXPECT_EQ(key_[0], 0xbc);
    EXPECT_EQ(key_[1], 0xef);
    EXPECT_EQ(key_[2], 0xad) << "the first field's nibble above the second's";
}

TEST_F(KeyBuildCases, TheVrfOfRegisteredMacEndsInTheTopOfTheLastByte) {
    copy_as_a_host();
    software_key_ = {0, 1, 2, 3, 4, 5, 6, 0xbc, 0x0a};
    EXPECT_EQ(build(6), 0);
    EXPECT_TRUE(std::ranges::equal(std::array<uint8_t, 8>{6, 5, 4, 3, 2, 1, 0xbc, 0xa0},
                                   std::span(key_).first(8)));
}

// lif_mapping has nothing to build, which is success; for nat_rewrite and validate_packet it is
// failure. All images stay zero.
TEST_F(KeyBuildCases, LifMappingBuildsNothingAndNatRewriteAndValidatePacketFail) {
    EXPECT_EQ(build(16), 0);
    EXPECT_EQ(build(33), -1);
    EXPECT_EQ(build(41), -1);
    EXPECT_EQ(key_, key_bytes{});
    EXPECT_EQ(key_mask_, key_bytes{});
    EXPECT_TRUE(calls_are({}));
}

TEST_F(KeyBuildCases, Ids16To32SucceedAnd33To48FailWithoutLookingAtAnything) {
    for (uint32_t id = 16; id <= 48; ++id) {
        EXPECT_EQ(p4pd_hwkey_hwmask_build(id, unreadable(), unreadable(), unreadable_image(),
                                          unreadable_image()),
                  id <= 32 ? 0 : -1)
            << id;
        EXPECT_EQ(p4pd_hwkey_hwmask_build(id, nullptr, nullptr, nullptr, nullptr),
                  id <= 32 ? 0 : -1)
            << id;
    }
    EXPECT_TRUE(calls_are({}));
}

TEST_F(KeyBuildCases, UnknownIdsFailAndWriteNothing) {
    for (uint32_t id : {0u, 49u, 50u, 256u + 3, 0x80000003u, 0xffffffffu})
        EXPECT_EQ(p4pd_hwkey_hwmask_build(id, unreadable(), unreadable(), unreadable_image(),
                                          unreadable_image()),
                  -1)
            << id;
    EXPECT_TRUE(calls_are({}));
}

}  // namespace
}  // namespace halden::test
