// Threads that write the same keys. Of every key there is one flow or none, so what inserts and
// removes answered must come out even, whoever made them.

#include "tests/engines/flow_threads.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <random>
#include <thread>

namespace {

using namespace halden;
using namespace halden::test;

constexpr std::chrono::milliseconds moment{500};
constexpr uint64_t keys = 48;

class FlowContention : public testing::TestWithParam<host::adapter_options> {
  protected:
    void check(bool right) {
        if (!right) wrong_.fetch_add(1);
    }
    void took_in(sdk_ret_t result, uint64_t key) {
        check(result == SDK_RET_OK || result == SDK_RET_ENTRY_EXISTS ||
              result == SDK_RET_NO_RESOURCE);
        if (result == SDK_RET_OK) balance_[key].fetch_add(1);
    }
    void took_out(sdk_ret_t result, uint64_t key) {
        check(result == SDK_RET_OK || result == SDK_RET_ENTRY_NOT_FOUND);
        if (result == SDK_RET_OK) balance_[key].fetch_sub(1);
    }
    // An entry that was read is the key's own, whole, with data that someone gave it.
    void found(sdk_ret_t result, flow_hash_entry_t &entry, uint64_t key) {
        check(result == SDK_RET_OK || result == SDK_RET_ENTRY_NOT_FOUND);
        if (result != SDK_RET_OK) return;
        flow_hash_entry_t asked = entries_[key].entry;
        check(key_of(flow_idx_of(entry)) == key && entry.compare_key(&asked) &&
              entry.get_entry_valid() == 1 && entry.valid == 1);
    }
    kept_entry entry_for(uint64_t key, uint64_t version) const {
        kept_entry kept = entries_[key];
        flow_layout::set_bits<flow_layout::flow_idx>(
            kept.entry.body(), flow_idx_of(key, static_cast<uint32_t>(version)));
        return kept;
    }

    void call_singly(uint64_t seed) {
        std::mt19937_64 random(seed);
        while (!stop_.load(std::memory_order_relaxed)) {
            const uint64_t key = random() % keys;
            kept_entry kept = entry_for(key, random());
            sdk_table_api_params_t call = {};
            call.entry = &kept.entry;
            switch (random() % 4) {
                case 0:
                    took_in(bed_.table().insert(&call), key);
                    break;
                case 1:
                    took_out(bed_.table().remove(&call), key);
                    break;
                case 2: {
                    const sdk_ret_t result = bed_.table().update(&call);
                    check(result == SDK_RET_OK || result == SDK_RET_ENTRY_NOT_FOUND);
                    break;
                }
                default: {
                    const sdk_ret_t result = bed_.table().get(&call);
                    found(result, kept.entry, key);
                }
            }
            calls_.fetch_add(1, std::memory_order_relaxed);
        }
    }
    // Batches of one to seventy entries, some of the same key, some null.
    void call_by_batches(uint64_t seed) {
        std::mt19937_64 random(seed);
        while (!stop_.load(std::memory_order_relaxed)) {
            const size_t size = 1 + random() % 70;
            std::vector<uint64_t> chosen;
            std::vector<kept_entry> kept;
            for (size_t i = 0; i < size; ++i) {
                chosen.push_back(random() % keys);
                kept.push_back(entry_for(chosen[i], random()));
            }
            std::vector<base_table_entry_t *> pointers;
            for (kept_entry &one : kept)
                pointers.push_back(random() % 20 == 0 ? nullptr : &one.entry);
            std::vector<sdk_ret_t> results(size, SDK_RET_ERR);
            const uint64_t operation = random() % 3;
            const auto call = operation == 0   ? &ftl_access::insert_batch
                              : operation == 1 ? &ftl_access::remove_batch
                                               : &ftl_access::get_batch;
            const size_t succeeded = call(bed_.table(), pointers, results);
            check(static_cast<size_t>(std::count(results.begin(), results.end(), SDK_RET_OK)) ==
                  succeeded);
            for (size_t i = 0; i < size; ++i) {
                if (pointers[i] == nullptr)
                    check(results[i] == SDK_RET_INVALID_ARG);
                else if (operation == 0)
                    took_in(results[i], chosen[i]);
                else if (operation == 1)
                    took_out(results[i], chosen[i]);
                else
                    found(results[i], kept[i].entry, chosen[i]);
            }
            calls_.fetch_add(1, std::memory_order_relaxed);
        }
    }
    void run(std::vector<std::thread> threads) {
        std::this_thread::sleep_for(soak(moment));
        stop_ = true;
        for (std::thread &thread : threads) thread.join();
    }

    void expect_balance() {
        EXPECT_EQ(wrong_.load(), 0u);
        EXPECT_GT(calls_.load(), 20u);
        for (uint64_t key = 0; key < keys; ++key) {
            uint32_t flow_idx = 0;
            const bool there = bed_.get(key, &flow_idx) == SDK_RET_OK;
            EXPECT_EQ(balance_[key].load(), there ? 1 : 0) << "key " << key;
            if (!there) continue;
            EXPECT_EQ(key_of(flow_idx), key);
            bed_.flows[key] = flow_idx;
        }
        bed_.expect_exactly_the_flows(numbers_up_to(2 * keys));
        uint64_t listed = 0;
        ftl_access::for_each(bed_.table(), [&](const ftl_access::stored_flow &stored) {
            flow_hash_entry_t entry;
            stored.copy_to(entry);
            const auto flow = bed_.flows.find(key_of(flow_idx_of(entry)));
            EXPECT_TRUE(flow != bed_.flows.end() && flow->second == flow_idx_of(entry));
            ++listed;
            return true;
        });
        EXPECT_EQ(listed, bed_.flows.size());
        EXPECT_EQ(ftl_access::count(bed_.table()), listed);
    }

    flow_bed bed_{GetParam()};
    std::vector<kept_entry> entries_ = [] {
        std::vector<kept_entry> out;
        for (uint64_t key = 0; key < keys; ++key) out.push_back({entry_of(key)});
        return out;
    }();
    std::array<std::atomic<int64_t>, keys> balance_ = {};
    std::atomic<bool> stop_ = false;
    std::atomic<uint64_t> wrong_ = 0, calls_ = 0;
};

TEST_P(FlowContention, TwoWritersOfTheSameKeys) {
    std::vector<std::thread> threads;
    for (uint64_t seed = 1; seed <= 2; ++seed)
        threads.emplace_back([this, seed] { call_singly(seed); });
    run(std::move(threads));
    expect_balance();
}

TEST_P(FlowContention, BatchesBesideSingleCalls) {
    std::vector<std::thread> threads;
    for (uint64_t seed = 1; seed <= 2; ++seed)
        threads.emplace_back([this, seed] { call_by_batches(seed); });
    threads.emplace_back([this] { call_singly(3); });
    run(std::move(threads));
    expect_balance();
}

// Buckets of twelve keys, one bucket of all, and an overflow that runs dry.
INSTANTIATE_TEST_SUITE_P(Depths, FlowContention,
                         testing::Values(host::adapter_options{4, 256},
                                         host::adapter_options{1, 128},
                                         host::adapter_options{16, 8}),
                         [](const auto &tested) {
                             return "Main" + std::to_string(tested.param.flow_rows) + "Overflow" +
                                    std::to_string(tested.param.flow_ohash_rows);
                         });

}  // namespace
