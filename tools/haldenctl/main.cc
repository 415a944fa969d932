// haldenctl: the tables of the pipeline from the command line.
//
// How it ends is what failure.h says: the statuses stand in `exit_statuses` for people.

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <new>

#include "host/trace/trace.h"
#include "tools/haldenctl/commands.h"
#include "tools/haldenctl/failure.h"
#include "tools/haldenctl/interrupt.h"
#include "tools/haldenctl/naming.h"
#include "tools/haldenctl/screen.h"
#include "tools/haldenctl/standard_streams.h"
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

// The commands below `at`, or its options by their long names.
std::vector<std::string> names_below(const CLI::App &at, bool options) {
    std::vector<std::string> out;
    for (const CLI::App *level = &at; options && level != nullptr; level = level->get_parent())
        for (const CLI::Option *option : level->get_options())
            for (const std::string &name : option->get_lnames())
                if (name != "help" || level == &at) out.push_back("--" + name);
    if (!options)
        for (const CLI::App *command : at.get_subcommands({})) out.push_back(command->get_name());
    return out;
}

// What was wrong with the command line. A command or an option that does not exist is called by its
// name, at whatever level.
std::string misunderstanding(const CLI::App &app, const CLI::ParseError &error) {
    using halden::tool::unknown;
    const CLI::App *at = &app;
    while (!at->get_subcommands().empty()) at = at->get_subcommands().back();
    const std::vector<std::string> rest = app.remaining(true);
    if (rest.empty()) return error.what();
    const std::string given = rest[0].substr(0, rest[0].find('='));
    const bool option = given.starts_with("--");
    const std::vector<std::string> names = names_below(*at, option);
    if ((!option && given.starts_with('-')) || names.empty()) return error.what();
    const std::string text =
        unknown(option ? "option" : "command", given, {names.begin(), names.end()});
    return at == &app ? text : at->get_name() + ": " + text;
}

// The status at the end of a command: what was printed may not have gone out.
exit_status ended(exit_status status) {
    std::cout.flush();
    if (std::cout) return status;
    // A reader that has gone is told by the signal.
    if (halden::tool::signal_received() == 0)
        std::cerr << "haldenctl: standard output cannot be written\n";
    return exit_status::adapter;
}

exit_status failed(const std::string &why, exit_status status) {
    std::cout.flush();
    // Put together first, so that it comes out whole or not at all.
    const std::string line = "haldenctl: " + halden::tool::printable(why) + "\n";
    std::cerr << line;
    return status;
}

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
    const tool::fault_report report(given);
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
                   "Calls that the adapter refuses or delays, as "
                   "sram-write,table=lif_mapping,skip=2,count=all,delay=10. CALL is one of " +
                       tool::fault_calls() +
                       ". One that no call met is named at the end; the exit status stays")
        ->type_name("CALL[,...]");
    app.add_flag("--show-calls", given.show_calls,
                 "Show the calls of the ASIC layer that the command made");
    // Runs when the options are known, before the command does.
    app.parse_complete_callback([&] {
        tool::use_colours(colours);
        for (const std::string &text : faults) given.faults.push_back({text, tool::fault_of(text)});
        // The tool's own errors say what went wrong; the library's and the adapter's say where.
        if (level.empty() && std::getenv("HALDEN_LOG_LEVEL") == nullptr) level = "critical";
        if (!level.empty() && !host::trace::set_level(level))
            throw tool::failure("--log-level: '" + level +
                                    "' is no level; allowed: trace, debug, info, warning, error, "
                                    "critical, off",
                                exit_status::usage);
        errno = 0;
        if (!log_file.empty() && !host::trace::set_file(log_file))
            throw tool::failure("--log-file: " + log_file +
                                    " cannot be opened for appending: " + std::strerror(errno),
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
        const std::string why = misunderstanding(app, error);
        return failed(why + (why.ends_with('?') ? " " : "; ") + "`haldenctl --help` says more",
                      exit_status::usage);
    }
}

// At once, wherever it is: half of a stream's output would be taken for the whole, and an engine
// that cannot be made is the end in any case. The adapter is left as by a kill, which it is made
// for.
[[noreturn]] void end_without_memory() {
    constexpr char text[] = "haldenctl: out of memory\n";
    (void)!write(STDERR_FILENO, text, sizeof text - 1);
    _exit(static_cast<int>(exit_status::adapter));
}

// Turns whatever ends a command into its status.
exit_status run_to_the_end(int argc, char **argv) {
    using namespace halden::tool;
    try {
        return run(argc, argv);
    } catch (const failure &error) {
        return failed(error.what(), error.status());
    } catch (const stopped &early) {
        if (early.done.empty()) return ended(exit_status::adapter);
        const std::string why =
            signal_received() != 0 ? "interrupted" : "standard output cannot be written";
        return failed(why + ": " + early.done, exit_status::adapter);
    } catch (const std::bad_alloc &) {  // of memory that is not C++'s own
        end_without_memory();
    } catch (const std::exception &error) {
        return failed(error.what(), exit_status::adapter);
    }
}

}  // namespace

int main(int argc, char **argv) {
    using namespace halden::tool;
    std::set_new_handler(end_without_memory);
    if (!fill_standard_streams() || !watch_signals()) return static_cast<int>(exit_status::adapter);
    const exit_status status = run_to_the_end(argc, argv);
    if (signal_received() != 0) end_by_signal();
    return static_cast<int>(trouble_was_met ? exit_status::adapter : status);
}
