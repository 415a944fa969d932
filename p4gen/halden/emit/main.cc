// halden-emit DIR: writes the emitted files below DIR, the root of a source tree.
// halden-emit --check DIR: writes nothing; fails and names each file that differs.

#include <cstdio>
#include <filesystem>
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
    {"include/tev_tbl.h", halden::emit::tev_tbl_header},
    {"p4gen/halden/src/gen/tev_tbl.cc", halden::emit::tev_tbl_source},
};

constexpr const char *pages = "docs/tables/";

std::string read_file(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return in ? text.str() : std::string();
}

class emission {
  public:
    emission(std::string root, bool check) : root_(std::move(root)), check_(check) {}

    // Writes one file, or compares it. False when it cannot be written, or differs.
    bool put(const std::string &path, const std::string &text) const {
        const std::string whole_path = root_ + path;
        if (read_file(whole_path) == text) return true;
        if (check_) {
            std::fprintf(stderr, "%s differs from a fresh emission; run halden-emit .\n",
                         path.c_str());
            return false;
        }
        std::filesystem::create_directories(std::filesystem::path(whole_path).parent_path());
        std::ofstream out(whole_path, std::ios::binary);
        out << text;
        if (!out.flush()) {
            std::fprintf(stderr, "%s: cannot be written\n", whole_path.c_str());
            return false;
        }
        std::printf("wrote %s\n", path.c_str());
        return true;
    }

  private:
    std::string root_;
    bool check_;
};

}  // namespace

int main(int argc, char **argv) {
    const bool check = argc == 3 && std::string_view(argv[1]) == "--check";
    if (argc != 2 + check) {
        std::fprintf(stderr, "usage: halden-emit [--check] DIR\n");
        return 2;
    }
    const std::string root = std::string(argv[argc - 1]) + "/";
    emission all(root, check);
    bool good = true;
    for (const auto &o : outputs) good &= all.put(o.path, o.make());
    good &= all.put(std::string(pages) + "README.md", halden::emit::reference_index());
    for (const auto *t : halden::pipeline::tables)
        good &= all.put(pages + std::string(t->name) + ".md", halden::emit::reference_page(*t));
    return good ? 0 : 1;
}
