// An adapter in a directory: what a second opening finds, who is let in, what a killed process
// leaves.

#include "host/adapter.h"
#include "host/trace/trace.h"

#include "p4pd.h"
#include "p4pd_records.h"
#include "tests/support/other_process.h"
#include "tests/support/scratch_directory.h"

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace halden;
using host::adapter;
using test::in_another_process;
using test::message_of;
using test::scratch_directory;
using test::text_of;
using test::write_text;
using bytes = std::vector<uint8_t>;

class Directory : public testing::Test {
  protected:
    void SetUp() override { host::trace::set_level("off"); }
    void TearDown() override { host::trace::set_level("info"); }

    std::string path() const { return scratch_.file("adapter"); }

    scratch_directory scratch_;
};

// --- What is kept --------------------------------------------------------------------------------

TEST_F(Directory, IsMadeWithAFileThatSaysWhatItHolds) {
    const auto made = adapter::open(path());
    EXPECT_EQ(made->directory(), path());
    EXPECT_EQ(text_of(path() + "/adapter"),
              "halden adapter 1\nflow_rows 4194304\nflow_ohash_rows 2097152\n");
}

TEST_F(Directory, MemoriesAreFilesMadeAtTheFirstUse) {
    namespace fs = std::filesystem;
    const auto made = adapter::open(path());
    const bytes image(64, 0x11);
    EXPECT_FALSE(fs::exists(path() + "/table-16.sram"));
    made->sram_write(16, 0, image.data(), 49, nullptr);
    made->tcam_write(7, 0, image.data(), image.data(), 32);
    made->sram_write(7, 4096, image.data(), 48, nullptr);
    made->hbm_write(21, 0, image.data(), 328);
    made->hbm_write(2, 0, image.data(), 512);
    std::vector<std::string> files;
    for (const auto &each : fs::directory_iterator(path()))
        files.push_back(each.path().filename().string());
    // The data of an overflow table stands in the hash table's memory.
    EXPECT_THAT(files,
                testing::UnorderedElementsAre("adapter", "table-16.sram", "table-07.tcam",
                                              "table-03.sram", "table-21.hbm", "table-02.hbm"));
}

// State words of 4 bytes a row up to a page border, then two images of 64 bytes a row; of a flow
// table rows of 128 bytes alone.
TEST_F(Directory, AMemoryFileHasTheSizeOfItsRows) {
    const auto made = adapter::open(path(), {.flow_rows = 64, .flow_ohash_rows = 32});
    const bytes image(128, 0x11);
    made->sram_write(16, 0, image.data(), 49, nullptr);
    made->sram_write(3, 0, image.data(), 48, nullptr);
    made->sram_write(39, 0, image.data(), 49, nullptr);
    made->tcam_write(7, 0, image.data(), image.data(), 32);
    made->hbm_write(21, 0, image.data(), 328);
    made->hbm_write(2, 0, image.data(), 1024);
    made->hbm_write(1, 0, image.data(), 1024);
    const auto size_of = [&](const char *name) {
        return std::filesystem::file_size(path() + "/" + name);
    };
    EXPECT_EQ(size_of("table-16.sram"), 4096u + 1024 * 128);
    EXPECT_EQ(size_of("table-03.sram"), 20480u + 4608 * 128) << "the overflow's data is in it";
    EXPECT_EQ(size_of("table-39.sram"), 4096u + 128);
    EXPECT_EQ(size_of("table-07.tcam"), 4096u + 512 * 128);
    EXPECT_EQ(size_of("table-21.hbm"), 8388608u + 2097152 * 128);
    EXPECT_EQ(size_of("table-02.hbm"), 8192u);
    EXPECT_EQ(size_of("table-01.hbm"), 4096u);
}

TEST_F(Directory, KeepsEveryKindOfRow) {
    const bytes image(128, 0x5a);
    {
        const auto made = adapter::open(path());
        made->sram_write(16, 5, image.data(), 49, nullptr);
        made->sram_write(7, 4101, image.data(), 48, nullptr);
        made->tcam_write(7, 5, image.data(), image.data(), 32);
        made->hbm_write(21, 2097151, image.data(), 328);
        made->hbm_write(2, 4194303, image.data(), 1024);
        made->sram_write(24, 1, image.data(), 19, nullptr);
        made->clear_row(24, 1);
    }
    const auto again = adapter::open(path());
    bytes found(1024), mask(1024);
    uint16_t bits = 0;
    const auto starts_with = [&](size_t count) {
        return bytes(found.begin(), found.begin() + static_cast<long>(count));
    };
    ASSERT_EQ(again->sram_read(16, 5, found.data(), &bits), SDK_RET_OK);
    EXPECT_EQ(bits, 49);
    EXPECT_EQ(starts_with(8), bytes(8, 0x5a));
    ASSERT_EQ(again->sram_read(7, 5, found.data(), &bits), SDK_RET_OK);
    EXPECT_EQ(bits, 48);
    ASSERT_EQ(again->tcam_read(7, 5, found.data(), mask.data(), &bits), SDK_RET_OK);
    EXPECT_EQ(bits, 32);
    ASSERT_EQ(again->hbm_read(21, 2097151, found.data(), &bits), SDK_RET_OK);
    EXPECT_EQ(bits, 328);
    ASSERT_EQ(again->hbm_read(2, 4194303, found.data(), &bits), SDK_RET_OK);
    EXPECT_EQ(bits, 1024);
    EXPECT_EQ(starts_with(128), image);
    EXPECT_EQ(again->next_used(16, 0), 5u);
    EXPECT_EQ(again->next_used(24, 0), 4096u);
}

TEST_F(Directory, AnEntryOfALibrarysWriterIsReadBackByTheNextProcess) {
    const int written = in_another_process([&] {
        const auto made = adapter::open(path());
        const host::scoped_current use(*made);
        lif_mapping_actiondata_t data = {};
        data.action_u.lif_mapping.src_lport = 0x321;
        return p4pd_entry_install(16, 9, nullptr, nullptr, &data);
    });
    ASSERT_EQ(written, 0);
    const auto again = adapter::open(path());
    const host::scoped_current use(*again);
    lif_mapping_actiondata_t back = {};
    ASSERT_EQ(p4pd_entry_read(16, 9, nullptr, nullptr, &back, nullptr, false), 0);
    EXPECT_EQ(+back.action_u.lif_mapping.src_lport, 0x321);
}

// --- Who is let in -------------------------------------------------------------------------------

std::string locked(const std::string &directory) {
    return directory + "/adapter: the adapter is open in another process";
}

TEST_F(Directory, ASecondProcessIsRefusedWhileTheFirstHasIt) {
    auto made = adapter::open(path());
    const auto try_to_open = [&] {
        return in_another_process(
            [&] { return message_of([&] { adapter::open(path()); }) == locked(path()) ? 17 : 0; });
    };
    EXPECT_EQ(try_to_open(), 17);
    made.reset();
    EXPECT_EQ(try_to_open(), 0);
}

TEST_F(Directory, TheSameProcessIsRefusedAsWell) {
    const auto made = adapter::open(path());
    EXPECT_EQ(message_of([&] { adapter::open(path()); }), locked(path()));
}

TEST_F(Directory, OtherDepthsAreRefusedAndNothingIsChanged) {
    { adapter::open(path(), {.flow_rows = 1024, .flow_ohash_rows = 512}); }
    const std::string found = "halden adapter 1\nflow_rows 1024\nflow_ohash_rows 512\n";
    EXPECT_EQ(message_of([&] { adapter::open(path()); }),
              path() + "/adapter: was made for other depths:\n" + found +
                  "wanted are:\nhalden adapter 1\nflow_rows 4194304\nflow_ohash_rows 2097152\n");
    EXPECT_EQ(
        message_of([&] { adapter::open(path(), {.flow_rows = 1024, .flow_ohash_rows = 256}); }),
        path() + "/adapter: was made for other depths:\n" + found +
            "wanted are:\nhalden adapter 1\nflow_rows 1024\nflow_ohash_rows 256\n");
    EXPECT_EQ(text_of(path() + "/adapter"), found);
    // A refusal leaves no lock behind.
    EXPECT_EQ(
        message_of([&] { adapter::open(path(), {.flow_rows = 1024, .flow_ohash_rows = 512}); }),
        "");
}

TEST_F(Directory, SomebodyElsesDirectoryIsRefusedAndKept) {
    std::filesystem::create_directories(path());
    write_text(path() + "/adapter", "network: eth0\n");
    EXPECT_EQ(message_of([&] { adapter::open(path()); }), path() + "/adapter: is not an adapter's");
    EXPECT_EQ(text_of(path() + "/adapter"), "network: eth0\n");
}

// Killed before it had written what the directory holds: nothing else was made yet.
TEST_F(Directory, AFileCutShortIsCompleted) {
    for (const char *text : {"", "halden adapter 1\nflow_ro"}) {
        std::filesystem::create_directories(path());
        write_text(path() + "/adapter", text);
        EXPECT_EQ(message_of([&] { adapter::open(path()); }), "");
        EXPECT_EQ(text_of(path() + "/adapter"),
                  "halden adapter 1\nflow_rows 4194304\nflow_ohash_rows 2097152\n");
    }
}

TEST_F(Directory, APlaceThatCannotBeADirectoryIsRefused) {
    write_text(path(), "a file");
    EXPECT_THAT(message_of([&] { adapter::open(path()); }), testing::StartsWith(path() + ": "));
    EXPECT_EQ(message_of([&] { adapter::open(""); }), "the adapter's directory has no name");
}

// A memory file of another size cannot be mapped: the calls say so, and the file stays.
TEST_F(Directory, AMemoryThatCannotBeMappedIsOutOfMemory) {
    const auto made = adapter::open(path());
    const bytes image(64, 0x11);
    uint16_t bits = 0xeeee;
    bytes found(1024), mask(1024);
    for (const char *name : {"table-16.sram", "table-08.tcam", "table-21.hbm", "table-02.hbm"})
        write_text(path() + "/" + name, "short");
    EXPECT_EQ(made->sram_write(16, 0, image.data(), 49, nullptr), SDK_RET_OOM);
    EXPECT_EQ(made->sram_read(16, 0, found.data(), &bits), SDK_RET_OOM);
    EXPECT_EQ(bits, 0);
    EXPECT_EQ(made->tcam_write(8, 0, image.data(), image.data(), 128), SDK_RET_OOM);
    EXPECT_EQ(made->tcam_read(8, 0, found.data(), mask.data(), &bits), SDK_RET_OOM);
    EXPECT_EQ(made->hbm_write(21, 0, image.data(), 328), SDK_RET_OOM);
    EXPECT_EQ(made->hbm_read(21, 0, found.data(), &bits), SDK_RET_OOM);
    EXPECT_EQ(made->hbm_write(2, 0, image.data(), 512), SDK_RET_OOM);
    EXPECT_EQ(made->hbm_read(2, 0, found.data(), &bits), SDK_RET_OOM);
    EXPECT_EQ(made->clear_row(8, 0), SDK_RET_OOM);
    EXPECT_EQ(made->hbm_rows(2), nullptr);
    EXPECT_EQ(made->next_used(16, 0), 1024u);
    EXPECT_EQ(made->next_used(2, 0), 4194304u);
    EXPECT_EQ(text_of(path() + "/table-16.sram"), "short");
    // Once the file is put right the memory is there.
    std::filesystem::remove(path() + "/table-16.sram");
    EXPECT_EQ(made->sram_write(16, 0, image.data(), 49, nullptr), SDK_RET_OK);
}

// --- A writer killed in the middle ---------------------------------------------------------------

// Writes one row over and over, first an entry of 0x1a bytes, then one of 0xe9 bytes, until it is
// killed; every entry's length goes with its bytes. Both bytes set the flow row's valid bit.
class KilledWriter : public Directory {
  protected:
    static constexpr uint8_t one = 0x1a, other = 0xe9;
    static constexpr int rounds = 40;

    using row_write = std::function<void(adapter &, const bytes &image, bool first)>;

    // Ends a writing process at some instruction after its first two writes.
    void kill_one(const row_write &write, useconds_t after) {
        int ready[2];
        ASSERT_EQ(pipe(ready), 0);
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            const auto made = adapter::open(path());
            const bytes images[] = {bytes(128, one), bytes(128, other)};
            for (unsigned i = 0;; ++i) {
                write(*made, images[i % 2], i % 2 == 0);
                if (i == 1 && ::write(ready[1], "r", 1) != 1) _exit(1);
            }
        }
        char letter = 0;
        const ssize_t got = read(ready[0], &letter, 1);
        usleep(after);
        EXPECT_EQ(kill(child, SIGKILL), 0);
        int status = 0;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        close(ready[0]);
        close(ready[1]);
        ASSERT_EQ(got, 1);
        ASSERT_TRUE(WIFSIGNALED(status));
    }
    static useconds_t delay_of(int round) { return static_cast<useconds_t>(37 * (round % 11)); }

    static void expect_whole(const bytes &image, unsigned bits, unsigned bits_of_one,
                             unsigned bits_of_other) {
        ASSERT_FALSE(image.empty());
        ASSERT_TRUE(image[0] == one || image[0] == other);
        ASSERT_EQ(bits, image[0] == one ? bits_of_one : bits_of_other);
        for (uint8_t byte : image) ASSERT_EQ(byte, image[0]);
    }
};

TEST_F(KilledWriter, LeavesAnSramRowWhole) {
    for (int round = 0; round < rounds; ++round) {
        kill_one(
            [](adapter &made, const bytes &image, bool first) {
                made.sram_write(16, 5, image.data(), first ? 512 : 256, nullptr);
            },
            delay_of(round));
        if (HasFatalFailure()) return;
        const auto again = adapter::open(path());
        bytes found(64);
        uint16_t bits = 0;
        ASSERT_EQ(again->sram_read(16, 5, found.data(), &bits), SDK_RET_OK);
        found.resize(bits / 8);
        expect_whole(found, bits, 512, 256);
        if (HasFatalFailure()) return;
    }
}

TEST_F(KilledWriter, LeavesBothImagesOfATcamRowWhole) {
    for (int round = 0; round < rounds; ++round) {
        kill_one(
            [](adapter &made, const bytes &image, bool first) {
                made.tcam_write(9, 5, image.data(), image.data(), first ? 224 : 128);
            },
            delay_of(round));
        if (HasFatalFailure()) return;
        const auto again = adapter::open(path());
        bytes key(32), mask(32);
        uint16_t bits = 0;
        ASSERT_EQ(again->tcam_read(9, 5, key.data(), mask.data(), &bits), SDK_RET_OK);
        key.resize(bits / 8);
        mask.resize(bits / 8);
        key.insert(key.end(), mask.begin(), mask.end());
        expect_whole(key, bits, 224, 128);
        if (HasFatalFailure()) return;
    }
}

TEST_F(KilledWriter, LeavesAnHbmRowWhole) {
    for (int round = 0; round < rounds; ++round) {
        kill_one([](adapter &made, const bytes &image,
                    bool first) { made.hbm_write(21, 5, image.data(), first ? 328 : 192); },
                 delay_of(round));
        if (HasFatalFailure()) return;
        const auto again = adapter::open(path());
        bytes found(64);
        uint16_t bits = 0;
        ASSERT_EQ(again->hbm_read(21, 5, found.data(), &bits), SDK_RET_OK);
        found.resize(bits / 8);
        expect_whole(found, bits, 328, 192);
        if (HasFatalFailure()) return;
    }
}

// A flow row has no room for two images: while its valid bit is set it is whole.
TEST_F(KilledWriter, LeavesAFlowRowWholeOrNotValid) {
    for (int round = 0; round < rounds; ++round) {
        kill_one([](adapter &made, const bytes &image,
                    bool) { made.hbm_write(2, 5, image.data(), 1024); },
                 delay_of(round));
        if (HasFatalFailure()) return;
        const auto again = adapter::open(path());
        bytes found(128);
        uint16_t bits = 0;
        ASSERT_EQ(again->hbm_read(2, 5, found.data(), &bits), SDK_RET_OK);
        const bool valid = (found[116] & 0x08) != 0;  // bit 932
        if (!valid) continue;
        expect_whole(found, bits, 1024, 1024);
        if (HasFatalFailure()) return;
    }
}

TEST_F(KilledWriter, LeavesTheDirectoryFree) {
    kill_one([](adapter &made, const bytes &image,
                bool) { made.sram_write(16, 5, image.data(), 512, nullptr); },
             0);
    EXPECT_EQ(message_of([&] { adapter::open(path()); }), "");
}

// What was acknowledged before the kill is there.
TEST_F(KilledWriter, LosesNoAcknowledgedRow) {
    constexpr uint32_t depth = 1024;
    int acknowledged[2];
    ASSERT_EQ(pipe(acknowledged), 0);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        const auto made = adapter::open(path());
        const bytes image(64, one);
        for (uint32_t row = 0;; row = (row + 1) % depth) {
            made->sram_write(16, row, image.data(), 49, nullptr);
            if (::write(acknowledged[1], &row, sizeof row) != sizeof row) _exit(1);
        }
    }
    uint32_t row = 0;
    while (row < 500) ASSERT_EQ(read(acknowledged[0], &row, sizeof row), ssize_t{sizeof row});
    ASSERT_EQ(kill(child, SIGKILL), 0);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    const auto again = adapter::open(path());
    for (uint32_t each = 0; each <= 500; ++each) ASSERT_EQ(again->next_used(16, each), each);
    close(acknowledged[0]);
    close(acknowledged[1]);
}

}  // namespace
