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
// The flow that a key is about. One that key_of did not make may have fields of which the flow
// knows nothing; what is no IPv4 key by type and addresses is read as IPv6.
flow flow_of(const flow_swkey_t &key);
// The flow, and the key's fields that the flow does not decide:
// "tcp 10.1.0.5:51820 -> 192.0.2.7:443 smac 02:00:00:00:00:01 port_id 3"
std::string key_text(const flow_swkey_t &key);

}  // namespace halden::packets
