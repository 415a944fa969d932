// The pipeline has no error programs and no stage error actions: what is left of each is which
// bytes of the caller's buffer become zero.

#include <string>

#include "gtest/gtest.h"
#include "p4pd.h"

namespace {

constexpr size_t room = 64;

using program_function = void (*)(char *, size_t);
using stage_function = void (*)(uint32_t, char *, size_t);
constexpr program_function programs[] = {p4pd_get_ingress_error_program,
                                         p4pd_get_egress_error_program};
constexpr stage_function stages[] = {p4pd_get_ingress_stage_error_action,
                                     p4pd_get_egress_stage_error_action};

// `length` zeros, the rest as it was.
std::string zeroed(size_t length) {
    return std::string(length, '\0') + std::string(room - length, 'x');
}

TEST(ErrorPrograms, AreTheEmptyStringUpToTheLastByte) {
    for (const program_function get : programs)
        for (size_t length = 1; length <= room; ++length) {
            std::string buffer(room, 'x');
            get(buffer.data(), length);
            EXPECT_EQ(buffer, zeroed(length)) << "length " << length;
        }
}

// A length of 1 writes a single zero byte.
TEST(ErrorPrograms, ALengthOfOneWritesOneZeroByte) {
    for (const program_function get : programs) {
        char buffer[3] = {'a', 'b', 'c'};
        get(buffer + 1, 1);
        EXPECT_EQ(buffer[0], 'a');
        EXPECT_EQ(buffer[1], '\0');
        EXPECT_EQ(buffer[2], 'c');
    }
}

// The whole buffer, not just its first byte; a stage changes nothing.
TEST(StageErrorActions, ZeroTheWholeBufferWhateverTheStage) {
    for (const stage_function get : stages)
        for (const uint32_t stage : {0u, 1u, 7u, 49u, UINT32_MAX})
            for (size_t length = 0; length <= room; ++length) {
                std::string buffer(room, 'x');
                get(stage, buffer.data(), length);
                EXPECT_EQ(buffer, zeroed(length)) << "stage " << stage << ", length " << length;
            }
}

}  // namespace
