#include "tests/cli/tool_process.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>

namespace halden::test {

namespace {

constexpr int longest_milliseconds = 30000;

void close_one(int &descriptor) {
    if (descriptor >= 0) ::close(descriptor);
    descriptor = -1;
}

// False at the end.
bool take(int &from, std::string &to) {
    char piece[4096];
    const ssize_t got = ::read(from, piece, sizeof piece);
    if (got > 0) to.append(piece, static_cast<size_t>(got));
    if (got <= 0) close_one(from);
    return got > 0;
}

}  // namespace

tool_process::tool_process(const std::vector<std::string> &arguments, int input) {
    int out[2], err[2];
    if (pipe2(out, O_CLOEXEC) != 0 || pipe2(err, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipes");
    std::vector<char *> words = {const_cast<char *>(HALDENCTL)};
    for (const std::string &word : arguments) words.push_back(const_cast<char *>(word.c_str()));
    words.push_back(nullptr);
    id_ = fork();
    if (id_ == 0) {
        dup2(input >= 0 ? input : open("/dev/null", O_RDONLY), STDIN_FILENO);
        dup2(out[1], STDOUT_FILENO);
        dup2(err[1], STDERR_FILENO);
        execv(words[0], words.data());
        _exit(127);
    }
    ::close(out[1]);
    ::close(err[1]);
    out_ = out[0];
    err_ = err[0];
}

tool_process::~tool_process() {
    close_one(out_);
    close_one(err_);
    if (id_ > 0) wait();
}

void tool_process::send(int signal) const { kill(id_, signal); }

void tool_process::close_output() { close_one(out_); }

ended tool_process::wait() {
    ended result;
    while (out_ >= 0 || err_ >= 0) {
        pollfd both[] = {{out_, POLLIN, 0}, {err_, POLLIN, 0}};
        if (poll(both, 2, longest_milliseconds) <= 0) {
            kill(id_, SIGKILL);
            break;
        }
        if (both[0].revents != 0) take(out_, result.out);
        if (both[1].revents != 0) take(err_, result.err);
    }
    int status = 0;
    waitpid(id_, &status, 0);
    id_ = -1;
    if (WIFSIGNALED(status))
        result.signal = WTERMSIG(status);
    else
        result.status = WEXITSTATUS(status);
    return result;
}

}  // namespace halden::test
