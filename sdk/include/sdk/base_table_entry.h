#pragma once

// What a flow engine knows of an entry: 22 virtual operations and one valid word. The engine never
// sees a layout; an entry class (ftl/flow_hash_entry.h) is the whole contract between the two.
//
// The order of the operations is the order of the virtual table and is fixed. There is no virtual
// destructor: it would take slots. `void *` arguments are entries of the same class.

#include <cstdint>

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

class __attribute__((visibility("default"))) base_table_entry_t {
  public:
    virtual void copy_data(void *src) = 0;
    virtual uint8_t get_entry_valid() = 0;
    virtual void set_entry_valid(uint8_t v) = 0;
    virtual void build_key(void *src) = 0;
    // Never overridden; aborts: an entry class that is to be constructed by id provides its own.
    virtual base_table_entry_t *construct(uint32_t table_id);
    virtual void copy_key_data(void *src) = 0;
    virtual void clear_data() = 0;
    virtual void clear_key_data() = 0;
    virtual bool compare_key(void *other) = 0;
    virtual bool compare_data(void *other) = 0;
    virtual bool compare_key_data(void *other) = 0;
    virtual void set_hint_hash(uint32_t slot, uint32_t hint, uint32_t hash) = 0;
    virtual void get_hint_hash(uint32_t slot, uint32_t &hint, uint32_t &hash) = 0;
    virtual void get_hint(uint32_t slot, uint32_t &hint) = 0;
    virtual uint32_t get_more_hint_slot() = 0;
    virtual bool is_hint_slot_valid(uint32_t slot) = 0;
    virtual uint32_t find_last_hint() = 0;
    virtual int tostr(char *buf, uint32_t len) = 0;
    virtual void clear() = 0;
    virtual void clear_hints() = 0;
    virtual void set_epoch(uint8_t epoch);
    virtual uint32_t entry_size() = 0;

    uint64_t valid;  // 1 when the entry is valid; written by set_entry_valid only

  protected:
    constexpr base_table_entry_t() : valid(0) {}
    ~base_table_entry_t() = default;
};

#pragma GCC diagnostic pop

static_assert(sizeof(base_table_entry_t) == 16);
