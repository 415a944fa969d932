#include "tools/haldenctl/entry_file.h"

#include <algorithm>
#include <fstream>
#include <iostream>
#include <set>

#include "tools/haldenctl/adapter_view.h"
#include "tools/haldenctl/naming.h"

namespace halden::tool {

namespace {

using namespace pipeline;

// Entries need four levels; what prints a value goes down all of them, on the stack.
constexpr int most_levels = 64;

// nlohmann-json keeps the last of two members of one name without a word, and takes any depth.
class member_names {
  public:
    void see(int depth, json::parse_event_t event, const json &parsed) {
        if (depth > most_levels)
            throw failure("lists and objects stand in one another more than " +
                          std::to_string(most_levels) + " deep; allowed: the levels of entries");
        if (event == json::parse_event_t::array_start && depth == 0) entry_depth_ = 1;
        if (event == json::parse_event_t::object_start) {
            open_.emplace_back();
            if (depth == entry_depth_) ++entries_;
        }
        if (event == json::parse_event_t::object_end) open_.pop_back();
        if (event == json::parse_event_t::key && !open_.back().insert(parsed).second) {
            const failure twice("the member '" + parsed.get<std::string>() + "' is given twice");
            throw depth > entry_depth_ ? twice.inside("entry " + std::to_string(entries_)) : twice;
        }
    }

  private:
    int entry_depth_ = 2;  // in the list of an object; or of a bare list
    size_t entries_ = 0;
    std::vector<std::set<std::string>> open_;
};

// "line 3, column 7: syntax error ..." without the library's own prefix.
std::string reason_of(const std::exception &error) {
    std::string text = error.what();
    if (const size_t at = text.find("parse error at "); at != text.npos) text.erase(0, at + 15);
    if (const size_t at = text.find(": syntax error"); at != text.npos)
        if (const size_t dash = text.find(" - ", at); dash != text.npos)
            text = text.substr(0, at) + ": " + text.substr(dash + 3);
    return text;
}

std::string kind_of(const json &value) { return quotable(value.dump()); }

const json &object(const json &value, const char *what) {
    if (!value.is_object())
        throw failure(std::string(what) + ": " + kind_of(value) +
                      " was given; allowed: an object of fields and values");
    return value;
}

std::string text_of(const json &value, const char *what) {
    if (value.is_string()) return value.get<std::string>();
    if (value.is_number_unsigned()) return value.dump();
    throw failure(std::string(what) + ": " + kind_of(value) +
                  " was given; allowed: a name or an id");
}

void read_key(records &entry, const json &fields) {
    const table &t = *entry.of;
    if (!is_keyed(t.kind))
        throw failure("key: the table has no key; its entries are placed by \"index\"");
    for (const auto &[name, value] : object(fields, "key").items()) {
        if (name == "comment") continue;
        const size_t n = field_named(t.key, name, "key field");
        try {
            const written_value v = json_value(value, t.key[n].bits, has_mask(t.kind));
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

void read_data(records &entry, const json &fields) {
    const auto known = entry.action()->fields;
    for (const auto &[name, value] : object(fields, "data").items()) {
        if (name == "comment") continue;
        const size_t n = data_field(entry, name);
        try {
            entry.set_data(n, json_value(value, known[n].bits, false).value);
        } catch (const failure &error) {
            throw error.inside("data." + name);
        }
    }
}

uint32_t index_of_fields(const table &t, const json &fields) {
    uint32_t index = 0;
    std::vector<wide> values(t.index.size());
    for (const auto &[name, value] : fields.items()) {
        const size_t n = field_named(t.index, name, "index field");
        try {
            values[n] = json_value(value, t.index[n].bits, false).value;
        } catch (const failure &error) {
            throw error.inside("index." + name);
        }
    }
    for (size_t n = 0; n < values.size(); ++n)
        index = index << t.index[n].bits | static_cast<uint32_t>(values[n]);
    return index;
}

uint32_t read_index(const table &t, const json &value) {
    if (value.is_object()) return index_of_fields(t, value);
    try {
        return parse_row(t, value.is_string() ? value.get<std::string>() : value.dump());
    } catch (const failure &error) {
        throw error.inside("index");
    }
}

void read_entry(file_entry &out, const json &given) {
    const table &t = *out.entry.of;
    const json *key = nullptr, *data = nullptr, *action = nullptr;
    for (const auto &[name, value] : given.items()) {
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

json entries_of(json &whole) {
    if (whole.is_array()) return std::move(whole);
    if (!whole.is_object())
        throw failure(kind_of(whole) + " was given; allowed: {\"entries\": [ ... ]}");
    for (const auto &[name, value] : whole.items())
        if (name != "entries" && name != "comment")
            throw failure(unknown("member", name, {"entries", "comment"}));
    if (!whole.contains("entries")) throw failure("no \"entries\" are given");
    if (!whole["entries"].is_array())
        throw failure("entries: " + kind_of(whole["entries"]) + " was given; allowed: a list");
    return std::move(whole["entries"]);
}

// The whole of a file. nlohmann-json would take a NUL for its end.
std::string content_of(std::istream &in) {
    std::string out;
    char piece[1 << 16];
    while (in.read(piece, sizeof piece) || in.gcount() != 0)
        out.append(piece, static_cast<size_t>(in.gcount()));
    if (in.bad()) throw failure("cannot be read");
    if (const auto nul = std::find(out.begin(), out.end(), '\0'); nul != out.end())
        throw failure("line " + std::to_string(1 + std::count(out.begin(), nul, '\n')) +
                      ": a NUL byte stands there; allowed: text");
    return out;
}

}  // namespace

written_value json_value(const json &value, unsigned bits, bool may_be_masked) {
    if (value.is_string())
        return may_be_masked ? parse_masked(value.get<std::string>(), bits)
                             : written_value{parse_value(value.get<std::string>(), bits),
                                             all_ones(bits), false};
    if (value.is_boolean() || value.is_number_unsigned())
        return {parse_value(value.dump(), bits), all_ones(bits), false};
    throw failure(kind_of(value) + " was given; allowed: " + range_of(bits));
}

std::vector<file_entry> read_entries(std::istream &in, const std::string &name) {
    std::vector<file_entry> out;
    std::string place = name;
    try {
        member_names names;
        json whole =
            json::parse(content_of(in), [&](int depth, json::parse_event_t event, json &parsed) {
                names.see(depth, event, parsed);
                return true;
            });
        const json entries = entries_of(whole);
        size_t number = 0;
        for (const json &given : entries) {
            place = name + ": entry " + std::to_string(++number);
            if (!given.is_object())
                throw failure(kind_of(given) + " was given; allowed: an object with a \"table\"");
            if (!given.contains("table")) throw failure("no \"table\" is given");
            const table &t = table_named(text_of(given["table"], "table"));
            place += " (" + std::string(t.name) + ")";
            out.emplace_back(t);
            out.back().place = place;
            read_entry(out.back(), given);
        }
    } catch (const failure &error) {
        throw error.inside(place);
    } catch (const json::exception &error) {
        throw failure(place + ": " + reason_of(error));
    }
    return out;
}

std::vector<file_entry> read_entry_file(const std::string &path) {
    if (path == "-") return read_entries(std::cin, "standard input");
    std::ifstream in(path);
    if (!in) throw failure(path + ": cannot be read");
    return read_entries(in, path);
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
