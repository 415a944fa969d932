#pragma once

// Tables, actions and fields by the names people type. An unknown name throws failure with the
// nearest one that exists.

#include <string>
#include <string_view>
#include <vector>

#include "p4gen/halden/pipeline/pipeline.h"
#include "tools/haldenctl/failure.h"

namespace halden::tool {

// A name ("lif_mapping", "P4TBL_ID_LIF_MAPPING") or an id ("16").
const pipeline::table &table_named(std::string_view name);
// A name or an id; its number in the table.
size_t action_named(const pipeline::table &t, std::string_view name);

// "no key field 'vln_id'; did you mean 'vlan_id'? allowed: vlan_id, l2seg". Long lists are cut.
std::string unknown(std::string_view what, std::string_view given,
                    const std::vector<std::string_view> &names);

// The place of `name` among the fields; `what` names them in the error ("key field").
template <class Field>
size_t field_named(std::span<const Field> fields, std::string_view name, std::string_view what) {
    std::vector<std::string_view> names;
    for (size_t i = 0; i < fields.size(); ++i) {
        if (fields[i].name == name) return i;
        names.push_back(fields[i].name);
    }
    throw failure(unknown(what, name, names));
}

}  // namespace halden::tool
