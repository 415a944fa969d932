// Names of actions and error actions. Every function answers an unknown input with the empty
// string.

#include <cstring>

#include "p4gen/halden/pipeline/pipeline.h"
#include "p4pd.h"

namespace {

char *append(char *to, std::string_view text) {
    std::memcpy(to, text.data(), text.size());
    return to + text.size();
}

}  // namespace

void p4pd_get_action_name(uint32_t tableid, int actionid, char *action_name) {
    const halden::pipeline::table *table = halden::pipeline::find_table(tableid);
    if (table != nullptr && actionid >= 0 && static_cast<size_t>(actionid) < table->actions.size())
        action_name = append(action_name, table->actions[static_cast<size_t>(actionid)].name);
    *action_name = '\0';
}

void p4pd_get_error_action_name(uint32_t tableid, char *error_action_name) {
    if (const halden::pipeline::table *table = halden::pipeline::find_table(tableid))
        error_action_name = append(append(error_action_name, table->name), "_error");
    *error_action_name = '\0';
}

// The last byte is written apart from the rest, not left out: `len` 0 is the caller's mistake and
// must not pass for an empty name.
void p4pd_get_ingress_error_program(char *buffer, size_t len) {
    std::memset(buffer, 0, len - 1);
    buffer[len - 1] = '\0';
}

void p4pd_get_egress_error_program(char *buffer, size_t len) {
    p4pd_get_ingress_error_program(buffer, len);
}

void p4pd_get_ingress_stage_error_action(uint32_t /*stage*/, char *buffer, size_t len) {
    std::memset(buffer, 0, len);
}

void p4pd_get_egress_stage_error_action(uint32_t stage, char *buffer, size_t len) {
    p4pd_get_ingress_stage_error_action(stage, buffer, len);
}
