#pragma once

// How the flows commands speak of many flows.

#include <cstddef>
#include <cstdint>
#include <string>

namespace halden::tool {

// "1 flow", "2 flows"
inline std::string counted(uint64_t n, const char *one, const char *many) {
    return std::to_string(n) + " " + (n == 1 ? one : many);
}

// Flows that a command could not do, for the one line in which it says so.
class named_flows {
  public:
    void add(const std::string &name) {
        if (count_++ < most_named) names_ += (names_.empty() ? "" : ", ") + name;
    }
    size_t count() const { return count_; }
    std::string text() const {
        const size_t rest = count_ > most_named ? count_ - most_named : 0;
        return names_ + (rest == 0 ? "" : " and " + std::to_string(rest) + " more");
    }

  private:
    static constexpr size_t most_named = 8;
    size_t count_ = 0;
    std::string names_;
};

}  // namespace halden::tool
