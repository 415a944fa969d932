// flow_bench [FLOWS [ROUNDS [NAME]]]: create, hit, miss and delete on the flow table and its peers,
// in one run.
//
// All contenders stand in memory at once, empty between rounds, and take turns: first all create,
// then all hit, and so on. A figure is the median of the rounds, in nanoseconds of CPU time a
// call. With NAME only contenders whose name contains it take part. With HALDEN_BENCH_APART set
// each single call ends before the next one begins.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <random>

#include "bench/flow/contender.h"

namespace {

using namespace halden::bench;

constexpr const char *phases[] = {"create", "hit", "miss", "delete"};
constexpr size_t phase_count = 4;

std::vector<padded_key> make_keys(uint32_t count, uint64_t seed) {
    std::mt19937_64 random(seed);
    std::vector<padded_key> keys(count);
    for (padded_key &k : keys) {
        k = {};
        uint64_t words[4];
        for (uint64_t &word : words) word = random();
        std::memcpy(k.key.metadata_flow_key_sip, &words[0], 8);
        std::memcpy(k.key.metadata_flow_key_dip, &words[1], 8);
        k.key.metadata_flow_key_sport = static_cast<uint16_t>(words[2]);
        k.key.metadata_flow_key_dport = static_cast<uint16_t>(words[2] >> 16);
        k.key.metadata_flow_key_proto = words[2] >> 63 != 0 ? 6 : 17;
        k.key.metadata_flow_key_ktype = 1;
        k.key.metadata_flow_key_vlan = static_cast<uint16_t>(words[3] & 0xfff);
    }
    return keys;
}

std::vector<uint32_t> in_order(uint32_t count) {
    std::vector<uint32_t> out(count);
    for (uint32_t i = 0; i < count; ++i) out[i] = i;
    return out;
}

// Of this thread: what others on the machine do counts less than on a wall clock.
double cpu_nanoseconds() {
    timespec now;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return 1e9 * static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec);
}

struct entrant {
    std::unique_ptr<contender> table;
    std::vector<double> nanoseconds[phase_count];
};

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const size_t n = values.size();
    return n % 2 != 0 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
}

void run_phase(entrant &e, size_t phase, const std::vector<padded_key> &keys, order which) {
    const double begin = cpu_nanoseconds();
    uint64_t done = 0;
    switch (phase) {
        case 0:
            done = e.table->create(keys, which);
            break;
        case 1:
            done = e.table->hit(keys, which);
            break;
        case 2:
            done = e.table->miss(keys, which);
            break;
        default:
            done = e.table->remove(keys, which);
            break;
    }
    const double took = cpu_nanoseconds() - begin;
    if (done != which.size()) {
        std::fprintf(stderr, "%s: %s: %llu of %zu calls went as they should\n",
                     e.table->name().c_str(), phases[phase], static_cast<unsigned long long>(done),
                     which.size());
        std::exit(1);
    }
    e.nanoseconds[phase].push_back(took / static_cast<double>(which.size()));
}

void add(std::vector<entrant> &to, std::unique_ptr<contender> table, const char *what,
         const std::string &why) {
    if (table == nullptr) {
        std::fprintf(stderr, "without %s: %s\n", what, why.c_str());
        return;
    }
    to.emplace_back();
    to.back().table = std::move(table);
}

}  // namespace

int main(int argc, char **argv) {
    const auto flows = static_cast<uint32_t>(argc > 1 ? std::atol(argv[1]) : 1000000);
    const auto rounds = static_cast<unsigned>(argc > 2 ? std::atol(argv[2]) : 15);
    if (flows == 0 || flows > 4194304 || rounds == 0) {
        std::fprintf(stderr, "usage: flow_bench [FLOWS up to 4194304 [ROUNDS [NAME]]]\n");
        return 2;
    }
    const auto keys = make_keys(flows, 1), absent = make_keys(flows, 2);
    const auto straight = in_order(flows);
    auto shuffled = straight;
    std::shuffle(shuffled.begin(), shuffled.end(), std::mt19937(3));
    // A packet's key is at hand when it is looked up: the keys of a phase stand in its order.
    std::vector<padded_key> shuffled_keys(flows);
    for (uint32_t i = 0; i < flows; ++i) shuffled_keys[i] = keys[shuffled[i]];

    calls_apart = std::getenv("HALDEN_BENCH_APART") != nullptr;
    const std::string only = argc > 3 ? argv[3] : "";
    std::vector<entrant> all;
    std::string why = "not built in";
    const auto enter = [&](const char *name, auto make) {
        if (std::string_view(name).find(only) != std::string_view::npos)
            add(all, make(), name, why);
    };
    enter("halden, single calls", make_single);
    enter("halden, batch calls", make_batch);
    enter("absl::flat_hash_map", [&] { return make_absl(flows); });
    enter("rte_hash", [&] { return make_rte_hash(flows, false, why); });
    enter("rte_hash, bulk", [&] { return make_rte_hash(flows, true, why); });

    for (unsigned round = 0; round < rounds; ++round)
        for (size_t phase = 0; phase < phase_count; ++phase)
            for (size_t i = 0; i < all.size(); ++i)
                // Nobody is always first.
                run_phase(all[(i + round) % all.size()], phase,
                          phase == 0   ? keys
                          : phase == 2 ? absent
                                       : shuffled_keys,
                          phase == 0 || phase == 2 ? order(straight) : order(shuffled));

    std::printf("%u flows, median of %u rounds, ns a call%s\n%-24s", flows, rounds,
                calls_apart ? ", calls apart" : "", "");
    for (const char *phase : phases) std::printf("%9s", phase);
    std::printf("\n");
    for (const entrant &e : all) {
        std::printf("%-24s", e.table->name().c_str());
        for (const auto &values : e.nanoseconds) std::printf("%9.1f", median(values));
        std::printf("\n");
    }
    return 0;
}
