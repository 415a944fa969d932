// The entry that a thread hashes in: made by its first call, kept for good, one per thread.

#include "ftl/flow_hash.h"
#include "tests/flow/entry_model.h"
#include "tests/support/heap_watch.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <thread>
#include <vector>

namespace halden::test {
namespace {

using sdk::table::flow_hash;
using sdk::table::sdk_table_api_params_t;

// A thread that never hashed before has no scratch entry yet.
void in_a_new_thread(const std::function<void()> &run) { std::thread(run).join(); }

struct outcome {
    uint32_t result;
    heap_events heap;
};

outcome genhash(sdk_table_api_params_t &params, unsigned refuse = 0) {
    flow_hash table;
    watch_heap(refuse);
    const uint32_t result = table.genhash_(&params);
    return {result, unwatch_heap()};
}

entry_bits image_of(const entry_bits &bits) {
    const entry_bits key = bits & mask_of(part::key);
    entry_bits image;
    for (size_t n = 0; n < 1024; ++n) image[8 * (127 - n / 8) + n % 8] = key[n];
    return image;
}

void expect_only_the_scratch(const heap_events &heap) {
    EXPECT_EQ(heap.callocs, 1u);
    EXPECT_EQ(heap.last_size, 144u);
    EXPECT_EQ(heap.others, 0u);
    EXPECT_EQ(heap.frees, 0u);
}

void expect_no_heap(const heap_events &heap) {
    EXPECT_EQ(heap.callocs + heap.others + heap.frees, 0u);
}

TEST(Scratch, IsAllocatedByAThreadsFirstCallOnly) {
    in_a_new_thread([] {
        flow_hash_entry_t entry;
        sdk_table_api_params_t params{};
        params.entry = &entry;
        const outcome first = genhash(params);
        EXPECT_EQ(first.result, 0u);
        expect_only_the_scratch(first.heap);
        for (int i = 0; i < 100; ++i) {
            params.hash_valid = i % 2 == 0;
            const outcome next = genhash(params);
            EXPECT_EQ(next.result, 0u);
            expect_no_heap(next.heap);
        }
    });
}

// Its body is the hardware image of the last key, with every other bit zero; `valid` is 0.
TEST(Scratch, HoldsTheImageOfTheLastKey) {
    in_a_new_thread([] {
        std::mt19937_64 random(1);
        const flow_hash_entry_t *scratch = nullptr;
        for (unsigned round = 0; round < 200; ++round) {
            const entry_bits bits = random_bits(random);
            flow_hash_entry_t entry;
            set_bits(entry, bits);
            entry.valid = 1;
            sdk_table_api_params_t params{};
            params.entry = &entry;
            // A hash that is already valid changes nothing but that it is left alone.
            params.hash_valid = round % 3 == 0;
            const outcome made = genhash(params);
            ASSERT_EQ(made.result, 0u);
            if (scratch == nullptr)
                scratch = static_cast<const flow_hash_entry_t *>(made.heap.last_made);
            ASSERT_NE(scratch, nullptr);
            EXPECT_EQ(std::memcmp(static_cast<const void *>(scratch),
                                  static_cast<const void *>(&entry), sizeof(void *)),
                      0)
                << "another class";
            EXPECT_EQ(scratch->valid, 0u);
            ASSERT_EQ(bits_of(*scratch), image_of(bits)) << round;
            ASSERT_EQ(bits_of(entry), bits);
        }
    });
}

TEST(Scratch, IsMadeAlsoWhenTheHashIsAlreadyValid) {
    in_a_new_thread([] {
        flow_hash_entry_t entry;
        sdk_table_api_params_t params{};
        params.entry = &entry;
        params.hash_valid = true;
        params.hash_value = 12345;
        const outcome made = genhash(params);
        EXPECT_EQ(made.result, 0u);
        expect_only_the_scratch(made.heap);
        EXPECT_EQ(params.hash_value, 12345u);
        EXPECT_TRUE(params.hash_valid);
    });
}

TEST(Scratch, EveryThreadHasItsOwnAndKeepsItWhenItEnds) {
    std::mt19937_64 random(2);
    const entry_bits a = random_bits(random), b = random_bits(random);
    std::vector<const flow_hash_entry_t *> made;
    const auto hash = [&made](const entry_bits &bits) {
        flow_hash_entry_t entry;
        set_bits(entry, bits);
        sdk_table_api_params_t params{};
        params.entry = &entry;
        const outcome done = genhash(params);
        EXPECT_EQ(done.result, 0u);
        expect_only_the_scratch(done.heap);
        made.push_back(static_cast<const flow_hash_entry_t *>(done.heap.last_made));
        watch_address(done.heap.last_made);
    };
    in_a_new_thread([&] { hash(a); });
    EXPECT_EQ(frees_of_address(), 0u);
    in_a_new_thread([&] { hash(b); });
    EXPECT_EQ(frees_of_address(), 0u);
    ASSERT_EQ(made.size(), 2u);
    EXPECT_NE(made[0], made[1]);
    EXPECT_EQ(bits_of(*made[0]), image_of(a));
    EXPECT_EQ(bits_of(*made[1]), image_of(b));
}

// Result 1, nothing changed; the next call tries again.
TEST(Scratch, AFailedAllocationLeavesTheParametersUntouchedAndIsTriedAgain) {
    for (const bool hash_valid : {false, true}) {
        SCOPED_TRACE(hash_valid);
        in_a_new_thread([hash_valid] {
            std::mt19937_64 random(3);
            const entry_bits bits = random_bits(random);
            flow_hash_entry_t entry;
            set_bits(entry, bits);
            sdk_table_api_params_t params{};
            params.entry = &entry;
            params.hash_valid = hash_valid;
            params.hash_value = 0x12345678;
            uint8_t before[sizeof params];
            std::memcpy(before, &params, sizeof params);
            for (int attempt = 0; attempt < 3; ++attempt) {
                const outcome failed = genhash(params, 1);
                EXPECT_EQ(failed.result, 1u);
                EXPECT_EQ(failed.heap.refused, 1u);
                expect_only_the_scratch(failed.heap);
                EXPECT_EQ(std::memcmp(before, &params, sizeof params), 0);
                EXPECT_EQ(bits_of(entry), bits);
            }
            // A thread without memory hinders no other.
            in_a_new_thread([] {
                flow_hash_entry_t other;
                sdk_table_api_params_t others{};
                others.entry = &other;
                EXPECT_EQ(genhash(others).result, 0u);
            });
            const outcome done = genhash(params);
            EXPECT_EQ(done.result, 0u);
            expect_only_the_scratch(done.heap);
            EXPECT_TRUE(params.hash_valid);
            EXPECT_EQ(params.hash_value == 0x12345678, hash_valid);
        });
    }
}

class sized_entry : public flow_hash_entry_t {
  public:
    explicit sized_entry(uint32_t size) : size_(size) {}
    uint32_t entry_size() override { return size_; }

  private:
    uint32_t size_;
};

TEST(Scratch, HasRoomForTheReportedSizeRoundedUpTo64And16More) {
    struct {
        uint32_t size;
        size_t bytes;
    } constexpr sizes[] = {{65, 144}, {127, 144}, {128, 144}, {129, 208}, {192, 208}, {256, 272}};
    for (const auto &s : sizes) {
        SCOPED_TRACE(s.size);
        in_a_new_thread([&s] {
            sized_entry entry(s.size);
            sdk_table_api_params_t params{};
            params.entry = &entry;
            const outcome made = genhash(params);
            EXPECT_EQ(made.result, 0u);
            EXPECT_EQ(made.heap.callocs, 1u);
            EXPECT_EQ(made.heap.last_size, s.bytes);
        });
    }
}

}  // namespace
}  // namespace halden::test
