#pragma once

// How a command ends before it has done everything: on SIGINT, SIGTERM, SIGHUP and SIGPIPE, and
// when standard output takes no more.
//
//     for (const entry &e : entries) {
//         if (told_to_stop()) stop("entries 1 to 120 were applied, entries 121 to 500 were not");
//         apply(e);
//     }
//
// The signal only leaves a mark, so the entry under way is finished, the adapter is closed as at
// any other end, and the last thing the process does is to end by that signal: a shell sees
// 128 + n. Calls that wait are cut short by it, and wait_for_input() is for those that would begin
// to wait after it. A signal that is ignored at the start (nohup) stays ignored.
//
// SIGBUS, which is what a page of a memory file gets that the disk has no room for, cannot be
// returned from: its handler says what had been done, and ends the process with status 4.

#include <cstdint>
#include <string>

namespace halden::tool {

// Before anything else. False when the process has no descriptors left for it.
bool watch_signals() noexcept;

// The signal that came first; 0 when none did.
int signal_received() noexcept;
// A signal has come, or what was printed could not be written.
bool told_to_stop();

// `done` is what a person has to know about what stays; empty when nothing was changed.
struct stopped {
    std::string done;
};
[[noreturn]] void stop(std::string done);
// For work that changes nothing.
void stop_if_told();

// Returns when `descriptor` can be read from, or is at its end; stops when a signal comes first.
void wait_for_input(int descriptor);

// So many entries are done, for the handler of SIGBUS.
void note_done(uint64_t entries) noexcept;

// Ends the process by the signal that was received.
[[noreturn]] void end_by_signal() noexcept;

}  // namespace halden::tool
