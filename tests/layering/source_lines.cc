#include "tests/layering/source_lines.h"

#include <algorithm>
#include <cctype>
#include <fstream>

namespace layering {

namespace fs = std::filesystem;

namespace {

// Where the library's headers are looked for, apart from the including file's own directory.
constexpr const char *include_directories[] = {"", "include", "sdk/include", "p4gen/p4/include"};

// Where people and machines keep what no one else has.
constexpr const char *machine_rooms[] = {"home",  "root", "work",  "tmp",
                                         "Users", "mnt",  "media", "srv"};

bool is_source(const fs::path &file) {
    static constexpr const char *endings[] = {".h",   ".hh",    ".cc", ".c",  ".inc",
                                              ".def", ".cmake", ".sh", ".py", ".map"};
    static constexpr const char *names[] = {"CMakeLists.txt", "CMakePresets.json", "check", "try",
                                            "run"};
    const std::string ending = file.extension().string(), name = file.filename().string();
    return std::any_of(std::begin(endings), std::end(endings),
                       [&](const char *each) { return ending == each; }) ||
           std::any_of(std::begin(names), std::end(names),
                       [&](const char *each) { return name == each; });
}

bool continues_a_path(char before) {
    return std::isalnum(static_cast<unsigned char>(before)) != 0 ||
           std::string_view("_.~/-})$").find(before) != std::string_view::npos;
}

// A template that mkdtemp fills in names no place that has to be there.
bool is_made_afresh(std::string_view path) {
    return path.starts_with("/tmp/") && path.find("XXXXXX") != std::string_view::npos;
}

}  // namespace

std::string place_of(const source_line &line) {
    return line.file + ":" + std::to_string(line.number) + ": " + line.text;
}

std::vector<std::string> files_of(const fs::path &root, const std::string &room) {
    std::vector<std::string> out;
    const fs::path start = root / room;
    if (fs::is_regular_file(start)) {
        if (is_source(start)) out.push_back(room);
        return out;
    }
    if (!fs::is_directory(start)) return out;
    for (const auto &each : fs::recursive_directory_iterator(start))
        if (each.is_regular_file() && is_source(each.path()))
            out.push_back(each.path().lexically_relative(root).generic_string());
    std::sort(out.begin(), out.end());
    return out;
}

std::vector<source_line> lines_of(const fs::path &root, const std::string &file) {
    std::vector<source_line> out;
    std::ifstream in(root / file);
    std::string text;
    for (unsigned number = 1; std::getline(in, text); ++number) out.push_back({file, number, text});
    return out;
}

std::optional<std::string> included(std::string_view text) {
    const auto skip_blanks = [&] {
        const size_t first = text.find_first_not_of(" \t");
        text.remove_prefix(std::min(first, text.size()));
    };
    const auto skip = [&](std::string_view word) {
        if (!text.starts_with(word)) return false;
        text.remove_prefix(word.size());
        skip_blanks();
        return true;
    };
    skip_blanks();
    if (!skip("#") || !skip("include") || text.empty()) return std::nullopt;
    const char closing = text[0] == '<' ? '>' : '"';
    if (text[0] != '<' && text[0] != '"') return std::nullopt;
    const size_t end = text.find(closing, 1);
    if (end == std::string_view::npos) return std::nullopt;
    return std::string(text.substr(1, end - 1));
}

std::string resolved(const fs::path &root, const std::string &file, const std::string &header) {
    const fs::path beside = (fs::path(file).parent_path() / header).lexically_normal();
    if (fs::is_regular_file(root / beside)) return beside.generic_string();
    for (const char *directory : include_directories) {
        const fs::path there = (fs::path(directory) / header).lexically_normal();
        if (fs::is_regular_file(root / there)) return there.generic_string();
    }
    return header;
}

bool lies_in(std::string_view path, std::string_view room) {
    return path.starts_with(room) && (path.size() == room.size() || path[room.size()] == '/');
}

std::optional<std::string> machine_path(std::string_view text) {
    for (const char *room : machine_rooms) {
        const std::string wanted = std::string("/") + room + "/";
        for (size_t at = text.find(wanted); at != std::string_view::npos;
             at = text.find(wanted, at + 1)) {
            if (at != 0 && continues_a_path(text[at - 1])) continue;
            const size_t end = text.find_first_of(" \t\"'<>;,()", at);
            const std::string_view path = text.substr(at, end - at);
            if (is_made_afresh(path)) continue;
            return std::string(path);
        }
    }
    return std::nullopt;
}

}  // namespace layering
