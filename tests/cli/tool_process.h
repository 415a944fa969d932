#pragma once

// haldenctl as a process of its own that a test sends signals to.

#include <string>
#include <vector>

namespace halden::test {

struct ended {
    int signal = 0;  // that ended it
    int status = 0;  // when no signal did
    std::string out, err;
    bool operator==(const ended &) const = default;
};

class tool_process {
  public:
    // `input` is what standard input reads from, and stays the caller's.
    explicit tool_process(const std::vector<std::string> &arguments, int input = -1);
    ~tool_process();
    tool_process(const tool_process &) = delete;
    tool_process &operator=(const tool_process &) = delete;

    int id() const { return id_; }
    void send(int signal) const;
    // No more of its standard output is read; `wait` answers none of it then.
    void close_output();
    // Reads what it prints and waits for its end; kills it after half a minute.
    ended wait();

  private:
    int id_ = -1;
    int out_ = -1, err_ = -1;
};

inline ended run_tool(const std::vector<std::string> &arguments) {
    return tool_process(arguments).wait();
}

}  // namespace halden::test
