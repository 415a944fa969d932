// The register entry points, which this pipeline leaves empty.

#include "gtest/gtest.h"
#include "p4pd.h"
#include "tests/support/recording_host.h"

namespace {

// Any arguments.
TEST(Registers, AnswerZeroAndCallNothing) {
    halden::test::recording_host::get().reset();
    const std::string texts[] = {"", "x", "a name with spaces", std::string(100000, 'r'),
                                 std::string("\0%s%n", 5)};
    for (const std::string &first : texts)
        for (const std::string &second : texts) {
            EXPECT_EQ(p4pd_register_entry_read(first, second, first), 0);
            EXPECT_EQ(p4pd_register_list(second, first, second), 0);
        }
    EXPECT_TRUE(halden::test::recording_host::get().calls().empty());
}

// The list is the read under another name. The compiler takes two functions for different ones, so
// it must not see which they are.
TEST(Registers, AreOneFunctionUnderTwoNames) {
    using function = p4pd_error_t (*)(std::string, std::string, std::string);
    volatile function read = p4pd_register_entry_read;
    volatile function list = p4pd_register_list;
    EXPECT_EQ(reinterpret_cast<void *>(read), reinterpret_cast<void *>(list));
}

}  // namespace
