// Decoding takes nothing from the heap: every table and action, both decoders, whole and cut.

#include <array>
#include <cstdlib>
#include <new>
#include <string>

#include "gtest/gtest.h"
#include "p4pd.h"
#include "sdk/asic/pd.h"
#include "tests/support/allocation_count.h"

namespace halden::test {
namespace {

// 0 for what allocates nothing.
template <class Call>
uint64_t allocations_of(Call call) {
    const uint64_t before = allocation_count();
    call();
    return allocation_count() - before;
}

// The count is of no use if it does not move, neither here nor in another library.
TEST(AllocationCount, MovesWithEveryAllocation) {
    void *volatile kept = nullptr;  // so that no compiler leaves the allocation out
    EXPECT_EQ(allocations_of([&] { kept = std::malloc(3); }), 1u);
    std::free(kept);
    EXPECT_EQ(allocations_of([&] { kept = ::operator new(3); }), 1u);
    ::operator delete(kept);
    EXPECT_EQ(allocations_of([&] { kept = allocate_debug_response_msg(); }), 1u);
    free_debug_response_msg(kept);
    EXPECT_EQ(allocations_of([] {}), 0u);
}

class DecodeAllocations : public testing::TestWithParam<uint32_t> {
  protected:
    uint32_t id() const { return GetParam(); }
    std::array<char, 8192> text = {};
};

TEST_P(DecodeAllocations, OfRecords) {
    std::array<uint8_t, 128> key, mask, data;
    key.fill(0xc5);
    mask.fill(0xff);
    data.fill(0x5c);
    for (int32_t action = 0; action < p4pd_get_max_action_id(id()); ++action) {
        data[0] = static_cast<uint8_t>(action);
        for (uint16_t size : {uint16_t{8192}, uint16_t{100}, uint16_t{0}}) {
            p4pd_error_t result = P4PD_FAIL;
            EXPECT_EQ(allocations_of([&] {
                          result = p4pd_table_ds_decoded_string_get(
                              id(), 7, key.data(), mask.data(), data.data(), text.data(), size);
                      }),
                      0u);
            EXPECT_EQ(result, P4PD_SUCCESS);
            if (size == text.size()) {
                EXPECT_NE(std::string(text.data()).find("\nAction : "), std::string::npos);
            }
        }
    }
}

TEST_P(DecodeAllocations, OfRawEntries) {
    for (int32_t action = 0; action < p4pd_get_max_action_id(id()); ++action) {
        std::array<uint8_t, 128> entry, y;
        entry.fill(0xc5);
        y.fill(0x3a);
        // In a table of several actions; else it is data. A TCAM's data row is swizzled over its
        // 1024 bits, so its first byte is the last one here.
        const bool ternary = id() >= 7 && id() <= 15;
        if (p4pd_get_max_action_id(id()) > 1)
            (ternary ? entry.back() : entry.front()) =
                sdk::asic::pd::asicpd_get_action_pc(id(), static_cast<uint8_t>(action));
        for (uint8_t *second : {static_cast<uint8_t *>(nullptr), y.data()})
            for (uint16_t size : {uint16_t{8192}, uint16_t{100}, uint16_t{0}}) {
                p4pd_error_t result = P4PD_FAIL;
                EXPECT_EQ(allocations_of([&] {
                              result = p4pd_table_entry_decoded_string_get(
                                  id(), 7, entry.data(), second, 1024, text.data(), size);
                          }),
                          0u);
                EXPECT_EQ(result, P4PD_SUCCESS);
                const bool with_action = second == nullptr || !ternary;
                if (size == text.size()) {
                    EXPECT_EQ(std::string(text.data()).find("\nAction: ") != std::string::npos,
                              with_action);
                }
            }
    }
}

INSTANTIATE_TEST_SUITE_P(Tables, DecodeAllocations, testing::Range(1u, 49u));

}  // namespace
}  // namespace halden::test
