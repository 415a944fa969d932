#include "tools/haldenctl/screen.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

namespace halden::tool {

namespace {

bool coloured = false;

const char *code_of(colour c) {
    switch (c) {
        case colour::title:
            return "1";
        case colour::key:
            return "36";
        case colour::data:
            return "32";
        case colour::dim:
            return "2";
        case colour::good:
            return "32";
        case colour::bad:
            return "31";
        case colour::none:
            break;
    }
    return "";
}

// Bytes that begin a character: the texts are UTF-8.
size_t width_of(std::string_view text) {
    return static_cast<size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xc0) != 0x80; }));
}

}  // namespace

void use_colours(std::string_view when) {
    const char *no_colour = std::getenv("NO_COLOR");
    coloured = when == "always" || (when == "auto" && isatty(STDOUT_FILENO) == 1 &&
                                    (no_colour == nullptr || *no_colour == '\0'));
}

std::string painted(std::string_view text, colour c) {
    if (!coloured || c == colour::none || text.empty()) return std::string(text);
    return std::string("\033[") + code_of(c) + "m" + std::string(text) + "\033[0m";
}

unsigned screen_columns() {
    constexpr unsigned least = 40, usual = 100;
    winsize size = {};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return usual;
    return std::max<unsigned>(size.ws_col, least);
}

std::string wrapped(std::string_view text, unsigned indent, unsigned columns) {
    std::string out, line;
    const auto end_line = [&] {
        if (!line.empty()) out += std::string(indent, ' ') + line + "\n";
        line.clear();
    };
    while (!text.empty()) {
        const size_t blank = std::min(text.find(' '), text.size());
        const std::string_view word = text.substr(0, blank);
        if (!line.empty() && indent + line.size() + 1 + word.size() > columns) end_line();
        if (!line.empty()) line += ' ';
        line += word;
        text.remove_prefix(std::min(blank + 1, text.size()));
    }
    end_line();
    return out;
}

columns::columns(std::vector<std::string> headings) {
    for (std::string &heading : headings) {
        right_.push_back(heading.starts_with('>'));
        if (right_.back()) heading.erase(0, 1);
    }
    lines_.push_back({std::move(headings), colour::title});
}

void columns::row(std::vector<std::string> cells, colour c) {
    cells.resize(right_.size());
    lines_.push_back({std::move(cells), c});
}

std::string columns::text(unsigned indent) const {
    std::vector<size_t> widths(right_.size());
    for (const line &l : lines_)
        for (size_t i = 0; i < l.cells.size(); ++i)
            widths[i] = std::max(widths[i], width_of(l.cells[i]));
    std::string out;
    for (const line &l : lines_) {
        std::string shown;
        for (size_t i = 0; i < l.cells.size(); ++i) {
            const std::string fill(widths[i] - width_of(l.cells[i]), ' ');
            if (i != 0) shown += "  ";
            if (right_[i])
                shown += fill + l.cells[i];
            else
                shown += l.cells[i] + fill;
        }
        shown.erase(shown.find_last_not_of(' ') + 1);
        out += std::string(indent, ' ') + painted(shown, l.c) + "\n";
    }
    return out;
}

}  // namespace halden::tool
