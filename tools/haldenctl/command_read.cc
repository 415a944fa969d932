// haldenctl read TABLE INDEX|KEY, haldenctl dump TABLE|--all: what stands in the tables.

#include <charconv>
#include <iostream>

#include "p4gen/halden/pipeline/words.h"
#include "p4pd.h"
#include "tools/haldenctl/adapter_view.h"
#include "tools/haldenctl/arguments.h"
#include "tools/haldenctl/commands.h"
#include "tools/haldenctl/drawing.h"
#include "tools/haldenctl/entry_file.h"
#include "tools/haldenctl/entry_text.h"
#include "tools/haldenctl/failure.h"
#include "tools/haldenctl/interrupt.h"
#include "tools/haldenctl/raw_entry.h"
#include "tools/haldenctl/screen.h"
#include "tools/haldenctl/table_calls.h"

namespace halden::tool {

using namespace pipeline;

namespace {

// Longer than any table's text: a byte of an array takes up to six characters.
constexpr size_t text_bytes = 16384;

found_row row_of_key(host::adapter &adapter, const table &t,
                     const std::vector<std::string> &given) {
    records wanted(t);
    set_key_fields(wanted, given);
    if (const auto found = row_of(adapter, wanted)) return *found;
    throw failure(std::string(t.name) + ": no entry has the key " + key_line(wanted) +
                      "; `haldenctl lookup` says what a packet would hit",
                  exit_status::missed);
}

// Nothing when it is the key that is given.
std::optional<uint32_t> row_given(host::adapter &adapter, const table &t,
                                  const std::vector<std::string> &given) {
    if (given.empty()) {
        if (adapter.depth(t.id) == 1) return 0;
        throw failure(std::string(t.name) + ": no index " +
                      (is_keyed(t.kind) ? "and no key " : "") + "is given; allowed: 0 to " +
                      std::to_string(adapter.depth(t.id) - 1));
    }
    try {
        if (given.size() == 1 && given[0].find('=') == given[0].npos) {
            if (given[0].find_first_not_of("0123456789abcdefx") != given[0].npos)
                throw failure("'" + given[0] + "' is no row; allowed: 0 to " +
                              std::to_string(adapter.depth(t.id) - 1) +
                              (is_keyed(t.kind) ? ", or the key as FIELD=VALUE" : ""));
            const uint32_t row = parse_row(t, given[0]);
            check_row(adapter, t, row);
            return row;
        }
        if (!is_keyed(t.kind)) {
            const uint32_t row = index_from_arguments(t, given);
            check_row(adapter, t, row);
            return row;
        }
    } catch (const failure &error) {
        throw error.inside(std::string(t.name));
    }
    return std::nullopt;
}

found_row row_named(host::adapter &adapter, const table &t, const std::vector<std::string> &given) {
    if (const auto row = typed([&] { return row_given(adapter, t, given); })) return {&t, *row};
    return row_of_key(adapter, t, given);
}

std::string decoded(records &entry, uint32_t row) {
    std::string text(text_bytes, '\0');
    p4pd_table_ds_decoded_string_get(entry.of->id, row, entry.key_pointer(), entry.mask_pointer(),
                                     entry.data.data(), text.data(),
                                     static_cast<uint16_t>(text.size()));
    text.resize(text.find('\0'));
    return text;
}

void print_image(const char *what, const table &t, const raw_entry &raw,
                 const std::vector<uint8_t> &image) {
    const std::vector<uint8_t> stored = as_stored(t, image, raw.bits);
    std::cout << painted(std::string(what) + ", " + std::to_string(raw.bits) + " bits",
                         colour::title)
              << "\n  in memory  " << hex_of(stored.data(), stored.size()) << "\n  image      "
              << hex_of(image.data(), image.size()) << "\n"
              << drawing(runs_of(t, raw), 2, &image);
}

void print_raw(const table &t, const stored_row &stored) {
    if (!stored.key.empty()) {
        const raw_entry raw{stored.key, stored.mask, tcam_width(t)};
        print_image("key", t, raw, stored.key);
        print_image("mask", t, raw, stored.mask);
    }
    if (stored.data_bits != 0)
        print_image("row", t, {stored.data, {}, static_cast<uint16_t>(stored.data_bits)},
                    stored.data);
}

struct read_options {
    std::string table;
    std::vector<std::string> where;
    bool as_json = false, raw = false;
};

// Asks the table API as well, where it serves the table: the entry a caller of it would get.
void read(opened_tables &tables, const read_options &wanted) {
    host::adapter &adapter = *tables;
    const auto [t, row] = row_named(adapter, table_argument(wanted.table), wanted.where);
    auto entry = read_back(adapter, *t, row);
    if (!entry)
        throw failure(std::string(t->name) + ": row " + std::to_string(row) + " is empty",
                      exit_status::missed);
    if (has_engine(*t) && !wanted.raw) {
        records same = *entry;
        const tev_tbl_ret_t result = read_entry(same, row);
        if (result != TEV_TBL_RET_OK)
            throw failure(std::string(t->name) + ": row " + std::to_string(row) +
                              " is in use, and the engine does not find its entry (result " +
                              name_of(result) + "); `read --raw` shows the row as it is",
                          exit_status::adapter);
        entry->data = same.data;
    }
    if (wanted.as_json)
        std::cout << to_json(*entry, row).dump(2) << "\n";
    else
        std::cout << decoded(*entry, row);
    if (!wanted.raw) return;
    if (const auto stored = stored_at(adapter, *t, row)) print_raw(*t, *stored);
}

// --- dump ----------------------------------------------------------------------------------------

class dump_printer {
  public:
    explicit dump_printer(bool as_json) : as_json_(as_json) {
        if (as_json_) std::cout << "{\"entries\": [";
    }
    void put(const records &entry, uint32_t row) {
        if (as_json_) {
            std::cout << (count_ == 0 ? "\n" : ",\n") << to_json(entry, row).dump();
        } else {
            const table &t = *entry.of;
            std::cout << painted(t.name, colour::title) << "  " << place_of(t, row);
            if (is_keyed(t.kind)) std::cout << "  " << painted(key_line(entry), colour::key);
            std::cout << "  " << (entry.action() != nullptr ? entry.action()->name : "?");
            if (const std::string data = data_line(entry); !data.empty())
                std::cout << ": " << painted(data, colour::data);
            std::cout << "\n";
        }
        ++count_;
    }
    void end() {
        if (as_json_) std::cout << (count_ == 0 ? "" : "\n") << "]}\n";
    }
    size_t count() const { return count_; }

  private:
    bool as_json_;
    size_t count_ = 0;
};

void dump_table(host::adapter &adapter, const table &t, dump_printer &out) {
    for (uint32_t row = adapter.next_used(t.id, 0); row < adapter.depth(t.id);
         row = adapter.next_used(t.id, row + 1)) {
        stop_if_told();
        std::optional<records> entry;
        try {
            entry = read_back(adapter, t, row);
        } catch (const failure &) {
            // Named at the end; the other rows are shown.
            if (adapter.troubles().empty()) throw;
        }
        if (!entry) continue;
        if (entry->action() == nullptr)
            throw failure(
                std::string(t.name) + ": row " + std::to_string(row) +
                    " names a program that is none of the table's actions; see `haldenctl "
                    "read " +
                    std::string(t.name) + " " + std::to_string(row) + " --raw`",
                exit_status::adapter);
        out.put(*entry, row);
    }
}

}  // namespace

void add_read(CLI::App &app, const options &given) {
    CLI::App *command =
        app.add_subcommand("read", "One entry, by its index or its key, as the library prints it");
    auto wanted = std::make_shared<read_options>();
    command->add_option("TABLE", wanted->table, "Name or id")->required();
    command->add_option("INDEX|FIELD=VALUE", wanted->where,
                        "The row; or the entry's key, mask included");
    command->add_flag("--json", wanted->as_json, "As JSON that `write` takes");
    command->add_flag("--raw", wanted->raw, "With its images and the fields of their bits");
    command->callback([&given, wanted] {
        opened_tables tables(given, host::access::read);
        read(tables, *wanted);
    });
}

void add_dump(CLI::App &app, const options &given) {
    CLI::App *command = app.add_subcommand("dump", "Every used row of a table, or of all");
    auto name = std::make_shared<std::string>();
    auto all = std::make_shared<bool>(false), as_json = std::make_shared<bool>(false);
    auto *table_option = command->add_option("TABLE", *name, "Name or id");
    command->add_flag("--all", *all, "All tables")->excludes(table_option);
    command->add_flag("--json", *as_json, "As a file that `write` takes");
    command->callback([&given, name, all, as_json] {
        if (name->empty() && !*all)
            throw CLI::ValidationError("dump", "TABLE or --all is required");
        const table *one = *all ? nullptr : &table_argument(*name);
        const opened_adapter adapter(given, host::access::read);
        dump_printer out(*as_json);
        for (const table *t : tables)
            if (one == nullptr || one == t) dump_table(*adapter, *t, out);
        out.end();
        if (out.count() == 0 && adapter->troubles().empty())
            std::cerr << (one != nullptr ? std::string(one->name) : "all tables") << ": no row of "
                      << adapter.name() << " is in use\n";
    });
}

}  // namespace halden::tool
