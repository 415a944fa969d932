#pragma once

// Makes Ethernet frames, header by header from the outside in; lengths and checksums are filled in
// when the frame is taken.
//
//     frame f;
//     f.ethernet({.source = host, .destination = router}).vlan(100)
//      .ipv4({10, 1, 0, 5}, {192, 0, 2, 7}, protocol_tcp).tcp(51820, 443, tcp_syn).payload(0);
//     writer.put(f.take(), when);

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace halden::packets {

using mac = std::array<uint8_t, 6>;
using ipv4 = std::array<uint8_t, 4>;
using ipv6 = std::array<uint8_t, 16>;

inline constexpr uint8_t tcp_fin = 0x01, tcp_syn = 0x02, tcp_ack = 0x10, tcp_psh = 0x08;

class frame {
  public:
    struct ethernet_ends {
        mac source, destination;
    };
    frame &ethernet(const ethernet_ends &ends);
    frame &vlan(uint16_t id);
    frame &ip(const ipv4 &source, const ipv4 &destination, uint8_t protocol);
    frame &ip(const ipv6 &source, const ipv6 &destination, uint8_t protocol);
    frame &tcp(uint16_t source, uint16_t destination, uint8_t flags);
    frame &udp(uint16_t source, uint16_t destination);
    frame &icmp_echo(uint8_t type, uint16_t identifier, uint16_t sequence);
    frame &vxlan(uint32_t vni);
    frame &geneve(uint32_t vni);
    // Bytes counted up from 0.
    frame &payload(size_t bytes);

    // The finished frame; the maker is empty again.
    std::vector<uint8_t> take();

  private:
    enum class part : uint8_t { ip_v4, ip_v6, tcp, udp, icmp };
    struct header {
        part what;
        size_t at;
        size_t ip_at;  // of a transport header: the IP header in front of it
    };
    void put16(size_t at, uint16_t value);
    void follow(uint16_t ethertype);
    void add16(uint16_t value);
    void transport(part what);
    void finish(const header &h);
    uint32_t pseudo_header(const header &h, size_t bytes) const;

    std::vector<uint8_t> bytes_;
    std::vector<header> headers_;
    size_t ethertype_at_ = 0;  // where the type of the next header goes
};

}  // namespace halden::packets
