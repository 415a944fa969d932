#include "tools/haldenctl/flow_filter.h"

#include <arpa/inet.h>

#include "tools/haldenctl/failure.h"
#include "tools/haldenctl/value.h"

namespace halden::tool {

namespace {

struct prefix {
    packets::ip_version version;
    std::array<uint8_t, 16> address = {};
    unsigned length = 0;
    unsigned most = 0;
};

uint8_t protocol_of(const std::string &text) {
    for (unsigned number = 0; number < 256; ++number)
        if (packets::protocol_text(static_cast<uint8_t>(number)) == text)
            return static_cast<uint8_t>(number);
    try {
        return static_cast<uint8_t>(parse_value(text, 8));
    } catch (const failure &) {
        throw failure("--proto: '" + text +
                      "' is no protocol; allowed: tcp, udp, icmp, icmp6 or 0 to 255");
    }
}

prefix prefix_of(const char *option, const std::string &text) {
    prefix out;
    const size_t slash = text.find('/');
    const std::string address = text.substr(0, slash);
    out.version =
        address.find(':') == address.npos ? packets::ip_version::v4 : packets::ip_version::v6;
    const bool v4 = out.version == packets::ip_version::v4;
    out.most = v4 ? 32 : 128;
    if (inet_pton(v4 ? AF_INET : AF_INET6, address.c_str(), out.address.data()) != 1)
        throw failure(std::string(option) + ": '" + address +
                      "' is no IP address; allowed: 192.0.2.1, 192.0.2.0/24, 2001:db8::/32");
    out.length = out.most;
    if (slash != text.npos) {
        try {
            out.length = static_cast<unsigned>(parse_value(text.substr(slash + 1), 8));
        } catch (const failure &) {
            out.length = out.most + 1;
        }
    }
    if (out.length > out.most)
        throw failure(std::string(option) + ": " + text.substr(slash) +
                      " is no prefix length; allowed: 0 to " + std::to_string(out.most));
    return out;
}

bool within(const prefix &p, packets::ip_version version, const std::array<uint8_t, 16> &address) {
    if (version != p.version) return false;
    for (unsigned bit = 0; bit < p.length; ++bit) {
        const unsigned shift = 7 - bit % 8;
        if ((address[bit / 8] >> shift & 1) != (p.address[bit / 8] >> shift & 1)) return false;
    }
    return true;
}

}  // namespace

void flow_filter::add_to(CLI::App *command) {
    constexpr uint32_t most_port = 65535, most_vlan = 4095, most_vni = 16777215;
    command->add_option("--proto", proto_, "tcp, udp, icmp, icmp6 or a number")->type_name("P");
    command->add_option("--src", source_, "Source address or prefix")->type_name("IP[/LEN]");
    command->add_option("--dst", destination_, "Destination address or prefix")
        ->type_name("IP[/LEN]");
    command->add_option("--sport", sport_, "Source port")
        ->type_name("PORT")
        ->check(CLI::Range(0u, most_port));
    command->add_option("--dport", dport_, "Destination port")
        ->type_name("PORT")
        ->check(CLI::Range(0u, most_port));
    command->add_option("--vlan", vlan_, "VLAN identifier, 0 for none")
        ->type_name("ID")
        ->check(CLI::Range(0u, most_vlan));
    command->add_option("--vni", vni_, "Virtual network, 0 outside tunnels")
        ->type_name("ID")
        ->check(CLI::Range(0u, most_vni));
}

bool flow_filter::empty() const {
    return proto_.empty() && source_.empty() && destination_.empty() && !sport_ && !dport_ &&
           !vlan_ && !vni_;
}

bool flow_filter::matches(const packets::flow &f) const {
    if (!proto_.empty() && protocol_of(proto_) != f.protocol) return false;
    if (!source_.empty() && !within(prefix_of("--src", source_), f.version, f.source)) return false;
    if (!destination_.empty() &&
        !within(prefix_of("--dst", destination_), f.version, f.destination))
        return false;
    return (!sport_ || *sport_ == f.source_port) && (!dport_ || *dport_ == f.destination_port) &&
           (!vlan_ || *vlan_ == f.vlan) && (!vni_ || *vni_ == f.vni);
}

packets::flow flow_filter::whole_flow() const {
    if (proto_.empty() || source_.empty() || destination_.empty())
        throw CLI::ValidationError("flows find", "--proto, --src and --dst are required");
    const prefix source = prefix_of("--src", source_);
    const prefix destination = prefix_of("--dst", destination_);
    if (source.length != source.most || destination.length != destination.most)
        throw failure("a prefix names many flows; `haldenctl flows list` shows them");
    if (source.version != destination.version)
        throw failure("--src " + source_ + " and --dst " + destination_ +
                      " are of different IP versions");
    packets::flow out;
    out.version = source.version;
    out.source = source.address;
    out.destination = destination.address;
    out.protocol = protocol_of(proto_);
    out.source_port = static_cast<uint16_t>(sport_.value_or(0));
    out.destination_port = static_cast<uint16_t>(dport_.value_or(0));
    out.vlan = static_cast<uint16_t>(vlan_.value_or(0));
    out.vni = vni_.value_or(0);
    return out;
}

}  // namespace halden::tool
