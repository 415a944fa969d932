// The main of every test program. The library exports a main as well, so a program without its own
// would print a size diagnostic instead of testing; a run without a test is therefore a failure.

#include <cstdio>

#include "gmock/gmock.h"
#include "gtest/gtest.h"

int main(int argc, char **argv) {
    testing::InitGoogleMock(&argc, argv);
    const int result = RUN_ALL_TESTS();
    if (testing::GTEST_FLAG(list_tests)) return result;
    if (testing::UnitTest::GetInstance()->test_to_run_count() == 0) {
        std::fputs("no test ran\n", stderr);
        return 1;
    }
    return result;
}
