// What a process that was killed had begun is finished, and nothing else is touched: rows that
// somebody wrote stay, whatever leads to them, and a process that only read leaves no work.

#include "host/engines/flow/ftl_access.h"
#include "host/memory/work_page.h"
#include "host/state/table_state.h"
#include "host/view/lookup.h"
#include "p4pd.h"
#include "tests/support/scratch_directory.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <filesystem>
#include <functional>
#include <set>

#include "tev_tbl.h"

namespace {

using namespace halden::host;
using halden::test::scratch_directory;
using halden::test::text_of;
using halden::test::write_text;

constexpr uint32_t flow_ohash = 1, flow = 2, tunnel_terminate_v4 = 8;
constexpr adapter_options small = {.flow_rows = 16, .flow_ohash_rows = 64};

tev_tbl_flow_spec_t flow_of(uint32_t number) {
    tev_tbl_flow_spec_t spec = {};
    spec.key.metadata_flow_key_proto = 6;
    spec.key.metadata_flow_key_sport = static_cast<uint16_t>(number);
    spec.action_u.flow_hash.flow_idx = number;
    return spec;
}

class WorkLeft : public testing::Test {
  protected:
    std::string path() const { return scratch_.path() + "/adapter"; }
    std::string mark() const { return path() + "/engines-at-work"; }

    // Runs `work` in a process of its own, which is to be killed by SIGKILL, its own or ours.
    void in_killed_process(const std::function<void(adapter &)> &work) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            const auto hardware = adapter::open(path(), small);
            work(*hardware);
            kill(getpid(), SIGKILL);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
    }
    // An overflow row that nothing leads to, by somebody who works without engines.
    void write_alone(uint32_t row) {
        const auto hardware = adapter::open(path(), small);
        const scoped_current use(*hardware);
        flow_ohash_swkey_t key = {};
        key.metadata_flow_key_proto = 17;
        flow_ohash_actiondata_t data = {};
        data.action_u.flow_hash.entry_valid = 1;
        ASSERT_EQ(p4pd_entry_install(flow_ohash, row, &key, nullptr, &data), P4PD_SUCCESS);
        alone_.assign(hardware->hbm_rows(flow_ohash) + 128 * row,
                      hardware->hbm_rows(flow_ohash) + 128 * (row + 1));
    }
    bool is_there(adapter &hardware, uint32_t row) const {
        return std::memcmp(hardware.hbm_rows(flow_ohash) + 128 * row, alone_.data(), 128) == 0;
    }

    scratch_directory scratch_;
    std::vector<uint8_t> alone_;
};

TEST_F(WorkLeft, AKilledReaderLeavesRowsAlone) {
    write_alone(50);
    in_killed_process([](adapter &hardware) {
        const table_state tables(hardware);
        auto spec = flow_of(1);
        if (tev_tbl_flow_find(&spec.key) != TEV_TBL_RET_ENTRY_NOT_FOUND) _exit(1);
        kill(getpid(), SIGKILL);
    });
    const auto hardware = adapter::open(path(), small);
    EXPECT_FALSE(hardware->has_work_left());
    const table_state tables(*hardware);
    EXPECT_TRUE(is_there(*hardware, 50));
}

// Killed behind each store of a series of creates and deletes in other buckets, and the process
// that finishes it killed behind each of its stores as well.
TEST_F(WorkLeft, AKilledWriterAndAKilledRepairLeaveRowsAlone) {
    constexpr uint32_t flows = 40;
    unsigned kills = 0, repairs_killed = 0;
    for (uint32_t last = 1;; last += 7) {
        std::filesystem::remove_all(path());
        write_alone(50);
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        bool ended = false;
        in_killed_process([&](adapter &hardware) {
            table_state tables(hardware);
            uint32_t stores = 0;
            sdk::table::ftl_access::set_write_hook(*tables.tables().flow_tbl(),
                                                   [&](uint32_t, uint32_t) {
                                                       if (++stores == last)
                                                           kill(getpid(), SIGKILL);
                                                   });
            for (uint32_t number = 1; number <= flows; ++number) {
                auto spec = flow_of(number);
                if (tev_tbl_flow_create(&spec) != TEV_TBL_RET_OK) _exit(1);
                if (write(ends[1], &number, sizeof number) != sizeof number) _exit(1);
            }
            for (uint32_t number = 1; number <= flows; number += 2) {
                const auto spec = flow_of(number);
                if (tev_tbl_flow_delete(&spec.key) != TEV_TBL_RET_OK) _exit(1);
                const uint32_t gone = number + 1000;
                if (write(ends[1], &gone, sizeof gone) != sizeof gone) _exit(1);
            }
            const uint32_t end = 0;
            if (write(ends[1], &end, sizeof end) != sizeof end) _exit(1);
        });
        close(ends[1]);
        if (HasFatalFailure()) return;
        std::set<uint32_t> made;
        uint32_t said = 0, under_way = 1;
        while (read(ends[0], &said, sizeof said) == sizeof said) {
            ended = said == 0;
            said > 1000 ? (void)made.erase(said - 1000) : (void)made.insert(said);
            under_way = said == flows ? 1 : said > 1000 ? said - 1000 + 2 : said + 1;
        }
        close(ends[0]);
        if (ended) break;
        ++kills;
        // Each repair is killed one store later than the one before, until one comes to its end.
        for (uint32_t until = 1, stores = 1; stores != 0; ++until) {
            const pid_t child = fork();
            ASSERT_GE(child, 0);
            if (child == 0) {
                // Engines alone: the state would finish the work before a hook is there.
                const auto again = adapter::open(path(), small);
                const scoped_current use(*again);
                sdk::table::sdk_table_factory_params_t params = {};
                sdk::table::flow_hash *table = sdk::table::flow_hash::factory(&params);
                uint32_t done = 0;
                sdk::table::ftl_access::set_write_hook(*table, [&](uint32_t, uint32_t) {
                    if (++done == until) kill(getpid(), SIGKILL);
                });
                _exit(sdk::table::ftl_access::finish_work(*table) == SDK_RET_OK ? 0 : 1);
            }
            int status = 0;
            ASSERT_EQ(waitpid(child, &status, 0), child);
            if (WIFEXITED(status)) {
                ASSERT_EQ(WEXITSTATUS(status), 0);
                stores = 0;
            } else {
                ++repairs_killed;
            }
        }
        const auto hardware = adapter::open(path(), small);
        ASSERT_FALSE(hardware->has_work_left());
        table_state tables(*hardware);
        ASSERT_TRUE(is_there(*hardware, 50)) << "killed behind store " << last;
        uint32_t found = 0;
        for (uint32_t number = 1; number <= flows; ++number) {
            const auto spec = flow_of(number);
            const bool there = tev_tbl_flow_find(&spec.key) == TEV_TBL_RET_OK;
            found += there;
            if (number != under_way) {
                ASSERT_EQ(there, made.count(number) != 0) << number << " after store " << last;
            }
        }
        // Nothing of what was under way is left in a row: those of the flows, and the one apart.
        uint32_t rows = 0;
        for (const uint32_t table : {flow, flow_ohash})
            for (uint32_t row = 0; (row = hardware->next_used(table, row)) < hardware->depth(table);
                 ++row)
                ++rows;
        ASSERT_EQ(rows, found + 1) << "killed behind store " << last;
    }
    EXPECT_GT(kills, 40u);
    EXPECT_GT(repairs_killed, 40u);
}

// An older process said no more than that it was at work.
TEST_F(WorkLeft, AnEmptyMarkMeansThatEverythingIsLookedAtOnce) {
    write_alone(50);
    {
        // A chain whose second row, a flow of another bucket, was linked by half a hint.
        const auto hardware = adapter::open(path(), small);
        table_state tables(*hardware);
        for (uint32_t number = 1; number <= 40; ++number) {
            auto spec = flow_of(number);
            ASSERT_EQ(tev_tbl_flow_create(&spec), TEV_TBL_RET_OK);
        }
    }
    const auto damage = [&] {
        const auto hardware = adapter::open(path(), small);
        for (uint32_t row = 0; row < 16; ++row) {
            uint8_t *memory = hardware->hbm_rows(flow) + 128 * row;
            flow_hash_entry_t entry;
            std::reverse_copy(memory, memory + 128, entry.body());
            if (entry.find_last_hint() != 0) continue;
            entry.set_hint_hash(1, 50, 7);
            std::reverse_copy(entry.body(), entry.body() + 128, memory);
            return row;
        }
        ADD_FAILURE() << "every bucket has a chain";
        return 0u;
    };
    const auto hints_of = [](adapter &hardware, uint32_t row) {
        flow_hash_entry_t entry;
        std::reverse_copy(hardware.hbm_rows(flow) + 128 * row,
                          hardware.hbm_rows(flow) + 128 * (row + 1), entry.body());
        return entry.find_last_hint();
    };
    const uint32_t bucket = damage();
    {
        // Nothing says that anything was under way.
        const auto hardware = adapter::open(path(), small);
        const table_state tables(*hardware);
        EXPECT_EQ(hints_of(*hardware, bucket), 1u);
    }
    EXPECT_FALSE(std::filesystem::exists(mark()));
    write_text(mark(), "");
    {
        const auto hardware = adapter::open(path(), small);
        EXPECT_TRUE(hardware->has_work_left());
        const table_state tables(*hardware);
        EXPECT_EQ(hints_of(*hardware, bucket), 0u);
        EXPECT_TRUE(is_there(*hardware, 50));
        EXPECT_FALSE(hardware->has_work_left());
        EXPECT_EQ(text_of(mark()).substr(0, 8), "halden-1");
        EXPECT_EQ(text_of(mark()).size(), 36864u);
    }
    EXPECT_FALSE(std::filesystem::exists(mark()));
    damage();
    {
        const auto hardware = adapter::open(path(), small);
        const table_state tables(*hardware);
        EXPECT_EQ(hints_of(*hardware, bucket), 1u);
    }
}

// --- Ternary tables ------------------------------------------------------------------------------

tev_tbl_tunnel_terminate_v4_spec_t prefix(unsigned number, unsigned length) {
    tev_tbl_tunnel_terminate_v4_spec_t spec = {};
    spec.key.ipv4_1_dstAddr = number << 24;
    spec.has_mask = true;
    std::memset(&spec.mask, 0xff, sizeof spec.mask);
    spec.mask.ipv4_1_dstAddr_mask = 0xffffffffu << (32 - length);
    spec.action_u.tunnel_terminate_a.local_vtep_idx = static_cast<uint8_t>(number);
    return spec;
}

std::vector<uint32_t> used_rows(adapter &hardware) {
    std::vector<uint32_t> out;
    for (uint32_t row = 0; (row = hardware.next_used(tunnel_terminate_v4, row)) < 512; ++row)
        out.push_back(row);
    return out;
}

void install(uint32_t row, const tev_tbl_tunnel_terminate_v4_spec_t &entry) {
    auto spec = entry;
    tunnel_terminate_v4_actiondata_t data = {};
    ASSERT_EQ(p4pd_entry_install(tunnel_terminate_v4, row, &spec.key, &spec.mask, &data),
              P4PD_SUCCESS);
}

// The same key and mask in two rows is what a move leaves, and what somebody may have written.
TEST_F(WorkLeft, DuplicatesThatSomebodyWroteStay) {
    {
        const auto hardware = adapter::open(path(), small);
        const scoped_current use(*hardware);
        install(4, prefix(5, 24));
        install(9, prefix(5, 24));
    }
    const std::string before = text_of(path() + "/table-08.tcam");
    for (unsigned round = 0; round < 2; ++round) {
        in_killed_process([](adapter &hardware) {
            const table_state tables(hardware);
            kill(getpid(), SIGKILL);
        });
        const auto hardware = adapter::open(path(), small);
        const table_state tables(*hardware);
        EXPECT_EQ(used_rows(*hardware), (std::vector<uint32_t>{4, 9}));
    }
    EXPECT_EQ(text_of(path() + "/table-08.tcam"), before);
    // Each is an entry: the first is found, and after it the second.
    const auto hardware = adapter::open(path(), small);
    const table_state tables(*hardware);
    const auto spec = prefix(5, 24);
    EXPECT_EQ(tev_tbl_tunnel_terminate_v4_delete(&spec.key), TEV_TBL_RET_OK);
    EXPECT_EQ(used_rows(*hardware), std::vector<uint32_t>{9});
    EXPECT_EQ(tev_tbl_tunnel_terminate_v4_find(&spec.key), TEV_TBL_RET_OK);
}

// An entry between others makes those behind it move: killed behind every write of a row, and the
// repair behind each of its own.
TEST_F(WorkLeft, AMoveThatWasCutOffIsFinishedOrTakenBack) {
    constexpr unsigned before = 30;
    const auto kill_behind = [](adapter &hardware, unsigned last) {
        hardware.set_observer([last, writes = 0u](const row_change &) mutable {
            if (++writes == last) kill(getpid(), SIGKILL);
        });
    };
    unsigned kills = 0, left_twice = 0;
    for (unsigned last = 1;; ++last) {
        SCOPED_TRACE("write " + std::to_string(last));
        std::filesystem::remove_all(path());
        {
            const auto hardware = adapter::open(path(), small);
            const table_state tables(*hardware);
            for (unsigned number = 1; number <= before; ++number) {
                const auto spec = prefix(number, 30 - number % 10);
                ASSERT_EQ(tev_tbl_tunnel_terminate_v4_create(&spec), TEV_TBL_RET_OK);
            }
        }
        const auto more = prefix(77, 31);
        in_killed_process([&](adapter &hardware) {
            const table_state tables(hardware);
            kill_behind(hardware, last);
            if (tev_tbl_tunnel_terminate_v4_create(&more) != TEV_TBL_RET_OK) _exit(1);
            write_text(path() + ".ended", "");
        });
        if (HasFatalFailure()) return;
        ++kills;
        {
            const auto hardware = adapter::open(path(), small);
            left_twice += used_rows(*hardware).size() > before;
        }
        for (unsigned until = 1; until <= 2; ++until)
            in_killed_process([&](adapter &hardware) {
                kill_behind(hardware, until);
                const table_state tables(hardware);
                kill(getpid(), SIGKILL);
            });
        const auto hardware = adapter::open(path(), small);
        const table_state tables(*hardware);
        EXPECT_FALSE(hardware->has_work_left());
        const bool made = tev_tbl_tunnel_terminate_v4_find(&more.key) == TEV_TBL_RET_OK;
        EXPECT_EQ(used_rows(*hardware).size(), before + made);
        for (unsigned number = 1; number <= before; ++number) {
            const auto spec = prefix(number, 30 - number % 10);
            tev_tbl_tunnel_terminate_v4_info_t info = {};
            ASSERT_EQ(tev_tbl_tunnel_terminate_v4_read(&spec.key, &info), TEV_TBL_RET_OK);
            EXPECT_EQ(+info.action_u.tunnel_terminate_a.local_vtep_idx, number);
        }
        if (std::filesystem::exists(path() + ".ended")) break;
    }
    EXPECT_GT(kills, 20u);
    EXPECT_GT(left_twice, 5u);
}

}  // namespace
