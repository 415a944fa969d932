#include "host/state/table_state.h"

#include "sdk/impl_state.h"

#include <utility>

namespace api::impl {

tev_impl_state g_tev_impl_state = {};

}  // namespace api::impl

namespace halden::host {

table_state::table_state(adapter &hardware)
    : current_(hardware),
      state_(new api::impl::tev_host_state{}),
      before_(std::exchange(api::impl::g_tev_impl_state.state, state_.get())) {
    state_->host[0] = &hardware;
}

table_state::~table_state() { api::impl::g_tev_impl_state.state = before_; }

}  // namespace halden::host
