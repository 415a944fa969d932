#include "tools/haldenctl/entry_file.h"

#include "tools/haldenctl/adapter_view.h"
#include "tools/haldenctl/given_entry.h"
#include "tools/haldenctl/input_file.h"
#include "tools/haldenctl/interrupt.h"
#include "tools/haldenctl/naming.h"

namespace halden::tool {

namespace {

using namespace pipeline;
using kind_given = given_value::kind;

const std::vector<given_member> &fields_of(const given_value &value, const char *what) {
    if (!value.is(kind_given::object))
        throw failure(std::string(what) + ": " + value.shown() +
                      " was given; allowed: an object of fields and values");
    return value.members;
}

const std::string &text_of(const given_value &value, const char *what) {
    if (value.is(kind_given::text) || value.is_whole_number()) return value.text;
    throw failure(std::string(what) + ": " + value.shown() +
                  " was given; allowed: a name or an id");
}

// One field's value: a number, true or false, or text in parse_value's notations.
written_value value_of(const given_value &given, unsigned bits, bool may_be_masked) {
    if (given.is(kind_given::text) && may_be_masked) return parse_masked(given.text, bits);
    if (given.is(kind_given::text) || given.is(kind_given::boolean) || given.is_whole_number())
        return {parse_value(given.text, bits), all_ones(bits), false};
    throw failure(given.shown() + " was given; allowed: " + range_of(bits));
}

void read_key(records &entry, const given_value &fields) {
    const table &t = *entry.of;
    if (!is_keyed(t.kind))
        throw failure("key: the table has no key; its entries are placed by \"index\"");
    for (const auto &[name, value] : fields_of(fields, "key")) {
        if (name == "comment") continue;
        const size_t n = field_named(t.key, name, "key field");
        try {
            const written_value v = value_of(value, t.key[n].bits, has_mask(t.kind));
            entry.set_key(n, v.value, v.mask);
        } catch (const failure &error) {
            throw error.inside("key." + name);
        }
    }
}

size_t data_field(const records &entry, const std::string &name) {
    try {
        return field_named(entry.action()->fields, name, "data field");
    } catch (const failure &error) {
        if (!has_programs(*entry.of)) throw;
        throw error.inside("action " + std::string(entry.action()->name));
    }
}

void read_data(records &entry, const given_value &fields) {
    const auto known = entry.action()->fields;
    for (const auto &[name, value] : fields_of(fields, "data")) {
        if (name == "comment") continue;
        const size_t n = data_field(entry, name);
        try {
            entry.set_data(n, value_of(value, known[n].bits, false).value);
        } catch (const failure &error) {
            throw error.inside("data." + name);
        }
    }
}

uint32_t index_of_fields(const table &t, const given_value &fields) {
    uint32_t index = 0;
    std::vector<wide> values(t.index.size());
    for (const auto &[name, value] : fields_of(fields, "index")) {
        if (name == "comment") continue;
        const size_t n = field_named(t.index, name, "index field");
        try {
            values[n] = value_of(value, t.index[n].bits, false).value;
        } catch (const failure &error) {
            throw error.inside("index." + name);
        }
    }
    for (size_t n = 0; n < values.size(); ++n)
        index = index << t.index[n].bits | static_cast<uint32_t>(values[n]);
    return index;
}

uint32_t read_index(const table &t, const given_value &value) {
    if (value.is(kind_given::object)) return index_of_fields(t, value);
    if (value.is(kind_given::list))
        throw failure("index: a list was given; allowed: a row, or an object of index fields");
    try {
        return parse_row(t, value.text);
    } catch (const failure &error) {
        throw error.inside("index");
    }
}

void read_entry(file_entry &out, const given_value &given) {
    const table &t = *out.entry.of;
    const given_value *key = nullptr, *data = nullptr, *action = nullptr;
    for (const auto &[name, value] : given.members) {
        if (name == "key")
            key = &value;
        else if (name == "data")
            data = &value;
        else if (name == "action")
            action = &value;
        else if (name == "index")
            out.index = read_index(t, value);
        else if (name != "table" && name != "comment")
            throw failure(
                unknown("member", name, {"table", "index", "key", "action", "data", "comment"}));
    }
    if (action != nullptr)
        out.entry.data[0] = static_cast<uint8_t>(action_named(t, text_of(*action, "action")));
    else if (has_programs(t))
        throw failure("action: none was given, and the table has " +
                      std::to_string(t.actions.size()) + "; `haldenctl describe " +
                      std::string(t.name) + "` lists them");
    if (key != nullptr) read_key(out.entry, *key);
    if (data != nullptr) read_data(out.entry, *data);
    if (key == nullptr && is_hash(t.kind)) throw failure("key: none was given");
}

const table &table_of(const given_value &given) {
    if (!given.is(kind_given::object))
        throw failure(given.shown() + " was given; allowed: an object with a \"table\"");
    for (const auto &[name, value] : given.members)
        if (name == "table") return table_named(text_of(value, "table"));
    throw failure("no \"table\" is given");
}

std::vector<file_entry> entries_of(byte_source source, const std::string &name) {
    std::vector<file_entry> out;
    try {
        text_input text(std::move(source));
        read_given_entries(text, [&](size_t number, const given_value &given) {
            std::string place = "entry " + std::to_string(number);
            try {
                const table &t = table_of(given);
                place += " (" + std::string(t.name) + ")";
                out.emplace_back(t);
                out.back().place = name + ": " + place;
                read_entry(out.back(), given);
            } catch (const failure &error) {
                throw error.inside(place);
            }
        });
    } catch (const failure &error) {
        throw error.inside(name);
    }
    return out;
}

}  // namespace

std::vector<file_entry> read_entries(std::istream &in, const std::string &name) {
    return entries_of(
        [&in](char *to, size_t most) {
            in.read(to, static_cast<std::streamsize>(most));
            if (in.bad()) throw failure("cannot be read");
            return static_cast<size_t>(in.gcount());
        },
        name);
}

std::vector<file_entry> read_entry_file(const std::string &path) {
    const bool standard_input = path == "-";
    try {
        const input_file file = standard_input ? input_file::standard_input() : input_file(path);
        return entries_of([&file](char *to, size_t most) { return file.read(to, most); },
                          file.name());
    } catch (const stopped &) {
        stop((standard_input ? "standard input" : path) + ": nothing of it was done");
    }
}

json to_json(const records &entry, uint32_t index) {
    const table &t = *entry.of;
    const auto number_or_word = [](wide value, std::string_view name, unsigned bits) -> json {
        if (notation_of(name, bits) == notation::number && bits <= 64)
            return static_cast<uint64_t>(value);
        return word_of(value, name, bits);
    };
    json out;
    out["table"] = t.name;
    out["index"] = index;
    if (is_keyed(t.kind)) {
        json &key = out["key"] = json::object();
        for (size_t n = 0; n < t.key.size(); ++n) {
            const std::string_view name = t.key[n].name;
            const unsigned bits = t.key[n].bits;
            const wide value = entry.key_value(n), mask = entry.mask_value(n) & all_ones(bits);
            if (has_mask(t.kind) ? mask == 0 : value == 0) continue;
            key[std::string(name)] = mask == all_ones(bits)
                                         ? number_or_word(value, name, bits)
                                         : json(masked_word_of(value, mask, name, bits));
        }
    }
    const action *a = entry.action();
    if (a == nullptr) return out;
    if (has_programs(t)) out["action"] = a->name;
    if (a->fields.empty()) return out;
    json &data = out["data"] = json::object();
    for (size_t n = 0; n < a->fields.size(); ++n) {
        const wide value = entry.data_value(n);
        if (value != 0)
            data[std::string(a->fields[n].name)] =
                number_or_word(value, a->fields[n].name, a->fields[n].bits);
    }
    return out;
}

}  // namespace halden::tool
