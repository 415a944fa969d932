#pragma once

// What the ASIC calls answered. The p4pd layer drops their results, so an engine that wrote or read
// an entry through it asks here:
//
//     asic_outcome outcome;
//     p4pd_global_entry_write(...);
//     if (outcome.refusal() != SDK_RET_OK) ...
//
// Per thread; objects do not nest.

#include "sdk/table/types.h"

namespace halden::host {

class asic_outcome {
  public:
    asic_outcome() { first_refusal_ = SDK_RET_OK; }
    asic_outcome(const asic_outcome &) = delete;
    asic_outcome &operator=(const asic_outcome &) = delete;

    // The first failure of an ASIC call of this thread since the object was made.
    sdk_ret_t refusal() const { return first_refusal_; }

    // Notes and passes on the result of a call.
    static int note(sdk_ret_t result) {
        if (first_refusal_ == SDK_RET_OK) first_refusal_ = result;
        return static_cast<int>(result);
    }

  private:
    static inline thread_local sdk_ret_t first_refusal_ = SDK_RET_OK;
};

}  // namespace halden::host
