// A thousand random entries of every action of every table: written to the adapter, read back, and
// printed both from the records read and from the rows as they stand in the adapter's memory.
//
// HALDEN_TEST_SEED gives the seed; a failure prints the one it ran with.

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <memory>
#include <string>

#include "host/adapter.h"
#include "p4pd.h"
#include "sdk/p4pd_global.h"
#include "sdk/p4pd_utils.h"
#include "tests/decode/slow_printer.h"
#include "tests/model/entries.h"

namespace halden::model_tests {
namespace {

using decode_tests::printed;
using decode_tests::records;

constexpr unsigned entries = 1000;
constexpr size_t image_room = 128;
constexpr uint16_t text_room = 4096;

uint64_t seed() {
    const char *given = std::getenv("HALDEN_TEST_SEED");
    return given != nullptr ? std::strtoull(given, nullptr, 0) : 20250311;
}

uint16_t whole_words(uint32_t bits) { return static_cast<uint16_t>((bits + 15) / 16 * 16); }

class RoundTrip : public testing::TestWithParam<uint32_t> {
  protected:
    uint32_t id() const { return GetParam(); }
    const reference::table &facts() const { return reference::table_of(id()); }

    void write(uint32_t index, entry written);
    entry read(uint32_t index);
    void expect_record_text(uint32_t index, const entry &read_back);
    void expect_row_text(uint32_t index, const entry &want);
    void expect_key_text(uint32_t index, const entry &want);
    std::string entry_text(uint32_t index, bytes &first, bytes *second, uint16_t bits);

    entry_source source_{seed() + GetParam()};
    std::unique_ptr<host::adapter> adapter_ = host::adapter::anonymous();
    host::scoped_current current_{*adapter_};
};

// Through one of the entry points that start from software records.
void RoundTrip::write(uint32_t index, entry written) {
    void *const key = written.key.data(), *const mask = written.mask.data();
    const bool five = id() <= 32 && source_.number(2) == 0;
    ASSERT_EQ(five ? p4pd_entry_write(id(), index, key, mask, written.data.data())
                   : p4pd_entry_install(id(), index, key, mask, written.data.data()),
              0);
}

entry RoundTrip::read(uint32_t index) {
    entry out = blank(id());
    const bool flag = source_.number(2) == 0;
    EXPECT_EQ(source_.number(2) == 0
                  ? p4pd_entry_read(id(), index, out.key.data(), out.mask.data(), out.data.data(),
                                    nullptr, flag)
                  : p4pd_global_entry_read(id(), index, out.key.data(), out.mask.data(),
                                           out.data.data(), nullptr, flag),
              0);
    return out;
}

void RoundTrip::expect_record_text(uint32_t index, const entry &read_back) {
    entry e = read_back;
    char text[text_room];
    ASSERT_EQ(p4pd_table_ds_decoded_string_get(id(), index, e.key.data(), e.mask.data(),
                                               e.data.data(), text, text_room),
              0);
    const records given = {&read_back.key, &read_back.mask, &read_back.data};
    EXPECT_EQ(std::string(text),
              decode_tests::slow_record_text(id(), index, given, text_room).buffer.c_str());
}

std::string RoundTrip::entry_text(uint32_t index, bytes &first, bytes *second, uint16_t bits) {
    char text[text_room];
    EXPECT_EQ(p4pd_table_entry_decoded_string_get(id(), index, first.data(),
                                                  second == nullptr ? nullptr : second->data(),
                                                  bits, text, text_room),
              0);
    return text;
}

// The data row. The decoder takes TCAM data rows as they are stored and SRAM rows of other kinds
// unswizzled.
void RoundTrip::expect_row_text(uint32_t index, const entry &want) {
    bytes row(image_room);
    uint16_t bits = 0;
    ASSERT_EQ(facts().in_hbm() ? adapter_->hbm_read(id(), index, row.data(), &bits)
                               : adapter_->sram_read(id(), index, row.data(), &bits),
              SDK_RET_OK);
    if (!facts().in_hbm() && !facts().has_tcam()) p4pd_utils_swizzle_bytes(row.data(), bits);
    if (facts().has_tcam()) bits = whole_words(bits);
    EXPECT_EQ(entry_text(index, row, nullptr, bits),
              decode_tests::slow_entry_text(id(), index, {&want.key, &want.mask, &want.data}, false,
                                            text_room)
                  .buffer.c_str());
}

void RoundTrip::expect_key_text(uint32_t index, const entry &want) {
    bytes x(image_room), y(image_room);
    uint16_t width = 0;
    ASSERT_EQ(adapter_->tcam_read(id(), index, x.data(), y.data(), &width), SDK_RET_OK);
    EXPECT_EQ(entry_text(index, x, &y, width),
              decode_tests::slow_entry_text(id(), index, {&want.key, &want.mask, &want.data}, true,
                                            text_room)
                  .buffer.c_str());
}

TEST_P(RoundTrip, WritesReadsAndPrints) {
    const uint32_t depth = adapter_->depth(id());
    ASSERT_GT(depth, 0u);
    std::map<uint32_t, entry> rows;
    for (uint32_t action = 0; action < facts().actions; ++action)
        for (unsigned n = 0; n < entries; ++n) {
            SCOPED_TRACE("HALDEN_TEST_SEED=" + std::to_string(seed()) + ", action " +
                         std::to_string(action) + ", entry " + std::to_string(n));
            const uint32_t index = source_.number(depth);
            const entry written = source_.of(id(), action);
            write(index, written);
            const entry want = rows[index] = kept(id(), written);
            const entry got = read(index);
            expect_same(got, want);
            if (facts().kind == kind::keyless) continue;
            expect_record_text(index, got);
            expect_row_text(index, want);
            if (facts().has_tcam()) expect_key_text(index, want);
            if (HasFailure()) return;
        }
    // No row was disturbed by a later one.
    for (const auto &[index, want] : rows) {
        SCOPED_TRACE("row " + std::to_string(index));
        expect_same(read(index), want);
        if (HasFailure()) return;
    }
}

INSTANTIATE_TEST_SUITE_P(Tables, RoundTrip, testing::Range(1u, 49u),
                         [](const auto &tested) { return read_tests::table_name(tested.param); });

}  // namespace
}  // namespace halden::model_tests
