// The hash units: which row a key belongs to, by values worked out apart.

#include "host/view/row_hash.h"

#include <cstring>
#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace halden::host::view;
using bytes = std::vector<uint8_t>;

// Key bytes 0x11, 0x22, 0x33 and on.
bytes counted(size_t count) {
    bytes out(count);
    for (size_t i = 0; i < count; ++i) out[i] = static_cast<uint8_t>(0x11 * (i + 1));
    return out;
}

// The usual check value of this polynomial without reflection, from 0, not inverted.
TEST(RowHash, TheCrcHasItsCheckValue) {
    uint8_t digits[9];
    std::memcpy(digits, "123456789", 9);
    EXPECT_EQ(crc32(digits, 9), 0x89a1897fu);
    EXPECT_EQ(crc32(digits, 0), 0u);
    const uint8_t one = 1;
    EXPECT_EQ(crc32(&one, 1), 0x04c11db7u);
}

TEST(RowHash, SramRowsAreTheCrcModuloTheDepth) {
    EXPECT_EQ(hash_row(3, counted(3).data(), 4096), 1943u);
    EXPECT_EQ(hash_row(4, counted(5).data(), 8192), 1849u);
    EXPECT_EQ(hash_row(5, counted(17).data(), 8192), 7268u);
    EXPECT_EQ(hash_row(6, counted(8).data(), 4096), 812u);
    EXPECT_EQ(hash_row(3, counted(3).data(), 16), 7u);
}

// The 60-bit key ends in the middle of its last byte: what stands behind it is no key.
TEST(RowHash, BitsBehindTheKeyDoNotCount) {
    bytes key = counted(8);
    key[7] ^= 0x0f;
    EXPECT_EQ(hash_row(6, key.data(), 4096), 812u);
    key[7] ^= 0x10;
    EXPECT_NE(hash_row(6, key.data(), 4096), 812u);
}

bytes flow_key() {
    bytes key(84);
    for (size_t i = 0; i < 59; ++i) key[i] = static_cast<uint8_t>(i + 1);
    for (size_t i = 68; i < 84; ++i) key[i] = static_cast<uint8_t>(i + 1);
    return key;
}

TEST(RowHash, AFlowsHashIsOverItsRowWithNothingButTheKey) {
    EXPECT_EQ(flow_hash(flow_key().data()), 0x12b02277u);
    EXPECT_EQ(hint_hash(0x12b02277), 0x277u);
}

TEST(RowHash, TheGapInTheFlowKeyDoesNotCount) {
    bytes key = flow_key();
    for (size_t i = 59; i < 68; ++i) key[i] = 0xff;
    EXPECT_EQ(flow_hash(key.data()), 0x12b02277u);
}

TEST(RowHash, AFlowsRowIsInTheHighBits) {
    EXPECT_EQ(flow_row(0x12b02277, 4194304), 306184u);
    EXPECT_EQ(flow_row(0x12b02277, 16), 1u);
    EXPECT_EQ(flow_row(0xffffffff, 2), 1u);
    EXPECT_EQ(flow_row(0xffffffff, 1), 0u);
    EXPECT_EQ(hash_row(2, flow_key().data(), 4194304), 306184u);
}

TEST(RowHash, TablesWithoutAHashBelongToRowZero) {
    const bytes key = counted(128);
    for (uint32_t table : {0u, 1u, 7u, 8u, 15u, 16u, 21u, 41u, 49u})
        EXPECT_EQ(hash_row(table, key.data(), 4096), 0u) << table;
    EXPECT_EQ(hash_row(3, key.data(), 0), 0u);
}

}  // namespace
