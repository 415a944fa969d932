#pragma once

// The two flow memories as the engine touches them: whole rows in, changed words out.
//
// A row is the body of an entry with its bytes reversed, so word i of a row is word 15 - i of the
// body with its bytes swapped. Every access is a 64-bit atomic; a store is a release, so whoever
// sees a new word also sees everything the engine stored before it.

#include "host/adapter.h"
#include "host/engines/flow/ftl_access.h"
#include "sdk/base_table_entry.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

namespace halden::host::flow {

inline constexpr uint32_t words_per_row = flow_row_bytes / sizeof(uint64_t);
static_assert(std::endian::native == std::endian::little);

// Calls `f(word index)` for all words of a row, unrolled.
template <typename F>
inline void for_row_words(F f) {
    [&]<size_t... I>(std::index_sequence<I...>) {
        (f(std::integral_constant<uint32_t, I>{}), ...);
    }(std::make_index_sequence<words_per_row>{});
}

// One row of one of the two memories.
struct place {
    uint32_t table = 0;
    uint32_t row = 0;
    uint8_t *at = nullptr;

    bool is_main() const { return table == flow_table; }
};

// A store that a fault refused; thrown through the operation that wanted it.
struct store_refused {
    sdk_ret_t result;
};

// The body stands behind the base class's valid word.
inline uint8_t *body_of(base_table_entry_t *entry) {
    return reinterpret_cast<uint8_t *>(entry) + sizeof(base_table_entry_t);
}

class rows {
  public:
    // False when a memory cannot be mapped.
    bool map(adapter &hardware) {
        hardware_ = &hardware;
        main_ = hardware.hbm_rows(flow_table);
        overflow_ = hardware.hbm_rows(flow_ohash_table);
        main_rows_ = hardware.depth(flow_table);
        overflow_rows_ = hardware.depth(flow_ohash_table);
        writable_ = hardware.is_writable();
        flushes_ = hardware.flushes();
        return main_ != nullptr && overflow_ != nullptr;
    }

    bool is_writable() const { return writable_; }
    uint32_t main_rows() const { return main_rows_; }
    uint32_t overflow_rows() const { return overflow_rows_; }
    place main(uint32_t row) const { return {flow_table, row, main_ + offset(row)}; }
    place at(uint32_t table, uint32_t row) const {
        return table == flow_table ? main(row) : overflow(row);
    }
    place overflow(uint32_t row) const { return {flow_ohash_table, row, overflow_ + offset(row)}; }

    // The rows of a table that are not all zero, in order. Untouched memory is stepped over without
    // a look: looking would make the kernel provide it.
    class used_rows {
      public:
        used_rows(const rows &of, uint32_t table)
            : of_(of),
              table_(table),
              depth_(table == flow_table ? of.main_rows() : of.overflow_rows()) {}

        // False at the end.
        bool next(place &found) {
            for (; row_ < page_end_; ++row_) {
                found = of_.at(table_, row_);
                if (is_empty(found)) continue;
                ++row_;
                return true;
            }
            row_ = of_.hardware_->next_used(table_, row_);
            if (row_ >= depth_) return false;
            page_end_ = std::min(depth_, (row_ / rows_per_page + 1) * rows_per_page);
            found = of_.at(table_, row_++);
            return true;
        }

      private:
        static constexpr uint32_t rows_per_page = 4096 / flow_row_bytes;
        const rows &of_;
        uint32_t table_;
        uint32_t depth_;
        uint32_t row_ = 0;
        uint32_t page_end_ = 0;  // up to here the memory was touched
    };

    static bool is_empty(const place &row) {
        for (uint32_t i = 0; i < words_per_row; ++i)
            if (word_at(row, i).load(std::memory_order_acquire) != 0) return false;
        return true;
    }

    // Fills a body.
    static void load(const place &from, uint8_t *body) {
        for_row_words([&](auto i) {
            const uint64_t word =
                __builtin_bswap64(word_at(from, i).load(std::memory_order_acquire));
            std::memcpy(body + (words_per_row - 1 - i) * sizeof word, &word, sizeof word);
        });
    }

    // Stores the words in which the row differs from the body; of the body words `first` to `last`.
    template <uint32_t first = 0, uint32_t last = words_per_row - 1>
    void store_changed(const place &to, const uint8_t *body) const {
        bool changed = false;
        for_row_words([&](auto i) {
            if constexpr (words_per_row - 1 - i >= first && words_per_row - 1 - i <= last) {
                const uint64_t word = row_word(body, i);
                // Only the holder of the bucket's lock writes: the row does not change in between.
                if (word_at(to, i).load(std::memory_order_relaxed) == word) return;
                store(to, i, word);
                changed = true;
            }
        });
        if (changed) flush(to);
    }
    // Stores all words, whatever the row holds: unlike the above this does not wait for the row.
    void store_all(const place &to, const uint8_t *body) const {
        for_row_words([&](auto i) { store(to, i, row_word(body, i)); });
        flush(to);
    }
    // The result of a call that has made its stores: they are acknowledged when all are kept.
    sdk_ret_t kept(sdk_ret_t result) const {
        return lost_.load(std::memory_order_relaxed) ? SDK_RET_HW_PROGRAM_ERR : result;
    }

    static void prefetch(const place &what) {
        __builtin_prefetch(what.at);
        __builtin_prefetch(what.at + flow_row_bytes / 2);
    }
    static void prefetch_to_write(const place &what) {
        __builtin_prefetch(what.at, 1);
        __builtin_prefetch(what.at + flow_row_bytes / 2, 1);
    }

    // No operation may be under way.
    void set_hook(write_hook hook);

    fault_set &faults() const { return hardware_->faults(); }
    // While it lives, what this thread stores meets the adapter's faults, and a refused store
    // throws store_refused. Made only while faults are armed, so that stores are cheap otherwise.
    class watch {
      public:
        explicit watch(const rows &of);
        ~watch();
        watch(const watch &) = delete;
        watch &operator=(const watch &) = delete;

        // Every word that was stored meanwhile becomes what it was, the last one first.
        void take_back();

      private:
        friend class rows;
        struct stored_word {
            place at;
            uint32_t index;
            uint64_t before;
        };
        const rows &of_;
        std::vector<stored_word> words_;
    };

  private:
    static size_t offset(uint32_t row) { return size_t{row} * flow_row_bytes; }
    static uint64_t row_word(const uint8_t *body, uint32_t i) {
        uint64_t word;
        std::memcpy(&word, body + (words_per_row - 1 - i) * sizeof word, sizeof word);
        return __builtin_bswap64(word);
    }
    void store(const place &to, uint32_t i, uint64_t word) const {
        if (watched_.load(std::memory_order_relaxed) != 0) [[unlikely]]
            return store_watched(to, i, word);
        word_at(to, i).store(word, std::memory_order_release);
    }
    void store_watched(const place &to, uint32_t i, uint64_t word) const;
    // Each batch of stores is on the disk before the next: their order is what keeps flows
    // findable. What a failed flush has lost is not known, so nothing is acknowledged any more.
    void flush(const place &row) const {
        if (flushes_ && hardware_->flush_flow_row(row.table, row.row) != SDK_RET_OK) [[unlikely]]
            lost_.store(true, std::memory_order_relaxed);
    }
    static std::atomic_ref<uint64_t> word_at(const place &where, uint32_t index) {
        return std::atomic_ref<uint64_t>(*reinterpret_cast<uint64_t *>(where.at + index * 8));
    }

    adapter *hardware_ = nullptr;
    uint8_t *main_ = nullptr;
    uint8_t *overflow_ = nullptr;
    uint32_t main_rows_ = 0;
    uint32_t overflow_rows_ = 0;
    bool writable_ = false;
    bool flushes_ = false;
    mutable std::atomic<bool> lost_ = false;
    write_hook hook_;
    // Watches at work, in any thread, and one more for the hook.
    mutable std::atomic<uint32_t> watched_ = 0;
};

}  // namespace halden::host::flow
