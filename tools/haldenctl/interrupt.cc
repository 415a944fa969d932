#include "tools/haldenctl/interrupt.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <iostream>

#include "tools/haldenctl/failure.h"

namespace halden::tool {

namespace {

constexpr int ending_signals[] = {SIGINT, SIGTERM, SIGHUP, SIGPIPE};

std::atomic<int> received = 0;
std::atomic<uint64_t> entries_done = 0;
static_assert(std::atomic<int>::is_always_lock_free && std::atomic<uint64_t>::is_always_lock_free,
              "signal handlers use them");
// The handler writes a byte to it, so that a wait that begins after the signal ends as well.
int wake_reader = -1, wake_writer = -1;

extern "C" void note_signal(int signal) {
    const int error = errno;
    int none = 0;
    received.compare_exchange_strong(none, signal);
    const char byte = 0;
    (void)!write(wake_writer, &byte, 1);
    errno = error;
}

// Decimal digits of `value` in front of `end`; no function of the C library that formats may be
// called by a signal handler.
char *digits_before(char *end, uint64_t value) {
    do *--end = static_cast<char>('0' + value % 10);
    while ((value /= 10) != 0);
    return end;
}

extern "C" void report_lost_memory(int) {
    constexpr char text[] =
        "haldenctl: the adapter's memory could not be written or read; is its disk full?";
    (void)!write(STDERR_FILENO, text, sizeof text - 1);
    if (const uint64_t done = entries_done; done != 0) {
        constexpr char before[] = " Entries done before: ";
        char number[20];
        const char *first = digits_before(number + sizeof number, done);
        (void)!write(STDERR_FILENO, before, sizeof before - 1);
        (void)!write(STDERR_FILENO, first, static_cast<size_t>(number + sizeof number - first));
    }
    (void)!write(STDERR_FILENO, "\n", 1);
    _exit(static_cast<int>(exit_status::adapter));
}

bool handle(int signal, void (*handler)(int)) {
    struct sigaction before = {}, wanted = {};
    if (sigaction(signal, nullptr, &before) != 0) return false;
    if (before.sa_handler == SIG_IGN) return true;
    wanted.sa_handler = handler;  // without SA_RESTART: a call that waits ends
    sigemptyset(&wanted.sa_mask);
    return sigaction(signal, &wanted, nullptr) == 0;
}

}  // namespace

bool watch_signals() noexcept {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) return false;
    wake_reader = ends[0];
    wake_writer = ends[1];
    bool all = handle(SIGBUS, report_lost_memory);
    for (int signal : ending_signals) all = handle(signal, note_signal) && all;
    // The call that grows a file too far fails and is reported.
    std::signal(SIGXFSZ, SIG_IGN);
    return all;
}

int signal_received() noexcept { return received; }

bool told_to_stop() { return signal_received() != 0 || !std::cout; }

void stop(std::string done) { throw stopped{std::move(done)}; }

void stop_if_told() {
    if (told_to_stop()) stop({});
}

void wait_for_input(int descriptor) {
    pollfd wanted[] = {{descriptor, POLLIN, 0}, {wake_reader, POLLIN, 0}};
    while (signal_received() == 0) {
        const int ready = poll(wanted, 2, -1);
        if (signal_received() != 0) break;
        // Whatever else is wrong with the descriptor is for the read to say.
        if (ready > 0 || errno != EINTR) return;
    }
    stop({});
}

void note_done(uint64_t entries) noexcept { entries_done = entries; }

void end_by_signal() noexcept {
    const int signal = signal_received();
    std::signal(signal, SIG_DFL);
    raise(signal);
    _exit(128 + signal);  // where the signal is blocked
}

}  // namespace halden::tool
