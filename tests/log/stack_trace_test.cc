// The stack trace, on frames made up by the test and on real ones.

#include "log/stack_trace.h"

#include <dlfcn.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "gtest/gtest.h"

namespace {

// Frames that backtrace_symbols() answers; the real ones while it is null.
std::vector<std::string> *frames = nullptr;
int most_asked_for = 0;

std::string dump() {
    char *text = nullptr;
    size_t size = 0;
    FILE *out = open_memstream(&text, &size);
    halden::log::dump_stack(out);
    std::fclose(out);
    std::string all(text, size);
    std::free(text);
    return all;
}

// `made_up` follow the frame of the dump itself.
std::string dump_of(std::vector<std::string> made_up) {
    made_up.insert(made_up.begin(), "dump_stack's own(own+0x1) [0x1]");
    frames = &made_up;
    const std::string all = dump();
    frames = nullptr;
    return all;
}

}  // namespace

extern "C" int backtrace(void **addresses, int most) {
    most_asked_for = most;
    if (frames != nullptr) return static_cast<int>(frames->size());
    auto *real = reinterpret_cast<int (*)(void **, int)>(dlsym(RTLD_NEXT, "backtrace"));
    return real(addresses, most);
}

extern "C" char **backtrace_symbols(void *const *addresses, int count) {
    if (frames == nullptr) {
        auto *real =
            reinterpret_cast<char **(*)(void *const *, int)>(dlsym(RTLD_NEXT, "backtrace_symbols"));
        return real(addresses, count);
    }
    // One block, as the C library gives it: pointers, then the texts.
    size_t bytes = frames->size() * sizeof(char *);
    for (const std::string &frame : *frames) bytes += frame.size() + 1;
    auto *block = static_cast<char *>(std::malloc(bytes));
    auto **out = reinterpret_cast<char **>(block);
    char *text = block + frames->size() * sizeof(char *);
    for (size_t i = 0; i < frames->size(); ++i) {
        out[i] = text;
        std::memcpy(text, (*frames)[i].c_str(), (*frames)[i].size() + 1);
        text += (*frames)[i].size() + 1;
    }
    return out;
}

namespace {

TEST(StackTrace, ANameIsDemangledBehindItsModule) {
    EXPECT_EQ(dump_of({"./tool(_ZN6halden3log10dump_stackEP8_IO_FILE+0x4f) [0x401136]"}),
              "stack trace:\n  ./tool : halden::log::dump_stack(_IO_FILE*)+0x4f\n");
}

TEST(StackTrace, ANameThatDoesNotDemangleIsPrintedRaw) {
    EXPECT_EQ(dump_of({"/usr/bin/tool(main+0x1a) [0x7f]", "m(not_mangled+0x2) [0x8]"}),
              "stack trace:\n  /usr/bin/tool : main()+0x1a\n  m : not_mangled()+0x2\n");
}

TEST(StackTrace, AFrameWithoutABracketIsPrintedWhole) {
    EXPECT_EQ(dump_of({"[0x7ffd1234]"}), "stack trace:\n  [0x7ffd1234]\n");
}

TEST(StackTrace, AFrameWithoutAPlusInItsBracketIsPrintedWhole) {
    EXPECT_EQ(dump_of({"./tool() [0x401136]"}), "stack trace:\n  ./tool() [0x401136]\n");
    // The plus stands in front of the bracket, or nothing closes behind it.
    EXPECT_EQ(dump_of({"./c++/tool(main) [0x4]"}), "stack trace:\n  ./c++/tool(main) [0x4]\n");
    EXPECT_EQ(dump_of({"./tool(main+0x4"}), "stack trace:\n  ./tool(main+0x4\n");
}

TEST(StackTrace, AnEmptyNameCountsAsOne) {
    EXPECT_EQ(dump_of({"/lib/x.so(+0x1a) [0x7f]"}), "stack trace:\n  /lib/x.so : ()+0x1a\n");
}

TEST(StackTrace, TheLastBracketOpensTheName) {
    EXPECT_EQ(dump_of({"/opt/a (old+1)/t(_Z3fooi+0x5) [0x7f]"}),
              "stack trace:\n  /opt/a (old+1)/t : foo(int)+0x5\n");
}

TEST(StackTrace, ANameLongerThanTheBufferIsPrintedWhole) {
    std::string mangled = "_ZN", readable;
    for (int i = 0; i < 60; ++i) {
        mangled += "9some_name";
        readable += (i == 0 ? "" : "::") + std::string("some_name");
    }
    mangled += "E";
    EXPECT_GT(readable.size(), 256u);
    EXPECT_EQ(dump_of({"m(" + mangled + "+0x1) [0x1]", "m(_Z3fooi+0x2) [0x2]"}),
              "stack trace:\n  m : " + readable + "+0x1\n  m : foo(int)+0x2\n");
}

TEST(StackTrace, NoFramesAtAll) {
    std::vector<std::string> none;
    frames = &none;
    EXPECT_EQ(dump(), "stack trace:\n  <empty, possibly corrupt>\n");
    frames = nullptr;
}

TEST(StackTrace, AsksForSixtyFourFramesAndSkipsItsOwn) {
    EXPECT_EQ(dump_of({}), "stack trace:\n");
    EXPECT_EQ(most_asked_for, 64);
}

TEST(StackTrace, RealFramesOfThisProgram) {
    const std::string text = dump();
    EXPECT_EQ(text.rfind("stack trace:\n  ", 0), 0u) << text;
    EXPECT_NE(text.find("main"), std::string::npos) << text;
}

}  // namespace
