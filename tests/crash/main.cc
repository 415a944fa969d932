// crash_kills DIRECTORY KILLS [SEED]: kills so many processes at work on an adapter in DIRECTORY,
// which is to be empty, and says what they left. 1 when any of it was wrong.

#include "host/trace/trace.h"
#include "tests/crash/kills.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>

int main(int count, char **given) {
    if (count < 3 || count > 4) {
        std::fprintf(stderr, "usage: crash_kills DIRECTORY KILLS [SEED]\n");
        return 2;
    }
    const auto kills = static_cast<uint32_t>(std::strtoul(given[2], nullptr, 10));
    const uint64_t seed =
        count > 3 ? std::strtoull(given[3], nullptr, 10) : uint64_t{std::random_device{}()};
    std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
    std::fflush(stdout);
    halden::host::trace::set_level("off");
    const auto start = std::chrono::steady_clock::now();
    halden::crash::killer killer(given[1], seed);
    const halden::crash::kill_figures &done = killer.run(kills);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    for (const std::string &complaint : done.complaints) std::printf("%s\n", complaint.c_str());
    std::printf(
        "%u kills: %u at random, %u behind a store; %u of openers\n"
        "behind every store in turn: %u operations, %u openings\n%llu operations acknowledged, "
        "%llu flows refused\n%u wrong\n%.1f seconds\n",
        done.kills, done.at_random, done.behind_stores, done.of_openers, done.swept,
        done.swept_openings, static_cast<unsigned long long>(done.acknowledged),
        static_cast<unsigned long long>(done.refused), done.wrong, took.count());
    return done.wrong != 0 || done.kills < kills ? 1 : 0;
}
