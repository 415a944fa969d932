// Records may start at any address: every table is written, read and decoded through records at odd
// addresses, with the same results as through aligned ones. Under the undefined-behaviour sanitizer
// an access that needs alignment ends the program.

#include "host/adapter.h"
#include "p4pd.h"
#include "tests/reference/model.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace halden;
using reference::bytes;

// A record at a chosen distance from an aligned address, with guard bytes around it.
class placed_record {
  public:
    placed_record(const bytes &record, size_t shift)
        : room_(record.size() / 16 + 4), at_(bytes_of_room() + 16 + shift), size_(record.size()) {
        std::memset(bytes_of_room(), 0xa5, room_.size() * sizeof(room_[0]));
        std::copy(record.begin(), record.end(), at_);
    }
    uint8_t *get() { return at_; }
    bytes content() const { return bytes(at_, at_ + size_); }
    bool guards_hold() {
        const uint8_t *begin = bytes_of_room(), *end = begin + room_.size() * sizeof(room_[0]);
        for (const uint8_t *byte = begin; byte < end; ++byte)
            if ((byte < at_ || byte >= at_ + size_) && *byte != 0xa5) return false;
        return true;
    }

  private:
    struct alignas(16) unit {
        uint8_t bytes[16];
    };
    uint8_t *bytes_of_room() { return room_.data()->bytes; }

    std::vector<unit> room_;
    uint8_t *at_;
    size_t size_;
};

// What a caller sees of one entry, written and read with its records at one place.
struct outcome {
    bytes key_image, mask_image, key, mask, data;
    std::string text;
};

class Unaligned : public testing::TestWithParam<uint32_t> {
  protected:
    bytes random_record(uint32_t size) {
        bytes out(size);
        for (uint8_t &byte : out) byte = static_cast<uint8_t>(random_());
        return out;
    }
    outcome through(const bytes &key, const bytes &mask, const bytes &data, size_t shift);

    std::mt19937_64 random_{GetParam()};
};

outcome Unaligned::through(const bytes &key, const bytes &mask, const bytes &data, size_t shift) {
    const auto adapter = host::adapter::anonymous();
    const host::scoped_current current(*adapter);
    const uint32_t id = GetParam();
    placed_record in_key(key, shift), in_mask(mask, shift), in_data(data, shift);
    placed_record key_image(bytes(128), shift), mask_image(bytes(128), shift);
    outcome seen;

    p4pd_hwkey_hwmask_build(id, in_key.get(), in_mask.get(), key_image.get(), mask_image.get());
    seen.key_image = key_image.content();
    seen.mask_image = mask_image.content();
    EXPECT_EQ(p4pd_entry_write(id, 0, key_image.get(), mask_image.get(), in_data.get(), false), 0);

    // What a read leaves alone keeps the bytes of this filling.
    placed_record out_key(bytes(key.size(), 0x11), shift),
        out_mask(bytes(mask.size(), 0x11), shift);
    placed_record out_data(bytes(data.size(), 0x11), shift);
    EXPECT_EQ(p4pd_entry_read(id, 0, out_key.get(), out_mask.get(), out_data.get(), nullptr, false),
              0);
    seen.key = out_key.content();
    seen.mask = out_mask.content();
    seen.data = out_data.content();

    char text[4096];
    EXPECT_EQ(p4pd_table_ds_decoded_string_get(id, 0, in_key.get(), in_mask.get(), in_data.get(),
                                               text, sizeof text),
              0);
    seen.text = text;
    for (placed_record *one : {&in_key, &in_mask, &in_data, &out_key, &out_mask, &out_data})
        EXPECT_TRUE(one->guards_hold());
    EXPECT_EQ(in_key.content(), key);
    EXPECT_EQ(in_mask.content(), mask);
    EXPECT_EQ(in_data.content(), data);
    return seen;
}

TEST_P(Unaligned, RecordsGiveTheSameEntryAtEveryAddress) {
    const reference::table &facts = reference::table_of(GetParam());
    for (uint32_t action = 0; action < facts.actions; ++action) {
        SCOPED_TRACE("action " + std::to_string(action));
        const bytes key = random_record(facts.key_bytes), mask = random_record(facts.key_bytes);
        bytes data = random_record(facts.data_bytes);
        data[0] = static_cast<uint8_t>(action);
        const outcome aligned = through(key, mask, data, 0);
        EXPECT_FALSE(aligned.text.empty());
        for (const size_t shift : {1u, 2u, 3u, 5u, 7u}) {
            SCOPED_TRACE("shift " + std::to_string(shift));
            const outcome shifted = through(key, mask, data, shift);
            EXPECT_EQ(shifted.key_image, aligned.key_image);
            EXPECT_EQ(shifted.mask_image, aligned.mask_image);
            EXPECT_EQ(shifted.key, aligned.key);
            EXPECT_EQ(shifted.mask, aligned.mask);
            EXPECT_EQ(shifted.data, aligned.data);
            EXPECT_EQ(shifted.text, aligned.text);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Tables, Unaligned, testing::Range(1u, 49u), [](const auto &tested) {
    return std::string(reference::table_of(tested.param).name);
});

}  // namespace
