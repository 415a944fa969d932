// Every operation of a flow entry, called through its base class, against a model of single bits.

#include "tests/flow/entry_model.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace halden::test {
namespace {

constexpr unsigned rounds = 500;

// What an operation makes of an entry, given another one.
using change = std::function<entry_bits(const entry_bits &self, const entry_bits &other)>;
using operation = std::function<void(base_table_entry_t &self, base_table_entry_t &other)>;

constexpr uint64_t untouched = 0x1122334455667788;

void expect_change(const operation &run, const change &model, uint64_t valid = untouched) {
    std::mt19937_64 random(11);
    for (unsigned round = 0; round < rounds; ++round) {
        const entry_bits bits = random_bits(random), others = random_bits(random);
        flow_hash_entry_t self, other;
        set_bits(self, bits);
        set_bits(other, others);
        self.valid = other.valid = untouched;
        run(self, other);
        ASSERT_EQ(bits_of(self), model(bits, others)) << round;
        ASSERT_EQ(self.valid, valid);
        ASSERT_EQ(bits_of(other), others);
        ASSERT_EQ(other.valid, untouched);
    }
}

entry_bits taken(const entry_bits &self, const entry_bits &other, const entry_bits &mask) {
    return (self & ~mask) | (other & mask);
}

const entry_bits key = mask_of(part::key);
const entry_bits data = mask_of(part::data);
const entry_bits hints = mask_of(part::hint);

TEST(FlowHashEntry, TheModelHasEveryBitOnce) {
    EXPECT_EQ(key.count(), 600u);
    EXPECT_EQ(data.count(), 22u);
    EXPECT_EQ(hints.count(), 401u);
    EXPECT_TRUE((key | data | hints | mask_of(part::valid)).all());
}

TEST(FlowHashEntry, IsAllZeroWhenMadeAndItsBodyFollowsTheBase) {
    flow_hash_entry_t entry;
    EXPECT_TRUE(bits_of(entry).none());
    EXPECT_EQ(entry.valid, 0u);
    EXPECT_EQ(reinterpret_cast<char *>(entry.body()) - reinterpret_cast<char *>(&entry), 16);
    EXPECT_EQ(sizeof(base_table_entry_t), 16u);
    EXPECT_EQ(sizeof(flow_hash_entry_t), 144u);
    base_table_entry_t &base = entry;
    EXPECT_EQ(base.entry_size(), 128u);
    EXPECT_EQ(base.get_more_hint_slot(), 9u);
}

// copy_data keeps the destination's hash1.
TEST(FlowHashEntry, CopyDataTakesTheFlowIndexOnly) {
    expect_change([](auto &self, auto &other) { self.copy_data(&other); },
                  [](auto &self, auto &other) { return taken(self, other, data); });
    flow_hash_entry_t self, other;
    set_bits(self, with(with({}, "hash1", 0x2aa), "flow_idx", 1));
    set_bits(other, with(with({}, "hash1", 0x155), "flow_idx", 0x3ffffe));
    self.copy_data(&other);
    EXPECT_EQ(value_of(bits_of(self), "hash1"), 0x2aau);
    EXPECT_EQ(value_of(bits_of(self), "flow_idx"), 0x3ffffeu);
}

TEST(FlowHashEntry, SetEntryValidTakesTheLowestBitForTheWordAndForTheBit) {
    for (unsigned v = 0; v < 256; ++v) {
        expect_change([v](auto &self, auto &) { self.set_entry_valid(static_cast<uint8_t>(v)); },
                      [v](auto &self, auto &) { return with(self, "entry_valid", v & 1); }, v & 1);
    }
}

TEST(FlowHashEntry, GetEntryValidReadsTheBitAndNotTheWord) {
    std::mt19937_64 random(12);
    for (unsigned round = 0; round < rounds; ++round) {
        flow_hash_entry_t entry;
        const entry_bits bits = random_bits(random);
        set_bits(entry, bits);
        entry.valid = bits[91] ? 0 : 1;
        base_table_entry_t &base = entry;
        ASSERT_EQ(base.get_entry_valid(), bits[91] ? 1 : 0);
        ASSERT_EQ(bits_of(entry), bits);
    }
}

// The key and nothing else: all 1024 bits are written, whatever stood there.
TEST(FlowHashEntry, BuildKeyOverwritesAll1024Bits) {
    expect_change([](auto &self, auto &other) { self.build_key(&other); },
                  [](auto &, auto &other) { return other & key; }, 0);
    flow_hash_entry_t self, other;
    set_bits(self, entry_bits().set());
    self.build_key(&other);
    EXPECT_TRUE(bits_of(self).none());
}

TEST(FlowHashEntry, CopyKeyDataTakesKeyAndFlowIndex) {
    expect_change([](auto &self, auto &other) { self.copy_key_data(&other); },
                  [](auto &self, auto &other) { return taken(self, other, key | data); });
}

TEST(FlowHashEntry, TheClearsZeroTheirFieldsOnly) {
    expect_change([](auto &self, auto &) { self.clear_data(); },
                  [](auto &self, auto &) { return self & ~data; });
    expect_change([](auto &self, auto &) { self.clear_key_data(); },
                  [](auto &self, auto &) { return self & ~(key | data); });
    // The pads and the more pair are among the hints; the valid bit is not.
    expect_change([](auto &self, auto &) { self.clear_hints(); },
                  [](auto &self, auto &) { return self & ~hints; });
}

// clear() leaves get_entry_valid() = 0 and all 128 body bytes zero.
TEST(FlowHashEntry, ClearLeavesNothing) {
    expect_change([](auto &self, auto &) { self.clear(); },
                  [](auto &, auto &) { return entry_bits(); }, 0);
    flow_hash_entry_t entry;
    set_bits(entry, entry_bits().set());
    entry.valid = 1;
    entry.clear();
    EXPECT_EQ(entry.get_entry_valid(), 0);
    for (unsigned i = 0; i < 128; ++i) EXPECT_EQ(entry.body()[i], 0) << i;
}

// compare_data compares only flow_idx; the key's reserved and spare bits count like the others.
TEST(FlowHashEntry, TheComparisonsLookAtTheirBitsOnly) {
    std::mt19937_64 random(13);
    for (unsigned round = 0; round < 20; ++round) {
        const entry_bits bits = random_bits(random);
        flow_hash_entry_t self, other;
        set_bits(self, bits);
        base_table_entry_t &base = self;
        for (size_t n = 0; n < 1024; ++n) {
            entry_bits flipped = bits;
            set_bits(other, flipped.flip(n));
            ASSERT_EQ(base.compare_key(&other), !key[n]) << n;
            ASSERT_EQ(base.compare_data(&other), !data[n]) << n;
            ASSERT_EQ(base.compare_key_data(&other), !key[n] && !data[n]) << n;
        }
        set_bits(other, taken(~bits, bits, key | data));
        EXPECT_TRUE(base.compare_key_data(&other));
    }
}

// --- Slots

std::pair<std::string, std::string> names_of(uint32_t slot) {
    if (slot > 8) return {"more_hints", "more_hashes"};
    return {"hint" + std::to_string(slot), "hash" + std::to_string(slot)};
}

// set_hint_hash(1, h, x) changes only hint1 and hash1; flow_idx, sip and slot 2 stay although hash1
// and hint1 lie on the two sides of sip. set_hint_hash(9, h, x) yields hash 1 for any x, also 0;
// slot 12 and any other above 9 behave exactly like slot 9.
TEST(FlowHashEntry, EachSlotIsWrittenAndReadInItsOwnBits) {
    std::mt19937_64 random(14);
    for (const uint32_t slot : {1u, 2u, 3u, 4u, 5u, 6u, 7u, 8u, 9u, 10u, 12u, 255u, 0xffffffffu}) {
        SCOPED_TRACE(slot);
        const auto [hint_name, hash_name] = names_of(slot);
        for (unsigned round = 0; round < 100; ++round) {
            const auto hint = static_cast<uint32_t>(random());
            const uint32_t hash = round % 4 == 0 ? 0 : static_cast<uint32_t>(random());
            const entry_bits bits = random_bits(random);
            flow_hash_entry_t entry;
            set_bits(entry, bits);
            entry.valid = untouched;
            base_table_entry_t &base = entry;
            uint32_t got_hint = 1, got_hash = 1;
            base.get_hint_hash(slot, got_hint, got_hash);
            ASSERT_EQ(got_hint, value_of(bits, hint_name));
            ASSERT_EQ(got_hash, value_of(bits, hash_name));
            got_hint = 1;
            base.get_hint(slot, got_hint);
            ASSERT_EQ(got_hint, value_of(bits, hint_name));
            ASSERT_EQ(bits_of(entry), bits);

            base.set_hint_hash(slot, hint, hash);
            const uint32_t kept_hash = slot > 8 ? 1 : hash & 0x3ff;
            ASSERT_EQ(bits_of(entry),
                      with(with(bits, hint_name, hint & 0x1fffff), hash_name, kept_hash));
            ASSERT_EQ(entry.valid, untouched);
            base.get_hint_hash(slot, got_hint, got_hash);
            ASSERT_EQ(got_hint, hint & 0x1fffff);
            ASSERT_EQ(got_hash, kept_hash);
        }
    }
}

TEST(FlowHashEntry, SlotsOneToNineAreValid) {
    flow_hash_entry_t entry;
    base_table_entry_t &base = entry;
    EXPECT_FALSE(base.is_hint_slot_valid(0));
    for (uint32_t slot = 1; slot <= 9; ++slot) EXPECT_TRUE(base.is_hint_slot_valid(slot)) << slot;
    for (const uint32_t slot : {10u, 12u, 255u, 0xffffffffu})
        EXPECT_FALSE(base.is_hint_slot_valid(slot)) << slot;
}

// With more_hashes 1 and more_hints 0 the spill pair is ignored: the highest used slot counts, or
// 0. So it is with more_hints set and more_hashes 0. Hash values are never looked at.
TEST(FlowHashEntry, FindLastHintLooksAtTheHintsOnly) {
    std::mt19937_64 random(15);
    const entry_bits other_bits =
        key | data | mask_of(place_of("pad_low")) | mask_of(place_of("pad_mid"));
    for (unsigned used = 0; used < 256; ++used) {
        for (const uint32_t more_hints : {0u, 1u, 0x100000u}) {
            for (const uint32_t more_hashes : {0u, 1u}) {
                entry_bits bits = random_bits(random) & other_bits;
                uint32_t expected = 0;
                for (uint32_t slot = 1; slot <= 8; ++slot) {
                    const auto [hint_name, hash_name] = names_of(slot);
                    bits = with(bits, hash_name, used % 2 == 0 ? random() : 0);
                    if ((used >> (slot - 1) & 1) == 0) continue;
                    expected = slot;
                    bits = with(bits, hint_name, uint64_t{1} << random() % 21);
                }
                bits = with(with(bits, "more_hints", more_hints), "more_hashes", more_hashes);
                if (more_hints != 0 && more_hashes == 1) expected = 9;
                flow_hash_entry_t entry;
                set_bits(entry, bits);
                base_table_entry_t &base = entry;
                ASSERT_EQ(base.find_last_hint(), expected) << used;
                ASSERT_EQ(bits_of(entry), bits);
            }
        }
    }
}

TEST(FlowHashEntry, SetEpochDoesNothing) {
    for (const uint8_t epoch : {uint8_t{0}, uint8_t{1}, uint8_t{255}})
        expect_change([epoch](auto &self, auto &) { self.set_epoch(epoch); },
                      [](auto &self, auto &) { return self; });
}

}  // namespace
}  // namespace halden::test
