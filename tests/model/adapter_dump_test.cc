// The debug dump of the adapter's rows on standard output.

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "host/adapter.h"
#include "p4pd.h"
#include "tests/decode/slow_printer.h"
#include "tests/model/entries.h"

namespace halden::model_tests {
namespace {

constexpr uint32_t every_row = 0xffffffff;

class AdapterDump : public testing::Test {
  protected:
    // Result and output of a dump into blank records.
    std::pair<p4pd_error_t, std::string> dump(uint32_t id, uint32_t index) {
        entry e = blank(id);
        testing::internal::CaptureStdout();
        const p4pd_error_t result =
            p4pd_entry_read(id, index, e.key.data(), e.mask.data(), e.data.data(), nullptr,
                            static_cast<int *>(nullptr));
        return {result, testing::internal::GetCapturedStdout()};
    }
    static std::string text(uint32_t id, uint32_t index, const entry &e) {
        const decode_tests::records given = {&e.key, &e.mask, &e.data};
        return decode_tests::slow_record_text(id, index, given, 2048).buffer.c_str() +
               std::string("\n");
    }

    std::unique_ptr<host::adapter> adapter_ = host::adapter::anonymous();
    host::scoped_current current_{*adapter_};
    entry_source source_{99};
};

TEST_F(AdapterDump, OfEveryRowOfATable) {
    constexpr uint32_t id = 30;  // a small index table
    std::string want;
    const uint32_t depth = adapter_->depth(id);
    ASSERT_GT(depth, 1u);
    for (uint32_t row = 0; row < depth; ++row) {
        entry written = source_.of(id, 0);
        ASSERT_EQ(p4pd_entry_install(id, row, nullptr, nullptr, written.data.data()), 0);
        want += text(id, row, kept(id, written));
    }
    EXPECT_EQ(dump(id, every_row), std::pair(0, want));
}

TEST_F(AdapterDump, OfOneRowOfEveryTable) {
    for (uint32_t id = 1; id <= 40; ++id) {
        entry written = source_.of(id, 0);
        const uint32_t row = adapter_->depth(id) - 1;
        ASSERT_EQ(p4pd_entry_install(id, row, written.key.data(), written.mask.data(),
                                     written.data.data()),
                  0);
        EXPECT_EQ(dump(id, row), std::pair(0, text(id, row, kept(id, written))))
            << read_tests::table_name(id);
    }
}

// A TCAM row that is empty cannot be read, so the dump of its table ends there.
TEST_F(AdapterDump, OfATcamTableEndsAtItsFirstEmptyRow) {
    constexpr uint32_t id = 12;
    entry written = source_.of(id, 1);
    ASSERT_EQ(
        p4pd_entry_install(id, 0, written.key.data(), written.mask.data(), written.data.data()), 0);
    EXPECT_EQ(dump(id, every_row), std::pair(-1, text(id, 0, kept(id, written))));
}

TEST_F(AdapterDump, OfAnUnknownTableFailsWithoutOutput) {
    for (const uint32_t id : {0u, 49u, 0xffffffffu}) {
        for (const uint32_t index : {0u, every_row}) {
            testing::internal::CaptureStdout();
            EXPECT_EQ(p4pd_entry_read(id, index, nullptr, nullptr, nullptr, nullptr,
                                      static_cast<int *>(nullptr)),
                      -1);
            EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
        }
    }
}

}  // namespace
}  // namespace halden::model_tests
