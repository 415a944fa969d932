// The index engine, through the table API: every row of every table, refusals, faults, restart.

#include "tests/engines/table_bed.h"
#include "tev_tbl.h"

namespace halden::test {
namespace {

class Directmap : public TableBed {
  protected:
    uint32_t rows() const { return static_cast<uint32_t>(t().index_max) + 1; }
    // Rows that are looked at bit by bit: all of a small table, some of a large one.
    bool looked_at(uint32_t row) const {
        return rows() <= 16384 || row < 50 || row + 50 >= rows() || row % 997 == 0;
    }
    // Whether a key can name the row behind the last; else the key's bits name another one.
    bool has_bits_behind() const {
        for (const uint32_t id : {18u, 19u, 24u, 28u, 29u, 30u, 31u, 34u, 38u})
            if (t().id == id) return false;
        return true;
    }
    bytes key(uint32_t row) const { return key_of_row(t(), row); }
    bytes data(uint32_t row, unsigned round) const {
        return data_of_number(uint64_t{round} << 40 | row);
    }
    bool is_in_memory(uint32_t row, const bytes &stored) {
        uint8_t image[1024] = {};
        uint16_t bits = 0;
        const reference::image wanted = reference::entry(t().id, pc_of(t().id, stored), {}, stored);
        bytes expected = wanted.data;
        if (facts().in_hbm()) {
            hardware().hbm_read(t().id, row, image, &bits);
            expected.resize((wanted.bits + 7) / 8);
        } else {
            hardware().sram_read(t().id, row, image, &bits);
            expected = reference::as_stored(wanted.data, wanted.bits);
        }
        return bits == wanted.bits && bytes(image, image + expected.size()) == expected;
    }
    bool is_empty_in_memory(uint32_t row) { return hardware().next_used(t().id, row) != row; }
    host::engine_statistics statistics() {
        return sdk::table::directmap_access::statistics(
            *static_cast<const sdk::table::directmap *>(t().engine(tables())));
    }
};

TEST_P(Directmap, EveryRowIsFilledReadRefusedHalfDeletedAndRefilled) {
    for (uint32_t row = 0; row < rows(); ++row)
        ASSERT_EQ(create(key(row), data(row, 0)), 0u) << row;
    EXPECT_EQ(statistics().used, rows());
    EXPECT_EQ(statistics().rows, rows());
    for (uint32_t row = 0; row < rows(); ++row) {
        ASSERT_EQ(t().find(key(row).data()), 0u) << row;
        if (!looked_at(row)) continue;
        expect_reads(key(row), data(row, 0));
        ASSERT_TRUE(is_in_memory(row, data(row, 0))) << row;
    }
    if (HasFatalFailure()) return;

    // One more is refused: every row is taken, and the row behind the last is none.
    for (uint32_t row = 0; row < rows(); row += 1 + rows() / 64) {
        ASSERT_EQ(create(key(row), data(row, 7)), 9u) << row;
        ASSERT_TRUE(is_in_memory(row, data(row, 0))) << row;
    }
    const bytes behind = key(rows());
    EXPECT_EQ(create(behind, data(0, 7)), has_bits_behind() ? 2u : 9u);

    for (uint32_t row = 1; row < rows(); row += 2) ASSERT_EQ(t().remove(key(row).data()), 0u);
    EXPECT_EQ(statistics().used, rows() - rows() / 2);
    for (uint32_t row = 0; row < rows(); ++row) {
        const bool deleted = row % 2 == 1;
        ASSERT_EQ(t().find(key(row).data()), deleted ? 4u : 0u) << row;
        if (!looked_at(row)) continue;
        ASSERT_EQ(is_empty_in_memory(row), deleted) << row;
        if (deleted) {
            ASSERT_EQ(t().remove(key(row).data()), 9u) << "it is gone";
            ASSERT_EQ(update(key(row), data(row, 1)), 9u) << "there is nothing to update";
        } else {
            ASSERT_TRUE(is_in_memory(row, data(row, 0))) << row;
        }
    }
    if (HasFatalFailure()) return;

    for (uint32_t row = 1; row < rows(); row += 2)
        ASSERT_EQ(create(key(row), data(row, 2)), 0u) << row;
    for (uint32_t row = 0; row < rows(); ++row) {
        if (!looked_at(row)) continue;
        ASSERT_TRUE(is_in_memory(row, data(row, row % 2 == 1 ? 2 : 0))) << row;
        expect_reads(key(row), data(row, row % 2 == 1 ? 2 : 0));
    }
    EXPECT_EQ(statistics().used, rows());
}

TEST_P(Directmap, UpdateReplacesTheWholeEntry) {
    const uint32_t row = rows() / 2;
    ASSERT_EQ(update(key(row), data(row, 0)), 9u);
    ASSERT_TRUE(is_empty_in_memory(row));
    ASSERT_EQ(create(key(row), data(row, 0)), 0u);
    for (unsigned round = 1; round < 20; ++round) {
        ASSERT_EQ(update(key(row), data(row, round)), 0u);
        ASSERT_TRUE(is_in_memory(row, data(row, round)));
        expect_reads(key(row), data(row, round));
    }
}

TEST_P(Directmap, ARefusedWriteChangesNothing) {
    const uint32_t row = rows() - 1;
    const auto call = facts().in_hbm() ? host::asic_call::hbm_write : host::asic_call::sram_write;
    hardware().faults().inject({.call = call, .table = t().id});
    EXPECT_EQ(create(key(row), data(row, 0)), 9u);
    EXPECT_TRUE(is_empty_in_memory(row));
    EXPECT_EQ(t().find(key(row).data()), 4u);
    hardware().faults().clear();
    ASSERT_EQ(create(key(row), data(row, 0)), 0u);
    hardware().faults().inject({.call = call, .table = t().id});
    EXPECT_EQ(update(key(row), data(row, 1)), 9u);
    EXPECT_TRUE(is_in_memory(row, data(row, 0)));
    hardware().faults().clear();
    hardware().faults().inject({.call = call, .table = t().id});
    EXPECT_EQ(t().remove(key(row).data()), 9u);
    EXPECT_TRUE(is_in_memory(row, data(row, 0)));
    EXPECT_EQ(statistics().failures, 3u);
}

TEST_P(Directmap, ARefusedReadIsNoAbsentEntry) {
    ASSERT_EQ(create(key(0), data(0, 0)), 0u);
    const auto call = facts().in_hbm() ? host::asic_call::hbm_read : host::asic_call::sram_read;
    bytes info(t().spec_bytes());
    hardware().faults().inject(
        {.call = call, .table = t().id, .count = host::every_time, .result = SDK_RET_HW_READ_ERR});
    EXPECT_EQ(t().read(key(0).data(), info.data()), 15u);
    EXPECT_EQ(t().find(key(0).data()), 15u);
    EXPECT_EQ(t().remove(key(0).data()), 9u);
    hardware().faults().clear();
    expect_reads(key(0), data(0, 0));
}

TEST_P(Directmap, AnActionThatTheTableHasNotIsRefused) {
    bytes record = data(0, 0);
    record[0] = static_cast<uint8_t>(facts().actions);
    EXPECT_EQ(create(key(0), record), 9u);
    EXPECT_TRUE(is_empty_in_memory(0));
    ASSERT_EQ(create(key(0), data(0, 0)), 0u);
    EXPECT_EQ(update(key(0), record), 9u);
    EXPECT_TRUE(is_in_memory(0, data(0, 0)));
}

TEST_P(Directmap, EntriesOutliveTheProcess) {
    const scratch_directory directory;
    const uint32_t step = 1 + rows() / 40;
    open(directory.path());
    for (uint32_t row = 0; row < rows(); row += step) ASSERT_EQ(create(key(row), data(row, 0)), 0u);
    open(directory.path());
    for (uint32_t row = 0; row < rows(); row += step) {
        expect_reads(key(row), data(row, 0));
        ASSERT_EQ(create(key(row), data(row, 1)), 9u) << "it is still there";
        if (row + 1 < rows() && step > 1) {
            ASSERT_EQ(t().find(key(row + 1).data()), 4u);
        }
    }
}

// The tables of two million rows are a program of their own.
std::vector<api_table> tables_of_this_program() {
    std::vector<api_table> out;
    for (const api_table &t : api_tables_of(api_kind::index))
        if ((t.index_max > 100000) == HALDEN_LARGE_TABLES) out.push_back(t);
    return out;
}
INSTANTIATE_TEST_SUITE_P(Tables, Directmap, testing::ValuesIn(tables_of_this_program()),
                         name_of_tested);

}  // namespace
}  // namespace halden::test
