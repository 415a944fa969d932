// A program of somebody else's: made from the installed package alone, with NDEBUG.

#include <halden/host/adapter.h>
#include <halden/p4pd.h>

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#ifndef NDEBUG
#error "the consumer is to be built with NDEBUG"
#endif

extern "C" void c_fill_lif_mapping(void *room, unsigned lport, unsigned vrf);

namespace {

void check(bool holds, const char *what) {
    if (holds) return;
    std::fprintf(stderr, "consumer: %s\n", what);
    std::exit(1);
}

void write_and_read_an_entry() {
    const auto adapter = halden::host::adapter::anonymous();
    const halden::host::scoped_current current(*adapter);
    lif_mapping_actiondata_t in, out = {};
    c_fill_lif_mapping(&in, 1234, 77);
    check(p4pd_entry_install(P4TBL_ID_LIF_MAPPING, 9, nullptr, nullptr, &in) == P4PD_SUCCESS,
          "the entry is not written");
    check(p4pd_entry_read(P4TBL_ID_LIF_MAPPING, 9, nullptr, nullptr, &out, nullptr, false) ==
              P4PD_SUCCESS,
          "the entry is not read");
    check(out.action_u.lif_mapping.src_lport == 1234, "src_lport does not read back");
    check(out.action_u.lif_mapping.rmac_vrf == 77, "rmac_vrf does not read back");
    check(adapter->next_used(P4TBL_ID_LIF_MAPPING, 0) == 9, "the entry is not in the adapter");
}

// What a child wrote to standard error before an assertion of the library ended it.
std::string text_of_a_failed_assertion() {
    int ends[2];
    check(pipe(ends) == 0, "no pipe");
    const pid_t child = fork();
    check(child >= 0, "no child");
    if (child == 0) {
        dup2(ends[1], STDERR_FILENO);
        p4pd_actiondata_appdata_size_get(P4TBL_ID_VLAN_MAPPING, 0);
        _exit(0);
    }
    close(ends[1]);
    std::string text;
    char part[512];
    for (ssize_t n; (n = read(ends[0], part, sizeof part)) > 0;)
        text.append(part, static_cast<size_t>(n));
    close(ends[0]);
    int status = 0;
    check(waitpid(child, &status, 0) == child, "the child is lost");
    check(WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT,
          "a failed assertion of the library did not abort");
    return text;
}

}  // namespace

int main() {
    check(p4pd_tableid_max_get() == 49, "the library answers another bound");
    p4pd_prep_p4tbl_names();
    check(std::strcmp(p4pd_tbl_names[17], "lif_vela_mapping") == 0, "the names are not exported");
    write_and_read_an_entry();
    const std::string text = text_of_a_failed_assertion();
    check(text.find("p4gen/halden/src/p4pd:34224: uint32_t p4pd_actiondata_appdata_size_get("
                    "uint32_t, uint8_t): Assertion `0' failed.") != std::string::npos,
          text.c_str());
    std::puts("the consumer's own main: all checks passed");
    return 0;
}
