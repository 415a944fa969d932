#pragma once

// Index table engine: one entry per row, placed by the caller.

#include "sdk/table/types.h"

namespace sdk::table {

class directmap {
  public:
    // `name` is copied. `data_size` is the byte size of the action-data record (action id
    // included). Null when memory is exhausted.
    static directmap *factory(const char *name, uint32_t table_id, uint32_t depth,
                              uint16_t data_size, bool thread_safe, bool entry_trace,
                              table_health_cb health);
    static void destroy(directmap *table);

    // Fails when the row is taken. `mask` is an action-data mask record or null.
    sdk_ret_t insert_withid(void *data, uint32_t index, void *mask);
    // Fails with SDK_RET_ENTRY_NOT_FOUND when the row is free.
    sdk_ret_t update(uint32_t index, void *data, void *mask);
    sdk_ret_t remove(uint32_t index, void *mask);
    // Fills `data` (data_size bytes).
    sdk_ret_t retrieve(uint32_t index, void *data);

  private:
    friend class directmap_access;
    directmap() = default;
    ~directmap() = default;
    struct impl;
    impl *impl_ = nullptr;
};

}  // namespace sdk::table
