#pragma once

// A file for a memory to stand on.

#include "host/memory/file.h"

#include <fcntl.h>

#include <string>

namespace halden::test {

inline host::file file_at(const std::string &path, int flags = O_RDWR | O_CREAT) {
    return {open(path.c_str(), flags | O_CLOEXEC, 0600), path};
}

}  // namespace halden::test
