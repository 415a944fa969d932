#include "tools/haldenctl/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

namespace halden::tool {

bool fill_standard_streams() noexcept {
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
        if (fcntl(stream, F_GETFD) >= 0) continue;
        // The wrong way round: reading from standard input fails, and so does writing to the
        // others.
        const int way = stream == STDIN_FILENO ? O_WRONLY : O_RDONLY;
        // The lowest number that is free is this one.
        if (open("/dev/null", way) != stream) return false;
    }
    return true;
}

}  // namespace halden::tool
