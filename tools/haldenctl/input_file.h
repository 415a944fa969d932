#pragma once

// A file that a command reads, by its descriptor: a failure says why it cannot be read, and a read
// that waits for more stops when a signal comes.

#include <cstddef>
#include <string>

namespace halden::tool {

class input_file {
  public:
    // Throws failure with the path and the reason; read with the reason alone.
    explicit input_file(const std::string &path);
    static input_file standard_input();
    ~input_file();
    input_file(const input_file &) = delete;
    input_file &operator=(const input_file &) = delete;

    // As much as there is, up to `most`; 0 at the end.
    size_t read(char *to, size_t most) const;
    const std::string &name() const { return name_; }  // as errors call it

  private:
    input_file(int descriptor, const char *name) : name_(name), descriptor_(descriptor) {}
    std::string name_;
    int descriptor_;
};

}  // namespace halden::tool
