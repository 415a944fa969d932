// Readers and decoders take no memory from the heap. They are compiled into this program, so that
// every allocation of theirs is seen.

#include "p4pd.h"
#include "tests/contract/heap_hook.h"
#include "tests/read/reader_fixture.h"

namespace halden::read_tests {
namespace {

using test::unwatch_heap;
using test::watch_heap;

class NoHeap : public ReaderTest, public testing::WithParamInterface<uint32_t> {
  protected:
    uint32_t id() const { return GetParam(); }
    const reference::table &facts() const { return reference::table_of(id()); }
    bytes row_ = bytes(1024, 0x3c), word_ = bytes(1024, 0x5a);
    char text_[4096] = {};
};

TEST_P(NoHeap, IsTakenByAReadOfAnyAction) {
    for (uint32_t action = 0; action < facts().actions; ++action) {
        const read_of read = full_read(id(), action);
        answer_with(read, {});
        host.forget_calls();
        watch_heap();
        const p4pd_error_t answered =
            p4pd_entry_read(id(), 1, key.data(), mask.data(), data.data(), nullptr, false);
        EXPECT_EQ(unwatch_heap().allocations, 0u);
        EXPECT_EQ(answered, 0);
        EXPECT_FALSE(host.calls().empty());
    }
}

TEST_P(NoHeap, IsTakenByAnEmptyOrAnUnknownRead) {
    read_of read = full_read(id());
    read.bits = read.width = 0;
    answer_with(read, {});
    watch_heap();
    const p4pd_error_t empty =
        p4pd_entry_read(id(), 1, key.data(), mask.data(), data.data(), nullptr, false);
    const p4pd_error_t unknown =
        p4pd_entry_read(id() + 48, 1, key.data(), mask.data(), data.data(), nullptr, false);
    EXPECT_EQ(unwatch_heap().allocations, 0u);
    EXPECT_EQ(empty, facts().has_tcam() ? -1 : 0);
    EXPECT_EQ(unknown, -1);
}

TEST_P(NoHeap, IsTakenByTheTextOfRecords) {
    for (uint32_t action = 0; action < facts().actions; ++action) {
        data[0] = static_cast<uint8_t>(action);
        watch_heap();
        const p4pd_error_t answered = p4pd_table_ds_decoded_string_get(
            id(), 1, key.data(), mask.data(), data.data(), text_, sizeof text_);
        EXPECT_EQ(unwatch_heap().allocations, 0u);
        EXPECT_EQ(answered, 0);
        EXPECT_NE(std::string(text_).find("Action : "), std::string::npos);
    }
}

TEST_P(NoHeap, IsTakenByTheTextOfAnEntry) {
    host.on_action_id = [](uint32_t, uint8_t) { return uint8_t{0}; };
    for (uint8_t *const second : {static_cast<uint8_t *>(nullptr), word_.data()}) {
        watch_heap();
        const p4pd_error_t answered = p4pd_table_entry_decoded_string_get(
            id(), 1, row_.data(), second, 8192, text_, sizeof text_);
        EXPECT_EQ(unwatch_heap().allocations, 0u);
        EXPECT_EQ(answered, 0);
        EXPECT_NE(std::string(text_).find("Table: "), std::string::npos);
    }
}

INSTANTIATE_TEST_SUITE_P(Tables, NoHeap, testing::Range(1u, 49u),
                         [](const auto &tested) { return table_name(tested.param); });

}  // namespace
}  // namespace halden::read_tests
