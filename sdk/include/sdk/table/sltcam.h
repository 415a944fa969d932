#pragma once

// Ternary engine: a more specific mask sits at a lower row. A null mask on insert means every key
// bit is matched; on get, update and remove it means the entry is found by its key.

#include "sdk/table/types.h"

namespace sdk::table {

class sltcam {
  public:
    // Made from the table id alone; depths come from the host's table properties. Null on failure.
    static sltcam *factory(sdk_table_factory_params_ *params);
    static void destroy(sltcam *table);

    // Each reads key, mask, data and action_id of the record; get and remove fill data when given.
    sdk_ret_t insert(sdk_table_api_params_ *params);
    sdk_ret_t update(sdk_table_api_params_ *params);
    sdk_ret_t remove(sdk_table_api_params_ *params);
    sdk_ret_t get(sdk_table_api_params_ *params);

  private:
    friend class sltcam_access;
    sltcam() = default;
    ~sltcam() = default;
    struct impl;
    impl *impl_ = nullptr;
};

}  // namespace sdk::table
