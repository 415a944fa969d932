// The catalogue: ids, names, record sizes, action counts and the lengths of the images.

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>

#include "gtest/gtest.h"
#include "p4pd.h"

namespace {

// A length that the query leaves to its caller.
constexpr uint32_t none = 0xdeadbeef;

struct table {
    uint32_t id;
    uint32_t constant;
    const char *name;
    uint16_t key_bytes;  // of the software key record
    uint16_t data_bytes;
    int32_t actions;
    uint32_t key_bits, mask_bits, data_bits;  // of the images
};

// clang-format off
constexpr table tables[] = {
    {1, P4TBL_ID_FLOW_OHASH, "flow_ohash", 77, 59, 1, 640, none, 293},
    {2, P4TBL_ID_FLOW, "flow", 77, 59, 1, 640, none, 293},
    {3, P4TBL_ID_VLAN_MAPPING, "vlan_mapping", 4, 5, 1, 512, none, 24},
    {4, P4TBL_ID_TUNNEL_TERMINATE_SA_V4, "tunnel_terminate_sa_v4", 5, 4, 1, 512, none, 17},
    {5, P4TBL_ID_TUNNEL_TERMINATE_SA_V6, "tunnel_terminate_sa_v6", 17, 4, 1, 512, none, 17},
    {6, P4TBL_ID_REGISTERED_MAC, "registered_mac", 8, 10, 1, 512, none, 52},
    {7, P4TBL_ID_VLAN_MAPPING_OTCAM, "vlan_mapping_otcam", 4, 5, 1, 32, 32, 24},
    {8, P4TBL_ID_TUNNEL_TERMINATE_V4, "tunnel_terminate_v4", 21, 3, 1, 128, 128, 9},
    {9, P4TBL_ID_TUNNEL_TERMINATE_V6, "tunnel_terminate_v6", 33, 3, 1, 224, 224, 9},
    {10, P4TBL_ID_TUNNEL_TERMINATE_SA_V4_OTCAM, "tunnel_terminate_sa_v4_otcam", 5, 4, 1, 48, 48, 17},
    {11, P4TBL_ID_TUNNEL_TERMINATE_SA_V6_OTCAM, "tunnel_terminate_sa_v6_otcam", 17, 4, 1, 144, 144, 17},
    {12, P4TBL_ID_FLOW_KEY_NATIVE, "flow_key_native", 3, 3, 4, 16, 16, 12},
    {13, P4TBL_ID_FLOW_KEY_TUNNELED, "flow_key_tunneled", 3, 2, 4, 16, 16, 0},
    {14, P4TBL_ID_REGISTERED_MAC_OTCAM, "registered_mac_otcam", 8, 10, 1, 64, 64, 52},
    {15, P4TBL_ID_CHECKSUM, "checksum", 8, 2, 22, 16, 16, 0},
    {16, P4TBL_ID_LIF_MAPPING, "lif_mapping", 0, 12, 1, none, none, 49},
    {17, P4TBL_ID_LIF_VELA_MAPPING, "lif_vela_mapping", 0, 11, 1, none, none, 44},
    {18, P4TBL_ID_VLAN_VELA_MAPPING, "vlan_vela_mapping", 0, 14, 1, none, none, 64},
    {19, P4TBL_ID_VLAN_VELA_CTAG_MAPPING, "vlan_vela_ctag_mapping", 0, 14, 1, none, none, 64},
    {20, P4TBL_ID_VALIDATE_PACKET_VELA, "validate_packet_vela", 0, 9, 1, none, none, 64},
    {21, P4TBL_ID_FLOW_INFO, "flow_info", 0, 64, 1, none, none, 328},
    {22, P4TBL_ID_CONNTRACK_INGRESS, "conntrack_ingress", 0, 27, 2, none, none, 192},
    {23, P4TBL_ID_CONNTRACK_EGRESS, "conntrack_egress", 0, 27, 2, none, none, 192},
    {24, P4TBL_ID_L2SEG, "l2seg", 0, 6, 1, none, none, 19},
    {25, P4TBL_ID_P4I_STATS, "p4i_stats", 0, 49, 1, none, none, 384},
    {26, P4TBL_ID_LIF_TX_STATS, "lif_tx_stats", 0, 65, 1, none, none, 512},
    {27, P4TBL_ID_LPORT_TX_STATS, "lport_tx_stats", 0, 65, 1, none, none, 512},
    {28, P4TBL_ID_CT_INGRESS_STATS, "ct_ingress_stats", 0, 65, 1, none, none, 512},
    {29, P4TBL_ID_CT_EGRESS_STATS, "ct_egress_stats", 0, 65, 1, none, none, 512},
    {30, P4TBL_ID_MIRROR_REWRITE, "mirror_rewrite", 0, 28, 1, none, none, 159},
    {31, P4TBL_ID_MIRROR_REWRITE_L3, "mirror_rewrite_l3", 0, 73, 1, none, none, 512},
    {32, P4TBL_ID_FLOW_REWRITE, "flow_rewrite", 0, 39, 1, none, none, 223},
    {33, P4TBL_ID_NAT_REWRITE, "nat_rewrite", 0, 35, 1, none, none, 258},
    {34, P4TBL_ID_TUNNEL_ENCAP, "tunnel_encap", 0, 60, 1, none, none, 409},
    {35, P4TBL_ID_IPFIX_INGRESS, "ipfix_ingress", 0, 18, 1, none, none, 136},
    {36, P4TBL_ID_IPFIX_EGRESS, "ipfix_egress", 0, 18, 1, none, none, 136},
    {37, P4TBL_ID_OUTPUT_MAPPING, "output_mapping", 0, 18, 2, none, none, 70},
    {38, P4TBL_ID_P4PLUS_APP, "p4plus_app", 0, 2, 3, none, none, 0},
    {39, P4TBL_ID_P4E_STATS, "p4e_stats", 0, 49, 1, none, none, 384},
    {40, P4TBL_ID_LPORT_RX_STATS, "lport_rx_stats", 0, 65, 1, none, none, 512},
    {41, P4TBL_ID_VALIDATE_PACKET, "validate_packet", 1, 2, 1, none, none, 0},
    {42, P4TBL_ID_P4PLUS_OFFLOAD, "p4plus_offload", 1, 2, 1, none, none, 0},
    {43, P4TBL_ID_REPLICA_REWRITE, "replica_rewrite", 1, 2, 1, none, none, 0},
    {44, P4TBL_ID_TUNNEL_DECAP, "tunnel_decap", 1, 2, 1, none, none, 0},
    {45, P4TBL_ID_P4PLUS_APP_RSS_0, "p4plus_app_rss_0", 1, 2, 1, none, none, 0},
    {46, P4TBL_ID_P4PLUS_APP_RSS_MIRROR, "p4plus_app_rss_mirror", 1, 2, 1, none, none, 0},
    {47, P4TBL_ID_P4PLUS_APP_RSS_1, "p4plus_app_rss_1", 1, 2, 1, none, none, 0},
    {48, P4TBL_ID_P4PLUS_APP_RSS_2, "p4plus_app_rss_2", 1, 2, 1, none, none, 0},
};
// clang-format on
static_assert(std::size(tables) == 48);

// One row for each id below 49, row 0 included.
static_assert(sizeof p4pd_tbl_names == 49 * 80);
static_assert(sizeof p4pd_tbl_names[0] == 80);
static_assert(sizeof p4pd_tbl_swkey_size == 49 * 2);
static_assert(sizeof p4pd_tbl_sw_action_data_size == 49 * 2);

// Taken before any test fills them.
bool all_zero() {
    const auto zero = [](const void *start, size_t bytes) {
        const auto *at = static_cast<const unsigned char *>(start);
        return std::all_of(at, at + bytes, [](unsigned char byte) { return byte == 0; });
    };
    return zero(p4pd_tbl_names, sizeof p4pd_tbl_names) &&
           zero(p4pd_tbl_swkey_size, sizeof p4pd_tbl_swkey_size) &&
           zero(p4pd_tbl_sw_action_data_size, sizeof p4pd_tbl_sw_action_data_size);
}
const bool zero_at_start = all_zero();

TEST(Catalogue, TablesAreEmptyUntilTheyArePrepared) { EXPECT_TRUE(zero_at_start); }

TEST(Catalogue, IdsRunFrom1ToBelow49AlthoughNoTableHasId49) {
    EXPECT_EQ(p4pd_tableid_min_get(), 1u);
    EXPECT_EQ(p4pd_tableid_max_get(), 49u);
    EXPECT_EQ(p4pd_get_max_action_id(p4pd_tableid_max_get()), 0);
}

TEST(Catalogue, EachConstantIsItsTablesId) {
    for (const table &t : tables) EXPECT_EQ(t.constant, t.id) << t.name;
}

// Each name stands at the start of its row, and the rest of the row is zero.
TEST(Catalogue, NamesFillTheirRows) {
    p4pd_prep_p4tbl_names();
    EXPECT_STREQ(p4pd_tbl_names[0], "") << "row 0 is no table's";
    EXPECT_STREQ(p4pd_tbl_names[17], "lif_vela_mapping");
    for (const table &t : tables) {
        char row[80] = {};
        std::strcpy(row, t.name);
        EXPECT_EQ(std::memcmp(p4pd_tbl_names[t.id], row, sizeof row), 0) << t.name;
    }
    const char empty[80] = {};
    EXPECT_EQ(std::memcmp(p4pd_tbl_names[0], empty, sizeof empty), 0);
}

TEST(Catalogue, SizesAreThoseOfTheRecords) {
    p4pd_prep_p4tbl_sw_struct_sizes();
    EXPECT_EQ(p4pd_tbl_swkey_size[0], 0) << "element 0 is no table's";
    EXPECT_EQ(p4pd_tbl_sw_action_data_size[0], 0);
    EXPECT_EQ(p4pd_tbl_swkey_size[16], 0) << "an index table has no key record";
    EXPECT_EQ(p4pd_tbl_swkey_size[41], 1) << "a keyless table has an empty one";
    for (const table &t : tables) {
        EXPECT_EQ(p4pd_tbl_swkey_size[t.id], t.key_bytes) << t.name;
        EXPECT_EQ(p4pd_tbl_sw_action_data_size[t.id], t.data_bytes) << t.name;
    }
}

TEST(Catalogue, PreparingAgainChangesNothing) {
    for (int i = 0; i < 2; ++i) {
        p4pd_prep_p4tbl_names();
        p4pd_prep_p4tbl_sw_struct_sizes();
    }
    EXPECT_STREQ(p4pd_tbl_names[48], "p4plus_app_rss_2");
    EXPECT_EQ(p4pd_tbl_swkey_size[1], 77);
    EXPECT_EQ(p4pd_tbl_sw_action_data_size[31], 73);
}

TEST(Catalogue, ActionsAre0ForIds0And49And22ForChecksum) {
    EXPECT_EQ(p4pd_get_max_action_id(0), 0);
    EXPECT_EQ(p4pd_get_max_action_id(49), 0);
    EXPECT_EQ(p4pd_get_max_action_id(15), 22);
}

TEST(Catalogue, EveryTableHasItsNumberOfActions) {
    for (const table &t : tables) EXPECT_EQ(p4pd_get_max_action_id(t.id), t.actions) << t.name;
    for (uint32_t id : {0u, 49u, 50u, 128u, 257u, 0x80000000u, 0x80000001u, 0xffffffffu})
        EXPECT_EQ(p4pd_get_max_action_id(id), 0) << id;
}

// Some tables have the key layout and the action data of another.
TEST(Catalogue, TablesThatShareTheirLayoutHaveTheSameSizes) {
    p4pd_prep_p4tbl_sw_struct_sizes();
    struct pair {
        uint32_t one, other;
    };
    for (auto [one, other] : {pair{1, 2}, {4, 10}, {5, 11}, {6, 14}, {3, 7}}) {
        EXPECT_EQ(p4pd_tbl_swkey_size[one], p4pd_tbl_swkey_size[other]);
        EXPECT_EQ(p4pd_tbl_sw_action_data_size[one], p4pd_tbl_sw_action_data_size[other]);
        EXPECT_STRNE(tables[one - 1].name, tables[other - 1].name);
    }
}

// --- The query -----------------------------------------------------------------------------------

TEST(Query, SetsOnlyTheLengthsThatTheKindHas) {
    for (const table &t : tables) {
        uint32_t key = none, mask = none, data = none;
        p4pd_hwentry_query(t.id, &key, &mask, &data);
        EXPECT_EQ(key, t.key_bits) << t.name;
        EXPECT_EQ(mask, t.mask_bits) << t.name;
        EXPECT_EQ(data, t.data_bits) << t.name;
    }
}

// An output that is left alone is not looked at either.
TEST(Query, AnOutputThatIsNotSetMayBeNull) {
    for (const table &t : tables) {
        uint32_t key = none, mask = none, data = none;
        p4pd_hwentry_query(t.id, t.key_bits == none ? nullptr : &key,
                           t.mask_bits == none ? nullptr : &mask, &data);
        EXPECT_EQ(key, t.key_bits) << t.name;
        EXPECT_EQ(mask, t.mask_bits) << t.name;
        EXPECT_EQ(data, t.data_bits) << t.name;
    }
}

TEST(Query, Table7AnswersKeyAndMaskLength32AndNot24) {
    uint32_t key = 0, mask = 0, data = 0;
    p4pd_hwentry_query(7, &key, &mask, &data);
    EXPECT_EQ(key, 32u);
    EXPECT_EQ(mask, 32u);
    EXPECT_EQ(data, 24u);
}

TEST(Query, AnUnknownIdSetsNothing) {
    for (uint32_t id : {0u, 49u, 50u, 256u + 7, 0x80000007u, 0xffffffffu}) {
        uint32_t key = none, mask = none, data = none;
        p4pd_hwentry_query(id, &key, &mask, &data);
        EXPECT_EQ(key, none) << id;
        EXPECT_EQ(mask, none) << id;
        EXPECT_EQ(data, none) << id;
        p4pd_hwentry_query(id, nullptr, nullptr, nullptr);
    }
}

}  // namespace
