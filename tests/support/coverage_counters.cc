// Keeps the coverage counters of a process that does not reach exit(): a death test's child aborts,
// a forked writer leaves by _exit(). Linked into coverage builds alone, once into every image,
// since each has counters and a __gcov_dump of its own.

#include <csignal>

#include <sys/syscall.h>
#include <unistd.h>

extern "C" void __gcov_dump(void);

namespace {

struct sigaction next_image;

// Returns, so abort() goes on to end the process.
void dump_and_pass_on(int signal) {
    __gcov_dump();
    if (next_image.sa_handler != SIG_DFL && next_image.sa_handler != SIG_IGN)
        next_image.sa_handler(signal);
}

[[gnu::constructor]] void watch_aborts() {
    struct sigaction mine = {};
    mine.sa_handler = dump_and_pass_on;
    sigaction(SIGABRT, &mine, &next_image);
}

}  // namespace

#ifdef HALDEN_COVERAGE_PROGRAM
// In the place of the C library's: the images' handlers are met first.
extern "C" [[noreturn]] void _exit(int status) {
    struct sigaction first = {};
    sigaction(SIGABRT, nullptr, &first);
    if (first.sa_handler != SIG_DFL && first.sa_handler != SIG_IGN) first.sa_handler(SIGABRT);
    for (;;) syscall(SYS_exit_group, status);
}
#endif
