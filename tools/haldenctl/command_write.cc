// haldenctl write FILE: raw entries, each at the row it says.

#include <iostream>
#include <map>
#include <set>

#include "host/state/table_state.h"
#include "host/view/lookup.h"
#include "host/view/row_hash.h"
#include "p4gen/halden/pipeline/layout.h"
#include "p4pd.h"
#include "tools/haldenctl/adapter_view.h"
#include "tools/haldenctl/commands.h"
#include "tools/haldenctl/entry_file.h"
#include "tools/haldenctl/failure.h"
#include "tools/haldenctl/given_entry.h"
#include "tools/haldenctl/interrupt.h"
#include "tools/haldenctl/row_writer.h"
#include "tools/haldenctl/screen.h"

namespace halden::tool {

using namespace pipeline;

namespace {

struct placed {
    file_entry *given;
    uint32_t row;
    bool by_hash;
    bool replaces;  // something stood there before
};

bool hashes(const table &t) { return t.kind == kind::hash_sram || t.id == host::flow_table; }

placed place(host::adapter &adapter, file_entry &given) {
    const table &t = *given.entry.of;
    placed out{&given, 0, false, false};
    if (given.index) {
        out.row = *given.index;
    } else if (hashes(t)) {
        const key_images images = images_of(given.entry);
        out.row = host::view::hash_row(t.id, images.key.data(), adapter.depth(t.id));
        out.by_hash = true;
    } else if (adapter.depth(t.id) != 1) {
        throw failure("no \"index\" is given; allowed: 0 to " +
                      std::to_string(adapter.depth(t.id) - 1));
    }
    check_row(adapter, t, out.row);
    return out;
}

// Where every entry goes; throws before anything is written.
std::vector<placed> place_all(host::adapter &adapter, std::vector<file_entry> &entries) {
    std::vector<placed> out;
    std::map<std::pair<uint32_t, uint32_t>, const file_entry *> taken;
    for (file_entry &given : entries) {
        try {
            placed p = place(adapter, given);
            const uint32_t id = given.entry.of->id;
            const auto [other, fresh] = taken.insert({{id, p.row}, &given});
            if (!fresh)
                throw failure(
                    "row " + std::to_string(p.row) + " is also that of " +
                    other->second->place.substr(other->second->place.rfind("entry ")) +
                    (p.by_hash ? "; give one of them a place in the overflow table" : ""));
            p.replaces = adapter.next_used(id, p.row) == p.row;
            out.push_back(p);
        } catch (const failure &error) {
            throw error.inside(given.place);
        }
    }
    return out;
}

// A flow's valid bit, the last of its fields.
bool is_valid(const records &entry) {
    return entry.data_value(entry.action()->fields.size() - 1) != 0;
}

// What hardware would say to a packet of this entry's key, when that is not this entry.
std::string shadow_of(host::adapter &adapter, const placed &p) {
    const table &t = *p.given->entry.of;
    if (!is_keyed(t.kind) || t.id == host::flow_ohash_table) return {};
    const key_images images = images_of(p.given->entry);
    const auto found = host::view::lookup(adapter, t.id, images.key.data());
    if (!found.hit && t.id == host::flow_table && !is_valid(p.given->entry))
        return "not found by its key: entry_valid is 0, so hardware steps over it";
    if (!found.hit)
        return hashes(t) && !p.by_hash ? "not found by its key: the hash leads to row " +
                                             std::to_string(found.hashed_row)
                                       : "not found by its key";
    if (found.table == t.id && found.row == p.row) return {};
    return "hidden: row " + std::to_string(found.row) + " of " +
           std::string(find_table(found.table)->name) + " matches its key first";
}

void print_entry(host::adapter &adapter, size_t number, const placed &p) {
    const table &t = *p.given->entry.of;
    const action *a = p.given->entry.action();
    std::cout << painted("entry " + std::to_string(number), colour::dim) << "  "
              << painted(t.name, colour::title) << "  " << a->name << "  " << place_of(t, p.row)
              << (p.by_hash ? ", from the key's hash" : "")
              << (p.replaces ? painted(", replaced", colour::bad) : "") << "\n";
    const auto stored = stored_at(adapter, t, p.row);
    constexpr unsigned in = 11;
    if (!stored) {
        std::cout << std::string(in, ' ') << painted("row  no bits", colour::dim) << "\n";
        return;
    }
    const auto image = [&](const char *what, const std::vector<uint8_t> &bytes, unsigned bits,
                           colour c) {
        if (bytes.empty()) return;
        const std::string digits = hex_of(bytes.data(), bytes.size());
        const unsigned line = (std::max(screen_columns(), 60u) - in - 16) / 2 * 2;
        for (size_t at = 0; at < digits.size(); at += line)
            std::cout << std::string(in, ' ')
                      << (at == 0
                              ? std::string(what) + std::string(5 - std::string(what).size(), ' ')
                              : std::string(5, ' '))
                      << painted(digits.substr(at, line), c)
                      << (at + line >= digits.size()
                              ? painted("  " + std::to_string(bits) + " bits", colour::dim)
                              : "")
                      << "\n";
    };
    if (is_hash(t.kind)) {
        const key_images images = images_of(p.given->entry);
        const unsigned bits = t.kind == kind::hash_hbm ? wide_key_image_bytes * 8u : t.key_bits;
        std::vector<uint8_t> key = images.key;
        key.resize((bits + 7) / 8);
        image("key", key, bits, colour::key);
    }
    image("key", stored->key, tcam_width(t), colour::key);
    image("mask", stored->mask, tcam_width(t), colour::key);
    image("row", stored->data, stored->data_bits, colour::data);
    if (const std::string note = shadow_of(adapter, p); !note.empty())
        std::cout << std::string(in, ' ') << painted(note, colour::bad) << "\n";
}

std::string count_of(size_t n, const char *one, const char *many) {
    return std::to_string(n) + " " + (n == 1 ? one : many);
}

void write(const opened_adapter &adapter, const std::string &path, bool quiet) {
    std::vector<file_entry> entries = read_entry_file(path);
    // What a killed process had begun may name rows that are written now: it is finished before.
    if (adapter->has_work_left()) host::table_state finished(*adapter);
    const std::vector<placed> places = place_all(*adapter, entries);
    row_writer writer(*adapter);
    std::set<uint32_t> tables_seen;
    size_t number = 0;
    for (const placed &p : places) {
        if (told_to_stop())
            stop(path + ": " + std::to_string(number) + " of its " +
                 count_of(places.size(), "entry", "entries") + " were written");
        note_done(number);
        const std::string damage = adapter->damage_of(p.given->entry.of->id, p.row);
        if (!damage.empty())
            std::cerr << "haldenctl: " << printable(damage) << ", and is written anew\n";
        try {
            writer.write(p.given->entry, p.row);
        } catch (const failure &error) {
            throw failure(p.given->place + ": " + error.what() + "; " +
                              count_of(number, "entry", "entries") + " before it written",
                          error.status());
        }
        tables_seen.insert(p.given->entry.of->id);
        ++number;
        if (!quiet) print_entry(*adapter, number, p);
    }
    std::cout << count_of(number, "entry", "entries") << " of "
              << count_of(tables_seen.size(), "table", "tables") << " written to " << adapter.name()
              << "\n";
}

}  // namespace

void add_write(CLI::App &app, const options &given) {
    CLI::App *command = app.add_subcommand(
        "write", "Write the entries of a JSON file, each at its row; checks the whole file first");
    command->footer(
        "Values are decimal, 0x and 0b numbers, true and false, MAC, IPv4 and IPv6 addresses; key\n"
        "fields of ternary tables also value&&&mask, address/length and * for anything. A file:\n"
        "\n"
        "  {\"entries\": [\n"
        "    {\"table\": \"lif_mapping\", \"index\": 5, \"data\": {\"src_lport\": 17}},\n"
        "    {\"table\": \"vlan_mapping\", \"key\": {\"vlan_id\": 100}, \"data\": {\"l2seg\": "
        "4}},\n"
        "    {\"table\": \"checksum\", \"index\": 0, \"key\": {\"tcp_valid\": 1},\n"
        "     \"action\": \"update_no_checksum\"}\n"
        "  ]}\n"
        "\n"
        "Without an index, exact-match tables take the row of the key's hash.\n"
        "\n"
        "A file is read as it comes and holds up to " +
        std::to_string(file_limits::entries) + " entries; an entry takes up to\n" +
        std::to_string(file_limits::bytes_of_entry) + " bytes and " +
        std::to_string(file_limits::members_of_entry) + " members, with up to " +
        std::to_string(file_limits::levels) + " lists and objects in one another.");
    auto path = std::make_shared<std::string>();
    auto quiet = std::make_shared<bool>(false);
    command->add_option("FILE", *path, "The entries; - is standard input")->required();
    command->add_flag("-q,--quiet", *quiet, "The last line alone");
    command->callback([&given, path, quiet] {
        const opened_adapter adapter(given, host::access::create);
        write(adapter, *path, *quiet);
    });
}

}  // namespace halden::tool
