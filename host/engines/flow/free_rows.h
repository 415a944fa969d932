#pragma once

// Which overflow rows are free. Rows that were not in use at the start are handed out in order, so
// that memory is touched as late as possible; rows that came back are handed out first, the last
// one before the others. Row 0 is never handed out. Any number of threads may take and give back.

#include "host/engines/flow/spin_lock.h"

#include <algorithm>
#include <cstdint>
#include <mutex>

namespace halden::host::flow {

class free_rows {
  public:
    // `words` holds `depth` zeroed words, one for each row, and stays the caller's.
    void start(uint32_t *words, uint32_t depth) {
        words_ = words;
        depth_ = depth;
        used_ = false;
        begin();
    }

    // All rows are free again, until mark() says otherwise. No other thread may be at work.
    void begin() {
        if (used_) std::fill_n(words_, depth_, 0);  // else they are, and were never touched
        untouched_ = 1;
        returned_ = 0;
    }
    // A row that is in use already.
    void mark(uint32_t row) {
        used_ = true;
        words_[row] |= in_use;
    }
    bool is_marked(uint32_t row) const { return (words_[row] & in_use) != 0; }

    // 0 when all rows are in use.
    uint32_t take() {
        const std::lock_guard guard(lock_);
        if (returned_ > 0) return words_[--returned_] & ~in_use;
        for (; untouched_ < depth_; ++untouched_)
            if (!is_marked(untouched_)) return untouched_++;
        return 0;
    }

    // Of damaged memory more rows may come back than there are.
    void give_back(uint32_t row) {
        const std::lock_guard guard(lock_);
        if (returned_ + 1 >= depth_) return;
        used_ = true;
        words_[returned_] = (words_[returned_] & in_use) | row;
        ++returned_;
    }

    // A guess at the row that take() will answer after `before` more calls; 0 when there is none.
    uint32_t peek(uint32_t before) {
        const std::lock_guard guard(lock_);
        if (before < returned_) return words_[returned_ - 1 - before] & ~in_use;
        const uint32_t row = untouched_ + (before - returned_);
        return row < depth_ ? row : 0;
    }

  private:
    // In the word of a row: it was in use at the start. The rest of the words, from the first on,
    // is the stack of the rows that came back.
    static constexpr uint32_t in_use = uint32_t{1} << 31;

    uint32_t *words_ = nullptr;
    uint32_t depth_ = 0;
    spin_lock lock_;
    uint32_t untouched_ = 1;
    uint32_t returned_ = 0;
    bool used_ = false;  // a word is not zero
};

}  // namespace halden::host::flow
