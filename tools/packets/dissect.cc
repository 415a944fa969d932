#include "tools/packets/dissect.h"

#include <arpa/inet.h>

#include <algorithm>

#include "tools/packets/protocols.h"

namespace halden::packets {
namespace {

using bytes = std::span<const uint8_t>;

uint16_t word(bytes b, size_t at) { return static_cast<uint16_t>(b[at] << 8 | b[at + 1]); }

constexpr unsigned deepest_tunnel = 4;
constexpr unsigned most_extension_headers = 8;

verdict read_ethernet(bytes packet, flow &out, unsigned depth);

verdict read_ip(bytes packet, flow &out, unsigned depth);

// Behind VXLAN's or Geneve's header. `type` is what follows.
verdict read_inner(bytes packet, uint16_t type, uint32_t vni, flow &out, unsigned depth) {
    if (depth == deepest_tunnel) return verdict::nested_too_deep;
    out = flow{};
    out.vni = vni;
    return type == ethertype_bridged_ethernet ? read_ethernet(packet, out, depth + 1)
                                              : read_ip(packet, out, depth + 1);
}

verdict read_tunnel(bytes packet, uint16_t port, flow &out, unsigned depth) {
    constexpr size_t header = 8;  // of both tunnels, without Geneve's options
    if (packet.size() < header) return verdict::truncated_tunnel;
    const auto vni = static_cast<uint32_t>(packet[4] << 16 | packet[5] << 8 | packet[6]);
    if (port == port_vxlan)
        return read_inner(packet.subspan(header), ethertype_bridged_ethernet, vni, out, depth);
    const size_t with_options = header + 4u * (packet[0] & 0x3f);
    if (packet.size() < with_options) return verdict::truncated_tunnel;
    return read_inner(packet.subspan(with_options), word(packet, 2), vni, out, depth);
}

verdict read_transport(bytes packet, flow &out, unsigned depth) {
    switch (out.protocol) {
        case protocol_tcp:
        case protocol_udp:
            if (packet.size() < (out.protocol == protocol_tcp ? 20u : 8u))
                return verdict::truncated_transport;
            out.source_port = word(packet, 0);
            out.destination_port = word(packet, 2);
            if (out.protocol == protocol_udp &&
                (out.destination_port == port_vxlan || out.destination_port == port_geneve))
                return read_tunnel(packet.subspan(8), out.destination_port, out, depth);
            return verdict::flow_found;
        case protocol_icmp:
        case protocol_icmp6: {
            if (packet.size() < 8) return verdict::truncated_transport;
            const uint8_t type = packet[0];
            const bool echo =
                out.protocol == protocol_icmp ? type == 8 || type == 0 : type == 128 || type == 129;
            out.source_port = echo ? word(packet, 4) : uint16_t{0};
            out.destination_port = word(packet, 0);
            return verdict::flow_found;
        }
        default:
            return verdict::flow_found;
    }
}

verdict read_ipv4(bytes packet, flow &out, unsigned depth) {
    if (packet.size() < 20) return verdict::truncated_ipv4;
    const size_t header = 4u * (packet[0] & 0x0f);
    const size_t total = word(packet, 2);
    if (header < 20 || (total != 0 && total < header)) return verdict::bad_ipv4_header;
    if (packet.size() < header) return verdict::truncated_ipv4;
    out.version = ip_version::v4;
    out.protocol = packet[9];
    std::copy_n(packet.begin() + 12, 4, out.source.begin());
    std::copy_n(packet.begin() + 16, 4, out.destination.begin());
    const bool later_fragment = (word(packet, 6) & 0x1fff) != 0;
    if (later_fragment) return verdict::flow_found;
    // A total length of 0 is what segmentation offload leaves in a capture. Ethernet's padding is
    // no part of the packet.
    const size_t end = total == 0 ? packet.size() : std::min(total, packet.size());
    return read_transport(packet.first(end).subspan(header), out, depth);
}

verdict read_ipv6(bytes packet, flow &out, unsigned depth) {
    if (packet.size() < 40) return verdict::truncated_ipv6;
    out.version = ip_version::v6;
    std::copy_n(packet.begin() + 8, 16, out.source.begin());
    std::copy_n(packet.begin() + 24, 16, out.destination.begin());
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
            out.protocol = next;
            return verdict::flow_found;
        }
    }
    out.protocol = next;
    return read_transport(rest, out, depth);
}

verdict read_ip(bytes packet, flow &out, unsigned depth) {
    if (packet.empty()) return verdict::truncated_ipv4;
    switch (packet[0] >> 4) {
        case 4:
            return read_ipv4(packet, out, depth);
        case 6:
            return read_ipv6(packet, out, depth);
        default:
            return verdict::bad_ip_version;
    }
}

verdict read_ethernet(bytes packet, flow &out, unsigned depth) {
    if (packet.size() < 14) return verdict::truncated_ethernet;
    uint16_t type = word(packet, 12);
    bytes rest = packet.subspan(14);
    while (type == ethertype_vlan || type == ethertype_service_vlan) {
        if (rest.size() < 4) return verdict::truncated_vlan;
        out.vlan = word(rest, 0) & 0x0fff;
        type = word(rest, 2);
        rest = rest.subspan(4);
    }
    if (type != ethertype_ipv4 && type != ethertype_ipv6) return verdict::not_ip;
    return read_ip(rest, out, depth);
}

}  // namespace

const char *name_of(verdict v) {
    switch (v) {
        case verdict::flow_found:
            return "flow";
        case verdict::truncated_ethernet:
            return "truncated Ethernet header";
        case verdict::truncated_vlan:
            return "truncated VLAN tag";
        case verdict::not_ip:
            return "not IP";
        case verdict::truncated_ipv4:
            return "truncated IPv4 header";
        case verdict::bad_ipv4_header:
            return "bad IPv4 header length";
        case verdict::truncated_ipv6:
            return "truncated IPv6 header";
        case verdict::bad_ip_version:
            return "IP version neither 4 nor 6";
        case verdict::truncated_transport:
            return "truncated TCP, UDP or ICMP header";
        case verdict::truncated_tunnel:
            return "truncated VXLAN or Geneve header";
        case verdict::nested_too_deep:
            return "more than 4 tunnels in one another";
    }
    return "";
}

verdict dissect(bytes packet, link_type kind, flow &out) {
    out = flow{};
    return kind == link_type::ethernet ? read_ethernet(packet, out, 0) : read_ip(packet, out, 0);
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
