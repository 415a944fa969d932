// The table state: which engine is made how and in what order, what a failing factory does, the
// order of destruction, and the object as a host sees it.

#include "tev_tbl_impl_state.h"

#include <cstdlib>
#include <cstring>
#include <functional>
#include <new>
#include <vector>

#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "tests/support/recording_host.h"

namespace halden::test {
namespace {

using api::impl::tev_tbl_impl_state;

// Members in order, with the id their factory is given.
struct member {
    const char *name;
    const char *engine;
    uint32_t id;
    const void *(*accessor)(tev_tbl_impl_state &);
};
#define MEMBER(name, engine, id)                                                                 \
    {                                                                                            \
        #name, #engine, id, [](tev_tbl_impl_state &s) -> const void * { return s.name##_tbl(); } \
    }
const member members[] = {
    MEMBER(lif_mapping, directmap, 16),
    MEMBER(vlan_mapping, slhash, 3),
    MEMBER(lif_vela_mapping, directmap, 17),
    MEMBER(vlan_vela_mapping, directmap, 18),
    MEMBER(vlan_vela_ctag_mapping, directmap, 19),
    MEMBER(tunnel_terminate_v4, sltcam, 8),
    MEMBER(tunnel_terminate_v6, sltcam, 9),
    MEMBER(tunnel_terminate_sa_v4, slhash, 4),
    MEMBER(tunnel_terminate_sa_v6, slhash, 5),
    MEMBER(validate_packet_vela, directmap, 20),
    MEMBER(flow_key_native, sltcam, 12),
    MEMBER(flow_key_tunneled, sltcam, 13),
    MEMBER(flow, flow_hash, 0),
    MEMBER(flow_info, directmap, 21),
    MEMBER(conntrack_ingress, directmap, 22),
    MEMBER(conntrack_egress, directmap, 23),
    MEMBER(l2seg, directmap, 24),
    MEMBER(registered_mac, slhash, 6),
    MEMBER(checksum, sltcam, 15),
    MEMBER(p4i_stats, directmap, 25),
    MEMBER(lif_tx_stats, directmap, 26),
    MEMBER(lport_tx_stats, directmap, 27),
    MEMBER(ct_ingress_stats, directmap, 28),
    MEMBER(ct_egress_stats, directmap, 29),
    MEMBER(mirror_rewrite, directmap, 30),
    MEMBER(mirror_rewrite_l3, directmap, 31),
    MEMBER(flow_rewrite, directmap, 32),
    MEMBER(nat_rewrite, directmap, 33),
    MEMBER(tunnel_encap, directmap, 34),
    MEMBER(ipfix_ingress, directmap, 35),
    MEMBER(ipfix_egress, directmap, 36),
    MEMBER(output_mapping, directmap, 37),
    MEMBER(p4plus_app, directmap, 38),
    MEMBER(p4e_stats, directmap, 39),
    MEMBER(lport_rx_stats, directmap, 40),
};
constexpr size_t member_count = 35, flow_at = 12;

const char *table_name_of(uint32_t id) {
    static char names[64][16];
    std::snprintf(names[id], sizeof names[id], "name %u", id);
    return names[id];
}

class TableState : public testing::Test {
  protected:
    TableState() {
        host.reset();
        host.on_properties = [](uint32_t tableid, p4pd_table_properties_t *properties) {
            // Everything that is not to be read is not zero.
            std::memset(static_cast<void *>(properties), 0x5a, sizeof *properties);
            properties->tablename = table_name_of(tableid);
            properties->tabledepth = 100000 + tableid;
            properties->actiondata_struct_size = static_cast<uint16_t>(300 + tableid);
            return P4PD_SUCCESS;
        };
    }
    ~TableState() override { host.reset(); }

    recording_host &host = recording_host::get();
};

// Room that was not zero before, to see what a constructor leaves.
struct dirty_room {
    dirty_room() { std::memset(room, 0xff, sizeof room); }
    alignas(tev_tbl_impl_state) uint8_t room[sizeof(tev_tbl_impl_state)];
};

// The recording engine leaves the flow table's memory to the test.
void destroy(tev_tbl_impl_state *state) {
    void *flows = state->flow_tbl();
    state->~tev_tbl_impl_state();
    std::free(flows);
}

TEST_F(TableState, MakesEveryEngineInMemberOrderWithItsArguments) {
    dirty_room place;
    auto *state = new (place.room) tev_tbl_impl_state;
    const std::vector<call> calls = host.calls();
    ASSERT_EQ(calls.size(), 25u * 2 + 4 + 5 + 1);
    size_t at = 0;
    for (const member &m : members) {
        SCOPED_TRACE(m.name);
        if (std::string(m.engine) == "directmap") {
            // The properties are fetched once, and three of them are used.
            EXPECT_EQ(calls[at].name, "p4pd_table_properties_get");
            EXPECT_EQ(calls[at].arguments[0].number, m.id);
            ++at;
            EXPECT_EQ(calls[at].name, "directmap::factory");
            EXPECT_EQ(calls[at].arguments[0].pointer, table_name_of(m.id));
            EXPECT_EQ(calls[at].arguments[1].number, m.id);
            EXPECT_EQ(calls[at].arguments[2].number, 100000 + m.id);
            EXPECT_EQ(calls[at].arguments[3].number, 300 + m.id);
            EXPECT_EQ(calls[at].arguments[4].number, 0u) << "thread safe";
            EXPECT_EQ(calls[at].arguments[5].number, 1u) << "entry trace";
            EXPECT_EQ(calls[at].arguments[6].pointer, nullptr) << "no health callback";
        } else if (std::string(m.engine) == "flow_hash") {
            // From an empty record: the flow table fills in its own id, slots and chain.
            EXPECT_EQ(calls[at].name, "ftl_base::init_");
            sdk::table::sdk_table_factory_params_ params;
            std::memcpy(static_cast<void *>(&params), calls[at].arguments[1].bytes.data(),
                        sizeof params);
            EXPECT_EQ(params.table_id, 2u);
            EXPECT_EQ(params.num_hints, 8u);
            EXPECT_EQ(params.max_chain, 8u);
            EXPECT_EQ(params.key_to_string, nullptr);
            EXPECT_EQ(params.data_to_string, nullptr);
            EXPECT_EQ(params.health, nullptr);
            EXPECT_FALSE(params.entry_trace);
        } else {
            EXPECT_EQ(calls[at].name, std::string(m.engine) + "::factory");
            const std::vector<uint8_t> &record = calls[at].arguments[0].bytes;
            ASSERT_GE(record.size(), 48u);
            // The id is the first 32-bit field; the option follows the five leading pointers.
            for (size_t i = 0; i < 41; ++i)
                EXPECT_EQ(record[i], i == 0 ? m.id : i == 40 ? 1u : 0u) << "byte " << i;
        }
        ++at;
    }
    destroy(state);
}

TEST_F(TableState, EveryAccessorAnswersItsMember) {
    dirty_room place;
    auto *state = new (place.room) tev_tbl_impl_state;
    for (size_t i = 0; i < member_count; ++i) {
        SCOPED_TRACE(members[i].name);
        const void *stored;
        std::memcpy(&stored, place.room + 8 + 8 * i, sizeof stored);
        EXPECT_NE(stored, nullptr);
        EXPECT_EQ(members[i].accessor(*state), stored);
        for (size_t j = 0; j < i; ++j)
            EXPECT_NE(members[j].accessor(*state), stored) << members[j].name;
    }
    destroy(state);
}

// Vtable pointer, 35 pointers, then 256, 256, 8, 8 and 32 words that are zero.
TEST_F(TableState, HasTheSizeAndTheZeroWordsThatAHostExpects) {
    EXPECT_EQ(sizeof(tev_tbl_impl_state), 4768u);
    dirty_room place;
    auto *state = new (place.room) tev_tbl_impl_state;
    for (size_t i = 288; i < 4768; ++i) ASSERT_EQ(place.room[i], 0u) << i;
    destroy(state);

    alignas(api::impl::tev_host_state) static uint8_t host_room[sizeof(api::impl::tev_host_state)];
    auto *whole = reinterpret_cast<api::impl::tev_host_state *>(host_room);
    EXPECT_EQ(reinterpret_cast<uint8_t *>(&whole->tables) - host_room, 72)
        << "behind nine members of the host";
    EXPECT_EQ(sizeof(api::impl::tev_impl_state), sizeof(void *));
}

// One destroy per member, in member order; the flow table through its base class.
TEST_F(TableState, DestroysEveryEngineInMemberOrder) {
    dirty_room place;
    auto *state = new (place.room) tev_tbl_impl_state;
    std::vector<const void *> engines;
    for (const member &m : members) engines.push_back(m.accessor(*state));
    host.forget_calls();
    destroy(state);
    const std::vector<call> calls = host.calls();
    ASSERT_EQ(calls.size(), member_count);
    for (size_t i = 0; i < member_count; ++i) {
        SCOPED_TRACE(members[i].name);
        EXPECT_EQ(calls[i].name, i == flow_at ? "ftl_base::destroy"
                                              : std::string(members[i].engine) + "::destroy");
        EXPECT_EQ(calls[i].arguments[0].pointer, engines[i]);
    }
}

// The host calls by slot: the destructor first, then the one that frees the object as well.
TEST_F(TableState, VirtualOperationsAreTheTwoDestructors) {
    using operation = void (*)(void *);
    const auto slot = [](void *object, size_t n) {
        operation *table;
        std::memcpy(&table, object, sizeof table);
        return table[n];
    };
    dirty_room place;
    auto *in_place = new (place.room) tev_tbl_impl_state;
    void *flows = in_place->flow_tbl();
    host.forget_calls();
    slot(in_place, 0)(in_place);
    EXPECT_EQ(host.calls().size(), member_count);
    std::free(flows);

    auto *allocated = new tev_tbl_impl_state;
    flows = allocated->flow_tbl();
    host.forget_calls();
    slot(allocated, 1)(allocated);  // a leak, were it not freed
    EXPECT_EQ(host.calls().size(), member_count);
    std::free(flows);
}

// A factory that answers null stops construction at its member, with that member's name: no engine
// behind it is made, and none before it is destroyed.
TEST_F(TableState, AFactoryThatAnswersNullIsFatal) {
    for (const member &m : members) {
        SCOPED_TRACE(m.name);
        const std::string text = std::string(
                                     "p4gen/halden/src/tev_tbl_impl_state:[0-9]+: "
                                     "api::impl::tev_tbl_impl_state::tev_tbl_impl_state\\(\\): "
                                     "Assertion `") +
                                 m.name + "_tbl\\(\\) != __null' failed";
        EXPECT_DEATH(
            {
                const std::string factory = std::string(m.engine) == "flow_hash"
                                                ? "ftl_base::init_"
                                                : std::string(m.engine) + "::factory";
                host.on_engine = [&](const call &c) {
                    if (c.name.find("::destroy") != std::string::npos) std::_Exit(1);
                    if (c.name != factory) return SDK_RET_OK;
                    uint64_t id = 0;
                    if (factory == "directmap::factory")
                        id = c.arguments[1].number;
                    else if (factory != "ftl_base::init_")
                        id = c.arguments[0].bytes[0];
                    return id == m.id ? SDK_RET_OOM : SDK_RET_OK;
                };
                dirty_room place;
                new (place.room) tev_tbl_impl_state;
            },
            text);
    }
}

}  // namespace
}  // namespace halden::test
