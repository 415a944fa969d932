#pragma once

// A flow's data: the rows that its flow_idx leads to.
//
//     flow_info[flow_idx]: time of the last packet, packets, what happens to them
//         | ipfix_ingress_idx
//     ipfix_ingress[...]: packets, bytes
//
// An import gives a flow the same row in both tables and fills the counts alone; rows made by hand
// may be anything, and several flows may share them.

#include <cstdint>
#include <optional>

#include "host/adapter.h"
#include "p4pd_records.h"
#include "tev_tbl.h"

namespace halden::tool {

inline constexpr uint32_t flow_info_table = P4TBL_ID_FLOW_INFO;
inline constexpr uint32_t ipfix_ingress_table = P4TBL_ID_IPFIX_INGRESS;

struct flow_counts {
    uint64_t packets = 0;
    uint64_t bytes = 0;
    uint32_t last_seen = 0;  // seconds since 1970
};

class flow_data {
  public:
    // Reads the rows; the table engines are not needed for it.
    flow_data(host::adapter &adapter, uint32_t index);

    flow_counts counts() const;
    // The rows hold what an import writes and nothing else: counts, and the way from one to the
    // other.
    bool is_of_import() const;

    // These go through the table API. False when it refuses.
    //
    // Adds to the counts; rows that are missing are made, and other fields are kept. Where the flow
    // is not exported and the row for it serves something else, the bytes go uncounted.
    bool add(const flow_counts &counts) const;
    // Deletes the rows, and the export row only if it is the flow's own by its number.
    bool remove() const;

  private:
    uint32_t index_;
    std::optional<tev_tbl_flow_info_spec_t> info_;
    // The row that info_ leads to; the one at index_ while nothing leads anywhere.
    std::optional<tev_tbl_ipfix_ingress_spec_t> exported_;
};

}  // namespace halden::tool
