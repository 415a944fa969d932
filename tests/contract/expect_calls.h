#pragma once

// Expected calls, written as they should read:
//
//     expected want = {
//         {"p4pd_utils_copy_le_src_to_be_dest", {at("packed"), 11, at("record", 3), 0, 1}},
//         {"asicpd_table_entry_write", {16, 5, at("entry"), 49, null, true}},
//     };
//     EXPECT_TRUE(calls_are(want));
//
// A place stands for an address. A buffer the test gave to the recording host keeps its name; any
// other name is tied to the first address it is compared with, and from then on means that address
// and no other, so two names never share a buffer. let_go("entry") unties a name: from there on the
// buffer may serve as another. holding({0x12}) stands for any address with these bytes behind it,
// as far as the recording host keeps bytes for that argument.

#include <concepts>
#include <cstdint>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "gtest/gtest.h"
#include "tests/support/recording_host.h"

namespace halden::test {

struct place {
    std::string name;  // empty: null
    uint64_t offset = 0;
    bool any = false;  // whatever address, null too
};

struct holding {
    std::vector<uint8_t> bytes;
};

struct expected_argument {
    template <std::integral number>
    expected_argument(number value) : is(static_cast<uint64_t>(value)) {}
    expected_argument(place where) : is(std::move(where)) {}
    expected_argument(holding content) : is(std::move(content)) {}
    std::variant<uint64_t, place, holding> is;
};

struct expected_call {
    expected_call(std::string called, std::vector<expected_argument> given)
        : name(std::move(called)), arguments(std::move(given)) {}
    std::string name;
    std::vector<expected_argument> arguments;
};

using expected = std::vector<expected_call>;

// Not a call: the name's buffer is done with.
inline expected_call let_go(std::string name) { return {"", {place{std::move(name)}}}; }

inline place at(const std::string &name, uint64_t offset = 0) { return {name, offset, false}; }
inline const place null{};
inline const place anything{"anything", 0, true};

// Compares what the recording host holds with `want`, in order and number.
testing::AssertionResult calls_are(const expected &want);

}  // namespace halden::test
