#pragma once

// A file that is open, closed with the object. Its descriptor is never one of the standard
// streams': where those are closed, what the process prints would land in the file.

#include <string>
#include <utility>

#include <sys/types.h>

namespace halden::host {

class file {
  public:
    file() = default;
    // Takes the descriptor over. `path` is for messages. Throws std::runtime_error when none above
    // the standard streams' is to be had.
    file(int descriptor, std::string path);
    ~file();
    file(file &&from) noexcept
        : descriptor_(std::exchange(from.descriptor_, -1)), path_(std::move(from.path_)) {}
    file &operator=(file &&from) noexcept {
        std::swap(descriptor_, from.descriptor_);
        std::swap(path_, from.path_);
        return *this;
    }

    bool is_open() const { return descriptor_ >= 0; }
    int descriptor() const { return descriptor_; }
    const std::string &path() const { return path_; }

    // Throws std::runtime_error: "path: what".
    [[noreturn]] void fail(const std::string &what) const;

  private:
    int descriptor_ = -1;
    std::string path_;
};

// Throws std::runtime_error with the path, as one line, and what is wrong with it.
[[noreturn]] void fail_at(const std::string &path, const std::string &what);

}  // namespace halden::host
