// haldenctl tables: what tables there are.

#include <iostream>

#include "host/memory/memory_map.h"
#include "p4gen/halden/pipeline/words.h"
#include "tools/haldenctl/commands.h"
#include "tools/haldenctl/entry_file.h"
#include "tools/haldenctl/screen.h"

namespace halden::tool {

using namespace pipeline;

namespace {

std::string_view short_kind(kind k) {
    switch (k) {
        case kind::hash_hbm:
            return "hash, HBM";
        case kind::hash_sram:
            return "hash, SRAM";
        case kind::overflow_tcam:
            return "overflow TCAM";
        case kind::tcam:
            return "TCAM";
        case kind::index_sram:
            return "index, SRAM";
        case kind::index_hbm:
            return "index, HBM";
        case kind::keyless:
            return "keyless";
    }
    return {};
}

std::string bits_or_dash(unsigned bits) { return bits == 0 ? "-" : std::to_string(bits); }

uint32_t rows_of(const table &t) { return host::table_memory_of(t.id)->rows; }

void print_text() {
    columns shown(
        {">ID", "TABLE", "KIND", ">KEY BITS", ">DATA BITS", ">ROWS", ">ACTIONS", "PURPOSE"});
    for (const table *t : tables)
        shown.row({std::to_string(t->id), std::string(t->name), std::string(short_kind(t->kind)),
                   bits_or_dash(t->key_bits), bits_or_dash(t->data_bits),
                   std::to_string(rows_of(*t)), std::to_string(t->actions.size()),
                   std::string(t->doc)});
    std::cout << shown.text();
}

void print_json() {
    json out = json::array();
    for (const table *t : tables)
        out.push_back({{"id", t->id},
                       {"table", t->name},
                       {"kind", short_kind(t->kind)},
                       {"key_bits", t->key_bits},
                       {"key_bytes", swkey_bytes(*t)},
                       {"data_bits", t->data_bits},
                       {"data_bytes", t->data_bytes},
                       {"rows", rows_of(*t)},
                       {"actions", t->actions.size()},
                       {"purpose", t->doc}});
    std::cout << out.dump(2) << "\n";
}

}  // namespace

void add_tables(CLI::App &app) {
    CLI::App *command = app.add_subcommand("tables", "List the 48 tables: kind, sizes, rows");
    auto as_json = std::make_shared<bool>(false);
    command->add_flag("--json", *as_json, "As JSON");
    command->callback([as_json] { *as_json ? print_json() : print_text(); });
}

}  // namespace halden::tool
