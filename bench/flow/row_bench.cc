// row_bench: what one random row of the full flow table costs on this machine, read as a look-up
// must read it (the next row is known when this one is there), and with its address known ahead.

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <numeric>
#include <random>
#include <vector>

#include "host/memory/region.h"

namespace {

constexpr size_t row_bytes = 128, rows = 4194304;
constexpr size_t reads = 4000000, ahead = 32;

double cpu_nanoseconds() {
    timespec now;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return 1e9 * static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec);
}

}  // namespace

int main() {
    const halden::host::region memory({.pages = halden::host::paging::huge}, rows * row_bytes);
    const auto row = [&](size_t n) {
        return reinterpret_cast<volatile uint64_t *>(memory.base() + n * row_bytes);
    };
    // One circle through all rows in random order: each row names the next one in both its lines.
    std::vector<uint32_t> order(rows);
    std::iota(order.begin(), order.end(), 0u);
    std::shuffle(order.begin(), order.end(), std::mt19937(1));
    for (size_t i = 0; i < rows; ++i) {
        row(order[i])[0] = order[(i + 1) % rows];
        row(order[i])[8] = order[(i + 1) % rows];
    }

    double begin = cpu_nanoseconds();
    uint64_t at = 0;
    for (size_t i = 0; i < reads; ++i) at = (row(at)[0] + row(at)[8]) / 2;
    const double dependent = (cpu_nanoseconds() - begin) / reads;

    begin = cpu_nanoseconds();
    uint64_t sum = at;
    for (size_t i = 0; i < reads; ++i) {
        const auto next = memory.base() + order[(i + ahead) % rows] * row_bytes;
        __builtin_prefetch(next);
        __builtin_prefetch(next + row_bytes / 2);
        sum += row(order[i])[0] + row(order[i])[8];
    }
    const double prefetched = (cpu_nanoseconds() - begin) / reads;
    std::printf("a random row of 128 bytes, ns: %.1f dependent, %.1f prefetched (%llu)\n",
                dependent, prefetched, static_cast<unsigned long long>(sum));
    return 0;
}
