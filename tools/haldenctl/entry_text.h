#pragma once

// An entry as fields and values on the screen.

#include <string>

#include "tools/haldenctl/record.h"

namespace halden::tool {

// "vlan_id 100 (0x64), l2seg 4": the fields that are not 0, ternary ones with their masks; "any
// packet" for a ternary key without a condition, "all fields 0" otherwise.
std::string key_line(const records &entry);
std::string data_line(const records &entry);
// "dst_tag 2577 (0xa11) -> 0": what writing `wanted` changes in an entry; empty for nothing. Of a
// flow, software has flow_idx alone: its hint chain and valid bit are the engine's.
std::string difference_line(const records &now, const records &wanted);

// Columns of every field, key first, each with its value.
std::string entry_text(const records &entry, unsigned indent);

}  // namespace halden::tool
