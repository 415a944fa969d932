#include "tools/haldenctl/entry_text.h"

#include "tools/haldenctl/screen.h"

namespace halden::tool {

using namespace pipeline;

namespace {

bool ternary(const records &entry) { return has_mask(entry.of->kind); }

wide mask_of(const records &entry, size_t n) {
    return entry.mask_value(n) & all_ones(entry.of->key[n].bits);
}

std::string key_word(const records &entry, size_t n) {
    const key_field &f = entry.of->key[n];
    const wide mask = mask_of(entry, n);
    if (mask == all_ones(f.bits)) return shown(entry.key_value(n), f.name, f.bits);
    return masked_word_of(entry.key_value(n), mask, f.name, f.bits);
}

}  // namespace

std::string key_line(const records &entry) {
    std::string out;
    for (size_t n = 0; n < entry.of->key.size(); ++n) {
        if (ternary(entry) ? mask_of(entry, n) == 0 : entry.key_value(n) == 0) continue;
        if (!out.empty()) out += ", ";
        out += std::string(entry.of->key[n].name) + " " + key_word(entry, n);
    }
    if (out.empty()) return ternary(entry) ? "any packet" : "all fields 0";
    return out;
}

std::string data_line(const records &entry) {
    const action *a = entry.action();
    if (a == nullptr) return "no such action: " + std::to_string(entry.action_id());
    std::string out;
    for (size_t n = 0; n < a->fields.size(); ++n) {
        if (entry.data_value(n) == 0) continue;
        if (!out.empty()) out += ", ";
        out += std::string(a->fields[n].name) + " " +
               shown(entry.data_value(n), a->fields[n].name, a->fields[n].bits);
    }
    return out.empty() && !a->fields.empty() ? "all fields 0" : out;
}

std::string difference_line(const records &now, const records &wanted) {
    if (now.action_id() != wanted.action_id())
        return std::string(now.action() != nullptr ? now.action()->name : "?") + " -> " +
               std::string(wanted.action()->name);
    const bool flow = wanted.of->kind == kind::hash_hbm;
    std::string out;
    const auto fields = wanted.action()->fields;
    for (size_t n = 0; n < (flow ? 1 : fields.size()); ++n) {
        if (now.data_value(n) == wanted.data_value(n)) continue;
        if (!out.empty()) out += ", ";
        out += std::string(fields[n].name) + " " +
               shown(now.data_value(n), fields[n].name, fields[n].bits) + " -> " +
               shown(wanted.data_value(n), fields[n].name, fields[n].bits);
    }
    return out;
}

std::string entry_text(const records &entry, unsigned indent) {
    columns out({"FIELD", ">BITS", "VALUE"});
    for (size_t n = 0; n < entry.of->key.size(); ++n)
        out.row({"key   " + std::string(entry.of->key[n].name),
                 std::to_string(entry.of->key[n].bits), key_word(entry, n)},
                colour::key);
    if (const action *a = entry.action(); a != nullptr) {
        out.row({"action", "", std::string(a->name)});
        for (size_t n = 0; n < a->fields.size(); ++n)
            out.row({"data  " + std::string(a->fields[n].name), std::to_string(a->fields[n].bits),
                     shown(entry.data_value(n), a->fields[n].name, a->fields[n].bits)},
                    colour::data);
    } else {
        out.row({"action", "", "none with id " + std::to_string(entry.action_id())}, colour::bad);
    }
    return out.text(indent);
}

}  // namespace halden::tool
