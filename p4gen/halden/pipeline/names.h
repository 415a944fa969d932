#pragma once

// The printed forms of a table's and an action's names, which follow from their lower-case ones.
// Used by the decoders and the host tool; packers have no use for names.

#include <string>

#include "p4gen/halden/pipeline/model.h"

namespace halden::pipeline {

constexpr char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

inline constexpr std::string_view table_id_prefix = "P4TBL_ID_";
inline constexpr std::string_view action_id_suffix = "_ID";

// The table name in front of an action id: P4TBL_ID_FLOW_OHASH's action is FLOW_FLOW_HASH_ID.
constexpr std::string_view action_id_prefix(const table &t) {
    return t.action_prefix.empty() ? t.name : t.action_prefix;
}

inline std::string upper(std::string_view text) {
    std::string out;
    for (char c : text) out += upper(c);
    return out;
}
// "P4TBL_ID_LIF_MAPPING"
inline std::string table_id_name(const table &t) {
    return std::string(table_id_prefix) + upper(t.name);
}
// "LIF_MAPPING_LIF_MAPPING_ID"
inline std::string action_id_name(const table &t, const action &a) {
    return upper(action_id_prefix(t)) + "_" + upper(a.name) + std::string(action_id_suffix);
}

}  // namespace halden::pipeline
