// The debug response message: its allocation, its slots and what is copied out of one.

#include <cstdint>
#include <cstdlib>
#include <vector>

#include "gtest/gtest.h"
#include "p4pd.h"

// The allocator fails on demand. Memory comes from the sanitizer's allocator where there is one,
// else from the C library's own, so that free() knows it.
extern "C" void *__libc_calloc(size_t count, size_t size);
extern "C" [[gnu::weak]] void *__interceptor_calloc(size_t count, size_t size);

namespace {
bool memory_exhausted = false;
}

extern "C" void *calloc(size_t count, size_t size) noexcept {
    if (memory_exhausted) return nullptr;
    return __interceptor_calloc != nullptr ? __interceptor_calloc(count, size)
                                           : __libc_calloc(count, size);
}

namespace {

using bytes = std::vector<uint8_t>;

constexpr size_t slot_bytes = 512;
constexpr size_t message_bytes = 5120;

struct record_sizes {
    uint32_t id;
    size_t key;  // 0: nothing is copied to the key
    bool mask;
    size_t data;
};
// Keyless tables have a key record of one byte, which carries nothing and is not copied.
constexpr record_sizes tables[] = {
    {1, 77, false, 59}, {2, 77, false, 59}, {3, 4, false, 5},   {4, 5, false, 4},
    {5, 17, false, 4},  {6, 8, false, 10},  {7, 4, true, 5},    {8, 21, true, 3},
    {9, 33, true, 3},   {10, 5, true, 4},   {11, 17, true, 4},  {12, 3, true, 3},
    {13, 3, true, 2},   {14, 8, true, 10},  {15, 8, true, 2},   {16, 0, false, 12},
    {17, 0, false, 11}, {18, 0, false, 14}, {19, 0, false, 14}, {20, 0, false, 9},
    {21, 0, false, 64}, {22, 0, false, 27}, {23, 0, false, 27}, {24, 0, false, 6},
    {25, 0, false, 49}, {26, 0, false, 65}, {27, 0, false, 65}, {28, 0, false, 65},
    {29, 0, false, 65}, {30, 0, false, 28}, {31, 0, false, 73}, {32, 0, false, 39},
    {33, 0, false, 35}, {34, 0, false, 60}, {35, 0, false, 18}, {36, 0, false, 18},
    {37, 0, false, 18}, {38, 0, false, 2},  {39, 0, false, 49}, {40, 0, false, 65},
    {41, 0, false, 2},  {42, 0, false, 2},  {43, 0, false, 2},  {44, 0, false, 2},
    {45, 0, false, 2},  {46, 0, false, 2},  {47, 0, false, 2},  {48, 0, false, 2},
};
static_assert(std::size(tables) == 48);

// Every 16-bit word of it is different, so a copy from a wrong place shows.
bytes numbered(size_t size) {
    bytes out(size);
    for (size_t i = 0; i < size; ++i)
        out[i] = static_cast<uint8_t>(i % 2 == 0 ? i / 2 : i / 512 * 16 + 1);
    return out;
}

constexpr uint8_t untouched = 0xee;

// What a caller's record should hold: `size` bytes of the message from `from`, then nothing.
bytes copied(const bytes &message, size_t from, size_t size) {
    bytes out(256, untouched);
    for (size_t i = 0; i < size; ++i) out[i] = message[from + i];
    return out;
}

void expect_populated(const record_sizes &table, bytes &message, size_t origin, int slot) {
    bytes key(256, untouched), mask(256, untouched), data(256, untouched);
    EXPECT_EQ(p4pd_entry_populate(table.id, key.data(), mask.data(), data.data(),
                                  message.data() + origin, slot),
              0);
    const size_t at =
        static_cast<size_t>(static_cast<ptrdiff_t>(origin) + slot * ptrdiff_t{slot_bytes});
    EXPECT_EQ(key, copied(message, at, table.key)) << "key, table " << table.id;
    EXPECT_EQ(mask, copied(message, at + 128, table.mask ? table.key : 0))
        << "mask, table " << table.id;
    EXPECT_EQ(data, copied(message, at + 256, table.data)) << "data, table " << table.id;
}

TEST(DebugMessage, IsANewBlockOfZeros) {
    auto *const message = static_cast<uint8_t *>(allocate_debug_response_msg());
    ASSERT_NE(message, nullptr);
    EXPECT_EQ(bytes(message, message + message_bytes), bytes(message_bytes));
    auto *const other = static_cast<uint8_t *>(allocate_debug_response_msg());
    ASSERT_NE(other, nullptr);
    EXPECT_NE(other, message);
    // The whole block is the caller's to write; a sanitizer sees one that is shorter.
    for (size_t i = 0; i < message_bytes; ++i) message[i] = other[i] = 0xff;
    free_debug_response_msg(message);
    free_debug_response_msg(other);
}

TEST(DebugMessage, IsNullWhenMemoryIsExhausted) {
    memory_exhausted = true;
    void *const message = allocate_debug_response_msg();
    memory_exhausted = false;
    EXPECT_EQ(message, nullptr);
}

TEST(DebugMessage, ANullOneIsReleasedLikeAnyOther) { free_debug_response_msg(nullptr); }

TEST(EntryPopulate, CopiesEveryTablesRecordsOutOfEverySlot) {
    bytes message = numbered(message_bytes);
    for (const record_sizes &table : tables)
        for (int slot = 0; slot < 10; ++slot) expect_populated(table, message, 0, slot);
}

// Slot 9 is the last of a message.
TEST(EntryPopulate, ReadsTheLastSlotOfAMessage) {
    auto *const message = static_cast<uint8_t *>(allocate_debug_response_msg());
    ASSERT_NE(message, nullptr);
    const bytes pattern = numbered(message_bytes);
    std::copy(pattern.begin(), pattern.end(), message);
    uint8_t data[59] = {}, key[77] = {};
    EXPECT_EQ(p4pd_entry_populate(1, key, nullptr, data, message, 9), 0);
    EXPECT_EQ(bytes(key, key + 77), bytes(pattern.begin() + 4608, pattern.begin() + 4608 + 77));
    EXPECT_EQ(bytes(data, data + 59), bytes(pattern.begin() + 4864, pattern.begin() + 4864 + 59));
    free_debug_response_msg(message);
}

// Slot 10 and beyond are read without complaint, and so is a negative one.
TEST(EntryPopulate, DoesNotCheckTheSlot) {
    bytes wide = numbered(16 * slot_bytes);
    for (const record_sizes &table : tables) {
        expect_populated(table, wide, 0, 10);
        expect_populated(table, wide, 0, 15);
        expect_populated(table, wide, 4 * slot_bytes, -1);
        expect_populated(table, wide, 4 * slot_bytes, -4);
    }
}

// For an index or keyless table key and mask may be null; for a hash table the mask may.
TEST(EntryPopulate, TakesNullForRecordsTheTableHasNot) {
    bytes message = numbered(message_bytes);
    for (const record_sizes &table : tables) {
        if (table.mask) continue;
        bytes key(256, untouched), data(256, untouched);
        EXPECT_EQ(p4pd_entry_populate(table.id, table.key != 0 ? key.data() : nullptr, nullptr,
                                      data.data(), message.data(), 3),
                  0);
        EXPECT_EQ(data, copied(message, 3 * slot_bytes + 256, table.data)) << table.id;
    }
}

TEST(EntryPopulate, ANullMessageIsRefusedBeforeTheTableIsLookedAt) {
    bytes key(256, untouched), mask(256, untouched), data(256, untouched);
    for (const uint32_t id : {0u, 1u, 7u, 16u, 41u, 49u})
        EXPECT_EQ(p4pd_entry_populate(id, key.data(), mask.data(), data.data(), nullptr, 0), -1);
    EXPECT_EQ(key, bytes(256, untouched));
    EXPECT_EQ(mask, bytes(256, untouched));
    EXPECT_EQ(data, bytes(256, untouched));
}

TEST(EntryPopulate, AnUnknownTableIsRefused) {
    bytes message = numbered(message_bytes);
    bytes key(256, untouched), mask(256, untouched), data(256, untouched);
    for (const uint32_t id : {0u, 49u, 50u, 256u + 16u, UINT32_MAX})
        EXPECT_EQ(p4pd_entry_populate(id, key.data(), mask.data(), data.data(), message.data(), 0),
                  -1);
    EXPECT_EQ(key, bytes(256, untouched));
    EXPECT_EQ(mask, bytes(256, untouched));
    EXPECT_EQ(data, bytes(256, untouched));
}

}  // namespace
