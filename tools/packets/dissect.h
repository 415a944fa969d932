#pragma once

// From a packet's bytes to the flow it belongs to.
//
//     Ethernet [802.1Q ...] IPv4|IPv6 TCP|UDP|ICMP|ICMPv6|other
//                                     UDP 4789 VXLAN   -> the flow is that of the inner packet,
//                                     UDP 6081 Geneve     under the tunnel's VNI
//
// A UDP packet to a tunnel's port whose tunnel header is malformed is no flow.
//
// Nothing is read beyond the bytes given, whatever their lengths claim.

#include <array>
#include <cstdint>
#include <span>
#include <string>

namespace halden::packets {

enum class ip_version : uint8_t { v4 = 4, v6 = 6 };

// A flow's 5-tuple and the virtual network it travels in. Addresses are in network byte order;
// an IPv4 address takes the first four bytes and the rest are zero.
struct flow {
    ip_version version = ip_version::v4;
    std::array<uint8_t, 16> source = {};
    std::array<uint8_t, 16> destination = {};
    uint8_t protocol = 0;
    // TCP and UDP: the ports. ICMP echo: the identifier and type * 256 + code; other ICMP: 0 and
    // type * 256 + code. Other protocols and later fragments: 0.
    uint16_t source_port = 0;
    uint16_t destination_port = 0;
    uint16_t vlan = 0;  // VLAN identifier of the innermost tag; 0 when untagged
    uint32_t vni = 0;   // of the innermost tunnel; 0 outside tunnels

    bool operator==(const flow &) const = default;
};

enum class link_type : uint8_t { ethernet, raw_ip };

enum class verdict : uint8_t {
    flow_found,
    truncated_ethernet,
    truncated_vlan,
    not_ip,            // ARP, LLDP and the like
    not_ip_in_tunnel,  // Geneve around neither an Ethernet frame nor an IP packet
    truncated_ipv4,
    bad_ipv4_header,
    truncated_ipv6,
    bad_ip_version,
    wrong_ip_version,  // IPv6 under the type of IPv4, or the other way round
    truncated_transport,
    truncated_tunnel,
    bad_tunnel_header,
    nested_too_deep,
};

struct dissected {
    verdict v = verdict::flow_found;
    flow f;             // when the verdict is flow_found; undefined otherwise
    uint16_t type = 0;  // of the two not_ip verdicts: the Ethertype; 0 for a length in its place
};
// What a count of such packets is named: "truncated IPv4 header", "not IP: ARP, type 0x0806".
std::string name_of(verdict v, uint16_t type = 0);

// A packet that the capture cut short still gives its flow when what decides the flow is there.
dissected dissect(std::span<const uint8_t> packet, link_type kind);

// "10.1.0.5:443", "[2001:db8::1]:443"; without the port when there is none to show.
std::string address_text(ip_version version, const std::array<uint8_t, 16> &address);
// "tcp 10.1.0.5:51820 -> 192.0.2.7:443 vni 5001"
std::string flow_text(const flow &f);
// "tcp", "udp", "icmp", "icmp6" or the number.
std::string protocol_text(uint8_t protocol);

}  // namespace halden::packets
