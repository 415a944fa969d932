// The row of every index table, bit by bit, from random index records.

#include "p4pd.h"
#include "tests/reference/model.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace {

using namespace halden::reference;

// `width` bits of the record, from byte `byte` bit 0 upwards, are bits `to` and up of the row.
struct part {
    uint32_t byte;
    uint32_t width;
    uint32_t to;
};

struct index_layout {
    std::vector<uint32_t> tables;
    uint32_t record_bytes;
    std::vector<part> parts;
};

const index_layout layouts[] = {
    {{16, 17, 37}, 2, {{0, 11, 0}}},
    {{18, 19, 24, 25, 28, 29, 39}, 2, {{0, 12, 0}}},
    {{20}, 1, {{0, 3, 0}}},
    {{21, 32, 35, 36}, 4, {{0, 24, 0}}},
    {{22, 23, 33}, 4, {{0, 22, 0}}},
    {{26, 27, 40}, 2, {{0, 16, 0}}},
    {{30}, 2, {{0, 3, 1}, {1, 1, 0}}},
    {{31}, 3, {{0, 3, 10}, {1, 10, 0}}},
    {{34}, 2, {{0, 13, 0}}},
    {{38}, 1, {{0, 4, 0}}},
};

TEST(RowIndex, AgreesWithTheSlowModelForEveryIndexTable) {
    std::mt19937_64 random(3);
    unsigned tables_seen = 0;
    for (const index_layout &layout : layouts) {
        for (const uint32_t id : layout.tables) {
            ++tables_seen;
            for (unsigned round = 0; round < 1000; ++round) {
                // The record ends where the buffer ends.
                bytes record(layout.record_bytes);
                for (uint8_t &byte : record) byte = static_cast<uint8_t>(random());
                uint64_t row = 0;
                for (const part &p : layout.parts)
                    for (uint32_t i = 0; i < p.width; ++i)
                        if (record_bit(record, p.byte, i)) row |= uint64_t{1} << (p.to + i);
                ASSERT_EQ(p4pd_index_to_hwindex_map(id, record.data()), row) << "table " << id;
            }
        }
    }
    EXPECT_EQ(tables_seen, 25u);
}

TEST(RowIndex, IsAllOnesForEveryOtherId) {
    bytes record(16);
    for (const uint32_t id :
         {0u,  1u,  2u,  3u,  4u,  5u,  6u,  7u,  8u,  9u,  10u, 11u, 12u,
          13u, 14u, 15u, 41u, 42u, 43u, 44u, 45u, 46u, 47u, 48u, 49u, 0xffffffffu})
        EXPECT_EQ(p4pd_index_to_hwindex_map(id, record.data()), 0xffffffffffffffffu) << id;
}

}  // namespace
