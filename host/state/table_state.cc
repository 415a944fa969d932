#include "host/state/table_state.h"

#include "host/engines/flow/ftl_access.h"
#include "sdk/impl_state.h"

#include <stdexcept>
#include <string>

namespace api::impl {

tev_impl_state g_tev_impl_state = {};

}  // namespace api::impl

namespace halden::host {

table_state::table_state(adapter &hardware)
    : current_(hardware),
      state_(new api::impl::tev_host_state{}),
      before_(api::impl::g_tev_impl_state.state) {
    state_->host[0] = &hardware;
    // Inside another state of this adapter the work under way is that one's.
    if (before_ == nullptr || before_->host[0] != &hardware) finish_work(hardware);
    api::impl::g_tev_impl_state.state = state_.get();
}

// The other engines have taken up what they found; chains of flows may be half linked.
void table_state::finish_work(const adapter &hardware) {
    const sdk_ret_t result = sdk::table::ftl_access::finish_work(*tables().flow_tbl());
    // Flows that cannot be mapped are not at hand, and the other tables are: the adapter says so.
    if (result == SDK_RET_OK) return;
    if (result == SDK_RET_OOM && !hardware.troubles().empty()) return;
    throw std::runtime_error(hardware.directory() +
                             "/engines-at-work: the flows that a process left here, which did not "
                             "end in good order, could not be put right (result " +
                             std::to_string(result) + ")");
}

table_state::~table_state() { api::impl::g_tev_impl_state.state = before_; }

}  // namespace halden::host
