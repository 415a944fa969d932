// Memory that runs out: main() itself, with one allocation after the other failing. Each run is a
// process of its own. It ends at once, with status 4 and a line, and
// what was on the adapter is there, whole.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <new>

#include "tests/support/scratch_directory.h"

int haldenctl_main(int argc, char **argv);

namespace {

std::atomic<long> allocations = 0;
std::atomic<long> to_fail = 0;

}  // namespace

// Not inlined: g++ would take each half for a mismatch of the other.
[[gnu::noinline]] void *operator new(size_t bytes) {
    const long number = ++allocations;
    if (number == to_fail) {
        if (const std::new_handler handler = std::get_new_handler()) handler();
        throw std::bad_alloc();
    }
    if (void *memory = std::malloc(bytes == 0 ? 1 : bytes)) return memory;
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void *memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void *memory, size_t) noexcept { std::free(memory); }

namespace halden::test {
namespace {

using testing::StartsWith;

struct outcome {
    int status = 0;  // 128 + n for a signal
    long allocations = 0;
    std::string out, err;
};

std::string content(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

class Memory : public testing::Test {
  protected:
    std::string path(const char *name) const { return directory_.file(name); }

    // The allocation of that number fails; 0 for none.
    outcome run(const std::vector<std::string> &words, long failing = 0) const {
        std::vector<char *> arguments = {const_cast<char *>("haldenctl")};
        for (const std::string &word : words) arguments.push_back(const_cast<char *>(word.c_str()));
        arguments.push_back(nullptr);
        const std::string out = path("out"), err = path("err"), count = path("count");
        const pid_t child = fork();
        if (child == 0) {
            dup2(open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDOUT_FILENO);
            dup2(open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDERR_FILENO);
            const int counted = open(count.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
            allocations = 0;
            to_fail = failing;
            const int status =
                haldenctl_main(static_cast<int>(arguments.size()) - 1, arguments.data());
            const long made = allocations;
            (void)!write(counted, &made, sizeof made);
            std::exit(status);  // with what runs at the end of a process
        }
        outcome result;
        int status = 0;
        waitpid(child, &status, 0);
        result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        result.out = content(out);
        result.err = content(err);
        const std::string made = content(count);
        if (made.size() == sizeof result.allocations)
            std::memcpy(&result.allocations, made.data(), made.size());
        return result;
    }

    // From allocation `from` on, each in turn.
    void each_fails(
        const std::vector<std::string> &words, long from,
        const std::function<void()> &before = [] {}, const std::function<void()> &after = [] {}) {
        before();
        const outcome usual = run(words);
        const long all = usual.allocations;
        ASSERT_GT(all, from) << "status " << usual.status << "\n" << usual.err;
        long wrong = 0;
        for (long n = from; n <= all; ++n) {
            before();
            const outcome got = run(words, n);
            const bool right = got.status == 4 && got.err == "haldenctl: out of memory\n";
            if (!right && ++wrong <= 5)
                ADD_FAILURE() << words.back() << ": allocation " << n << " of " << all
                              << ": status " << got.status << "\n"
                              << got.err << got.out;
            after();
        }
        EXPECT_EQ(wrong, 0);
    }

    // What it takes to set up the command line, whatever the command is.
    long set_up() const { return run({"no_such_command"}).allocations - 60; }

  private:
    const scratch_directory directory_;
};

TEST_F(Memory, RunsOutWhileTheCommandLineIsSetUp) {
    each_fails({"decode", "lif_mapping", "--entry", "000064a000002002"}, 1);
}

TEST_F(Memory, RunsOutInAUsageError) { each_fails({"flows", "bogus"}, set_up()); }

TEST_F(Memory, RunsOutInHelp) { each_fails({"flows", "--help"}, set_up()); }

TEST_F(Memory, RunsOutWhileAnEntryIsMade) {
    const std::string adapter = path("adapter");
    const std::vector<std::string> create = {"--show-calls", "--adapter", adapter,      "create",
                                             "lif_mapping",  "index=5",   "src_lport=7"};
    each_fails(
        create, set_up(), [&] { std::filesystem::remove_all(adapter); },
        [&] {
            if (!std::filesystem::exists(adapter + "/adapter")) return;
            const outcome there = run({"--adapter", adapter, "dump", "lif_mapping"});
            EXPECT_EQ(there.status, 0) << there.err;
            const bool whole = there.out == "lif_mapping  SRAM row 5  lif_mapping: src_lport 7\n";
            EXPECT_TRUE(whole || there.out.empty()) << there.out;
        });
}

TEST_F(Memory, RunsOutInTheTraceSink) {
    each_fails(
        {"--log-level", "error", "--log-file", path("log"), "delete", "lif_mapping", "index=1"},
        set_up());
}

TEST_F(Memory, RunsOutInAnImport) {
    const std::string capture = path("traffic.pcap");
    ASSERT_EQ(run({"flows", "generate", "10", capture}).status, 0);
    each_fails({"flows", "import", capture}, set_up());
}

TEST_F(Memory, RunsOutInApply) {
    const std::string entries = path("entries.json");
    std::ofstream(entries) << R"({"entries": [
        {"table": "lif_mapping", "index": 1, "data": {"src_lport": 7}},
        {"table": "checksum", "key": {"tcp_valid": 1}, "action": 1}]})";
    each_fails({"apply", entries}, set_up());
}

}  // namespace
}  // namespace halden::test
