#pragma once

// Counts the stores of this process to the files that it has mapped from a directory, and kills it
// behind the one that is asked for. Nothing in the code under test takes part: the mappings are
// made read-only, each store faults, is let through alone by a single step of the processor, and
// counts. So no store is missed because nobody thought of telling about it.
//
//     store_trap::arm(directory, 3);   // the third store from here on is the last
//     ...
//     const uint32_t stores = store_trap::disarm();
//
// For a process of one thread, on x86-64 alone. Memories that are mapped while the trap is armed
// are watched from the next store on.

#include <cstdint>
#include <string>

namespace halden::crash {

class store_trap {
  public:
    static bool is_supported();
    // 0: no store is the last.
    static void arm(const std::string &directory, uint32_t last);
    static uint32_t disarm();
};

}  // namespace halden::crash
