// The flow tables in the hardware's own view: directly, and through each hint slot of another
// entry.

#include "host/view/lookup.h"

#include "p4pd.h"
#include "tests/reference/model.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>

namespace {

using namespace halden;
using host::view::answer;
using reference::bytes;

constexpr uint32_t flow_ohash = 1, flow = 2;
constexpr uint32_t image_room = 128;

bool is_key_bit(uint32_t bit) { return bit <= 471 || (bit >= 544 && bit <= 671); }

void flip(bytes &image, uint32_t bit) {
    reference::put_bit(image, bit, !reference::image_bit(image, bit));
}

// CRC-32 of the row with nothing but the key, bit by bit: polynomial 0x04c11db7, highest bit first,
// from 0, not inverted.
uint32_t hash_of(const bytes &key_image) {
    uint32_t crc = 0;
    for (uint32_t bit = 0; bit < 1024; ++bit) {
        const bool in = is_key_bit(bit) && reference::image_bit(key_image, bit);
        const bool out = (crc >> 31 != 0) != in;
        crc = crc << 1 ^ (out ? 0x04c11db7u : 0);
    }
    return crc;
}

class FlowView : public testing::Test {
  protected:
    bytes random_record(uint32_t size) {
        bytes out(size);
        for (uint8_t &byte : out) byte = static_cast<uint8_t>(random_());
        return out;
    }
    // Valid, with a random flow_idx and no hints.
    bytes plain_data() {
        bytes out(59);
        for (uint32_t i = 1; i <= 4; ++i) out[i] = static_cast<uint8_t>(random_());
        out[58] = 1;
        return out;
    }
    static bytes packet_key(const bytes &key) {
        return reference::build_key(flow, key, {}, image_room).key;
    }
    static void install(uint32_t table, uint32_t row, bytes key, bytes data) {
        ASSERT_EQ(p4pd_entry_install(table, row, key.data(), nullptr, data.data()), 0);
    }
    answer look_up(const bytes &packet) {
        return host::view::lookup(*adapter_, flow, packet.data());
    }
    static uint32_t row_of(const bytes &packet) { return hash_of(packet) >> 10; }
    void expect_hit(const answer &found, uint32_t table, uint32_t row, const bytes &packet,
                    const bytes &data) {
        ASSERT_TRUE(found.hit);
        ASSERT_EQ(found.table, table);
        ASSERT_EQ(found.row, row);
        ASSERT_EQ(found.image, reference::entry(table, reference::no_pc, packet, data).data);
    }

    std::mt19937_64 random_{11};
    std::unique_ptr<host::adapter> adapter_ = host::adapter::anonymous();
    host::scoped_current current_{*adapter_};
};

TEST_F(FlowView, FindsAKeyAndNoOtherInItsRow) {
    for (unsigned round = 0; round < 4; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        const bytes key = random_record(77), data = plain_data();
        bytes packet = packet_key(key);
        ASSERT_FALSE(look_up(packet).hit);
        ASSERT_EQ(look_up(packet).hashed_row, row_of(packet));
        install(flow, row_of(packet), key, data);
        expect_hit(look_up(packet), flow, row_of(packet), packet, data);
        if (HasFatalFailure()) return;
        unsigned key_bits = 0;
        for (uint32_t bit = 0; bit < 672; ++bit) {
            flip(packet, bit);
            if (is_key_bit(bit)) {
                ++key_bits;
                install(flow, row_of(packet), key, data);
                const answer found = look_up(packet);
                ASSERT_TRUE(found.row_in_use) << "bit " << bit;
                ASSERT_FALSE(found.hit) << "bit " << bit;
                adapter_->clear_row(flow, row_of(packet));
            } else {
                // The gap between the two parts of the key is no key.
                ASSERT_TRUE(look_up(packet).hit) << "bit " << bit;
            }
            flip(packet, bit);
        }
        ASSERT_EQ(key_bits, 600u);
        adapter_->clear_row(flow, row_of(packet));
    }
}

TEST_F(FlowView, MissesAnEntryThatIsNotValid) {
    const bytes key = random_record(77);
    bytes data = plain_data();
    data[58] = 0;
    const bytes packet = packet_key(key);
    install(flow, row_of(packet), key, data);
    EXPECT_FALSE(look_up(packet).hit);
    EXPECT_TRUE(look_up(packet).row_in_use);
}

// First byte of a slot's hash and of its hint in the record.
uint32_t hash_at(uint32_t slot) { return slot == 9 ? 53 : 6 * slot - 1; }
uint32_t hint_at(uint32_t slot) { return slot == 9 ? 54 : 6 * slot + 1; }

// `data` with a slot that leads on to an overflow row; slot 9 leads on whatever the hash is.
bytes leading(bytes data, uint32_t slot, uint32_t hash, uint32_t hint) {
    const uint32_t low = slot == 9 ? 1 : hash & 0x3ff;
    data[hash_at(slot)] = static_cast<uint8_t>(low);
    if (slot != 9) data[hash_at(slot) + 1] = static_cast<uint8_t>(low >> 8);
    for (uint32_t i = 0; i < 4; ++i) data[hint_at(slot) + i] = static_cast<uint8_t>(hint >> 8 * i);
    return data;
}

class FlowOverflowView : public FlowView, public testing::WithParamInterface<uint32_t> {};

TEST_P(FlowOverflowView, TheSlotLeadsToTheKeyAndToNoOther) {
    const bytes key = random_record(77), other = random_record(77);
    const bytes data = plain_data();
    bytes packet = packet_key(key);
    const uint32_t overflow_row = 0x12345;
    install(flow_ohash, overflow_row, key, data);
    ASSERT_FALSE(look_up(packet).hit);
    install(flow, row_of(packet), other,
            leading(plain_data(), GetParam(), hash_of(packet), overflow_row));
    expect_hit(look_up(packet), flow_ohash, overflow_row, packet, data);
    if (HasFatalFailure()) return;

    for (uint32_t bit = 0; bit < 672; ++bit) {
        if (!is_key_bit(bit)) continue;
        flip(packet, bit);
        install(flow, row_of(packet), other,
                leading(plain_data(), GetParam(), hash_of(packet), overflow_row));
        ASSERT_FALSE(look_up(packet).hit) << "bit " << bit;
        adapter_->clear_row(flow, row_of(packet));
        flip(packet, bit);
    }
    if (GetParam() == 9) return;
    // Any one bit of the slot's hash off, and the way ends.
    for (uint32_t bit = 0; bit < 10; ++bit) {
        install(flow, row_of(packet), other,
                leading(plain_data(), GetParam(), hash_of(packet) ^ 1u << bit, overflow_row));
        ASSERT_FALSE(look_up(packet).hit) << "hash bit " << bit;
    }
}

INSTANTIATE_TEST_SUITE_P(Slots, FlowOverflowView, testing::Range(1u, 10u));

}  // namespace
