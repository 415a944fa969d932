// An adapter's directory among other people's files: what a name leads to, who may read, what a
// second writer can be talked into, and where a process without standard streams prints.

#include "host/adapter.h"
#include "host/trace/printable.h"
#include "host/trace/trace.h"

#include "tests/support/other_process.h"
#include "tests/support/scratch_directory.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace halden;
using host::access;
using host::adapter;
using host::trace::printable;
using test::in_another_process;
using test::message_of;
using test::scratch_directory;
using test::text_of;
using test::write_text;
namespace fs = std::filesystem;

class DirectorySafety : public testing::Test {
  protected:
    void SetUp() override { host::trace::set_level("off"); }
    void TearDown() override { host::trace::set_level("info"); }

    std::string path() const { return scratch_.file("a"); }
    std::string file(const std::string &name) const { return path() + "/" + name; }
    static std::unique_ptr<adapter> open(const std::string &path, access how = access::create,
                                         bool group_reads = false) {
        host::adapter_options options;
        options.flow_rows = 16;
        options.flow_ohash_rows = 8;
        options.access = how;
        options.group_reads = group_reads;
        return adapter::open(path, options);
    }
    std::unique_ptr<adapter> open() const { return open(path()); }
    // Row 5 of lif_mapping.
    static sdk_ret_t write_row(adapter &to) {
        const std::vector<uint8_t> image(8, 0x11);
        return to.sram_write(16, 5, image.data(), 49, nullptr);
    }
    static unsigned mode_of(const std::string &path) {
        struct stat status = {};
        EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
        return status.st_mode & 07777;
    }

    scratch_directory scratch_;
};

// --- What a name leads to ------------------------------------------------------------------------

TEST_F(DirectorySafety, AMemoryFileIsNotFollowedToAnotherPlace) {
    { open(); }
    write_text(scratch_.file("passwords"), "secret");
    fs::create_symlink(scratch_.file("passwords"), file("table-16.sram"));
    fs::create_symlink(scratch_.file("nowhere"), file("table-08.tcam"));
    const auto made = open();
    const std::vector<uint8_t> image(64, 0x11);
    EXPECT_EQ(write_row(*made), SDK_RET_OOM);
    EXPECT_EQ(made->tcam_write(8, 0, image.data(), image.data(), 128), SDK_RET_OOM);
    ASSERT_EQ(made->troubles().size(), 2u);
    EXPECT_THAT(made->troubles()[0],
                testing::HasSubstr(
                    file("table-16.sram") +
                    ": cannot be mapped: is a symbolic link; an adapter's files are not looked for "
                    "elsewhere"));
    EXPECT_EQ(text_of(scratch_.file("passwords")), "secret");
    EXPECT_FALSE(fs::exists(scratch_.file("nowhere")));
    // Others work.
    EXPECT_EQ(made->sram_write(17, 0, image.data(), 44, nullptr), SDK_RET_OK);
}

TEST_F(DirectorySafety, TheAdapterFileIsNotFollowedEither) {
    fs::create_directory(path());
    fs::create_symlink(scratch_.file("elsewhere"), file("adapter"));
    for (access how : {access::create, access::write, access::read, access::rehearse})
        EXPECT_EQ(message_of([&] { open(path(), how); }),
                  file("adapter") +
                      ": is a symbolic link; an adapter's files are not looked for elsewhere");
    EXPECT_FALSE(fs::exists(scratch_.file("elsewhere")));
}

TEST_F(DirectorySafety, WhatIsNoFileIsRefusedWithoutWaitingForIt) {
    fs::create_directory(path());
    ASSERT_EQ(mkfifo(file("adapter").c_str(), 0600), 0);
    for (access how : {access::write, access::read})
        EXPECT_EQ(message_of([&] { open(path(), how); }),
                  file("adapter") + ": is not a regular file");
}

// The directory itself may be reached by a link: that is whoever made it who says so.
TEST_F(DirectorySafety, ALinkToTheDirectoryIsTheDirectory) {
    { write_row(*open()); }
    fs::create_symlink(path(), scratch_.file("link"));
    EXPECT_EQ(open(scratch_.file("link"), access::read)->next_used(16, 0), 5u);
}

// --- Renamed while it is open --------------------------------------------------------------------

TEST_F(DirectorySafety, ARenamedDirectoryIsStillTheOneInUse) {
    const auto made = open();
    fs::rename(path(), scratch_.file("b"));
    EXPECT_EQ(write_row(*made), SDK_RET_OK);
    EXPECT_FALSE(fs::exists(path()));
    EXPECT_TRUE(fs::exists(scratch_.file("b/table-16.sram")));
    EXPECT_EQ(message_of([&] { open(scratch_.file("b")); }),
              scratch_.file("b") + "/adapter: the adapter is open in another process");
}

TEST_F(DirectorySafety, RenamingTheAdapterFileLetsNobodyIn) {
    const auto made = open();
    ASSERT_EQ(write_row(*made), SDK_RET_OK);
    fs::rename(file("adapter"), scratch_.file("old"));
    EXPECT_EQ(message_of([&] { open(); }),
              path() +
                  ": the directory is neither empty nor an adapter's: it has no file "
                  "'adapter'");
    fs::copy(scratch_.file("old"), file("adapter"));
    for (access how : {access::create, access::write, access::read, access::rehearse})
        EXPECT_EQ(message_of([&] { open(path(), how); }),
                  file("table-16.sram") + ": the adapter is open in another process");
}

// --- Whose it is ---------------------------------------------------------------------------------

TEST_F(DirectorySafety, AnAdapterIsItsOwnersAloneWhateverTheMaskSays) {
    for (const mode_t mask : {0u, 022u, 077u}) {
        const mode_t before = umask(mask);
        const std::string name = scratch_.file("mask" + std::to_string(mask));
        write_row(*open(name));
        umask(before);
        EXPECT_EQ(mode_of(name), 0700u);
        EXPECT_EQ(mode_of(name + "/adapter"), 0600u);
        EXPECT_EQ(mode_of(name + "/table-16.sram"), 0600u);
    }
}

TEST_F(DirectorySafety, TheDirectorysGroupDecides) {
    const struct {
        unsigned directory, files;
    } cases[] = {{0755, 0640}, {0750, 0640}, {0770, 0660}, {0711, 0600}, {0720, 0600}};
    for (const auto &each : cases) {
        const mode_t before = umask(077);
        const std::string name = scratch_.file(std::to_string(each.directory));
        fs::create_directory(name);
        fs::permissions(name, fs::perms(each.directory));
        write_row(*open(name));
        umask(before);
        EXPECT_EQ(mode_of(name), each.directory);
        EXPECT_EQ(mode_of(name + "/adapter"), each.files) << std::oct << each.directory;
        EXPECT_EQ(mode_of(name + "/table-16.sram"), each.files) << std::oct << each.directory;
    }
}

TEST_F(DirectorySafety, AnOptionLetsTheGroupRead) {
    const mode_t before = umask(077);
    write_row(*open(path(), access::create, true));
    umask(before);
    EXPECT_EQ(mode_of(path()), 0750u);
    EXPECT_EQ(mode_of(file("adapter")), 0640u);
    EXPECT_EQ(mode_of(file("table-16.sram")), 0640u);
}

// --- Standard streams that are closed ------------------------------------------------------------

// Whether the descriptor is open.
bool is_open(int descriptor) { return fcntl(descriptor, F_GETFD) != -1; }

TEST_F(DirectorySafety, WhatAProcessWithoutStandardStreamsPrintsIsNotInAFile) {
    EXPECT_EQ(in_another_process([&] {
                  for (int stream : {0, 1, 2}) close(stream);
                  const auto made = open();
                  const auto anonymous = adapter::anonymous();
                  if (write_row(*made) != SDK_RET_OK || write_row(*anonymous) != SDK_RET_OK)
                      return 1;
                  // Untouched memory is asked for by a file of its own.
                  if (made->next_used(16, 6) != 1024 || anonymous->next_used(16, 6) != 1024)
                      return 2;
                  for (int stream : {0, 1, 2})
                      if (is_open(stream)) return 3;
                  if (write(1, "printed", 7) != -1) return 4;
                  return 17;
              }),
              17);
    EXPECT_EQ(text_of(file("adapter")), "halden adapter 1\nflow_rows 16\nflow_ohash_rows 8\n");
    EXPECT_EQ(open()->next_used(16, 0), 5u);
}

// --- Names ---------------------------------------------------------------------------------------

TEST_F(DirectorySafety, AStrangeNameIsShownAsOneLine) {
    const std::string name = scratch_.file("red\x1b[31m\n\xff");
    EXPECT_EQ(message_of([&] { open(name, access::read); }),
              scratch_.path() +
                  "/red\\x1b[31m\\x0a\\xff: there is no adapter here: no such "
                  "directory");
    fs::create_directory(name);
    write_text(name + "/adapter", "mine");
    write_text(name + "/another", "");
    EXPECT_EQ(message_of([&] { open(name); }),
              scratch_.path() + "/red\\x1b[31m\\x0a\\xff/adapter: is not an adapter's");
}

TEST(Printable, KeepsTextAndShowsTheRestAsDigits) {
    EXPECT_EQ(printable("plain text, 100 %"), "plain text, 100 %");
    EXPECT_EQ(printable("Zürich \xe2\x82\xac \xf0\x9f\x90\xa7"),
              "Zürich \xe2\x82\xac \xf0\x9f\x90\xa7");
    EXPECT_EQ(printable(std::string("\0\t\x1b\x7f", 4)), "\\x00\\x09\\x1b\\x7f");
    // Ill-formed: alone, cut short, too long for its value, surrogates, beyond the last character.
    EXPECT_EQ(printable("\x80"), "\\x80");
    EXPECT_EQ(printable("\xe2\x82"), "\\xe2\\x82");
    EXPECT_EQ(printable("\xe2\x82x"), "\\xe2\\x82x");
    EXPECT_EQ(printable("\xc0\xaf"), "\\xc0\\xaf");
    EXPECT_EQ(printable("\xe0\x80\xaf"), "\\xe0\\x80\\xaf");
    EXPECT_EQ(printable("\xed\xa0\x80"), "\\xed\\xa0\\x80");
    EXPECT_EQ(printable("\xf4\x90\x80\x80"), "\\xf4\\x90\\x80\\x80");
    EXPECT_EQ(printable("\xff"), "\\xff");
    // A terminal may take U+009B for the start of a command.
    EXPECT_EQ(printable("\xc2\x9b"), "\\xc2\\x9b");
    EXPECT_EQ(printable("\xc2\xa0"), "\xc2\xa0");
}

}  // namespace
