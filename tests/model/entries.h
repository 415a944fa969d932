#pragma once

// Random entries of any table, and what the hardware keeps of them.

#include <cstdint>
#include <random>

#include "gtest/gtest.h"

#include "tests/read/layouts.h"

namespace halden::model_tests {

using read_tests::bytes;
using reference::kind;

struct entry {
    bytes key, mask, data;
};

inline constexpr uint8_t unread = 0xa5;  // stands where nothing was read

class entry_source {
  public:
    explicit entry_source(uint64_t seed) : random_(seed) {}

    uint32_t number(uint32_t below) { return static_cast<uint32_t>(random_() % below); }

    // Sparse and dense records beside even ones.
    bytes record(size_t size) {
        bytes out(size);
        const uint32_t taste = number(4);
        for (uint8_t &byte : out) {
            uint64_t r = random_();
            if (taste == 0) r &= random_() & random_();
            if (taste == 1) r |= random_() | random_();
            byte = static_cast<uint8_t>(r);
        }
        return out;
    }

    entry of(uint32_t id, uint32_t action) {
        const reference::table &facts = reference::table_of(id);
        entry out{record(facts.key_bytes), record(facts.key_bytes), record(facts.data_bytes)};
        out.data[0] = static_cast<uint8_t>(action);
        return out;
    }

  private:
    std::mt19937_64 random_;
};

// Records full of `unread`, as large as the table's.
inline entry blank(uint32_t id) {
    const reference::table &facts = reference::table_of(id);
    return {bytes(facts.key_bytes, unread), bytes(facts.key_bytes, unread),
            bytes(facts.data_bytes, unread)};
}

// What a read into blank records gives for `written`. A keyless row has no bits, so nothing is
// read.
inline entry kept(uint32_t id, const entry &written) {
    const reference::table &facts = reference::table_of(id);
    entry out = blank(id);
    if (facts.kind == kind::keyless) return out;
    if (facts.has_key()) {
        const bytes bits = read_tests::kept_key_bits(id);
        for (size_t i = 0; i < bits.size(); ++i) {
            const uint8_t mask = facts.has_tcam() ? written.mask[i] : uint8_t{0xff};
            out.key[i] = static_cast<uint8_t>(written.key[i] & bits[i] & mask);
            if (facts.has_tcam()) out.mask[i] = static_cast<uint8_t>(bits[i] & mask);
        }
    }
    const uint32_t action = written.data[0];
    out.data[0] = written.data[0];
    const bytes bits = read_tests::kept_data_bits(id, action);
    for (const read_tests::data_field &field : read_tests::data_fields(id, action))
        for (uint32_t i = field.first_byte; i < field.first_byte + field.size; ++i)
            out.data[i] = static_cast<uint8_t>(written.data[i] & bits[i]);
    return out;
}

inline void expect_same(const entry &got, const entry &want) {
    EXPECT_EQ(got.key, want.key) << "key";
    EXPECT_EQ(got.mask, want.mask) << "key mask";
    EXPECT_EQ(got.data, want.data) << "action data";
}

}  // namespace halden::model_tests
