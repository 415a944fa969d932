#include "host/memory/region.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace halden::host {

namespace {

[[noreturn]] void fail(const std::string &path, const std::string &what) {
    throw std::runtime_error((path.empty() ? "adapter memory" : path) + ": " + what);
}

int open_file(const std::string &path) {
    // Only a file knows which of its pages were touched, so anonymous memory is one too.
    const int file = path.empty() ? memfd_create("halden-adapter", MFD_CLOEXEC)
                                  : open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (file < 0) fail(path, std::strerror(errno));
    return file;
}

}  // namespace

region::region(const std::string &path, size_t bytes) : file_(open_file(path)), bytes_(bytes) {
    try {
        struct stat status = {};
        if (fstat(file_, &status) != 0) fail(path, std::strerror(errno));
        const auto found = static_cast<size_t>(status.st_size);
        if (found != 0 && found != bytes)
            fail(path, "has " + std::to_string(found) + " bytes, this memory has " +
                           std::to_string(bytes));
        if (found == 0 && ftruncate(file_, static_cast<off_t>(bytes)) != 0)
            fail(path, std::strerror(errno));
        void *mapped =
            mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_NORESERVE, file_, 0);
        if (mapped == MAP_FAILED) fail(path, std::strerror(errno));
        base_ = static_cast<uint8_t *>(mapped);
    } catch (...) {
        close(file_);
        throw;
    }
}

region::~region() {
    munmap(base_, bytes_);
    close(file_);
}

bool region::next_used(size_t from, size_t &begin, size_t &end) const {
    if (from >= bytes_) return false;
    const off_t data = lseek(file_, static_cast<off_t>(from), SEEK_DATA);
    if (data < 0) {
        if (errno == ENXIO) return false;
        begin = from;  // a file system that cannot tell: everything may be used
        end = bytes_;
        return true;
    }
    const off_t hole = lseek(file_, data, SEEK_HOLE);
    begin = static_cast<size_t>(data);
    end = hole < 0 ? bytes_ : static_cast<size_t>(hole);
    return begin < bytes_;
}

}  // namespace halden::host
