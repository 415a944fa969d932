// Packets are typed out byte by byte.

#include "tools/packets/dissect.h"

#include <gmock/gmock.h>

#include <vector>

#include "tools/packets/flow_key.h"

using namespace halden::packets;
using bytes = std::vector<uint8_t>;

namespace {

bytes join(std::initializer_list<bytes> parts) {
    bytes out;
    for (const bytes &p : parts) out.insert(out.end(), p.begin(), p.end());
    return out;
}

const bytes ethernet_v4 = {2, 0, 0, 0, 0, 9, 2, 0, 0, 0, 0, 8, 0x08, 0x00};
const bytes ethernet_v6 = {2, 0, 0, 0, 0, 9, 2, 0, 0, 0, 0, 8, 0x86, 0xdd};
const bytes ethernet_vlan_100_v4 = {2, 0, 0, 0,    0,    9,    2,    0,    0,
                                    0, 0, 8, 0x81, 0x00, 0xe0, 0x64, 0x08, 0x00};
// 10.1.0.5 -> 192.0.2.7, total length 40, TCP
const bytes ipv4_tcp = {0x45, 0, 0, 40, 0, 0, 0x40, 0, 64, 6, 0, 0, 10, 1, 0, 5, 192, 0, 2, 7};
const bytes ipv4_udp = {0x45, 0, 0, 0, 0, 0, 0x40, 0, 64, 17, 0, 0, 10, 1, 0, 5, 192, 0, 2, 7};
const bytes ipv4_icmp = {0x45, 0, 0, 28, 0, 0, 0x40, 0, 64, 1, 0, 0, 10, 1, 0, 5, 192, 0, 2, 7};
// 51820 -> 443
const bytes tcp = {0xca, 0x6c, 0x01, 0xbb, 0,    0,    0, 1, 0, 0,
                   0,    0,    0x50, 0x02, 0xff, 0xff, 0, 0, 0, 0};
const bytes udp_to_vxlan = {0xc0, 0x00, 0x12, 0xb5, 0, 0, 0, 0};
const bytes udp_to_geneve = {0xc0, 0x00, 0x17, 0xc1, 0, 0, 0, 0};
// 2001:db8::1 -> 2001:db8::2, next header TCP, payload length 20
const bytes ipv6_tcp = {0x60, 0, 0, 0, 0, 20, 6, 64, 0x20, 1, 0x0d, 0xb8, 0,    0,
                        0,    0, 0, 0, 0, 0,  0, 0,  0,    1, 0x20, 1,    0x0d, 0xb8,
                        0,    0, 0, 0, 0, 0,  0, 0,  0,    0, 0,    2};

struct found {
    verdict v;
    flow f;
};
found look(const bytes &packet, link_type kind = link_type::ethernet) {
    found out = {};
    out.v = dissect(packet, kind, out.f);
    return out;
}

}  // namespace

TEST(Dissect, TcpOverIpv4) {
    const auto [v, f] = look(join({ethernet_v4, ipv4_tcp, tcp}));
    ASSERT_EQ(v, verdict::flow_found);
    EXPECT_EQ(f.version, ip_version::v4);
    EXPECT_EQ(f.protocol, 6);
    EXPECT_EQ(f.source_port, 51820);
    EXPECT_EQ(f.destination_port, 443);
    EXPECT_EQ(f.vlan, 0);
    EXPECT_EQ(f.vni, 0u);
    EXPECT_EQ(flow_text(f), "tcp 10.1.0.5:51820 -> 192.0.2.7:443");
}

TEST(Dissect, VlanIdentifierWithoutItsPriority) {
    const auto [v, f] = look(join({ethernet_vlan_100_v4, ipv4_tcp, tcp}));
    ASSERT_EQ(v, verdict::flow_found);
    EXPECT_EQ(f.vlan, 100);
    EXPECT_EQ(flow_text(f), "tcp 10.1.0.5:51820 -> 192.0.2.7:443 vlan 100");
}

TEST(Dissect, TcpOverIpv6) {
    const auto [v, f] = look(join({ethernet_v6, ipv6_tcp, tcp}));
    ASSERT_EQ(v, verdict::flow_found);
    EXPECT_EQ(flow_text(f), "tcp [2001:db8::1]:51820 -> [2001:db8::2]:443");
}

TEST(Dissect, Ipv6ExtensionHeadersAreSteppedOver) {
    bytes ip = ipv6_tcp;
    ip[5] = 28;
    ip[6] = 0;  // hop by hop, then TCP
    const bytes hop_by_hop = {6, 0, 1, 4, 0, 0, 0, 0};
    const auto [v, f] = look(join({ethernet_v6, ip, hop_by_hop, tcp}));
    ASSERT_EQ(v, verdict::flow_found);
    EXPECT_EQ(f.protocol, 6);
    EXPECT_EQ(f.destination_port, 443);
}

TEST(Dissect, LaterFragmentsHaveNoPorts) {
    bytes ip = ipv4_tcp;
    ip[7] = 1;  // 8 bytes into the packet
    const auto [v, f] = look(join({ethernet_v4, ip, tcp}));
    ASSERT_EQ(v, verdict::flow_found);
    EXPECT_EQ(f.protocol, 6);
    EXPECT_EQ(f.source_port, 0);
    EXPECT_EQ(f.destination_port, 0);

    bytes ip6 = ipv6_tcp;
    ip6[5] = 28;
    ip6[6] = 44;
    const bytes fragment = {6, 0, 0, 8, 0, 0, 0, 1};
    const auto [v6, f6] = look(join({ethernet_v6, ip6, fragment, tcp}));
    ASSERT_EQ(v6, verdict::flow_found);
    EXPECT_EQ(f6.protocol, 6);
    EXPECT_EQ(f6.source_port, 0);
}

TEST(Dissect, IcmpEchoHasItsIdentifier) {
    const auto [v, f] = look(join({ethernet_v4, ipv4_icmp, {8, 0, 0, 0, 0x12, 0x34, 0, 1}}));
    ASSERT_EQ(v, verdict::flow_found);
    EXPECT_EQ(f.source_port, 0x1234);
    EXPECT_EQ(f.destination_port, 0x0800);
    EXPECT_EQ(flow_text(f), "icmp 10.1.0.5 -> 192.0.2.7");
    // Unreachable: what stands at the identifier's place is no identifier.
    const auto [v3, f3] = look(join({ethernet_v4, ipv4_icmp, {3, 1, 0, 0, 0x12, 0x34, 0, 1}}));
    ASSERT_EQ(v3, verdict::flow_found);
    EXPECT_EQ(f3.source_port, 0);
    EXPECT_EQ(f3.destination_port, 0x0301);
}

TEST(Dissect, VxlanShowsTheInnerFlow) {
    const bytes vxlan = {0x08, 0, 0, 0, 0x00, 0x13, 0x89, 0};
    const auto [v, f] =
        look(join({ethernet_v4, ipv4_udp, udp_to_vxlan, vxlan, ethernet_v6, ipv6_tcp, tcp}));
    ASSERT_EQ(v, verdict::flow_found);
    EXPECT_EQ(flow_text(f), "tcp [2001:db8::1]:51820 -> [2001:db8::2]:443 vni 5001");
}

TEST(Dissect, GeneveShowsTheInnerFlowBehindItsOptions) {
    const bytes geneve = {0x02, 0, 0x65, 0x58, 0x01, 0x02, 0x03, 0, 9, 9, 9, 9, 9, 9, 9, 9};
    const auto [v, f] =
        look(join({ethernet_v4, ipv4_udp, udp_to_geneve, geneve, ethernet_v4, ipv4_tcp, tcp}));
    ASSERT_EQ(v, verdict::flow_found);
    EXPECT_EQ(f.vni, 0x010203u);
    EXPECT_EQ(f.source_port, 51820);
}

TEST(Dissect, RawIpHasNoEthernetHeader) {
    EXPECT_EQ(look(join({ipv4_tcp, tcp}), link_type::raw_ip).v, verdict::flow_found);
    EXPECT_EQ(look(join({ipv6_tcp, tcp}), link_type::raw_ip).v, verdict::flow_found);
    EXPECT_EQ(look({0x15, 0, 0}, link_type::raw_ip).v, verdict::bad_ip_version);
}

TEST(Dissect, NamesWhatItCannotRead) {
    EXPECT_EQ(look({}).v, verdict::truncated_ethernet);
    EXPECT_EQ(look(bytes(13)).v, verdict::truncated_ethernet);
    EXPECT_EQ(look(bytes(60)).v, verdict::not_ip);
    EXPECT_EQ(look(join({ethernet_vlan_100_v4})).v, verdict::truncated_ipv4);
    bytes cut_tag = ethernet_vlan_100_v4;
    cut_tag.resize(17);
    EXPECT_EQ(look(cut_tag).v, verdict::truncated_vlan);
    bytes short_header = ipv4_tcp;
    short_header[0] = 0x44;
    EXPECT_EQ(look(join({ethernet_v4, short_header, tcp})).v, verdict::bad_ipv4_header);
    EXPECT_EQ(look(join({ethernet_v4, ipv4_udp, udp_to_vxlan, {8, 0, 0}})).v,
              verdict::truncated_tunnel);
    EXPECT_STREQ(name_of(verdict::not_ip), "not IP");
    EXPECT_STREQ(name_of(verdict::truncated_ipv6), "truncated IPv6 header");
}

TEST(Dissect, TunnelsInTunnelsEnd) {
    const bytes vxlan = {0x08, 0, 0, 0, 0, 0, 1, 0};
    bytes packet;
    for (int i = 0; i < 4; ++i) packet = join({packet, ethernet_v4, ipv4_udp, udp_to_vxlan, vxlan});
    EXPECT_EQ(look(join({packet, ethernet_v4, ipv4_tcp, tcp})).v, verdict::flow_found);
    packet = join({packet, ethernet_v4, ipv4_udp, udp_to_vxlan, vxlan});
    EXPECT_EQ(look(join({packet, ethernet_v4, ipv4_tcp, tcp})).v, verdict::nested_too_deep);
}

TEST(Dissect, EveryCutOfAPacketIsReadWithoutReadingBeyondIt) {
    const bytes geneve = {0x02, 0, 0x65, 0x58, 0x01, 0x02, 0x03, 0, 9, 9, 9, 9, 9, 9, 9, 9};
    const bytes whole =
        join({ethernet_v4, ipv4_udp, udp_to_geneve, geneve, ethernet_v6, ipv6_tcp, tcp});
    for (size_t length = 0; length < whole.size(); ++length) {
        // A buffer of its own, so that a sanitizer sees a read beyond it.
        const bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_NE(look(cut).v, verdict::flow_found) << length;
    }
    EXPECT_EQ(look(whole).v, verdict::flow_found);
}

TEST(FlowKey, HoldsTheFiveTupleByteZeroLowest) {
    const auto [v, f] = look(join({ethernet_vlan_100_v4, ipv4_tcp, tcp}));
    ASSERT_EQ(v, verdict::flow_found);
    const flow_swkey_t key = key_of(f);
    EXPECT_EQ(key.metadata_flow_key_sip[0], 5);
    EXPECT_EQ(key.metadata_flow_key_sip[3], 10);
    EXPECT_EQ(key.metadata_flow_key_sip[4], 0);
    EXPECT_EQ(key.metadata_flow_key_dip[0], 7);
    EXPECT_EQ(key.metadata_flow_key_dip[3], 192);
    EXPECT_EQ(key.metadata_flow_key_proto, 6);
    EXPECT_EQ(uint16_t{key.metadata_flow_key_sport}, 51820);
    EXPECT_EQ(uint16_t{key.metadata_flow_key_dport}, 443);
    EXPECT_EQ(uint16_t{key.metadata_flow_key_vlan}, 100);
    EXPECT_EQ(key.metadata_flow_key_ktype, 1);
    EXPECT_EQ(flow_of(key), f);
}

TEST(FlowKey, Ipv6TakesAllSixteenBytes) {
    const auto [v, f] = look(join({ethernet_v6, ipv6_tcp, tcp}));
    ASSERT_EQ(v, verdict::flow_found);
    const flow_swkey_t key = key_of(f);
    EXPECT_EQ(key.metadata_flow_key_sip[0], 1);
    EXPECT_EQ(key.metadata_flow_key_sip[15], 0x20);
    EXPECT_EQ(key.metadata_flow_key_ktype, 2);
    EXPECT_EQ(flow_of(key), f);
}

// A key made by hand: fields that no packet's flow decides are named behind the flow.
TEST(FlowKey, NamesTheFieldsThatTheFlowDoesNotDecide) {
    const auto [v, f] = look(join({ethernet_v4, ipv4_tcp, tcp}));
    ASSERT_EQ(v, verdict::flow_found);
    flow_swkey_t key = key_of(f);
    EXPECT_EQ(key_text(key), "tcp 10.1.0.5:51820 -> 192.0.2.7:443");
    key.metadata_flow_key_smac[0] = 0x01;
    key.metadata_flow_key_smac[5] = 0x02;
    key.metadata_flow_key_dmac[0] = 0xff;
    key.metadata_flow_key_port_id = 3;
    key.metadata_flow_key_rsvd = 4;
    key.metadata_flow_key_outer_flow_id = 5;
    key.metadata_flow_key_spare[0] = 0xab;
    EXPECT_EQ(key_text(key),
              "tcp 10.1.0.5:51820 -> 192.0.2.7:443 smac 02:00:00:00:00:01 dmac 00:00:00:00:00:ff "
              "port_id 3 rsvd 4 outer_flow_id 5 spare 0x000000000000000000000000000000ab");
}

// Key types of neither kind, and an IPv4 type over an address that is none, are shown as IPv6.
TEST(FlowKey, ShowsTheKeyTypeWhereTheFlowDoesNotTellIt) {
    flow_swkey_t key = {};
    key.metadata_flow_key_proto = 17;
    key.metadata_flow_key_sip[0] = 1;
    EXPECT_EQ(key_text(key), "udp [::1]:0 -> [::]:0 ktype 0");
    key.metadata_flow_key_ktype = 1;
    EXPECT_EQ(key_text(key), "udp 0.0.0.1:0 -> 0.0.0.0:0");
    key.metadata_flow_key_sip[15] = 0x20;
    EXPECT_EQ(key_text(key), "udp [2000::1]:0 -> [::]:0 ktype 1");
}
