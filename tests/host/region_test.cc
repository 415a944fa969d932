// One memory: mapped zero, sparse, kept in its file.

#include "host/memory/region.h"

#include "tests/host/file_at.h"
#include "tests/support/scratch_directory.h"

#include <sys/stat.h>
#include <csignal>

#include <algorithm>
#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using halden::host::mapping;
using halden::host::region;
using halden::test::file_at;
using halden::test::message_of;
using halden::test::scratch_directory;

constexpr size_t page = 4096;
constexpr size_t many = size_t{1} << 30;  // far more than is ever touched

TEST(Region, NewMemoryIsZero) {
    const region memory({}, 3 * page);
    EXPECT_EQ(memory.size(), 3 * page);
    EXPECT_TRUE(std::all_of(memory.base(), memory.base() + memory.size(),
                            [](uint8_t byte) { return byte == 0; }));
}

TEST(Region, UntouchedMemoryHasNothingInUse) {
    const region memory({}, many);
    size_t begin = 0, end = 0;
    EXPECT_FALSE(memory.next_used(0, begin, end));
    EXPECT_FALSE(memory.next_used(many - 1, begin, end));
    EXPECT_FALSE(memory.next_used(many, begin, end));
}

TEST(Region, FindsTheNextTouchedPage) {
    const region memory({}, many);
    constexpr size_t first = 5 * page, second = many / 2 + 7 * page;
    memory.base()[first + 9] = 1;
    memory.base()[second] = 1;
    size_t begin = 0, end = 0;
    ASSERT_TRUE(memory.next_used(0, begin, end));
    EXPECT_LE(begin, first + 9);
    EXPECT_GT(end, first + 9);
    EXPECT_LT(end, second);
    ASSERT_TRUE(memory.next_used(end, begin, end));
    EXPECT_LE(begin, second);
    EXPECT_GT(end, second);
    EXPECT_FALSE(memory.next_used(std::max(end, second + 1), begin, end));
}

TEST(Region, HugePagesAreZeroAndTheTouchedOnesAreFound) {
    const region memory({.pages = halden::host::paging::huge}, many);
    constexpr size_t first = size_t{64} << 20, second = many - 3;
    size_t begin = 0, end = 0;
    EXPECT_FALSE(memory.next_used(0, begin, end));
    memory.base()[first + 9] = 1;
    memory.base()[second] = 1;
    ASSERT_TRUE(memory.next_used(0, begin, end));
    EXPECT_LE(begin, first + 9);
    EXPECT_GT(end, first + 9);
    EXPECT_LT(end, second);
    EXPECT_EQ(std::count(memory.base() + begin, memory.base() + end, uint8_t{1}), 1);
    ASSERT_TRUE(memory.next_used(end, begin, end));
    EXPECT_LE(begin, second);
    EXPECT_EQ(end, many);
    // From the middle of a run on, the run begins there.
    ASSERT_TRUE(memory.next_used(first + 10, begin, end));
    EXPECT_EQ(begin, first + 10);
}

TEST(Region, AFileKeepsWhatWasStored) {
    const scratch_directory scratch;
    const std::string path = scratch.file("memory");
    {
        const region memory({.on = file_at(path)}, 4 * page);
        memory.base()[0] = 0x12;
        memory.base()[4 * page - 1] = 0x34;
    }
    const region again({.on = file_at(path)}, 4 * page);
    EXPECT_EQ(again.base()[0], 0x12);
    EXPECT_EQ(again.base()[1], 0x00);
    EXPECT_EQ(again.base()[4 * page - 1], 0x34);
}

// A table of millions of rows costs no disk until it is used.
TEST(Region, AFileIsSparse) {
    const scratch_directory scratch;
    const region memory({.on = file_at(scratch.file("memory"))}, many);
    memory.base()[many / 2] = 1;
    struct stat status = {};
    ASSERT_EQ(stat(scratch.file("memory").c_str(), &status), 0);
    EXPECT_EQ(static_cast<size_t>(status.st_size), many);
    EXPECT_LT(static_cast<size_t>(status.st_blocks) * 512, size_t{1} << 20);
}

TEST(Region, AFileOfAnotherSizeIsRefusedAndKept) {
    const scratch_directory scratch;
    const std::string path = scratch.file("memory");
    { const region memory({.on = file_at(path)}, 2 * page); }
    EXPECT_EQ(message_of([&] { const region memory({.on = file_at(path)}, 3 * page); }),
              path + ": has 8192 bytes, this memory has 12288");
    struct stat status = {};
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_size, 8192);
}

// --- Files that are only read --------------------------------------------------------------------

// Four pages, the last byte of the third is 0x34.
std::string file_with_one_byte(const scratch_directory &scratch) {
    const std::string path = scratch.file("memory");
    const region memory({.on = file_at(path)}, 4 * page);
    memory.base()[3 * page - 1] = 0x34;
    return path;
}

TEST(Region, AFileIsReadWithoutTheRightToWriteIt) {
    const scratch_directory scratch;
    const std::string path = file_with_one_byte(scratch);
    const region memory({.on = file_at(path, O_RDONLY), .how = mapping::read_only}, 4 * page);
    EXPECT_EQ(memory.base()[3 * page - 1], 0x34);
    size_t begin = 0, end = 0;
    ASSERT_TRUE(memory.next_used(0, begin, end));
    EXPECT_EQ(begin, 2 * page);
    EXPECT_EQ(end, 3 * page);
    EXPECT_FALSE(memory.next_used(end, begin, end));
#ifdef HALDEN_SANITIZED
    EXPECT_DEATH(memory.base()[0] = 1, "SEGV on unknown address.*\n.*caused by a WRITE");
#else
    EXPECT_EXIT(memory.base()[0] = 1, testing::KilledBySignal(SIGSEGV), "");
#endif
}

TEST(Region, ARehearsalSeesItsOwnStoresBesideTheFileAndTheFileSeesNone) {
    const scratch_directory scratch;
    const std::string path = file_with_one_byte(scratch);
    size_t begin = 0, end = 0;
    {
        const region memory({.on = file_at(path, O_RDONLY), .how = mapping::private_copy},
                            4 * page);
        EXPECT_EQ(memory.base()[page], 0);  // looked at, so it is there, and still the file's
        ASSERT_TRUE(memory.next_used(0, begin, end));
        EXPECT_EQ(begin, 2 * page);
        memory.base()[page + 7] = 0x56;
        memory.base()[3 * page - 1] = 0x78;
        ASSERT_TRUE(memory.next_used(0, begin, end));
        EXPECT_EQ(begin, page);
        EXPECT_LE(end, 3 * page);
        ASSERT_TRUE(memory.next_used(2 * page, begin, end));
        EXPECT_EQ(begin, 2 * page);
        EXPECT_FALSE(memory.next_used(3 * page, begin, end));
        EXPECT_EQ(memory.base()[page + 7], 0x56);
        EXPECT_EQ(memory.base()[3 * page - 1], 0x78);
    }
    const region again({.on = file_at(path)}, 4 * page);
    EXPECT_EQ(again.base()[page + 7], 0);
    EXPECT_EQ(again.base()[3 * page - 1], 0x34);
}

// No file, or one that its maker gave no size yet.
TEST(Region, AnAbsentFileIsZerosAndIsNotMade) {
    const scratch_directory scratch;
    const std::string empty = scratch.file("empty");
    static_cast<void>(file_at(empty));
    size_t begin = 0, end = 0;
    for (const bool is_there : {false, true}) {
        const auto none = [&] {
            return is_there ? file_at(empty, O_RDONLY) : halden::host::file();
        };
        const region memory({.on = none(), .how = mapping::read_only}, many);
        EXPECT_EQ(memory.base()[many - 1], 0);
        EXPECT_FALSE(memory.next_used(0, begin, end));

        const region rehearsal({.on = none(), .how = mapping::private_copy}, many);
        EXPECT_EQ(rehearsal.base()[many - 1], 0);
        rehearsal.base()[5 * page] = 1;
        ASSERT_TRUE(rehearsal.next_used(0, begin, end));
        EXPECT_EQ(begin, 5 * page);
        EXPECT_EQ(end, 6 * page);
    }
    struct stat status = {};
    ASSERT_EQ(stat(empty.c_str(), &status), 0);
    EXPECT_EQ(status.st_size, 0);
}

}  // namespace
