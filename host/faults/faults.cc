#include "host/faults/faults.h"

#include <algorithm>
#include <iterator>
#include <thread>

namespace halden::host {

const char *name_of(asic_call call) {
    static constexpr const char *names[] = {
        "sram-write", "sram-read",     "tcam-write", "tcam-read",
        "hbm-write",  "hbm-read",      "action-pc",  "action-id",
        "allocate",   "insert",        "update",     "remove",
        "get",        "restore-state", "properties", "global-properties",
        "flow-store",
    };
    static_assert(std::size(names) == asic_calls);
    const auto number = static_cast<unsigned>(call);
    return number < asic_calls ? names[number] : "?";
}

void fault_set::inject(const fault &what) {
    const std::lock_guard guard(lock_);
    faults_.push_back({what, what});
    arm();
}

void fault_set::clear() {
    const std::lock_guard guard(lock_);
    faults_.clear();
    arm();
}

std::vector<fault> fault_set::never_met() const {
    const std::lock_guard guard(lock_);
    std::vector<fault> out;
    for (const injected &each : faults_)
        if (!each.met) out.push_back(each.given);
    return out;
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
        for (injected &each : faults_) {
            fault &left = each.left;
            if (left.call != call || (left.table != any_table && left.table != table)) continue;
            if (left.skip != 0) {
                --left.skip;
                continue;
            }
            if (left.count == 0) continue;
            if (left.count != every_time) --left.count;
            each.met = true;
            delay += left.delay;
            // The first refusal stands; faults behind it still count this call.
            if (result == SDK_RET_OK) result = left.result;
        }
        std::erase_if(faults_, [](const injected &each) { return each.left.count == 0; });
        if (recording_ && is_of_asic(call)) records_.push_back({call, table, index, result});
        arm();
    }
    if (delay.count() != 0) std::this_thread::sleep_for(delay);
    return result;
}

}  // namespace halden::host
