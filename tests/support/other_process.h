#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <functional>

namespace halden::test {

// Runs `what` in a process of its own; its exit status, or -1 when a signal ended it.
inline int in_another_process(const std::function<int()> &what) {
    const pid_t child = fork();
    if (child == 0) _exit(what());
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status)) return -1;
    return WEXITSTATUS(status);
}

}  // namespace halden::test
