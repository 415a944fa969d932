#pragma once

// An entry as fields and values on the screen, and fields from the command line.

#include <string>
#include <vector>

#include "tools/haldenctl/record.h"

namespace halden::tool {

// "vlan_id 100 (0x64), l2seg 4": the fields that are not 0, ternary ones with their masks; "any
// packet" for a ternary key without a condition, "all fields 0" otherwise.
std::string key_line(const records &entry);
std::string data_line(const records &entry);

// Columns of every field, key first, each with its value.
std::string entry_text(const records &entry, unsigned indent);

// "field=value" arguments of key fields, into `entry`; the last part of a name is enough where only
// one field has it ("sip" for metadata_flow_key_sip). Throws failure. A field that is not given
// keeps its value.
void set_key_fields(records &entry, const std::vector<std::string> &given);

}  // namespace halden::tool
