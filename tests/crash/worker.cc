#include "tests/crash/worker.h"

#include "host/state/table_state.h"
#include "host/trace/trace.h"
#include "tests/crash/store_trap.h"

#include <sys/prctl.h>
#include <unistd.h>

#include <csignal>
#include <exception>
#include <thread>

namespace halden::crash {

namespace {

using test::change;
using test::shadow_kind;

void say(int messages, const message &what) {
    if (write(messages, &what, sizeof what) != ssize_t{sizeof what}) _exit(worker_failed);
}

// Every memory mapped, so that the trap sees each of them from the first store on.
void map_all(host::adapter &hardware) {
    uint8_t image[1024];
    uint16_t bits = 0;
    for (const host::table_memory &memory : host::all_table_memories()) {
        hardware.next_used(memory.id, 0);
        if (memory.data == host::memory::sram) hardware.sram_read(memory.id, 0, image, &bits);
        if (memory.is_flow()) hardware.hbm_rows(memory.id);
    }
}

void run_one(host::adapter &hardware, shadow &wanted, const operation &op, int messages,
             uint8_t thread) {
    say(messages, {message::begun, thread, 0, op});
    const uint32_t result = shadow::run(hardware, op);
    if (result == 0) wanted.note(op);
    say(messages, {message::ended, thread, result, op});
}

void work_until_killed(host::adapter &hardware, const work &what, shadow wanted, int messages,
                       unsigned thread) {
    std::mt19937_64 random(what.seed * most_threads + thread);
    for (;;)
        run_one(hardware, wanted, any_operation(wanted, random, thread, what.threads), messages,
                static_cast<uint8_t>(thread));
}

[[noreturn]] void run_worker(const work &what, shadow wanted, int messages) {
    const auto hardware = host::adapter::open(what.directory, shadow::depths);
    const bool opening_alone = what.threads == 0 && what.then.empty();
    if (what.last_store != 0) map_all(*hardware);
    if (opening_alone && what.last_store != 0) store_trap::arm(what.directory, what.last_store);
    say(messages, {message::ready, 0, 0, {}});
    host::table_state tables(*hardware);
    if (opening_alone) _exit(worker_done);
    for (const operation &op : what.first) run_one(*hardware, wanted, op, messages, 0);
    for (const operation &op : what.then) {
        say(messages, {message::begun, 0, 0, op});
        store_trap::arm(what.directory, what.last_store);
        const uint32_t result = shadow::run(*hardware, op);
        store_trap::disarm();
        say(messages, {message::ended, 0, result, op});
    }
    if (!what.then.empty()) _exit(worker_done);
    std::vector<std::thread> others;
    for (unsigned thread = 1; thread < what.threads; ++thread)
        others.emplace_back(
            [&, thread] { work_until_killed(*hardware, what, wanted, messages, thread); });
    work_until_killed(*hardware, what, wanted, messages, 0);
    _exit(worker_failed);
}

}  // namespace

operation any_operation(const shadow &wanted, std::mt19937_64 &random, unsigned thread,
                        unsigned threads) {
    const auto below = [&](size_t end) { return static_cast<uint16_t>(random() % end); };
    const auto tables = shadow::tables();
    static const uint16_t flows = shadow::number_of(host::flow_table);
    operation op = {};
    // Flows and keyed tables have the longest ways; there are few of them.
    do {
        op.table = thread != 0 || random() % 3 == 0 ? flows : below(tables.size());
    } while (tables[op.table].kind == shadow_kind::index && random() % 3 != 0);
    do {
        op.entry = below(tables[op.table].candidates.size());
    } while (op.table == flows && op.entry % threads != thread);
    op.value = static_cast<uint32_t>(random());
    const bool there = wanted.has(op.table, op.entry);
    op.what = !there ? change::create : random() % 3 == 0 ? change::update : change::remove;
    // Some are to be refused.
    if (random() % 16 == 0) op.what = static_cast<change>(random() % test::changes);
    return op;
}

int start_worker(const work &what, const shadow &wanted, int messages) {
    const pid_t child = fork();
    if (child != 0) return child;
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    host::trace::set_level("off");
    try {
        run_worker(what, wanted, messages);
    } catch (const std::exception &) {
        _exit(worker_unopened);
    }
}

}  // namespace halden::crash
