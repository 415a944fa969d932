// The rows of SRAM, TCAM and small HBM tables: whole or not at all, in every order.

#include "host/memory/row_store.h"

#include "tests/host/file_at.h"
#include "tests/support/scratch_directory.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace halden::host;
using halden::test::file_at;
using halden::test::scratch_directory;
using testing::Each;

row_image filled(uint8_t byte) {
    row_image out;
    out.fill(byte);
    return out;
}

TEST(RowStore, ANewRowIsEmptyAndZeroesTheImage) {
    const row_store rows({}, 8);
    row_image image = filled(0xee);
    EXPECT_EQ(rows.rows(), 8u);
    EXPECT_EQ(rows.read(7, image).bits, 0);
    EXPECT_THAT(image, Each(0));
}

TEST(RowStore, ARowReadsBackWithItsLength) {
    row_store rows({}, 8);
    rows.write(3, filled(0xa5), 49);
    row_image image;
    EXPECT_EQ(rows.read(3, image).bits, 49);
    EXPECT_EQ(image, filled(0xa5));
    EXPECT_EQ(rows.read(2, image).bits, 0);
    EXPECT_EQ(rows.read(4, image).bits, 0);
}

TEST(RowStore, TheLastWriteStands) {
    row_store rows({}, 2);
    row_image image;
    for (unsigned i = 1; i <= 5; ++i) {
        rows.write(1, filled(static_cast<uint8_t>(i)), static_cast<uint16_t>(8 * i));
        ASSERT_EQ(rows.read(1, image).bits, 8 * i);
        ASSERT_EQ(image, filled(static_cast<uint8_t>(i)));
    }
}

// The count of writes is 16 bits wide: a row must survive its overflow.
TEST(RowStore, ARowIsWholeAfterMoreWritesThanItsCountHolds) {
    row_store rows({}, 2);
    row_image image;
    for (uint32_t i = 0; i < 65540; ++i) {
        rows.write(0, filled(static_cast<uint8_t>(i)), 512);
        ASSERT_EQ(rows.read(0, image).bits, 512) << "write " << i;
        ASSERT_EQ(image, filled(static_cast<uint8_t>(i))) << "write " << i;
    }
    EXPECT_EQ(rows.read(1, image).bits, 0);
}

TEST(RowStore, LengthZeroEmptiesTheRow) {
    row_store rows({}, 2);
    rows.write(0, filled(0x77), 512);
    rows.write(0, filled(0x77), 0);
    row_image image = filled(0xee);
    EXPECT_EQ(rows.read(0, image).bits, 0);
    EXPECT_THAT(image, Each(0));
    EXPECT_EQ(rows.next_used(0), 2u);
}

TEST(RowStore, NextUsedFindsEveryRowOnce) {
    constexpr uint32_t depth = 2097152;
    row_store rows({}, depth);
    EXPECT_EQ(rows.next_used(0), depth);
    const uint32_t used[] = {0, 1, 1023, 1024, 70000, depth - 1};
    for (uint32_t row : used) rows.write(row, filled(1), 8);
    uint32_t from = 0;
    for (uint32_t row : used) {
        ASSERT_EQ(rows.next_used(from), row);
        from = row + 1;
    }
    EXPECT_EQ(rows.next_used(from), depth);
    EXPECT_EQ(rows.next_used(depth + 5), depth);
}

TEST(RowStore, AFileKeepsRowsLengthsAndEmptiness) {
    const scratch_directory scratch;
    const std::string path = scratch.file("rows");
    {
        row_store rows({.on = file_at(path)}, 64);
        rows.write(5, filled(1), 16);
        rows.write(5, filled(2), 24);
        rows.write(6, filled(3), 32);
        rows.write(6, filled(3), 0);
    }
    row_store again({.on = file_at(path)}, 64);
    row_image image;
    EXPECT_EQ(again.read(5, image).bits, 24);
    EXPECT_EQ(image, filled(2));
    EXPECT_EQ(again.read(6, image).bits, 0);
    EXPECT_EQ(again.next_used(0), 5u);
    EXPECT_EQ(again.next_used(6), 64u);
}

// A reader without a lock sees one of the written images with its own length, never a mixture.
TEST(RowStore, AReaderNeverSeesAMixture) {
    row_store rows({}, 1);
    rows.write(0, filled(1), 8);
    std::atomic<bool> stop = false;
    std::thread writer([&] {
        for (unsigned i = 0; !stop.load(); ++i) {
            const unsigned value = 1 + i % 63;
            rows.write(0, filled(static_cast<uint8_t>(value)), static_cast<uint16_t>(8 * value));
        }
    });
    row_image image;
    unsigned different = 0, last = 0;
    for (unsigned i = 0; i < 200000 || different < 100; ++i) {
        const unsigned bits = rows.read(0, image).bits;
        const bool whole =
            std::all_of(image.begin(), image.end(), [&](uint8_t byte) { return byte == image[0]; });
        if (!whole || bits != 8u * image[0]) {
            stop = true;
            ADD_FAILURE() << "a row of " << bits << " bits that starts with " << unsigned{image[0]};
            break;
        }
        different += image[0] != last;
        last = image[0];
    }
    stop = true;
    writer.join();
}

}  // namespace
