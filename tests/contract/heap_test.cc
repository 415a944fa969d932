// Memory: who allocates, and what happens when there is none. The writers and key builders under
// test are compiled into this program, so that every allocation of theirs is seen.

#include "tests/contract/heap_hook.h"

#include <cstdlib>

#include "gtest/gtest.h"
#include "tests/contract/writer_calls.h"

namespace halden::test {
namespace {

class Heap : public EntryWrite {
  protected:
    // The five-argument write; what it allocated is in use_.
    p4pd_error_t write_five(uint32_t id, size_t refuse = 0) {
        begin();
        use_record(73, 0);
        watch_heap(refuse);
        const p4pd_error_t result = p4pd_entry_write(id, 5, key_, mask_, record_.data());
        use_ = unwatch_heap();
        return result;
    }

    heap_use use_;
    uint8_t key_[96] = {}, mask_[96] = {};
};

// The hook itself: it sees an allocation and refuses the one it is told to.
TEST_F(Heap, IsWatched) {
    watch_heap(2);
    void *volatile first = std::malloc(3);
    void *volatile second = std::calloc(2, 5);
    std::free(first);
    std::free(second);
    const heap_use use = unwatch_heap();
    EXPECT_EQ(use.allocations, 2u);
    EXPECT_EQ(use.bytes[0], 3u);
    EXPECT_EQ(use.bytes[1], 10u);
    EXPECT_EQ(use.refused, 1u);
    EXPECT_EQ(use.frees, 1u);
}

TEST_F(Heap, OnTable49TheFiveArgumentWriteFailsWithoutAllocating) {
    for (uint32_t id : {49u, 0u, 50u, 257u, 0xffffffffu}) {
        EXPECT_EQ(write_five(id), -1) << id;
        EXPECT_EQ(use_.allocations, 0u) << id;
    }
}

// Room for the images of key and mask, also where the query's length is 0; of a flow key the whole
// image, which is longer than its queried length.
TEST_F(Heap, TheFiveArgumentWriteHasRoomForBothImagesAndFreesThem) {
    static constexpr size_t key_bytes[] = {84, 84, 64, 64, 64, 64, 4, 16, 28, 6, 18, 2, 2, 8, 2};
    static constexpr size_t mask_bytes[] = {0, 0, 0, 0, 0, 0, 4, 16, 28, 6, 18, 2, 2, 8, 2};
    for (uint32_t id = 1; id <= 48; ++id) {
        SCOPED_TRACE(id);
        EXPECT_EQ(write_five(id), id <= 32 ? 0 : -1);
        ASSERT_EQ(use_.allocations, 2u);
        EXPECT_GE(use_.bytes[0], id <= 15 ? key_bytes[id - 1] : 1u);
        EXPECT_GE(use_.bytes[1], id <= 15 && mask_bytes[id - 1] != 0 ? mask_bytes[id - 1] : 1u);
        EXPECT_EQ(use_.frees, 2u);
    }
}

// The dispatcher is called with both images still there.
TEST_F(Heap, TheImagesLiveUntilTheDispatcherHasReturned) {
    for (p4pd_error_t answer : {0, -1}) {
        begin();
        use_record(73, 0);
        host_.global_write_result = answer;
        size_t frees = 99;
        host_.on_call = [&frees](const call &made) {
            if (made.name == "p4pd_global_entry_write") frees = heap_now().frees;
        };
        watch_heap();
        const p4pd_error_t result = p4pd_entry_write(7, 5, key_, mask_, record_.data());
        const heap_use use = unwatch_heap();
        EXPECT_EQ(result, answer);
        EXPECT_EQ(frees, 0u);
        EXPECT_EQ(use.frees, 2u);
    }
}

// Whichever allocation fails: -1, nothing is called, and the other one is freed.
TEST_F(Heap, TheFiveArgumentWriteFailsWhenMemoryIsExhausted) {
    for (uint32_t id = 1; id <= 48; ++id) {
        for (size_t refuse : {size_t{1}, size_t{2}}) {
            SCOPED_TRACE(std::to_string(id) + ", allocation " + std::to_string(refuse));
            EXPECT_EQ(write_five(id, refuse), -1);
            EXPECT_EQ(use_.refused, 1u);
            EXPECT_EQ(use_.frees, use_.allocations - use_.refused);
            EXPECT_TRUE(calls_are({}));
        }
    }
}

// No heap on the write path, whichever way an entry is written.
TEST_F(Heap, WritingAndInstallingAllocateNothing) {
    for (uint32_t id = 1; id <= 48; ++id) {
        for (uint8_t action = 0; action < sizes_of(id).actions; ++action) {
            SCOPED_TRACE(id);
            begin();
            use_record(73, action);
            use_mask_record(73, action);
            int32_t failures = 0;
            watch_heap();
            for (entry_point way : entry_points)
                failures += write(way, {id, 5, key_, mask_, record_.data(), nullptr, false}) != 0;
            const bool refused = p4pd_entry_write_with_datamask(id, 5, key_, mask_, record_.data(),
                                                                mask_record_.data(), true) != 0;
            failures += p4pd_entry_install(id, 5, key_, mask_, record_.data()) != 0;
            const heap_use use = unwatch_heap();
            EXPECT_EQ(failures, 0);
            EXPECT_EQ(refused, id <= 15);
            EXPECT_EQ(use.allocations, 0u);
            EXPECT_EQ(use.frees, 0u);
        }
    }
}

TEST_F(Heap, KeysLengthsAndRowsAllocateNothing) {
    for (uint32_t id = 0; id <= 49; ++id) {
        begin();
        uint8_t key_image[96] = {}, mask_image[96] = {};
        uint32_t key_bits = 0, mask_bits = 0, data_bits = 0;
        watch_heap();
        (void)p4pd_hwkey_hwmask_build(id, key_, mask_, key_image, mask_image);
        p4pd_hwentry_query(id, &key_bits, &mask_bits, &data_bits);
        (void)p4pd_index_to_hwindex_map(id, key_);
        EXPECT_EQ(unwatch_heap().allocations, 0u) << id;
    }
}

}  // namespace
}  // namespace halden::test
