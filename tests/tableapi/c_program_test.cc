// A C program's calls reach the same functions.

#include "tests/tableapi/fixture.h"

extern "C" tev_tbl_ret_t c_create_lif_mapping(unsigned index, unsigned lport);
extern "C" tev_tbl_ret_t c_clear_flow(void);

namespace halden::test {
namespace {

using CProgram = TableApi;

TEST_F(CProgram, CreatesALifMapping) {
    bytes data;
    host.on_call = [&](const call &c) {
        const auto *at = static_cast<const uint8_t *>(c.arguments[1].pointer);
        data.assign(at, at + 12);
    };
    EXPECT_EQ(c_create_lif_mapping(7, 0x321), TEV_TBL_RET_OK);
    ASSERT_EQ(host.calls().size(), 1u);
    EXPECT_EQ(host.calls()[0].name, "directmap::insert_withid");
    EXPECT_EQ(host.calls()[0].arguments[2].number, 7u);
    EXPECT_EQ(data, (bytes{0, 0x21, 0x03, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(CProgram, SeesTheResultCodes) {
    EXPECT_EQ(c_clear_flow(), 255u);
    EXPECT_EQ(c_create_lif_mapping(1024, 0), 2u);
}

}  // namespace
}  // namespace halden::test
