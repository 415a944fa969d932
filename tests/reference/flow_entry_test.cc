// The row that a flow write leaves in HBM is the body of a flow entry with its 128 bytes reversed:
// bit n of the body is bit 1023 - n of the row.

#include "ftl/flow_hash_entry.h"
#include "host/adapter.h"
#include "p4pd.h"
#include "tests/reference/model.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>

namespace {

using namespace halden;
using reference::bytes;

enum from { key, data };

// Where a field of the records stands in the body of the entry.
struct body_field {
    const char *name;
    from record;
    uint32_t byte;         // first, in the record
    uint32_t record_bits;  // room in the record
    uint32_t lowest;       // bit of the body
    uint32_t width;        // bits of the body
};

constexpr body_field body_fields[] = {
    {"entry_valid", data, 58, 8, 91, 1},
    {"more_hints", data, 54, 32, 92, 21},
    {"more_hashes", data, 53, 8, 113, 1},
    {"hint8", data, 49, 32, 114, 21},
    {"hash8", data, 47, 16, 135, 10},
    {"hint7", data, 43, 32, 145, 21},
    {"hash7", data, 41, 16, 166, 10},
    {"hint6", data, 37, 32, 176, 21},
    {"hash6", data, 35, 16, 197, 10},
    {"hint5", data, 31, 32, 207, 21},
    {"hash5", data, 29, 16, 228, 10},
    {"hint4", data, 25, 32, 238, 21},
    {"hash4", data, 23, 16, 259, 10},
    {"hint3", data, 19, 32, 269, 21},
    {"hash3", data, 17, 16, 290, 10},
    {"hint2", data, 13, 32, 300, 21},
    {"hash2", data, 11, 16, 321, 10},
    {"hint1", data, 7, 32, 331, 21},
    {"metadata_flow_key_sip", key, 61, 128, 352, 128},
    {"hash1", data, 5, 16, 480, 10},
    {"flow_idx", data, 1, 32, 490, 22},
    {"metadata_flow_key_dip", key, 45, 128, 552, 128},
    {"metadata_flow_key_sport", key, 43, 16, 680, 16},
    {"metadata_flow_key_dport", key, 41, 16, 696, 16},
    {"metadata_flow_key_smac", key, 35, 48, 712, 48},
    {"metadata_flow_key_dmac", key, 29, 48, 760, 48},
    {"metadata_flow_key_ktype", key, 28, 8, 808, 8},
    {"metadata_flow_key_port_id", key, 26, 16, 816, 11},
    {"metadata_flow_key_rsvd", key, 25, 8, 827, 5},
    {"metadata_flow_key_outer_flow_id", key, 23, 16, 832, 16},
    {"metadata_flow_key_vni", key, 19, 32, 848, 24},
    {"metadata_flow_key_vlan", key, 17, 16, 872, 16},
    {"metadata_flow_key_proto", key, 16, 8, 888, 8},
    {"metadata_flow_key_spare", key, 0, 128, 896, 128},
};

class FlowEntry : public testing::TestWithParam<uint32_t> {
  protected:
    // Writes one entry and returns its row; empty when the row was left empty.
    bytes written(bytes key_record, bytes data_record) {
        const uint32_t row = next_row_++;
        EXPECT_EQ(
            p4pd_entry_install(GetParam(), row, key_record.data(), nullptr, data_record.data()), 0);
        bytes out(128);
        uint16_t bits = 1;
        EXPECT_EQ(adapter_->hbm_read(GetParam(), row, out.data(), &bits), SDK_RET_OK);
        EXPECT_TRUE(bits == 1024 || bits == 0) << bits;
        return bits == 0 ? bytes() : out;
    }

    uint32_t next_row_ = 0;
    std::unique_ptr<host::adapter> adapter_ = host::adapter::anonymous();
    host::scoped_current current_{*adapter_};
};

TEST_P(FlowEntry, EveryRecordBitStandsAtItsBitOfTheReversedBody) {
    unsigned seen = 0;
    for (const body_field &field : body_fields) {
        for (uint32_t bit = 0; bit < field.record_bits; ++bit) {
            SCOPED_TRACE(std::string(field.name) + " bit " + std::to_string(bit));
            bytes key_record(77), data_record(59);
            bytes &record = field.record == key ? key_record : data_record;
            record[field.byte + bit / 8] = static_cast<uint8_t>(1u << bit % 8);
            bytes expected;
            if (bit < field.width) {
                const uint32_t body_bit = field.lowest + bit;
                expected.resize(128);
                expected[127 - body_bit / 8] = static_cast<uint8_t>(1u << body_bit % 8);
                ++seen;
            }
            ASSERT_EQ(written(key_record, data_record), expected);
        }
    }
    EXPECT_EQ(seen, 600u + 293u);
}

TEST_P(FlowEntry, TheEntryClassReadsWhatWasWritten) {
    std::mt19937_64 random(7);
    for (unsigned round = 0; round < 100; ++round) {
        SCOPED_TRACE(round);
        bytes key_record(77), data_record(59);
        for (uint8_t &byte : key_record) byte = static_cast<uint8_t>(random());
        for (uint8_t &byte : data_record) byte = static_cast<uint8_t>(random());
        data_record[0] = 0;
        const bytes row = written(key_record, data_record);
        ASSERT_EQ(row.size(), 128u);

        flow_hash_entry_t entry;
        std::reverse_copy(row.begin(), row.end(), entry.body());
        EXPECT_EQ(entry.get_entry_valid(), data_record[58] & 1);
        for (uint32_t slot = 1; slot <= 9; ++slot) {
            const uint32_t hash_at = slot == 9 ? 53 : 6 * slot - 1;
            const uint32_t hint_at = slot == 9 ? 54 : 6 * slot + 1;
            uint32_t hint = 0, hash = 0;
            entry.get_hint_hash(slot, hint, hash);
            EXPECT_EQ(hint, (data_record[hint_at] | data_record[hint_at + 1] << 8 |
                             data_record[hint_at + 2] << 16) &
                                0x1fffff);
            const int both = data_record[hash_at] | data_record[hash_at + 1] << 8;
            EXPECT_EQ(hash, both & (slot == 9 ? 1 : 0x3ff));
        }
    }
}

TEST_P(FlowEntry, AnActionWithoutDataLeavesTheKeyAlone) {
    bytes key_record(77, 0xff), data_record(59, 0xff);
    data_record[0] = 1;
    const bytes row = written(key_record, data_record);
    ASSERT_EQ(row.size(), 128u);
    for (uint32_t bit = 0; bit < 1024; ++bit)
        EXPECT_EQ(reference::image_bit(row, bit), bit <= 471 || (bit >= 544 && bit <= 671)) << bit;
}

INSTANTIATE_TEST_SUITE_P(Tables, FlowEntry, testing::Values(1u, 2u), [](const auto &tested) {
    return std::string(reference::table_of(tested.param).name);
});

}  // namespace
