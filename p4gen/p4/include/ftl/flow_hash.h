#pragma once

// The flow table: an engine with hint chains whose entries are flow_hash_entry_t and whose hash is
// a CRC-32 over the hardware image of the entry's key.
//
//     sdk::table::sdk_table_factory_params_t params{};      // all zero: the table chooses its
//     sizes sdk::table::flow_hash *flows = sdk::table::flow_hash::factory(&params);
//     ...
//     sdk::table::flow_hash::destroy(flows);

#include "ftl/flow_hash_entry.h"
#include "sdk/table/ftl_base.h"

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

namespace sdk::table {

class __attribute__((visibility("default"))) flow_hash : public ftl_base {
  public:
    // Null when memory is short or the engine refuses; the object is the caller's until destroy().
    static flow_hash *factory(sdk_table_factory_params_ *params);
    static void destroy(ftl_base *table);

    // Completes the caller's record in place: table id 2 unless one is given, eight hint slots and
    // chains of eight whatever was given. Returns the engine's result.
    sdk_ret_t init_(sdk_table_factory_params_ *params);

    // Hash of `params->entry`'s key into `params->hash_value`. A hash that is already marked valid
    // is left alone. The entry is only read. Results: 0, or 1 when the thread's scratch entry
    // cannot be allocated; then `params` is untouched and the next call tries again.
    sdk_ret_t genhash_(sdk_table_api_params_ *params) override;

    // The entry objects the engine works on; no index is checked.
    base_table_entry_t *get_entry(uint16_t row, int column) override;

    static flow_hash_entry_t entry_[16][8];
};

}  // namespace sdk::table

#pragma GCC diagnostic pop
