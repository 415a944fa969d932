// Entries of every table on one adapter: none lies where another's lies, an overflow table's data
// behind its owner's rows included.

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <utility>

#include "host/adapter.h"
#include "p4pd.h"
#include "tests/model/entries.h"

namespace halden::model_tests {
namespace {

p4pd_error_t read(uint32_t id, uint32_t index, entry &out) {
    out = blank(id);
    return p4pd_entry_read(id, index, out.key.data(), out.mask.data(), out.data.data(), nullptr,
                           false);
}

class SideBySide : public testing::Test {
  protected:
    std::unique_ptr<host::adapter> adapter_ = host::adapter::anonymous();
    host::scoped_current current_{*adapter_};
};

TEST_F(SideBySide, TheFirstAndTheLastRowsOfEveryTable) {
    entry_source source(4711);
    std::map<std::pair<uint32_t, uint32_t>, entry> rows;
    for (uint32_t id = 1; id <= 48; ++id) {
        const uint32_t depth = adapter_->depth(id);
        for (const uint32_t index : {0u, depth / 2, depth - 1}) {
            entry written = source.of(id, source.number(reference::table_of(id).actions));
            ASSERT_EQ(p4pd_entry_install(id, index, written.key.data(), written.mask.data(),
                                         written.data.data()),
                      0);
            rows[{id, index}] = kept(id, written);
        }
    }
    for (const auto &[where, want] : rows) {
        SCOPED_TRACE(read_tests::table_name(where.first) + ", row " + std::to_string(where.second));
        entry got;
        ASSERT_EQ(read(where.first, where.second, got), 0);
        expect_same(got, want);
    }
}

// Nothing was written: SRAM and HBM rows leave the records alone, TCAM rows fail.
TEST_F(SideBySide, RowsThatWereNeverWritten) {
    for (uint32_t id = 1; id <= 48; ++id)
        for (const uint32_t index : {0u, adapter_->depth(id) - 1}) {
            entry got;
            EXPECT_EQ(read(id, index, got), reference::table_of(id).has_tcam() ? -1 : 0)
                << read_tests::table_name(id);
            expect_same(got, blank(id));
        }
}

// An index beyond the table: the adapter answers an empty row.
TEST_F(SideBySide, RowsBeyondTheTable) {
    for (uint32_t id = 1; id <= 48; ++id) {
        entry got;
        EXPECT_EQ(read(id, 0xfffffff0, got), reference::table_of(id).has_tcam() ? -1 : 0)
            << read_tests::table_name(id);
        expect_same(got, blank(id));
    }
}

}  // namespace
}  // namespace halden::model_tests
