#include "tests/crash/store_trap.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <cstring>

#if defined(__x86_64__) && !defined(__SANITIZE_THREAD__)
#include <ucontext.h>
#define HALDEN_STORE_TRAP 1
#endif

namespace halden::crash {

#ifdef HALDEN_STORE_TRAP

namespace {

constexpr greg_t trap_flag = 0x100;

struct mapping {
    uintptr_t begin, end;
    bool open;  // for the store that is under way
};

// Signal handlers use these: no memory is taken while the trap is armed.
constexpr size_t most_mappings = 256;
mapping mappings[most_mappings];
size_t mapping_count = 0;
char watched[512];
char maps_text[256 * 1024];
uint32_t stores = 0, last_store = 0;

bool is_known(uintptr_t begin) {
    for (size_t i = 0; i < mapping_count; ++i)
        if (mappings[i].begin == begin) return true;
    return false;
}

void protect(const mapping &m, int how) {
    if (mprotect(reinterpret_cast<void *>(m.begin), m.end - m.begin, how) != 0) _exit(90);
}

// A line of the kernel's list: "begin-end rw-s offset device inode path".
void take_line(const char *line) {
    char *rest = nullptr;
    const uintptr_t begin = std::strtoul(line, &rest, 16);
    const uintptr_t end = std::strtoul(rest + 1, &rest, 16);
    if (std::strncmp(rest, " rw-s", 5) != 0) return;
    const char *path = std::strchr(rest, '/');
    if (path == nullptr || std::strncmp(path, watched, std::strlen(watched)) != 0) return;
    if (is_known(begin) || mapping_count == most_mappings) return;
    mappings[mapping_count] = {begin, end, false};
    protect(mappings[mapping_count++], PROT_READ);
}

void watch_mappings() {
    const int file = open("/proc/self/maps", O_RDONLY | O_CLOEXEC);
    size_t size = 0;
    for (ssize_t got = 1; got > 0 && size < sizeof maps_text - 1; size += static_cast<size_t>(got))
        if ((got = read(file, maps_text + size, sizeof maps_text - 1 - size)) < 0) _exit(91);
    close(file);
    maps_text[size] = '\0';
    for (char *line = maps_text; *line != '\0';) {
        char *end = std::strchr(line, '\n');
        if (end == nullptr) break;
        *end = '\0';
        take_line(line);
        line = end + 1;
    }
}

void on_fault(int, siginfo_t *info, void *context) {
    const auto at = reinterpret_cast<uintptr_t>(info->si_addr);
    for (size_t i = 0; i < mapping_count; ++i) {
        mapping &m = mappings[i];
        if (at < m.begin || at >= m.end || m.open) continue;
        m.open = true;
        protect(m, PROT_READ | PROT_WRITE);
        static_cast<ucontext_t *>(context)->uc_mcontext.gregs[REG_EFL] |= trap_flag;
        return;
    }
    // A fault of the code's own.
    signal(SIGSEGV, SIG_DFL);
}

void on_step(int, siginfo_t *, void *context) {
    static_cast<ucontext_t *>(context)->uc_mcontext.gregs[REG_EFL] &= ~trap_flag;
    if (++stores == last_store) {
        kill(getpid(), SIGKILL);
        for (;;) pause();
    }
    for (size_t i = 0; i < mapping_count; ++i) {
        if (!mappings[i].open) continue;
        mappings[i].open = false;
        protect(mappings[i], PROT_READ);
    }
    watch_mappings();
}

void handle(int number, void (*by)(int, siginfo_t *, void *)) {
    struct sigaction action = {};
    action.sa_sigaction = by;
    action.sa_flags = SA_SIGINFO;
    sigaction(number, &action, nullptr);
}

}  // namespace

bool store_trap::is_supported() { return true; }

void store_trap::arm(const std::string &directory, uint32_t last) {
    if (directory.size() >= sizeof watched) _exit(92);
    std::memcpy(watched, directory.c_str(), directory.size() + 1);
    stores = 0;
    last_store = last;
    mapping_count = 0;
    handle(SIGSEGV, on_fault);
    handle(SIGTRAP, on_step);
    watch_mappings();
}

uint32_t store_trap::disarm() {
    for (size_t i = 0; i < mapping_count; ++i) protect(mappings[i], PROT_READ | PROT_WRITE);
    mapping_count = 0;
    signal(SIGSEGV, SIG_DFL);
    signal(SIGTRAP, SIG_DFL);
    return stores;
}

#else

bool store_trap::is_supported() { return false; }
void store_trap::arm(const std::string &, uint32_t) {}
uint32_t store_trap::disarm() { return 0; }

#endif

}  // namespace halden::crash
