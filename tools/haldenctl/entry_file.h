#pragma once

// Entries as JSON, for `write` and from `dump`:
//
//     {"entries": [
//         {"table": "lif_mapping", "index": 5, "data": {"src_lport": 17, "uplink": true}},
//         {"table": "registered_mac", "key": {"hdr_ethernet_1_dstAddr": "02:00:5e:10:00:01"},
//          "data": {"dst_lport": 17}},
//         {"table": "checksum", "index": 0, "key": {"tcp_valid": 1}, "action":
//         "update_no_checksum"}
//     ]}
//
//   * "index" is the row: a number, or the fields of the table's index record. Exact-match tables
//     take the row of the key's hash when it is not given; tables of one row take row 0;
//   * a key field that is not given is 0 in exact-match tables and matches anything in ternary
//   ones;
//   * "action" may be left out where the table has one; data fields that are not given are 0;
//   * "comment" is free, everywhere.
//
// A file is read and checked to its end before anything is done with it; it comes as a stream, and
// only its entries are kept (given_entry.h has the limits). Errors say which entry and which field,
// or line and column, what was given and what is allowed.

#include <functional>
#include <istream>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "tools/haldenctl/record.h"

namespace halden::tool {

using json = nlohmann::ordered_json;

struct file_entry {
    explicit file_entry(const pipeline::table &t) : entry(t) {}
    records entry;
    std::optional<uint32_t> index;  // as written
    std::string place;              // "examples/a.json: entry 3 (lif_mapping)"
};

// Throw failure; `name` stands for the file in errors.
std::vector<file_entry> read_entries(std::istream &in, const std::string &name);
// "-" is standard input.
std::vector<file_entry> read_entry_file(const std::string &path);

// The entry as it stands in a file; what a reader would assume anyway is left out.
json to_json(const records &entry, uint32_t index);

}  // namespace halden::tool
