#pragma once

// What the flow bench compares: tables that map a 77-byte flow key to a flow_idx. Every contender
// gets the same keys in the same order and does its own building, hashing and storing within the
// measured time.

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "p4pd_records.h"

namespace halden::bench {

// Keys are handed out at 80 bytes, zero filled, which the peers compare faster than 77.
struct alignas(16) padded_key {
    flow_swkey_t key;
    uint8_t pad[80 - sizeof(flow_swkey_t)];
};
static_assert(sizeof(padded_key) == 80);

// Whether each single call ends before the next one begins. Without it a core works on the next
// keys of the loop while it waits for memory, as far as it can look ahead.
inline bool calls_apart = false;
inline void end_of_call() {
    if (!calls_apart) return;
#if defined(__x86_64__)
    __asm__ volatile("lfence" ::: "memory");
#elif defined(__aarch64__)
    __asm__ volatile("isb" ::: "memory");
#endif
}

// A packet's key is at hand when it is looked up, so nobody waits for one here: asks for the key
// some calls ahead.
inline void fetch_key(const std::vector<padded_key> &keys, size_t now) {
    constexpr size_t ahead = 64;
    if (now + ahead >= keys.size()) return;
    __builtin_prefetch(keys.data() + now + ahead);
    __builtin_prefetch(keys.data() + now + ahead + 1);
}

using order = std::span<const uint32_t>;  // the number of each key

class contender {
  public:
    virtual ~contender() = default;
    virtual std::string name() const = 0;
    // Each works through `keys` from the first to the last and answers how many calls went as they
    // should. Key n, wherever it stands, has the value n & 0x3fffff.
    virtual uint64_t create(const std::vector<padded_key> &keys, order numbers) = 0;
    virtual uint64_t hit(const std::vector<padded_key> &keys, order numbers) = 0;
    virtual uint64_t miss(const std::vector<padded_key> &keys, order numbers) = 0;
    virtual uint64_t remove(const std::vector<padded_key> &keys, order numbers) = 0;
};

constexpr uint32_t value_of(uint32_t key_number) { return key_number & 0x3fffff; }

// Null when it was not built in, or when the system does not give what it needs; `why` says so.
std::unique_ptr<contender> make_single();
std::unique_ptr<contender> make_batch();
std::unique_ptr<contender> make_absl(uint32_t flows);
std::unique_ptr<contender> make_rte_hash(uint32_t flows, bool bulk, std::string &why);

}  // namespace halden::bench
