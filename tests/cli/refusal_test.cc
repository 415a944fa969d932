// What is said of flows that find no room: tables of a few rows, filled to the last.

#include "tools/haldenctl/refusal.h"

#include <gtest/gtest.h>

#include "host/memory/memory_map.h"
#include "host/view/row_hash.h"
#include "tools/haldenctl/entry_plan.h"

namespace halden::tool {
namespace {

class flow_refusals : public testing::Test {
  protected:
    // The flows that a hash unit of two rows leads to the first one.
    records next_flow(uint32_t hint_hashes) {
        for (;; ++number_) {
            records flow(*pipeline::find_table(host::flow_table));
            flow.set_key(0, number_ & 0xff, 0);
            for (size_t n = 0; n < 4; ++n)
                flow.key[flow.key.size() - 1 - n] = static_cast<uint8_t>(number_ >> 8 * n);
            const uint32_t hash = host::view::flow_hash(images_of(flow).key.data());
            if (hash >> 31 != 0 || host::view::hint_hash(hash) >= hint_hashes) continue;
            ++number_;
            return flow;
        }
    }
    // The words for the first flow of those that is refused.
    std::string first_refusal(uint32_t overflow_rows, uint32_t hint_hashes, unsigned &taken) {
        const auto adapter =
            host::adapter::anonymous({.flow_rows = 2, .flow_ohash_rows = overflow_rows});
        host::table_state tables(*adapter);
        refusals why(*adapter);
        for (taken = 0; taken < 1000; ++taken) {
            const records flow = next_flow(hint_hashes);
            if (create_entry(flow, 0) == TEV_TBL_RET_OK) continue;
            const failure reason = why.reason(table_call::create, flow, 0);
            EXPECT_EQ(reason.status(), exit_status::refused);
            return reason.what();
        }
        return {};
    }

    uint32_t number_ = 0;
};

TEST_F(flow_refusals, say_that_the_overflow_is_full) {
    unsigned taken = 0;
    EXPECT_EQ(first_refusal(8, 1024, taken),
              "its row is taken and flow_ohash is full: 7 of 7 rows");
    EXPECT_EQ(taken, 8u);
}

TEST_F(flow_refusals, say_that_a_chain_is_full) {
    unsigned taken = 0;
    EXPECT_EQ(first_refusal(1024, 1, taken),
              "its row is taken and its chain in flow_ohash is full: 8 of 8 rows");
    EXPECT_LT(taken, 1000u);
}

TEST_F(flow_refusals, say_where_a_flow_is) {
    const auto adapter = host::adapter::anonymous({.flow_rows = 2, .flow_ohash_rows = 8});
    host::table_state tables(*adapter);
    const records first = next_flow(1024), second = next_flow(1024), third = next_flow(1024);
    ASSERT_EQ(create_entry(first, 0), 0u);
    ASSERT_EQ(create_entry(second, 0), 0u);
    refusals why(*adapter);
    EXPECT_STREQ(why.reason(table_call::create, first, 0).what(),
                 "there is such an entry, in row 0");
    EXPECT_STREQ(why.reason(table_call::create, second, 0).what(),
                 "there is such an entry, in row 1 of flow_ohash");
    const failure none = why.reason(table_call::remove, third, 0);
    EXPECT_STREQ(none.what(), "there is none");
    EXPECT_EQ(none.status(), exit_status::missed);
}

TEST(ranges, are_short) {
    EXPECT_EQ(ranges_of({}), "");
    EXPECT_EQ(ranges_of({7}), "7");
    EXPECT_EQ(ranges_of({7, 8}), "7, 8");
    EXPECT_EQ(ranges_of({1, 2, 3, 5, 8, 9, 10}), "1 to 3, 5, 8 to 10");
    EXPECT_EQ(ranges_of({1, 3, 5, 7, 9, 11, 13, 15, 16, 19}),
              "1, 3, 5, 7, 9, 11, 13, 15, 16 and 1 more");
    EXPECT_EQ(ranges_of({1, 3, 5, 7, 9, 11, 13, 15, 17, 18}),
              "1, 3, 5, 7, 9, 11, 13, 15 and 2 more");
}

}  // namespace
}  // namespace halden::tool
