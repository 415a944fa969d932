// The host's copies between records and images, case by case.

#include "sdk/p4pd_utils.h"

#include <array>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using ::testing::ElementsAre;
using bytes = std::vector<uint8_t>;

TEST(IntoHwentry, WholeByteGoesToItsByte) {
    bytes image(4);
    uint8_t source = 0xa5;
    p4pd_utils_copy_into_hwentry(image.data(), 8, &source, 7, 8);
    EXPECT_THAT(image, ElementsAre(0x00, 0xa5, 0x00, 0x00));
}

TEST(IntoHwentry, OneBitNumbersFromTheLowEndOfTheByte) {
    bytes image(3);
    uint8_t source = 0x01;
    p4pd_utils_copy_into_hwentry(image.data(), 7, &source, 0, 1);
    EXPECT_THAT(image, ElementsAre(0x80, 0x00, 0x00));
    p4pd_utils_copy_into_hwentry(image.data(), 0, &source, 0, 1);
    EXPECT_THAT(image, ElementsAre(0x81, 0x00, 0x00));
    p4pd_utils_copy_into_hwentry(image.data(), 23, &source, 0, 1);
    EXPECT_THAT(image, ElementsAre(0x81, 0x00, 0x80));
    p4pd_utils_copy_into_hwentry(image.data(), 16, &source, 0, 1);
    EXPECT_THAT(image, ElementsAre(0x81, 0x00, 0x81));
}

// The high nibble of a 12-bit field, sent as four single bits to 23, 22, 21, 20.
TEST(IntoHwentry, NibbleSentBitByBitKeepsItsOrder) {
    bytes image(3);
    uint8_t source = 0x0d;
    for (uint16_t bit = 0; bit < 4; ++bit)
        p4pd_utils_copy_into_hwentry(image.data(), static_cast<uint16_t>(23 - bit), &source,
                                     static_cast<uint16_t>(3 - bit), 1);
    EXPECT_THAT(image, ElementsAre(0x00, 0x00, 0xd0));
}

TEST(IntoHwentry, AClearBitClears) {
    bytes image(2, 0xff);
    uint8_t source = 0x00;
    p4pd_utils_copy_into_hwentry(image.data(), 9, &source, 0, 1);
    EXPECT_THAT(image, ElementsAre(0xff, 0xfd));
}

// Five bits at 192 and three at 197 share one byte: the five above the three.
TEST(IntoHwentry, NarrowRunsCountFromTheTopOfTheByte) {
    bytes image(26);
    uint8_t five = 0xf5, three = 0xfb;
    p4pd_utils_copy_into_hwentry(image.data(), 192, &five, 4, 5);
    EXPECT_EQ(image[24], 0xa8);
    p4pd_utils_copy_into_hwentry(image.data(), 197, &three, 2, 3);
    EXPECT_EQ(image[24], 0xab);
    EXPECT_EQ(image[23], 0x00);
    EXPECT_EQ(image[25], 0x00);
}

TEST(IntoHwentry, ARunMayCrossAByteBorder) {
    bytes image{0xff, 0xff, 0xff};
    uint8_t source = 0x09;
    p4pd_utils_copy_into_hwentry(image.data(), 6, &source, 3, 4);
    EXPECT_THAT(image, ElementsAre(0xfe, 0x7f, 0xff));
}

TEST(LeToBe, MostSignificantBitStandsFirst) {
    bytes image(2);
    bytes field{0x01, 0x04};  // 0x401, 11 bits
    p4pd_utils_copy_le_src_to_be_dest(image.data(), 0, field.data(), 0, 11);
    EXPECT_THAT(image, ElementsAre(0x80, 0x20));
}

// 11, 1, 1, 11 bits one behind another, as an interface row packs them.
TEST(LeToBe, FieldsFollowOneAnother) {
    bytes image(3);
    bytes lport{0xff, 0x07}, uplink{0x00}, pinned{0x01}, pinned_lport{0x55, 0x05};
    p4pd_utils_copy_le_src_to_be_dest(image.data(), 0, lport.data(), 0, 11);
    p4pd_utils_copy_le_src_to_be_dest(image.data(), 11, uplink.data(), 0, 1);
    p4pd_utils_copy_le_src_to_be_dest(image.data(), 12, pinned.data(), 0, 1);
    p4pd_utils_copy_le_src_to_be_dest(image.data(), 13, pinned_lport.data(), 0, 11);
    EXPECT_THAT(image, ElementsAre(0xff, 0xed, 0x55));
}

TEST(LeToBe, BitsAboveTheWidthAreLeftBehind) {
    bytes image{0x00, 0x0f};
    bytes field{0xff, 0xff};
    p4pd_utils_copy_le_src_to_be_dest(image.data(), 0, field.data(), 0, 12);
    EXPECT_THAT(image, ElementsAre(0xff, 0xff));
    bytes zero{0x00, 0xf0};
    p4pd_utils_copy_le_src_to_be_dest(image.data(), 0, zero.data(), 0, 12);
    EXPECT_THAT(image, ElementsAre(0x00, 0x0f));
}

TEST(LeToBe, AnAddressIsReversed) {
    bytes image(6);
    bytes mac{0x66, 0x55, 0x44, 0x33, 0x22, 0x11};
    p4pd_utils_copy_le_src_to_be_dest(image.data(), 0, mac.data(), 0, 48);
    EXPECT_THAT(image, ElementsAre(0x11, 0x22, 0x33, 0x44, 0x55, 0x66));
}

TEST(LeToBe, SourceBitsMayStartInsideTheField) {
    bytes image(1);
    bytes field{0x30, 0x02};
    p4pd_utils_copy_le_src_to_be_dest(image.data(), 0, field.data(), 4, 6);
    EXPECT_THAT(image, ElementsAre(0x8c));  // 100011
}

TEST(BeToLe, UndoesTheAddress) {
    bytes image{0x11, 0x22, 0x33, 0x44, 0x55, 0x66};
    bytes mac(6);
    p4pd_utils_copy_be_adata_to_le_dest(mac.data(), 0, image.data(), 0, 48);
    EXPECT_THAT(mac, ElementsAre(0x66, 0x55, 0x44, 0x33, 0x22, 0x11));
}

TEST(BeToLe, BitsOfTheDestinationOutsideTheRunStay) {
    bytes image{0xff, 0xed, 0x55};
    bytes lport{0xff, 0xf8}, pinned_lport{0x00, 0xf0};
    p4pd_utils_copy_be_src_to_le_dest(lport.data(), 0, image.data(), 0, 11);
    EXPECT_THAT(lport, ElementsAre(0xff, 0xff));
    p4pd_utils_copy_be_src_to_le_dest(pinned_lport.data(), 0, image.data(), 13, 11);
    EXPECT_THAT(pinned_lport, ElementsAre(0x55, 0xf5));
}

TEST(BeToLe, OneBitOfTheImageCountsFromTheTop) {
    bytes image{0x80};
    bytes flag{0x00};
    p4pd_utils_copy_be_src_to_le_dest(flag.data(), 0, image.data(), 0, 1);
    EXPECT_THAT(flag, ElementsAre(0x01));
    p4pd_utils_copy_be_src_to_le_dest(flag.data(), 0, image.data(), 7, 1);
    EXPECT_THAT(flag, ElementsAre(0x00));
}

TEST(SingleBit, ReadsWhatAOneBitCopyWrote) {
    bytes image{0x00, 0x00, 0x80};
    uint8_t field = 0x00;
    p4pd_utils_copy_single_bit(&field, 3, image.data(), 23, 1);
    EXPECT_EQ(field, 0x08);
    image[2] = 0x01;
    p4pd_utils_copy_single_bit(&field, 0, image.data(), 16, 1);
    EXPECT_EQ(field, 0x09);
    p4pd_utils_copy_single_bit(&field, 3, image.data(), 23, 1);
    EXPECT_EQ(field, 0x01);
}

TEST(Swizzle, ReversesWholeSixteenBitWords) {
    bytes buffer{1, 2, 3, 0, 9};
    p4pd_utils_swizzle_bytes(buffer.data(), 24);
    EXPECT_THAT(buffer, ElementsAre(0, 3, 2, 1, 9));
    p4pd_utils_swizzle_bytes(buffer.data(), 32);  // the rounded length undoes it
    EXPECT_THAT(buffer, ElementsAre(1, 2, 3, 0, 9));
}

TEST(Swizzle, LengthsRoundUp) {
    bytes buffer{1, 2, 3, 4};
    p4pd_utils_swizzle_bytes(buffer.data(), 0);
    EXPECT_THAT(buffer, ElementsAre(1, 2, 3, 4));
    p4pd_utils_swizzle_bytes(buffer.data(), 3);
    EXPECT_THAT(buffer, ElementsAre(2, 1, 3, 4));
    p4pd_utils_swizzle_bytes(buffer.data(), 16);
    EXPECT_THAT(buffer, ElementsAre(1, 2, 3, 4));
    p4pd_utils_swizzle_bytes(buffer.data(), 17);
    EXPECT_THAT(buffer, ElementsAre(4, 3, 2, 1));
}

TEST(CopyDeathTest, ARunOutsideItsSourceByteEndsTheProcess) {
    uint8_t image[4] = {}, source = 0;
    EXPECT_DEATH(p4pd_utils_copy_into_hwentry(image, 0, &source, 8, 1),
                 "p4pd_utils_copy_into_hwentry: cannot take 1 bits at bit 8");
    EXPECT_DEATH(p4pd_utils_copy_into_hwentry(image, 0, &source, 3, 5),
                 "p4pd_utils_copy_into_hwentry: cannot take 5 bits at bit 3");
    EXPECT_DEATH(p4pd_utils_copy_into_hwentry(image, 0, &source, 3, 0),
                 "p4pd_utils_copy_into_hwentry: cannot take 0 bits at bit 3");
    EXPECT_DEATH(p4pd_utils_copy_single_bit(&source, 0, image, 0, 2),
                 "p4pd_utils_copy_single_bit: cannot take 2 bits at bit 0");
    EXPECT_DEATH(p4pd_utils_copy_single_bit(&source, 8, image, 0, 1),
                 "p4pd_utils_copy_single_bit: cannot take 1 bits at bit 8");
}

}  // namespace
