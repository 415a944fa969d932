// What a flow table finds in memories that another process left: after an orderly end, after an end
// behind any single store, and after being killed while two threads were writing.

#include "tests/engines/flow_bed.h"
#include "tests/support/scratch_directory.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <random>
#include <thread>

namespace {

using namespace halden;
using namespace halden::test;

TEST(FlowRestore, FlowsOutliveTheTable) {
    const scratch_directory directory;
    const std::vector<uint64_t> numbers = numbers_up_to(120);
    std::unordered_map<uint64_t, uint32_t> flows;
    for (unsigned round = 0; round < 4; ++round) {
        flow_bed bed({64, 64}, directory.path());
        bed.flows = flows;
        EXPECT_EQ(ftl_access::count(bed.table()), flows.size());
        const memory_image before = bed.memories();
        // An orderly end leaves nothing to put right.
        ASSERT_EQ(bed.table().restore_state(), SDK_RET_OK);
        EXPECT_EQ(bed.memories(), before);
        bed.expect_exactly_the_flows(numbers);
        for (uint64_t number = round; number < 120; number += 4) {
            ASSERT_EQ(bed.insert(number, static_cast<uint32_t>(1000 * round + number)),
                      flows.count(number) != 0 ? SDK_RET_ENTRY_EXISTS : SDK_RET_OK);
        }
        for (uint64_t number = round; number < 120; number += 8) bed.remove(number);
        bed.expect_exactly_the_flows(numbers);
        if (HasFatalFailure()) return;
        flows = bed.flows;
    }
    EXPECT_EQ(flows.size(), 60u);
}

// Without restore_state() a new table takes no row that is in use.
TEST(FlowRestore, ANewTableLeavesTheRowsInUseAlone) {
    const scratch_directory directory;
    const std::vector<uint64_t> numbers = numbers_up_to(60);
    std::unordered_map<uint64_t, uint32_t> flows;
    {
        flow_bed bed({16, 64}, directory.path());
        for (uint64_t number = 0; number < 40; ++number) bed.insert(number, 7);
        for (uint64_t number = 0; number < 40; number += 3) bed.remove(number);
        flows = bed.flows;
    }
    flow_bed bed({16, 64}, directory.path());
    bed.flows = flows;
    bed.expect_exactly_the_flows(numbers);
    for (uint64_t number = 40; number < 60; ++number) ASSERT_EQ(bed.insert(number, 8), SDK_RET_OK);
    bed.expect_exactly_the_flows(numbers);
}

// Hints that lead in circles, to rows of other buckets, to empty rows and beyond the table.
TEST(FlowRestore, DamagedHintsAreCutAndAllThatIsReachedIsFound) {
    std::mt19937_64 random(31);
    for (unsigned round = 0; round < 300; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        flow_bed bed({4, 64});
        const std::vector<uint64_t> numbers = numbers_up_to(24);
        for (const uint64_t number : numbers) bed.insert(number, 5);
        ASSERT_EQ(bed.flows.size(), 24u);
        for (unsigned damages = 0; damages < 3; ++damages) {
            const bool in_main = random() % 2 == 0;
            uint8_t *row = bed.hardware().hbm_rows(in_main ? flow : flow_ohash) +
                           128 * (in_main ? random() % 4 : 1 + random() % 20);
            flow_hash_entry_t entry;
            std::reverse_copy(row, row + 128, entry.body());
            entry.set_hint_hash(1 + static_cast<uint32_t>(random() % 9),
                                static_cast<uint32_t>(random() % 40), 0);
            std::reverse_copy(entry.body(), entry.body() + 128, row);
        }
        ASSERT_EQ(bed.table().restore_state(), SDK_RET_OK);
        uint32_t left = 0;
        ftl_access::for_each(bed.table(), [&](const ftl_access::stored_flow &stored) {
            ++left;
            flow_hash_entry_t entry;
            stored.copy_to(entry);
            sdk_table_api_params_t call = {};
            call.entry = &entry;
            EXPECT_EQ(bed.table().get(&call), SDK_RET_OK);
            return true;
        });
        // What is cut off stays in its row: it may be somebody's.
        EXPECT_EQ(ftl_access::count(bed.table()), 24u);
        EXPECT_EQ(bed.main_rows_in_use() + bed.overflow_rows_in_use(), 24u);
        EXPECT_GE(left, 4u);
        bed.rows_apart = 24 - left;
        // Whatever was cut off can come again.
        for (const uint64_t number : numbers)
            if (bed.get(number) != SDK_RET_OK) {
                ASSERT_EQ(bed.insert(number, 6), SDK_RET_OK);
            }
        bed.flows.clear();
        for (const uint64_t number : numbers) {
            uint32_t flow_idx = 0;
            ASSERT_EQ(bed.get(number, &flow_idx), SDK_RET_OK);
            bed.flows[number] = flow_idx;
        }
        bed.expect_exactly_the_flows(numbers);
    }
}

struct shape {
    const char *name;
    host::adapter_options depths;
    uint32_t hash_mask;
    size_t keys;
    unsigned operations;
    uint32_t first_overflow_row = 1;
};

class FlowRestoreAtEveryStore : public testing::TestWithParam<shape> {
  protected:
    using snapshots = std::vector<memory_image>;

    // The memories behind every store of one call, as a process that ended there leaves them.
    template <typename F>
    static snapshots stores_of(flow_bed &bed, F call) {
        snapshots out;
        ftl_access::set_write_hook(bed.table(),
                                   [&](uint32_t, uint32_t) { out.push_back(bed.memories()); });
        call();
        ftl_access::set_write_hook(bed.table(), {});
        return out;
    }

    // The flow of the call that was cut off is whole or gone; all others are as they were.
    void expect_restored(const std::unordered_map<uint64_t, uint32_t> &before,
                         const std::unordered_map<uint64_t, uint32_t> &after, uint64_t touched) {
        uint32_t found = 0;
        restored_.flows = before;
        restored_.flows.erase(touched);
        if (restored_.get(touched, &found) == SDK_RET_OK) {
            const auto was = before.find(touched), is = after.find(touched);
            ASSERT_TRUE((was != before.end() && was->second == found) ||
                        (is != after.end() && is->second == found));
            restored_.flows[touched] = found;
        }
        restored_.expect_exactly_the_flows(numbers_);
        if (HasFatalFailure()) return;
        ASSERT_EQ(ftl_access::count(restored_.table()), restored_.flows.size());
        // What was put right is a table like any other.
        const memory_image once = restored_.memories();
        ASSERT_EQ(restored_.table().restore_state(), SDK_RET_OK);
        ASSERT_EQ(restored_.memories(), once);
    }

    flow_bed bed_{GetParam().depths};
    flow_bed restored_{GetParam().depths};
    std::vector<uint64_t> numbers_ = numbers_with_hash(GetParam().hash_mask, 0, GetParam().keys);
    std::mt19937_64 random_{4};
};

TEST_P(FlowRestoreAtEveryStore, LosesNothingAndKeepsNoHalves) {
    unsigned cut = 0, cut_again = 0;
    ftl_access::leave_out_overflow_rows(bed_.table(), GetParam().first_overflow_row);
    for (unsigned i = 0; i < GetParam().operations; ++i) {
        SCOPED_TRACE("operation " + std::to_string(i));
        const auto before = bed_.flows;
        const uint64_t touched = numbers_[random_() % numbers_.size()];
        const auto flow_idx = static_cast<uint32_t>(random_() & 0x3fffff);
        const bool filling = i / 60 % 2 == 0;
        const snapshots stores = stores_of(bed_, [&] {
            const bool there = before.count(touched) != 0;
            if (there && random_() % 4 == 0)
                bed_.update(touched, flow_idx);
            else if (there && (!filling || random_() % 3 == 0))
                bed_.remove(touched);
            else if (!there)
                bed_.insert(touched, flow_idx);
        });
        for (const memory_image &left : stores) {
            ++cut;
            restored_.put_memories(left);
            // A restoration that is cut off as well leaves the next one as much.
            snapshots again;
            if (cut % 8 == 0) {
                again = stores_of(
                    restored_, [&] { ASSERT_EQ(restored_.table().restore_state(), SDK_RET_OK); });
            } else {
                ASSERT_EQ(restored_.table().restore_state(), SDK_RET_OK);
            }
            expect_restored(before, bed_.flows, touched);
            if (HasFatalFailure()) return;
            for (const memory_image &left_again : again) {
                ++cut_again;
                restored_.put_memories(left_again);
                ASSERT_EQ(restored_.table().restore_state(), SDK_RET_OK);
                expect_restored(before, bed_.flows, touched);
                if (HasFatalFailure()) return;
            }
        }
    }
    EXPECT_GT(cut, GetParam().operations);
    EXPECT_GT(cut_again, 0u);
}

INSTANTIATE_TEST_SUITE_P(
    Shapes, FlowRestoreAtEveryStore,
    testing::Values(shape{"SpreadOverSixteenRows", {16, 32}, 0, 36, 300},
                    shape{"ManyHintHashesInOneRow", {1, 64}, 0, 40, 240},
                    shape{"FourHintHashesInOneRow", {1, 64}, 0x3fc, 40, 240},
                    shape{"OneHintHashInTwoRows", {2, 32}, 0x3ff, 24, 240},
                    // A row number of more than 20 bits reaches into both words of every hint.
                    shape{"HintsAcrossTwoWords", {1, 2097152}, 0, 40, 60, 0x155551},
                    // Half of a hint leads to the first row of all, which is another flow's.
                    shape{"HalvesOfHintsLeadToOthers", {2, 2097152}, 0, 40, 60, 0x100000}),
    [](const auto &tested) { return std::string(tested.param.name); });

// --- Killed

constexpr uint64_t keys_per_writer = 600;
constexpr unsigned writers = 2;
constexpr host::adapter_options killed_depths = {256, 1024};

// What a writer last said of a key, in memory that outlives it.
struct journal {
    enum : uint32_t { absent = 0, in_flight = 1u << 31 };
    // flow_idx of the key, absent, or in flight: being changed from or to this flow_idx.
    std::atomic<uint32_t> said[writers * keys_per_writer];
};

void write_until_killed(const std::string &directory, journal &notes, unsigned round) {
    flow_bed bed(killed_depths, directory);
    if (bed.table().restore_state() != SDK_RET_OK) _exit(1);
    const auto writer = [&](unsigned self) {
        std::mt19937_64 random(100 * round + self);
        for (;;) {
            const uint64_t key = random() % keys_per_writer * writers + self;
            flow_hash_entry_t entry = entry_of(key, static_cast<uint32_t>(1 + random() % 0x3ffffe));
            sdk_table_api_params_t call = {};
            call.entry = &entry;
            const auto flow_idx =
                static_cast<uint32_t>(flow_layout::get_bits<flow_layout::flow_idx>(entry.body()));
            const uint32_t now = notes.said[key];
            if (now == journal::absent) {
                notes.said[key] = journal::in_flight | flow_idx;
                notes.said[key] = bed.table().insert(&call) == SDK_RET_OK ? flow_idx : 0u;
            } else {
                notes.said[key] = journal::in_flight | now;
                if (bed.table().remove(&call) != SDK_RET_OK) _exit(2);
                notes.said[key] = journal::absent;
            }
        }
    };
    std::thread other(writer, 1);
    writer(0);
}

TEST(FlowRestoreKilled, NoAcknowledgedFlowIsLost) {
    const scratch_directory directory;
    void *shared =
        mmap(nullptr, sizeof(journal), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(shared, MAP_FAILED);
    journal &notes = *new (shared) journal{};
    const std::vector<uint64_t> numbers = numbers_up_to(writers * keys_per_writer);
    std::mt19937_64 random(9);
    for (unsigned round = 0; round < 25; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            write_until_killed(directory.path(), notes, round);
            _exit(3);
        }
        usleep(static_cast<useconds_t>(15000 + random() % 20000));
        kill(child, SIGKILL);
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status)) << "ended by itself, status " << status;

        flow_bed bed(killed_depths, directory.path());
        ASSERT_EQ(bed.table().restore_state(), SDK_RET_OK);
        unsigned in_flight = 0;
        for (const uint64_t key : numbers) {
            const uint32_t said = notes.said[key];
            if ((said & journal::in_flight) != 0) {
                ++in_flight;
                uint32_t flow_idx = 0;
                const bool there = bed.get(key, &flow_idx) == SDK_RET_OK;
                if (there) {
                    ASSERT_EQ(flow_idx, said & ~journal::in_flight);
                }
                notes.said[key] = there ? flow_idx : 0u;
            }
            if (notes.said[key] != journal::absent) bed.flows[key] = notes.said[key];
        }
        EXPECT_LE(in_flight, writers);
        bed.expect_exactly_the_flows(numbers);
        if (HasFatalFailure()) break;
        EXPECT_GT(bed.flows.size(), 100u);
    }
    munmap(shared, sizeof(journal));
}

}  // namespace
