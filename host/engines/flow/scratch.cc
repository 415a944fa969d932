#include "host/engines/flow/scratch.h"

#include <atomic>
#include <bit>
#include <mutex>

namespace halden::host::flow {

namespace {

constexpr uint16_t shared_row = scratch_rows - 1;
constexpr uint32_t own_rows = (1u << shared_row) - 1;

constexpr int none = -1;
constexpr int gone = -2;  // the thread is ending: what still runs in it takes its turn

std::atomic<uint32_t> taken = 0;
std::mutex turns;  // taken before any stripe

// A plain number without a destructor, so that the usual access is one load.
__attribute__((tls_model("initial-exec"))) constinit thread_local int mine = none;

struct give_back_at_end {
    ~give_back_at_end() {
        if (mine >= 0) taken.fetch_and(~(1u << mine), std::memory_order_release);
        mine = gone;
    }
    void touch() {}
};
thread_local give_back_at_end at_end;

void claim() {
    uint32_t now = taken.load(std::memory_order_relaxed);
    while ((now & own_rows) != own_rows) {
        const int row = std::countr_one(now);
        if (!taken.compare_exchange_weak(now, now | 1u << row, std::memory_order_acquire,
                                         std::memory_order_relaxed))
            continue;
        mine = row;
        at_end.touch();
        return;
    }
}

}  // namespace

scratch_row::scratch_row() {
    if (mine == none) [[unlikely]]
        claim();
    if (mine >= 0) [[likely]] {
        number_ = static_cast<uint16_t>(mine);
        return;
    }
    turns.lock();
    number_ = shared_row;
}

scratch_row::~scratch_row() {
    if (number_ == shared_row) [[unlikely]]
        turns.unlock();
}

}  // namespace halden::host::flow
