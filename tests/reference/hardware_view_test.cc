// What was written is what hardware matches: the adapter's own view finds an entry by its packet's
// key and misses it by a key with any one bit changed.

#include "host/view/lookup.h"

#include "p4pd.h"
#include "sdk/asic/pd.h"
#include "tests/reference/model.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>

namespace {

using namespace halden;
using host::view::answer;
using reference::bytes;
using reference::kind;

constexpr uint32_t image_room = 128;

class HardwareView : public testing::TestWithParam<uint32_t> {
  protected:
    uint32_t id() const { return GetParam(); }
    const reference::table &facts() const { return reference::table_of(id()); }
    uint32_t number(uint32_t below) { return static_cast<uint32_t>(random_() % below); }

    bytes random_record(uint32_t size) {
        bytes out(size);
        for (uint8_t &byte : out) byte = static_cast<uint8_t>(random_());
        return out;
    }
    bytes action_record() {
        bytes out = random_record(facts().data_bytes);
        out[0] = static_cast<uint8_t>(number(facts().actions));
        return out;
    }
    uint8_t pc_of(const bytes &data) const {
        return facts().actions == 1 ? reference::no_pc
                                    : sdk::asic::pd::asicpd_get_action_pc(id(), data[0]);
    }

    // The key of a packet that has the record's values.
    bytes packet_key(const bytes &key) const {
        const bytes exact(key.size(), 0xff);
        return reference::build_key(id(), key, exact, image_room).key;
    }
    void install(uint32_t row, bytes key, bytes mask, bytes data) {
        ASSERT_EQ(p4pd_entry_install(id(), row, key.data(), mask.data(), data.data()), 0);
    }
    answer look_up(const bytes &key_image) {
        return host::view::lookup(*adapter_, id(), key_image.data());
    }
    void expect_hit(const answer &found, uint32_t row, const bytes &key_image, const bytes &data) {
        ASSERT_TRUE(found.hit);
        ASSERT_EQ(found.table, id());
        ASSERT_EQ(found.row, row);
        reference::image wanted = reference::entry(id(), pc_of(data), key_image, data);
        wanted.data.resize((wanted.bits + 7) / 8);
        ASSERT_EQ(found.bits, wanted.bits);
        ASSERT_EQ(found.image, wanted.data);
    }

    std::mt19937_64 random_{GetParam()};
    std::unique_ptr<host::adapter> adapter_ = host::adapter::anonymous();
    host::scoped_current current_{*adapter_};
};

void flip(bytes &image, uint32_t bit) {
    reference::put_bit(image, bit, !reference::image_bit(image, bit));
}

// --- Hash rows -----------------------------------------------------------------------------------

class HashView : public HardwareView {};

TEST_P(HashView, FindsAKeyAndNoOtherInItsRow) {
    for (unsigned round = 0; round < 20; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        const bytes key = random_record(facts().key_bytes), data = action_record();
        bytes packet = packet_key(key);
        ASSERT_FALSE(look_up(packet).hit);
        const uint32_t row = look_up(packet).hashed_row;
        install(row, key, {}, data);
        expect_hit(look_up(packet), row, packet, data);
        if (HasFatalFailure()) return;

        for (uint32_t bit = 0; bit < facts().key_bits; ++bit) {
            flip(packet, bit);
            // The entry stands in the other key's row as well: only the comparison tells them
            // apart.
            const uint32_t other_row = look_up(packet).hashed_row;
            install(other_row, key, {}, data);
            const answer found = look_up(packet);
            ASSERT_TRUE(found.row_in_use) << "bit " << bit;
            ASSERT_FALSE(found.hit) << "bit " << bit;
            adapter_->clear_row(id(), other_row);
            flip(packet, bit);
        }
        adapter_->clear_row(id(), row);
    }
}

INSTANTIATE_TEST_SUITE_P(Tables, HashView, testing::Range(3u, 7u), [](const auto &tested) {
    return std::string(reference::table_of(tested.param).name);
});

// --- TCAM rows -----------------------------------------------------------------------------------

class TcamView : public HardwareView {
  protected:
    // Exact, random, sparse and empty masks.
    bytes random_mask(unsigned taste) {
        bytes out = random_record(facts().key_bytes);
        for (uint8_t &byte : out) {
            if (taste == 0) byte = 0xff;
            if (taste == 2) byte &= static_cast<uint8_t>(random_() & random_());
            if (taste == 3) byte = 0;
        }
        return out;
    }
};

TEST_P(TcamView, FindsAKeyAndItsDontCareNeighboursOnly) {
    for (unsigned round = 0; round < 40; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        const bytes key = random_record(facts().key_bytes), mask = random_mask(round % 4);
        const bytes data = action_record();
        bytes packet = packet_key(key);
        ASSERT_FALSE(look_up(packet).hit);
        const uint32_t row = number(adapter_->depth(id()));
        install(row, key, mask, data);
        expect_hit(look_up(packet), row, packet, data);
        if (HasFatalFailure()) return;

        const bytes cared_for = packet_key(mask);
        for (uint32_t bit = 0; bit < facts().key_bits; ++bit) {
            flip(packet, bit);
            ASSERT_EQ(look_up(packet).hit, !reference::image_bit(cared_for, bit)) << "bit " << bit;
            flip(packet, bit);
        }
        adapter_->clear_row(id(), row);
        ASSERT_FALSE(look_up(packet).hit);
    }
}

TEST_P(TcamView, TheLowestRowThatMatchesWins) {
    const bytes key = random_record(facts().key_bytes), any(facts().key_bytes);
    const bytes exact(facts().key_bytes, 0xff), low = action_record(), high = action_record();
    const bytes packet = packet_key(key);
    install(9, key, exact, high);
    expect_hit(look_up(packet), 9, packet, high);
    install(4, key, any, low);
    expect_hit(look_up(packet), 4, packet, low);
}

INSTANTIATE_TEST_SUITE_P(Tables, TcamView, testing::Range(7u, 16u), [](const auto &tested) {
    return std::string(reference::table_of(tested.param).name);
});

// --- Hash tables and their overflow --------------------------------------------------------------

class OverflowView : public HardwareView {
  protected:
    uint32_t owner() const {
        switch (id()) {
            case 7:
                return 3;
            case 10:
                return 4;
            case 11:
                return 5;
            default:
                return 6;
        }
    }
};

TEST_P(OverflowView, APacketOfTheHashTableFindsItsOverflowEntry) {
    const bytes key = random_record(facts().key_bytes), exact(facts().key_bytes, 0xff);
    const bytes data = action_record();
    bytes packet = packet_key(key);
    install(17, key, exact, data);
    expect_hit(host::view::lookup(*adapter_, owner(), packet.data()), 17, packet, data);
    for (uint32_t bit = 0; bit < facts().key_bits; ++bit) {
        flip(packet, bit);
        EXPECT_FALSE(host::view::lookup(*adapter_, owner(), packet.data()).hit) << bit;
        flip(packet, bit);
    }
    // An entry in the hash row goes first.
    bytes own_key = key, own_data = data;
    const uint32_t row = host::view::lookup(*adapter_, owner(), packet.data()).hashed_row;
    ASSERT_EQ(p4pd_entry_install(owner(), row, own_key.data(), nullptr, own_data.data()), 0);
    const answer found = host::view::lookup(*adapter_, owner(), packet.data());
    EXPECT_TRUE(found.hit);
    EXPECT_EQ(found.table, owner());
    EXPECT_EQ(found.row, row);
}

INSTANTIATE_TEST_SUITE_P(Tables, OverflowView, testing::Values(7u, 10u, 11u, 14u),
                         [](const auto &tested) {
                             return std::string(reference::table_of(tested.param).name);
                         });

}  // namespace
