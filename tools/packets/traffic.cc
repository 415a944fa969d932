#include "tools/packets/traffic.h"

#include <random>

#include "tools/packets/frame.h"
#include "tools/packets/protocols.h"

namespace halden::packets {
namespace {

constexpr uint64_t start_of_capture = 1700000000000000;  // microseconds since 1970
constexpr frame::ethernet_ends uplink = {{0x02, 0, 0x5e, 0, 0, 0x01}, {0x02, 0, 0x5e, 0, 0, 0xfe}};
constexpr frame::ethernet_ends tenant = {{0x02, 0, 0xaa, 0, 0, 0x10}, {0x02, 0, 0xaa, 0, 0, 0x20}};
constexpr ipv4 near_site = {172, 16, 0, 1}, far_site = {172, 16, 9, 1};

enum class wrapping : uint8_t { none, vlan, vxlan, geneve };

struct conversation {
    wrapping in;
    bool v6;
    uint8_t protocol;  // over IPv4; ICMP becomes ICMPv6
    uint16_t client_port, server_port;
    uint8_t client, server;
    uint16_t id;  // VLAN or VNI offset
};

// The share of each kind of conversation, in percent, is what the bounds below say.
class maker {
  public:
    maker(capture_writer &out, uint32_t seed) : out_(out), random_(seed) {}

    uint32_t below(uint32_t bound) { return static_cast<uint32_t>(random_()) % bound; }

    conversation next_conversation() {
        conversation c = {};
        const uint32_t in = below(100), what = below(100);
        c.in = in < 50   ? wrapping::none
               : in < 70 ? wrapping::vlan
               : in < 90 ? wrapping::vxlan
                         : wrapping::geneve;
        c.v6 = below(100) < 35;
        c.protocol = what < 65 ? protocol_tcp : what < 92 ? protocol_udp : protocol_icmp;
        constexpr uint16_t tcp_services[] = {443, 443, 443, 80, 22, 5432, 6379};
        constexpr uint16_t udp_services[] = {53, 53, 443, 123, 514};
        c.server_port =
            c.protocol == protocol_tcp ? tcp_services[below(7)] : udp_services[below(5)];
        c.client_port = static_cast<uint16_t>(32768 + below(28000));
        c.client = static_cast<uint8_t>(1 + below(250));
        c.server = static_cast<uint8_t>(1 + below(40));
        c.id = static_cast<uint16_t>(below(8));
        return c;
    }

    // Few conversations are long: most have a handful of packets, some hundreds.
    uint32_t length_of_conversation() {
        uint32_t packets = 2 + below(6);
        while (packets < 600 && below(100) < 30) packets *= 2;
        return packets;
    }

    void send(const conversation &c, bool from_client, uint32_t number, uint32_t of) {
        frame f;
        f.ethernet(from_client ? uplink : frame::ethernet_ends{uplink.destination, uplink.source});
        if (c.in == wrapping::vlan) f.vlan(static_cast<uint16_t>(100 + c.id));
        if (c.in == wrapping::vxlan || c.in == wrapping::geneve) {
            f.ip(from_client ? near_site : far_site, from_client ? far_site : near_site,
                 protocol_udp);
            // The source port spreads flows over links.
            f.udp(static_cast<uint16_t>(49152 + (c.client_port ^ c.server) % 16384),
                  c.in == wrapping::vxlan ? port_vxlan : port_geneve);
            c.in == wrapping::vxlan ? f.vxlan(5000u + c.id) : f.geneve(7000u + c.id);
            f.ethernet(from_client ? tenant
                                   : frame::ethernet_ends{tenant.destination, tenant.source});
        }
        add_ip(f, c, from_client);
        add_transport(f, c, from_client, number, of);
        put(f);
    }

    void send_arp() {
        frame f;
        f.ethernet({uplink.source, {0xff, 0xff, 0xff, 0xff, 0xff, 0xff}});
        std::vector<uint8_t> bytes = f.take();
        bytes[12] = 0x08;
        bytes[13] = 0x06;
        bytes.resize(60);
        out_.put(bytes, clock_);
    }

  private:
    static void add_ip(frame &f, const conversation &c, bool from_client) {
        if (c.v6) {
            const ipv6 client = {0x20, 0x01, 0x0d, 0xb8, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, c.client};
            const ipv6 server = {0x20, 0x01, 0x0d, 0xb8, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, c.server};
            const uint8_t protocol = c.protocol == protocol_icmp ? protocol_icmp6 : c.protocol;
            f.ip(from_client ? client : server, from_client ? server : client, protocol);
        } else {
            const ipv4 client = {10, 1, static_cast<uint8_t>(c.id), c.client};
            const ipv4 server = {192, 0, 2, c.server};
            f.ip(from_client ? client : server, from_client ? server : client, c.protocol);
        }
    }

    void add_transport(frame &f, const conversation &c, bool from_client, uint32_t number,
                       uint32_t of) {
        const uint16_t source = from_client ? c.client_port : c.server_port;
        const uint16_t destination = from_client ? c.server_port : c.client_port;
        if (c.protocol == protocol_tcp) {
            uint8_t flags = tcp_ack | tcp_psh;
            if (number == 0) flags = tcp_syn;
            if (number == 1) flags = tcp_syn | tcp_ack;
            if (number + 2 >= of && number > 1) flags = tcp_fin | tcp_ack;
            f.tcp(source, destination, flags);
            f.payload(number < 2 || flags & tcp_fin ? 0 : from_client ? below(400) : below(1300));
        } else if (c.protocol == protocol_udp) {
            f.udp(source, destination).payload(20 + below(from_client ? 60 : 900));
        } else {
            const uint8_t request = c.v6 ? 128 : 8, reply = c.v6 ? 129 : 0;
            f.icmp_echo(from_client ? request : reply, c.client_port,
                        static_cast<uint16_t>(number / 2));
            f.payload(56);
        }
    }

    void put(frame &f) {
        clock_ += 1 + below(900);
        out_.put(f.take(), clock_);
    }

    capture_writer &out_;
    std::mt19937 random_;
    uint64_t clock_ = start_of_capture;
};

}  // namespace

traffic_made make_traffic(capture_writer &out, uint64_t packets, uint32_t seed,
                          const std::function<void()> &in_between) {
    maker m(out, seed);
    traffic_made made;
    while (made.packets < packets) {
        in_between();
        const conversation c = m.next_conversation();
        const uint32_t length = m.length_of_conversation();
        ++made.conversations;
        for (uint32_t i = 0; i < length; ++i) m.send(c, i % 2 == 0, i, length);
        made.packets += length;
        if (made.conversations % 25 == 0) {
            m.send_arp();
            ++made.packets;
            ++made.other_frames;
        }
    }
    return made;
}

}  // namespace halden::packets
