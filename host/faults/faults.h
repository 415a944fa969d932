#pragma once

// Faults on demand: any call that the library or an engine makes of the adapter can be made to
// fail, be delayed, by table and count; those of the ASIC layer can be recorded.
//
//     adapter.faults().inject({.call = asic_call::sram_write, .table = 16, .skip = 2});
//
// lets two writes of table 16 pass and refuses the third. While nothing is injected and nothing is
// recorded a call costs one load. All functions may be called from any thread.
//
//     refused                           the caller sees
//     a call of the ASIC layer          nothing is written; nothing is read, of length 0
//     a method of an engine             the fault's result, and nothing was done
//     a store of the flow engine        the method it belongs to answers the fault's result, and
//                                       what it had stored before is taken back
//     restore_state's stores            its code; what was put right so far stays so
//     table properties                  failure, nothing is filled
//     an allocation of an engine        null; a method that asked for it answers SDK_RET_OOM

#include "sdk/table/types.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <span>
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
    insert,     // the methods of an engine, insert_withid and retrieve among them
    update,
    remove,
    get,
    restore_state,
    properties,         // p4pd_table_properties_get
    global_properties,  // p4pd_global_table_properties_get
    flow_store,         // a word that the flow engine stores; the table is that of the row
};
inline constexpr unsigned asic_calls = 17;
const char *name_of(asic_call call);
// The others are no calls of hardware, and are not recorded.
inline bool is_of_asic(asic_call call) { return call <= asic_call::allocate; }

inline constexpr uint32_t any_table = 0;
inline constexpr uint32_t every_time = UINT32_MAX;

struct fault {
    asic_call call = asic_call::sram_write;
    uint32_t table = any_table;
    uint32_t skip = 0;                          // calls that pass first
    uint32_t count = 1;                         // calls it then meets, every_time for all of them
    sdk_ret_t result = SDK_RET_HW_PROGRAM_ERR;  // SDK_RET_OK: the call is only delayed
    std::chrono::microseconds delay{0};

    friend bool operator==(const fault &, const fault &) = default;
};

struct call_record {
    asic_call call;
    uint32_t table;
    uint32_t index;
    sdk_ret_t injected;  // SDK_RET_OK: the call went through

    friend bool operator==(const call_record &, const call_record &) = default;
};

class fault_set {
  public:
    void inject(const fault &what);
    // Takes back every injected fault; what was recorded stays.
    void clear();
    // The injected faults, as they were injected, that no call has met yet.
    std::vector<fault> never_met() const;

    // Starts with an empty record, or stops; stopping keeps what was recorded.
    void record(bool on);
    std::vector<call_record> recorded() const;

    // While it rests, every call goes through, unmet and unrecorded; what is injected stays.
    void rest(bool on);

    // Whether a call may meet a fault or be recorded.
    bool armed() const { return armed_.load(std::memory_order_acquire); }
    // What the call shall answer: SDK_RET_OK lets it through. Sleeps for a delay.
    sdk_ret_t meet(asic_call call, uint32_t table, uint32_t index) {
        return armed() ? look_up(call, table, index) : SDK_RET_OK;
    }

  private:
    struct injected {
        fault given;
        fault left;  // its skip and count are what is left of them
        bool met = false;
    };

    sdk_ret_t look_up(asic_call call, uint32_t table, uint32_t index);
    void arm() {
        armed_.store(!resting_ && (recording_ || !faults_.empty()), std::memory_order_release);
    }

    mutable std::mutex lock_;
    std::vector<injected> faults_;
    std::vector<call_record> records_;
    bool recording_ = false;
    bool resting_ = false;
    std::atomic<bool> armed_ = false;
};

}  // namespace halden::host
