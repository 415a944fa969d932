// A thousand random entries of every table: key image, mask image, packed data and the row in the
// adapter's memory agree with the slow model, bit for bit.
//
// HALDEN_TEST_SEED gives the seed; a failure prints the one it ran with.

#include "host/adapter.h"
#include "p4pd.h"
#include "sdk/asic/pd.h"
#include "tests/reference/model.h"
#include "tests/reference/prepare_tap.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>

namespace {

using namespace halden;
using reference::bytes;
using reference::kind;

constexpr unsigned entries = 1000;
constexpr uint32_t image_room = 128;

uint64_t seed() {
    const char *given = std::getenv("HALDEN_TEST_SEED");
    return given != nullptr ? std::strtoull(given, nullptr, 0) : 20240229;
}

// The row that a table's data is written to, and the table id that names its SRAM.
uint32_t sram_row(uint32_t id, uint32_t index) {
    if (id == 7 || id == 14) return index + 4096;
    if (id == 10 || id == 11) return index + 8192;
    return index;
}

class RandomEntries : public testing::TestWithParam<uint32_t> {
  protected:
    RandomEntries() : random_(seed() + GetParam()) {}

    uint32_t id() const { return GetParam(); }
    const reference::table &facts() const { return reference::table_of(id()); }
    uint32_t number(uint32_t below) { return static_cast<uint32_t>(random_() % below); }

    bytes record(uint32_t size) {
        bytes out(size);
        // Sparse and dense records beside even ones: single bits show where they went.
        const uint32_t taste = number(4);
        for (uint8_t &byte : out) {
            uint64_t r = random_();
            if (taste == 0) r &= random_() & random_() & random_();
            if (taste == 1) r |= random_() | random_() | random_();
            byte = static_cast<uint8_t>(r);
        }
        return out;
    }

    bytes action_record() {
        bytes out = record(facts().data_bytes);
        out[0] = static_cast<uint8_t>(number(facts().actions));
        // A table of one action takes any id and writes no data for the unknown ones.
        if (facts().actions == 1 && number(8) == 0) out[0] = static_cast<uint8_t>(1 + number(255));
        return out;
    }

    bytes data_mask_record() {
        bytes out = record(facts().data_bytes);
        out[0] = static_cast<uint8_t>(number(4) == 0 ? number(256) : number(facts().actions));
        return out;
    }

    uint8_t pc_of(const bytes &action_data) const {
        return facts().actions == 1 ? reference::no_pc
                                    : sdk::asic::pd::asicpd_get_action_pc(id(), action_data[0]);
    }

    void one_entry();
    void expect_packed(const bytes &data, const bytes *data_mask);
    void expect_row(uint32_t index, const reference::image &entry, const bytes &before,
                    const reference::image *mask_entry);
    void expect_tcam(uint32_t index, const bytes &key, const bytes &mask);
    p4pd_error_t write(uint32_t index, bytes &key, bytes &mask, reference::key_images &built,
                       bytes &data, bytes *data_mask);
    bytes row_now(uint32_t index, uint16_t &bits);

    std::mt19937_64 random_;
    std::unique_ptr<host::adapter> adapter_ = host::adapter::anonymous();
    host::scoped_current current_{*adapter_};
};

bytes RandomEntries::row_now(uint32_t index, uint16_t &bits) {
    bytes out(image_room);
    const auto result = facts().in_hbm()
                            ? adapter_->hbm_read(id(), index, out.data(), &bits)
                            : adapter_->sram_read(id(), sram_row(id(), index), out.data(), &bits);
    EXPECT_EQ(result, SDK_RET_OK);
    return out;
}

// Through one of the four entry points; all but one start from the software records.
p4pd_error_t RandomEntries::write(uint32_t index, bytes &key, bytes &mask,
                                  reference::key_images &built, bytes &data, bytes *data_mask) {
    uint8_t *key_image = built.key.data(), *mask_image = built.mask.data();
    if (data_mask != nullptr)
        return p4pd_entry_write_with_datamask(id(), index, key_image, mask_image, data.data(),
                                              data_mask->data(), false);
    switch (number(id() <= 32 ? 4 : 3)) {
        case 0:
            return p4pd_entry_write_with_datamask(id(), index, key_image, mask_image, data.data(),
                                                  nullptr, true);
        case 1:
            return p4pd_entry_write(id(), index, key_image, mask_image, data.data(), false);
        case 2:
            return p4pd_entry_install(id(), index, key.data(), mask.data(), data.data());
        default:
            return p4pd_entry_write(id(), index, key.data(), mask.data(), data.data());
    }
}

void RandomEntries::expect_packed(const bytes &data, const bytes *data_mask) {
    const auto prepared = reference::take_prepared();
    ASSERT_EQ(prepared.size(), data_mask == nullptr ? 1u : 2u);
    if (facts().kind == kind::flow) {
        reference::split_data split = reference::packed_flow_data(id(), data);
        const bool has_data = data[0] == 0;
        ASSERT_EQ(prepared[0].before_key_bits, has_data ? 32 : 0);
        ASSERT_EQ(prepared[0].data_bits, has_data ? 261 : 0);
        split.before.resize(has_data ? 4 : 0);
        split.after.resize(has_data ? 33 : 0);
        ASSERT_EQ(prepared[0].before_key, split.before) << "packed data before the key";
        ASSERT_EQ(prepared[0].data, split.after) << "packed data behind the key";
        return;
    }
    const bytes *records[] = {&data, data_mask};
    for (unsigned i = 0; i < prepared.size(); ++i) {
        // The mask is prepared before the data.
        const bytes &from = *records[prepared.size() - 1 - i];
        const bool hash = facts().kind == kind::hash || facts().kind == kind::overflow;
        const uint32_t length = hash && from[0] != 0 ? 0 : facts().data_bits;
        ASSERT_EQ(prepared[i].data_bits, length);
        ASSERT_EQ(prepared[i].action_pc, pc_of(data));
        bytes packed = reference::packed_data(id(), from);
        packed.resize((length + 7) / 8);
        ASSERT_EQ(prepared[i].data, packed) << (i + 1 == prepared.size() ? "data" : "mask");
    }
}

void RandomEntries::expect_row(uint32_t index, const reference::image &entry, const bytes &before,
                               const reference::image *mask_entry) {
    uint16_t bits = 0;
    bytes row = row_now(index, bits);
    bytes expected(image_room);
    if (facts().in_hbm()) {
        std::copy(entry.data.begin(), entry.data.end(), expected.begin());
        // A flow row is always whole; one of zeros is an empty one.
        const bool zero =
            std::all_of(expected.begin(), expected.end(), [](uint8_t byte) { return byte == 0; });
        ASSERT_EQ(bits, facts().kind != kind::flow ? entry.bits : zero ? 0 : 1024);
    } else {
        const bytes stored = reference::as_stored(entry.data, entry.bits);
        std::copy(stored.begin(), stored.end(), expected.begin());
        if (mask_entry != nullptr) {
            const bytes mask = reference::as_stored(mask_entry->data, entry.bits);
            for (uint32_t i = 0; i < stored.size(); ++i)
                expected[i] = static_cast<uint8_t>((before[i] & ~mask[i]) | (stored[i] & mask[i]));
        }
        ASSERT_EQ(bits, entry.bits);
    }
    ASSERT_EQ(row, expected) << "row of the data memory";
}

void RandomEntries::expect_tcam(uint32_t index, const bytes &key, const bytes &mask) {
    bytes key_row(image_room), mask_row(image_room);
    uint16_t width = 0;
    ASSERT_EQ(adapter_->tcam_read(id(), index, key_row.data(), mask_row.data(), &width),
              SDK_RET_OK);
    ASSERT_EQ(width, facts().tcam_width);
    bytes stored_key = reference::as_stored(key, facts().key_bits);
    bytes stored_mask = reference::as_stored(mask, facts().key_bits);
    stored_key.resize(image_room);
    stored_mask.resize(image_room);
    ASSERT_EQ(key_row, stored_key) << "key in the TCAM";
    ASSERT_EQ(mask_row, stored_mask) << "mask in the TCAM";
}

void RandomEntries::one_entry() {
    bytes key = record(facts().key_bytes), mask = record(facts().key_bytes);
    bytes data = action_record(), data_mask = data_mask_record();
    const bool masked = facts().takes_data_mask() && number(2) == 0;
    // Low rows often, so that rows are overwritten.
    const uint32_t depth = adapter_->depth(id());
    const uint32_t index = number(number(2) == 0 ? std::min(depth, 4u) : depth);

    const auto images = reference::build_key(id(), key, mask, image_room);
    reference::key_images built{bytes(image_room), bytes(image_room)};
    ASSERT_EQ(
        p4pd_hwkey_hwmask_build(id(), key.data(), mask.data(), built.key.data(), built.mask.data()),
        id() <= 32 ? 0 : -1);
    ASSERT_EQ(built.key, images.key) << "key image";
    ASSERT_EQ(built.mask, images.mask) << "mask image";

    uint16_t before_bits = 0;
    const bytes before = row_now(index, before_bits);
    reference::take_prepared();
    ASSERT_EQ(write(index, key, mask, built, data, masked ? &data_mask : nullptr), 0);
    expect_packed(data, masked ? &data_mask : nullptr);
    if (HasFatalFailure()) return;

    const auto entry = reference::entry(id(), pc_of(data), images.key, data);
    auto mask_entry = reference::entry(id(), pc_of(data), images.key, data_mask);
    expect_row(index, entry, before, masked ? &mask_entry : nullptr);
    if (HasFatalFailure() || !facts().has_tcam()) return;
    expect_tcam(index, images.key, images.mask);
}

TEST_P(RandomEntries, AgreeWithTheSlowModel) {
    for (unsigned i = 0; i < entries && !HasFatalFailure(); ++i) {
        SCOPED_TRACE("HALDEN_TEST_SEED=" + std::to_string(seed()) + ", table " +
                     std::to_string(id()) + ", entry " + std::to_string(i));
        one_entry();
    }
}

INSTANTIATE_TEST_SUITE_P(Tables, RandomEntries, testing::Range(1u, 49u), [](const auto &tested) {
    return std::string(reference::table_of(tested.param).name);
});

}  // namespace
