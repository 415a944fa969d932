// Commands that end before they have done everything: by a signal, on a full disk, without a
// reader. What they say was done is what stands on the adapter.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <regex>
#include <thread>

#include "tests/cli/tool_process.h"
#include "tests/support/scratch_directory.h"

namespace halden::test {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::StartsWith;

constexpr int all_entries = 400;
// Each write of a memory takes so long that a signal finds the command at work.
constexpr const char *slow = "sram-write,count=all,delay=5";
constexpr const char *slow_flows = "hbm-write,count=all,delay=5";

class Ending : public testing::Test {
  protected:
    std::string path(const std::string &name) const { return directory_.file(name); }
    std::string adapter() const { return path("adapter"); }

    std::string entries() const {
        std::ofstream out(path("entries.json"));
        out << "{\"entries\": [";
        for (int n = 0; n < all_entries; ++n)
            out << (n == 0 ? "" : ",") << "{\"table\": \"lif_mapping\", \"index\": " << n
                << ", \"data\": {\"src_lport\": 1}}";
        out << "]}";
        return path("entries.json");
    }
    std::string capture() const {
        run_tool({"flows", "generate", "2000", path("traffic.pcap")});
        return path("traffic.pcap");
    }
    ended on_adapter(std::vector<std::string> words) const {
        words.insert(words.begin(), {"--adapter", adapter()});
        return run_tool(words);
    }
    size_t lines_of(std::vector<std::string> words) const {
        const std::string out = on_adapter(std::move(words)).out;
        return static_cast<size_t>(std::count(out.begin(), out.end(), '\n'));
    }
    // Flows whose keys are there; the last line of the list counts them.
    size_t flows() const { return lines_of({"flows", "list", "--json"}) / 10; }

    // Waits until the table has an entry, then a little more.
    void wait_for(const std::string &table) const {
        const std::string file = adapter() + "/" + table;
        for (int n = 0; n < 2000 && !fs::exists(file); ++n) std::this_thread::sleep_for(5ms);
        ASSERT_TRUE(fs::exists(file));
        std::this_thread::sleep_for(100ms);
    }
    // A command that is sent a signal at work: later each time, until it has something to say. It
    // begins with a new adapter, or with what `prepare` makes of it.
    ended interrupted(
        std::vector<std::string> words, const std::string &says, int signal,
        const std::function<void()> &prepare = [] {}) const {
        words.insert(words.begin(), {"--adapter", adapter()});
        ended e;
        for (auto until = 100ms; until < 10s; until *= 2) {
            fs::remove_all(adapter());
            prepare();
            tool_process process(words);
            std::this_thread::sleep_for(until);
            process.send(signal);
            e = process.wait();
            EXPECT_EQ(e.signal, signal);
            if (std::regex_search(e.err, std::regex(says))) break;
        }
        return e;
    }

  private:
    const scratch_directory directory_;
};

size_t number_in(const std::string &text, const std::string &pattern) {
    std::smatch found;
    if (!std::regex_search(text, found, std::regex(pattern))) {
        ADD_FAILURE() << "'" << text << "' has no " << pattern;
        return 0;
    }
    return std::stoul(found[1]);
}

class EndingBy : public Ending, public testing::WithParamInterface<int> {};

TEST_P(EndingBy, ApplySaysWhatWasApplied) {
    const std::string says = "interrupted: .*entries\\.json: entries 1 to (\\d+) were applied";
    const ended e = interrupted({"--fault", slow, "apply", entries()}, says, GetParam());
    const size_t done = number_in(e.err, says);
    EXPECT_GT(done, 1u);
    EXPECT_LT(done, size_t{all_entries});
    EXPECT_EQ(lines_of({"dump", "lif_mapping"}), done);
    EXPECT_THAT(e.err, HasSubstr("to 400 were not"));
    EXPECT_FALSE(fs::exists(adapter() + "/engines-at-work"));
}

TEST_P(EndingBy, WriteSaysWhatWasWritten) {
    const std::string says = "interrupted: .*\\.json: (\\d+) of its 400 entries were written";
    const ended e = interrupted({"--fault", slow, "write", entries()}, says, GetParam());
    const size_t done = number_in(e.err, says);
    EXPECT_LT(done, size_t{all_entries});
    EXPECT_EQ(lines_of({"dump", "lif_mapping"}), done);
}

TEST_P(EndingBy, ImportSaysHowManyFlowsWereImported) {
    const std::string says = "interrupted: .*: (\\d+) of its \\d+ flows were imported";
    const ended e =
        interrupted({"--fault", slow_flows, "flows", "import", capture()}, says, GetParam());
    EXPECT_EQ(flows(), number_in(e.err, says));
}

TEST_P(EndingBy, DeleteSaysHowManyFlowsAreGone) {
    size_t before = 0;
    const std::string says = "interrupted: (\\d+) of \\d+ flows were deleted", file = capture();
    const ended e =
        interrupted({"--fault", slow_flows, "flows", "delete", "--all"}, says, GetParam(), [&] {
            on_adapter({"flows", "import", file});
            before = flows();
        });
    ASSERT_GT(before, 100u);
    EXPECT_EQ(flows(), before - number_in(e.err, says));
    EXPECT_GT(flows(), 0u);
}

TEST_P(EndingBy, WaitingForInputEnds) {
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    const struct {
        std::vector<std::string> words;
        const char *what;
    } commands[] = {
        {{"flows", "import", "-"}, "imported"}, {{"write", "-"}, "done"}, {{"apply", "-"}, "done"}};
    for (const auto &[words, what] : commands) {
        // Before its signals are watched the command just ends.
        ended e;
        for (auto until = 100ms; e.err.empty() && until < 10s; until *= 2) {
            tool_process process(words, ends[0]);
            std::this_thread::sleep_for(until);
            process.send(GetParam());
            e = process.wait();
            EXPECT_EQ(e.signal, GetParam());
        }
        EXPECT_EQ(e.err, std::string("haldenctl: interrupted: standard input: nothing of it was ") +
                             what + "\n");
    }
    close(ends[0]);
    close(ends[1]);
}

TEST_P(EndingBy, GenerateLeavesNoCutFile) {
    tool_process process({"flows", "generate", "100000000", path("cut.pcap")});
    const auto files = [&] {
        return std::distance(fs::directory_iterator(fs::path(path("x")).parent_path()), {});
    };
    for (int n = 0; n < 1000 && files() == 0; ++n) std::this_thread::sleep_for(5ms);
    EXPECT_EQ(files(), 1);
    EXPECT_FALSE(fs::exists(path("cut.pcap")));
    process.send(GetParam());
    const ended e = process.wait();
    EXPECT_EQ(e.signal, GetParam());
    EXPECT_THAT(e.err, HasSubstr("cut.pcap: the capture is not whole"));
    EXPECT_EQ(files(), 0);
}

INSTANTIATE_TEST_SUITE_P(signals, EndingBy, testing::Values(SIGINT, SIGTERM, SIGHUP),
                         [](const auto &given) { return std::string(sigabbrev_np(given.param)); });

TEST_F(Ending, ALostReaderEndsBySigpipe) {
    {
        tool_process process({"--adapter", adapter(), "apply", entries()});
        process.close_output();
        const ended e = process.wait();
        EXPECT_EQ(e.signal, SIGPIPE);
        const size_t done = number_in(e.err, "entries 1 to (\\d+) were applied");
        EXPECT_LT(done, size_t{all_entries});
        EXPECT_EQ(lines_of({"dump", "lif_mapping"}), done);
    }
    on_adapter({"apply", "-q", path("entries.json")});
    const std::vector<std::string> readers[] = {
        {"dump", "--all"}, {"dump", "--all", "--json"}, {"stats"}};
    for (const std::vector<std::string> &words : readers) {
        std::vector<std::string> all = {"--adapter", adapter()};
        all.insert(all.end(), words.begin(), words.end());
        tool_process process(all);
        process.close_output();
        const ended e = process.wait();
        EXPECT_EQ(e.signal, SIGPIPE) << words[0];
        EXPECT_EQ(e.err, "") << words[0];
    }
    EXPECT_EQ(lines_of({"dump", "lif_mapping"}), size_t{all_entries});
}

TEST_F(Ending, ASignalIgnoredAtTheStartStaysIgnored) {
    const auto before = std::signal(SIGHUP, SIG_IGN);
    tool_process process({"--adapter", adapter(), "--fault", slow, "apply", "-q", entries()});
    std::signal(SIGHUP, before);
    wait_for("table-16.sram");
    process.send(SIGHUP);
    const ended e = process.wait();
    EXPECT_EQ(e.signal, 0);
    EXPECT_EQ(e.status, 0);
    EXPECT_EQ(lines_of({"dump", "lif_mapping"}), size_t{all_entries});
}

// What is printed cannot be kept: the command stops, and says what it had done.
TEST_F(Ending, AFullDiskUnderTheOutputOfApply) {
    const std::string command = std::string("'") + HALDENCTL + "' --adapter '" + adapter() +
                                "' apply '" + entries() + "' >/dev/full 2>'" + path("err") + "'";
    const int status = std::system(command.c_str());
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 4);
    std::ifstream in(path("err"));
    const std::string err(std::istreambuf_iterator<char>(in), {});
    const size_t done = number_in(err, "standard output cannot be written: .*1 to (\\d+) were app");
    EXPECT_LT(done, size_t{all_entries});
    EXPECT_EQ(lines_of({"dump", "lif_mapping"}), done);
}

}  // namespace
}  // namespace halden::test
