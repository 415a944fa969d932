#include "tools/haldenctl/flow_filter.h"

#include <arpa/inet.h>

#include "tools/haldenctl/failure.h"
#include "tools/haldenctl/value.h"

namespace halden::tool {

namespace {

uint8_t protocol_of(const std::string &text) {
    for (unsigned number = 0; number < 256; ++number)
        if (packets::protocol_text(static_cast<uint8_t>(number)) == text)
            return static_cast<uint8_t>(number);
    try {
        return static_cast<uint8_t>(parse_value(text, 8));
    } catch (const failure &) {
        throw failure("--proto: '" + quotable(text) +
                      "' is no protocol; allowed: tcp, udp, icmp, icmp6 or 0 to 255");
    }
}

address_prefix prefix_of(const char *option, const std::string &text) {
    address_prefix out;
    const size_t slash = text.find('/');
    const std::string address = text.substr(0, slash);
    out.version =
        address.find(':') == address.npos ? packets::ip_version::v4 : packets::ip_version::v6;
    const bool v4 = out.version == packets::ip_version::v4;
    const unsigned most = v4 ? 32 : 128;
    if (inet_pton(v4 ? AF_INET : AF_INET6, address.c_str(), out.address.data()) != 1)
        throw failure(std::string(option) + ": '" + quotable(address) +
                      "' is no IP address; allowed: 192.0.2.1, 192.0.2.0/24, 2001:db8::/32");
    out.length = most;
    if (slash == text.npos) return out;
    try {
        out.length = prefix_length(std::string_view(text).substr(slash + 1), most);
    } catch (const failure &error) {
        throw error.inside(option);
    }
    return out;
}

bool within(const address_prefix &p, packets::ip_version version,
            const std::array<uint8_t, 16> &address) {
    if (version != p.version) return false;
    for (unsigned bit = 0; bit < p.length; ++bit) {
        const unsigned shift = 7 - bit % 8;
        if ((address[bit / 8] >> shift & 1) != (p.address[bit / 8] >> shift & 1)) return false;
    }
    return true;
}

}  // namespace

CLI::Validator number_between(uint32_t least, uint32_t most) {
    const std::string range = std::to_string(least) + " to " + std::to_string(most);
    return CLI::Validator(
        [least, most, range](std::string &text) {
            try {
                const wide value = parse_value(text, 32);
                if (value < least || value > most) throw failure("out of range");
                text = decimal(value);
                return std::string();
            } catch (const failure &) {
                return "'" + quotable(text) + "' was given; allowed: " + range;
            }
        },
        range, "");
}

void flow_filter_options::add_to(CLI::App *command) {
    constexpr uint32_t most_port = 65535, most_vlan = 4095, most_vni = 16777215;
    proto_.option = command->add_option("--proto", proto_.text, "tcp, udp, icmp, icmp6 or a number")
                        ->type_name("P");
    source_.option = command->add_option("--src", source_.text, "Source address or prefix")
                         ->type_name("IP[/LEN]");
    destination_.option =
        command->add_option("--dst", destination_.text, "Destination address or prefix")
            ->type_name("IP[/LEN]");
    command->add_option("--sport", sport_, "Source port")
        ->type_name("PORT")
        ->transform(number_between(0, most_port));
    command->add_option("--dport", dport_, "Destination port")
        ->type_name("PORT")
        ->transform(number_between(0, most_port));
    command->add_option("--vlan", vlan_, "VLAN identifier, 0 for none")
        ->type_name("ID")
        ->transform(number_between(0, most_vlan));
    command->add_option("--vni", vni_, "Virtual network, 0 outside tunnels")
        ->type_name("ID")
        ->transform(number_between(0, most_vni));
}

flow_filter flow_filter_options::parsed() const {
    return typed([&] { return values(); });
}

flow_filter flow_filter_options::values() const {
    flow_filter out;
    if (proto_.given()) out.proto = protocol_of(proto_.text);
    if (source_.given()) out.source = prefix_of("--src", source_.text);
    if (destination_.given()) out.destination = prefix_of("--dst", destination_.text);
    if (out.source && out.destination && out.source->version != out.destination->version)
        throw failure("--src " + quotable(source_.text) + " and --dst " +
                      quotable(destination_.text) + " are of different IP versions");
    const auto narrow = [](const std::optional<uint32_t> &number) {
        return number ? std::optional(static_cast<uint16_t>(*number)) : std::nullopt;
    };
    out.sport = narrow(sport_);
    out.dport = narrow(dport_);
    out.vlan = narrow(vlan_);
    out.vni = vni_;
    return out;
}

bool flow_filter::empty() const {
    return !proto && !source && !destination && !sport && !dport && !vlan && !vni;
}

bool flow_filter::matches(const packets::flow &f) const {
    return (!proto || *proto == f.protocol) && (!source || within(*source, f.version, f.source)) &&
           (!destination || within(*destination, f.version, f.destination)) &&
           (!sport || *sport == f.source_port) && (!dport || *dport == f.destination_port) &&
           (!vlan || *vlan == f.vlan) && (!vni || *vni == f.vni);
}

packets::flow flow_filter::whole_flow() const {
    if (!proto || !source || !destination)
        throw CLI::ValidationError("flows find", "--proto, --src and --dst are required");
    if (!source->whole() || !destination->whole())
        throw failure("a prefix names many flows; `haldenctl flows list` shows them",
                      exit_status::usage);
    packets::flow out;
    out.version = source->version;
    out.source = source->address;
    out.destination = destination->address;
    out.protocol = *proto;
    out.source_port = sport.value_or(0);
    out.destination_port = dport.value_or(0);
    out.vlan = vlan.value_or(0);
    out.vni = vni.value_or(0);
    return out;
}

}  // namespace halden::tool
