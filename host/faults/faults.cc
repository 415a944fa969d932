#include "host/faults/faults.h"

#include <algorithm>
#include <thread>

namespace halden::host {

const char *name_of(asic_call call) {
    switch (call) {
        case asic_call::sram_write:
            return "sram-write";
        case asic_call::sram_read:
            return "sram-read";
        case asic_call::tcam_write:
            return "tcam-write";
        case asic_call::tcam_read:
            return "tcam-read";
        case asic_call::hbm_write:
            return "hbm-write";
        case asic_call::hbm_read:
            return "hbm-read";
        case asic_call::action_pc:
            return "action-pc";
        case asic_call::action_id:
            return "action-id";
        case asic_call::allocate:
            return "allocate";
    }
    return "?";
}

void fault_set::inject(const fault &what) {
    const std::lock_guard guard(lock_);
    faults_.push_back(what);
    arm();
}

void fault_set::clear() {
    const std::lock_guard guard(lock_);
    faults_.clear();
    arm();
}

void fault_set::record(bool on) {
    const std::lock_guard guard(lock_);
    if (on) records_.clear();
    recording_ = on;
    arm();
}

void fault_set::rest(bool on) {
    const std::lock_guard guard(lock_);
    resting_ = on;
    arm();
}

std::vector<call_record> fault_set::recorded() const {
    const std::lock_guard guard(lock_);
    return records_;
}

sdk_ret_t fault_set::look_up(asic_call call, uint32_t table, uint32_t index) {
    sdk_ret_t result = SDK_RET_OK;
    std::chrono::microseconds delay{0};
    {
        const std::lock_guard guard(lock_);
        for (fault &each : faults_) {
            if (each.call != call || (each.table != any_table && each.table != table)) continue;
            if (each.skip != 0) {
                --each.skip;
                continue;
            }
            if (each.count == 0) continue;
            if (each.count != every_time) --each.count;
            delay += each.delay;
            // The first refusal stands; faults behind it still count this call.
            if (result == SDK_RET_OK) result = each.result;
        }
        std::erase_if(faults_, [](const fault &each) { return each.count == 0; });
        if (recording_) records_.push_back({call, table, index, result});
        arm();
    }
    if (delay.count() != 0) std::this_thread::sleep_for(delay);
    return result;
}

}  // namespace halden::host
