// Which room may look into which. Dependencies point one way:
//
//     pipeline <- library (p4gen, log, include, sdk) <- host <- tools, tests
//
// and no source names a place of somebody's machine.

#include "tests/layering/source_lines.h"
#include "tests/support/scratch_directory.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using layering::source_line;
using testing::ElementsAre;
using testing::IsEmpty;

namespace fs = std::filesystem;

const fs::path root = HALDEN_SOURCE_DIR;

bool lies_in_one(const std::string &path, const std::vector<std::string> &rooms) {
    return std::any_of(rooms.begin(), rooms.end(),
                       [&](const std::string &each) { return layering::lies_in(path, each); });
}

// Include lines of `room` whose header, by its path, is `wanted`.
template <class Wanted>
std::vector<std::string> includes_of(const fs::path &top, const std::string &room, Wanted wanted) {
    std::vector<std::string> out;
    for (const std::string &file : layering::files_of(top, room))
        for (const source_line &line : layering::lines_of(top, file)) {
            const auto header = layering::included(line.text);
            if (header && wanted(layering::resolved(top, file, *header)))
                out.push_back(layering::place_of(line));
        }
    return out;
}

// Include lines of `room` that reach into one of the `forbidden` rooms.
std::vector<std::string> includes_into(const fs::path &top, const std::string &room,
                                       const std::vector<std::string> &forbidden) {
    return includes_of(top, room,
                       [&](const std::string &path) { return lies_in_one(path, forbidden); });
}

// Include lines of `room` that name a header of the project outside the `allowed` rooms.
std::vector<std::string> includes_outside(const fs::path &top, const std::string &room,
                                          const std::vector<std::string> &allowed) {
    return includes_of(top, room, [&](const std::string &path) {
        const bool of_project = fs::is_regular_file(top / path);  // and not of the system
        return of_project && !lies_in_one(path, allowed);
    });
}

std::vector<std::string> machine_paths_in(const fs::path &top, const std::string &room) {
    std::vector<std::string> out;
    for (const std::string &file : layering::files_of(top, room))
        for (const source_line &line : layering::lines_of(top, file))
            if (layering::machine_path(line.text)) out.push_back(layering::place_of(line));
    return out;
}

// --- The project ---------------------------------------------------------------------------------

class LibraryRoom : public testing::TestWithParam<const char *> {};

TEST_P(LibraryRoom, HasSources) { EXPECT_FALSE(layering::files_of(root, GetParam()).empty()); }

TEST_P(LibraryRoom, IncludesNothingOfTheHostTheToolsOrTheTests) {
    EXPECT_THAT(includes_into(root, GetParam(), {"host", "tools", "tests", "bench", "fuzz"}),
                IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Rooms, LibraryRoom, testing::Values("p4gen", "log", "include", "sdk"),
                         [](const auto &room) { return std::string(room.param); });

TEST(Layering, TheDescriptionIncludesNothingButItself) {
    ASSERT_FALSE(layering::files_of(root, "p4gen/halden/pipeline").empty());
    EXPECT_THAT(includes_outside(root, "p4gen/halden/pipeline", {"p4gen/halden/pipeline"}),
                IsEmpty());
}

TEST(Layering, ThePlatformContractIncludesNothingButItself) {
    EXPECT_THAT(includes_outside(root, "sdk", {"sdk"}), IsEmpty());
}

TEST(Layering, ThePublicHeadersIncludePublicHeadersOnly) {
    EXPECT_THAT(includes_outside(root, "include", {"include", "sdk", "p4gen/p4/include"}),
                IsEmpty());
}

// The adapter sees of the library what every other host sees.
TEST(Layering, TheHostTakesTheLibraryByItsPublicHeaders) {
    ASSERT_FALSE(layering::files_of(root, "host").empty());
    EXPECT_THAT(
        includes_into(root, "host", {"p4gen/halden/src", "p4gen/p4/src", "log", "tools", "tests"}),
        IsEmpty());
}

TEST(Layering, NoSourceNamesAPlaceOfSomebodysMachine) {
    for (const char *room :
         {"p4gen", "log", "include", "sdk", "host", "tools", "bench", "fuzz", "examples", "cmake",
          "CMakeLists.txt", "CMakePresets.json", "check", "try", ".ci"})
        EXPECT_THAT(machine_paths_in(root, room), IsEmpty()) << room;
    for (const auto &room : fs::directory_iterator(root / "tests")) {
        const std::string name = "tests/" + room.path().filename().string();
        if (name == "tests/layering") continue;  // names some, to show that they are found
        EXPECT_THAT(machine_paths_in(root, name), IsEmpty());
    }
}

// --- A small project that breaks every rule ------------------------------------------------------

class BrokenProject : public testing::Test {
  protected:
    void SetUp() override {
        write("host/adapter.h", "#pragma once\n");
        write("p4gen/halden/src/pack.h", "#pragma once\n");
    }
    void write(const std::string &file, const std::string &text) {
        fs::create_directories((top_ / file).parent_path());
        std::FILE *out = std::fopen((top_ / file).c_str(), "w");
        ASSERT_NE(out, nullptr);
        std::fputs(text.c_str(), out);
        std::fclose(out);
    }

    const halden::test::scratch_directory directory_;
    const fs::path top_ = directory_.path();
};

TEST_F(BrokenProject, AnIncludeFromTheRootIsFoundWithItsLine) {
    write("log/trace.cc", "#include <cstdio>\n\n#include \"host/adapter.h\"\n");
    EXPECT_THAT(includes_into(top_, "log", {"host"}),
                ElementsAre("log/trace.cc:3: #include \"host/adapter.h\""));
}

// However it is spelt: over the parent directory, in angle brackets, with blanks.
TEST_F(BrokenProject, OtherSpellingsAreFound) {
    write("log/a.cc", "#include \"../host/adapter.h\"\n");
    write("log/b.cc", "  #  include <host/adapter.h>\n");
    write("log/c.cc", "#include \"host/not_written_yet.h\"\n");
    EXPECT_THAT(includes_into(top_, "log", {"host"}),
                ElementsAre("log/a.cc:1: #include \"../host/adapter.h\"",
                            "log/b.cc:1:   #  include <host/adapter.h>",
                            "log/c.cc:1: #include \"host/not_written_yet.h\""));
}

TEST_F(BrokenProject, WhatOnlyLooksAlikeIsNotFound) {
    write("log/a.cc",
          "// #include \"host/adapter.h\"\n#include \"hostile/adapter.h\"\n"
          "#define host/adapter.h\n#include_host\n");
    EXPECT_THAT(includes_into(top_, "log", {"host"}), IsEmpty());
}

TEST_F(BrokenProject, AHeaderOfAnotherRoomIsOutside) {
    write("p4gen/halden/pipeline/a.h", "#include <array>\n#include \"../src/pack.h\"\n");
    EXPECT_THAT(includes_outside(top_, "p4gen/halden/pipeline", {"p4gen/halden/pipeline"}),
                ElementsAre("p4gen/halden/pipeline/a.h:2: #include \"../src/pack.h\""));
}

TEST_F(BrokenProject, APlaceOfAMachineIsFoundAndAUrlOrARelativePathIsNot) {
    write("log/a.cc",
          "const char *where = \"/home/somebody/halden\";\n"
          "// see build/tmp/x, ${WORK}/work/x and https://example.org/home/x\n"
          "const char *there = \"/tmp/x\";\n"
          "char made[] = \"/tmp/x-XXXXXX\";\n");
    EXPECT_THAT(machine_paths_in(top_, "log"),
                ElementsAre("log/a.cc:1: const char *where = \"/home/somebody/halden\";",
                            "log/a.cc:3: const char *there = \"/tmp/x\";"));
}

}  // namespace
