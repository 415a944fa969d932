#include "log/stack_trace.h"

#include <cxxabi.h>
#include <execinfo.h>

#include <cstdlib>
#include <cstring>

namespace halden::log {

namespace {

constexpr int most_frames = 64;
constexpr size_t name_bytes = 256;

// One buffer for all names of a dump; the demangler replaces it by a longer one where it must.
class demangler {
  public:
    demangler() : buffer_(static_cast<char *>(std::malloc(name_bytes))) {}
    ~demangler() { std::free(buffer_); }
    demangler(const demangler &) = delete;
    demangler &operator=(const demangler &) = delete;

    // Null when `name` is no mangled name. Good until the next call.
    const char *demangle(const char *name) {
        int status = 0;
        char *out = abi::__cxa_demangle(name, buffer_, &size_, &status);
        if (out != nullptr) buffer_ = out;
        return status == 0 ? out : nullptr;
    }

  private:
    char *buffer_;
    size_t size_ = name_bytes;
};

// A frame reads "module(name+offset) [address]", name and offset not always there. The module may
// hold brackets of its own, so the last one counts.
void print_frame(std::FILE *out, char *frame, demangler &names) {
    char *open = std::strrchr(frame, '(');
    char *plus = open != nullptr ? std::strchr(open, '+') : nullptr;
    char *close = plus != nullptr ? std::strchr(plus, ')') : nullptr;
    if (close == nullptr) {
        std::fprintf(out, "  %s\n", frame);
        return;
    }
    *open = *plus = *close = '\0';
    const char *name = open + 1, *offset = plus + 1;
    if (const char *readable = names.demangle(name))
        std::fprintf(out, "  %s : %s+%s\n", frame, readable, offset);
    else
        std::fprintf(out, "  %s : %s()+%s\n", frame, name, offset);
}

}  // namespace

void dump_stack(std::FILE *out) {
    std::fputs("stack trace:\n", out);
    void *addresses[most_frames];
    const int count = backtrace(addresses, most_frames);
    char **frames = count > 0 ? backtrace_symbols(addresses, count) : nullptr;
    if (frames == nullptr) {
        std::fputs("  <empty, possibly corrupt>\n", out);
        return;
    }
    demangler names;
    // The first frame is this function.
    for (int i = 1; i < count; ++i) print_frame(out, frames[i], names);
    std::free(frames);
}

}  // namespace halden::log
