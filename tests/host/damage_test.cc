// Rows whose stored length cannot be: every call says so, touches nothing and names file and row;
// a write of the whole row is the one thing that puts it right.

#include "host/engines/access.h"
#include "host/engines/flow/ftl_access.h"
#include "host/state/table_state.h"
#include "host/view/lookup.h"
#include "p4pd.h"
#include "tests/host/adapter_fixture.h"

#include <algorithm>
#include <fstream>

#include "tev_tbl.h"

namespace {

using namespace halden::host;
using halden::test::bytes;
using halden::test::first;
using halden::test::room;
using halden::test::untouched;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr uint32_t lif_mapping = 16, flow_info = 21, vlan_mapping = 3, vlan_mapping_otcam = 7,
                   tunnel_terminate_v4 = 8;
constexpr adapter_options small = {.flow_rows = 16, .flow_ohash_rows = 8};

class Damage : public testing::Test {
  protected:
    Damage() {
        trace::set_pattern("%l %v");
        trace::set_file(scratch_.file("messages"));
        open();
    }
    ~Damage() override { trace::set_file({}); }

    std::string path() const { return scratch_.file("adapter"); }
    std::string messages() const {
        trace::flush();
        return halden::test::text_of(scratch_.file("messages"));
    }
    void open() {
        adapter_.reset();
        adapter_ = adapter::open(path(), small);
    }
    // Puts a length in a row's state word: four bytes a row, the length the lower two of them.
    void put_length(const std::string &file, uint32_t row, uint16_t length) {
        adapter_.reset();
        std::fstream out(path() + "/" + file, std::ios::in | std::ios::out | std::ios::binary);
        const char word[] = {static_cast<char>(length & 0xff), static_cast<char>(length >> 8), 1,
                             0};
        out.seekp(4 * static_cast<long>(row));
        out.write(word, sizeof word);
        ASSERT_TRUE(out.good());
        out.close();
        adapter_ = adapter::open(path(), small);
    }
    std::string contents(const std::string &file) const {
        return halden::test::text_of(path() + "/" + file);
    }

    halden::test::scratch_directory scratch_;
    std::unique_ptr<adapter> adapter_;
    const bytes image_ = bytes(64, 0x5a);
};

TEST_F(Damage, ALengthBeyondAnSramRowIsNotReadAndNotWrittenOver) {
    ASSERT_EQ(adapter_->sram_write(lif_mapping, 6, image_.data(), 512, nullptr), SDK_RET_OK);
    for (const uint16_t length : {uint16_t{513}, uint16_t{0xffff}}) {
        SCOPED_TRACE(length);
        put_length("table-16.sram", 5, length);
        const std::string before = contents("table-16.sram");
        bytes found = room();
        uint16_t bits = 0xeeee;
        EXPECT_EQ(adapter_->sram_read(lif_mapping, 5, found.data(), &bits), SDK_RET_DAMAGED);
        EXPECT_EQ(bits, 0);
        EXPECT_EQ(found, room());
        const bytes mask(64, 0x0f);
        EXPECT_EQ(adapter_->sram_write(lif_mapping, 5, image_.data(), 49, mask.data()),
                  SDK_RET_DAMAGED);
        EXPECT_EQ(adapter_->clear_row(lif_mapping, 5), SDK_RET_DAMAGED);
        EXPECT_EQ(adapter_->check_row(lif_mapping, 5), SDK_RET_DAMAGED);
        EXPECT_EQ(adapter_->next_used(lif_mapping, 0), 5u);
        EXPECT_EQ(contents("table-16.sram"), before);
        // Its neighbours are sound.
        EXPECT_EQ(adapter_->check_row(lif_mapping, 4), SDK_RET_OK);
        EXPECT_EQ(adapter_->sram_read(lif_mapping, 6, found.data(), &bits), SDK_RET_OK);
        EXPECT_EQ(bits, 512);

        const std::string text = path() + "/table-16.sram: row 5 is damaged: its length is " +
                                 std::to_string(length) +
                                 " bits; possible are 0 to 512; a raw write of the whole row "
                                 "(`haldenctl write`) puts it right";
        EXPECT_THAT(adapter_->troubles(), ElementsAre(text));
        EXPECT_THAT(messages(), HasSubstr("error sram_read: " + text));
    }
}

TEST_F(Damage, AWriteOfTheWholeRowPutsItRightAndSaysWhatWasThere) {
    adapter_->sram_read(lif_mapping, 0, room().data(), std::make_unique<uint16_t>().get());
    put_length("table-16.sram", 5, 513);
    EXPECT_EQ(adapter_->damage_of(lif_mapping, 5),
              path() + "/table-16.sram: row 5 had a length of 513 bits");
    EXPECT_EQ(adapter_->damage_of(lif_mapping, 4), "");
    EXPECT_THAT(adapter_->troubles(), ElementsAre());
    bytes found = room();
    uint16_t bits = 0;
    EXPECT_EQ(adapter_->sram_read(lif_mapping, 5, found.data(), &bits), SDK_RET_DAMAGED);
    // An observer is shown an empty row where there was a damaged one.
    std::vector<unsigned> old_bits;
    adapter_->set_observer([&](const row_change &change) {
        old_bits.push_back(change.old_bits);
        EXPECT_THAT(change.old_image, testing::Each(0));
    });
    EXPECT_EQ(adapter_->sram_write(lif_mapping, 5, image_.data(), 16, nullptr), SDK_RET_OK);
    EXPECT_THAT(old_bits, ElementsAre(0u));
    EXPECT_EQ(adapter_->sram_read(lif_mapping, 5, found.data(), &bits), SDK_RET_OK);
    EXPECT_EQ(bits, 16);
    EXPECT_EQ(first(found, 3), (bytes{0x5a, 0x5a, untouched}));
    EXPECT_THAT(messages(), HasSubstr("error " + path() +
                                      "/table-16.sram: row 5 had a length of 513 bits, which is "
                                      "damage, and is written anew"));
    EXPECT_THAT(adapter_->troubles(), ElementsAre());
}

TEST_F(Damage, ATcamWidthThatCannotBe) {
    ASSERT_EQ(adapter_->tcam_write(tunnel_terminate_v4, 2, image_.data(), image_.data(), 256),
              SDK_RET_OK);
    for (const uint16_t width : {uint16_t{272}, uint16_t{15}, uint16_t{129}, uint16_t{0xfff0}}) {
        SCOPED_TRACE(width);
        put_length("table-08.tcam", 3, width);
        bytes key = room(), mask = room();
        uint16_t bits = 0xeeee;
        EXPECT_EQ(adapter_->tcam_read(tunnel_terminate_v4, 3, key.data(), mask.data(), &bits),
                  SDK_RET_DAMAGED);
        EXPECT_EQ(bits, 0);
        EXPECT_EQ(key, room());
        EXPECT_EQ(mask, room());
        EXPECT_EQ(adapter_->clear_row(tunnel_terminate_v4, 3), SDK_RET_DAMAGED);
        EXPECT_THAT(adapter_->troubles(),
                    ElementsAre(path() + "/table-08.tcam: row 3 is damaged: its length is " +
                                std::to_string(width) +
                                " bits; possible are 0 to 256 in steps of 16; a raw write of the "
                                "whole row (`haldenctl write`) puts it right"));
        EXPECT_EQ(adapter_->tcam_read(tunnel_terminate_v4, 2, key.data(), mask.data(), &bits),
                  SDK_RET_OK);
        EXPECT_EQ(bits, 256);
    }
}

TEST_F(Damage, AnHbmLengthBeyondTheRow) {
    ASSERT_EQ(adapter_->hbm_write(flow_info, 0, image_.data(), 512), SDK_RET_OK);
    put_length("table-21.hbm", 7, 520);
    bytes found = room();
    uint16_t bits = 0xeeee;
    EXPECT_EQ(adapter_->hbm_read(flow_info, 7, found.data(), &bits), SDK_RET_DAMAGED);
    EXPECT_EQ(bits, 0);
    EXPECT_EQ(found, room());
    EXPECT_EQ(adapter_->clear_row(flow_info, 7), SDK_RET_DAMAGED);
    EXPECT_EQ(adapter_->troubles().size(), 1u);
    EXPECT_EQ(adapter_->hbm_write(flow_info, 7, image_.data(), 8), SDK_RET_OK);
    EXPECT_EQ(adapter_->hbm_read(flow_info, 7, found.data(), &bits), SDK_RET_OK);
    EXPECT_EQ(bits, 8);
}

// The data of an overflow row is in the memory of its hash table.
TEST_F(Damage, TheDataRowOfAnOverflowTableIsNamedByItsOwner) {
    adapter_->sram_read(vlan_mapping, 0, room().data(), std::make_unique<uint16_t>().get());
    put_length("table-03.sram", 4096 + 9, 600);
    EXPECT_EQ(adapter_->check_row(vlan_mapping_otcam, 9), SDK_RET_DAMAGED);
    EXPECT_EQ(adapter_->clear_row(vlan_mapping_otcam, 9), SDK_RET_DAMAGED);
    ASSERT_EQ(adapter_->troubles().size(), 1u);
    EXPECT_THAT(adapter_->troubles()[0],
                HasSubstr("/table-03.sram: row 4105 is damaged: its length is 600 bits"));
}

TEST_F(Damage, ManyRowsOfOneMemoryMakeAShortList) {
    adapter_->sram_read(lif_mapping, 0, room().data(), std::make_unique<uint16_t>().get());
    for (uint32_t row = 0; row < 20; ++row) put_length("table-16.sram", row, 0x8000);
    for (unsigned round = 0; round < 2; ++round)
        for (uint32_t row = 0; row < 20; ++row)
            EXPECT_EQ(adapter_->check_row(lif_mapping, row), SDK_RET_DAMAGED);
    const auto texts = adapter_->troubles();
    ASSERT_EQ(texts.size(), 9u);
    EXPECT_THAT(texts[7], HasSubstr(": row 7 is damaged"));
    EXPECT_EQ(texts[8], path() + "/table-16.sram: more rows are damaged");
}

// --- Engines -------------------------------------------------------------------------------------

TEST_F(Damage, AnIndexRowIsNeitherFreeNorAnEntry) {
    adapter_->sram_read(lif_mapping, 0, room().data(), std::make_unique<uint16_t>().get());
    put_length("table-16.sram", 5, 513);
    const std::string before = contents("table-16.sram");
    {
        table_state tables(*adapter_);
        tev_tbl_lif_mapping_spec_t spec = {};
        spec.key.index = 5;
        EXPECT_EQ(tev_tbl_lif_mapping_create(&spec), TEV_TBL_RET_WRITE_FAILED);
        EXPECT_EQ(tev_tbl_lif_mapping_update(&spec), TEV_TBL_RET_WRITE_FAILED);
        EXPECT_EQ(tev_tbl_lif_mapping_delete(&spec.key), TEV_TBL_RET_WRITE_FAILED);
        EXPECT_EQ(tev_tbl_lif_mapping_find(&spec.key), TEV_TBL_RET_READ_FAILED);
        EXPECT_EQ(tev_tbl_lif_mapping_read(&spec.key, &spec), TEV_TBL_RET_READ_FAILED);
        EXPECT_EQ(sdk::table::directmap_access::statistics(*tables.tables().lif_mapping_tbl()).used,
                  1u);
        spec.key.index = 6;
        EXPECT_EQ(tev_tbl_lif_mapping_create(&spec), TEV_TBL_RET_OK);
        EXPECT_EQ(tev_tbl_lif_mapping_delete(&spec.key), TEV_TBL_RET_OK);
    }
    EXPECT_EQ(contents("table-16.sram").substr(5 * 4, 4), before.substr(5 * 4, 4));
}

tev_tbl_tunnel_terminate_v4_spec_t prefix(unsigned number, unsigned length) {
    tev_tbl_tunnel_terminate_v4_spec_t spec = {};
    spec.key.ipv4_1_dstAddr = number << (32 - length);
    spec.has_mask = true;
    std::memset(&spec.mask, 0xff, sizeof spec.mask);
    spec.mask.ipv4_1_dstAddr_mask = 0xffffffffu << (32 - length);
    return spec;
}

// Entries go around the damaged row, stay in order, and come to 511 in a table of 512 rows.
TEST_F(Damage, TernaryEntriesGoAroundADamagedRow) {
    adapter_->tcam_read(tunnel_terminate_v4, 0, room().data(), room().data(),
                        std::make_unique<uint16_t>().get());
    put_length("table-08.tcam", 2, 17);
    trace::set_level("off");
    const table_state tables(*adapter_);
    unsigned made = 0;
    for (unsigned number = 1; number <= 511; ++number)
        made +=
            tev_tbl_tunnel_terminate_v4_create(std::make_unique<tev_tbl_tunnel_terminate_v4_spec_t>(
                                                   prefix(number, 9 + number % 20))
                                                   .get()) == TEV_TBL_RET_OK;
    EXPECT_EQ(made, 511u);
    auto more = prefix(600, 24);
    EXPECT_EQ(tev_tbl_tunnel_terminate_v4_create(&more), TEV_TBL_RET_WRITE_FAILED);
    // Whether it is absent cannot be told.
    EXPECT_EQ(tev_tbl_tunnel_terminate_v4_find(&more.key), TEV_TBL_RET_READ_FAILED);
    unsigned last = 33;
    for (uint32_t row = 0; row < 512; ++row) {
        if (row == 2) continue;
        tunnel_terminate_v4_swkey_t key = {};
        tunnel_terminate_v4_swkey_mask_t mask = {};
        tunnel_terminate_v4_actiondata_t data = {};
        ASSERT_EQ(p4pd_entry_read(tunnel_terminate_v4, row, &key, &mask, &data, nullptr, false),
                  P4PD_SUCCESS)
            << row;
        const auto length =
            static_cast<unsigned>(__builtin_popcount(uint32_t{mask.ipv4_1_dstAddr_mask}));
        EXPECT_LE(length, last) << row;
        last = length;
    }
    trace::set_level("info");
}

// The key of a row that cannot be read may be any.
TEST_F(Damage, AHashTableSaysThatItCouldNotTell) {
    adapter_->tcam_read(vlan_mapping_otcam, 0, room().data(), room().data(),
                        std::make_unique<uint16_t>().get());
    put_length("table-07.tcam", 3, 257);
    const table_state tables(*adapter_);
    tev_tbl_vlan_mapping_spec_t spec = {};
    spec.key.vlan_id = 100;
    EXPECT_EQ(tev_tbl_vlan_mapping_find(&spec.key), TEV_TBL_RET_READ_FAILED);
    EXPECT_EQ(tev_tbl_vlan_mapping_create(&spec), TEV_TBL_RET_OK);
    EXPECT_EQ(tev_tbl_vlan_mapping_find(&spec.key), TEV_TBL_RET_OK);
    EXPECT_EQ(tev_tbl_vlan_mapping_delete(&spec.key), TEV_TBL_RET_OK);
    // Hardware's view: neither a hit nor a miss.
    uint8_t key[128] = {};
    p4pd_hwkey_hwmask_build(vlan_mapping, &spec.key, nullptr, key, nullptr);
    const auto found = view::lookup(*adapter_, vlan_mapping, key);
    EXPECT_FALSE(found.hit);
    EXPECT_EQ(found.unread, SDK_RET_DAMAGED);
    EXPECT_EQ(contents("table-07.tcam").substr(3 * 4, 2), std::string("\x01\x01", 2));
}

// A row whose program is none of the table's is somebody's: no engine writes over it.
TEST_F(Damage, ARowOfAnUnknownProgramIsNotFree) {
    constexpr uint32_t output_mapping = 37;
    const bytes row(64, 0xee);
    ASSERT_EQ(adapter_->sram_write(output_mapping, 4, row.data(), 512, nullptr), SDK_RET_OK);
    const table_state tables(*adapter_);
    tev_tbl_output_mapping_spec_t spec = {};
    spec.key.index = 4;
    EXPECT_EQ(tev_tbl_output_mapping_create(&spec), TEV_TBL_RET_WRITE_FAILED);
    EXPECT_EQ(tev_tbl_output_mapping_find(&spec.key), TEV_TBL_RET_READ_FAILED);
    bytes found = room();
    uint16_t bits = 0;
    EXPECT_EQ(adapter_->sram_read(output_mapping, 4, found.data(), &bits), SDK_RET_OK);
    EXPECT_EQ(first(found, 64), row);
}

// --- Memories that cannot be mapped --------------------------------------------------------------

TEST_F(Damage, EnginesOverMemoriesThatCannotBeMappedAnswerAndTheOthersWork) {
    for (const char *file : {"table-02.hbm", "table-08.tcam", "table-16.sram", "table-07.tcam"})
        halden::test::write_text(path() + "/" + file, "short");
    open();
    table_state tables(*adapter_);
    trace::set_level("off");
    tev_tbl_flow_spec_t flow = {};
    EXPECT_EQ(tev_tbl_flow_create(&flow), TEV_TBL_RET_WRITE_FAILED);
    EXPECT_EQ(tev_tbl_flow_update(&flow), TEV_TBL_RET_WRITE_FAILED);
    EXPECT_EQ(tev_tbl_flow_delete(&flow.key), TEV_TBL_RET_WRITE_FAILED);
    EXPECT_EQ(tev_tbl_flow_find(&flow.key), TEV_TBL_RET_READ_FAILED);
    sdk::table::ftl_base &table = *tables.tables().flow_tbl();
    EXPECT_EQ(table.restore_state(), SDK_RET_OOM);
    EXPECT_EQ(sdk::table::ftl_access::count(table), 0u);
    flow_hash_entry_t entry;
    base_table_entry_t *const entries[] = {&entry};
    sdk_ret_t result = SDK_RET_OK;
    EXPECT_EQ(sdk::table::ftl_access::insert_batch(table, entries, {&result, 1}), 0u);
    EXPECT_EQ(result, SDK_RET_OOM);
    auto ternary = prefix(7, 24);
    EXPECT_EQ(tev_tbl_tunnel_terminate_v4_create(&ternary), TEV_TBL_RET_WRITE_FAILED);
    EXPECT_EQ(tev_tbl_tunnel_terminate_v4_find(&ternary.key), TEV_TBL_RET_READ_FAILED);
    tev_tbl_vlan_mapping_spec_t vlan = {};
    EXPECT_EQ(tev_tbl_vlan_mapping_create(&vlan), TEV_TBL_RET_WRITE_FAILED);
    EXPECT_EQ(tev_tbl_vlan_mapping_find(&vlan.key), TEV_TBL_RET_READ_FAILED);
    tev_tbl_lif_mapping_spec_t lif = {};
    EXPECT_EQ(tev_tbl_lif_mapping_create(&lif), TEV_TBL_RET_WRITE_FAILED);
    EXPECT_EQ(tev_tbl_lif_mapping_find(&lif.key), TEV_TBL_RET_READ_FAILED);
    trace::set_level("info");
    tev_tbl_l2seg_spec_t l2seg = {};
    EXPECT_EQ(tev_tbl_l2seg_create(&l2seg), TEV_TBL_RET_OK);
    EXPECT_EQ(tev_tbl_l2seg_find(&l2seg.key), TEV_TBL_RET_OK);
    // Hardware's view of a table that is not there is no miss.
    const uint8_t key[128] = {};
    EXPECT_EQ(view::lookup(*adapter_, tunnel_terminate_v4, key).unread, SDK_RET_OOM);
    EXPECT_EQ(view::lookup(*adapter_, 2, key).unread, SDK_RET_OOM);
    const auto texts = adapter_->troubles();
    EXPECT_EQ(texts.size(), 4u);
    for (const std::string &text : texts) EXPECT_THAT(text, HasSubstr("cannot be mapped: "));
}

}  // namespace
