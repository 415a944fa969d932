#pragma once

// How the table API finds its engines: the host publishes one global whose first member points at
// the host's implementation state. That state holds nine pointer-sized members of the host's own
// and then, by value, the library's table state (include/tev_tbl_impl_state.h).

namespace api::impl {

struct tev_host_state;

struct tev_impl_state {
    tev_host_state *state;
};

extern tev_impl_state g_tev_impl_state;

}  // namespace api::impl
