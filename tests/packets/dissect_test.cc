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
    const dissected d = dissect(packet, kind);
    return {d.v, d.f};
}
// What a packet without a flow is counted as.
std::string counted_as(const bytes &packet) {
    const dissected d = dissect(packet, link_type::ethernet);
    return name_of(d.v, d.type);
}
bytes first(const bytes &packet, size_t length) {
    return {packet.begin(), packet.begin() + static_cast<std::ptrdiff_t>(length)};
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
    EXPECT_EQ(name_of(verdict::truncated_ipv6), "truncated IPv6 header");
}

TEST(Dissect, NamesWhatIsNotIpByItsType) {
    bytes packet(60);
    const auto typed = [&](uint8_t high, uint8_t low) {
        packet[12] = high;
        packet[13] = low;
        return counted_as(packet);
    };
    EXPECT_EQ(typed(0x08, 0x06), "not IP: ARP, type 0x0806");
    EXPECT_EQ(typed(0x88, 0xcc), "not IP: LLDP, type 0x88cc");
    EXPECT_EQ(typed(0x12, 0x34), "not IP: type 0x1234");
    EXPECT_EQ(typed(0x06, 0x00), "not IP: type 0x0600");
    EXPECT_EQ(typed(0x05, 0xff), "not IP: a length of IEEE 802.3 in place of a type");
}

TEST(Dissect, GeneveAroundWhatIsNoEthernetAndNoIpIsNamedByItsType) {
    bytes geneve = {0, 0, 0x08, 0x00, 0, 0, 7, 0};
    const auto in_geneve = [&](const bytes &inner) {
        return join({ethernet_v4, ipv4_udp, udp_to_geneve, geneve, inner});
    };
    // IP without an Ethernet header.
    auto [v, f] = look(in_geneve(join({ipv4_tcp, tcp})));
    ASSERT_EQ(v, verdict::flow_found);
    EXPECT_EQ(flow_text(f), "tcp 10.1.0.5:51820 -> 192.0.2.7:443 vni 7");
    geneve[2] = 0x86;
    geneve[3] = 0xdd;
    const auto [v6, f6] = look(in_geneve(join({ipv6_tcp, tcp})));
    ASSERT_EQ(v6, verdict::flow_found);
    EXPECT_EQ(flow_text(f6), "tcp [2001:db8::1]:51820 -> [2001:db8::2]:443 vni 7");
    // Types of other protocols, around bytes that would pass for IPv4.
    geneve[2] = 0x88;
    geneve[3] = 0x47;
    EXPECT_EQ(counted_as(in_geneve(join({ipv4_tcp, tcp}))),
              "not IP inside Geneve: MPLS, type 0x8847");
    geneve[2] = geneve[3] = 0;
    EXPECT_EQ(counted_as(in_geneve(join({ipv4_tcp, tcp}))),
              "not IP inside Geneve: a length of IEEE 802.3 in place of a type");
    geneve[2] = 0x65;
    geneve[3] = 0x59;
    EXPECT_EQ(counted_as(in_geneve(join({ipv4_tcp, tcp}))), "not IP inside Geneve: type 0x6559");
    // ARP in a bridged frame.
    geneve[3] = 0x58;
    bytes arp = ethernet_v4;
    arp[13] = 0x06;
    EXPECT_EQ(counted_as(in_geneve(arp)), "not IP: ARP, type 0x0806");
}

TEST(Dissect, TheIpVersionIsThatOfTheType) {
    EXPECT_EQ(look(join({ethernet_v4, ipv6_tcp, tcp})).v, verdict::wrong_ip_version);
    EXPECT_EQ(look(join({ethernet_v6, ipv4_tcp, tcp})).v, verdict::wrong_ip_version);
    EXPECT_EQ(look(join({ethernet_v6, bytes(40)})).v, verdict::bad_ip_version);
    const bytes geneve_v4 = {0, 0, 0x08, 0x00, 0, 0, 7, 0};
    EXPECT_EQ(look(join({ethernet_v4, ipv4_udp, udp_to_geneve, geneve_v4, ipv6_tcp, tcp})).v,
              verdict::wrong_ip_version);
    EXPECT_EQ(look(ethernet_v6).v, verdict::truncated_ipv6);
    EXPECT_EQ(name_of(verdict::wrong_ip_version), "IP version other than the type says");
}

TEST(Dissect, AVxlanHeaderSaysThatItsVniIsValid) {
    const bytes inner = join({ethernet_v4, ipv4_tcp, tcp});
    const auto with_flags = [&](uint8_t flags) {
        return look(
                   join({ethernet_v4, ipv4_udp, udp_to_vxlan, {flags, 0, 0, 0, 0, 0, 9, 0}, inner}))
            .v;
    };
    EXPECT_EQ(with_flags(0x08), verdict::flow_found);
    EXPECT_EQ(with_flags(0xff), verdict::flow_found) << "reserved bits are not looked at";
    EXPECT_EQ(with_flags(0x00), verdict::bad_tunnel_header);
    EXPECT_EQ(with_flags(0xf7), verdict::bad_tunnel_header);
}

TEST(Dissect, AGeneveHeaderIsOfVersionZero) {
    const bytes geneve = {0x40, 0, 0x65, 0x58, 0, 0, 7, 0};
    EXPECT_EQ(
        look(join({ethernet_v4, ipv4_udp, udp_to_geneve, geneve, ethernet_v4, ipv4_tcp, tcp})).v,
        verdict::bad_tunnel_header);
    EXPECT_EQ(name_of(verdict::bad_tunnel_header),
              "VXLAN header without a VNI, or Geneve of another version");
}

// A short snap length: the flow is told by the ports, whatever is missing behind them.
TEST(Dissect, APacketCutBehindItsPortsGivesItsFlow) {
    constexpr size_t ports_end = 14 + 20 + 4;
    const bytes tcp_packet = join({ethernet_v4, ipv4_tcp, tcp});
    for (size_t length = ports_end; length < tcp_packet.size(); ++length) {
        const auto [v, f] = look(first(tcp_packet, length));
        ASSERT_EQ(v, verdict::flow_found) << length;
        EXPECT_EQ(flow_text(f), "tcp 10.1.0.5:51820 -> 192.0.2.7:443");
    }
    EXPECT_EQ(look(first(tcp_packet, ports_end - 1)).v, verdict::truncated_transport);

    const bytes udp_packet = join({ethernet_v4, ipv4_udp, {0, 53, 0, 54, 0, 8, 0, 0}});
    const auto [v, f] = look(first(udp_packet, ports_end));
    ASSERT_EQ(v, verdict::flow_found);
    EXPECT_EQ(flow_text(f), "udp 10.1.0.5:53 -> 192.0.2.7:54");

    const auto [v6, f6] = look(first(join({ethernet_v6, ipv6_tcp, tcp}), 14 + 40 + 4));
    ASSERT_EQ(v6, verdict::flow_found);
    EXPECT_EQ(flow_text(f6), "tcp [2001:db8::1]:51820 -> [2001:db8::2]:443");
}

// The flow of a tunnelled packet is the inner one: the outer ports do not give it.
TEST(Dissect, ATunnelCutInFrontOfItsInnerPortsGivesNoFlow) {
    const bytes vxlan = {0x08, 0, 0, 0, 0, 0, 9, 0};
    const bytes packet =
        join({ethernet_v4, ipv4_udp, udp_to_vxlan, vxlan, ethernet_v4, ipv4_tcp, tcp});
    EXPECT_EQ(look(first(packet, 14 + 20 + 4)).v, verdict::truncated_transport);
    EXPECT_EQ(look(first(packet, 14 + 20 + 8)).v, verdict::truncated_tunnel);
    EXPECT_EQ(look(first(packet, 14 + 20 + 8 + 8)).v, verdict::truncated_ethernet);
    EXPECT_EQ(look(first(packet, 14 + 20 + 8 + 8 + 14 + 20 + 3)).v, verdict::truncated_transport);
    EXPECT_EQ(look(first(packet, 14 + 20 + 8 + 8 + 14 + 20 + 4)).v, verdict::flow_found);
}

TEST(Dissect, IcmpCutBehindWhatDecidesItsFlowGivesIt) {
    const bytes echo = join({ethernet_v4, ipv4_icmp, {8, 0, 0, 0, 0x12, 0x34, 0, 1}});
    EXPECT_EQ(look(first(echo, 34 + 6)).f.source_port, 0x1234);
    EXPECT_EQ(look(first(echo, 34 + 6)).v, verdict::flow_found);
    EXPECT_EQ(look(first(echo, 34 + 5)).v, verdict::truncated_transport);
    const bytes unreachable = join({ethernet_v4, ipv4_icmp, {3, 1, 0, 0, 0, 0, 0, 0}});
    EXPECT_EQ(look(first(unreachable, 34 + 2)).v, verdict::flow_found);
    EXPECT_EQ(look(first(unreachable, 34 + 1)).v, verdict::truncated_transport);
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
        // The ports are the first four bytes of the TCP header.
        EXPECT_EQ(look(cut).v == verdict::flow_found, length >= whole.size() - 16) << length;
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
