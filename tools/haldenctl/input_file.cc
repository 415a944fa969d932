#include "tools/haldenctl/input_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "tools/haldenctl/failure.h"
#include "tools/haldenctl/interrupt.h"

namespace halden::tool {

namespace {

std::string cannot_be_read(int error) {
    return std::string("cannot be read: ") + std::strerror(error);
}

}  // namespace

input_file::input_file(const std::string &path) : name_(path) {
    // A named pipe that nobody writes to makes this wait.
    while ((descriptor_ = ::open(path.c_str(), O_RDONLY | O_CLOEXEC)) < 0) {
        if (errno != EINTR) throw failure(path + ": " + cannot_be_read(errno));
        stop_if_told();
    }
}

input_file input_file::standard_input() { return {STDIN_FILENO, "standard input"}; }

input_file::~input_file() {
    if (descriptor_ != STDIN_FILENO) ::close(descriptor_);
}

size_t input_file::read(char *to, size_t most) const {
    for (;;) {
        wait_for_input(descriptor_);
        const ssize_t got = ::read(descriptor_, to, most);
        if (got >= 0) return static_cast<size_t>(got);
        if (errno != EINTR) throw failure(cannot_be_read(errno));
    }
}

}  // namespace halden::tool
