#include "tests/cli/transcript.h"

#include <sys/wait.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string_view>

namespace halden::test {

namespace {

std::vector<std::string> lines_of(const std::string &path, const std::string &prefix) {
    std::ifstream in(path);
    std::vector<std::string> out;
    for (std::string line; std::getline(in, line);) out.push_back(prefix + line);
    return out;
}

// "[...]" in a line stands for whatever is there.
bool line_matches(std::string_view expected, std::string_view printed) {
    constexpr std::string_view any = "[...]";
    const size_t at = expected.find(any);
    if (at == expected.npos) return printed == expected;
    const std::string_view end = expected.substr(at + any.size());
    return printed.size() >= at + end.size() && printed.starts_with(expected.substr(0, at)) &&
           printed.ends_with(end);
}

bool matches_from(const std::vector<std::string> &expected, size_t e,
                  const std::vector<std::string> &printed, size_t p) {
    if (e == expected.size()) return p == printed.size();
    if (expected[e] == "...") {
        for (size_t rest = p; rest <= printed.size(); ++rest)
            if (matches_from(expected, e + 1, printed, rest)) return true;
        return false;
    }
    return p < printed.size() && line_matches(expected[e], printed[p]) &&
           matches_from(expected, e + 1, printed, p + 1);
}

}  // namespace

transcript read_transcript(const std::string &path) {
    std::ifstream in(path);
    if (!in) throw std::runtime_error(path + " cannot be read");
    transcript out;
    bool in_file = false;
    int number = 0;
    for (std::string line; std::getline(in, line);) {
        ++number;
        if (in_file) {
            if (line == "end")
                in_file = false;
            else
                out.files.back().content += line + "\n";
        } else if (line.starts_with("file ")) {
            out.files.push_back({line.substr(5), {}});
            in_file = true;
        } else if (line.starts_with("$ ")) {
            out.steps.push_back({number, line.substr(2), {}});
        } else if (line.starts_with("#") || (line.empty() && out.steps.empty())) {
            continue;
        } else if (out.steps.empty()) {
            throw std::runtime_error(path + ":" + std::to_string(number) + ": no command yet");
        } else {
            out.steps.back().expected.push_back(line);
        }
    }
    // Empty lines in front of the next command are for the reader.
    for (step &s : out.steps)
        while (!s.expected.empty() && s.expected.back().empty()) s.expected.pop_back();
    return out;
}

std::vector<std::string> run(const std::string &command, const std::string &directory) {
    const std::string out = directory + "/.stdout", err = directory + "/.stderr";
    const std::string line =
        "cd '" + directory + "' && { " + command + "\n} >'" + out + "' 2>'" + err + "' </dev/null";
    const int status = std::system(line.c_str());
    std::vector<std::string> printed = lines_of(out, "");
    while (!printed.empty() && printed.back().empty()) printed.pop_back();
    for (std::string &text : lines_of(err, "2> ")) printed.push_back(text);
    const int code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    if (code != 0) printed.push_back("=> " + std::to_string(code));
    return printed;
}

bool matches(const std::vector<std::string> &expected, const std::vector<std::string> &printed) {
    return matches_from(expected, 0, printed, 0);
}

}  // namespace halden::test
