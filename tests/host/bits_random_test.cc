// The same routines against a reference that moves one bit at a time.

#include "sdk/p4pd_utils.h"

#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace {

using bits = std::vector<bool>;
using bytes = std::vector<uint8_t>;

bits top_first(const bytes &from) {
    bits out;
    for (uint8_t byte : from)
        for (int i = 7; i >= 0; --i) out.push_back((byte >> i & 1) != 0);
    return out;
}
bits low_first(const bytes &from) {
    bits out;
    for (uint8_t byte : from)
        for (int i = 0; i < 8; ++i) out.push_back((byte >> i & 1) != 0);
    return out;
}

class RandomRuns : public ::testing::Test {
  protected:
    std::mt19937 random{20240611};

    size_t below(size_t bound) {
        return std::uniform_int_distribution<size_t>(0, bound - 1)(random);
    }
    bytes filled(size_t count) {
        bytes out(count);
        for (uint8_t &byte : out) byte = static_cast<uint8_t>(below(256));
        return out;
    }
    // Exactly as many heap bytes as the run ends in, so that a sanitizer sees any byte beyond it.
    bytes ending_with(size_t last_bit) { return filled((last_bit + 7) / 8); }
};

constexpr int rounds = 20000;

TEST_F(RandomRuns, RecordToImage) {
    for (int round = 0; round < rounds; ++round) {
        const size_t width = below(130), to = below(200), from = below(20);
        bytes image = ending_with(to + width), record = ending_with(from + width);
        bits expected = top_first(image);
        const bits source = low_first(record);
        for (size_t i = 0; i < width; ++i) expected[to + width - 1 - i] = source[from + i];
        p4pd_utils_copy_le_src_to_be_dest(image.data(), static_cast<uint16_t>(to), record.data(),
                                          static_cast<uint16_t>(from),
                                          static_cast<uint16_t>(width));
        ASSERT_EQ(top_first(image), expected) << "to " << to << " from " << from << " " << width;
    }
}

TEST_F(RandomRuns, ImageToRecord) {
    for (int round = 0; round < rounds; ++round) {
        const size_t width = below(130), from = below(200), to = below(20);
        bytes image = ending_with(from + width), record = ending_with(to + width);
        bytes again = record;
        bits expected = low_first(record);
        const bits source = top_first(image);
        for (size_t i = 0; i < width; ++i) expected[to + i] = source[from + width - 1 - i];
        p4pd_utils_copy_be_src_to_le_dest(record.data(), static_cast<uint16_t>(to), image.data(),
                                          static_cast<uint16_t>(from),
                                          static_cast<uint16_t>(width));
        ASSERT_EQ(low_first(record), expected) << "to " << to << " from " << from << " " << width;
        p4pd_utils_copy_be_adata_to_le_dest(again.data(), static_cast<uint16_t>(to), image.data(),
                                            static_cast<uint16_t>(from),
                                            static_cast<uint16_t>(width));
        ASSERT_EQ(again, record);
    }
}

TEST_F(RandomRuns, ByteToImage) {
    for (int round = 0; round < rounds; ++round) {
        const size_t start = below(8), width = 1 + below(start + 1), to = below(60);
        bytes image = ending_with(to + width), source = filled(1);
        bytes expected_image = image;
        if (width == 1) {
            const bool set = (source[0] >> start & 1) != 0;
            uint8_t &byte = expected_image[to / 8];
            byte = static_cast<uint8_t>((byte & ~(1u << to % 8)) | unsigned{set} << to % 8);
        } else {
            bits expected = top_first(image);
            for (size_t i = 0; i < width; ++i)
                expected[to + i] = (source[0] >> (start - i) & 1) != 0;
            expected_image.assign(image.size(), 0);
            for (size_t i = 0; i < expected.size(); ++i)
                if (expected[i]) expected_image[i / 8] |= static_cast<uint8_t>(0x80 >> i % 8);
        }
        p4pd_utils_copy_into_hwentry(image.data(), static_cast<uint16_t>(to), source.data(),
                                     static_cast<uint16_t>(start), static_cast<uint16_t>(width));
        ASSERT_EQ(image, expected_image) << "to " << to << " from " << start << " " << width;
    }
}

TEST_F(RandomRuns, HashRow) {
    for (int round = 0; round < 2000; ++round) {
        const bool counted = below(2) != 0;
        const size_t before = below(40), gap = below(9), key = 1 + below(200), after = below(200);
        const size_t start = before + gap, shift = counted ? 8 : 0;
        bytes key_image = ending_with(key), before_image = ending_with(before),
              after_image = ending_with(after);
        const bits key_bits = top_first(key_image), before_bits = top_first(before_image),
                   after_bits = top_first(after_image);
        bits expected(1024 * 8);
        if (counted) expected[2] = true;  // 0x20
        for (size_t i = 0; i < before; ++i) expected[shift + i] = before_bits[i];
        for (size_t i = 0; i < key; ++i) expected[shift + start + i] = key_bits[i];
        for (size_t i = 0; i < after; ++i) expected[shift + start + key + i] = after_bits[i];
        bytes entry(1024);
        uint16_t offset = 1;
        const uint16_t length = p4pd_utils_hash_table_entry_prepare(
            entry.data(), counted ? 0x20 : 0xff, static_cast<uint16_t>(start), key_image.data(),
            static_cast<uint16_t>(key), static_cast<uint16_t>(before + after), before_image.data(),
            static_cast<uint16_t>(before), after_image.data(), static_cast<uint16_t>(after),
            &offset);
        ASSERT_EQ(top_first(entry), expected);
        ASSERT_EQ(length, shift + start + key + after);
        ASSERT_EQ(offset, 0);
    }
}

}  // namespace
