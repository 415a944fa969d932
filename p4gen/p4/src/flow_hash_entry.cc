#include "ftl/flow_hash_entry.h"

#include "ftl/flow_entry_ops.h"
#include "log/fail.h"

namespace lay = flow_layout;

namespace {

constexpr char source_module[] = "p4gen/p4/include/ftl";
uint8_t *body_of(void *entry) { return static_cast<flow_hash_entry_t *>(entry)->body(); }

// The three slot accessors stop here on slot 0; each has its own line and function text.
inline void check_slot(uint32_t slot, unsigned line, const char *function) {
    if (slot == 0) __assert_fail("slot", source_module, line, function);
}

}  // namespace

void flow_hash_entry_t::copy_data(void *src) { lay::copy_data(body_, body_of(src)); }

uint8_t flow_hash_entry_t::get_entry_valid() { return lay::is_valid(body_) ? 1 : 0; }

void flow_hash_entry_t::set_entry_valid(uint8_t v) {
    valid = v & 1;
    lay::set_valid(body_, valid != 0);
}

void flow_hash_entry_t::build_key(void *src) {
    lay::copy_key(body_, body_of(src));
    clear_data();
    clear_hints();
    set_entry_valid(0);
}

void flow_hash_entry_t::copy_key_data(void *src) {
    lay::copy_key(body_, body_of(src));
    copy_data(src);
}

void flow_hash_entry_t::clear_data() { lay::zero_data(body_); }

void flow_hash_entry_t::clear_key_data() {
    lay::zero_key(body_);
    clear_data();
}

bool flow_hash_entry_t::compare_key(void *other) { return lay::same_key(body_, body_of(other)); }

bool flow_hash_entry_t::compare_data(void *other) { return lay::same_data(body_, body_of(other)); }

bool flow_hash_entry_t::compare_key_data(void *other) {
    return compare_key(other) && compare_data(other);
}

void flow_hash_entry_t::set_hint_hash(uint32_t slot, uint32_t hint, uint32_t hash) {
    check_slot(slot, 242,
               "virtual void flow_hash_entry_t::set_hint_hash(uint32_t, uint32_t, uint32_t)");
    lay::set_hint(body_, slot, hint, hash);
}

void flow_hash_entry_t::get_hint_hash(uint32_t slot, uint32_t &hint, uint32_t &hash) {
    check_slot(slot, 284,
               "virtual void flow_hash_entry_t::get_hint_hash(uint32_t, uint32_t&, uint32_t&)");
    hint = static_cast<uint32_t>(lay::read_bits(body_, lay::hint_range(slot)));
    hash = static_cast<uint32_t>(lay::read_bits(body_, lay::hash_range(slot)));
}

void flow_hash_entry_t::get_hint(uint32_t slot, uint32_t &hint) {
    check_slot(slot, 326, "virtual void flow_hash_entry_t::get_hint(uint32_t, uint32_t&)");
    hint = static_cast<uint32_t>(lay::read_bits(body_, lay::hint_range(slot)));
}

uint32_t flow_hash_entry_t::get_more_hint_slot() { return lay::more_slot; }

bool flow_hash_entry_t::is_hint_slot_valid(uint32_t slot) {
    return slot != 0 && slot <= get_more_hint_slot();
}

uint32_t flow_hash_entry_t::find_last_hint() {
    const uint32_t slot = lay::last_hint(body_);
    // A derived class may number the more slot otherwise.
    return slot == lay::more_slot ? get_more_hint_slot() : slot;
}

void flow_hash_entry_t::clear() {
    lay::zero_key(body_);
    clear_hints();
    clear_data();
    set_entry_valid(0);
}

void flow_hash_entry_t::clear_hints() { lay::zero_hints(body_); }

uint32_t flow_hash_entry_t::entry_size() { return lay::body_bytes; }
