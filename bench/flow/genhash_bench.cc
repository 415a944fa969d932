// The flow hash beside other ways to it. All work on the same keys, one after another.

#include <benchmark/benchmark.h>

#include <cstring>
#include <random>

#include "ftl/flow_hash.h"
#include "host/adapter.h"
#include "p4gen/p4/src/crc32.h"
#ifdef HALDEN_HAVE_ISAL
#include <isa-l.h>
#endif

namespace {

namespace lay = flow_layout;

constexpr size_t key_count = 256;  // fits the first cache

std::vector<flow_hash_entry_t> make_entries() {
    std::mt19937_64 random(1);
    std::vector<flow_hash_entry_t> out(key_count);
    for (flow_hash_entry_t &entry : out)
        for (uint32_t i = lay::first_key_word; i < lay::body_words; ++i)
            lay::store_word(entry.body(), i, random() & lay::key_mask[i]);
    return out;
}

// The entry's body as a compiler's bit-fields have it.
struct __attribute__((packed)) bit_fields {
    __extension__ unsigned __int128 pad_low : 91;
    uint64_t entry_valid : 1, more_hints : 21, more_hashes : 1;
    uint64_t hint8 : 21, hash8 : 10, hint7 : 21, hash7 : 10, hint6 : 21, hash6 : 10;
    uint64_t hint5 : 21, hash5 : 10, hint4 : 21, hash4 : 10, hint3 : 21, hash3 : 10;
    uint64_t hint2 : 21, hash2 : 10, hint1 : 21;
    uint8_t sip[16];
    uint64_t hash1 : 10, flow_idx : 22, pad_mid : 40;
    uint8_t dip[16];
    uint64_t sport : 16, dport : 16;
    uint8_t smac[6], dmac[6];
    uint64_t ktype : 8, port_id : 11, rsvd : 5, outer_flow_id : 16, vni : 24, vlan : 16, proto : 8;
    uint8_t spare[16];
};
static_assert(sizeof(bit_fields) == lay::body_bytes);

void genhash(benchmark::State &state) {
    auto entries = make_entries();
    // Hashing needs no memory behind the table.
    static sdk::table::flow_hash table;
    sdk::table::ftl_base *base = &table;
    benchmark::DoNotOptimize(base);
    size_t i = 0;
    for (auto _ : state) {
        sdk::table::sdk_table_api_params_t params = {};
        params.entry = &entries[i++ % key_count];
        base->genhash_(&params);
        benchmark::DoNotOptimize(params.hash_value);
    }
}
BENCHMARK(genhash)->Name("genhash_, virtual call");

void portable_crc(benchmark::State &state) {
    auto entries = make_entries();
    uint8_t image[lay::body_bytes];
    size_t i = 0;
    const auto &crc = flow_crc::portable;
    for (auto _ : state)
        benchmark::DoNotOptimize(crc.pack_key(image, entries[i++ % key_count].body()));
}
BENCHMARK(portable_crc)->Name("portable: build, reverse, CRC");

void copy(benchmark::State &state) {
    auto entries = make_entries();
    uint8_t image[lay::body_bytes];
    size_t i = 0;
    for (auto _ : state) {
        std::memcpy(image, entries[i++ % key_count].body(), sizeof image);
        benchmark::DoNotOptimize(image);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(copy)->Name("memcpy of the body");

#ifdef HALDEN_HAVE_ISAL
void isal(benchmark::State &state) {
    auto entries = make_entries();
    size_t i = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(
            ~crc32_ieee(~0u, entries[i++ % key_count].body(), lay::body_bytes));
}
BENCHMARK(isal)->Name("libisal's CRC alone");

void bit_field_build(benchmark::State &state) {
    auto entries = make_entries();
    bit_fields built;
    uint8_t image[lay::body_bytes];
    size_t i = 0;
    for (auto _ : state) {
        bit_fields from;
        std::memcpy(&from, entries[i++ % key_count].body(), sizeof from);
        std::memset(&built, 0, sizeof built);
        std::memcpy(built.sip, from.sip, sizeof built.sip);
        std::memcpy(built.dip, from.dip, sizeof built.dip);
        built.sport = from.sport;
        built.dport = from.dport;
        std::memcpy(built.smac, from.smac, sizeof built.smac);
        std::memcpy(built.dmac, from.dmac, sizeof built.dmac);
        built.ktype = from.ktype;
        built.port_id = from.port_id;
        built.rsvd = from.rsvd;
        built.outer_flow_id = from.outer_flow_id;
        built.vni = from.vni;
        built.vlan = from.vlan;
        built.proto = from.proto;
        std::memcpy(built.spare, from.spare, sizeof built.spare);
        benchmark::DoNotOptimize(built);
        const auto *bytes = reinterpret_cast<const uint8_t *>(&built);
        for (size_t b = 0; b < sizeof built; ++b) image[sizeof image - 1 - b] = bytes[b];
        benchmark::DoNotOptimize(~crc32_ieee(~0u, image, sizeof image));
    }
}
BENCHMARK(bit_field_build)->Name("bit-fields, byte reversal, libisal's CRC");
#endif

}  // namespace

int main(int argc, char **argv) {
    halden::host::current();  // the library's imports need a host
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
