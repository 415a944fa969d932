// The images that a TCAM key is unpacked from: key = x and not y, mask = x exclusive-or y.

#include "gmock/gmock.h"
#include "tests/read/reader_fixture.h"

namespace halden::read_tests {
namespace {

using test::call;

// Every call took its bits from the image `want`, and there was one.
auto all_are(const bytes &want) {
    return testing::AllOf(testing::Not(testing::IsEmpty()), testing::Each(want));
}

class TernaryDecode : public ReaderTest, public testing::WithParamInterface<uint32_t> {
  protected:
    // The images that the key calls into `record` take their bits from, as they are then.
    std::vector<bytes> images_of(const bytes &record, const bytes &x, const bytes &y) {
        std::vector<bytes> seen;
        host.on_call = [&](const call &made) {
            if (made.name != "p4pd_utils_copy_be_src_to_le_dest" &&
                made.name != "p4pd_utils_copy_single_bit")
                return;
            const auto *to = static_cast<const uint8_t *>(made.arguments[0].pointer);
            if (to < record.data() || to >= record.data() + record.size()) return;
            const auto *from = static_cast<const uint8_t *>(made.arguments[2].pointer);
            seen.emplace_back(from, from + x.size());
        };
        const read_of read = full_read(GetParam());
        answer_with(read, {}, x, y);
        EXPECT_EQ(perform(read), 0);
        host.on_call = nullptr;
        return seen;
    }
    size_t image_bytes() const { return reference::table_of(GetParam()).tcam_width / 8; }
};

struct cell {
    bool x, y, key, mask;
};
// Not looked at; one; zero; and the pair that the memory cannot hold.
constexpr cell cells[] = {
    {false, false, false, false},
    {true, false, true, true},
    {false, true, false, true},
    {true, true, false, false},
};

TEST_P(TernaryDecode, EachBitAlone) {
    for (const cell &c : cells) {
        const bytes x(image_bytes(), c.x ? 0xff : 0), y(image_bytes(), c.y ? 0xff : 0);
        EXPECT_THAT(images_of(key, x, y), all_are(bytes(image_bytes(), c.key ? 0xff : 0)));
        EXPECT_THAT(images_of(mask, x, y), all_are(bytes(image_bytes(), c.mask ? 0xff : 0)));
    }
}

// All four pairs in each byte, in every place of it.
TEST_P(TernaryDecode, EveryPlaceOfEveryByte) {
    for (unsigned turn = 0; turn < 4; ++turn) {
        bytes x(image_bytes()), y(image_bytes()), want_key(image_bytes()), want_mask(image_bytes());
        for (uint32_t bit = 0; bit < image_bytes() * 8; ++bit) {
            const cell &c = cells[(bit + bit / 8 + turn) % 4];
            reference::put_bit(x, bit, c.x);
            reference::put_bit(y, bit, c.y);
            reference::put_bit(want_key, bit, c.key);
            reference::put_bit(want_mask, bit, c.mask);
        }
        EXPECT_THAT(images_of(key, x, y), all_are(want_key));
        EXPECT_THAT(images_of(mask, x, y), all_are(want_mask));
    }
}

INSTANTIATE_TEST_SUITE_P(Tables, TernaryDecode, testing::Range(7u, 16u),
                         [](const auto &tested) { return table_name(tested.param); });

}  // namespace
}  // namespace halden::read_tests
