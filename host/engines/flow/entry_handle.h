#pragma once

// How the engine speaks to an entry: through its virtual operations, or, when the entry is known to
// be a flow_hash_entry_t and nothing derived from it, through the same operations in line on its
// body. Both are used as pointers; the work of the engine is written once for either.

#include "ftl/flow_entry_ops.h"
#include "host/engines/flow/rows.h"

namespace halden::host::flow {

class plain_entry {
  public:
    // The body of an entry, or room for one.
    explicit plain_entry(uint8_t *body) : body_(body) {}

    plain_entry *operator->() { return this; }
    uint8_t *body() const { return body_; }

    uint8_t get_entry_valid() const { return flow_layout::is_valid(body()) ? 1 : 0; }
    void set_entry_valid(uint8_t v) const { flow_layout::set_valid(body(), (v & 1) != 0); }
    bool compare_key(plain_entry other) const {
        return flow_layout::same_key(body(), other.body());
    }
    void copy_key_data(plain_entry from) const {
        flow_layout::copy_key(body(), from.body());
        flow_layout::copy_data(body(), from.body());
    }
    void clear() const {
        for (uint32_t i = 0; i < flow_layout::body_words; ++i)
            flow_layout::store_word(body(), i, 0);
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

  private:
    uint32_t bits(flow_layout::range r) const {
        return static_cast<uint32_t>(flow_layout::read_bits(body(), r));
    }

    uint8_t *body_;
};

// Room for a plain entry's body, a cache line's beginning at its own.
struct alignas(64) plain_room {
    uint8_t body[flow_row_bytes];
};

inline uint8_t *body_of(plain_entry entry) { return entry.body(); }

}  // namespace halden::host::flow
