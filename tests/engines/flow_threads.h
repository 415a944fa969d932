#pragma once

// What the tests of several threads on one flow table share.

#include "tests/engines/flow_bed.h"

#include <chrono>
#include <cstdint>

namespace halden::test {

// How long one test goes on: HALDEN_SOAK_SECONDS, and `moment` when it is not set.
std::chrono::milliseconds soak(std::chrono::milliseconds moment);

// The data of a flow names its key, so that a reader knows whose data it got.
constexpr uint32_t flow_idx_of(uint64_t key, uint32_t version) {
    return static_cast<uint32_t>(key << 10 | (version & 0x3ff));
}
constexpr uint64_t key_of(uint32_t flow_idx) { return flow_idx >> 10; }
inline uint32_t flow_idx_of(const flow_hash_entry_t &entry) {
    return static_cast<uint32_t>(flow_layout::get_bits<flow_layout::flow_idx>(entry.body()));
}

}  // namespace halden::test
