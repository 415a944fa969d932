#pragma once

// Numbers of the protocols that are read and made here.

#include <cstdint>

namespace halden::packets {

inline constexpr uint16_t ethertype_ipv4 = 0x0800;
inline constexpr uint16_t ethertype_ipv6 = 0x86dd;
inline constexpr uint16_t ethertype_vlan = 0x8100;
inline constexpr uint16_t ethertype_service_vlan = 0x88a8;
inline constexpr uint16_t ethertype_bridged_ethernet = 0x6558;  // inside Geneve

inline constexpr uint8_t protocol_icmp = 1;
inline constexpr uint8_t protocol_tcp = 6;
inline constexpr uint8_t protocol_udp = 17;
inline constexpr uint8_t protocol_icmp6 = 58;
// IPv6 extension headers.
inline constexpr uint8_t protocol_hop_by_hop = 0;
inline constexpr uint8_t protocol_routing = 43;
inline constexpr uint8_t protocol_fragment = 44;
inline constexpr uint8_t protocol_destination_options = 60;

inline constexpr uint16_t port_vxlan = 4789;
inline constexpr uint16_t port_geneve = 6081;

}  // namespace halden::packets
