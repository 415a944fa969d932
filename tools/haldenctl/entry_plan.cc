#include "tools/haldenctl/entry_plan.h"

#include <algorithm>
#include <bit>
#include <map>
#include <unordered_map>

#include "host/memory/memory_map.h"
#include "tools/haldenctl/adapter_view.h"
#include "tools/haldenctl/entry_text.h"
#include "tools/haldenctl/failure.h"
#include "tools/haldenctl/table_calls.h"

namespace halden::tool {

using namespace pipeline;

namespace {

bool compares_whole_key(const records &entry) {
    for (size_t n = 0; n < entry.of->key.size(); ++n) {
        const wide ones = all_ones(entry.of->key[n].bits);
        if ((entry.mask_value(n) & ones) != ones) return false;
    }
    return true;
}

// The table whose engine places the entry; null for one that is written as a row.
const table *taken_by(const records &entry) {
    const table &t = *entry.of;
    if (has_engine(t)) return &t;
    if (t.id == host::flow_ohash_table) return find_table(host::flow_table);
    if (t.kind == kind::overflow_tcam && compares_whole_key(entry)) return find_table(t.owner);
    return nullptr;
}

// Overflow and owner have the same fields.
records moved_to(const table &owner, const records &from) {
    records out(owner);
    out.key = from.key;
    out.data = from.data;
    return out;
}

planned_entry planned(host::adapter &adapter, file_entry &given, size_t number) {
    const table &t = *given.entry.of;
    const table *taker = taken_by(given.entry);
    planned_entry out{&given, number, 0, taker == nullptr};
    if (!out.as_row && is_keyed(t.kind)) {
        if (taker != &t) given.entry = moved_to(*taker, given.entry);
        return out;
    }
    const uint32_t rows = adapter.depth(t.id);
    if (!given.index && rows != 1)
        throw failure("no \"index\" is given" +
                      std::string(is_keyed(t.kind) ? ", and its mask leaves out bits of the key, "
                                                     "so that it is written as a row"
                                                   : "") +
                      "; allowed: 0 to " + std::to_string(rows - 1));
    out.row = given.index.value_or(0);
    check_row(adapter, t, out.row);
    return out;
}

unsigned compared_bits(const planned_entry &p) {
    unsigned bits = 0;
    for (const uint8_t byte : p.given->entry.mask)
        bits += static_cast<unsigned>(std::popcount(byte));
    return bits;
}

// Ternary entries in the engine's own order, the most specific first, among the places that those
// of their table have. So none has to move for a later one, and those of equal specificity, of
// which the first is what hardware finds, keep the order of the file.
void put_specific_first(std::vector<planned_entry> &work) {
    std::map<const table *, std::vector<size_t>> places;
    for (size_t at = 0; at < work.size(); ++at)
        if (!work[at].as_row && has_mask(work[at].given->entry.of->kind))
            places[work[at].given->entry.of].push_back(at);
    for (const auto &[t, own] : places) {
        std::vector<planned_entry> entries;
        for (const size_t at : own) entries.push_back(work[at]);
        std::stable_sort(entries.begin(), entries.end(), [](const auto &a, const auto &b) {
            return compared_bits(a) > compared_bits(b);
        });
        for (size_t n = 0; n < own.size(); ++n) work[own[n]] = entries[n];
    }
}

}  // namespace

std::string identity_of(records &entry) {
    const key_images images = images_of(entry);
    std::string out(images.key.begin(), images.key.end());
    return out.append(images.mask.begin(), images.mask.end());
}

std::string name_of(const planned_entry &entry) {
    const table &t = *entry.given->entry.of;
    return std::string(t.name) + "  " +
           (is_keyed(t.kind) ? key_line(entry.given->entry) : "index " + std::to_string(entry.row));
}

std::string ranges_of(const std::vector<size_t> &numbers) {
    constexpr size_t most = 8;
    std::string out;
    size_t ranges = 0;
    for (size_t at = 0; at < numbers.size();) {
        if (ranges++ == most) return out + " and " + std::to_string(numbers.size() - at) + " more";
        size_t last = at;
        while (last + 1 < numbers.size() && numbers[last + 1] == numbers[last] + 1) ++last;
        if (!out.empty()) out += ", ";
        out += std::to_string(numbers[at]);
        if (last != at) out += (last == at + 1 ? ", " : " to ") + std::to_string(numbers[last]);
        at = last + 1;
    }
    return out;
}

std::vector<planned_entry> plan_entries(host::adapter &adapter, std::vector<file_entry> &entries) {
    std::vector<planned_entry> out;
    out.reserve(entries.size());
    std::unordered_map<std::string, const file_entry *> seen;
    for (file_entry &given : entries) {
        try {
            const planned_entry p = planned(adapter, given, out.size() + 1);
            const table &t = *given.entry.of;
            const std::string what =
                is_keyed(t.kind) ? identity_of(given.entry) : std::to_string(p.row);
            const auto [other, fresh] = seen.insert({std::to_string(t.id) + ":" + what, &given});
            if (!fresh && other->second->entry.data != given.entry.data)
                throw failure("its " + std::string(is_keyed(t.kind) ? "key" : "index") +
                              " is also that of " +
                              other->second->place.substr(other->second->place.rfind("entry ")));
            out.push_back(p);
        } catch (const failure &error) {
            throw error.inside(given.place);
        }
    }
    std::stable_partition(out.begin(), out.end(), [](const planned_entry &p) { return p.as_row; });
    put_specific_first(out);
    return out;
}

}  // namespace halden::tool
