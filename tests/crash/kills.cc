#include "tests/crash/kills.h"

#include "host/state/table_state.h"
#include "tests/crash/store_trap.h"

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <exception>
#include <filesystem>
#include <stdexcept>

namespace halden::crash {

namespace {

using test::change;
using clock = std::chrono::steady_clock;

constexpr long never = -1;
constexpr size_t most_complaints = 40;

struct pipe_ends {
    int out = -1, in = -1;
    pipe_ends() {
        int ends[2];
        if (pipe(ends) != 0) throw std::runtime_error("no pipe can be made");
        out = ends[0];
        in = ends[1];
    }
    ~pipe_ends() {
        close(out);
        if (in >= 0) close(in);
    }
    pipe_ends(const pipe_ends &) = delete;
    pipe_ends &operator=(const pipe_ends &) = delete;
    void close_in() {
        close(in);
        in = -1;
    }
};

// Holes stay holes: the files are some hundred megabytes long and nearly empty.
void copy_directory(const std::string &from, const std::string &to) {
    std::filesystem::remove_all(to);
    const pid_t child = fork();
    if (child == 0) {
        execlp("cp", "cp", "-a", "--sparse=always", from.c_str(), to.c_str(), nullptr);
        _exit(127);
    }
    int status = 0;
    if (waitpid(child, &status, 0) != child || status != 0)
        throw std::runtime_error(from + " cannot be copied to " + to);
}

}  // namespace

killer::killer(std::string directory, uint64_t seed)
    : directory_(std::move(directory)), random_(seed) {
    shadow::tables();  // made before the first fork
}

void killer::complain(const std::string &what) {
    if (complained_at_ != figures_.kills) ++figures_.wrong;
    complained_at_ = figures_.kills;
    if (figures_.complaints.size() < most_complaints)
        figures_.complaints.push_back("kill " + std::to_string(figures_.kills) + ": " + what);
}

void killer::note_kill(uint32_t kill_figures::*kind) {
    ++figures_.kills;
    ++(figures_.*kind);
}

std::vector<operation> killer::under_way() const {
    std::vector<operation> out;
    for (const auto &each : now_) out.insert(out.end(), each.begin(), each.end());
    return out;
}

// The map follows what was acknowledged, and knows what had to be refused.
void killer::take(const message &said) {
    auto &now = now_[said.thread];
    if (said.what == message::ready) return;
    if (said.what == message::begun) {
        now = {said.op};
        return;
    }
    now.clear();
    const bool must = wanted_.accepts(said.op);
    ++figures_.acknowledged;
    if (said.result == 0 && must) {
        wanted_.note(said.op);
    } else if (said.result == 0) {
        complain(shadow::text_of(said.op) + ": was taken, had to be refused");
        wanted_.note(said.op);
    } else if (must) {
        if (!shadow::may_be_refused(said.op))
            complain(shadow::text_of(said.op) + ": refused with " + std::to_string(said.result));
        ++figures_.refused;
    }
}

// Reads what the worker says until it ends, and kills it when its time is over, counted from its
// first message.
killer::outcome killer::run_worker(const work &what, long microseconds) {
    pipe_ends messages;
    const pid_t child = start_worker(what, wanted_, messages.in);
    if (child < 0) throw std::runtime_error("no process can be made");
    messages.close_in();
    outcome out;
    clock::time_point end = clock::time_point::max();
    bool alive = true;
    for (message said;;) {
        pollfd waiting = {messages.out, POLLIN, 0};
        timespec left = {};
        const bool limited = alive && end != clock::time_point::max();
        if (limited) {
            const auto rest = std::max<long long>(
                0,
                std::chrono::duration_cast<std::chrono::nanoseconds>(end - clock::now()).count());
            left = {static_cast<time_t>(rest / 1'000'000'000),
                    static_cast<long>(rest % 1'000'000'000)};
        }
        const bool over = limited && clock::now() >= end;
        if (over || ppoll(&waiting, 1, limited ? &left : nullptr, nullptr) == 0) {
            kill(child, SIGKILL);
            alive = false;
            continue;
        }
        if (read(messages.out, &said, sizeof said) != ssize_t{sizeof said}) break;
        if (said.what == message::ready && microseconds != never)
            end = clock::now() + std::chrono::microseconds(microseconds);
        if (said.what == message::ended && !what.then.empty() && said.op == what.then.back())
            out.acknowledged = true;
        take(said);
    }
    int status = 0;
    if (waitpid(child, &status, 0) != child) throw std::runtime_error("a process is lost");
    out.killed = WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
    if (!out.killed && (!WIFEXITED(status) || WEXITSTATUS(status) != worker_done))
        complain("a worker ended by itself, status " + std::to_string(status));
    return out;
}

// What hardware goes on doing while no process is there.
void killer::look_by_memory() {
    try {
        const auto hardware = host::adapter::open(directory_, shadow::depths);
        const auto cut_off = under_way();
        for (const std::string &wrong : wanted_.hardware_differences(*hardware, cut_off))
            complain("before it was reopened: " + wrong);
    } catch (const std::exception &error) {
        complain(error.what());
    }
}

void killer::look_by_engines() {
    try {
        const auto hardware = host::adapter::open(directory_, shadow::depths);
        const host::table_state tables(*hardware);
        for (const operation &op : under_way())
            if (const std::string wrong = wanted_.settle(*hardware, op); !wrong.empty())
                complain(wrong);
        for (auto &each : now_) each.clear();
        for (const std::string &wrong : wanted_.differences(*hardware)) complain(wrong);
    } catch (const std::exception &error) {
        complain(error.what());
    }
}

// Sometimes the process that reopens is killed as well, and the next one.
void killer::put_right() {
    look_by_memory();
    if (store_trap::is_supported() && below(6) == 0) sweep_opening();
    while (figures_.kills < most_ && below(4) == 0) kill_opener_at_random();
    look_by_engines();
}

void killer::kill_opener_at_random() {
    work opening;
    opening.directory = directory_;
    opening.threads = 0;
    if (!run_worker(opening, static_cast<long>(below(3000))).killed) return;  // it was over before
    note_kill(&kill_figures::at_random);
    ++figures_.of_openers;
    look_by_memory();
}

void killer::sweep_opening() {
    const std::string left = directory_ + ".left";
    copy_directory(directory_, left);
    const shadow wanted = wanted_;
    const std::vector<std::vector<operation>> now(std::begin(now_), std::end(now_));
    const auto go_back = [&] {
        copy_directory(left, directory_);
        wanted_ = wanted;
        std::copy(now.begin(), now.end(), std::begin(now_));
    };
    for (uint32_t store = 1; figures_.kills < most_; ++store) {
        work opening;
        opening.directory = directory_;
        opening.threads = 0;
        opening.last_store = store;
        if (!run_worker(opening, never).killed) {
            figures_.swept_openings += store > 1;
            break;
        }
        note_kill(&kill_figures::behind_stores);
        ++figures_.of_openers;
        look_by_memory();
        look_by_engines();
        go_back();
    }
    std::filesystem::remove_all(left);
}

void killer::at_random(unsigned threads) {
    work what;
    what.directory = directory_;
    what.seed = random_();
    what.threads = threads;
    run_worker(what, static_cast<long>(below(30000)));
    note_kill(&kill_figures::at_random);
    put_right();
}

// Half of them flows: no other operation changes as many rows, in as many ways. Those that were to
// be refused store nothing.
operation killer::operation_to_cut() {
    using enum test::shadow_kind;
    static constexpr test::shadow_kind kinds[] = {
        flow, flow,    flow,    flow,    flow,  flow,     hash,     hash,
        hash, ternary, ternary, ternary, index, raw_tcam, raw_sram, raw_hbm};
    const test::shadow_kind kind = kinds[below(std::size(kinds))];
    operation op = {};
    do {
        op.table = static_cast<uint16_t>(below(static_cast<uint32_t>(shadow::tables().size())));
    } while (shadow::tables()[op.table].kind != kind);
    const auto entries = static_cast<uint32_t>(shadow::tables()[op.table].candidates.size());
    do {
        op.entry = static_cast<uint16_t>(below(entries));
        op.what = static_cast<change>(below(test::changes));
        op.value = static_cast<uint32_t>(random_());
    } while (!wanted_.accepts(op));
    return op;
}

void killer::cut_operation() {
    work what;
    what.directory = directory_;
    what.last_store = 1 + below(24);
    what.then = {operation_to_cut()};
    if (!run_worker(what, never).killed) return;  // it has fewer stores
    note_kill(&kill_figures::behind_stores);
    put_right();
}

void killer::sweep_operation() {
    const operation op = operation_to_cut();
    for (uint32_t store = 1; figures_.kills < most_; ++store) {
        work what;
        what.directory = directory_;
        what.last_store = store;
        what.then = {op};
        // What the kill before let pass is taken back, or made again.
        if (!wanted_.accepts(op)) {
            what.first = {op};
            what.first[0].what = op.what == change::create ? change::remove : change::create;
        }
        const outcome done = run_worker(what, never);
        if (done.killed) {
            note_kill(&kill_figures::behind_stores);
            put_right();
            continue;
        }
        figures_.swept += done.acknowledged;
        look_by_engines();
        return;
    }
}

const kill_figures &killer::run(uint32_t kills) {
    most_ = figures_.kills + kills;
    while (figures_.kills < most_) {
        const uint32_t kind = below(16);
        if (kind == 0 && store_trap::is_supported())
            sweep_operation();
        else if (kind < 8 && store_trap::is_supported())
            cut_operation();
        else
            at_random(kind % 2 == 0 ? most_threads : 1);
    }
    return figures_;
}

}  // namespace halden::crash
