#pragma once

// A lock for a few dozen instructions at a time, in one word.

#include <atomic>
#include <cstdint>

#include <sched.h>

namespace halden::host::flow {

class spin_lock {
  public:
    void lock() {
        for (unsigned tries = 0; locked_.exchange(1, std::memory_order_acquire) != 0;)
            while (locked_.load(std::memory_order_relaxed) != 0)
                if (++tries % spins == 0) sched_yield();
    }
    void unlock() { locked_.store(0, std::memory_order_release); }

  private:
    static constexpr unsigned spins = 64;
    std::atomic<uint32_t> locked_ = 0;
};

}  // namespace halden::host::flow
