#pragma once

// Hash engine with hint chains, the base of every flow-like table. It stores, chains, finds and
// removes entries through the virtual operations of base_table_entry_t; a derived class tells it
// how a key is hashed and which entry objects it may work on.

#include "sdk/base_table_entry.h"
#include "sdk/table/types.h"

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

namespace sdk::table {

class __attribute__((visibility("default"))) ftl_base {
  public:
    // Virtual operations. Their order is fixed: the host and the library are built apart.
    virtual sdk_ret_t genhash_(sdk_table_api_params_ *params) = 0;
    virtual base_table_entry_t *get_entry(uint16_t row, int column) = 0;
    virtual void *ftl_calloc(uint32_t module, unsigned long size, bool huge);
    virtual void ftl_free(uint32_t module, void *memory, bool huge, unsigned long size);
    virtual sdk_ret_t restore_state();

    sdk_ret_t init_(sdk_table_factory_params_ *params);
    static void destroy(ftl_base *table);

    // `params->entry` points at the caller's whole entry. insert and update read it, remove reads
    // its key, get fills it. The record belongs to the call while it runs; afterwards its hash is
    // what it was.
    sdk_ret_t insert(sdk_table_api_params_ *params);
    sdk_ret_t update(sdk_table_api_params_ *params);
    sdk_ret_t remove(sdk_table_api_params_ *params);
    sdk_ret_t get(sdk_table_api_params_ *params);

  protected:
    ftl_base() = default;
    ~ftl_base() = default;

  private:
    friend class ftl_access;
    struct impl;
    impl *impl_ = nullptr;
};

}  // namespace sdk::table

#pragma GCC diagnostic pop
