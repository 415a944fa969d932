// What libhalden.so exports and imports, compared with the lists of exported.txt and imported.txt.

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <array>
#include <cctype>
#include <cstdio>
#include <fstream>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace {

using names = std::set<std::string>;

std::vector<std::string> lines_of(const std::string &command) {
    std::unique_ptr<FILE, int (*)(FILE *)> pipe(popen(command.c_str(), "r"), pclose);
    std::vector<std::string> out;
    std::array<char, 8192> line{};
    while (pipe && fgets(line.data(), static_cast<int>(line.size()), pipe.get()) != nullptr) {
        out.emplace_back(line.data());
        while (!out.back().empty() && std::isspace(out.back().back())) out.back().pop_back();
    }
    return out;
}

std::string with_short_strings(std::string name) {
    const std::string full =
        "std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >";
    for (size_t at; (at = name.find(full)) != std::string::npos;)
        name.replace(at, full.size(), "std::string");
    return name;
}

// Without the address: "T p4pd_tableid_min_get()".
names symbols(const std::string &options) {
    names out;
    for (const std::string &line : lines_of(HALDEN_NM " -D -C " + options + " " HALDEN_LIBRARY)) {
        const size_t type = line.find_first_not_of("0123456789abcdef ");
        if (type != std::string::npos) out.insert(with_short_strings(line.substr(type)));
    }
    return out;
}

names listed(const std::string &file) {
    std::ifstream in(std::string(HALDEN_LISTS) + "/" + file);
    names out;
    for (std::string line; std::getline(in, line);)
        if (!line.empty() && line[0] != '#') out.insert(line);
    return out;
}

bool starts(const std::string &text, const std::string &with) { return text.rfind(with, 0) == 0; }

// D for every kind of data section, V for what may be merged, T for code.
std::string normal(const std::string &symbol) {
    const bool made = symbol.find("vtable for") == 2 || symbol.find("typeinfo ") == 2;
    const char type = symbol[0];
    const char kind = made ? 'V' : type == 'B' || type == 'R' ? 'D' : type == 'W' ? 'T' : type;
    return kind + symbol.substr(1);
}

names exported() {
    names out;
    for (const std::string &symbol : symbols("--defined-only")) out.insert(normal(symbol));
    return out;
}

TEST(Symbols, EveryListedNameIsExported) {
    const names found = exported(), wanted = listed("exported.txt");
    ASSERT_GE(wanted.size(), 60u);
    for (const std::string &name : wanted) EXPECT_TRUE(found.count(name)) << name;
}

TEST(Symbols, NothingElseIsExported) {
    const names wanted = listed("exported.txt");
    for (const std::string &name : exported()) EXPECT_TRUE(wanted.count(name)) << name;
}

TEST(Symbols, TheTableApiHasSixFunctionsForEachOf35Tables) {
    unsigned functions = 0, of_the_flow_table = 0;
    for (const std::string &name : exported()) {
        functions += starts(name, "T tev_tbl_");
        of_the_flow_table += name == "T tev_tbl_flow_create" || name == "T tev_tbl_flow_read" ||
                             name == "T tev_tbl_flow_update" || name == "T tev_tbl_flow_delete" ||
                             name == "T tev_tbl_flow_find" || name == "T tev_tbl_flow_table_clear";
    }
    EXPECT_EQ(functions, 210u);
    EXPECT_EQ(of_the_flow_table, 6u);
}

// Bound at load time to the version of the run time that the library was built with.
bool of_the_run_time(const std::string &name) {
    const size_t at = name.rfind('@');
    if (at == std::string::npos) return false;
    for (const char *owner : {"GLIBC_", "GLIBCXX_", "CXXABI_", "GCC_"})
        if (name.compare(at + 1, std::string(owner).size(), owner) == 0) return true;
    return false;
}

bool of_a_sanitizer(const std::string &name) {
    if (!HALDEN_SANITIZED) return false;
    for (const char *prefix : {"__asan_", "__ubsan_", "__tsan_", "__lsan_", "__sanitizer_"})
        if (starts(name, prefix)) return true;
    return false;
}

// Names that this program, which links neither the library nor a host, has from its own run time. A
// sanitizer stands in front of the C library, whose names are then imported without a version.
names intercepted_by_a_sanitizer() {
    names out;
    if (!HALDEN_SANITIZED) return out;
    const std::string list = HALDEN_NM " -D --undefined-only ";
    const auto raw = lines_of(list + HALDEN_LIBRARY),
               readable = lines_of(list + "-C " HALDEN_LIBRARY);
    for (size_t i = 0; i < raw.size() && i < readable.size(); ++i) {
        const auto name_in = [](const std::string &line) {
            const size_t type = line.find_first_not_of("0123456789abcdef ");
            return line.substr(type + 2);
        };
        if (dlsym(RTLD_DEFAULT, name_in(raw[i]).c_str()) != nullptr)
            out.insert(name_in(readable[i]));
    }
    return out;
}

TEST(Symbols, ImportsAreTheRunTimeOrThePlatformContract) {
    const names allowed = listed("imported.txt"), intercepted = intercepted_by_a_sanitizer();
    unsigned of_the_contract = 0;
    for (const std::string &symbol : symbols("--undefined-only")) {
        const std::string name = symbol.substr(2);
        if (of_the_run_time(name) || of_a_sanitizer(name) || intercepted.count(name)) continue;
        EXPECT_TRUE(allowed.count(name)) << name;
        ++of_the_contract;
    }
    EXPECT_GE(of_the_contract, 20u);
}

std::string dynamic(const std::string &tag, unsigned &count) {
    count = 0;
    std::string last;
    for (const std::string &line : lines_of(HALDEN_READELF " -d -W " HALDEN_LIBRARY)) {
        if (line.find("(" + tag + ")") == std::string::npos) continue;
        const size_t open = line.find('['), close = line.find(']');
        last = line.substr(open + 1, close - open - 1);
        ++count;
    }
    return last;
}

TEST(Symbols, TheSonameCarriesTheMajorVersion) {
    unsigned count = 0;
    EXPECT_EQ(dynamic("SONAME", count), "libhalden.so.0");
    EXPECT_EQ(count, 1u);
}

}  // namespace
