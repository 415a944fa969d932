#pragma once

// A directory of a test's own, gone with the test.

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

namespace halden::test {

class scratch_directory {
  public:
    scratch_directory() {
        path_ = testing::TempDir() + "halden-XXXXXX";
        if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error(path_ + " cannot be made");
    }
    ~scratch_directory() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    scratch_directory(const scratch_directory &) = delete;
    scratch_directory &operator=(const scratch_directory &) = delete;

    const std::string &path() const { return path_; }
    std::string file(const std::string &name) const { return path_ + "/" + name; }

  private:
    std::string path_;
};

inline std::string text_of(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}
inline void write_text(const std::string &path, const std::string &text) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
}

// What the call throws, empty when it throws nothing.
template <typename call>
std::string message_of(call &&made) {
    try {
        made();
    } catch (const std::exception &error) {
        return error.what();
    }
    return {};
}

}  // namespace halden::test
