#pragma once

// The processes that are killed. A worker opens the adapter's directory, says of every operation
// that it begins and what became of it, and goes on until somebody kills it.

#include "tests/model/shadow.h"

#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace halden::crash {

using test::operation;
using test::shadow;

inline constexpr unsigned most_threads = 4;

// What a worker says through its pipe.
struct message {
    enum kind : uint8_t { begun, ended, ready };
    kind what;
    uint8_t thread;
    uint32_t result;  // of what ended
    operation op;
};

// Exit statuses of a worker that was not killed: its work is done, or a message could not be sent.
inline constexpr int worker_done = 0, worker_failed = 80, worker_unopened = 81;

struct work {
    std::string directory;
    uint64_t seed = 0;
    unsigned threads = 1;  // 0: none, the adapter is only opened
    // Before anything is armed, to make the last operation possible.
    std::vector<operation> first;
    // One operation alone, or an opening without any, cut off behind this store; 0: it is not.
    std::vector<operation> then;
    uint32_t last_store = 0;
};

// An operation that the table must take, most of the time. Of `threads` threads each has entries of
// its own, and only the first works on others than flows.
operation any_operation(const shadow &wanted, std::mt19937_64 &random, unsigned thread,
                        unsigned threads);

// A process that does `what`, from the state `wanted`; its id. It writes to `messages`.
int start_worker(const work &what, const shadow &wanted, int messages);

}  // namespace halden::crash
