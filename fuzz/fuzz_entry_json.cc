// Files of entries: whatever the bytes, they are entries or a failure that says why; and entries
// survive being written out and read again.

#include <sstream>

#include "fuzz/input.h"
#include "tools/haldenctl/entry_file.h"
#include "tools/haldenctl/failure.h"

using namespace halden;
using namespace halden::fuzz;

namespace {

std::vector<tool::file_entry> parsed(std::string_view text) {
    std::istringstream in{std::string(text)};
    return tool::read_entries(in, "fuzzed");
}

bool same(const tool::file_entry &left, const tool::file_entry &right) {
    return left.entry.of == right.entry.of && left.entry.key == right.entry.key &&
           left.entry.mask == right.entry.mask && left.entry.data == right.entry.data;
}

std::string dumped(const std::vector<tool::file_entry> &entries) {
    tool::json list = tool::json::array();
    for (const tool::file_entry &e : entries)
        list.push_back(tool::to_json(e.entry, e.index.value_or(0)));
    return tool::json{{"entries", list}}.dump();
}

}  // namespace

// Any exception but a failure ends the run.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    std::vector<tool::file_entry> entries;
    try {
        entries = parsed(input(data, size).rest());
    } catch (const tool::failure &error) {
        require(std::string_view(error.what()).starts_with("fuzzed: "), "a failure names the file");
        return 0;
    }
    const std::string text = dumped(entries);
    const std::vector<tool::file_entry> again = parsed(text);
    require(again.size() == entries.size(), "as many entries come back as were dumped");
    for (size_t i = 0; i < entries.size(); ++i) {
        require(same(entries[i], again[i]), "an entry comes back as it was dumped");
        require(again[i].index == entries[i].index.value_or(0), "its row comes back");
    }
    require(dumped(again) == text, "the same entries are dumped the same");
    return 0;
}
