#pragma once

// Tables, and fields as FIELD=VALUE, from the command line. The last part of a name is enough where
// it is only one field's ("sip" for metadata_flow_key_sip); "key." and "data." in front say which
// field is meant where the key and the data have one of that name. All throw
// failure, of usage.

#include <optional>
#include <string>
#include <vector>

#include "tools/haldenctl/record.h"

namespace halden::tool {

// A table by its name or id.
const pipeline::table &table_argument(const std::string &given);

// Key fields into `entry`. A field that is not given keeps its value.
void set_key_fields(records &entry, const std::vector<std::string> &given);

// The row from the fields of a table's index record; "index=N" is the row itself.
uint32_t index_from_arguments(const pipeline::table &t, const std::vector<std::string> &given);

// A whole entry: key or index, "action=NAME", data.
struct given_entry {
    explicit given_entry(const pipeline::table &t) : entry(t) {}
    records entry;
    std::optional<uint32_t> index;
};
given_entry entry_from_arguments(const pipeline::table &t, const std::vector<std::string> &given);

}  // namespace halden::tool
