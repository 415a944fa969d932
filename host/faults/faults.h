#pragma once

// Faults on demand: any call of the ASIC layer, and any allocation of an engine, can be made to
// fail, be delayed or be recorded, by table and count.
//
//     adapter.faults().inject({.call = asic_call::sram_write, .table = 16, .skip = 2});
//
// lets two writes of table 16 pass and refuses the third. While nothing is injected and nothing is
// recorded a call costs one load. All functions may be called from any thread.

#include "sdk/table/types.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <vector>

namespace halden::host {

enum class asic_call : uint8_t {
    sram_write,
    sram_read,
    tcam_write,
    tcam_read,
    hbm_write,
    hbm_read,
    action_pc,  // a failure answers that the action has no program
    action_id,  // a failure answers an id that is no action
    allocate,   // an engine's allocation; a failure answers null
};
const char *name_of(asic_call call);

inline constexpr uint32_t any_table = 0;
inline constexpr uint32_t every_time = UINT32_MAX;

struct fault {
    asic_call call = asic_call::sram_write;
    uint32_t table = any_table;
    uint32_t skip = 0;                          // calls that pass first
    uint32_t count = 1;                         // calls it then meets, every_time for all of them
    sdk_ret_t result = SDK_RET_HW_PROGRAM_ERR;  // SDK_RET_OK: the call is only delayed
    std::chrono::microseconds delay{0};
};

struct call_record {
    asic_call call;
    uint32_t table;
    uint32_t index;
    sdk_ret_t injected;  // SDK_RET_OK: the call went through to the memory

    friend bool operator==(const call_record &, const call_record &) = default;
};

class fault_set {
  public:
    void inject(const fault &what);
    // Takes back every injected fault; what was recorded stays.
    void clear();

    // Starts with an empty record, or stops; stopping keeps what was recorded.
    void record(bool on);
    std::vector<call_record> recorded() const;

    // While it rests, every call goes through, unmet and unrecorded; what is injected stays.
    void rest(bool on);

    // What the call shall answer: SDK_RET_OK lets it through. Sleeps for a delay.
    sdk_ret_t meet(asic_call call, uint32_t table, uint32_t index) {
        return armed_.load(std::memory_order_acquire) ? look_up(call, table, index) : SDK_RET_OK;
    }

  private:
    sdk_ret_t look_up(asic_call call, uint32_t table, uint32_t index);
    void arm() {
        armed_.store(!resting_ && (recording_ || !faults_.empty()), std::memory_order_release);
    }

    mutable std::mutex lock_;
    std::vector<fault> faults_;
    std::vector<call_record> records_;
    bool recording_ = false;
    bool resting_ = false;
    std::atomic<bool> armed_ = false;
};

}  // namespace halden::host
