#pragma once

// What threads share about a group of buckets: a lock that writers take, and a version by which
// readers, who take nothing, learn that a writer came between.
//
//     writer    lock ... begin_change  stores  end_change ... unlock        version odd in between
//     reader    seen = version()       loads   unchanged(seen)?
//
// The rows are read with acquire loads and written with release stores: a reader that saw one new
// word also sees the odd version that was set before it, and cannot take the mixture for good.

#include "host/engines/flow/spin_lock.h"

#include <atomic>
#include <cstdint>

#include <sched.h>

namespace halden::host::flow {

class stripe {
  public:
    void lock() { lock_.lock(); }
    void unlock() { lock_.unlock(); }

    void begin_change() { version_.store(version_now() + 1, std::memory_order_relaxed); }
    void end_change() { version_.store(version_now() + 1, std::memory_order_release); }

    // Waits while a change is under way.
    uint32_t version() const {
        uint32_t seen;
        for (unsigned tries = 0; ((seen = version_.load(std::memory_order_acquire)) & 1) != 0;)
            if (++tries % spins == 0) sched_yield();
        return seen;
    }
    bool unchanged(uint32_t seen) const { return version_.load(std::memory_order_acquire) == seen; }

    // Entries that came and went since the engine was made; the lock's holder counts.
    void count(int32_t in_main, int32_t in_overflow) {
        main_.store(main_.load(std::memory_order_relaxed) + in_main, std::memory_order_relaxed);
        overflow_.store(overflow_.load(std::memory_order_relaxed) + in_overflow,
                        std::memory_order_relaxed);
    }
    int32_t in_main() const { return main_.load(std::memory_order_relaxed); }
    int32_t in_overflow() const { return overflow_.load(std::memory_order_relaxed); }
    void reset_counts() {
        main_.store(0, std::memory_order_relaxed);
        overflow_.store(0, std::memory_order_relaxed);
    }

  private:
    static constexpr unsigned spins = 64;
    uint32_t version_now() const { return version_.load(std::memory_order_relaxed); }

    std::atomic<uint32_t> version_ = 0;
    spin_lock lock_;
    std::atomic<int32_t> main_ = 0;
    std::atomic<int32_t> overflow_ = 0;
};

class stripe_change {
  public:
    explicit stripe_change(stripe &of) : of_(of) { of_.begin_change(); }
    ~stripe_change() { of_.end_change(); }
    stripe_change(const stripe_change &) = delete;
    stripe_change &operator=(const stripe_change &) = delete;

  private:
    stripe &of_;
};

}  // namespace halden::host::flow
