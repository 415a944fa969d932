#include "host/memory/directory.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <stdexcept>

namespace halden::host {

namespace {

[[noreturn]] void fail(const std::string &path, const std::string &what) {
    throw std::runtime_error(path + ": " + what);
}

std::string contents(int file, const std::string &path) {
    char text[512];
    const ssize_t got = pread(file, text, sizeof text, 0);
    if (got < 0) fail(path, std::strerror(errno));
    return {text, static_cast<size_t>(got)};
}

void check_or_write(int file, const std::string &path, const std::string &wanted) {
    const std::string found = contents(file, path);
    if (found == wanted) return;
    // Short: the process that made it was killed before it had written the whole text.
    if (found.size() < wanted.size() && wanted.compare(0, found.size(), found) == 0) {
        if (pwrite(file, wanted.data(), wanted.size(), 0) != static_cast<ssize_t>(wanted.size()))
            fail(path, std::strerror(errno));
        return;
    }
    if (found.rfind("halden adapter ", 0) != 0) fail(path, "is not an adapter's");
    fail(path, "was made for other depths:\n" + found + "wanted are:\n" + wanted);
}

}  // namespace

int lock_directory(const std::string &directory, uint32_t flow_rows, uint32_t flow_ohash_rows) {
    std::error_code error;
    std::filesystem::create_directories(directory, error);
    if (error) fail(directory, error.message());

    const std::string path = directory + "/adapter";
    const int file = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (file < 0) fail(path, std::strerror(errno));
    try {
        if (flock(file, LOCK_EX | LOCK_NB) != 0)
            fail(path, errno == EWOULDBLOCK ? "the adapter is open in another process"
                                            : std::strerror(errno));
        check_or_write(file, path,
                       "halden adapter 1\nflow_rows " + std::to_string(flow_rows) +
                           "\nflow_ohash_rows " + std::to_string(flow_ohash_rows) + "\n");
    } catch (...) {
        close(file);
        throw;
    }
    return file;
}

std::string memory_file(const std::string &directory, memory where, uint32_t tableid) {
    static constexpr const char *endings[] = {"sram", "tcam", "hbm"};
    char name[32];
    std::snprintf(name, sizeof name, "table-%02u.%s", tableid,
                  endings[static_cast<unsigned>(where)]);
    return directory + "/" + name;
}

}  // namespace halden::host
