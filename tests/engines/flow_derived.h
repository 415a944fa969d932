#pragma once

// Classes derived from the flow entry and the flow table. The engine may not take their entries for
// plain ones: it has to reach them through their virtual operations.

#include "ftl/flow_hash.h"

#include <atomic>
#include <cstdint>

namespace halden::test {

class derived_entry : public flow_hash_entry_t {
  public:
    derived_entry() = default;
    explicit derived_entry(const flow_hash_entry_t &like) : flow_hash_entry_t(like) {}

    void set_entry_valid(uint8_t v) override {
        calls.fetch_add(1, std::memory_order_relaxed);
        flow_hash_entry_t::set_entry_valid(v);
    }
    bool compare_key(void *other) override {
        calls.fetch_add(1, std::memory_order_relaxed);
        return flow_hash_entry_t::compare_key(other);
    }
    void get_hint_hash(uint32_t slot, uint32_t &hint, uint32_t &hash) override {
        calls.fetch_add(1, std::memory_order_relaxed);
        flow_hash_entry_t::get_hint_hash(slot, hint, hash);
    }
    bool is_whole() const { return own_ == 0x5a5a5a5a5a5a5a5a; }

    // Of the operations above, by all entries of the class.
    static inline std::atomic<uint64_t> calls = 0;

  private:
    uint64_t own_ = 0x5a5a5a5a5a5a5a5a;  // behind the body, where the engine has no business
};

// For containers; see kept_entry in flow_bed.h.
struct kept_derived_entry {
    derived_entry entry;
};

// A flow table that lets the engine work on derived entries.
class table_of_derived_entries : public sdk::table::flow_hash {
  public:
    base_table_entry_t *get_entry(uint16_t row, int column) override {
        return &entries[row][column];
    }
    static inline derived_entry entries[16][8];
};

// A flow table whose hash fails: the first `passes` calls of each arming succeed.
class table_of_failing_hashes : public sdk::table::flow_hash {
  public:
    sdk_ret_t genhash_(sdk::table::sdk_table_api_params_ *params) override {
        if (code_ == SDK_RET_OK) return flow_hash::genhash_(params);
        if (passes_ == 0) return code_;
        --passes_;
        return flow_hash::genhash_(params);
    }
    void fail_with(sdk_ret_t code, uint32_t passes = 0) {
        code_ = code;
        passes_ = passes;
    }
    void fail_no_more() { code_ = SDK_RET_OK; }

  private:
    sdk_ret_t code_ = SDK_RET_OK;
    uint32_t passes_ = 0;
};

}  // namespace halden::test
