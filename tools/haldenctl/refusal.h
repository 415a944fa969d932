#pragma once

// Why a call of the table API did not go through. The API has one code for a table that is full,
// for an entry that is there already and for an adapter that refuses a write; what stands in memory
// afterwards tells them apart:
//
//     create            "there is such an entry, in row 5"                             refused
//                       "tunnel_terminate_v4 is full: 512 of 512 rows"                 refused
//                       "its row is taken and vlan_mapping_otcam is full: ..."         refused
//     update, remove,   "there is none"                                                missed
//     find
//     every one         "memory that it needs cannot be read"                          adapter
//                       "the adapter refused it; --log-level error says why"           adapter

#include "tools/haldenctl/failure.h"
#include "tools/haldenctl/table_calls.h"

namespace halden::tool {

enum class table_call : uint8_t { create, update, remove, find };

// For calls on one adapter that take nothing out in between.
class refusals {
  public:
    explicit refusals(host::adapter &adapter) : adapter_(&adapter) {}

    // Of a call that failed just now. `index` as in table_calls.h.
    failure reason(table_call call, const records &entry, uint32_t index);

  private:
    std::string no_room_for(const records &entry);
    bool is_full(uint32_t table);

    host::adapter *adapter_;
    uint32_t looked_at_ = 0;  // rows of flow_ohash in front of it are known to be in use
};

// "tunnel_terminate_v4 is full: 512 of 512 rows"
std::string full_text(host::adapter &adapter, const pipeline::table &t);

// "create", as commands and errors call it.
const char *name_of(table_call call);

}  // namespace halden::tool
