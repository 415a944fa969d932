// How an adapter's directory is opened: what is made, what is left alone, who is let in beside.

#include "host/adapter.h"
#include "host/state/table_state.h"
#include "host/trace/trace.h"

#include "tests/support/other_process.h"
#include "tests/support/scratch_directory.h"
#include "tev_tbl.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace halden;
using host::access;
using host::adapter;
using test::in_another_process;
using test::message_of;
using test::scratch_directory;
using test::text_of;
using test::write_text;
namespace fs = std::filesystem;

constexpr host::adapter_options small = {.flow_rows = 16, .flow_ohash_rows = 8};
host::adapter_options small_with(access how) {
    host::adapter_options out = small;
    out.access = how;
    return out;
}

class Access : public testing::Test {
  protected:
    void SetUp() override { host::trace::set_level("off"); }
    void TearDown() override { host::trace::set_level("info"); }

    std::string path() const { return scratch_.file("a"); }
    std::unique_ptr<adapter> open(access how) const {
        return adapter::open(path(), small_with(how));
    }
    std::string refusal(access how) const {
        return message_of([&] { open(how); });
    }
    // An adapter with one row of lif_mapping, one of vlan_mapping and two flows of one bucket.
    void make() const {
        const auto made = open(access::create);
        host::table_state tables(*made);
        ASSERT_EQ(tev_tbl_lif_mapping_create(&lif(5, 17)), TEV_TBL_RET_OK);
        ASSERT_EQ(tev_tbl_vlan_mapping_create(&vlan(100)), TEV_TBL_RET_OK);
        for (uint16_t port = 1; port <= flows; ++port)
            ASSERT_EQ(tev_tbl_flow_create(&flow(port)), TEV_TBL_RET_OK);
    }

    static constexpr uint16_t flows = 6;
    static tev_tbl_lif_mapping_spec_t &lif(uint16_t index, uint16_t lport) {
        static tev_tbl_lif_mapping_spec_t spec;
        spec = {};
        spec.key.index = index;
        spec.action_u.lif_mapping.src_lport = lport & 0x7ff;
        return spec;
    }
    static tev_tbl_vlan_mapping_spec_t &vlan(uint16_t id) {
        static tev_tbl_vlan_mapping_spec_t spec;
        spec = {};
        spec.key.vlan_id = id & 0xfff;
        spec.action_u.vlan_mapping.rmac_vrf = 3;
        return spec;
    }
    static tev_tbl_flow_spec_t &flow(uint16_t port) {
        static tev_tbl_flow_spec_t spec;
        spec = {};
        spec.key.metadata_flow_key_sport = port;
        spec.action_u.flow_hash.flow_idx = port;
        return spec;
    }
    static void expect_all_found() {
        tev_tbl_lif_mapping_info_t lif_found = {};
        EXPECT_EQ(tev_tbl_lif_mapping_read(&lif(5, 0).key, &lif_found), TEV_TBL_RET_OK);
        EXPECT_EQ(+lif_found.action_u.lif_mapping.src_lport, 17);
        EXPECT_EQ(tev_tbl_vlan_mapping_find(&vlan(100).key), TEV_TBL_RET_OK);
        for (uint16_t port = 1; port <= flows; ++port)
            EXPECT_EQ(tev_tbl_flow_find(&flow(port).key), TEV_TBL_RET_OK) << port;
        EXPECT_EQ(tev_tbl_flow_find(&flow(flows + 1).key), TEV_TBL_RET_ENTRY_NOT_FOUND);
    }

    // Name, bytes and times of change of everything there.
    std::map<std::string, std::string> everything() const {
        std::map<std::string, std::string> out;
        for (const auto &each : fs::directory_iterator(path())) {
            struct stat status = {};
            EXPECT_EQ(stat(each.path().c_str(), &status), 0);
            const auto time = [](const timespec &at) {
                return std::to_string(at.tv_sec) + "." + std::to_string(at.tv_nsec) + " ";
            };
            out[each.path().filename().string()] =
                time(status.st_mtim) + time(status.st_ctim) + text_of(each.path());
        }
        struct stat status = {};
        EXPECT_EQ(stat(path().c_str(), &status), 0);
        out["."] =
            std::to_string(status.st_mtim.tv_sec) + "." + std::to_string(status.st_mtim.tv_nsec);
        return out;
    }

    scratch_directory scratch_;
};

// --- What is made --------------------------------------------------------------------------------

TEST_F(Access, OnlyCreateMakesADirectory) {
    for (access how : {access::write, access::read, access::rehearse}) {
        EXPECT_EQ(refusal(how), path() + ": there is no adapter here: no such directory");
        EXPECT_THROW(open(how), host::no_adapter);
        EXPECT_FALSE(fs::exists(path()));
    }
    open(access::create);
    EXPECT_TRUE(fs::exists(path() + "/adapter"));
}

TEST_F(Access, AnEmptyDirectoryBecomesAnAdapterByCreateAlone) {
    fs::create_directory(path());
    for (access how : {access::write, access::read, access::rehearse})
        EXPECT_EQ(refusal(how), path() + ": there is no adapter here: the directory is empty");
    EXPECT_TRUE(fs::is_empty(path()));
    fs::create_directory(path() + "/lost+found");
    EXPECT_EQ(refusal(access::create), "");
    EXPECT_TRUE(fs::exists(path() + "/adapter"));
}

TEST_F(Access, ADirectoryOfOtherFilesIsLeftAlone) {
    fs::create_directory(path());
    write_text(path() + "/letter", "dear");
    EXPECT_EQ(refusal(access::create),
              path() +
                  ": the directory is neither empty nor an adapter's: it has no file "
                  "'adapter'");
    for (access how : {access::write, access::read, access::rehearse})
        EXPECT_EQ(refusal(how),
                  path() + ": there is no adapter here: the directory has no file 'adapter'");
    EXPECT_EQ(std::distance(fs::directory_iterator(path()), {}), 1);
}

TEST_F(Access, AMissingParentIsNotMade) {
    EXPECT_EQ(message_of([&] { adapter::open(path() + "/b"); }),
              path() + "/b: the directory that it is to be made in does not exist");
    EXPECT_FALSE(fs::exists(path()));
}

// The maker was killed with the first file half written: before there was anything to lose.
TEST_F(Access, AnAdapterCutShortIsCompletedByWhoeverMayWrite) {
    fs::create_directory(path());
    write_text(path() + "/adapter", "halden adapter 1\nflow_");
    EXPECT_EQ(refusal(access::read), "");
    EXPECT_EQ(refusal(access::rehearse), "");
    EXPECT_EQ(text_of(path() + "/adapter"), "halden adapter 1\nflow_");
    EXPECT_EQ(refusal(access::write), "");
    EXPECT_EQ(text_of(path() + "/adapter"), "halden adapter 1\nflow_rows 16\nflow_ohash_rows 8\n");
}

TEST_F(Access, AnEmptyFileOfThatNameAmongOthersIsNoAdapter) {
    fs::create_directory(path());
    write_text(path() + "/adapter", "");
    write_text(path() + "/plug", "230 V");
    for (access how : {access::create, access::write, access::read, access::rehearse})
        EXPECT_EQ(refusal(how), path() + "/adapter: is not an adapter's");
    EXPECT_EQ(text_of(path() + "/adapter"), "");
}

TEST_F(Access, AVersionThatIsNotKnownIsRefusedByItsNumber) {
    fs::create_directory(path());
    write_text(path() + "/adapter", "halden adapter 7\nflow_rows 16\nflow_ohash_rows 8\n");
    for (access how : {access::create, access::write, access::read, access::rehearse})
        EXPECT_EQ(refusal(how),
                  path() + "/adapter: halden adapter 7: this version of halden reads 1");
    write_text(path() + "/adapter", "halden adapter 10\nflow_rows 16\nflow_ohash_rows 8\n");
    EXPECT_EQ(refusal(access::write),
              path() + "/adapter: halden adapter 10: this version of halden reads 1");
    for (const char *text : {"halden adapter seven\n", "halden adapter 1", "halden adapter \n",
                             "halden adapter 1 \nflow_rows 16\n", "halden adapter -1\n"}) {
        write_text(path() + "/adapter", text);
        write_text(path() + "/table-16.sram", "");
        EXPECT_EQ(refusal(access::read), path() + "/adapter: is not an adapter's") << text;
    }
}

// --- Reading -------------------------------------------------------------------------------------

TEST_F(Access, ReadingFindsEverythingAndChangesNothing) {
    make();
    const auto before = everything();
    {
        const auto reader = open(access::read);
        EXPECT_FALSE(reader->is_writable());
        host::table_state tables(*reader);
        expect_all_found();
        // Absent memories read as empty.
        EXPECT_EQ(reader->next_used(24, 0), 4096u);
        EXPECT_TRUE(everything() == before);
    }
    EXPECT_TRUE(everything() == before);
}

// A time of access that is older than the last change is set anew by whoever reads, on every mount
// but those that never do.
TEST_F(Access, ReadingLeavesTheTimesOfAccess) {
    make();
    const timespec times[] = {{.tv_sec = 1000, .tv_nsec = 0}, {.tv_sec = 2000, .tv_nsec = 0}};
    for (const auto &each : fs::directory_iterator(path()))
        ASSERT_EQ(utimensat(AT_FDCWD, each.path().c_str(), times, 0), 0);
    {
        const auto reader = open(access::read);
        host::table_state tables(*reader);
        expect_all_found();
    }
    for (const auto &each : fs::directory_iterator(path())) {
        struct stat status = {};
        ASSERT_EQ(stat(each.path().c_str(), &status), 0);
        EXPECT_EQ(status.st_atim.tv_sec, 1000) << each.path();
    }
}

TEST_F(Access, ReadingRefusesEveryWrite) {
    make();
    const auto before = everything();
    const auto reader = open(access::read);
    const std::vector<uint8_t> image(128, 0x11);
    EXPECT_EQ(reader->sram_write(16, 5, image.data(), 49, nullptr), SDK_RET_HW_PROGRAM_ERR);
    EXPECT_EQ(reader->tcam_write(8, 5, image.data(), image.data(), 128), SDK_RET_HW_PROGRAM_ERR);
    EXPECT_EQ(reader->hbm_write(21, 5, image.data(), 328), SDK_RET_HW_PROGRAM_ERR);
    EXPECT_EQ(reader->hbm_write(2, 5, image.data(), 1024), SDK_RET_HW_PROGRAM_ERR);
    EXPECT_EQ(reader->clear_row(16, 5), SDK_RET_HW_PROGRAM_ERR);
    EXPECT_EQ(reader->clear_row(8, 5), SDK_RET_HW_PROGRAM_ERR);
    EXPECT_EQ(reader->clear_row(2, 5), SDK_RET_HW_PROGRAM_ERR);
    host::table_state tables(*reader);
    EXPECT_EQ(tev_tbl_lif_mapping_update(&lif(5, 18)), TEV_TBL_RET_WRITE_FAILED);
    EXPECT_EQ(tev_tbl_lif_mapping_delete(&lif(5, 18).key), TEV_TBL_RET_WRITE_FAILED);
    EXPECT_EQ(tev_tbl_vlan_mapping_create(&vlan(101)), TEV_TBL_RET_WRITE_FAILED);
    EXPECT_EQ(tev_tbl_vlan_mapping_delete(&vlan(100).key), TEV_TBL_RET_WRITE_FAILED);
    EXPECT_EQ(tev_tbl_flow_create(&flow(flows + 1)), TEV_TBL_RET_WRITE_FAILED);
    EXPECT_EQ(tev_tbl_flow_update(&flow(1)), TEV_TBL_RET_WRITE_FAILED);
    EXPECT_EQ(tev_tbl_flow_delete(&flow(1).key), TEV_TBL_RET_WRITE_FAILED);
    EXPECT_EQ(tables.tables().flow_tbl()->restore_state(), SDK_RET_HW_PROGRAM_ERR);
    expect_all_found();
    EXPECT_TRUE(everything() == before);
}

TEST_F(Access, TheReasonOfARefusedWriteIsSaid) {
    make();
    const auto reader = open(access::read);
    host::trace::set_level("error");
    host::trace::set_pattern("%v");
    ASSERT_TRUE(host::trace::set_file(scratch_.file("messages")));
    EXPECT_EQ(reader->hbm_write(21, 5, nullptr, 0), SDK_RET_HW_PROGRAM_ERR);
    host::trace::flush();
    host::trace::set_file({});
    EXPECT_EQ(text_of(scratch_.file("messages")),
              "hbm_write: table 21: the adapter is open for reading only\n");
}

// As a person who may read there, and nothing more, sees it.
TEST_F(Access, ReadingNeedsNoRightToWrite) {
    make();
    fs::permissions(path(), fs::perms(0555));
    for (const auto &each : fs::directory_iterator(path()))
        fs::permissions(each.path(), fs::perms(0444));
    const int status = in_another_process([&] {
        if (chdir(path().c_str()) != 0) return 1;
        if (geteuid() == 0 && setuid(65534) != 0) return 2;
        if (!message_of([&] { adapter::open(".", small_with(access::write)); }).starts_with("./"))
            return 3;
        const auto reader = adapter::open(".", small_with(access::read));
        host::table_state tables(*reader);
        return tev_tbl_lif_mapping_find(&lif(5, 0).key) == TEV_TBL_RET_OK ? 17 : 4;
    });
    fs::permissions(path(), fs::perms(0755));
    EXPECT_EQ(status, 17);
}

// --- Rehearsing ----------------------------------------------------------------------------------

TEST_F(Access, ARehearsalWorksAsEverAndLeavesNothing) {
    make();
    const auto before = everything();
    {
        const auto stage = open(access::rehearse);
        EXPECT_TRUE(stage->is_writable());
        host::table_state tables(*stage);
        expect_all_found();
        EXPECT_EQ(tev_tbl_lif_mapping_create(&lif(6, 1)), TEV_TBL_RET_OK);
        EXPECT_EQ(tev_tbl_lif_mapping_delete(&lif(5, 0).key), TEV_TBL_RET_OK);
        EXPECT_EQ(tev_tbl_vlan_mapping_create(&vlan(101)), TEV_TBL_RET_OK);
        EXPECT_EQ(tev_tbl_flow_create(&flow(flows + 1)), TEV_TBL_RET_OK);
        EXPECT_EQ(tev_tbl_flow_delete(&flow(1).key), TEV_TBL_RET_OK);
        EXPECT_EQ(tev_tbl_flow_find(&flow(flows + 1).key), TEV_TBL_RET_OK);
        EXPECT_EQ(tev_tbl_flow_find(&flow(1).key), TEV_TBL_RET_ENTRY_NOT_FOUND);
        // A walk comes to what was written here, also where there is no file.
        EXPECT_EQ(stage->next_used(16, 0), 6u);
        const std::vector<uint8_t> image(64, 0x11);
        EXPECT_EQ(stage->sram_write(24, 4000, image.data(), 19, nullptr), SDK_RET_OK);
        EXPECT_EQ(stage->next_used(24, 0), 4000u);
        EXPECT_EQ(stage->next_used(24, 4001), 4096u);
    }
    EXPECT_TRUE(everything() == before);
    const auto again = open(access::write);
    host::table_state tables(*again);
    expect_all_found();
}

// --- Who is let in -------------------------------------------------------------------------------

TEST_F(Access, ReadersShareAndAWriterIsAlone) {
    make();
    const std::string busy = path() + "/adapter: the adapter is open in another process";
    {
        const auto reader = open(access::read);
        EXPECT_EQ(refusal(access::read), "");
        EXPECT_EQ(refusal(access::rehearse), "");
        EXPECT_EQ(refusal(access::write), busy);
        EXPECT_EQ(refusal(access::create), busy);
    }
    const auto writer = open(access::write);
    for (access how : {access::create, access::write, access::read, access::rehearse})
        EXPECT_EQ(refusal(how), busy);
}

}  // namespace
