#include "tools/packets/frame.h"

#include <gmock/gmock.h>

#include "tools/packets/dissect.h"
#include "tools/packets/protocols.h"

using namespace halden::packets;
using bytes = std::vector<uint8_t>;
using testing::ElementsAre;
using testing::ElementsAreArray;

namespace {

constexpr frame::ethernet_ends ends = {{2, 0, 0, 0, 0, 8}, {2, 0, 0, 0, 0, 9}};

bytes part(const bytes &b, size_t from, size_t count) {
    return {b.begin() + static_cast<std::ptrdiff_t>(from),
            b.begin() + static_cast<std::ptrdiff_t>(from + count)};
}

}  // namespace

TEST(Frame, UdpOverIpv4) {
    frame f;
    const bytes made = f.ethernet(ends)
                           .ip(ipv4{192, 168, 0, 1}, ipv4{192, 168, 0, 199}, protocol_udp)
                           .udp(1000, 53)
                           .payload(4)
                           .take();
    // Checksums worked out by hand: the one's complement sums of the 16-bit words.
    const uint8_t expected[] = {2,    0,    0,    0,   0,    9,    2,   0,   0,    0,   0,    8,
                                0x08, 0x00, 0x45, 0,   0,    32,   0,   0,   0x40, 0,   64,   17,
                                0xb8, 0xb4, 192,  168, 0,    1,    192, 168, 0,    199, 0x03, 0xe8,
                                0x00, 0x35, 0,    12,  0x77, 0x9c, 0,   1,   2,    3};
    EXPECT_THAT(made, ElementsAreArray(expected));
}

TEST(Frame, VlanTagStandsInFrontOfTheTypeOfIpv6) {
    frame f;
    const bytes made = f.ethernet(ends)
                           .vlan(0x123)
                           .ip(ipv6{0x20}, ipv6{0x30}, protocol_tcp)
                           .tcp(1, 2, tcp_syn)
                           .take();
    ASSERT_EQ(made.size(), 78u);
    EXPECT_THAT(part(made, 12, 12),
                ElementsAre(0x81, 0, 0x01, 0x23, 0x86, 0xdd, 0x60, 0, 0, 0, 0, 20));
    EXPECT_THAT(part(made, 24, 2), ElementsAre(6, 64));
    // 0x2000 + 0x3000 + 6 + 20 + 1 + 2 + 1 + 1 + 0x5002 + 0xffff, folded and inverted
    EXPECT_THAT(part(made, 74, 2), ElementsAre(0x5f, 0xde));
}

TEST(Frame, TunnelsHoldAWholeInnerFrame) {
    for (const bool vxlan : {true, false}) {
        frame f;
        f.ethernet(ends).ip(ipv4{1, 1, 1, 1}, ipv4{2, 2, 2, 2}, protocol_udp);
        f.udp(50000, vxlan ? port_vxlan : port_geneve);
        vxlan ? f.vxlan(0xabcdef) : f.geneve(0xabcdef);
        f.ethernet(ends).vlan(7).ip(ipv4{10, 0, 0, 1}, ipv4{10, 0, 0, 2}, protocol_icmp);
        const bytes made = f.icmp_echo(8, 0x77, 1).payload(8).take();
        ASSERT_EQ(made.size(), 14u + 20 + 8 + 8 + 14 + 4 + 20 + 8 + 8);
        EXPECT_THAT(part(made, 36, 2), ElementsAre(vxlan ? 0x12 : 0x17, vxlan ? 0xb5 : 0xc1));
        EXPECT_THAT(part(made, 42, 8), vxlan ? ElementsAre(8, 0, 0, 0, 0xab, 0xcd, 0xef, 0)
                                             : ElementsAre(0, 0, 0x65, 0x58, 0xab, 0xcd, 0xef, 0));
        const dissected found = dissect(made, link_type::ethernet);
        ASSERT_EQ(found.v, verdict::flow_found);
        EXPECT_EQ(flow_text(found.f), "icmp 10.0.0.1 -> 10.0.0.2 vlan 7 vni 11259375");
        EXPECT_EQ(found.f.source_port, 0x77);
    }
}
