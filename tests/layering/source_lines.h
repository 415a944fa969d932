#pragma once

// The project's own source files, line by line, and what a line says about other rooms.

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace layering {

struct source_line {
    std::string file;  // from the project's root, with forward slashes
    unsigned number;   // from 1
    std::string text;
};

// "file:line: text", as compilers write it.
std::string place_of(const source_line &line);

// Files below `room` (or `room` itself) whose name says that they are sources, sorted by name.
std::vector<std::string> files_of(const std::filesystem::path &root, const std::string &room);
std::vector<source_line> lines_of(const std::filesystem::path &root, const std::string &file);

// The path between the quotes or angle brackets of an include directive.
std::optional<std::string> included(std::string_view text);

// The header's path from the root, however it was spelt: from the root, beside the including file,
// or over a public include directory. A header that is none of the project's stays as it was spelt.
std::string resolved(const std::filesystem::path &root, const std::string &file,
                     const std::string &header);

// Whether `path` is `room` or lies below it.
bool lies_in(std::string_view path, std::string_view room);

// The directory of somebody's machine that the text names, such as a home directory; a template
// for a temporary one is none.
std::optional<std::string> machine_path(std::string_view text);

}  // namespace layering
