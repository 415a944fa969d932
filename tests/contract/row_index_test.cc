// Rows of index tables: which bit of the key record goes to which bit of the row.

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "gtest/gtest.h"
#include "p4pd.h"
#include "tests/contract/named.h"

namespace halden::test {
namespace {

constexpr uint64_t no_row = ~uint64_t{0};

// Bit `bit` of record byte `byte` is bit `row_bit` of the row.
struct row_bit {
    unsigned byte, bit, row_bit;
};

struct index_record {
    const char *name;
    uint32_t id;
    size_t bytes;
    std::vector<row_bit> bits;
};

// A single field: its low bits, little-endian, are the row.
index_record low_bits(uint32_t id, const char *name, size_t bytes, unsigned count) {
    index_record r{name, id, bytes, {}};
    for (unsigned i = 0; i < count; ++i) r.bits.push_back({i / 8, i % 8, i});
    return r;
}

const index_record records[] = {
    low_bits(16, "lif_mapping", 2, 11),
    low_bits(17, "lif_vela_mapping", 2, 11),
    low_bits(18, "vlan_vela_mapping", 2, 12),
    low_bits(19, "vlan_vela_ctag_mapping", 2, 12),
    low_bits(20, "validate_packet_vela", 1, 3),
    low_bits(21, "flow_info", 4, 24),
    low_bits(22, "conntrack_ingress", 4, 22),
    low_bits(23, "conntrack_egress", 4, 22),
    low_bits(24, "l2seg", 2, 12),
    low_bits(25, "p4i_stats", 2, 12),
    low_bits(26, "lif_tx_stats", 2, 16),
    low_bits(27, "lport_tx_stats", 2, 16),
    low_bits(28, "ct_ingress_stats", 2, 12),
    low_bits(29, "ct_egress_stats", 2, 12),
    {"mirror_rewrite", 30, 2, {{0, 2, 3}, {0, 1, 2}, {0, 0, 1}, {1, 0, 0}}},
    {"mirror_rewrite_l3",
     31,
     3,
     {{0, 2, 12},
      {0, 1, 11},
      {0, 0, 10},
      {2, 1, 9},
      {2, 0, 8},
      {1, 7, 7},
      {1, 6, 6},
      {1, 5, 5},
      {1, 4, 4},
      {1, 3, 3},
      {1, 2, 2},
      {1, 1, 1},
      {1, 0, 0}}},
    low_bits(32, "flow_rewrite", 4, 24),
    low_bits(33, "nat_rewrite", 4, 22),
    low_bits(34, "tunnel_encap", 2, 13),
    low_bits(35, "ipfix_ingress", 4, 24),
    low_bits(36, "ipfix_egress", 4, 24),
    low_bits(37, "output_mapping", 2, 11),
    low_bits(38, "p4plus_app", 1, 4),
    low_bits(39, "p4e_stats", 2, 12),
    low_bits(40, "lport_rx_stats", 2, 16),
};

class RowIndex : public testing::TestWithParam<index_record> {
  protected:
    // The row of a record that lies at an odd address, in memory of its own.
    uint64_t row_of(const std::vector<uint8_t> &record) const {
        std::vector<uint8_t> memory(record.size() + 1);
        std::memcpy(memory.data() + 1, record.data(), record.size());
        return p4pd_index_to_hwindex_map(GetParam().id, memory.data() + 1);
    }
};

TEST_P(RowIndex, EachBitOfTheRecordHasItsPlaceOrNone) {
    for (unsigned byte = 0; byte < GetParam().bytes; ++byte) {
        for (unsigned bit = 0; bit < 8; ++bit) {
            std::vector<uint8_t> record(GetParam().bytes);
            record[byte] = static_cast<uint8_t>(1 << bit);
            uint64_t row = 0;
            for (const row_bit &r : GetParam().bits)
                if (r.byte == byte && r.bit == bit) row = uint64_t{1} << r.row_bit;
            EXPECT_EQ(row_of(record), row) << "byte " << byte << ", bit " << bit;
        }
    }
}

TEST_P(RowIndex, BitsAboveTheFieldsWidthAreDropped) {
    EXPECT_EQ(row_of(std::vector<uint8_t>(GetParam().bytes, 0xff)),
              (uint64_t{1} << GetParam().bits.size()) - 1);
}

// What stands behind the record is no part of it.
TEST_P(RowIndex, OnlyTheRecordIsRead) {
    std::vector<uint8_t> record(GetParam().bytes + 8, 0xff);
    std::fill_n(record.begin(), GetParam().bytes, uint8_t{0});
    EXPECT_EQ(p4pd_index_to_hwindex_map(GetParam().id, record.data()), 0u);
}

TEST_P(RowIndex, TheRecordIsLeftAlone) {
    std::vector<uint8_t> record(GetParam().bytes, 0x5a);
    p4pd_index_to_hwindex_map(GetParam().id, record.data());
    EXPECT_EQ(record, std::vector<uint8_t>(GetParam().bytes, 0x5a));
}

INSTANTIATE_TEST_SUITE_P(Tables, RowIndex, testing::ValuesIn(records), table_name);

TEST(RowIndexCases, LifMappingWithKey0x0fffIsRow2047) {
    uint16_t key = 0x0fff;
    EXPECT_EQ(p4pd_index_to_hwindex_map(16, &key), 2047u);
}

// The first field's three low bits stand above the second field's.
TEST(RowIndexCases, MirrorRewriteIsComposedOfBothFields) {
    std::array<uint8_t, 2> key{5, 0};
    EXPECT_EQ(p4pd_index_to_hwindex_map(30, key.data()), 10u);
    key = {0xf8, 0xfe};
    EXPECT_EQ(p4pd_index_to_hwindex_map(30, key.data()), 0u);
    key = {2, 1};
    EXPECT_EQ(p4pd_index_to_hwindex_map(30, key.data()), 5u);
}

TEST(RowIndexCases, MirrorRewriteL3IsComposedOfBothFields) {
    std::array<uint8_t, 3> key{5, 0x34, 0x02};
    EXPECT_EQ(p4pd_index_to_hwindex_map(31, key.data()), 5u * 1024 + 0x234);
    key = {0xf8, 0x00, 0xfc};
    EXPECT_EQ(p4pd_index_to_hwindex_map(31, key.data()), 0u);
}

// No other id has a row, and none of them reads the record.
TEST(RowIndexCases, IdsOutside16To40HaveNoRow) {
    void *unreadable = reinterpret_cast<void *>(uintptr_t{8});
    for (uint32_t id = 0; id <= 60; ++id) {
        if (id >= 16 && id <= 40) continue;
        EXPECT_EQ(p4pd_index_to_hwindex_map(id, unreadable), no_row) << id;
        EXPECT_EQ(p4pd_index_to_hwindex_map(id, nullptr), no_row) << id;
    }
    for (uint32_t id : {256u + 16, 0x80000010u, 0xffffffffu})
        EXPECT_EQ(p4pd_index_to_hwindex_map(id, unreadable), no_row) << id;
}

}  // namespace
}  // namespace halden::test
