// The observer of an adapter's writes, and adapters beside one another in one process.

#include "tests/host/adapter_fixture.h"

#include "p4pd.h"
#include "p4pd_records.h"
#include "sdk/asic/pd.h"

#include <algorithm>

namespace {

using namespace halden;
using namespace halden::test;
using host::memory;
using host::row_change;

bytes kept(std::span<const uint8_t> image) { return {image.begin(), image.end()}; }
bytes padded(bytes image, size_t size) {
    image.resize(size);
    return image;
}

struct seen {
    memory where;
    uint32_t table, row;
    uint16_t old_bits;
    bytes old_image;
    uint16_t new_bits;
    bytes new_image;
};

class Observer : public AdapterTest {
  protected:
    void SetUp() override {
        AdapterTest::SetUp();
        adapter_->set_observer([this](const row_change &change) {
            changes_.push_back({change.where, change.table, change.row, change.old_bits,
                                kept(change.old_image), change.new_bits, kept(change.new_image)});
        });
    }
    sdk_ret_t put(uint32_t table, uint32_t row, const bytes &image) {
        return adapter_->sram_write(table, row, image.data(),
                                    static_cast<uint16_t>(image.size() * 8), nullptr);
    }
    std::vector<seen> changes_;
};

TEST_F(Observer, SeesAnSramRowBeforeAndAfter) {
    put(16, 5, {1, 2});
    put(16, 5, {3, 4, 5, 6});
    ASSERT_EQ(changes_.size(), 2u);
    EXPECT_EQ(changes_[0].where, memory::sram);
    EXPECT_EQ(changes_[0].table, 16u);
    EXPECT_EQ(changes_[0].row, 5u);
    EXPECT_EQ(changes_[0].old_bits, 0);
    EXPECT_EQ(changes_[0].old_image, bytes(64));
    EXPECT_EQ(changes_[0].new_bits, 16);
    EXPECT_EQ(changes_[0].new_image, padded({1, 2}, 64));
    EXPECT_EQ(changes_[1].old_bits, 16);
    EXPECT_EQ(changes_[1].old_image, padded({1, 2}, 64));
    EXPECT_EQ(changes_[1].new_bits, 32);
    EXPECT_EQ(changes_[1].new_image, padded({3, 4, 5, 6}, 64));
}

TEST_F(Observer, SeesAnOverflowWriteInTheOwnersWindow) {
    put(7, 4101, {1, 2});
    ASSERT_EQ(changes_.size(), 1u);
    EXPECT_EQ(changes_[0].table, 3u);
    EXPECT_EQ(changes_[0].row, 4101u);
}

TEST_F(Observer, SeesBothImagesOfATcamRow) {
    const bytes x(4, 0x11), y(4, 0x22);
    adapter_->tcam_write(7, 3, x.data(), y.data(), 32);
    ASSERT_EQ(changes_.size(), 1u);
    EXPECT_EQ(changes_[0].where, memory::tcam);
    EXPECT_EQ(changes_[0].table, 7u);
    EXPECT_EQ(changes_[0].row, 3u);
    EXPECT_EQ(changes_[0].new_bits, 32);
    bytes wanted(64);
    std::copy(x.begin(), x.end(), wanted.begin());
    std::copy(y.begin(), y.end(), wanted.begin() + 32);
    EXPECT_EQ(changes_[0].new_image, wanted);
}

TEST_F(Observer, SeesSmallAndFlowRowsOfHbm) {
    const bytes image(117, 0x5c);
    adapter_->hbm_write(21, 3, image.data(), 328);
    adapter_->hbm_write(2, 4, image.data(), 933);
    adapter_->clear_row(2, 4);
    ASSERT_EQ(changes_.size(), 3u);
    EXPECT_EQ(changes_[0].where, memory::hbm);
    EXPECT_EQ(changes_[0].table, 21u);
    EXPECT_EQ(changes_[0].new_bits, 328);
    EXPECT_EQ(changes_[0].new_image, padded(bytes(41, 0x5c), 64));
    EXPECT_EQ(changes_[1].table, 2u);
    EXPECT_EQ(changes_[1].old_bits, 0);
    EXPECT_EQ(changes_[1].new_bits, 1024);
    EXPECT_EQ(changes_[1].new_image, padded(image, 128));
    EXPECT_EQ(changes_[2].old_bits, 1024);
    EXPECT_EQ(changes_[2].old_image, padded(image, 128));
    EXPECT_EQ(changes_[2].new_bits, 0);
    EXPECT_EQ(changes_[2].new_image, bytes(128));
}

// Hardware must never match a row whose data is not there: data first, TCAM first when clearing.
TEST_F(Observer, SeesTheOrderOfAnEntrysWrites) {
    tunnel_terminate_v4_swkey_t key = {}, mask = {};
    tunnel_terminate_v4_actiondata_t data = {};
    ASSERT_EQ(p4pd_entry_install(8, 6, &key, &mask, &data), 0);
    ASSERT_EQ(adapter_->clear_row(8, 6), SDK_RET_OK);
    ASSERT_EQ(changes_.size(), 4u);
    EXPECT_EQ(changes_[0].where, memory::sram);
    EXPECT_EQ(changes_[1].where, memory::tcam);
    EXPECT_EQ(changes_[1].new_bits, 128);
    EXPECT_EQ(changes_[2].where, memory::tcam);
    EXPECT_EQ(changes_[2].new_bits, 0);
    EXPECT_EQ(changes_[3].where, memory::sram);
    EXPECT_EQ(changes_[3].new_bits, 0);
}

TEST_F(Observer, IsCalledWhenTheRowHasChangedAlready) {
    uint16_t bits = 0;
    bytes image = room();
    adapter_->set_observer([&](const row_change &change) {
        adapter_->sram_read(change.table, change.row, image.data(), &bits);
    });
    put(16, 5, {7, 8});
    EXPECT_EQ(bits, 16);
    EXPECT_EQ(image[0], 7);
}

TEST_F(Observer, SeesNoReadAndNoWriteThatWasRefused) {
    uint16_t bits = 0;
    bytes image = room();
    put(16, 1024, {1, 2});
    adapter_->sram_read(16, 0, image.data(), &bits);
    adapter_->faults().inject({.call = host::asic_call::sram_write});
    put(16, 0, {1, 2});
    EXPECT_TRUE(changes_.empty());
}

TEST_F(Observer, AnEmptyFunctionEndsItAlsoFromInside) {
    unsigned calls = 0;
    adapter_->set_observer([&](const row_change &) {
        ++calls;
        adapter_->set_observer({});
    });
    put(16, 0, {1, 2});
    put(16, 1, {1, 2});
    EXPECT_EQ(calls, 1u);
}

// --- Adapters beside one another -----------------------------------------------------------------

lif_mapping_actiondata_t lif(uint16_t src_lport) {
    lif_mapping_actiondata_t out = {};
    out.action_u.lif_mapping.src_lport = src_lport;
    return out;
}
uint16_t stored_lport(uint32_t row) {
    lif_mapping_actiondata_t out = {};
    EXPECT_EQ(p4pd_entry_read(16, row, nullptr, nullptr, &out, nullptr, false), 0);
    return out.action_u.lif_mapping.src_lport;
}
void install(uint32_t row, uint16_t src_lport) {
    lif_mapping_actiondata_t data = lif(src_lport);
    ASSERT_EQ(p4pd_entry_install(16, row, nullptr, nullptr, &data), 0);
}

TEST(TwoAdapters, KeepTheirOwnEntries) {
    const auto first = host::adapter::anonymous(), second = host::adapter::anonymous();
    {
        const host::scoped_current use(*first);
        install(5, 0x111);
        {
            const host::scoped_current use_other(*second);
            EXPECT_EQ(stored_lport(5), 0);
            install(5, 0x222);
            install(6, 0x333);
        }
        EXPECT_EQ(stored_lport(5), 0x111);
        EXPECT_EQ(stored_lport(6), 0);
    }
    EXPECT_EQ(second->next_used(16, 6), 6u);
    EXPECT_EQ(first->next_used(16, 6), 1024u);
}

TEST(TwoAdapters, HaveDepthsOfTheirOwn) {
    const auto small = host::adapter::anonymous({.flow_rows = 4, .flow_ohash_rows = 2});
    const auto full = host::adapter::anonymous();
    EXPECT_EQ(small->depth(2), 4u);
    EXPECT_EQ(small->depth(1), 2u);
    EXPECT_EQ(full->depth(2), 4194304u);
    EXPECT_EQ(full->depth(1), 2097152u);
    EXPECT_EQ(small->depth(16), full->depth(16));
    EXPECT_EQ(small->depth(0), 0u);
    EXPECT_EQ(small->depth(49), 0u);
}

TEST(TwoAdapters, OneAdaptersObserverDoesNotSeeTheOther) {
    const auto watched = host::adapter::anonymous(), other = host::adapter::anonymous();
    unsigned changes = 0;
    watched->set_observer([&](const row_change &) { ++changes; });
    const host::scoped_current use(*other);
    install(5, 1);
    EXPECT_EQ(changes, 0u);
}

TEST(CurrentAdapter, WithoutOneADefaultIsMadeOnce) {
    ASSERT_EQ(host::set_current(nullptr), nullptr);
    host::adapter &made = host::current();
    EXPECT_EQ(&host::current(), &made);
    EXPECT_EQ(made.directory(), "");
    const auto other = host::adapter::anonymous();
    EXPECT_EQ(host::set_current(other.get()), nullptr);
    EXPECT_EQ(&host::current(), other.get());
    EXPECT_EQ(host::set_current(nullptr), other.get());
    EXPECT_EQ(&host::current(), &made);
}

// --- Depths an adapter may have ------------------------------------------------------------------

TEST(AdapterOptions, AreRefusedUnlessPowersOfTwoUpToThePipelines) {
    using host::adapter;
    EXPECT_EQ(message_of([] { adapter::anonymous({.flow_rows = 3}); }),
              "flow_rows 3: must be a power of two up to 4194304");
    EXPECT_EQ(message_of([] { adapter::anonymous({.flow_rows = 0}); }),
              "flow_rows 0: must be a power of two up to 4194304");
    EXPECT_EQ(message_of([] { adapter::anonymous({.flow_rows = 8388608}); }),
              "flow_rows 8388608: must be a power of two up to 4194304");
    EXPECT_EQ(message_of([] { adapter::anonymous({.flow_ohash_rows = 4194304}); }),
              "flow_ohash_rows 4194304: must be a power of two up to 2097152");
    EXPECT_EQ(message_of([] { adapter::anonymous({.flow_rows = 1, .flow_ohash_rows = 1}); }), "");
}

}  // namespace
