#include "tools/packets/dissect.h"

#include <arpa/inet.h>

#include <algorithm>
#include <cstdio>

#include "tools/packets/protocols.h"

namespace halden::packets {
namespace {

using bytes = std::span<const uint8_t>;

uint16_t word(bytes b, size_t at) { return static_cast<uint16_t>(b[at] << 8 | b[at + 1]); }

constexpr unsigned deepest_tunnel = 4;
constexpr unsigned most_extension_headers = 8;
constexpr size_t udp_header = 8;
constexpr uint8_t vxlan_vni_is_valid = 0x08;

verdict read_ethernet(bytes packet, dissected &out, unsigned depth);

verdict read_ip(bytes packet, uint16_t type, dissected &out, unsigned depth);

// What is below the lowest type is a length of IEEE 802.3.
uint16_t type_or_none(uint16_t type) {
    constexpr uint16_t lowest = 0x600;
    return type < lowest ? uint16_t{0} : type;
}

bool is_ip(uint16_t type) { return type == ethertype_ipv4 || type == ethertype_ipv6; }

// Behind VXLAN's or Geneve's header. `type` is what follows.
verdict read_inner(bytes packet, uint16_t type, uint32_t vni, dissected &out, unsigned depth) {
    if (depth == deepest_tunnel) return verdict::nested_too_deep;
    out.f = flow{};
    out.f.vni = vni;
    if (type == ethertype_bridged_ethernet) return read_ethernet(packet, out, depth + 1);
    if (is_ip(type)) return read_ip(packet, type, out, depth + 1);
    out.type = type_or_none(type);
    return verdict::not_ip_in_tunnel;
}

verdict read_tunnel(bytes packet, uint16_t port, dissected &out, unsigned depth) {
    constexpr size_t header = 8;  // of both tunnels, without Geneve's options
    if (packet.size() < header) return verdict::truncated_tunnel;
    const auto vni = static_cast<uint32_t>(packet[4] << 16 | packet[5] << 8 | packet[6]);
    if (port == port_vxlan) {
        if ((packet[0] & vxlan_vni_is_valid) == 0) return verdict::bad_tunnel_header;
        return read_inner(packet.subspan(header), ethertype_bridged_ethernet, vni, out, depth);
    }
    const unsigned version = packet[0] >> 6;
    if (version != 0) return verdict::bad_tunnel_header;
    const size_t with_options = header + 4u * (packet[0] & 0x3f);
    if (packet.size() < with_options) return verdict::truncated_tunnel;
    return read_inner(packet.subspan(with_options), word(packet, 2), vni, out, depth);
}

verdict read_transport(bytes packet, dissected &out, unsigned depth) {
    flow &f = out.f;
    switch (f.protocol) {
        case protocol_tcp:
        case protocol_udp:
            if (packet.size() < 4) return verdict::truncated_transport;
            f.source_port = word(packet, 0);
            f.destination_port = word(packet, 2);
            if (f.protocol == protocol_udp &&
                (f.destination_port == port_vxlan || f.destination_port == port_geneve)) {
                if (packet.size() < udp_header) return verdict::truncated_transport;
                return read_tunnel(packet.subspan(udp_header), f.destination_port, out, depth);
            }
            return verdict::flow_found;
        case protocol_icmp:
        case protocol_icmp6: {
            if (packet.size() < 2) return verdict::truncated_transport;
            const uint8_t type = packet[0];
            const bool echo =
                f.protocol == protocol_icmp ? type == 8 || type == 0 : type == 128 || type == 129;
            if (echo && packet.size() < 6) return verdict::truncated_transport;
            f.source_port = echo ? word(packet, 4) : uint16_t{0};
            f.destination_port = word(packet, 0);
            return verdict::flow_found;
        }
        default:
            return verdict::flow_found;
    }
}

verdict read_ipv4(bytes packet, dissected &out, unsigned depth) {
    if (packet.size() < 20) return verdict::truncated_ipv4;
    const size_t header = 4u * (packet[0] & 0x0f);
    const size_t total = word(packet, 2);
    if (header < 20 || (total != 0 && total < header)) return verdict::bad_ipv4_header;
    if (packet.size() < header) return verdict::truncated_ipv4;
    out.f.version = ip_version::v4;
    out.f.protocol = packet[9];
    std::copy_n(packet.begin() + 12, 4, out.f.source.begin());
    std::copy_n(packet.begin() + 16, 4, out.f.destination.begin());
    const bool later_fragment = (word(packet, 6) & 0x1fff) != 0;
    if (later_fragment) return verdict::flow_found;
    // A total length of 0 is what segmentation offload leaves in a capture. Ethernet's padding is
    // no part of the packet.
    const size_t end = total == 0 ? packet.size() : std::min(total, packet.size());
    return read_transport(packet.first(end).subspan(header), out, depth);
}

verdict read_ipv6(bytes packet, dissected &out, unsigned depth) {
    if (packet.size() < 40) return verdict::truncated_ipv6;
    out.f.version = ip_version::v6;
    std::copy_n(packet.begin() + 8, 16, out.f.source.begin());
    std::copy_n(packet.begin() + 24, 16, out.f.destination.begin());
    uint8_t next = packet[6];
    const size_t payload = word(packet, 4);
    bytes rest = packet.subspan(40);
    if (payload != 0) rest = rest.first(std::min(payload, rest.size()));
    for (unsigned i = 0; i < most_extension_headers; ++i) {
        if (next != protocol_hop_by_hop && next != protocol_routing && next != protocol_fragment &&
            next != protocol_destination_options)
            break;
        if (rest.size() < 8) return verdict::truncated_ipv6;
        const bool fragment = next == protocol_fragment;
        const bool later_fragment = fragment && (word(rest, 2) & 0xfff8) != 0;
        const size_t header = fragment ? 8 : 8u + 8u * rest[1];
        if (rest.size() < header) return verdict::truncated_ipv6;
        next = rest[0];
        rest = rest.subspan(header);
        if (later_fragment) {
            out.f.protocol = next;
            return verdict::flow_found;
        }
    }
    out.f.protocol = next;
    return read_transport(rest, out, depth);
}

// Under an Ethertype; 0 where nothing but the packet says its version.
verdict read_ip(bytes packet, uint16_t type, dissected &out, unsigned depth) {
    if (packet.empty())
        return type == ethertype_ipv6 ? verdict::truncated_ipv6 : verdict::truncated_ipv4;
    switch (packet[0] >> 4) {
        case 4:
            return type == ethertype_ipv6 ? verdict::wrong_ip_version
                                          : read_ipv4(packet, out, depth);
        case 6:
            return type == ethertype_ipv4 ? verdict::wrong_ip_version
                                          : read_ipv6(packet, out, depth);
        default:
            return verdict::bad_ip_version;
    }
}

verdict read_ethernet(bytes packet, dissected &out, unsigned depth) {
    if (packet.size() < 14) return verdict::truncated_ethernet;
    uint16_t type = word(packet, 12);
    bytes rest = packet.subspan(14);
    while (type == ethertype_vlan || type == ethertype_service_vlan) {
        if (rest.size() < 4) return verdict::truncated_vlan;
        out.f.vlan = word(rest, 0) & 0x0fff;
        type = word(rest, 2);
        rest = rest.subspan(4);
    }
    if (is_ip(type)) return read_ip(rest, type, out, depth);
    out.type = type_or_none(type);
    return verdict::not_ip;
}

// "ARP, type 0x0806"
std::string type_text(uint16_t type) {
    if (type == 0) return "a length of IEEE 802.3 in place of a type";
    struct known {
        uint16_t type;
        const char *name;
    };
    constexpr known names[] = {{0x0806, "ARP"},   {0x8035, "RARP"},  {0x8809, "slow protocols"},
                               {0x8847, "MPLS"},  {0x8863, "PPPoE"}, {0x8864, "PPPoE"},
                               {0x888e, "EAPOL"}, {0x88cc, "LLDP"},  {0x88f7, "PTP"}};
    char number[16];
    std::snprintf(number, sizeof number, "type 0x%04x", type);
    for (const known &k : names)
        if (k.type == type) return std::string(k.name) + ", " + number;
    return number;
}

}  // namespace

std::string name_of(verdict v, uint16_t type) {
    switch (v) {
        case verdict::flow_found:
            return "flow";
        case verdict::truncated_ethernet:
            return "truncated Ethernet header";
        case verdict::truncated_vlan:
            return "truncated VLAN tag";
        case verdict::not_ip:
            return "not IP: " + type_text(type);
        case verdict::not_ip_in_tunnel:
            return "not IP inside Geneve: " + type_text(type);
        case verdict::truncated_ipv4:
            return "truncated IPv4 header";
        case verdict::bad_ipv4_header:
            return "bad IPv4 header length";
        case verdict::truncated_ipv6:
            return "truncated IPv6 header";
        case verdict::bad_ip_version:
            return "IP version neither 4 nor 6";
        case verdict::wrong_ip_version:
            return "IP version other than the type says";
        case verdict::truncated_transport:
            return "truncated TCP, UDP or ICMP header";
        case verdict::truncated_tunnel:
            return "truncated VXLAN or Geneve header";
        case verdict::bad_tunnel_header:
            return "VXLAN header without a VNI, or Geneve of another version";
        case verdict::nested_too_deep:
            return "more than 4 tunnels in one another";
    }
    return "";
}

dissected dissect(bytes packet, link_type kind) {
    dissected out;
    out.v =
        kind == link_type::ethernet ? read_ethernet(packet, out, 0) : read_ip(packet, 0, out, 0);
    return out;
}

std::string address_text(ip_version version, const std::array<uint8_t, 16> &address) {
    char text[INET6_ADDRSTRLEN] = {};
    inet_ntop(version == ip_version::v4 ? AF_INET : AF_INET6, address.data(), text, sizeof text);
    return text;
}

std::string protocol_text(uint8_t protocol) {
    switch (protocol) {
        case protocol_icmp:
            return "icmp";
        case protocol_tcp:
            return "tcp";
        case protocol_udp:
            return "udp";
        case protocol_icmp6:
            return "icmp6";
        default:
            return std::to_string(protocol);
    }
}

std::string flow_text(const flow &f) {
    const auto end = [&](const std::array<uint8_t, 16> &address, uint16_t port) {
        std::string text = address_text(f.version, address);
        if (f.protocol != protocol_tcp && f.protocol != protocol_udp) return text;
        return (f.version == ip_version::v4 ? text : "[" + text + "]") + ":" + std::to_string(port);
    };
    std::string out = protocol_text(f.protocol) + " " + end(f.source, f.source_port) + " -> " +
                      end(f.destination, f.destination_port);
    if (f.vlan != 0) out += " vlan " + std::to_string(f.vlan);
    if (f.vni != 0) out += " vni " + std::to_string(f.vni);
    return out;
}

}  // namespace halden::packets
