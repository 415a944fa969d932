#include "tools/haldenctl/arguments.h"

#include "tools/haldenctl/adapter_view.h"
#include "tools/haldenctl/failure.h"
#include "tools/haldenctl/naming.h"

namespace halden::tool {

using namespace pipeline;

namespace {

struct assignment {
    std::string name, value;
};

assignment split(const table &t, const std::string &argument) {
    const size_t equals = argument.find('=');
    if (equals != argument.npos && equals != 0)
        return {argument.substr(0, equals), argument.substr(equals + 1)};
    const std::string_view some = !t.key.empty()     ? t.key[0].name
                                  : !t.index.empty() ? t.index[0].name
                                                     : std::string_view("action");
    throw failure("'" + argument + "' is no field; allowed: FIELD=VALUE, as " + std::string(some) +
                  "=1");
}

// Which of the fields is meant: by its whole name, or by its last part when no other has it.
template <class Field>
std::optional<size_t> meant(std::span<const Field> fields, std::string_view given) {
    std::optional<size_t> found;
    for (size_t n = 0; n < fields.size(); ++n) {
        const std::string_view name = fields[n].name;
        if (name == given) return n;
        if (name.size() <= given.size() + 1 || !name.ends_with(given) ||
            name[name.size() - given.size() - 1] != '_')
            continue;
        if (found) return std::nullopt;
        found = n;
    }
    return found;
}

template <class Field>
size_t field_of(std::span<const Field> fields, std::string_view given, std::string_view what) {
    const auto n = meant(fields, given);
    return n ? *n : field_named(fields, given, what);
}

// Refuses a second value for one field.
class once {
  public:
    void operator()(const std::string &name) {
        for (const std::string &other : seen_)
            if (other == name) throw failure(name + " is given twice");
        seen_.push_back(name);
    }

  private:
    std::vector<std::string> seen_;
};

void set_key(records &entry, size_t n, const std::string &value) {
    const key_field &f = entry.of->key[n];
    try {
        const written_value v = has_mask(entry.of->kind)
                                    ? parse_masked(value, f.bits)
                                    : written_value{parse_value(value, f.bits), 0, false};
        entry.set_key(n, v.value, v.mask);
    } catch (const failure &error) {
        throw error.inside(std::string(f.name));
    }
}

void set_data(records &entry, size_t n, const std::string &value) {
    const field &f = entry.action()->fields[n];
    try {
        entry.set_data(n, parse_value(value, f.bits));
    } catch (const failure &error) {
        throw error.inside(std::string(f.name));
    }
}

// The values of an index record on the way to a row.
class index_values {
  public:
    explicit index_values(const table &t) : of_(&t), values_(t.index.size()) {}

    bool takes(const std::string &name) const {
        return !of_->index.empty() && (name == "index" || meant(of_->index, name).has_value());
    }
    void set(const std::string &name, const std::string &value) {
        try {
            given_ = true;
            if (name == "index") {
                row_ = parse_row(*of_, value);
                return;
            }
            const size_t n = field_of(of_->index, name, "index field");
            values_[n] = parse_value(value, of_->index[n].bits);
        } catch (const failure &error) {
            throw error.inside(name);
        }
    }
    std::optional<uint32_t> row() const {
        if (!given_) return std::nullopt;
        if (row_) return row_;
        uint32_t row = 0;
        for (size_t n = 0; n < values_.size(); ++n)
            row = row << of_->index[n].bits | static_cast<uint32_t>(values_[n]);
        return row;
    }

  private:
    const table *of_;
    std::vector<wide> values_;
    std::optional<uint32_t> row_;
    bool given_ = false;
};

// The field that a name stands for; without one of the key or the data, perhaps one of the index.
struct named_field {
    std::optional<size_t> key, data;
    std::string index;
};

named_field find_field(const table &t, std::span<const field> data, const std::string &name) {
    if (name.starts_with("key.")) return {meant(t.key, name.substr(4)), {}, name.substr(4)};
    if (name.starts_with("data.")) return {{}, meant(data, name.substr(5)), {}};
    named_field out = {meant(t.key, name), meant(data, name), name};
    if (out.key && out.data)
        throw failure(name + " is a field of the key and of the data; allowed: key." + name +
                      " or data." + name);
    return out;
}

failure no_field(const table &t, std::span<const field> data, const std::string &name) {
    std::vector<std::string_view> names;
    for (const key_field &f : t.key) names.push_back(f.name);
    for (const field &f : t.index) names.push_back(f.name);
    for (const field &f : data) names.push_back(f.name);
    return failure(unknown("field", name, names));
}

void set_fields(records &entry, const std::vector<std::string> &given) {
    once see;
    for (const std::string &argument : given) {
        auto [name, value] = split(*entry.of, argument);
        if (name.starts_with("key.")) name.erase(0, 4);
        const size_t n = field_of(entry.of->key, name, "key field");
        see(std::string(entry.of->key[n].name));
        set_key(entry, n, value);
    }
}

uint32_t index_of(const table &t, const std::vector<std::string> &given) {
    index_values values(t);
    once see;
    for (const std::string &argument : given) {
        const auto [name, value] = split(t, argument);
        see(name);
        values.set(name, value);
    }
    return values.row().value_or(0);
}

given_entry entry_of(const table &t, const std::vector<std::string> &given) {
    given_entry out(t);
    std::vector<assignment> fields;
    bool action_given = false;
    once see;
    for (const std::string &argument : given) {
        assignment a = split(t, argument);
        if (a.name == "action") {
            see(a.name);
            out.entry.data[0] = static_cast<uint8_t>(action_named(t, a.value));
            action_given = true;
        } else {
            fields.push_back(std::move(a));
        }
    }
    if (!action_given && has_programs(t))
        throw failure("no action is given, and the table has " + std::to_string(t.actions.size()) +
                      "; allowed: action=NAME, as `haldenctl describe " + std::string(t.name) +
                      "` lists them");

    const std::span<const field> data = out.entry.action()->fields;
    index_values index(t);
    for (const auto &[name, value] : fields) {
        const named_field f = find_field(t, data, name);
        if (f.key) {
            see("key." + std::string(t.key[*f.key].name));
            set_key(out.entry, *f.key, value);
        } else if (f.data) {
            see("data." + std::string(data[*f.data].name));
            set_data(out.entry, *f.data, value);
        } else if (index.takes(f.index)) {
            see("index." + f.index);
            index.set(f.index, value);
        } else {
            throw no_field(t, data, name);
        }
    }
    out.index = index.row();
    return out;
}

}  // namespace

const table &table_argument(const std::string &given) {
    return typed([&]() -> const table & { return table_named(given); });
}

void set_key_fields(records &entry, const std::vector<std::string> &given) {
    typed([&] { set_fields(entry, given); });
}

uint32_t index_from_arguments(const table &t, const std::vector<std::string> &given) {
    return typed([&] { return index_of(t, given); });
}

given_entry entry_from_arguments(const table &t, const std::vector<std::string> &given) {
    return typed([&] { return entry_of(t, given); });
}

}  // namespace halden::tool
