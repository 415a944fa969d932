// No call of the table API allocates, whatever it answers; and each makes one engine call at most.

#include <cstdlib>

#include "tests/support/heap_watch.h"
#include "tests/tableapi/fixture.h"
#include "tev_tbl.h"

namespace halden::test {
namespace {

class Allocation : public TableApi {
  protected:
    template <class Call>
    unsigned allocations_of(Call run) {
        watch_heap();
        run();
        const heap_events heap = unwatch_heap();
        return heap.callocs + heap.others;
    }
};

TEST_F(Allocation, TheHookCounts) {
    void *volatile memory = nullptr;
    EXPECT_EQ(allocations_of([&] { memory = std::malloc(3); }), 1u);
    std::free(memory);
    EXPECT_EQ(allocations_of([&] { memory = ::operator new(3); }), 1u);
    ::operator delete(memory);
    EXPECT_EQ(allocations_of([&] {
                  const recording_host::scope inside;
                  memory = std::malloc(3);
              }),
              0u);
    std::free(memory);
}

TEST_F(Allocation, NoCallOfAnyTableAllocates) {
    for (const api_table &t : api_tables()) {
        SCOPED_TRACE(t.name);
        bytes spec = random_record(t.spec_bytes()), info = spec;
        bytes key = t.kind == api_kind::index ? key_of_row(t, 0) : random_record(t.key_bytes);
        std::copy(key.begin(), key.end(), spec.begin() + 1);
        for (const uint32_t code : {0u, 4u, 6u}) {
            answer(code);
            EXPECT_EQ(allocations_of([&] {
                          t.create(spec.data());
                          t.read(key.data(), info.data());
                          t.update(spec.data());
                          t.remove(key.data());
                          t.find(key.data());
                      }),
                      0u);
            EXPECT_EQ(host.calls().size(), 5u);
            forget();
        }
        EXPECT_EQ(allocations_of([&] {
                      t.create(nullptr);
                      t.read(nullptr, nullptr);
                      t.table_clear();
                  }),
                  0u);
        EXPECT_EQ(host.messages().size(), 3u);
        EXPECT_TRUE(host.calls().empty());
        forget();
    }
}

TEST_F(Allocation, NoCallOfTheFlowTableAllocates) {
    const tev_tbl_flow_spec_t spec = {};
    tev_tbl_flow_info_t info = {};
    for (const uint32_t code : {0u, 4u, 6u}) {
        answer(code);
        EXPECT_EQ(allocations_of([&] {
                      tev_tbl_flow_create(&spec);
                      tev_tbl_flow_read(&spec.key, &info);
                      tev_tbl_flow_update(&spec);
                      tev_tbl_flow_delete(&spec.key);
                      tev_tbl_flow_find(&spec.key);
                  }),
                  0u);
        EXPECT_EQ(host.calls().size(), 5u);
        forget();
    }
}

}  // namespace
}  // namespace halden::test
