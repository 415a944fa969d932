// haldenctl: the tables of the pipeline from the command line.
//
// How it ends is what failure.h says: the statuses stand in `exit_statuses` for people.

#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <iostream>

#include "host/trace/trace.h"
#include "tools/haldenctl/commands.h"
#include "tools/haldenctl/failure.h"
#include "tools/haldenctl/naming.h"
#include "tools/haldenctl/screen.h"
#include "tools/haldenctl/troubles.h"

namespace {

using halden::tool::exit_status;

constexpr const char *exit_statuses =
    "Exit status: 0 done, or a hit; 1 no such entry, a miss, or a dry run with something to do;\n"
    "2 the command line: a command, an option, a table, a field, a value or a row that is not\n"
    "understood; 3 a file or a capture that is refused or damaged, or an entry that the tables\n"
    "refuse as they are now (full, a duplicate); 4 the adapter or the machine: it cannot be "
    "opened,\n"
    "its memory is damaged, a call was refused, the disk is full, memory has run out; 128 + n\n"
    "ended by signal n.";

// What was wrong with the command line. A command that does not exist is called by its name.
std::string misunderstanding(const CLI::App &app, const CLI::ParseError &error) {
    const std::vector<std::string> rest = app.remaining();
    if (!app.get_subcommands().empty() || rest.empty() || rest[0].starts_with('-'))
        return error.what();
    std::vector<std::string> names;
    for (const CLI::App *command : app.get_subcommands({})) names.push_back(command->get_name());
    return halden::tool::unknown("command", rest[0], {names.begin(), names.end()});
}

// A page of a memory file that the disk has no room for is only missed when it is written to.
extern "C" void report_lost_memory(int) {
    constexpr char text[] =
        "haldenctl: the adapter's memory could not be written or read; is its disk full?\n";
    (void)!write(STDERR_FILENO, text, sizeof text - 1);
    _exit(static_cast<int>(exit_status::adapter));
}

// The status at the end of a command: what was printed may not have gone out.
exit_status ended(exit_status status) {
    std::cout.flush();
    if (std::cout) return status;
    std::cerr << "haldenctl: standard output cannot be written\n";
    return exit_status::adapter;
}

}  // namespace

namespace {

exit_status run(int argc, char **argv) {
    using namespace halden;
    CLI::App app(
        "The match-action tables of the halden pipeline: what they are, what stands in "
        "them, what a packet would hit.",
        "haldenctl");
    app.set_version_flag("--version", "haldenctl " HALDEN_VERSION);
    app.require_subcommand(1);
    app.fallthrough();
    app.get_formatter()->column_width(34);

    tool::options given;
    app.add_option(
           "--adapter", given.adapter,
           "Directory of the software adapter; create, write, apply and flows import make it "
           "when there is none. Without it, memory ends with the command")
        ->envname("HALDEN_ADAPTER")
        ->type_name("DIR");
    app.add_flag("--sync", given.sync,
                 "What is written to the directory is on the disk before the command goes on: it "
                 "outlives a power cut, and takes its time");
    std::string colours = "auto", level, log_file;
    app.add_option("--color", colours, "Colours: auto, always or never")
        ->check(CLI::IsMember({"auto", "always", "never"}))
        ->type_name("WHEN")
        ->capture_default_str();
    app.add_option(
           "--log-level", level,
           "Messages of library and adapter from this level on: trace, debug, info, warning, "
           "error, critical (the default), off")
        ->type_name("LEVEL");
    app.add_option("--log-file", log_file, "Messages go to this file instead of standard error")
        ->type_name("FILE");
    std::vector<std::string> faults;
    app.add_option("--fault", faults,
                   "Calls of the ASIC layer that the adapter refuses or delays, as "
                   "sram-write,table=lif_mapping,skip=2,count=all,delay=10")
        ->type_name("CALL[,...]");
    app.add_flag("--show-calls", given.show_calls,
                 "Show the calls of the ASIC layer that the command made");
    // Runs when the options are known, before the command does.
    app.parse_complete_callback([&] {
        tool::use_colours(colours);
        for (const std::string &text : faults) given.faults.push_back(tool::fault_of(text));
        // The tool's own errors say what went wrong; the library's and the adapter's say where.
        if (level.empty() && std::getenv("HALDEN_LOG_LEVEL") == nullptr) level = "critical";
        if (!level.empty() && !host::trace::set_level(level))
            throw tool::failure("--log-level: '" + level +
                                    "' is no level; allowed: trace, debug, info, warning, error, "
                                    "critical, off",
                                exit_status::usage);
        if (!log_file.empty() && !host::trace::set_file(log_file))
            throw tool::failure("--log-file: " + log_file + " cannot be opened for appending",
                                exit_status::usage);
    });
    app.footer("`haldenctl COMMAND --help` says more about a command.\n\n" +
               std::string(exit_statuses));

    tool::add_tables(app);
    tool::add_describe(app);
    tool::add_write(app, given);
    tool::add_read(app, given);
    tool::add_dump(app, given);
    tool::add_lookup(app, given);
    tool::add_entry_commands(app, given);
    tool::add_apply(app, given);
    tool::add_stats(app, given);
    tool::add_flows(app, given);
    tool::add_decode(app);
    tool::add_explain(app);

    try {
        app.parse(argc, argv);
        return ended(exit_status::done);
    } catch (const tool::missed &) {
        return ended(exit_status::missed);
    } catch (const CLI::ParseError &error) {
        if (error.get_exit_code() == 0) {  // help and version
            app.exit(error);
            return ended(exit_status::done);
        }
        std::cerr << "haldenctl: " << tool::printable(misunderstanding(app, error))
                  << "; `haldenctl --help` says more\n";
        return exit_status::usage;
    } catch (const tool::failure &error) {
        std::cout.flush();
        std::cerr << "haldenctl: " << tool::printable(error.what()) << "\n";
        return error.status();
    } catch (const std::exception &error) {
        std::cout.flush();
        std::cerr << "haldenctl: " << tool::printable(error.what()) << "\n";
        return exit_status::adapter;
    }
}

}  // namespace

int main(int argc, char **argv) {
    std::signal(SIGBUS, report_lost_memory);
    std::signal(SIGXFSZ, SIG_IGN);  // the call that grows a file too far fails and is reported
    const exit_status status = run(argc, argv);
    return static_cast<int>(halden::tool::trouble_was_met ? exit_status::adapter : status);
}
