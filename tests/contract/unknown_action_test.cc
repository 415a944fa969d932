// Action ids outside a table's range: neither the printer nor a reader takes the data behind them
// for that of any action.

#include <array>
#include <string>
#include <utility>
#include <vector>

#include "gtest/gtest.h"
#include "p4pd.h"
#include "tests/support/recording_host.h"

namespace halden::test {
namespace {

struct table {
    uint32_t id;
    const char *constant;
    uint8_t actions;
};

constexpr table tables[] = {
    {16, "P4TBL_ID_LIF_MAPPING", 1},       {20, "P4TBL_ID_VALIDATE_PACKET_VELA", 1},
    {21, "P4TBL_ID_FLOW_INFO", 1},         {22, "P4TBL_ID_CONNTRACK_INGRESS", 2},
    {23, "P4TBL_ID_CONNTRACK_EGRESS", 2},  {30, "P4TBL_ID_MIRROR_REWRITE", 1},
    {37, "P4TBL_ID_OUTPUT_MAPPING", 2},    {38, "P4TBL_ID_P4PLUS_APP", 3},
    {41, "P4TBL_ID_VALIDATE_PACKET", 1},   {48, "P4TBL_ID_P4PLUS_APP_RSS_2", 1},
    {12, "P4TBL_ID_FLOW_KEY_NATIVE", 4},   {13, "P4TBL_ID_FLOW_KEY_TUNNELED", 4},
    {15, "P4TBL_ID_CHECKSUM", 22},         {8, "P4TBL_ID_TUNNEL_TERMINATE_V4", 1},
    {7, "P4TBL_ID_VLAN_MAPPING_OTCAM", 1}, {14, "P4TBL_ID_REGISTERED_MAC_OTCAM", 1},
};

TEST(UnknownAction, PrintsNothingOfItsData) {
    for (const table &t : tables) {
        const std::string head =
            "Table Entry Fields\nTable : " + std::string(t.constant) + ", Index : 0x5/5\n";
        for (unsigned action : {unsigned{t.actions}, 0x7fu, 0xffu}) {
            std::array<uint8_t, 80> record;
            record.fill(0xff);
            record[0] = static_cast<uint8_t>(action);
            char text[1024];
            EXPECT_EQ(p4pd_table_ds_decoded_string_get(t.id, 5, nullptr, nullptr, record.data(),
                                                       text, sizeof text),
                      0);
            EXPECT_EQ(text, head) << "action " << action;
        }
    }
}

// A row whose program belongs to no action of the table is read as its id and nothing more.
TEST(UnknownAction, IsReadWithoutData) {
    recording_host &host = recording_host::get();
    for (auto [id, actions] :
         {std::pair{12u, 4}, {13u, 4}, {15u, 22}, {22u, 2}, {23u, 2}, {37u, 2}, {38u, 3}}) {
        host.reset();
        const auto unknown = static_cast<uint8_t>(actions);
        host.on_action_id = [unknown](uint32_t, uint8_t) { return unknown; };
        host.on_read = [](const char *, uint32_t, uint32_t) {
            return read_answer{std::vector<uint8_t>(64, 0x20), std::vector<uint8_t>(64), 200, 0};
        };
        std::array<uint8_t, 80> key{}, mask{}, data;
        data.fill(0xa5);
        EXPECT_EQ(p4pd_entry_read(id, 5, key.data(), mask.data(), data.data(), nullptr, false), 0);
        EXPECT_EQ(data[0], unknown);
        for (size_t i = 1; i < data.size(); ++i) EXPECT_EQ(data[i], 0xa5) << i;
        for (const call &made : host.calls())
            EXPECT_NE(made.name, "p4pd_utils_copy_be_adata_to_le_dest");
    }
    host.reset();
}

}  // namespace
}  // namespace halden::test
