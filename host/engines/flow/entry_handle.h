#pragma once

// How the engine speaks to an entry: through its virtual operations, or, when the entry is known to
// be a flow_hash_entry_t and nothing derived from it, through the same operations in line. Both
// are used as pointers; the work of the engine is written once for either.

#include "ftl/flow_entry_ops.h"
#include "ftl/flow_hash_entry.h"

namespace halden::host::flow {

class plain_entry {
  public:
    explicit plain_entry(base_table_entry_t *entry)
        : entry_(static_cast<flow_hash_entry_t *>(entry)) {}

    // Whether the entry's class is flow_hash_entry_t itself.
    static bool is_one(base_table_entry_t *entry);

    plain_entry *operator->() { return this; }
    base_table_entry_t *base() const { return entry_; }

    uint8_t get_entry_valid() const { return flow_layout::is_valid(body()) ? 1 : 0; }
    void set_entry_valid(uint8_t v) const {
        entry_->valid = v & 1;
        flow_layout::set_valid(body(), (v & 1) != 0);
    }
    bool compare_key(plain_entry other) const {
        return flow_layout::same_key(body(), other.body());
    }
    void copy_key_data(plain_entry from) const {
        flow_layout::copy_key(body(), from.body());
        flow_layout::copy_data(body(), from.body());
    }
    void clear() const {
        flow_layout::zero_key(body());
        flow_layout::zero_hints(body());
        flow_layout::zero_data(body());
        set_entry_valid(0);
    }
    void set_hint_hash(uint32_t slot, uint32_t hint, uint32_t hash) const {
        flow_layout::set_hint(body(), slot, hint, hash);
    }
    void get_hint_hash(uint32_t slot, uint32_t &hint, uint32_t &hash) const {
        hint = bits(flow_layout::hint_range(slot));
        hash = bits(flow_layout::hash_range(slot));
    }
    void get_hint(uint32_t slot, uint32_t &hint) const {
        hint = bits(flow_layout::hint_range(slot));
    }
    uint32_t find_last_hint() const { return flow_layout::last_hint(body()); }

    uint8_t *body() const { return entry_->body(); }

  private:
    uint32_t bits(flow_layout::range r) const {
        return static_cast<uint32_t>(flow_layout::read_bits(body(), r));
    }

    flow_hash_entry_t *entry_;
};

inline base_table_entry_t *base_of(base_table_entry_t *entry) { return entry; }
inline base_table_entry_t *base_of(plain_entry entry) { return entry.base(); }

}  // namespace halden::host::flow
