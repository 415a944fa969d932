#pragma once

// A packet's flow as the flow table's key, and back.
//
// Addresses and MACs are byte arrays whose byte 0 is the least significant, so they stand reversed;
// an IPv4 address takes the low four bytes. The key type says which of the two it is. Fields that a
// 5-tuple does not decide (MACs, logical port, spare) are zero.

#include "p4pd_records.h"
#include "tools/packets/dissect.h"

namespace halden::packets {

inline constexpr uint8_t key_type_ipv4 = 1;
inline constexpr uint8_t key_type_ipv6 = 2;

flow_swkey_t key_of(const flow &f);
// The flow of a key that key_of made. A key type of neither kind is shown as IPv6.
flow flow_of(const flow_swkey_t &key);

}  // namespace halden::packets
