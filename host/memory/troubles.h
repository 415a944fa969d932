#pragma once

// What an adapter met that is not as it should be: rows that hold what no write leaves there, and
// memories that cannot be mapped. Each is kept once, by name, in the order in which they were met,
// so that a tool can say at the end of any command why its answer is not the whole one.
//
// All functions may be called from any thread.

#include "host/memory/memory_map.h"

#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

namespace halden::host {

class trouble_list {
  public:
    // In place of a row: the memory as a whole.
    static constexpr uint32_t whole_memory = UINT32_MAX;
    // Of one memory, so many rows are named; the text of one more says that there are others.
    static constexpr size_t most_rows = 8;

    // Rows of the memory of `table` that `where` names; `name` is the memory's own.
    void note(memory where, uint32_t table, uint32_t row, const std::string &name,
              const std::string &what);
    // It was put right.
    void forget(memory where, uint32_t table, uint32_t row);
    std::vector<std::string> texts() const;

  private:
    struct trouble {
        memory where;
        uint32_t table;
        uint32_t row;
        bool stands_for_others;
        std::string text;
    };

    mutable std::mutex lock_;
    std::vector<trouble> met_;
};

}  // namespace halden::host
