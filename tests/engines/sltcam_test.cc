// The ternary engine, through the table API: masked entries against a slow most-specific-first
// reference, at rest and at every write of a move; capacity, faults, restart.

#include <algorithm>
#include <bit>
#include <set>
#include <string>

#include "p4pd.h"
#include "tests/engines/table_bed.h"
#include "tev_tbl.h"

namespace halden::test {
namespace {

class Sltcam : public TableBed {
  protected:
    // An entry as given, with what hardware compares.
    struct stored {
        bytes key, mask, data;  // an empty mask: every bit is compared
        bytes ones, zeros;
        uint32_t specificity = 0;
        std::string image;  // of its data row
    };

    uint32_t rows() { return hardware().depth(t().id); }
    const sdk::table::sltcam &engine() {
        return *static_cast<const sdk::table::sltcam *>(t().engine(tables()));
    }
    host::engine_statistics statistics() { return sdk::table::sltcam_access::statistics(engine()); }

    // One call of the engine itself; an empty mask is none, empty data is taken and not looked at.
    using engine_call = sdk_ret_t (sdk::table::sltcam::*)(sdk::table::sdk_table_api_params_ *);
    sdk_ret_t call(engine_call which, bytes key, bytes mask, bytes data = {}) {
        data.resize(1 + t().data_bytes);
        sdk::table::sdk_table_api_params_t params = {};
        params.key = key.data();
        params.mask = mask.empty() ? nullptr : mask.data();
        params.data = data.data();
        return (const_cast<sdk::table::sltcam &>(engine()).*which)(&params);
    }
    void expect_holds(bytes key, bytes mask, const bytes &data) {
        const stored wanted = make(key, mask, data);
        bytes found(1 + t().data_bytes);
        sdk::table::sdk_table_api_params_t params = {};
        params.key = key.data();
        params.mask = mask.data();
        params.data = found.data();
        ASSERT_EQ(const_cast<sdk::table::sltcam &>(engine()).get(&params), SDK_RET_OK);
        EXPECT_EQ(make(key, mask, found).image, wanted.image);
        EXPECT_TRUE(is_in_tcam(wanted));
    }

    stored make(const bytes &key, const bytes &mask, const bytes &data) const {
        stored out{key, mask, data, {}, {}, 0, {}};
        const auto images = reference::build_key(
            t().id, key, mask.empty() ? bytes(key.size(), 0xff) : mask, image_room);
        out.ones = images.key;
        out.zeros = images.mask;
        for (uint32_t i = 0; i < image_room; ++i)
            out.specificity += static_cast<uint32_t>(
                std::popcount(static_cast<unsigned>(out.ones[i] | out.zeros[i])));
        set_data(out, data);
        return out;
    }
    void set_data(stored &entry, const bytes &data) const {
        entry.data = data;
        const reference::image wanted = reference::entry(t().id, pc_of(t().id, data), {}, data);
        entry.image.assign(wanted.data.begin(),
                           wanted.data.begin() + static_cast<long>((wanted.bits + 7) / 8));
    }
    static bool matches(const stored &entry, const bytes &packet) {
        for (uint32_t i = 0; i < image_room; ++i)
            if ((packet[i] & entry.ones[i]) != entry.ones[i] || (packet[i] & entry.zeros[i]) != 0)
                return false;
        return true;
    }
    static bool same_match(const stored &a, const stored &b) {
        return a.ones == b.ones && a.zeros == b.zeros;
    }

    // The data rows that the most specific of the matching entries have; none for a miss.
    static std::vector<std::string> best_of(const std::vector<stored> &entries,
                                            const bytes &packet) {
        std::vector<std::string> out;
        uint32_t most = 0;
        for (const stored &entry : entries) {
            if (!matches(entry, packet) || (!out.empty() && entry.specificity < most)) continue;
            if (entry.specificity > most) out.clear();
            most = entry.specificity;
            out.push_back(entry.image);
        }
        return out;
    }
    // What hardware finds is one of them.
    bool is_one_of(const std::vector<std::string> &best, const bytes &packet) {
        const host::view::answer found = look_up(packet);
        if (!found.hit) return best.empty();
        const std::string image(found.image.begin(), found.image.end());
        return std::find(best.begin(), best.end(), image) != best.end();
    }

    bool is_in_tcam(const stored &entry) {
        const bytes ones = reference::as_stored(entry.ones, facts().tcam_width);
        const bytes zeros = reference::as_stored(entry.zeros, facts().tcam_width);
        for (uint32_t row = 0; row < rows(); ++row) {
            uint8_t x[1024] = {}, y[1024] = {};
            uint16_t width = 0;
            hardware().tcam_read(t().id, row, x, y, &width);
            if (width == facts().tcam_width && std::equal(ones.begin(), ones.end(), x) &&
                std::equal(zeros.begin(), zeros.end(), y))
                return true;
        }
        return false;
    }

    uint32_t number(uint32_t below) { return static_cast<uint32_t>(random_() % below); }
    bytes random_bytes() { return bytes_of_number(random_(), t().key_bytes); }
    // Keys of few values and masks of few shapes, so that entries overlap in many depths.
    stored random_entry() {
        bytes key(t().key_bytes), mask(t().key_bytes);
        for (uint32_t i = 0; i < t().key_bytes; ++i) {
            key[i] = static_cast<uint8_t>(number(2) == 0 ? 0x5a : 0xa5);
            const uint8_t shapes[] = {0xff, 0xff, 0xf0, 0x0f, 0x00, 0x01};
            mask[i] = shapes[number(6)];
            if (number(8) == 0) key[i] = static_cast<uint8_t>(random_());
        }
        if (number(10) == 0) mask.clear();
        return make(key, mask, data_of_number(random_()));
    }
    // A packet that an entry matches, or one of no entry in particular.
    bytes random_packet(const std::vector<stored> &entries) {
        bytes packet = packet_of(number(4) == 0 ? random_bytes() : random_entry().key);
        if (!entries.empty() && number(3) != 0) {
            const stored &entry = entries[number(static_cast<uint32_t>(entries.size()))];
            for (uint32_t i = 0; i < image_room; ++i)
                packet[i] = static_cast<uint8_t>((packet[i] | entry.ones[i]) & ~entry.zeros[i]);
        }
        return packet;
    }

    // True when the engine has the entry now and had none of its key and mask before.
    bool add(std::vector<stored> &entries, const stored &entry) {
        const bool is_new = std::none_of(entries.begin(), entries.end(), [&](const stored &other) {
            return same_match(entry, other);
        });
        const tev_tbl_ret_t result = create(entry.key, entry.data, entry.mask);
        EXPECT_EQ(result, is_new && entries.size() < rows() ? 0u : 9u);
        if (result == 0) entries.push_back(entry);
        return result == 0;
    }
    // The number of distinct entries that the table can hold at most.
    uint32_t capacity() {
        return t().key_bytes == 3 ? 27 : rows();  // three bits, each 0, 1 or either
    }
    void fill(std::vector<stored> &entries) {
        while (entries.size() < capacity()) add(entries, random_entry());
    }
    void expect_in_order_of_specificity() {
        uint32_t before = UINT32_MAX;
        for (uint32_t row = 0; row < rows(); ++row) {
            uint8_t x[1024] = {}, y[1024] = {};
            uint16_t width = 0;
            hardware().tcam_read(t().id, row, x, y, &width);
            if (width == 0) continue;
            uint32_t bits = 0;
            for (uint32_t i = 0; i < width / 8u; ++i)
                bits += static_cast<uint32_t>(std::popcount(static_cast<unsigned>(x[i] | y[i])));
            ASSERT_LE(bits, before) << "row " << row;
            before = bits;
        }
    }
    void expect_packets(const std::vector<stored> &entries, unsigned count) {
        for (unsigned i = 0; i < count; ++i) {
            const bytes packet = random_packet(entries);
            ASSERT_TRUE(is_one_of(best_of(entries, packet), packet)) << "packet " << i;
        }
    }

    std::mt19937_64 random_{GetParam().id};
};

TEST_P(Sltcam, RandomPacketsFindTheMostSpecificEntry) {
    std::vector<stored> entries;
    fill(entries);
    expect_in_order_of_specificity();
    expect_packets(entries, 10000);
}

// At every write to memory a packet finds what it found before the call, or what it finds behind
// it.
TEST_P(Sltcam, EveryWriteOfEveryCallLeavesThePacketsTheirEntries) {
    std::vector<stored> entries;
    uint64_t writes = 0, moves_seen = 0;
    // Looking at a table of 512 rows takes its time: fewer calls there, on a table nearly full.
    const bool large = rows() > 256;
    const unsigned rounds = large ? 80 : 1000;
    while (large && entries.size() + 6 < capacity()) add(entries, random_entry());
    for (unsigned round = 0; round < rounds && !HasFailure(); ++round) {
        // Mostly full, so that there is seldom a free row where one is wanted.
        const bool take_out = !entries.empty() && number(entries.size() < capacity() ? 4 : 2) == 0;
        std::vector<stored> after = entries;
        stored changed = random_entry();
        enum { insert, update_one, remove } what = insert;
        if (take_out) {
            const size_t at = number(static_cast<uint32_t>(entries.size()));
            changed = entries[at];
            what = number(2) == 0 ? remove : update_one;
            // A key alone names the most specific entry that was made with it.
            for (const stored &other : entries)
                if (what == remove && !same_match(other, changed) &&
                    (packet_of(other.key) == packet_of(changed.key) ||
                     other.ones == packet_of(changed.key)))
                    what = update_one;
            if (what == remove) {
                after.erase(after.begin() + static_cast<long>(at));
            } else {
                set_data(changed, data_of_number(random_()));
                after[at] = changed;
            }
        } else {
            for (const stored &other : entries)
                if (same_match(other, changed)) what = update_one;
            if (what == update_one || entries.size() == capacity()) continue;
            after.push_back(changed);
        }
        struct probe {
            bytes packet;
            std::vector<std::string> before, after;
        };
        std::vector<probe> probes;
        for (unsigned i = 0; i < (large ? 4 : 12); ++i) {
            const bytes packet = random_packet(i < 2 ? std::vector<stored>{changed} : entries);
            probes.push_back({packet, best_of(entries, packet), best_of(after, packet)});
        }
        hardware().set_observer([&](const host::row_change &) {
            ++writes;
            for (const probe &p : probes)
                EXPECT_TRUE(is_one_of(p.before, p.packet) || is_one_of(p.after, p.packet))
                    << "round " << round;
        });
        if (what == insert)
            EXPECT_EQ(create(changed.key, changed.data, changed.mask), 0u);
        else if (what == remove)
            EXPECT_EQ(t().remove(changed.key.data()), 0u);
        else if (changed.mask.empty())
            EXPECT_EQ(update(changed.key, changed.data, bytes(changed.key.size(), 0xff)), 0u);
        else
            EXPECT_EQ(update(changed.key, changed.data, changed.mask), 0u);
        hardware().set_observer({});
        entries = after;
        for (const probe &p : probes) EXPECT_TRUE(is_one_of(p.after, p.packet));
        moves_seen = statistics().moves;
    }
    EXPECT_GT(writes, rounds);
    EXPECT_GT(moves_seen, 0u) << "no entry was ever moved";
    expect_in_order_of_specificity();
    EXPECT_EQ(statistics().used, entries.size());
}

// Less specific entries first, then more specific ones: each insert of the second half needs rows
// that the first half stands in, whichever side is free.
TEST_P(Sltcam, EntriesMakeRoomForMoreSpecificOnes) {
    std::vector<stored> entries;
    std::vector<stored> order;
    while (order.size() < std::min(capacity(), 200u)) {
        const stored entry = random_entry();
        if (std::none_of(order.begin(), order.end(),
                         [&](const stored &other) { return same_match(entry, other); }))
            order.push_back(entry);
    }
    std::sort(order.begin(), order.end(),
              [](const stored &a, const stored &b) { return a.specificity < b.specificity; });
    std::set<uint32_t> classes;
    for (const stored &entry : order) {
        const uint64_t moves_before = statistics().moves;
        ASSERT_TRUE(add(entries, entry));
        // However many entries there are, one of each specificity moves at most.
        EXPECT_LE(statistics().moves - moves_before, classes.size());
        classes.insert(entry.specificity);
    }
    EXPECT_GT(statistics().moves, 0u);
    expect_in_order_of_specificity();
    expect_packets(entries, 300);
}

TEST_P(Sltcam, IsFilledRefusesOneMoreAndIsRefilled) {
    std::vector<stored> entries;
    fill(entries);
    ASSERT_EQ(entries.size(), capacity());
    EXPECT_EQ(statistics().used, capacity());
    for (unsigned i = 0; i < 50; ++i) {
        const stored more = random_entry();
        if (capacity() == rows()) {
            ASSERT_EQ(create(more.key, more.data, more.mask), 9u);
        }
        const stored &there = entries[number(static_cast<uint32_t>(entries.size()))];
        ASSERT_EQ(create(there.key, more.data, there.mask), 9u) << "a duplicate";
    }
    expect_packets(entries, 200);

    // A key alone takes out the most specific entry that was made with it.
    std::vector<stored> gone;
    while (entries.size() > capacity() / 2) {
        const stored &named = entries[number(static_cast<uint32_t>(entries.size()))];
        const bytes image = packet_of(named.key);
        uint32_t most = 0;
        for (const stored &entry : entries)
            if (packet_of(entry.key) == image || entry.ones == image)
                most = std::max(most, entry.specificity);
        ASSERT_EQ(t().find(named.key.data()), 0u);
        ASSERT_EQ(t().remove(named.key.data()), 0u);
        const auto removed = std::find_if(entries.begin(), entries.end(),
                                          [&](const stored &entry) { return !is_in_tcam(entry); });
        ASSERT_NE(removed, entries.end());
        EXPECT_EQ(removed->specificity, most);
        EXPECT_TRUE(packet_of(removed->key) == image || removed->ones == image);
        gone.push_back(*removed);
        entries.erase(removed);
    }
    EXPECT_EQ(statistics().used, entries.size());
    expect_packets(entries, 500);
    for (const stored &entry : gone) ASSERT_TRUE(add(entries, entry));
    EXPECT_EQ(entries.size(), capacity());
    expect_in_order_of_specificity();
    expect_packets(entries, 500);
}

// A null mask on create compares every bit; on read, update and delete it finds by the key.
TEST_P(Sltcam, AnEntryMadeWithAMaskIsFoundByItsKeyAlone) {
    bytes key(t().key_bytes, 1), mask(t().key_bytes, 0xff), other = key;
    mask[0] = 0;
    other[0] = 0;
    const bytes data = data_of_number(1), later = data_of_number(2);
    ASSERT_EQ(create(key, data, mask), 0u);
    expect_reads(key, data);
    ASSERT_EQ(update(key, later), 0u);
    expect_reads(key, later);
    EXPECT_TRUE(hardware_finds(other, later)) << "the mask is kept";
    ASSERT_EQ(t().find(key.data()), 0u);
    ASSERT_EQ(t().remove(key.data()), 0u);
    ASSERT_EQ(t().find(key.data()), 4u);
    EXPECT_FALSE(look_up(packet_of(key)).hit);

    ASSERT_EQ(create(key, data), 0u);
    EXPECT_TRUE(hardware_finds(key, data));
    EXPECT_FALSE(look_up(packet_of(other)).hit) << "every bit is compared";
    EXPECT_EQ(t().find(other.data()), 4u);
}

// The engine called directly: with a mask exactly the entry of that key and mask is meant, without
// one the most specific entry that was made with the key.
TEST_P(Sltcam, WithAMaskTheEntryOfThatVeryMaskIsMeant) {
    const bytes ones(t().key_bytes, 0xff), any(t().key_bytes, 0);
    bytes key(t().key_bytes, 1), some = ones;
    some[0] = 0;
    const bytes of_ones = data_of_number(1), of_some = data_of_number(2),
                of_any = data_of_number(3);
    ASSERT_EQ(create(key, of_some, some), 0u);

    EXPECT_EQ(call(&sdk::table::sltcam::get, key, ones), SDK_RET_ENTRY_NOT_FOUND);
    EXPECT_EQ(call(&sdk::table::sltcam::update, key, ones, of_ones), SDK_RET_ENTRY_NOT_FOUND);
    EXPECT_EQ(call(&sdk::table::sltcam::remove, key, any), SDK_RET_ENTRY_NOT_FOUND);
    expect_reads(key, of_some);

    ASSERT_EQ(create(key, of_any, any), 0u);
    ASSERT_EQ(create(key, of_ones, ones), 0u);
    EXPECT_EQ(statistics().used, 3u);
    expect_holds(key, ones, of_ones);
    expect_holds(key, some, of_some);
    expect_holds(key, any, of_any);

    const bytes later = data_of_number(4);
    EXPECT_EQ(call(&sdk::table::sltcam::update, key, some, later), SDK_RET_OK);
    expect_holds(key, ones, of_ones);
    expect_holds(key, some, later);
    expect_holds(key, any, of_any);

    // What the mask leaves out is no part of the key.
    key[0] = 0;
    expect_holds(key, some, later);
    EXPECT_EQ(call(&sdk::table::sltcam::get, key, ones), SDK_RET_ENTRY_NOT_FOUND);
    EXPECT_EQ(call(&sdk::table::sltcam::remove, key, some), SDK_RET_OK);
    key[0] = 1;
    EXPECT_EQ(call(&sdk::table::sltcam::get, key, some), SDK_RET_ENTRY_NOT_FOUND);
    expect_holds(key, any, of_any);
    expect_reads(key, of_ones);
    EXPECT_EQ(call(&sdk::table::sltcam::remove, key, {}), SDK_RET_OK);
    EXPECT_EQ(call(&sdk::table::sltcam::get, key, ones), SDK_RET_ENTRY_NOT_FOUND);
    EXPECT_EQ(call(&sdk::table::sltcam::remove, key, {}), SDK_RET_OK) << "made with the same key";
    EXPECT_EQ(call(&sdk::table::sltcam::remove, key, {}), SDK_RET_ENTRY_NOT_FOUND);
    EXPECT_EQ(statistics().used, 0u);
}

// Each write of a create into a nearly full table is refused in turn, those of its moves included.
TEST_P(Sltcam, ARefusedWriteChangesNothingThatPacketsSee) {
    for (const auto call : {host::asic_call::sram_write, host::asic_call::tcam_write}) {
        open();
        std::vector<stored> entries;
        while (entries.size() + 1 < capacity()) add(entries, random_entry());
        stored more = random_entry();
        while (std::any_of(entries.begin(), entries.end(),
                           [&](const stored &other) { return same_match(other, more); }))
            more = random_entry();
        uint32_t refused = 0;
        for (;; ++refused) {
            hardware().faults().inject({.call = call, .table = t().id, .skip = refused});
            const tev_tbl_ret_t result = create(more.key, more.data, more.mask);
            hardware().faults().clear();
            if (result == 0) break;
            ASSERT_EQ(result, 9u);
            EXPECT_EQ(statistics().used, entries.size());
            EXPECT_FALSE(is_in_tcam(more));
            expect_in_order_of_specificity();
            expect_packets(entries, 30);
            if (HasFailure()) return;
        }
        EXPECT_GE(refused, 1u);
        entries.push_back(more);
        EXPECT_EQ(statistics().used, entries.size());
        expect_packets(entries, 30);

        hardware().faults().inject({.call = call, .table = t().id});
        EXPECT_EQ(update(more.key, data_of_number(9),
                         more.mask.empty() ? bytes(more.key.size(), 0xff) : more.mask),
                  9u);
        hardware().faults().clear();
        expect_packets(entries, 100);
    }
}

// From some write on all are refused, those that would undo a move included: what is left behind is
// gone by the time the next call changes anything. With refused data rows, a TCAM row may stand
// that has no data.
TEST_P(Sltcam, ARefusalThatLastsLeavesNoSecondCopy) {
    for (const bool data_too : {false, true})
        for (uint32_t passed = 1;; ++passed) {
            SCOPED_TRACE(passed);
            open();
            random_.seed(t().id);  // the same moves each time
            std::vector<stored> entries;
            while (entries.size() + 1 < std::min(capacity(), 40u)) add(entries, random_entry());
            stored more = random_entry();
            while (std::any_of(entries.begin(), entries.end(),
                               [&](const stored &other) { return same_match(other, more); }))
                more = random_entry();
            host::fault refused = {.call = host::asic_call::tcam_write,
                                   .table = t().id,
                                   .skip = passed,
                                   .count = host::every_time};
            hardware().faults().inject(refused);
            refused.call = host::asic_call::sram_write;
            refused.skip = passed - 1;
            if (data_too) hardware().faults().inject(refused);
            const tev_tbl_ret_t result = create(more.key, more.data, more.mask);
            hardware().faults().clear();
            if (result == 0) break;
            if (!data_too) expect_packets(entries, 30);
            for (stored &entry : entries) {
                set_data(entry, data_of_number(random_()));
                ASSERT_EQ(update(entry.key, entry.data,
                                 entry.mask.empty() ? bytes(entry.key.size(), 0xff) : entry.mask),
                          0u);
            }
            size_t used = 0;
            for (uint32_t row = 0; (row = hardware().next_used(t().id, row)) < rows(); ++row)
                ++used;
            EXPECT_EQ(used, entries.size());
            expect_in_order_of_specificity();
            expect_packets(entries, 100);
            if (HasFailure()) return;
        }
}

TEST_P(Sltcam, EntriesOutliveTheProcess) {
    const scratch_directory directory;
    open(directory.path());
    std::vector<stored> entries;
    while (entries.size() < std::min(capacity(), 60u)) add(entries, random_entry());
    open(directory.path());
    EXPECT_EQ(statistics().used, entries.size());
    expect_packets(entries, 200);
    for (const stored &entry : entries) {
        ASSERT_EQ(create(entry.key, entry.data, entry.mask), 9u) << "it is still there";
    }
    // What the masks leave of the keys names the entries now.
    const stored exact = make(random_bytes(), {}, data_of_number(3));
    if (capacity() == rows()) {
        ASSERT_EQ(create(exact.key, exact.data), 0u);
        open(directory.path());
        expect_reads(exact.key, exact.data);
        ASSERT_EQ(t().remove(exact.key.data()), 0u);
        expect_packets(entries, 200);
    }
}

// A row that was written past the engine is somebody's, also where it repeats an entry: both stay,
// and the lower one, which hardware matches, is the entry.
TEST_P(Sltcam, ARowWrittenTwiceStaysTwice) {
    const scratch_directory directory;
    open(directory.path());
    const stored entry = make(bytes(t().key_bytes, 1), {}, data_of_number(1));
    const stored second = make(bytes(t().key_bytes, 1), {}, data_of_number(2));
    ASSERT_EQ(create(entry.key, entry.data), 0u);
    const uint32_t row = look_up(packet_of(entry.key)).row;
    bytes key = entry.key, mask(t().key_bytes, 0xff), data = second.data;
    ASSERT_EQ(p4pd_entry_install(t().id, row + 5, key.data(), mask.data(), data.data()), 0);
    open(directory.path());
    EXPECT_EQ(statistics().used, 2u);
    EXPECT_TRUE(hardware_finds(entry.key, entry.data));
    ASSERT_EQ(t().remove(entry.key.data()), 0u);
    EXPECT_EQ(look_up(packet_of(entry.key)).row, row + 5);
    EXPECT_TRUE(hardware_finds(second.key, second.data));
    ASSERT_EQ(t().remove(second.key.data()), 0u);
    EXPECT_FALSE(look_up(packet_of(entry.key)).hit);
}

INSTANTIATE_TEST_SUITE_P(Tables, Sltcam, testing::ValuesIn(api_tables_of(api_kind::tcam)),
                         name_of_tested);

}  // namespace
}  // namespace halden::test
