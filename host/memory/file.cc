#include "host/memory/file.h"

#include "host/trace/printable.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace halden::host {

void fail_at(const std::string &path, const std::string &what) {
    throw std::runtime_error(trace::printable(path) + ": " + what);
}

file::file(int descriptor, std::string path) : descriptor_(descriptor), path_(std::move(path)) {
    if (descriptor_ < 0 || descriptor_ > STDERR_FILENO) return;
    descriptor_ = fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int error = errno;
    close(descriptor);
    if (descriptor_ < 0) fail(std::strerror(error));
}

file::~file() {
    if (descriptor_ >= 0) close(descriptor_);
}

void file::fail(const std::string &what) const { fail_at(path_, what); }

}  // namespace halden::host
