#include "host/state/table_state.h"

#include "host/memory/directory.h"
#include "sdk/impl_state.h"

#include <fcntl.h>

#include <stdexcept>

namespace api::impl {

tev_impl_state g_tev_impl_state = {};

}  // namespace api::impl

namespace halden::host {

namespace {

// Stands in the adapter's directory while engines are at work there. Where it is found, the process
// before did not end in good order.
constexpr const char *mark = "engines-at-work";

}  // namespace

table_state::table_state(adapter &hardware)
    : current_(hardware),
      state_(new api::impl::tev_host_state{}),
      before_(api::impl::g_tev_impl_state.state) {
    state_->host[0] = &hardware;
    // Inside another state of this adapter the mark is that one's.
    const bool inside = before_ != nullptr && before_->host[0] == &hardware;
    if (hardware.files() != nullptr && hardware.is_writable() && !inside) begin_work(hardware);
    api::impl::g_tev_impl_state.state = state_.get();
}

void table_state::begin_work(const adapter &hardware) {
    const directory &files = *hardware.files();
    // The other engines have taken up what they found; chains of flows may be half linked.
    if (files.has(mark)) {
        const sdk_ret_t result = tables().flow_tbl()->restore_state();
        if (result != SDK_RET_OK)
            fail_at(files.path() + "/" + mark,
                    "the flows that a process left here, which did not end in good order, could "
                    "not be put right (result " +
                        std::to_string(result) + ")");
    }
    if (!hardware.keeps_rows()) return;
    static_cast<void>(files.open(mark, O_WRONLY | O_CREAT));
    marked_ = &files;
}

table_state::~table_state() {
    api::impl::g_tev_impl_state.state = before_;
    state_.reset();
    if (marked_ != nullptr) marked_->remove(mark);
}

}  // namespace halden::host
