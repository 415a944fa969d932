#pragma once

// Flows of packets in the tables:
//
//     flow: the packets' key -> flow_idx --> its data, see flow_data.h
//
// flow_idx 0 is not handed out. The data stands in the tables before a key leads to it, and goes
// after the last key that leads to it is gone. So an import or a delete that is killed leaves rows
// behind to which no key leads; they are known by holding what an import writes and nothing else,
// and count as free. Rows with anything else in them are somebody's and are left alone.

#include <cstdint>
#include <functional>

#include "tools/haldenctl/flow_data.h"
#include "tools/haldenctl/refusal.h"
#include "tools/haldenctl/table_calls.h"
#include "tools/packets/flow_key.h"

namespace halden::tool {

struct stored_flow {
    flow_swkey_t key = {};  // whole: a flow made by hand may have fields that no packet decides
    packets::flow flow;     // what the key is about
    uint32_t index = 0;     // flow_idx
    uint32_t table = 0;     // flow or flow_ohash
    uint32_t row = 0;
    flow_counts counts;
};

// The flow of one row; nothing when the row is empty. The table engines are not needed for it.
std::optional<stored_flow> flow_at(host::adapter &adapter, uint32_t table, uint32_t row);

enum class remove_result : uint8_t { removed, refused, data_left };
enum class add_result : uint8_t { added, counted, no_info_row, no_room, refused };

class flow_store {
  public:
    // Throws failure when the flows cannot be read: there may be any.
    explicit flow_store(opened_tables &tables);

    // Makes the flow if it is not there, and adds to its counts.
    add_result add(const packets::flow &f, const flow_counts &counts);
    // Why the last flow that there was no room for has none.
    const std::string &no_room() const { return no_room_; }
    // Takes it out; its data as well, unless another flow points there.
    remove_result remove(const stored_flow &f);
    // Data rows that no flow points at and that an import or a delete left behind.
    uint32_t count_left_over();
    // Empties them; the number of those that could be.
    uint32_t remove_left_over();
    // Every flow, by buckets. `path` is the number of rows in front of it in its bucket. `see` may
    // not change the tables.
    void for_each(const std::function<void(const stored_flow &, uint32_t path)> &see);

  private:
    bool next_free_index(uint32_t &index);
    bool is_left_over(uint32_t index);
    void for_each_left_over(const std::function<void(uint32_t index)> &see);
    uint32_t &uses_of(uint32_t index);

    opened_tables &tables_;
    refusals refusals_;  // of flows that are added
    std::string no_room_;
    std::vector<uint32_t> uses_;  // by flow_idx; empty until it is asked for
    uint32_t searched_ = 1;       // no index below it is free
};

}  // namespace halden::tool
