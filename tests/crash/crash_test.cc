// Processes killed at work lose nothing that was acknowledged; and the judge of it sees what is
// lost.

#include "host/state/table_state.h"
#include "host/trace/trace.h"
#include "tests/crash/kills.h"
#include "tests/crash/store_trap.h"
#include "tests/support/scratch_directory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace halden;
using namespace halden::crash;
using test::change;
using test::scratch_directory;
using test::shadow_kind;
using testing::IsEmpty;
using testing::Not;

class Crash : public testing::Test {
  protected:
    void SetUp() override { host::trace::set_level("off"); }
    void TearDown() override { host::trace::set_level("info"); }

    std::string directory() const { return scratch_.file("adapter"); }
    scratch_directory scratch_;
};

constexpr uint32_t kills = 200;

TEST_F(Crash, TwoHundredKillsLoseNothing) {
    // The operations are the same each time; the instants at random are the machine's own.
    killer subject(directory(), 1);
    const kill_figures &done = subject.run(kills);
    EXPECT_THAT(done.complaints, IsEmpty());
    EXPECT_EQ(done.wrong, 0u);
    EXPECT_EQ(done.kills, kills);
    EXPECT_EQ(done.at_random + done.behind_stores, kills);
    EXPECT_GT(done.of_openers, 10u);
    EXPECT_GT(done.acknowledged, 1000u);
    // Work went on: the tables are neither empty nor all refusing.
    EXPECT_GT(subject.wanted().size(), 50u);
    EXPECT_LT(done.refused, done.acknowledged / 20);
    if (store_trap::is_supported()) {
        EXPECT_GT(done.behind_stores, 20u);
        EXPECT_GT(done.swept + done.swept_openings, 0u);
    }
}

// --- The trap ------------------------------------------------------------------------------------

uint32_t trapped_write(const std::string &directory, uint32_t last) {
    const auto hardware = host::adapter::open(directory, shadow::depths);
    const std::vector<uint8_t> image(64, 0x5a);
    hardware->sram_write(41, 0, image.data(), 512, nullptr);
    store_trap::arm(directory, last);
    hardware->sram_write(41, 0, image.data(), 256, nullptr);
    return store_trap::disarm();
}

TEST_F(Crash, ARowIsWrittenInNineStores) {
    if (!store_trap::is_supported()) GTEST_SKIP() << "no single steps here";
    // Eight words of image and the state word.
    EXPECT_EQ(trapped_write(directory(), 0), 9u);
}

TEST_F(Crash, AStoreMayBeTheLast) {
    if (!store_trap::is_supported()) GTEST_SKIP() << "no single steps here";
    for (const auto &[last, bits] : {std::pair(8u, 512), std::pair(9u, 256)}) {
        const pid_t child = fork();
        if (child == 0) {
            trapped_write(directory(), last);
            _exit(0);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status));
        const auto hardware = host::adapter::open(directory(), shadow::depths);
        uint8_t image[64];
        uint16_t found = 0;
        hardware->sram_read(41, 0, image, &found);
        EXPECT_EQ(found, bits);
    }
}

// --- The judge -----------------------------------------------------------------------------------

// An adapter with every entry of all tables but each third.
class Judge : public Crash {
  protected:
    Judge() {
        hardware_ = host::adapter::open(directory(), shadow::depths);
        tables_ = std::make_unique<host::table_state>(*hardware_);
        for (uint16_t table = 0; table < shadow::tables().size(); ++table)
            for (uint16_t entry = 0; entry < shadow::tables()[table].candidates.size(); ++entry)
                if (entry % 3 != 2) put({change::create, table, entry, 7u + entry});
    }
    void put(const operation &op) {
        const uint32_t result = shadow::run(*hardware_, op);
        ASSERT_TRUE(result == 0 || shadow::may_be_refused(op)) << shadow::text_of(op);
        if (result == 0) wanted_.note(op);
    }
    std::vector<std::string> by_memory() { return wanted_.hardware_differences(*hardware_, {}); }
    std::vector<std::string> by_all() { return wanted_.differences(*hardware_); }
    uint16_t first_of(shadow_kind kind) {
        uint16_t table = 0;
        while (shadow::tables()[table].kind != kind) ++table;
        return table;
    }

    std::unique_ptr<host::adapter> hardware_;
    std::unique_ptr<host::table_state> tables_;
    shadow wanted_;
};

TEST_F(Judge, FindsNothingWrongWithWhatWasDone) {
    EXPECT_THAT(by_all(), IsEmpty());
    EXPECT_GT(wanted_.size(), 150u);
    // Some hash entries and some flows stand in the overflow.
    EXPECT_LT(hardware_->next_used(7, 0), 512u);
    EXPECT_LT(hardware_->next_used(host::flow_ohash_table, 0), 256u);
    // In a new process too.
    tables_.reset();
    hardware_.reset();
    hardware_ = host::adapter::open(directory(), shadow::depths);
    EXPECT_THAT(by_memory(), IsEmpty());
    tables_ = std::make_unique<host::table_state>(*hardware_);
    EXPECT_THAT(by_all(), IsEmpty());
}

TEST_F(Judge, SeesAnEntryThatIsNotThereAndOneThatWasLost) {
    for (uint16_t table = 0; table < shadow::tables().size(); ++table) {
        SCOPED_TRACE(shadow::tables()[table].name);
        const shadow right = wanted_;
        wanted_.note({change::remove, table, 0, 0});
        EXPECT_THAT(by_all(), Not(IsEmpty()));
        wanted_ = right;
        if (shadow::tables()[table].candidates.size() > 2) {
            wanted_.note({change::create, table, 2, 5});
            EXPECT_THAT(by_memory(), Not(IsEmpty()));
        }
        wanted_ = right;
        wanted_.note({change::update, table, 0, 123456});
        EXPECT_THAT(by_memory(), Not(IsEmpty()));
        EXPECT_THAT(by_all(), Not(IsEmpty()));
        wanted_ = right;
    }
}

TEST_F(Judge, SeesRowsThatNobodyAskedFor) {
    const std::vector<uint8_t> image(128, 0x11);
    for (const uint32_t id : {16u, 3u, 8u, 21u, 2u, 1u, 7u, 41u}) {
        SCOPED_TRACE(id);
        EXPECT_THAT(by_all(), IsEmpty());
        const host::table_memory &memory = *host::table_memory_of(id);
        uint32_t row = hardware_->depth(id) - 1;
        while (row > 0 && hardware_->next_used(id, row) == row) --row;
        if (memory.has_tcam())
            hardware_->tcam_write(id, row, image.data(), image.data() + 64, 32);
        else if (memory.data == host::memory::hbm)
            hardware_->hbm_write(id, row, image.data(), 256);
        else
            hardware_->sram_write(id, row, image.data(), 256, nullptr);
        EXPECT_THAT(by_all(), Not(IsEmpty()));
        if (id == 41) break;  // the row was another's
        ASSERT_EQ(hardware_->clear_row(id, row), SDK_RET_OK);
    }
}

TEST_F(Judge, TakesAnOperationUnderWayForDoneOrNotAndForNothingElse) {
    for (const shadow_kind kind : {shadow_kind::index, shadow_kind::hash, shadow_kind::ternary,
                                   shadow_kind::flow, shadow_kind::raw_sram}) {
        const uint16_t table = first_of(kind);
        SCOPED_TRACE(shadow::tables()[table].name);
        const operation update{change::update, table, 0, 99};
        EXPECT_EQ(wanted_.settle(*hardware_, update), "");  // not done
        EXPECT_THAT(by_all(), IsEmpty());
        ASSERT_EQ(shadow::run(*hardware_, update), 0u);
        EXPECT_EQ(wanted_.settle(*hardware_, update), "");  // done
        EXPECT_THAT(by_all(), IsEmpty());
        EXPECT_EQ(wanted_.settle(*hardware_, {change::update, table, 0, 100}), "");
        wanted_.note({change::update, table, 0, 101});
        EXPECT_THAT(wanted_.settle(*hardware_, {change::update, table, 0, 102}),
                    testing::HasSubstr("neither old nor new"));
        wanted_.note(update);
    }
}

}  // namespace
