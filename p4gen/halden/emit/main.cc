// halden-emit DIR: writes the emitted files below DIR, the root of a source tree.
// halden-emit --check DIR: writes nothing; fails and names each file that differs.

#include <cstdio>
#include <fstream>
#include <sstream>

#include "p4gen/halden/emit/emit.h"

namespace {

struct output {
    const char *path;
    std::string (*make)();
};

constexpr output outputs[] = {
    {"include/p4pd_records.h", halden::emit::records_header},
    {"p4gen/halden/src/gen/records_layout.h", halden::emit::records_layout},
    {"p4gen/halden/src/gen/entry_writers.h", halden::emit::entry_writers_header},
    {"p4gen/halden/src/gen/entry_writers.cc", halden::emit::entry_writers_source},
};

std::string read_file(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return in ? text.str() : std::string();
}

}  // namespace

int main(int argc, char **argv) {
    const bool check = argc == 3 && std::string_view(argv[1]) == "--check";
    if (argc != 2 + check) {
        std::fprintf(stderr, "usage: halden-emit [--check] DIR\n");
        return 2;
    }
    const std::string root = std::string(argv[argc - 1]) + "/";
    int stale = 0;
    for (const auto &o : outputs) {
        const std::string text = o.make(), path = root + o.path;
        if (read_file(path) == text) continue;
        if (check) {
            std::fprintf(stderr, "%s differs from a fresh emission; run halden-emit %s\n", o.path,
                         argv[argc - 1]);
            ++stale;
            continue;
        }
        std::ofstream out(path, std::ios::binary);
        out << text;
        if (!out.flush()) {
            std::fprintf(stderr, "%s: cannot be written\n", path.c_str());
            return 1;
        }
        std::printf("wrote %s\n", o.path);
    }
    return stale == 0 ? 0 : 1;
}
