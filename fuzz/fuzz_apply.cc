// Files of entries put into tables: what was taken is there and nothing else, and what is dumped of
// it is a file that says the same.

#include <map>
#include <sstream>

#include "fuzz/input.h"
#include "host/adapter.h"
#include "host/state/table_state.h"
#include "tools/haldenctl/adapter_view.h"
#include "tools/haldenctl/entry_file.h"
#include "tools/haldenctl/failure.h"
#include "tools/haldenctl/table_calls.h"

using namespace halden;
using namespace halden::fuzz;
using pipeline::table;
using tool::records;
using tool::wide;

namespace {

std::vector<tool::file_entry> parsed(const std::string &text) {
    std::istringstream in(text);
    return tool::read_entries(in, "fuzzed");
}

// What makes an entry that entry: its table, and the row or the key under its mask.
std::vector<wide> identity(const records &entry, uint32_t index) {
    const table &t = *entry.of;
    std::vector<wide> out = {t.id};
    if (!pipeline::is_keyed(t.kind)) out.push_back(index);
    for (size_t n = 0; n < t.key.size(); ++n) {
        const wide mask = entry.mask_value(n) & tool::all_ones(t.key[n].bits);
        out.push_back(mask);
        out.push_back(entry.key_value(n) & mask);
    }
    return out;
}

// Its action and data; of a flow the one field that is not the engine's.
std::vector<wide> content(const records &entry) {
    std::vector<wide> out = {entry.action_id()};
    const size_t fields = entry.action()->fields.size();
    const bool flow = entry.of->kind == pipeline::kind::hash_hbm;
    for (size_t n = 0; n < (flow ? 1 : fields); ++n) out.push_back(entry.data_value(n));
    return out;
}

using model = std::map<std::vector<wide>, std::vector<wide>>;

// Makes or changes one entry; a table may be full, and then it must not have it.
void put(host::adapter &adapter, const tool::file_entry &given, model &expected) {
    const records &entry = given.entry;
    if (!tool::has_engine(*entry.of)) return;
    const uint32_t index = pipeline::is_keyed(entry.of->kind) ? 0 : given.index.value_or(0);
    if (index >= adapter.depth(entry.of->id)) return;
    const std::vector<wide> id = identity(entry, index);
    const bool there = tool::find_entry(entry, index) == TEV_TBL_RET_OK;
    require(there == expected.contains(id), "an entry is there when it was made");
    const tev_tbl_ret_t result =
        there ? tool::update_entry(entry, index) : tool::create_entry(entry, index);
    const tev_tbl_ret_t found = tool::find_entry(entry, index);
    if (result != TEV_TBL_RET_OK) {
        require(!there, "an entry that is there can be changed");
        require(found != TEV_TBL_RET_OK, "an entry that was refused is not there");
        return;
    }
    require(found == TEV_TBL_RET_OK, "an entry that was taken is there");
    expected[id] = content(entry);
    records read = entry;
    require(tool::read_entry(read, index) == TEV_TBL_RET_OK && content(read) == content(entry),
            "it reads back as it was written");
}

// Every row in use, as the library reads it; an overflow row under the table that owns it.
model stored(host::adapter &adapter, std::vector<std::pair<records, uint32_t>> &rows) {
    model out;
    for (const table *t : pipeline::tables) {
        const uint32_t depth = adapter.depth(t->id);
        for (uint32_t row = adapter.next_used(t->id, 0); row < depth;
             row = adapter.next_used(t->id, row + 1)) {
            auto entry = tool::read_back(adapter, *t, row);
            require(entry.has_value(), "a row in use can be read");
            rows.emplace_back(*entry, row);
            std::vector<wide> id = identity(*entry, row);
            if (t->kind == pipeline::kind::overflow_tcam) id[0] = t->owner;
            if (t->kind == pipeline::kind::hash_hbm) id[0] = pipeline::flow.id;
            require(out.emplace(id, content(*entry)).second, "an entry stands in one row");
        }
    }
    return out;
}

void check_dump(const std::vector<std::pair<records, uint32_t>> &rows) {
    tool::json list = tool::json::array();
    for (const auto &[entry, row] : rows) list.push_back(tool::to_json(entry, row));
    const std::vector<tool::file_entry> again = parsed(tool::json{{"entries", list}}.dump());
    require(again.size() == rows.size(), "as many entries come back as were dumped");
    for (size_t n = 0; n < rows.size(); ++n) {
        const auto &[entry, row] = rows[n];
        require(again[n].entry.of == entry.of && again[n].index == row, "a row comes back");
        require(identity(again[n].entry, row) == identity(entry, row), "its key comes back");
        require(again[n].entry.data == entry.data, "its action and data come back");
    }
}

}  // namespace

// Any exception but a failure ends the run.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    std::vector<tool::file_entry> entries;
    try {
        entries = parsed(std::string(input(data, size).rest()));
    } catch (const tool::failure &) {
        return 0;
    }
    const auto adapter = host::adapter::anonymous({.flow_rows = 64, .flow_ohash_rows = 64});
    host::table_state tables(*adapter);
    model expected;
    for (const tool::file_entry &given : entries) put(*adapter, given, expected);
    std::vector<std::pair<records, uint32_t>> rows;
    require(stored(*adapter, rows) == expected, "what was taken is there, and nothing else");
    check_dump(rows);
    return 0;
}
