// `dump --all --json` into `write` on a second adapter: the same rows, bit for bit, in every
// memory of every table.

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <utility>

#include "host/adapter.h"
#include "p4pd.h"
#include "tests/model/entries.h"
#include "tests/support/scratch_directory.h"

namespace halden::test {
namespace {

using model_tests::entry;

// Every used row: the lengths and images of its memories, as they are stored.
struct row {
    uint16_t tcam_bits = 0, data_bits = 0;
    std::array<uint8_t, host::tcam_image_bytes> key = {}, key_mask = {};
    std::array<uint8_t, host::flow_row_bytes> data = {};
};
using rows = std::map<std::pair<uint32_t, uint32_t>, row>;

rows rows_of(const std::string &directory) {
    const auto adapter = host::adapter::open(directory);
    rows out;
    for (const host::table_memory &t : host::all_table_memories())
        for (uint32_t at = adapter->next_used(t.id, 0); at < adapter->depth(t.id);
             at = adapter->next_used(t.id, at + 1)) {
            row &r = out[{t.id, at}];
            if (t.has_tcam())
                adapter->tcam_read(t.id, at, r.key.data(), r.key_mask.data(), &r.tcam_bits);
            if (t.data == host::memory::hbm)
                adapter->hbm_read(t.id, at, r.data.data(), &r.data_bits);
            else
                adapter->sram_read(t.id, at, r.data.data(), &r.data_bits);
        }
    return out;
}

// Random entries of every action of every table, in random rows.
void fill(const std::string &directory) {
    const auto adapter = host::adapter::open(directory);
    const host::scoped_current use(*adapter);
    model_tests::entry_source source(20260117);
    for (uint32_t id = 1; id <= 48; ++id)
        for (uint32_t action = 0; action < reference::table_of(id).actions; ++action)
            for (int n = 0; n < 20; ++n) {
                entry e = source.of(id, action);
                ASSERT_EQ(p4pd_entry_install(id, source.number(adapter->depth(id)), e.key.data(),
                                             e.mask.data(), e.data.data()),
                          0);
            }
}

TEST(Copy, OfADumpHoldsTheSameRows) {
    const scratch_directory directory;
    const std::string first = directory.file("first"), second = directory.file("second");
    fill(first);
    const std::string tool = HALDENCTL " --adapter '";
    ASSERT_EQ(std::system((tool + first + "' dump --all --json >'" + directory.file("dump.json") +
                           "' && " + tool + second + "' write -q '" + directory.file("dump.json") +
                           "' >'" + directory.file("written") + "'")
                              .c_str()),
              0);
    const rows wanted = rows_of(first), got = rows_of(second);
    // All but the keyless tables, whose rows have no bits.
    for (uint32_t id = 1; id <= 40; ++id)
        EXPECT_TRUE(wanted.lower_bound({id, 0}) != wanted.lower_bound({id + 1, 0})) << id;
    EXPECT_GT(wanted.size(), 700u);
    EXPECT_EQ(got.size(), wanted.size());
    for (const auto &[where, r] : wanted) {
        SCOPED_TRACE("table " + std::to_string(where.first) + ", row " +
                     std::to_string(where.second));
        ASSERT_TRUE(got.contains(where));
        const row &copy = got.at(where);
        EXPECT_EQ(copy.tcam_bits, r.tcam_bits);
        EXPECT_EQ(copy.key, r.key);
        EXPECT_EQ(copy.key_mask, r.key_mask);
        EXPECT_EQ(copy.data_bits, r.data_bits);
        EXPECT_EQ(copy.data, r.data);
    }
}

}  // namespace
}  // namespace halden::test
