// The entry points that start from software records: p4pd_entry_install and the five-argument
// p4pd_entry_write.

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "tests/contract/key_build.h"
#include "tests/contract/writer_calls.h"

namespace halden::test {
namespace {

const std::string global_write_call = "p4pd_global_entry_write";

std::string numbered(const testing::TestParamInfo<uint32_t> &tested) {
    return "table_" + std::to_string(tested.param);
}

class SoftwareKey : public EntryWrite, public testing::WithParamInterface<uint32_t> {
  protected:
    uint32_t id() const { return GetParam(); }
    bool keyed() const { return id() <= 15; }
    bool ternary() const { return id() >= 7 && id() <= 15; }

    void begin_with_key(uint8_t action) {
        begin();
        host_.asic_result = -5;  // not looked at
        for (size_t i = 0; i < sizeof key_; ++i) {
            key_[i] = static_cast<uint8_t>(3 + 37 * i);
            mask_[i] = static_cast<uint8_t>(29 + 91 * i);
        }
        host_.name_buffer("software key", key_, sizeof key_);
        use_record(sizes_of(id()).record_bytes, action);
    }

    // What the table has no use for is not looked at.
    void *key() { return keyed() ? key_ : unreadable(); }
    void *mask() { return ternary() ? mask_ : unreadable(); }

    testing::AssertionResult calls_are_key_and(const expected &rest) const {
        return keyed() ? key_calls_are(id(), {key_, mask_}, rest) : calls_are(rest);
    }

    // Expects the first `bytes` of each image to be zero when the first copy into it is made.
    void expect_zero_images(size_t bytes) {
        host_.on_call = [bytes, earlier = host_.on_call,
                         seen = std::vector<const void *>()](const call &made) mutable {
            earlier(made);
            if (made.name != key_copy_call) return;
            const void *image = made.arguments[0].pointer;
            if (std::find(seen.begin(), seen.end(), image) != seen.end()) return;
            seen.push_back(image);
            const auto *start = static_cast<const uint8_t *>(image);
            EXPECT_TRUE(std::all_of(start, start + bytes, [](uint8_t byte) { return byte == 0; }));
        };
    }

    uint8_t key_[80], mask_[80];
};

// --- Install -------------------------------------------------------------------------------------

using Install = SoftwareKey;

// The key is built, then the entry is written by the table's own writer, with flag false and no
// data mask. Ids 33 to 48 are written although their key build fails.
TEST_P(Install, MakesExactlyTheseCalls) {
    for (uint8_t action : action_ids(sizes_of(id()).actions)) {
        SCOPED_TRACE(unsigned{action});
        begin_with_key(action);
        expect_zero_images(6144);
        EXPECT_EQ(p4pd_entry_install(id(), written_row, key(), mask(), record_.data()), 0);
        EXPECT_TRUE(calls_are_key_and(writer_calls(id(), {.action = action})));
    }
}

INSTANTIATE_TEST_SUITE_P(Tables, Install, testing::Range(1u, 49u), numbered);

// --- Five arguments ------------------------------------------------------------------------------

using FiveArguments = SoftwareKey;

// Bytes of the images as the query answers them, rounded up; the flow tables' images are longer.
size_t image_bytes(uint32_t id) {
    switch (id) {
        case 1:
        case 2:
            return 84;
        case 3:
        case 4:
        case 5:
        case 6:
            return 64;
        case 7:
            return 4;
        case 8:
            return 16;
        case 9:
            return 28;
        case 10:
            return 6;
        case 11:
            return 18;
        case 14:
            return 8;
        default:
            return 2;
    }
}

// Leaves old bytes in memory of the size that will be asked for.
void dirty_heap(size_t bytes) {
    void *old[16];
    for (void *&block : old) {
        block = std::malloc(bytes);
        if (block != nullptr) std::memset(block, 0xa5, bytes);
    }
    for (void *block : old) std::free(block);
}

// The key is built, then the host's dispatcher is called, with flag false; its answer is the
// answer. Ids 33 to 48 never get that far.
TEST_P(FiveArguments, MakesExactlyTheseCalls) {
    for (p4pd_error_t answer : {0, -1, 7}) {
        for (uint8_t action : {uint8_t{0}, uint8_t{1}, uint8_t{0xff}}) {
            begin_with_key(action);
            host_.global_write_result = answer;
            expect_zero_images(image_bytes(id()));
            dirty_heap(image_bytes(id()));
            const p4pd_error_t result =
                p4pd_entry_write(id(), written_row, key(), mask(), record_.data());
            if (id() >= 33) {
                EXPECT_EQ(result, -1);
                EXPECT_TRUE(calls_are({}));
                continue;
            }
            EXPECT_EQ(result, answer);
            EXPECT_TRUE(calls_are_key_and(
                {{global_write_call,
                  {id(), written_row, at("key"), at("key mask"), at("record"), false}}}));
        }
    }
}

// The record is the dispatcher's to read.
TEST_P(FiveArguments, TheActionDataIsNotRead) {
    begin_with_key(0);
    host_.name_buffer("record", unreadable(), 1);
    EXPECT_EQ(p4pd_entry_write(id(), written_row, key(), mask(), unreadable()),
              id() >= 33 ? -1 : 0);
    EXPECT_EQ(host_.calls().empty(), id() >= 33);
}

INSTANTIATE_TEST_SUITE_P(Tables, FiveArguments, testing::Range(1u, 49u), numbered);

}  // namespace
}  // namespace halden::test
