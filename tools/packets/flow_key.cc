#include "tools/packets/flow_key.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace halden::packets {
namespace {

size_t address_bytes(ip_version version) { return version == ip_version::v4 ? 4 : 16; }

template <size_t N>
bool only_low_four(const uint8_t (&address)[N]) {
    return std::all_of(address + 4, address + N, [](uint8_t byte) { return byte == 0; });
}

// Byte 0 last, as people write it.
template <size_t N>
std::string bytes_text(const uint8_t (&bytes)[N], const char *between) {
    std::string out;
    for (size_t i = N; i-- > 0;) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02x", bytes[i]);
        out += (out.empty() ? "" : between) + std::string(digits);
    }
    return out;
}

}  // namespace

flow_swkey_t key_of(const flow &f) {
    flow_swkey_t key = {};
    const auto bytes = static_cast<std::ptrdiff_t>(address_bytes(f.version));
    std::reverse_copy(f.source.begin(), f.source.begin() + bytes, key.metadata_flow_key_sip);
    std::reverse_copy(f.destination.begin(), f.destination.begin() + bytes,
                      key.metadata_flow_key_dip);
    key.metadata_flow_key_proto = f.protocol;
    key.metadata_flow_key_sport = f.source_port;
    key.metadata_flow_key_dport = f.destination_port;
    key.metadata_flow_key_vlan = f.vlan;
    key.metadata_flow_key_vni = f.vni;
    key.metadata_flow_key_ktype = f.version == ip_version::v4 ? key_type_ipv4 : key_type_ipv6;
    return key;
}

flow flow_of(const flow_swkey_t &key) {
    flow f;
    f.version = key.metadata_flow_key_ktype == key_type_ipv4 &&
                        only_low_four(key.metadata_flow_key_sip) &&
                        only_low_four(key.metadata_flow_key_dip)
                    ? ip_version::v4
                    : ip_version::v6;
    const size_t bytes = address_bytes(f.version);
    std::reverse_copy(key.metadata_flow_key_sip, key.metadata_flow_key_sip + bytes,
                      f.source.begin());
    std::reverse_copy(key.metadata_flow_key_dip, key.metadata_flow_key_dip + bytes,
                      f.destination.begin());
    f.protocol = key.metadata_flow_key_proto;
    f.source_port = key.metadata_flow_key_sport;
    f.destination_port = key.metadata_flow_key_dport;
    f.vlan = key.metadata_flow_key_vlan;
    f.vni = key.metadata_flow_key_vni;
    return f;
}

std::string key_text(const flow_swkey_t &key) {
    const flow f = flow_of(key);
    const flow_swkey_t made = key_of(f);
    std::string out = flow_text(f);
    const auto number = [&](const char *name, unsigned value) {
        out += " " + std::string(name) + " " + std::to_string(value);
    };
    constexpr uint8_t no_mac[6] = {};
    const auto mac = [&](const char *name, const uint8_t(&bytes)[6]) {
        if (std::memcmp(bytes, no_mac, sizeof no_mac) != 0)
            out += " " + std::string(name) + " " + bytes_text(bytes, ":");
    };
    if (key.metadata_flow_key_ktype != made.metadata_flow_key_ktype)
        number("ktype", key.metadata_flow_key_ktype);
    mac("smac", key.metadata_flow_key_smac);
    mac("dmac", key.metadata_flow_key_dmac);
    if (key.metadata_flow_key_port_id != 0) number("port_id", key.metadata_flow_key_port_id);
    if (key.metadata_flow_key_rsvd != 0) number("rsvd", key.metadata_flow_key_rsvd);
    if (key.metadata_flow_key_outer_flow_id != 0)
        number("outer_flow_id", key.metadata_flow_key_outer_flow_id);
    if (std::memcmp(key.metadata_flow_key_spare, made.metadata_flow_key_spare,
                    sizeof key.metadata_flow_key_spare) != 0)
        out += " spare 0x" + bytes_text(key.metadata_flow_key_spare, "");
    return out;
}

}  // namespace halden::packets
