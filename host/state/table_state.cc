#include "host/state/table_state.h"

#include "sdk/impl_state.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace api::impl {

tev_impl_state g_tev_impl_state = {};

}  // namespace api::impl

namespace halden::host {

namespace {

// Stands in the adapter's directory while engines are at work there. Where it is found, the process
// before did not end in good order.
std::string mark_in(const adapter &hardware) {
    return hardware.directory().empty() ? std::string() : hardware.directory() + "/engines-at-work";
}

}  // namespace

table_state::table_state(adapter &hardware)
    : current_(hardware),
      mark_(mark_in(hardware)),
      state_(new api::impl::tev_host_state{}),
      before_(api::impl::g_tev_impl_state.state) {
    state_->host[0] = &hardware;
    // Inside another state of this adapter the mark is that one's.
    if (before_ != nullptr && before_->host[0] == &hardware) mark_.clear();
    if (!mark_.empty()) begin_work();
    api::impl::g_tev_impl_state.state = state_.get();
}

void table_state::begin_work() {
    // The other engines have taken up what they found; chains of flows may be half linked.
    if (access(mark_.c_str(), F_OK) == 0) {
        const sdk_ret_t result = tables().flow_tbl()->restore_state();
        if (result != SDK_RET_OK)
            throw std::runtime_error(mark_ +
                                     ": the flows that a process left here, which did not " +
                                     "end in good order, could not be put right (result " +
                                     std::to_string(result) + ")");
    }
    const int file = open(mark_.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
    if (file < 0) throw std::runtime_error(mark_ + ": " + std::strerror(errno));
    close(file);
}

table_state::~table_state() {
    api::impl::g_tev_impl_state.state = before_;
    state_.reset();
    if (!mark_.empty()) unlink(mark_.c_str());
}

}  // namespace halden::host
