#pragma once

// The hardware's own view: what a packet's key hits, found from the adapter's memory alone. No
// engine and no software record takes part, so it proves that what software wrote is what hardware
// sees.
//
//     table                  what is looked at, in this order
//     hash in SRAM           the row of the key's hash, all key bits compared; then the TCAM of its
//                            overflow table
//     overflow, ternary      every TCAM row, the lowest that matches wins
//     flow                   the row of the flow's hash; then the entries its hint slots lead to
//
// Keys are images in wire order, as p4pd_hwkey_hwmask_build makes them for a hash table.

#include <cstdint>
#include <vector>

#include "host/adapter.h"

namespace halden::host::view {

struct answer {
    bool hit = false;
    // Why memory could not be read on the way; then it is no hit, and no miss either.
    sdk_ret_t unread = SDK_RET_OK;
    uint32_t table = 0;          // that matched: the table asked for, or its overflow
    uint32_t row = 0;            // of that table
    uint16_t bits = 0;           // of the data row
    std::vector<uint8_t> image;  // the data row as the layout routines made it, not swizzled

    // Of a hash table, hit or not: where the key belongs and what stands there.
    uint32_t hashed_row = 0;
    bool row_in_use = false;
    uint32_t path = 0;  // of a flow: overflow rows on the way, the flow's own included
};

// Keyed tables only (ids 1 to 15); a miss for every other id. flow_ohash has no hash of its own: it
// is reached through `flow`.
answer lookup(adapter &hardware, uint32_t tableid, const uint8_t *key_image);

}  // namespace halden::host::view
