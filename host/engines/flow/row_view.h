#pragma once

// A row where it stands, for entries that are known to be flow_hash_entry_t: what a walk asks of it
// is answered from the few words that say it, without copying the row.

#include "ftl/flow_entry_ops.h"
#include "ftl/flow_hash_entry.h"
#include "host/engines/flow/rows.h"

namespace halden::host::flow {

class row_view {
  public:
    explicit row_view(const place &where) : at_(where.at) {}

    bool is_valid() const { return any_of<flow_layout::valid_word>(flow_layout::valid_mask); }
    // Stops at the first word that differs, and begins with the ports: they tell flows apart best.
    bool has_key_of(const uint8_t *body) const {
        constexpr uint32_t ports = flow_layout::metadata_flow_key_sport.first / 64;
        if (differs<ports>(body)) return false;
        uint64_t difference = 0;
        flow_layout::for_key_words([&](auto i) {
            difference |= (word(i) ^ flow_layout::load_word(body, i)) & flow_layout::key_mask[i];
        });
        return difference == 0;
    }
    // Copies the words with hints and hashes into `body`, when there is a hint at all.
    bool copy_hints(uint8_t *body) const {
        if (!has_hints()) return false;
        flow_layout::store_word(body, 0, 0);
        for_chain_words([&](auto i) { flow_layout::store_word(body, i, word(i)); });
        flow_layout::store_word(body, flow_layout::data_word, word(flow_layout::data_word));
        return true;
    }

  private:
    template <uint32_t i>
    bool differs(const uint8_t *body) const {
        return ((word(i) ^ flow_layout::load_word(body, i)) & flow_layout::key_mask[i]) != 0;
    }
    template <typename F>
    static void for_chain_words(F f) {
        for_row_words([&](auto i) {
            if constexpr (i >= flow_layout::first_chain_word && i <= flow_layout::last_chain_word)
                f(i);
        });
    }
    bool has_hints() const {
        uint64_t any = 0;
        for_chain_words([&](auto i) {
            constexpr uint64_t mask = __builtin_bswap64(flow_layout::chain_mask[i]);
            any |= raw(i) & mask;
        });
        return any != 0;
    }
    template <uint32_t i>
    bool any_of(uint64_t mask) const {
        return (raw(i) & __builtin_bswap64(mask)) != 0;
    }
    uint64_t word(uint32_t i) const { return __builtin_bswap64(raw(i)); }
    uint64_t raw(uint32_t i) const {
        auto *place = reinterpret_cast<uint64_t *>(at_ + (flow_layout::body_words - 1 - i) *
                                                             sizeof(uint64_t));
        return std::atomic_ref<uint64_t>(*place).load(std::memory_order_acquire);
    }

    uint8_t *at_;
};

// hash1 stands beside the data, and word 0 holds no hint.
static_assert(flow_layout::hashes[1].first / 64 == flow_layout::data_word &&
              flow_layout::first_chain_word == 1);

}  // namespace halden::host::flow
