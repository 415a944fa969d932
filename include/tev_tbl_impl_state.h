#pragma once

// One engine per table of the table API, and nothing else: the only place where engines are made
// and destroyed. The host builds one state before the first table call, by value behind nine
// pointer-sized members of its own, and publishes it (sdk/impl_state.h):
//
//     api::impl::tev_host_state state;             // makes all 35 engines
//     api::impl::g_tev_impl_state.state = &state;
//
//     g_tev_impl_state ──▶ tev_host_state   bytes 0 to 71      the host's
//                                           from byte 72       tev_tbl_impl_state
//
// Construction and destruction run in member order and must not overlap a table call. A factory
// that answers null is fatal, so every engine of a built state is there. No locks are taken here.

#include <cstddef>
#include <cstdint>

#include "ftl/flow_hash.h"
#include "sdk/impl_state.h"
#include "sdk/table/directmap.h"
#include "sdk/table/slhash.h"
#include "sdk/table/sltcam.h"

// Calls X(engine class, table, table id) for every engine, in member order. The flow table is made
// from an empty record and chooses its id itself.
#define TEV_TBL_FOR_EACH_ENGINE(X)           \
    X(directmap, lif_mapping, 16)            \
    X(slhash, vlan_mapping, 3)               \
    X(directmap, lif_vela_mapping, 17)       \
    X(directmap, vlan_vela_mapping, 18)      \
    X(directmap, vlan_vela_ctag_mapping, 19) \
    X(sltcam, tunnel_terminate_v4, 8)        \
    X(sltcam, tunnel_terminate_v6, 9)        \
    X(slhash, tunnel_terminate_sa_v4, 4)     \
    X(slhash, tunnel_terminate_sa_v6, 5)     \
    X(directmap, validate_packet_vela, 20)   \
    X(sltcam, flow_key_native, 12)           \
    X(sltcam, flow_key_tunneled, 13)         \
    X(flow_hash, flow, 0)                    \
    X(directmap, flow_info, 21)              \
    X(directmap, conntrack_ingress, 22)      \
    X(directmap, conntrack_egress, 23)       \
    X(directmap, l2seg, 24)                  \
    X(slhash, registered_mac, 6)             \
    X(sltcam, checksum, 15)                  \
    X(directmap, p4i_stats, 25)              \
    X(directmap, lif_tx_stats, 26)           \
    X(directmap, lport_tx_stats, 27)         \
    X(directmap, ct_ingress_stats, 28)       \
    X(directmap, ct_egress_stats, 29)        \
    X(directmap, mirror_rewrite, 30)         \
    X(directmap, mirror_rewrite_l3, 31)      \
    X(directmap, flow_rewrite, 32)           \
    X(directmap, nat_rewrite, 33)            \
    X(directmap, tunnel_encap, 34)           \
    X(directmap, ipfix_ingress, 35)          \
    X(directmap, ipfix_egress, 36)           \
    X(directmap, output_mapping, 37)         \
    X(directmap, p4plus_app, 38)             \
    X(directmap, p4e_stats, 39)              \
    X(directmap, lport_rx_stats, 40)

namespace api::impl {

class __attribute__((visibility("default"))) tev_tbl_impl_state {
  public:
    tev_tbl_impl_state();
    virtual ~tev_tbl_impl_state();
    tev_tbl_impl_state(const tev_tbl_impl_state &) = delete;
    tev_tbl_impl_state &operator=(const tev_tbl_impl_state &) = delete;

    // directmap *lif_mapping_tbl() and so on, one per table. Never null.
#define TEV_TBL_ACCESSOR(engine, name, id) sdk::table::engine *name##_tbl();
    TEV_TBL_FOR_EACH_ENGINE(TEV_TBL_ACCESSOR)
#undef TEV_TBL_ACCESSOR

  private:
#define TEV_TBL_MEMBER(engine, name, id) sdk::table::engine *name##_tbl_;
    TEV_TBL_FOR_EACH_ENGINE(TEV_TBL_MEMBER)
#undef TEV_TBL_MEMBER

    // The host's room, zero when the state is made. It gives the object the size that the host was
    // built for; the library never looks at it.
    [[maybe_unused]] uint64_t host_words_0_[256];
    [[maybe_unused]] uint64_t host_words_1_[256];
    [[maybe_unused]] uint64_t host_words_2_[8];
    [[maybe_unused]] uint64_t host_words_3_[8];
    [[maybe_unused]] uint64_t host_words_4_[32];
};

static_assert(sizeof(tev_tbl_impl_state) == 36 * sizeof(void *) + 560 * sizeof(uint64_t));

// What the host's published pointer leads to.
struct tev_host_state {
    void *host[9];
    tev_tbl_impl_state tables;
};

}  // namespace api::impl
