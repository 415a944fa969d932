#pragma once

// An error a person reads: one line that says where, what was given and what is allowed, and the
// status with which the tool ends. Which one it is depends on where the trouble came from:
//
//     usage     typed on the command line: a command, an option, a table, a field, a value, a row
//     refused   in a file or capture; or what the tables refuse as they stand now: full, duplicate
//     adapter   the adapter and the machine: cannot be opened, damaged memory, a refused call of
//               the ASIC layer, a full disk, no memory left
//     missed    nothing is wrong, and the answer is no: no such entry, a miss, a difference
//
// The functions that read values serve files and the command line alike and know of no other status
// than `refused`; the code that reads the command line has `typed` around them.

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

#include "host/trace/printable.h"

namespace halden::tool {

enum class exit_status : uint8_t { done = 0, missed = 1, usage = 2, refused = 3, adapter = 4 };

class failure : public std::runtime_error {
  public:
    explicit failure(const std::string &text, exit_status status = exit_status::refused)
        : std::runtime_error(text), status_(status) {}
    exit_status status() const { return status_; }
    // The same, found inside `where`: "lif_mapping: src_lport: ...".
    failure inside(const std::string &where) const {
        return failure(where + ": " + what(), status_);
    }

  private:
    exit_status status_;
};

// Ends a command that has said all there is to say, and whose answer is no.
struct missed {};

// What `read` answers; what it refuses was typed.
template <class Read>
decltype(auto) typed(Read read) {
    try {
        return read();
    } catch (const failure &error) {
        throw failure(error.what(), exit_status::usage);
    }
}

using host::trace::printable;
// What was given, as an error quotes it: printable, and cut when it is long, between characters.
std::string quotable(std::string_view given);

}  // namespace halden::tool
