#pragma once

// A transcript is a text file of commands with what they print:
//
//     # a comment
//     file a.json          a file is made of the lines up to `end`
//     {"entries": []}
//     end
//     $ haldenctl write a.json
//     0 entries of 0 tables written to memory that ends with this command
//     $ haldenctl describe nothing
//     2> haldenctl: no table 'nothing'       lines of standard error
//     => 1                                   the exit status when it is not 0
//     ...                                    any number of lines
//     imported in [...] s                    any text within a line
//
// The commands run one after the other, by the shell, in one directory of their own; $EXAMPLES is
// the directory of the examples.

#include <string>
#include <vector>

namespace halden::test {

struct step {
    int line = 0;
    std::string command;
    std::vector<std::string> expected;
};

struct made_file {
    std::string name, content;
};

struct transcript {
    std::vector<made_file> files;  // all are made before the first command
    std::vector<step> steps;
};

transcript read_transcript(const std::string &path);

// What a command printed, in the form of a transcript: standard output, "2> " lines, "=> ".
std::vector<std::string> run(const std::string &command, const std::string &directory);

// "..." stands for any lines.
bool matches(const std::vector<std::string> &expected, const std::vector<std::string> &printed);

}  // namespace halden::test
