#pragma once

// One read of one table against the recording host, from named buffers that are full of a filler.

#include <algorithm>
#include <cstdint>
#include <string>

#include "gtest/gtest.h"
#include "p4pd.h"
#include "tests/read/expected_reads.h"
#include "tests/support/recording_host.h"

namespace halden::read_tests {

inline constexpr uint8_t filler = 0xa5;
inline constexpr size_t record_room = 96;  // more than any record, so that an overrun shows

class ReaderTest : public testing::Test {
  protected:
    ReaderTest() {
        host.reset();
        host.name_buffer("key", key.data(), key.size());
        host.name_buffer("mask", mask.data(), mask.size());
        host.name_buffer("data", data.data(), data.size());
        host.name_buffer("extra", &extra, sizeof extra);
    }
    ~ReaderTest() override { host.reset(); }

    // Rows as `read` describes them, their bytes given by the tests.
    void answer_with(const read_of &read, bytes row, bytes x = {}, bytes y = {}) {
        if (row.empty()) row.resize(1);
        row[0] = read.program;
        host.on_action_id = [=](uint32_t, uint8_t) { return static_cast<uint8_t>(read.action); };
        host.on_read = [=, this](const char *name, uint32_t, uint32_t) {
            test::read_answer answer;
            answer.result = result;
            const bool ternary = std::string(name) == "asicpd_tcam_table_entry_read";
            answer.entry = ternary ? x : row;
            answer.mask = y;
            answer.bits = ternary ? read.width : read.bits;
            return answer;
        };
    }

    p4pd_error_t perform(const read_of &read) {
        host.forget_calls();
        return p4pd_entry_read(read.id, read.index, key.data(), mask.data(), data.data(), &extra,
                               read.flag);
    }

    // A read of a row that is not empty.
    static read_of full_read(uint32_t id, uint32_t action = 0) {
        const reference::table &facts = reference::table_of(id);
        const uint32_t bits = facts.data_bits + (has_programs(id) ? 8 : 0) + facts.key_bits;
        return {id,
                0x10000 + id,
                action,
                static_cast<uint8_t>(0x80 + action),
                static_cast<uint16_t>(std::max(bits, 8u)),
                static_cast<uint16_t>(facts.tcam_width),
                id % 2 == 0};
    }

    void fill_records() {
        for (bytes *record : {&key, &mask, &data}) record->assign(record_room, filler);
    }

    test::recording_host &host = test::recording_host::get();
    bytes key = bytes(record_room, filler);
    bytes mask = bytes(record_room, filler);
    bytes data = bytes(record_room, filler);
    int extra = 0;
    int result = 0;  // of every ASIC read
};

inline const bytes untouched = bytes(record_room, filler);

}  // namespace halden::read_tests
