// haldenctl describe TABLE: its fields, where each bit of them stands, where an entry goes and why
// a lookup misses.

#include <iostream>

#include "host/memory/memory_map.h"
#include "p4gen/halden/pipeline/names.h"
#include "p4gen/halden/pipeline/words.h"
#include "tools/haldenctl/arguments.h"
#include "tools/haldenctl/commands.h"
#include "tools/haldenctl/drawing.h"
#include "tools/haldenctl/screen.h"

namespace halden::tool {

using namespace pipeline;

namespace {

constexpr unsigned indent = 2;

void heading(const std::string &text) { std::cout << "\n" << painted(text, colour::title) << "\n"; }

void paragraph(const std::string &text) { std::cout << wrapped(text, indent, screen_columns()); }

std::string byte_range(unsigned first, unsigned bytes) {
    return std::to_string(first) + (bytes > 1 ? "-" + std::to_string(first + bytes - 1) : "");
}

template <class Field>
void print_fields(std::span<const Field> fields, const std::vector<run> &runs, bool of_key,
                  unsigned record_start) {
    columns shown({"FIELD", ">BITS", "IMAGE BITS", "RECORD BYTES", "MEANING"});
    for (size_t n = 0; n < fields.size(); ++n)
        shown.row(
            {std::string(fields[n].name), std::to_string(fields[n].bits), places(runs, of_key, n),
             byte_range(record_start + record_offset(fields, n), storage_bytes(fields[n].bits)),
             std::string(fields[n].doc)});
    std::cout << shown.text(indent) << "\n" << drawing(runs, indent);
}

void print_key(const table &t) {
    if (t.key.empty()) return;
    heading("Key image, " + std::to_string(t.key_bits) + " bits" +
            (has_mask(t.kind) ? "; the mask image is laid out alike" : ""));
    print_fields(t.key, key_image(t), true, 0);
}

void print_index(const table &t) {
    if (t.index.size() < 2) return;
    heading("Index");
    std::string text = "The row number is put together from";
    for (const field &f : t.index)
        text += " " + std::string(f.name) + " (" + std::to_string(f.bits) + " bits)";
    paragraph(text + ", the first on top.");
}

void print_action(const table &t, size_t n) {
    const action &a = t.actions[n];
    const unsigned bits = record_bits(a.fields);
    heading("Action " + std::to_string(n) + ", " + std::string(a.name) + ": " +
            (bits == 0 ? "no data" : "row of " + std::to_string(row_bits(t)) + " bits"));
    if (bits == 0) return;
    print_fields(a.fields, row_image(t, a), false, 1);
}

void describe(const table &t) {
    const uint32_t rows = host::table_memory_of(t.id)->rows;
    std::cout << painted(std::string(t.name), colour::title) << "  table " << t.id << ", "
              << kind_text(t.kind) << ", " << rows << (rows == 1 ? " row\n" : " rows\n");
    paragraph(std::string(t.doc));
    heading("Where an entry goes");
    paragraph(where_it_goes(t, [](const table &other) { return std::string(other.name); }));
    heading("Why a lookup misses");
    paragraph(why_it_misses(t));
    print_index(t);
    print_key(t);
    const bool same = t.actions.size() > 6 && t.data_bits == 0;
    if (!same) {
        for (size_t n = 0; n < t.actions.size(); ++n) print_action(t, n);
        return;
    }
    heading("Actions, none with data");
    columns shown({">ID", "ACTION"});
    for (size_t n = 0; n < t.actions.size(); ++n)
        shown.row({std::to_string(n), std::string(t.actions[n].name)});
    std::cout << shown.text(indent);
}

}  // namespace

void add_describe(CLI::App &app) {
    CLI::App *command = app.add_subcommand(
        "describe", "Draw a table: fields, where each bit stands, where entries go");
    auto name = std::make_shared<std::string>();
    command->add_option("TABLE", *name, "Name or id")->required();
    command->callback([name] { describe(table_argument(*name)); });
}

}  // namespace halden::tool
