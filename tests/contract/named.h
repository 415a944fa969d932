#pragma once

// Test parameters that have a name: how a test is called after one, and how one is printed.

#include <concepts>
#include <ostream>
#include <string>

namespace halden::test {

inline constexpr auto table_name = [](const auto &tested) {
    return std::string(tested.param.name);
};

template <class Named>
    requires requires(const Named &named) {
        { named.name } -> std::convertible_to<const char *>;
    }
void PrintTo(const Named &named, std::ostream *out) {
    *out << named.name;
}

}  // namespace halden::test
