#pragma once

// The hardware's way through the flow table: from a packet's key to its entry, by memory alone.
//
//     row = high bits of the hash --> entry --(hint slot whose hash is the low 10 bits)--> overflow
//                                       |                                                 entry ...
//                                       +--(no slot matches, more_hashes set)--> overflow entry
//                                       whose
//                                                                      slots continue these
//
// Overflow row 0 is never used: a hint of 0 leads nowhere.

#include "host/view/lookup.h"

namespace halden::host::view {

answer flow_lookup(adapter &hardware, const uint8_t *key_image);

}  // namespace halden::host::view
