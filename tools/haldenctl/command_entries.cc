// haldenctl create, update, delete, find: single entries through the table API.

#include <iostream>

#include "p4gen/halden/pipeline/words.h"
#include "tools/haldenctl/arguments.h"
#include "tools/haldenctl/commands.h"
#include "tools/haldenctl/entry_text.h"
#include "tools/haldenctl/failure.h"
#include "tools/haldenctl/refusal.h"
#include "tools/haldenctl/screen.h"
#include "tools/haldenctl/table_calls.h"

namespace halden::tool {

using namespace pipeline;

namespace {

// The row of an index table's entry; 0 for keyed tables.
uint32_t row_given(host::adapter &adapter, const table &t, std::optional<uint32_t> index) {
    if (is_keyed(t.kind)) return 0;
    if (!index) {
        if (adapter.depth(t.id) == 1) return 0;
        throw failure("no index is given; allowed: index=0 to index=" +
                          std::to_string(adapter.depth(t.id) - 1),
                      exit_status::usage);
    }
    typed([&] { check_row(adapter, t, *index); });
    return *index;
}

std::string entry_called(const records &entry, uint32_t index) {
    return is_keyed(entry.of->kind) ? key_line(entry) : "index " + std::to_string(index);
}

void print_done(host::adapter &adapter, const char *done, records &entry, uint32_t index) {
    const table &t = *entry.of;
    std::cout << painted(done, colour::good) << "  " << t.name << "  ";
    if (is_keyed(t.kind)) {
        std::cout << painted(key_line(entry), colour::key) << "  ";
        if (const auto found = row_of(adapter, entry))
            std::cout << (found->of == &t ? "" : std::string(found->of->name) + " ")
                      << place_of(*found->of, found->row);
    } else {
        std::cout << place_of(t, index);
    }
    std::cout << "  " << entry.action()->name;
    if (const std::string data = data_line(entry); !data.empty())
        std::cout << ": " << painted(data, colour::data);
    std::cout << "\n";
}

struct call {
    std::string table;
    std::vector<std::string> fields;
};

// Hangs in a command that takes a table and fields; errors name the table.
template <class Work>
void add_command(CLI::App &app, const options &given, const char *name, host::access how,
                 const char *what, const char *fields, Work work) {
    CLI::App *command = app.add_subcommand(name, what);
    auto wanted = std::make_shared<call>();
    command->add_option("TABLE", wanted->table, "Name or id")->required();
    command->add_option("FIELD=VALUE", wanted->fields, fields);
    command->callback([&given, wanted, how, work] {
        const table &t = table_argument(wanted->table);
        try {
            typed([&] { check_engine(t); });
            opened_tables tables(given, how);
            work(*tables, t, wanted->fields);
        } catch (const failure &error) {
            throw error.inside(std::string(t.name));
        }
    });
}

// Makes one call of the table API, and answers the entry's row.
template <class Call>
uint32_t carry_out(host::adapter &adapter, given_entry &given, table_call which, Call call) {
    const uint32_t index = row_given(adapter, *given.entry.of, given.index);
    if (call(given.entry, index) != TEV_TBL_RET_OK)
        throw refusals(adapter)
            .reason(which, given.entry, index)
            .inside(std::string(name_of(which)) + ": " + entry_called(given.entry, index));
    return index;
}

void create(host::adapter &adapter, const table &t, const std::vector<std::string> &fields) {
    given_entry given = entry_from_arguments(t, fields);
    const uint32_t index = carry_out(adapter, given, table_call::create, create_entry);
    print_done(adapter, "created", given.entry, index);
}

void update(host::adapter &adapter, const table &t, const std::vector<std::string> &fields) {
    given_entry given = entry_from_arguments(t, fields);
    const uint32_t index = carry_out(adapter, given, table_call::update, update_entry);
    print_done(adapter, "updated", given.entry, index);
}

// Key or index alone.
given_entry key_from_arguments(const table &t, const std::vector<std::string> &fields) {
    given_entry out(t);
    if (is_keyed(t.kind))
        set_key_fields(out.entry, fields);
    else if (!fields.empty())
        out.index = index_from_arguments(t, fields);
    return out;
}

void remove(host::adapter &adapter, const table &t, const std::vector<std::string> &fields) {
    given_entry given = key_from_arguments(t, fields);
    const uint32_t index = carry_out(adapter, given, table_call::remove, delete_entry);
    std::cout << painted("deleted", colour::good) << "  " << t.name << "  "
              << entry_called(given.entry, index) << "\n";
}

void find(host::adapter &adapter, const table &t, const std::vector<std::string> &fields) {
    given_entry given = key_from_arguments(t, fields);
    const uint32_t index = carry_out(adapter, given, table_call::find, read_entry);
    print_done(adapter, "found", given.entry, index);
}

}  // namespace

void add_entry_commands(CLI::App &app, const options &given) {
    constexpr const char *whole =
        "Key fields, or index=N; action=NAME where the table has several; data fields. key.F and "
        "data.F where the key and the data have a field F";
    constexpr const char *key = "Key fields, or index=N";
    add_command(app, given, "create", host::access::create,
                "Add an entry; the engine chooses its row", whole, create);
    add_command(app, given, "update", host::access::write, "Replace an entry's action and data",
                whole, update);
    add_command(app, given, "delete", host::access::write, "Take an entry out", key, remove);
    add_command(app, given, "find", host::access::read,
                "Tell whether an entry is there, and show it", key, find);
}

}  // namespace halden::tool
