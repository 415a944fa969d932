#include "tools/haldenctl/naming.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "p4gen/halden/pipeline/names.h"

namespace halden::tool {

namespace {

// Letters that must be changed, added or taken away to get from one name to the other.
size_t distance(std::string_view a, std::string_view b) {
    std::vector<size_t> row(b.size() + 1);
    for (size_t j = 0; j <= b.size(); ++j) row[j] = j;
    for (size_t i = 1; i <= a.size(); ++i) {
        size_t diagonal = row[0];
        row[0] = i;
        for (size_t j = 1; j <= b.size(); ++j) {
            const size_t changed = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({changed, row[j] + 1, row[j - 1] + 1});
        }
    }
    return row[b.size()];
}

std::string lower(std::string_view text) {
    std::string out(text);
    for (char &c : out)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return out;
}

std::optional<uint32_t> id_of(std::string_view text) {
    uint32_t id = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), id);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return id;
}

}  // namespace

std::string unknown(std::string_view what, std::string_view given,
                    const std::vector<std::string_view> &names) {
    constexpr size_t most_listed = 12;
    const std::string cut = quotable(given);
    std::string out = "no " + std::string(what) + " '" + cut + "'";
    const std::string small = lower(cut);
    size_t best = 1 + std::max<size_t>(2, small.size() / 3);
    std::string_view nearest;
    for (std::string_view name : names) {
        const std::string other = lower(name);
        size_t far = distance(small, other);
        if (far > 1 && small.size() >= 3 && other.find(small) != other.npos) far = 1;
        if (far < best) {
            best = far;
            nearest = name;
        }
    }
    if (!nearest.empty()) out += "; did you mean '" + std::string(nearest) + "'?";
    if (names.empty()) return out + "; there are none";
    if (names.size() > most_listed) return out;
    out += nearest.empty() ? "; allowed: " : " allowed: ";
    for (size_t i = 0; i < names.size(); ++i) {
        if (i != 0) out += ", ";
        out += names[i];
    }
    return out;
}

const pipeline::table &table_named(std::string_view name) {
    const std::string small = lower(name);
    std::string_view bare = small;
    const std::string prefix = lower(pipeline::table_id_prefix);
    if (bare.starts_with(prefix)) bare.remove_prefix(prefix.size());
    std::vector<std::string_view> names;
    for (const pipeline::table *t : pipeline::tables) {
        if (t->name == bare) return *t;
        names.push_back(t->name);
    }
    if (const auto id = id_of(name)) {
        if (const pipeline::table *t = pipeline::find_table(*id)) return *t;
        throw failure("no table " + quotable(name) + "; allowed: 1 to " +
                      std::to_string(pipeline::table_count) + ", or a name of `haldenctl tables`");
    }
    const std::string text = unknown("table", name, names);
    throw failure(text + (text.ends_with('?') ? " " : "; ") + "`haldenctl tables` lists them");
}

size_t action_named(const pipeline::table &t, std::string_view name) {
    std::vector<std::string_view> names;
    for (size_t i = 0; i < t.actions.size(); ++i) {
        if (t.actions[i].name == name) return i;
        names.push_back(t.actions[i].name);
    }
    if (const auto id = id_of(name)) {
        if (*id < t.actions.size()) return *id;
        throw failure("no action " + quotable(name) + "; allowed: 0 to " +
                      std::to_string(t.actions.size() - 1));
    }
    throw failure(unknown("action", name, names));
}

}  // namespace halden::tool
