// The rows of the flow tables: 128 bytes, no length beside them.

#include "host/memory/flow_rows.h"

#include "tests/host/file_at.h"
#include "tests/support/scratch_directory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace halden::host;
using halden::test::file_at;
using halden::test::scratch_directory;
using testing::Each;

TEST(FlowRows, ARowIsEmptyWhileAllItsBytesAreZero) {
    flow_rows rows({}, 4);
    flow_image image;
    image.fill(0xee);
    EXPECT_EQ(rows.read(2, image), 0);
    EXPECT_THAT(image, Each(0));
    for (size_t byte : {size_t{0}, size_t{63}, size_t{116}, size_t{127}}) {
        flow_image one = {};
        one[byte] = 0x01;
        rows.write(2, one);
        EXPECT_EQ(rows.read(2, image), 1024) << "byte " << byte;
        EXPECT_EQ(image, one) << "byte " << byte;
        EXPECT_EQ(rows.read(1, image), 0);
        EXPECT_EQ(rows.read(3, image), 0);
        rows.write(2, {});
        EXPECT_EQ(rows.read(2, image), 0);
    }
}

// An engine that works in place sees rows one behind another, byte for byte.
TEST(FlowRows, RowsStandOneBehindAnother) {
    flow_rows rows({}, 4);
    flow_image image;
    for (size_t i = 0; i < image.size(); ++i) image[i] = static_cast<uint8_t>(i + 1);
    rows.write(3, image);
    for (size_t i = 0; i < 128; ++i) ASSERT_EQ(rows.base()[3 * 128 + i], i + 1);
    EXPECT_EQ(rows.base()[3 * 128 - 1], 0);
    rows.base()[128] = 0x42;
    flow_image found;
    EXPECT_EQ(rows.read(1, found), 1024);
    EXPECT_EQ(found[0], 0x42);
}

TEST(FlowRows, NextUsedFindsEveryRowOnce) {
    constexpr uint32_t depth = 4194304;
    flow_rows rows({}, depth);
    EXPECT_EQ(rows.next_used(0), depth);
    const uint32_t used[] = {0, 31, 32, 100000, depth - 1};
    flow_image image = {};
    image[127] = 1;
    for (uint32_t row : used) rows.write(row, image);
    uint32_t from = 0;
    for (uint32_t row : used) {
        ASSERT_EQ(rows.next_used(from), row);
        from = row + 1;
    }
    EXPECT_EQ(rows.next_used(from), depth);
}

TEST(FlowRows, AFileKeepsTheRows) {
    const scratch_directory scratch;
    flow_image image = {};
    image[9] = 0x99;
    { flow_rows({.on = file_at(scratch.file("rows"))}, 16).write(15, image); }
    flow_rows again({.on = file_at(scratch.file("rows"))}, 16);
    flow_image found;
    EXPECT_EQ(again.read(15, found), 1024);
    EXPECT_EQ(found, image);
    EXPECT_EQ(again.next_used(0), 15u);
}

}  // namespace
