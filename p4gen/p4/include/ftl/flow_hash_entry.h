#pragma once

// One entry of the flow table as software sees it: the flow's key, its data (flow_idx), eight hint
// slots that chain flows falling on the same row, the more slot that continues the chain, and the
// hardware's valid bit. The layout of the body is in ftl/flow_entry_layout.h.
//
//     flow_hash_entry_t entry;                      // all zero
//     flow_layout::set_bits<flow_layout::metadata_flow_key_sport>(entry.body(), 4791);
//     sdk::table::sdk_table_api_params_t params{};
//     params.entry = &entry;
//     table->insert(&params);
//
// Slots are numbered 1 to 8; 9, and any number above it, is the more slot; 0 is no slot, and naming
// it to one of the three accessors aborts. `void *` arguments are other flow_hash_entry_t objects.
// An operation that is built from others reaches them through the virtual table, so a derived class
// sees its own overrides used.

#include "ftl/flow_entry_layout.h"
#include "sdk/base_table_entry.h"

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

class __attribute__((visibility("default"))) flow_hash_entry_t : public base_table_entry_t {
  public:
    constexpr flow_hash_entry_t() : body_{} {}

    // flow_idx from `src`; hash1, which shares its word, is kept.
    void copy_data(void *src) override;
    uint8_t get_entry_valid() override;
    // Takes the low bit of `v`, for `valid` and for the hardware's bit.
    void set_entry_valid(uint8_t v) override;
    // The key of `src` and nothing else: data, hints and the valid bit are cleared.
    void build_key(void *src) override;
    void copy_key_data(void *src) override;
    void clear_data() override;
    void clear_key_data() override;
    bool compare_key(void *other) override;
    bool compare_data(void *other) override;
    bool compare_key_data(void *other) override;
    // The more slot ignores `hash` and raises its flag: the flag says that the chain goes on.
    void set_hint_hash(uint32_t slot, uint32_t hint, uint32_t hash) override;
    void get_hint_hash(uint32_t slot, uint32_t &hint, uint32_t &hash) override;
    void get_hint(uint32_t slot, uint32_t &hint) override;
    uint32_t get_more_hint_slot() override;
    bool is_hint_slot_valid(uint32_t slot) override;
    // The highest slot in use, 0 when there is none; the more slot counts only with hint and flag.
    uint32_t find_last_hint() override;
    // Prints key and data into `buf` of `len` bytes. The result is that of the last formatting step
    // that ran: the data part alone when all fitted, 2 when only the separator still ran, else what
    // the formatter reports for the key part.
    int tostr(char *buf, uint32_t len) override;
    void clear() override;
    void clear_hints() override;
    uint32_t entry_size() override;

    // The 128 bytes of the body, for callers that fill or read many fields at once.
    uint8_t *body() { return body_; }
    const uint8_t *body() const { return body_; }

  private:
    uint8_t body_[flow_layout::body_bytes];
};

#pragma GCC diagnostic pop

static_assert(sizeof(flow_hash_entry_t) == 144);
