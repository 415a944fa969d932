#pragma once

// Exact-match engine: a hash row in SRAM, the pair's overflow TCAM when the row is taken.

#include "sdk/table/types.h"

namespace sdk::table {

class slhash {
  public:
    // Made from the table id alone; depths come from the host's table properties. Null on failure.
    static slhash *factory(sdk_table_factory_params_ *params);
    static void destroy(slhash *table);

    // Each reads key, mask, data and action_id of the record; get and remove fill data when given.
    sdk_ret_t insert(sdk_table_api_params_ *params);
    sdk_ret_t update(sdk_table_api_params_ *params);
    sdk_ret_t remove(sdk_table_api_params_ *params);
    sdk_ret_t get(sdk_table_api_params_ *params);

  private:
    friend class slhash_access;
    slhash() = default;
    ~slhash() = default;
    struct impl;
    impl *impl_ = nullptr;
};

}  // namespace sdk::table
