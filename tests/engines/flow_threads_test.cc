// Several threads on one flow table: no flow is lost, none appears that nobody made, and no reader
// sees a mixture. Runs for HALDEN_SOAK_SECONDS, a moment when it is not set.

#include "tests/engines/flow_threads.h"
#include "tests/engines/flow_derived.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <random>
#include <thread>

// The flow table keeps a thread's entry for hashing for good, also when the thread ends.
extern "C" const char *__lsan_default_suppressions();
extern "C" const char *__lsan_default_suppressions() { return "leak:flow_hash::genhash_\n"; }

namespace halden::test {

std::chrono::milliseconds soak(std::chrono::milliseconds moment) {
    const char *seconds = std::getenv("HALDEN_SOAK_SECONDS");
    return seconds != nullptr ? std::chrono::seconds(std::atoi(seconds)) : moment;
}

}  // namespace halden::test

namespace {

using namespace halden;
using namespace halden::test;

constexpr std::chrono::milliseconds moment{700};

// Keys by what is done to them: some stay, some come and go, some never come.
constexpr uint64_t keys = 1536;
bool stays(uint64_t key) { return key % 3 == 0; }
bool never_comes(uint64_t key) { return key % 3 == 1; }

template <typename Entry>
struct call_entry {
    explicit call_entry(const flow_hash_entry_t &key) : entry(key) { call.entry = &entry; }
    Entry entry;
    sdk_table_api_params_t call = {};
};

class FlowThreads : public testing::TestWithParam<host::adapter_options> {
  protected:
    void SetUp() override {
        for (uint64_t key = 0; key < keys; ++key) {
            entries_.push_back({entry_of(key)});
            if (!stays(key)) continue;
            ASSERT_EQ(bed_.insert(key, flow_idx_of(key, 0)), SDK_RET_OK);
        }
    }
    void check(bool right) {
        if (!right) wrong_.fetch_add(1);
    }

    // One of `writers` threads; it alone writes every key whose number is its own modulo them.
    template <typename Entry = flow_hash_entry_t>
    void write(unsigned self, unsigned writers, unsigned seed) {
        std::mt19937_64 random(seed);
        std::vector<int64_t> holds(keys, -1);
        uint32_t version = 0;
        while (!stop_.load(std::memory_order_relaxed)) {
            const uint64_t key = random() % (keys / writers) * writers + self;
            if (never_comes(key)) continue;
            call_entry<Entry> one(entries_[key].entry);
            const uint32_t flow_idx = flow_idx_of(key, ++version);
            flow_layout::set_bits<flow_layout::flow_idx>(one.entry.body(), flow_idx);
            if (stays(key)) {
                check(bed_.table().update(&one.call) == SDK_RET_OK);
                holds[key] = flow_idx;
            } else if (holds[key] < 0) {
                const sdk_ret_t result = bed_.table().insert(&one.call);
                check(result == SDK_RET_OK || result == SDK_RET_NO_RESOURCE);
                if (result == SDK_RET_OK) holds[key] = flow_idx;
            } else {
                check(bed_.table().remove(&one.call) == SDK_RET_OK);
                holds[key] = -1;
            }
            calls_.fetch_add(1, std::memory_order_relaxed);
        }
        for (uint64_t key = self; key < keys; key += writers)
            if (holds[key] >= 0) last_[key] = static_cast<uint32_t>(holds[key]);
    }
    template <typename Entry = flow_hash_entry_t>
    void read(unsigned seed) {
        std::mt19937_64 random(seed);
        while (!stop_.load(std::memory_order_relaxed)) {
            const uint64_t key = random() % keys;
            call_entry<Entry> one(entries_[key].entry);
            sdk_ret_t result = SDK_RET_ERR;
            if (random() % 2 == 0) {
                result = bed_.table().get(&one.call);
            } else {
                base_table_entry_t *entry = &one.entry;
                ftl_access::get_batch(bed_.table(), {&entry, 1}, {&result, 1});
            }
            if (result == SDK_RET_OK) {
                flow_hash_entry_t asked = entries_[key].entry;
                check(!never_comes(key) && key_of(flow_idx_of(one.entry)) == key &&
                      one.entry.compare_key(&asked));
            } else {
                check(result == SDK_RET_ENTRY_NOT_FOUND && !stays(key));
            }
            calls_.fetch_add(1, std::memory_order_relaxed);
        }
    }
    void look_over_all() {
        while (!stop_.load(std::memory_order_relaxed)) {
            uint64_t staying = 0;
            ftl_access::for_each(bed_.table(), [&](const ftl_access::stored_flow &stored) {
                flow_hash_entry_t entry;
                stored.copy_to(entry);
                const uint64_t key = key_of(flow_idx_of(entry));
                flow_hash_entry_t named = entries_[key].entry;
                check(!never_comes(key) && entry.compare_key(&named));
                staying += stays(key);
                return true;
            });
            check(staying == keys / 3);
            calls_.fetch_add(1, std::memory_order_relaxed);
        }
    }
    void expect_the_end_is_as_written() {
        EXPECT_EQ(wrong_.load(), 0u);
        for (uint64_t key = 0; key < keys; ++key)
            if (last_[key] != 0) bed_.flows[key] = last_[key];
        bed_.expect_exactly_the_flows(numbers_up_to(keys));
        EXPECT_EQ(ftl_access::count(bed_.table()), bed_.flows.size());
    }

    flow_bed bed_{GetParam()};
    std::vector<kept_entry> entries_;
    std::vector<uint32_t> last_ = std::vector<uint32_t>(keys);
    std::atomic<bool> stop_ = false;
    std::atomic<uint64_t> wrong_ = 0, calls_ = 0;
};

TEST_P(FlowThreads, TwoWritersAndTwoReaders) {
    std::vector<std::thread> threads;
    for (unsigned self = 0; self < 2; ++self) {
        threads.emplace_back([this, self] { write(self, 2, self); });
        threads.emplace_back([this, self] { read(100 + self); });
    }
    std::this_thread::sleep_for(soak(moment));
    stop_ = true;
    for (std::thread &thread : threads) thread.join();
    EXPECT_GT(calls_.load(), 1000u);
    expect_the_end_is_as_written();
}

// A look over all flows meets every flow that stays, whatever the writers do.
TEST_P(FlowThreads, AnIterationBesideTwoWriters) {
    std::vector<std::thread> threads;
    for (unsigned self = 0; self < 2; ++self)
        threads.emplace_back([this, self] { write(self, 2, self); });
    threads.emplace_back([this] { look_over_all(); });
    std::this_thread::sleep_for(soak(moment));
    stop_ = true;
    for (std::thread &thread : threads) thread.join();
    expect_the_end_is_as_written();
}

// More threads than there are rows of scratch entries: the last ones take turns. Only entries of
// derived classes need such rows.
TEST_P(FlowThreads, TwentyFourThreads) {
    std::vector<std::thread> threads;
    for (unsigned self = 0; self < 12; ++self) {
        threads.emplace_back([this, self] { write<derived_entry>(self, 12, self); });
        threads.emplace_back([this, self] { read<derived_entry>(100 + self); });
    }
    std::this_thread::sleep_for(soak(moment));
    stop_ = true;
    for (std::thread &thread : threads) thread.join();
    expect_the_end_is_as_written();
}

// A row of scratch entries goes back when its thread ends.
TEST_P(FlowThreads, AThousandThreadsOneAfterAnother) {
    for (unsigned i = 0; i < 1000; ++i)
        std::thread([this] {
            call_entry<derived_entry> one(entries_[0].entry);
            check(bed_.table().get(&one.call) == SDK_RET_OK);
        }).join();
    EXPECT_EQ(wrong_.load(), 0u);
}

// Long chains that change all the time, a usual load, and an overflow that runs dry.
INSTANTIATE_TEST_SUITE_P(Depths, FlowThreads,
                         testing::Values(host::adapter_options{16, 2048},
                                         host::adapter_options{1024, 1024},
                                         host::adapter_options{512, 256}),
                         [](const auto &tested) {
                             return "Main" + std::to_string(tested.param.flow_rows) + "Overflow" +
                                    std::to_string(tested.param.flow_ohash_rows);
                         });

}  // namespace
