#pragma once

// Kills processes at work on an adapter's directory, over and over, and looks at what each of them
// left: by memory alone while no process has it open, then by engines on the reopened adapter. The
// directory is the same from kill to kill, so what one kill spoils the next ones see too.
//
//     killed                 what
//     at a random instant    a worker on all tables; one with several threads; a process that opens
//                            what another left and puts it right
//     behind a store         one operation, behind any of its stores, or behind its first, its
//                            second, ... until it comes to its end; an opening in the same way,
//                            each time of a copy of what the killed process left
//
// Judged by the shadow: every operation that was acknowledged holds, one that was under way was
// done whole or not at all, nothing else changed.

#include "tests/crash/worker.h"

#include <cstdint>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace halden::crash {

struct kill_figures {
    uint32_t kills = 0;
    uint32_t at_random = 0;
    uint32_t behind_stores = 0;
    uint32_t of_openers = 0;  // among both
    uint32_t swept = 0;       // operations that were cut off behind every store they have
    uint32_t swept_openings = 0;
    uint64_t acknowledged = 0;
    uint64_t refused = 0;  // flows whose chain was at its end
    uint32_t wrong = 0;    // kills that left something wrong
    std::vector<std::string> complaints;
};

class killer {
  public:
    killer(std::string directory, uint64_t seed);

    // Goes on until there were so many kills.
    const kill_figures &run(uint32_t kills);

    const shadow &wanted() const { return wanted_; }

  private:
    struct outcome {
        bool killed = false;
        bool acknowledged = false;  // the operation that was to be cut off
    };

    void at_random(unsigned threads);
    operation operation_to_cut();
    void cut_operation();
    void sweep_operation();
    void kill_opener_at_random();
    void sweep_opening();
    void put_right();

    outcome run_worker(const work &what, long microseconds);
    void take(const message &said);
    void look_by_memory();
    void look_by_engines();
    void complain(const std::string &what);
    void note_kill(uint32_t kill_figures::*kind);
    uint32_t below(uint32_t end) { return static_cast<uint32_t>(random_() % end); }
    std::vector<operation> under_way() const;

    std::string directory_;
    std::mt19937_64 random_;
    shadow wanted_;
    kill_figures figures_;
    uint32_t most_ = 0;
    uint32_t complained_at_ = UINT32_MAX;       // the kill that the last complaint was about
    std::vector<operation> now_[most_threads];  // under way, by thread
};

}  // namespace halden::crash
