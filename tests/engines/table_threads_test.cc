// Several threads on the table API: different tables, different rows of one table, and readers of
// entries that stay beside a writer of others. Every read answers exactly what was written.

#include <atomic>
#include <thread>
#include <vector>

#include "tests/engines/table_bed.h"
#include "tev_tbl.h"

namespace halden::test {
namespace {

constexpr unsigned rounds = 400;

const api_table &table_named(const std::string &name) {
    for (const api_table &t : api_tables())
        if (t.name == name) return t;
    std::abort();
}

// Calls for one table, with single-byte keys and data that hardware keeps whole.
struct caller {
    const api_table &t;

    bytes key(uint32_t number) const {
        if (t.kind == api_kind::index) return key_of_row(t, number);
        bytes out(t.key_bytes);
        out[0] = static_cast<uint8_t>(number);
        return out;
    }
    bytes spec(uint32_t number, uint8_t value) const {
        bytes out(t.spec_bytes());
        const bytes k = key(number);
        std::copy(k.begin(), k.end(), out.begin() + 1);
        out[t.data_at()] = value;
        return out;
    }
    bool create(uint32_t number, uint8_t value) const {
        return t.create(spec(number, value).data()) == 0;
    }
    bool update(uint32_t number, uint8_t value) const {
        return t.update(spec(number, value).data()) == 0;
    }
    bool remove(uint32_t number) const { return t.remove(key(number).data()) == 0; }
    bool absent(uint32_t number) const { return t.find(key(number).data()) == 4; }
    bool reads(uint32_t number, uint8_t value) const {
        bytes info(t.spec_bytes());
        return t.read(key(number).data(), info.data()) == 0 && info[t.data_at()] == value;
    }
    // One entry's whole life.
    bool live(uint32_t number, uint8_t value) const {
        const auto other = static_cast<uint8_t>(value ^ 1);
        return create(number, value) && reads(number, value) && update(number, other) &&
               reads(number, other) && remove(number) && absent(number);
    }
};

// The first data byte of these tables is one of a field of eight bits or more.
constexpr const char *tested[] = {"vlan_mapping", "tunnel_terminate_sa_v4", "tunnel_terminate_v4",
                                  "vlan_vela_mapping", "conntrack_ingress"};

class TableThreads : public TableBed {};

TEST_P(TableThreads, DifferentEntriesOfOneTable) {
    const caller calls{t()};
    std::atomic<unsigned> failures = 0;
    std::vector<std::thread> threads;
    for (uint32_t thread = 0; thread < 3; ++thread)
        threads.emplace_back([&, thread] {
            for (unsigned round = 0; round < rounds; ++round)
                failures += !calls.live(thread * 40 + round % 40, static_cast<uint8_t>(round));
        });
    for (std::thread &thread : threads) thread.join();
    EXPECT_EQ(failures, 0u);
}

TEST_P(TableThreads, ReadersOfEntriesThatStayBesideAWriterOfOthers) {
    const caller calls{t()};
    for (uint32_t number = 0; number < 40; ++number)
        ASSERT_TRUE(calls.create(number, static_cast<uint8_t>(number ^ 0x5a)));
    std::atomic<unsigned> failures = 0, reads = 0;
    std::atomic<bool> done = false;
    std::vector<std::thread> threads;
    for (unsigned reader = 0; reader < 2; ++reader)
        threads.emplace_back([&, reader] {
            for (uint32_t n = reader; !done || n < 200; ++n) {
                failures += !calls.reads(n % 40, static_cast<uint8_t>((n % 40) ^ 0x5a));
                ++reads;
            }
        });
    for (unsigned round = 0; round < rounds; ++round)
        failures += !calls.live(100 + round % 60, static_cast<uint8_t>(round));
    done = true;
    for (std::thread &thread : threads) thread.join();
    EXPECT_EQ(failures, 0u);
    EXPECT_GE(reads, 400u - 1);
}

INSTANTIATE_TEST_SUITE_P(Tables, TableThreads, testing::ValuesIn([] {
                             std::vector<api_table> out;
                             for (const char *name : tested) out.push_back(table_named(name));
                             return out;
                         }()),
                         name_of_tested);

class AllTables : public TableThreads {};

TEST_P(AllTables, AtOnce) {
    std::atomic<unsigned> failures = 0;
    std::vector<std::thread> threads;
    for (const char *name : tested)
        threads.emplace_back([&, name] {
            const caller calls{table_named(name)};
            for (unsigned round = 0; round < rounds; ++round)
                failures += !calls.live(round % 100, static_cast<uint8_t>(round));
        });
    for (std::thread &thread : threads) thread.join();
    EXPECT_EQ(failures, 0u);
}

INSTANTIATE_TEST_SUITE_P(Tables, AllTables, testing::Values(table_named("vlan_mapping")),
                         name_of_tested);

}  // namespace
}  // namespace halden::test
