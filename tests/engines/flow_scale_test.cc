// The flow table at its full depth: 4,194,304 main rows and 2,097,152 overflow rows.

#include "tests/engines/flow_bed.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>

namespace {

using namespace halden;
using namespace halden::test;

constexpr uint64_t random_flows = 4000000;
constexpr uint64_t absent_flows = 1000000;

// The most memory the process ever held, in bytes. A sanitizer takes its own, so it goes unasked
// there.
[[maybe_unused]] uint64_t most_memory() {
    FILE *status = std::fopen("/proc/self/status", "r");
    char line[256];
    unsigned long kilobytes = 0;
    while (status != nullptr && std::fgets(line, sizeof line, status) != nullptr)
        if (std::sscanf(line, "VmHWM: %lu kB", &kilobytes) == 1) break;
    if (status != nullptr) std::fclose(status);
    return uint64_t{kilobytes} * 1024;
}

// Keys that are all zero but for a running number.
flow_hash_entry_t sequential(uint64_t number) {
    flow_hash_entry_t entry;
    flow_layout::set_bits<flow_layout::metadata_flow_key_dmac>(entry.body(), number);
    flow_layout::set_bits<flow_layout::flow_idx>(entry.body(), number);
    return entry;
}

class FlowScale : public testing::Test {
  protected:
    sdk_ret_t call(sdk_ret_t (sdk::table::ftl_base::*operation)(sdk_table_api_params_t *),
                   flow_hash_entry_t entry, uint32_t *flow_idx = nullptr) {
        sdk_table_api_params_t params = {};
        params.entry = &entry;
        const sdk_ret_t result = (bed_.table().*operation)(&params);
        if (flow_idx != nullptr)
            *flow_idx =
                static_cast<uint32_t>(flow_layout::get_bits<flow_layout::flow_idx>(entry.body()));
        return result;
    }
    sdk_ret_t insert(const flow_hash_entry_t &entry) { return call(&flow_hash::insert, entry); }
    sdk_ret_t remove(const flow_hash_entry_t &entry) { return call(&flow_hash::remove, entry); }
    bool found(flow_hash_entry_t entry, uint64_t flow_idx) {
        uint32_t got = 0;
        flow_layout::set_bits<flow_layout::flow_idx>(entry.body(), 0);
        return call(&flow_hash::get, entry, &got) == SDK_RET_OK && got == flow_idx;
    }
    static flow_hash_entry_t random_flow(uint64_t number) {
        return entry_of(number, static_cast<uint32_t>(number & 0x3fffff));
    }
    uint64_t count_found(uint64_t step) {
        uint64_t count = 0;
        for (uint64_t i = 0; i < random_flows; i += step)
            count += found(random_flow(i), i & 0x3fffff);
        return count;
    }

    flow_bed bed_{host::adapter_options{}};
};

TEST_F(FlowScale, FourMillionFlowsAndThenUntilItIsFull) {
    for (uint64_t i = 0; i < random_flows; ++i) ASSERT_EQ(insert(random_flow(i)), SDK_RET_OK) << i;
    EXPECT_EQ(ftl_access::count(bed_.table()), random_flows);
    EXPECT_EQ(count_found(1), random_flows);
    for (uint64_t i = random_flows; i < random_flows + absent_flows; ++i)
        ASSERT_EQ(call(&flow_hash::get, random_flow(i)), SDK_RET_ENTRY_NOT_FOUND) << i;

    for (uint64_t i = 1; i < random_flows; i += 2)
        ASSERT_EQ(remove(random_flow(i)), SDK_RET_OK) << i;
    EXPECT_EQ(count_found(1), random_flows / 2);
    EXPECT_EQ(count_found(2), random_flows / 2);
    for (uint64_t i = 1; i < random_flows; i += 2)
        ASSERT_EQ(insert(random_flow(i)), SDK_RET_OK) << i;
    EXPECT_EQ(count_found(1), random_flows);

    // Sequential keys on top, until the table refuses a thousand of them.
    uint64_t taken = 0, refused = 0;
    std::vector<bool> in(1u << 22);
    for (uint64_t i = 0; i < in.size() && refused < 1000; ++i) {
        const sdk_ret_t result = insert(sequential(i));
        ASSERT_TRUE(result == SDK_RET_OK || result == SDK_RET_NO_RESOURCE) << result;
        in[i] = result == SDK_RET_OK;
        ++(in[i] ? taken : refused);
    }
    EXPECT_EQ(refused, 1000u);
    EXPECT_EQ(ftl_access::count(bed_.table()), random_flows + taken);
    uint64_t sequential_found = 0;
    for (uint64_t i = 0; i < in.size(); ++i)
        if (in[i]) sequential_found += found(sequential(i), i);
    EXPECT_EQ(sequential_found, taken);
    EXPECT_EQ(count_found(1), random_flows);

    const auto figures = ftl_access::statistics(bed_.table());
    EXPECT_EQ(figures.flows(), random_flows + taken);
    std::printf("%llu flows, %u of them in the overflow, longest path %u\n",
                static_cast<unsigned long long>(random_flows + taken), figures.overflow_used,
                figures.longest_path);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    // Images of 805,306,368 bytes and a tenth.
    EXPECT_LE(most_memory(), 885837004u);
#endif
}

// Keys of one main row: the sums of 48 keys of one bit each whose hashes' upper 22 bits cancel.
TEST_F(FlowScale, OneBucketFillsUpAndLosesNothing) {
    const auto hash = [&](uint64_t number) {
        flow_hash_entry_t entry = sequential(number);
        sdk_table_api_params_t params = {};
        params.entry = &entry;
        EXPECT_EQ(bed_.table().genhash_(&params), SDK_RET_OK);
        return params.hash_value;
    };
    std::vector<std::pair<uint32_t, uint64_t>> pivots;
    std::vector<uint64_t> basis;
    for (unsigned bit = 0; bit < 48; ++bit) {
        uint64_t key = uint64_t{1} << bit;
        uint32_t row = (hash(key) ^ hash(0)) >> 10;
        for (const auto &[pivot_row, pivot_key] : pivots) {
            if ((row ^ pivot_row) >= row) continue;
            row ^= pivot_row;
            key ^= pivot_key;
        }
        if (row == 0)
            basis.push_back(key);
        else
            pivots.emplace_back(row, key);
    }
    ASSERT_GE(basis.size(), 10u);
    std::vector<uint64_t> in;
    unsigned refused = 0;
    for (uint64_t i = 0; i < 1024; ++i) {
        uint64_t key = 0;
        for (unsigned bit = 0; bit < 10; ++bit)
            if ((i >> bit & 1) != 0) key ^= basis[bit];
        ASSERT_EQ(hash(key) >> 10, hash(0) >> 10);
        flow_hash_entry_t entry = sequential(key);
        const sdk_ret_t result = insert(entry);
        ASSERT_TRUE(result == SDK_RET_OK || result == SDK_RET_NO_RESOURCE) << result;
        if (result == SDK_RET_OK)
            in.push_back(key);
        else
            ++refused;
    }
    EXPECT_GT(refused, 0u);
    EXPECT_GE(in.size(), 81u);
    for (const uint64_t key : in) EXPECT_TRUE(found(sequential(key), key & 0x3fffff)) << key;
    for (const uint64_t key : in) EXPECT_EQ(remove(sequential(key)), SDK_RET_OK) << key;
    EXPECT_EQ(bed_.memories(), memory_image());
}

}  // namespace
