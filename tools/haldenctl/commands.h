#pragma once

// The commands of haldenctl, one function each to hang it into the command line.

#include <CLI/CLI.hpp>

#include "tools/haldenctl/options.h"

namespace halden::tool {

// The same whatever stands on an adapter.
void add_tables(CLI::App &app);
void add_describe(CLI::App &app);
void add_decode(CLI::App &app);
void add_explain(CLI::App &app);

void add_write(CLI::App &app, const options &given);
void add_entry_commands(CLI::App &app, const options &given);  // create, update, delete, find
void add_apply(CLI::App &app, const options &given);
void add_stats(CLI::App &app, const options &given);
void add_flows(CLI::App &app, const options &given);
void add_lookup(CLI::App &app, const options &given);
void add_read(CLI::App &app, const options &given);
void add_dump(CLI::App &app, const options &given);

}  // namespace halden::tool
