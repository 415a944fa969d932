#include "ftl/flow_hash_entry.h"

#include <type_traits>
#include <utility>

#include "log/fail.h"

namespace lay = flow_layout;

namespace {

constexpr char source_module[] = "p4gen/p4/include/ftl";
constexpr uint32_t data_word = lay::flow_idx.first / 64;
constexpr uint64_t data_mask = lay::low_bits(lay::flow_idx.width) << lay::flow_idx.first % 64;
constexpr uint32_t valid_word = lay::entry_valid.first / 64;
constexpr uint64_t valid_mask = uint64_t{1} << lay::entry_valid.first % 64;
static_assert(lay::flow_idx.first % 64 + lay::flow_idx.width <= 64);

uint8_t *body_of(void *entry) { return static_cast<flow_hash_entry_t *>(entry)->body(); }

// Calls `f(word index)` for every body word with key bits, unrolled: all masks become constants.
template <typename F>
inline void for_key_words(F f) {
    [&]<size_t... I>(std::index_sequence<I...>) {
        (f(std::integral_constant<uint32_t, lay::first_key_word + I>{}), ...);
    }(std::make_index_sequence<lay::body_words - lay::first_key_word>{});
}

inline void copy_key(uint8_t *to, const uint8_t *from) {
    for_key_words([&](auto i) {
        constexpr uint64_t mask = lay::key_mask[i];
        if constexpr (mask == ~uint64_t{0}) {
            lay::store_word(to, i, lay::load_word(from, i));
        } else {
            lay::store_word(to, i,
                            (lay::load_word(to, i) & ~mask) | (lay::load_word(from, i) & mask));
        }
    });
}

inline void zero_key(uint8_t *body) {
    for_key_words(
        [&](auto i) { lay::store_word(body, i, lay::load_word(body, i) & ~lay::key_mask[i]); });
}

// The three slot accessors stop here on slot 0; each has its own line and function text.
inline void check_slot(uint32_t slot, unsigned line, const char *function) {
    if (slot == 0) __assert_fail("slot", source_module, line, function);
}

}  // namespace

void flow_hash_entry_t::copy_data(void *src) {
    const uint64_t from = lay::load_word(body_of(src), data_word);
    const uint64_t kept = lay::load_word(body_, data_word) & ~data_mask;
    lay::store_word(body_, data_word, kept | (from & data_mask));
}

uint8_t flow_hash_entry_t::get_entry_valid() {
    return static_cast<uint8_t>(lay::get_bits<lay::entry_valid>(body_));
}

void flow_hash_entry_t::set_entry_valid(uint8_t v) {
    valid = v & 1;
    const uint64_t kept = lay::load_word(body_, valid_word) & ~valid_mask;
    lay::store_word(body_, valid_word, kept | (valid != 0 ? valid_mask : 0));
}

void flow_hash_entry_t::build_key(void *src) {
    copy_key(body_, body_of(src));
    clear_data();
    clear_hints();
    set_entry_valid(0);
}

void flow_hash_entry_t::copy_key_data(void *src) {
    copy_key(body_, body_of(src));
    copy_data(src);
}

void flow_hash_entry_t::clear_data() {
    lay::store_word(body_, data_word, lay::load_word(body_, data_word) & ~data_mask);
}

void flow_hash_entry_t::clear_key_data() {
    zero_key(body_);
    clear_data();
}

bool flow_hash_entry_t::compare_key(void *other) {
    const uint8_t *theirs = body_of(other);
    uint64_t difference = 0;
    for_key_words([&](auto i) {
        difference |= (lay::load_word(body_, i) ^ lay::load_word(theirs, i)) & lay::key_mask[i];
    });
    return difference == 0;
}

bool flow_hash_entry_t::compare_data(void *other) {
    const uint64_t theirs = lay::load_word(body_of(other), data_word);
    return ((lay::load_word(body_, data_word) ^ theirs) & data_mask) == 0;
}

bool flow_hash_entry_t::compare_key_data(void *other) {
    return compare_key(other) && compare_data(other);
}

void flow_hash_entry_t::set_hint_hash(uint32_t slot, uint32_t hint, uint32_t hash) {
    check_slot(slot, 242,
               "virtual void flow_hash_entry_t::set_hint_hash(uint32_t, uint32_t, uint32_t)");
    if (slot <= lay::hint_slots) {
        lay::write_bits(body_, lay::hints[slot], hint);
        lay::write_bits(body_, lay::hashes[slot], hash);
    } else {
        lay::set_bits<lay::more_hints>(body_, hint);
        lay::set_bits<lay::more_hashes>(body_, 1);
    }
}

void flow_hash_entry_t::get_hint_hash(uint32_t slot, uint32_t &hint, uint32_t &hash) {
    check_slot(slot, 284,
               "virtual void flow_hash_entry_t::get_hint_hash(uint32_t, uint32_t&, uint32_t&)");
    const bool more = slot > lay::hint_slots;
    const lay::range hint_range = more ? lay::more_hints : lay::hints[slot];
    const lay::range hash_range = more ? lay::more_hashes : lay::hashes[slot];
    hint = static_cast<uint32_t>(lay::read_bits(body_, hint_range));
    hash = static_cast<uint32_t>(lay::read_bits(body_, hash_range));
}

void flow_hash_entry_t::get_hint(uint32_t slot, uint32_t &hint) {
    check_slot(slot, 326, "virtual void flow_hash_entry_t::get_hint(uint32_t, uint32_t&)");
    const lay::range r = slot > lay::hint_slots ? lay::more_hints : lay::hints[slot];
    hint = static_cast<uint32_t>(lay::read_bits(body_, r));
}

uint32_t flow_hash_entry_t::get_more_hint_slot() { return lay::more_slot; }

bool flow_hash_entry_t::is_hint_slot_valid(uint32_t slot) {
    return slot != 0 && slot <= get_more_hint_slot();
}

uint32_t flow_hash_entry_t::find_last_hint() {
    if (lay::get_bits<lay::more_hints>(body_) != 0 && lay::get_bits<lay::more_hashes>(body_) == 1) {
        return get_more_hint_slot();
    }
    for (uint32_t slot = lay::hint_slots; slot > 0; --slot) {
        if (lay::read_bits(body_, lay::hints[slot]) != 0) return slot;
    }
    return 0;
}

void flow_hash_entry_t::clear() {
    zero_key(body_);
    clear_hints();
    clear_data();
    set_entry_valid(0);
}

void flow_hash_entry_t::clear_hints() {
    for (uint32_t i = 0; i <= lay::metadata_flow_key_dip.first / 64; ++i) {
        lay::store_word(body_, i, lay::load_word(body_, i) & ~lay::hints_mask[i]);
    }
}

uint32_t flow_hash_entry_t::entry_size() { return lay::body_bytes; }
