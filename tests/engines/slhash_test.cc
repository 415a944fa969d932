// The exact-match engine, through the table API: rows and overflow to the last, what hardware
// finds, faults, restart.

#include <algorithm>
#include <set>
#include <string>

#include "host/view/row_hash.h"
#include "p4pd.h"
#include "tests/engines/table_bed.h"
#include "tev_tbl.h"

namespace halden::test {
namespace {

class Slhash : public TableBed {
  protected:
    struct stored {
        bytes key, data;
    };

    uint32_t rows() { return hardware().depth(t().id); }
    uint32_t overflow_id() const {
        return t().id == 3 ? 7 : t().id == 4 ? 10 : t().id == 5 ? 11 : 14;
    }
    host::engine_statistics statistics() {
        return sdk::table::slhash_access::statistics(
            *static_cast<const sdk::table::slhash *>(t().engine(tables())));
    }

    // A key that no key before it equals in the bits that hardware keeps.
    bytes next_key() {
        for (;;) {
            const bytes key = bytes_of_number(uint64_t{1} << 50 | number_++, t().key_bytes);
            const bytes image = packet_of(key);
            if (images_.emplace(image.begin(), image.end()).second) return key;
        }
    }
    stored next_entry() { return {next_key(), data_of_number(uint64_t{2} << 50 | number_)}; }

    // One entry for each hash row, and as many as the overflow takes.
    void fill(std::vector<stored> &entries) {
        std::vector<bool> taken(rows());
        uint32_t free_rows = rows(), free_overflow = 512;
        while (free_rows + free_overflow > 0) {
            const stored entry = next_entry();
            const uint32_t row = host::view::hash_row(t().id, packet_of(entry.key).data(), rows());
            if (taken[row] && free_overflow == 0) continue;
            ASSERT_EQ(create(entry.key, entry.data), 0u) << entries.size();
            --(taken[row] ? free_overflow : free_rows);
            taken[row] = true;
            entries.push_back(entry);
        }
    }
    void expect_all(const std::vector<stored> &entries) {
        for (const stored &entry : entries) {
            ASSERT_TRUE(hardware_finds(entry.key, entry.data));
            expect_reads(entry.key, entry.data);
            if (HasFatalFailure()) return;
        }
    }
    // Two entries of one row, the second in the overflow.
    void collide(stored &first, stored &second) {
        first = next_entry();
        ASSERT_EQ(create(first.key, first.data), 0u);
        const uint32_t row = look_up(packet_of(first.key)).row;
        do second = next_entry();
        while (look_up(packet_of(second.key)).hashed_row != row);
        ASSERT_EQ(create(second.key, second.data), 0u);
        ASSERT_EQ(look_up(packet_of(first.key)).table, t().id);
        ASSERT_EQ(look_up(packet_of(second.key)).table, overflow_id());
    }

  private:
    uint64_t number_ = 0;
    std::set<std::string> images_;
};

// Every row and the whole overflow; then one more; half taken out; filled again.
TEST_P(Slhash, IsFilledToTheLastRowAndTheLastOfTheOverflow) {
    std::vector<stored> entries;
    fill(entries);
    if (HasFatalFailure()) return;
    ASSERT_EQ(entries.size(), rows() + 512);
    EXPECT_EQ(statistics().used, rows());
    EXPECT_EQ(statistics().overflow_used, 512u);
    EXPECT_EQ(statistics().collisions, 512u);
    expect_all(entries);
    if (HasFatalFailure()) return;

    for (unsigned i = 0; i < 50; ++i) {
        const stored more = next_entry();
        ASSERT_EQ(create(more.key, more.data), 9u);
        ASSERT_FALSE(look_up(packet_of(more.key)).hit);
        ASSERT_EQ(t().find(more.key.data()), 4u);
        const stored &there = entries[i * 7];
        ASSERT_EQ(create(there.key, more.data), 9u) << "a duplicate";
    }

    std::mt19937_64 random(1);
    std::shuffle(entries.begin(), entries.end(), random);
    const std::vector<stored> gone(entries.begin() + static_cast<long>(entries.size() / 2),
                                   entries.end());
    std::vector<stored> kept(entries.begin(),
                             entries.begin() + static_cast<long>(entries.size() / 2));
    for (const stored &entry : gone) ASSERT_EQ(t().remove(entry.key.data()), 0u);
    for (const stored &entry : gone) {
        ASSERT_FALSE(look_up(packet_of(entry.key)).hit);
        ASSERT_EQ(t().find(entry.key.data()), 4u);
        ASSERT_EQ(t().remove(entry.key.data()), 9u);
        ASSERT_EQ(update(entry.key, entry.data), 9u);
    }
    expect_all(kept);
    if (HasFatalFailure()) return;

    for (const stored &entry : gone) ASSERT_EQ(create(entry.key, entry.data), 0u);
    expect_all(entries);
    EXPECT_EQ(statistics().used, rows());
    EXPECT_EQ(statistics().overflow_used, 512u);
}

TEST_P(Slhash, AnEntryInTheOverflowIsFoundAfterItsRowBecameFree) {
    stored first, second;
    collide(first, second);
    if (HasFatalFailure()) return;
    ASSERT_EQ(t().remove(first.key.data()), 0u);
    EXPECT_FALSE(look_up(packet_of(first.key)).hit);
    EXPECT_TRUE(hardware_finds(second.key, second.data));
    expect_reads(second.key, second.data);
    EXPECT_EQ(create(second.key, second.data), 9u) << "still a duplicate";
    // The row is taken by the next key of its hash.
    ASSERT_EQ(create(first.key, first.data), 0u);
    EXPECT_EQ(look_up(packet_of(first.key)).table, t().id);
    EXPECT_TRUE(hardware_finds(second.key, second.data));
}

TEST_P(Slhash, UpdateReplacesTheDataWhereTheEntryStands) {
    stored first, second;
    collide(first, second);
    if (HasFatalFailure()) return;
    for (stored *entry : {&first, &second}) {
        const host::view::answer before = look_up(packet_of(entry->key));
        entry->data = data_of_number(77);
        ASSERT_EQ(update(entry->key, entry->data), 0u);
        EXPECT_TRUE(hardware_finds(entry->key, entry->data));
        EXPECT_EQ(look_up(packet_of(entry->key)).table, before.table);
        EXPECT_EQ(look_up(packet_of(entry->key)).row, before.row);
    }
}

// At every write of a create, an update or a delete, every other entry is found as it was.
TEST_P(Slhash, OtherEntriesAreFoundAtEveryWrite) {
    std::vector<stored> entries;
    for (unsigned i = 0; i < 3; ++i) {
        stored first, second;
        collide(first, second);
        if (HasFatalFailure()) return;
        entries.push_back(first);
        entries.push_back(second);
    }
    for (size_t changed = 0; changed < entries.size(); ++changed) {
        unsigned writes = 0;
        hardware().set_observer([&](const host::row_change &) {
            ++writes;
            for (size_t i = 0; i < entries.size(); ++i)
                if (i != changed) {
                    EXPECT_TRUE(hardware_finds(entries[i].key, entries[i].data));
                }
        });
        ASSERT_EQ(t().remove(entries[changed].key.data()), 0u);
        ASSERT_EQ(create(entries[changed].key, entries[changed].data), 0u);
        entries[changed].data = data_of_number(changed);
        ASSERT_EQ(update(entries[changed].key, entries[changed].data), 0u);
        hardware().set_observer({});
        EXPECT_GE(writes, 3u);
    }
}

TEST_P(Slhash, ARefusedWriteChangesNothing) {
    stored first, second;
    collide(first, second);
    if (HasFatalFailure()) return;
    ASSERT_EQ(t().remove(second.key.data()), 0u);
    // Of the overflow: its SRAM row, its TCAM row.
    for (const auto call : {host::asic_call::sram_write, host::asic_call::tcam_write}) {
        hardware().faults().inject({.call = call, .table = overflow_id()});
        EXPECT_EQ(create(second.key, second.data), 9u);
        EXPECT_FALSE(look_up(packet_of(second.key)).hit);
        EXPECT_EQ(t().find(second.key.data()), 4u);
        EXPECT_EQ(statistics().overflow_used, 0u);
        hardware().faults().clear();
    }
    ASSERT_EQ(create(second.key, second.data), 0u);
    for (const auto call : {host::asic_call::sram_write, host::asic_call::tcam_write}) {
        hardware().faults().inject({.call = call, .table = overflow_id()});
        EXPECT_EQ(update(second.key, data_of_number(5)), 9u);
        EXPECT_TRUE(hardware_finds(second.key, second.data)) << "the old data is back";
        hardware().faults().clear();
    }
    hardware().faults().inject({.call = host::asic_call::tcam_write, .table = overflow_id()});
    EXPECT_EQ(t().remove(second.key.data()), 9u);
    EXPECT_TRUE(hardware_finds(second.key, second.data));
    hardware().faults().clear();
    hardware().faults().inject({.call = host::asic_call::sram_write, .table = t().id});
    EXPECT_EQ(t().remove(first.key.data()), 9u);
    EXPECT_TRUE(hardware_finds(first.key, first.data));
}

// The data of an overflow row is refused, and so is taking back its TCAM row: hardware matches a
// key that nobody made. It is gone before anything else changes, and until then nothing does.
TEST_P(Slhash, ARowThatCouldNotBeTakenBackIsGoneWithTheNextCall) {
    stored first, second;
    collide(first, second);
    if (HasFatalFailure()) return;
    ASSERT_EQ(t().remove(second.key.data()), 0u);
    hardware().faults().inject({.call = host::asic_call::sram_write, .table = overflow_id()});
    hardware().faults().inject({.call = host::asic_call::tcam_write,
                                .table = overflow_id(),
                                .skip = 1,
                                .count = host::every_time});
    EXPECT_EQ(create(second.key, second.data), 9u);
    EXPECT_EQ(t().find(second.key.data()), 4u);
    const bytes later = data_of_number(5);
    EXPECT_EQ(update(first.key, later), 9u);
    EXPECT_EQ(t().remove(first.key.data()), 9u);
    hardware().faults().clear();
    expect_reads(first.key, first.data);
    ASSERT_EQ(update(first.key, later), 0u);
    EXPECT_FALSE(look_up(packet_of(second.key)).hit);
    EXPECT_TRUE(hardware_finds(first.key, later));
    ASSERT_EQ(create(second.key, second.data), 0u);
    EXPECT_TRUE(hardware_finds(second.key, second.data));
}

TEST_P(Slhash, EntriesOutliveTheProcess) {
    const scratch_directory directory;
    open(directory.path());
    std::vector<stored> entries;
    for (unsigned i = 0; i < 2; ++i) {
        stored first, second;
        collide(first, second);
        if (HasFatalFailure()) return;
        entries.push_back(first);
        entries.push_back(second);
    }
    open(directory.path());
    EXPECT_EQ(statistics().overflow_used, 2u);
    expect_all(entries);
    for (const stored &entry : entries) {
        EXPECT_EQ(create(entry.key, entry.data), 9u);
        EXPECT_EQ(t().remove(entry.key.data()), 0u);
        EXPECT_FALSE(look_up(packet_of(entry.key)).hit);
    }
    EXPECT_EQ(statistics().overflow_used, 0u);
}

// Somebody wrote an overflow row that compares a part of the key alone. It is no entry: not that of
// the key whose bits it compares, and no place for another.
TEST_P(Slhash, AnOverflowRowThatLeavesBitsOutIsNoEntry) {
    const scratch_directory directory;
    open(directory.path());
    bytes key(t().key_bytes), mask(t().key_bytes);
    key[0] = mask[0] = 1;
    bytes row = data_of_number(1);
    ASSERT_EQ(p4pd_entry_install(overflow_id(), 0, key.data(), mask.data(), row.data()), 0);
    open(directory.path());
    EXPECT_EQ(statistics().overflow_used, 1u);
    EXPECT_EQ(t().find(key.data()), 4u);
    EXPECT_EQ(update(key, data_of_number(2)), 9u);
    EXPECT_EQ(t().remove(key.data()), 9u);
    ASSERT_EQ(look_up(packet_of(key)).table, overflow_id()) << "it is there as before";

    ASSERT_EQ(create(key, data_of_number(3)), 0u);
    expect_reads(key, data_of_number(3));
    ASSERT_EQ(t().remove(key.data()), 0u);
    stored first, second;
    collide(first, second);
    expect_reads(second.key, second.data);
    const auto hit = look_up(packet_of(key));
    EXPECT_EQ(hit.table, overflow_id());
    EXPECT_EQ(hit.row, 0u);
}

// Tables whose last key field has 12 bits: what the record holds above them makes no other key.
class SlhashOfTwelveBits : public Slhash {};

TEST_P(SlhashOfTwelveBits, KeysThatHardwareTakesForEqualAreEqual) {
    bytes key = next_key(), other = key;
    // The top nibble of a 12-bit field's second byte.
    other.back() = static_cast<uint8_t>(other.back() ^ 0xf0);
    ASSERT_EQ(packet_of(key), packet_of(other));
    ASSERT_EQ(create(key, data_of_number(1)), 0u);
    EXPECT_EQ(create(other, data_of_number(1)), 9u);
    EXPECT_EQ(t().find(other.data()), 0u);
    EXPECT_EQ(t().remove(other.data()), 0u);
    EXPECT_EQ(t().find(key.data()), 4u);
}

INSTANTIATE_TEST_SUITE_P(Tables, Slhash, testing::ValuesIn(api_tables_of(api_kind::hash)),
                         name_of_tested);

std::vector<api_table> tables_of_twelve_bits() {
    std::vector<api_table> out;
    for (const api_table &t : api_tables_of(api_kind::hash))
        if (t.id == 3 || t.id == 6) out.push_back(t);
    return out;
}
INSTANTIATE_TEST_SUITE_P(Tables, SlhashOfTwelveBits, testing::ValuesIn(tables_of_twelve_bits()),
                         name_of_tested);

}  // namespace
}  // namespace halden::test
