#include "tools/packets/flow_key.h"

#include <algorithm>

namespace halden::packets {
namespace {

size_t address_bytes(ip_version version) { return version == ip_version::v4 ? 4 : 16; }

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
    f.version = key.metadata_flow_key_ktype == key_type_ipv4 ? ip_version::v4 : ip_version::v6;
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

}  // namespace halden::packets
