#pragma once

// What a flow operation says about itself before it stores anything; see memory/work_page.h.
//
//     bucket_work work(words, group, bucket);
//     work.names(row, of_main);     // before the first store
//     ...                           // the destructor: after the last one

#include <atomic>
#include <cstdint>

namespace halden::host::flow {

// What a word says.
struct work_named {
    static constexpr uint64_t main_bit = uint64_t{1} << 31;

    uint32_t bucket = 0;
    uint32_t row = 0;      // of the overflow; 0 for none
    bool of_main = false;  // the entry of the main row changes

    uint64_t word() const { return uint64_t{bucket + 1} << 32 | (of_main ? main_bit : 0) | row; }
    static work_named in(uint64_t word) {
        return {static_cast<uint32_t>(word >> 32) - 1, static_cast<uint32_t>(word & (main_bit - 1)),
                (word & main_bit) != 0};
    }
};

class bucket_work {
  public:
    bucket_work(uint64_t *words, uint32_t group, uint32_t bucket)
        : word_(words[group]), bucket_(bucket) {}
    ~bucket_work() { word_.store(0, std::memory_order_release); }
    bucket_work(const bucket_work &) = delete;
    bucket_work &operator=(const bucket_work &) = delete;

    // The rows' own stores are releases, so none of them comes before this one.
    void names(uint32_t row, bool of_main) {
        word_.store(work_named{bucket_, row, of_main}.word(), std::memory_order_relaxed);
    }

  private:
    std::atomic_ref<uint64_t> word_;
    uint32_t bucket_;
};

}  // namespace halden::host::flow
