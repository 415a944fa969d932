#pragma once

// An entry as fields and values on the screen.

#include <string>

#include "tools/haldenctl/record.h"

namespace halden::tool {

// "vlan_id 100 (0x64), l2seg 4": the fields that are not 0, ternary ones with their masks; "any
// packet" for a ternary key without a condition, "all fields 0" otherwise.
std::string key_line(const records &entry);
std::string data_line(const records &entry);

// Columns of every field, key first, each with its value.
std::string entry_text(const records &entry, unsigned indent);

}  // namespace halden::tool
