// What was written comes back: through the writers and the readers, with the adapter's bit routines
// between them and a memory of rows beneath.

#include <random>

#include "gtest/gtest.h"
#include "p4pd.h"
#include "tests/read/row_memory.h"

namespace halden::read_tests {
namespace {

bytes operator&(bytes left, const bytes &right) {
    for (size_t i = 0; i < left.size(); ++i) left[i] &= right.at(i);
    return left;
}

class ReadBack : public testing::TestWithParam<uint32_t> {
  protected:
    uint32_t id() const { return GetParam(); }
    const reference::table &facts() const { return reference::table_of(id()); }
    bytes record(size_t size) {
        bytes out(size);
        for (uint8_t &byte : out) byte = static_cast<uint8_t>(random_());
        return out;
    }
    p4pd_error_t read(uint32_t index) {
        key_ = bytes(facts().key_bytes, 0xa5);
        mask_ = bytes(facts().key_bytes, 0xa5);
        data_ = bytes(facts().data_bytes, 0xa5);
        return p4pd_entry_read(id(), index, key_.data(), mask_.data(), data_.data(), nullptr,
                               false);
    }

    row_memory memory_;
    std::mt19937 random_{GetParam()};
    bytes key_, mask_, data_;
};

// Bits that the hardware has no room for are gone; a TCAM's key has lost what its mask hides.
TEST_P(ReadBack, AnEntryOfEveryAction) {
    for (uint32_t action = 0; action < facts().actions; ++action)
        for (unsigned turn = 0; turn < 20; ++turn) {
            bytes key = record(facts().key_bytes), mask = record(facts().key_bytes);
            bytes data = record(facts().data_bytes);
            data[0] = static_cast<uint8_t>(action);
            const uint32_t index = 40 + turn;
            ASSERT_EQ(p4pd_entry_install(id(), index, key.data(), mask.data(), data.data()), 0);
            ASSERT_EQ(read(index), 0);
            if (facts().has_key()) {
                const bytes kept = key & kept_key_bits(id());
                EXPECT_EQ(key_, facts().has_tcam() ? kept & mask : kept);
            }
            if (facts().has_tcam()) {
                EXPECT_EQ(mask_, mask & kept_key_bits(id()));
            }
            // A keyless row has no bits at all, so it reads as an empty one.
            if (facts().kind == kind::keyless) {
                EXPECT_EQ(data_, bytes(facts().data_bytes, 0xa5));
                continue;
            }
            bytes want(facts().data_bytes, 0xa5);
            want[0] = static_cast<uint8_t>(action);
            for (const data_field &field : data_fields(id(), action))
                for (uint32_t i = 0; i < field.size; ++i)
                    want[field.first_byte + i] = data[field.first_byte + i] &
                                                 kept_data_bits(id(), action)[field.first_byte + i];
            EXPECT_EQ(data_, want) << "action " << action;
        }
}

INSTANTIATE_TEST_SUITE_P(Tables, ReadBack, testing::Range(1u, 49u),
                         [](const auto &tested) { return table_name(tested.param); });

class ReadBackTcam : public ReadBack {};

// Written with key K and mask M, an entry yields K and M as key and M as mask: key bits outside the
// mask read back as 0.
TEST_P(ReadBackTcam, KeyBitsOutsideTheMaskReadAsZero) {
    const bytes hardware = kept_key_bits(id());
    for (const uint8_t m : {uint8_t{0}, uint8_t{0x0f}, uint8_t{0x55}, uint8_t{0xff}}) {
        bytes key(facts().key_bytes, 0xff), mask(facts().key_bytes, m), data(facts().data_bytes);
        ASSERT_EQ(p4pd_entry_install(id(), 3, key.data(), mask.data(), data.data()), 0);
        ASSERT_EQ(read(3), 0);
        EXPECT_EQ(key_, mask & hardware);
        EXPECT_EQ(mask_, mask & hardware);
    }
}

// A zero that is matched is told from a bit that is not looked at.
TEST_P(ReadBackTcam, AMatchedZeroKeepsItsMask) {
    bytes key(facts().key_bytes), mask(facts().key_bytes, 0xff), data(facts().data_bytes);
    ASSERT_EQ(p4pd_entry_install(id(), 3, key.data(), mask.data(), data.data()), 0);
    ASSERT_EQ(read(3), 0);
    EXPECT_EQ(key_, bytes(facts().key_bytes));
    EXPECT_EQ(mask_, kept_key_bits(id()));
}

TEST_P(ReadBackTcam, ARowThatWasNeverWrittenFails) {
    EXPECT_EQ(read(9), -1);
    EXPECT_EQ(key_, bytes(facts().key_bytes, 0xa5));
    EXPECT_EQ(mask_, bytes(facts().key_bytes, 0xa5));
    EXPECT_EQ(data_, bytes(facts().data_bytes, 0xa5));
}

INSTANTIATE_TEST_SUITE_P(Tables, ReadBackTcam, testing::Range(7u, 16u),
                         [](const auto &tested) { return table_name(tested.param); });

// Values read off by eye: the inverse of one known image of each kind.
TEST(ReadBackKnown, AVlanMappingRow) {
    row_memory memory;
    vlan_mapping_swkey_t key = {0x0abc, 0x0def};
    vlan_mapping_actiondata_t data = {};
    data.action_u.vlan_mapping.rmac_vrf = 0x0123;
    data.action_u.vlan_mapping.l2seg = 0x0456;
    ASSERT_EQ(p4pd_entry_install(3, 1, &key, nullptr, &data), 0);
    key = {0xffff, 0xffff};
    data = {0xff, {{0xffff, 0xffff}}};
    ASSERT_EQ(p4pd_entry_read(3, 1, &key, nullptr, &data, nullptr, false), 0);
    EXPECT_EQ(uint16_t{key.vlan_id}, 0x0abc);
    EXPECT_EQ(uint16_t{key.l2seg}, 0x0def);
    EXPECT_EQ(data.action_id, 0);
    EXPECT_EQ(uint16_t{data.action_u.vlan_mapping.rmac_vrf}, 0x0123);
    EXPECT_EQ(uint16_t{data.action_u.vlan_mapping.l2seg}, 0x0456);
}

// A flow entry of an action the table has not is written without data and read as action 0.
TEST(ReadBackKnown, AFlowWrittenWithAnotherActionReadsAsActionZeroWithoutData) {
    row_memory memory;
    flow_swkey_t key = {};
    key.metadata_flow_key_vni = 0xff123456;
    key.metadata_flow_key_port_id = 0x7ff;
    flow_actiondata_t data = {};
    data.action_id = 1;
    data.action_u.flow_hash.flow_idx = 0x3fffff;
    data.action_u.flow_hash.entry_valid = 1;
    ASSERT_EQ(p4pd_entry_install(2, 1, &key, nullptr, &data), 0);
    key = {};
    ASSERT_EQ(p4pd_entry_read(2, 1, &key, nullptr, &data, nullptr, false), 0);
    EXPECT_EQ(uint32_t{key.metadata_flow_key_vni}, 0x123456u);
    EXPECT_EQ(uint16_t{key.metadata_flow_key_port_id}, 0x7ff);
    EXPECT_EQ(data.action_id, 0);
    EXPECT_EQ(uint32_t{data.action_u.flow_hash.flow_idx}, 0u);
    EXPECT_EQ(data.action_u.flow_hash.entry_valid, 0);
}

}  // namespace
}  // namespace halden::read_tests
