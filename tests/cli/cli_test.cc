// Every transcript of this directory, held against what haldenctl prints. With HALDEN_TRANSCRIPTS
// set to a directory, what was printed is also left there in the form of a transcript.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "tests/cli/transcript.h"
#include "tests/support/scratch_directory.h"

namespace halden::test {
namespace {

namespace fs = std::filesystem;

std::string joined(const std::vector<std::string> &lines) {
    std::string out;
    for (const std::string &line : lines) out += "    " + line + "\n";
    return out;
}

std::vector<std::string> transcripts() {
    std::vector<std::string> out;
    for (const auto &entry : fs::directory_iterator(CASES))
        if (entry.path().extension() == ".txt" && entry.path().stem() != "CMakeLists")
            out.push_back(entry.path().stem());
    std::sort(out.begin(), out.end());
    return out;
}

class cli : public testing::TestWithParam<std::string> {};

TEST_P(cli, prints_what_the_transcript_says) {
    const transcript t = read_transcript(std::string(CASES) + "/" + GetParam() + ".txt");
    ASSERT_FALSE(t.steps.empty());
    const scratch_directory directory, commands;
    fs::create_symlink(HALDENCTL, commands.path() + "/haldenctl");
    const std::string path = commands.path() + ":" + std::getenv("PATH");
    setenv("PATH", path.c_str(), 1);
    setenv("EXAMPLES", EXAMPLES, 1);
    unsetenv("HALDEN_ADAPTER");
    for (const made_file &file : t.files)
        std::ofstream(directory.path() + "/" + file.name) << file.content;

    const char *kept = std::getenv("HALDEN_TRANSCRIPTS");
    std::ofstream keep;
    if (kept != nullptr) keep.open(std::string(kept) + "/" + GetParam() + ".txt");
    for (const step &s : t.steps) {
        const auto printed = run(s.command, directory.path());
        EXPECT_TRUE(matches(s.expected, printed))
            << GetParam() << ".txt:" << s.line << ": " << s.command << "\n  expected:\n"
            << joined(s.expected) << "  printed:\n"
            << joined(printed);
        keep << "$ " << s.command << "\n";
        for (const std::string &line : printed) keep << line << "\n";
    }
}

INSTANTIATE_TEST_SUITE_P(transcripts, cli, testing::ValuesIn(transcripts()),
                         [](const auto &given) { return given.param; });

TEST(transcript, dots_stand_for_any_lines) {
    EXPECT_TRUE(matches({"a", "...", "d"}, {"a", "b", "c", "d"}));
    EXPECT_TRUE(matches({"..."}, {}));
    EXPECT_FALSE(matches({"a", "...", "d"}, {"a", "b"}));
    EXPECT_FALSE(matches({"a"}, {"a", "b"}));
    EXPECT_TRUE(matches({"in [...] s"}, {"in 0.1 s"}));
    EXPECT_FALSE(matches({"in [...] s"}, {"in 0.1 m"}));
    EXPECT_FALSE(matches({"in [...] s"}, {"on 0.1 s"}));
    EXPECT_FALSE(matches({"ab[...]ba"}, {"aba"}));
}

}  // namespace
}  // namespace halden::test
