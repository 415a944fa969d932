// A process that is killed at work loses no entry whose call had returned.

#include "host/state/table_state.h"
#include "host/view/lookup.h"
#include "p4pd.h"
#include "tests/support/scratch_directory.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>

#include "tev_tbl.h"

namespace {

using namespace halden::host;
using halden::test::scratch_directory;

// Small flow memories: every second flow or so is chained.
constexpr adapter_options small = {.flow_rows = 256, .flow_ohash_rows = 256};

tev_tbl_flow_spec_t flow(uint32_t number) {
    tev_tbl_flow_spec_t spec = {};
    spec.key.metadata_flow_key_proto = 6;
    spec.key.metadata_flow_key_sport = static_cast<uint16_t>(number);
    spec.key.metadata_flow_key_dport = static_cast<uint16_t>(number * 7);
    spec.action_u.flow_hash.flow_idx = number;
    return spec;
}

tev_tbl_vlan_mapping_spec_t vlan(uint32_t number) {
    tev_tbl_vlan_mapping_spec_t spec = {};
    spec.key.vlan_id = static_cast<uint16_t>(number);
    spec.key.l2seg = 1;
    spec.action_u.vlan_mapping.l2seg = static_cast<uint16_t>(number);
    return spec;
}

bool hardware_finds(adapter &hardware, uint32_t table, void *key) {
    uint8_t image[128] = {};
    p4pd_hwkey_hwmask_build(table, key, nullptr, image, nullptr);
    return view::lookup(hardware, table, image).hit;
}

// Creates entries, saying after each call how many there are, until it is killed.
[[noreturn]] void work(const std::string &directory, int acknowledged) {
    const auto hardware = adapter::open(directory, small);
    const table_state tables(*hardware);
    uint32_t done = 0;
    for (uint32_t number = 1;; number = number % 250 + 1) {
        auto spec = flow(number);
        auto other = vlan(number);
        if (tev_tbl_flow_find(&spec.key) == TEV_TBL_RET_OK) {
            // Beyond the first round entries come and go; those up to 100 stay.
            if (number > 100) tev_tbl_flow_delete(&spec.key);
            continue;
        }
        if (tev_tbl_flow_create(&spec) != TEV_TBL_RET_OK) _exit(2);
        if (number <= 250 && done < 250 && tev_tbl_vlan_mapping_create(&other) != TEV_TBL_RET_OK)
            _exit(3);
        if (done < 250) ++done;
        if (write(acknowledged, &done, sizeof done) != sizeof done) _exit(4);
    }
}

// The last acknowledged number before the child was killed.
uint32_t kill_at_work(const std::string &directory, uint32_t calls) {
    int ends[2];
    if (pipe(ends) != 0) return 0;
    const pid_t child = fork();
    if (child == 0) {
        close(ends[0]);
        work(directory, ends[1]);
    }
    close(ends[1]);
    uint32_t done = 0, value = 0;
    for (uint32_t i = 0; i < calls && read(ends[0], &value, sizeof value) == sizeof value; ++i)
        done = value;
    kill(child, SIGKILL);
    while (read(ends[0], &value, sizeof value) == sizeof value) done = value;
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    return WIFSIGNALED(status) ? done : 0;
}

TEST(WarmRestart, AKilledProcessLosesNoEntryWhoseCallReturned) {
    for (uint32_t calls : {40u, 133u, 250u, 700u, 1500u}) {
        SCOPED_TRACE(calls);
        const scratch_directory scratch;
        const uint32_t done = kill_at_work(scratch.path(), calls);
        ASSERT_GE(done, std::min(calls, 250u));
        EXPECT_TRUE(std::filesystem::exists(scratch.path() + "/engines-at-work"));

        const auto hardware = adapter::open(scratch.path(), small);
        const table_state tables(*hardware);
        for (uint32_t number = 1; number <= std::min(done, 100u); ++number) {
            auto spec = flow(number);
            tev_tbl_flow_info_t info = {};
            ASSERT_EQ(tev_tbl_flow_read(&spec.key, &info), TEV_TBL_RET_OK) << number;
            EXPECT_EQ(+info.action_u.flow_hash.flow_idx, number);
            EXPECT_TRUE(hardware_finds(*hardware, P4TBL_ID_FLOW, &spec.key)) << number;
        }
        for (uint32_t number = 1; number <= done; ++number) {
            auto spec = vlan(number);
            EXPECT_EQ(tev_tbl_vlan_mapping_find(&spec.key), TEV_TBL_RET_OK) << number;
            EXPECT_TRUE(hardware_finds(*hardware, P4TBL_ID_VLAN_MAPPING, &spec.key)) << number;
        }
        // The tables take new entries as if nothing had happened.
        auto next = flow(1000);
        EXPECT_EQ(tev_tbl_flow_create(&next), TEV_TBL_RET_OK);
    }
}

// A flow row that nothing leads to is left by a process that died, or was written on purpose.
TEST(WarmRestart, AProcessThatEndsInGoodOrderLeavesRowsAlone) {
    const scratch_directory scratch;
    const auto write_alone = [&] {
        const auto hardware = adapter::open(scratch.path(), small);
        const scoped_current use(*hardware);
        flow_ohash_swkey_t key = {};
        key.metadata_flow_key_proto = 17;
        flow_ohash_actiondata_t data = {};
        EXPECT_EQ(p4pd_entry_install(P4TBL_ID_FLOW_OHASH, 5, &key, nullptr, &data), P4PD_SUCCESS);
    };
    const auto used = [&] {
        const auto hardware = adapter::open(scratch.path(), small);
        const table_state tables(*hardware);
        return hardware->next_used(P4TBL_ID_FLOW_OHASH, 0) == 5;
    };
    write_alone();
    EXPECT_TRUE(used());
    EXPECT_FALSE(std::filesystem::exists(scratch.path() + "/engines-at-work"));
    EXPECT_TRUE(used());
}

}  // namespace
