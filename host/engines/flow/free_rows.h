#pragma once

// Which overflow rows are free. Rows that were not in use at the start are handed out in order, so
// that memory is touched as late as possible; rows that came back are handed out first, the last
// one before the others. Row 0 is never handed out. Any number of threads take and give back
// without a lock.

#include <atomic>
#include <cstdint>
#include <utility>
#include <vector>

namespace halden::host::flow {

class free_rows {
  public:
    // `links` holds `depth` zeroed words and stays the caller's.
    void start(uint32_t *links, uint32_t depth) {
        links_ = links;
        depth_ = depth;
        rebuild({}, 0);
    }

    // 0 when all rows are in use.
    uint32_t take() {
        uint64_t head = returned_.load(std::memory_order_acquire);
        while (row_of(head) != 0) {
            const uint64_t next = link(row_of(head)).load(std::memory_order_relaxed);
            // The count in front changes with every exchange: a row that was taken and given back
            // in the meantime is not mistaken for the one whose link was read.
            if (returned_.compare_exchange_weak(head, counted(head, next),
                                                std::memory_order_acquire,
                                                std::memory_order_acquire)) {
                left_.fetch_sub(1, std::memory_order_relaxed);
                return row_of(head);
            }
        }
        uint32_t row = untouched_.load(std::memory_order_relaxed);
        for (;;) {
            uint32_t next = row;
            while (next < depth_ && next < taken_.size() && taken_[next]) ++next;
            if (next >= depth_) return 0;
            if (untouched_.compare_exchange_weak(row, next + 1, std::memory_order_relaxed)) {
                left_.fetch_sub(1, std::memory_order_relaxed);
                return next;
            }
        }
    }

    void give_back(uint32_t row) {
        uint64_t head = returned_.load(std::memory_order_relaxed);
        do link(row).store(row_of(head), std::memory_order_relaxed);
        while (!returned_.compare_exchange_weak(head, counted(head, row), std::memory_order_release,
                                                std::memory_order_relaxed));
        left_.fetch_add(1, std::memory_order_relaxed);
    }

    // Starts again with the rows marked in `taken` in use, `count` of them beside row 0; rows
    // behind its end are free. No other thread may be at work.
    void rebuild(std::vector<bool> taken, uint32_t count) {
        taken_ = std::move(taken);
        left_.store(depth_ - 1 - count, std::memory_order_relaxed);
        untouched_.store(1, std::memory_order_relaxed);
        returned_.store(0, std::memory_order_relaxed);
    }

    // While others are at work this is a little behind.
    uint32_t left() const { return left_.load(std::memory_order_relaxed); }

  private:
    static uint32_t row_of(uint64_t head) { return static_cast<uint32_t>(head); }
    static uint64_t counted(uint64_t head, uint64_t row) { return ((head >> 32) + 1) << 32 | row; }
    std::atomic_ref<uint32_t> link(uint32_t row) const {
        return std::atomic_ref<uint32_t>(links_[row]);
    }

    uint32_t *links_ = nullptr;
    uint32_t depth_ = 0;
    std::vector<bool> taken_;  // at the last rebuild; only looked at from `untouched_` on
    std::atomic<uint64_t> returned_ = 0;
    std::atomic<uint32_t> untouched_ = 1;
    std::atomic<uint32_t> left_ = 0;
};

}  // namespace halden::host::flow
