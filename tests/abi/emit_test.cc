// halden-emit as it is called by hand: what it writes, what it compares, what it says.

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include <sys/wait.h>

#include "tests/support/scratch_directory.h"

namespace {

namespace fs = std::filesystem;
using halden::test::scratch_directory;
using halden::test::text_of;
using halden::test::write_text;

struct outcome {
    int status;
    std::string printed;  // on both streams
};

outcome emit(const std::string &arguments) {
    FILE *pipe = popen((HALDEN_EMIT " " + arguments + " 2>&1").c_str(), "r");
    outcome out = {-1, {}};
    if (pipe == nullptr) return out;
    char text[4096];
    for (size_t got; (got = std::fread(text, 1, sizeof text, pipe)) > 0;)
        out.printed.append(text, got);
    out.status = WEXITSTATUS(pclose(pipe));
    return out;
}

size_t lines_of(const std::string &text) {
    return static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
}

// Six sources, the index of the reference and a page for each of 48 tables.
constexpr size_t files = 6 + 1 + 48;

TEST(Emit, WritesEveryFileOnceAndThenNone) {
    const scratch_directory scratch;
    const outcome first = emit(scratch.path());
    EXPECT_EQ(first.status, 0);
    EXPECT_EQ(lines_of(first.printed), files);
    EXPECT_NE(first.printed.find("wrote docs/tables/lif_mapping.md\n"), std::string::npos);
    for (const char *name :
         {"include/p4pd_records.h", "include/tev_tbl.h", "p4gen/halden/src/gen/tev_tbl.cc",
          "docs/tables/README.md", "docs/tables/flow.md"}) {
        const std::string checked_in = text_of(HALDEN_SOURCE_DIR "/" + std::string(name));
        EXPECT_FALSE(checked_in.empty()) << name;
        EXPECT_EQ(text_of(scratch.file(name)), checked_in) << name;
    }
    const outcome again = emit(scratch.path());
    EXPECT_EQ(again.status, 0);
    EXPECT_EQ(again.printed, "");
    EXPECT_EQ(emit("--check " + scratch.path()).printed, "");
}

TEST(Emit, CheckNamesEachFileThatDiffersAndLeavesItAlone) {
    const scratch_directory scratch;
    ASSERT_EQ(emit(scratch.path()).status, 0);
    const std::string page = scratch.file("docs/tables/l2seg.md");
    write_text(page, text_of(page) + "\n");
    const std::string changed = text_of(page);
    fs::remove(scratch.file("include/tev_tbl.h"));
    const outcome checked = emit("--check " + scratch.path());
    EXPECT_EQ(checked.status, 1);
    EXPECT_EQ(checked.printed,
              "include/tev_tbl.h differs from a fresh emission; run halden-emit .\n"
              "docs/tables/l2seg.md differs from a fresh emission; run halden-emit .\n");
    EXPECT_EQ(text_of(page), changed);
    EXPECT_FALSE(fs::exists(scratch.file("include/tev_tbl.h")));
    EXPECT_EQ(emit(scratch.path()).printed,
              "wrote include/tev_tbl.h\nwrote docs/tables/l2seg.md\n");
}

TEST(Emit, AFileThatCannotBeWrittenIsNamed) {
    const scratch_directory scratch;
    fs::create_directories(scratch.file("include/tev_tbl.h"));  // a directory in its place
    const outcome out = emit(scratch.path());
    EXPECT_EQ(out.status, 1);
    EXPECT_NE(out.printed.find(scratch.file("include/tev_tbl.h") + ": cannot be written\n"),
              std::string::npos)
        << out.printed;
    EXPECT_TRUE(fs::exists(scratch.file("docs/tables/flow.md"))) << "the others are written";
}

TEST(Emit, AnythingElseIsAnsweredByTheUsage) {
    for (const char *arguments : {"", "a b", "--check a b"}) {
        const std::string given = arguments;
        const outcome out = emit(given);
        EXPECT_EQ(out.status, 2) << given;
        EXPECT_EQ(out.printed, "usage: halden-emit [--check] DIR\n") << given;
    }
}

}  // namespace
