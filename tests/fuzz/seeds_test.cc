// One fuzzer's seeds through its function, which ends the process when a property does not hold.

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "gtest/gtest.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace {

TEST(Seeds, KeepEveryProperty) {
    size_t seeds = 0;
    for (const auto &file : std::filesystem::directory_iterator(HALDEN_SEEDS)) {
        SCOPED_TRACE(file.path().string());
        std::ifstream in(file.path(), std::ios::binary);
        const std::string seed{std::istreambuf_iterator<char>(in), {}};
        ASSERT_FALSE(seed.empty());
        testing::internal::CaptureStdout();  // the readers' dump prints
        EXPECT_EQ(
            LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(seed.data()), seed.size()), 0);
        testing::internal::GetCapturedStdout();
        ++seeds;
    }
    EXPECT_GE(seeds, size_t{HALDEN_LEAST_SEEDS});
}

}  // namespace
