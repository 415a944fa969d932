// Peers that this build was made without.

#include "bench/flow/contender.h"

namespace halden::bench {

#ifndef HALDEN_HAVE_ABSL
std::unique_ptr<contender> make_absl(uint32_t) { return nullptr; }
#endif
#ifndef HALDEN_HAVE_DPDK
std::unique_ptr<contender> make_rte_hash(uint32_t, bool, std::string &why) {
    why = "not built in";
    return nullptr;
}
#endif

}  // namespace halden::bench
