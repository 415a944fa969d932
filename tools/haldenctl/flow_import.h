#pragma once

// The flows of a capture into the tables.

#include <string>

#include "tools/haldenctl/table_calls.h"

namespace halden::tool {

// Says what the capture held and what became of it. Throws failure when the capture cannot be read,
// and at the end when flows were refused.
void import_flows(opened_tables &tables, const std::string &path);

}  // namespace halden::tool
