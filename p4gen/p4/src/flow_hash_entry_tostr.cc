#include <cstdio>

#include "ftl/flow_hash_entry.h"

namespace lay = flow_layout;

namespace {

template <lay::range R>
unsigned long number(const uint8_t *body) {
    return lay::get_bits<R>(body);
}

unsigned long hint(const uint8_t *body, uint32_t slot) {
    return lay::read_bits(body, lay::hints[slot]);
}

unsigned long hash(const uint8_t *body, uint32_t slot) {
    return lay::read_bits(body, lay::hashes[slot]);
}

#define SIXTEEN_BYTES \
    "%02x:%02x:%02x:%02x:%02x:%02x:%02x:%02x:%02x:%02x:%02x:%02x:%02x:%02x:%02x:%02x"
#define EACH_BYTE(p)                                                                               \
    p[0], p[1], p[2], p[3], p[4], p[5], p[6], p[7], p[8], p[9], p[10], p[11], p[12], p[13], p[14], \
        p[15]

int print_key(char *buf, size_t room, const uint8_t *body) {
    const uint8_t *spare = lay::bytes_of<lay::metadata_flow_key_spare>(body);
    const uint8_t *dip = lay::bytes_of<lay::metadata_flow_key_dip>(body);
    const uint8_t *sip = lay::bytes_of<lay::metadata_flow_key_sip>(body);
    return std::snprintf(
        buf, room,
        "key: metadata_flow_key_spare:" SIXTEEN_BYTES
        ", metadata_flow_key_proto: %lu, metadata_flow_key_vlan: %lu, metadata_flow_key_vni: %lu"
        ", metadata_flow_key_outer_flow_id: %lu, metadata_flow_key_rsvd: %lu"
        ", metadata_flow_key_port_id: %lu, metadata_flow_key_ktype: %lu"
        ", metadata_flow_key_dmac: %lu, metadata_flow_key_smac: %lu"
        ", metadata_flow_key_dport: %lu, metadata_flow_key_sport: %lu"
        ", metadata_flow_key_dip:" SIXTEEN_BYTES ", metadata_flow_key_sip:" SIXTEEN_BYTES,
        EACH_BYTE(spare), number<lay::metadata_flow_key_proto>(body),
        number<lay::metadata_flow_key_vlan>(body), number<lay::metadata_flow_key_vni>(body),
        number<lay::metadata_flow_key_outer_flow_id>(body),
        number<lay::metadata_flow_key_rsvd>(body), number<lay::metadata_flow_key_port_id>(body),
        number<lay::metadata_flow_key_ktype>(body), number<lay::metadata_flow_key_dmac>(body),
        number<lay::metadata_flow_key_smac>(body), number<lay::metadata_flow_key_dport>(body),
        number<lay::metadata_flow_key_sport>(body), EACH_BYTE(dip), EACH_BYTE(sip));
}

int print_data(char *buf, size_t room, const uint8_t *body) {
    return std::snprintf(
        buf, room,
        "data: flow_idx: %lu, hash1: %lu, hint1: %lu, hash2: %lu, hint2: %lu, hash3: %lu, "
        "hint3: %lu, hash4: %lu, hint4: %lu, hash5: %lu, hint5: %lu, hash6: %lu, hint6: %lu, "
        "hash7: %lu, hint7: %lu, hash8: %lu, hint8: %lu, more_hashes: %lu, more_hints: %lu, "
        "entry_valid: %lu",
        number<lay::flow_idx>(body), hash(body, 1), hint(body, 1), hash(body, 2), hint(body, 2),
        hash(body, 3), hint(body, 3), hash(body, 4), hint(body, 4), hash(body, 5), hint(body, 5),
        hash(body, 6), hint(body, 6), hash(body, 7), hint(body, 7), hash(body, 8), hint(body, 8),
        number<lay::more_hashes>(body), number<lay::more_hints>(body),
        number<lay::entry_valid>(body));
}

// A formatter result that says the text was neither refused nor cut.
bool fitted(int result, size_t room) { return result >= 0 && static_cast<size_t>(result) < room; }

}  // namespace

int flow_hash_entry_t::tostr(char *buf, uint32_t len) {
    size_t room = len;
    int result = print_key(buf, room, body_);
    if (!fitted(result, room)) return result;

    buf += result;
    room -= static_cast<size_t>(result);
    result = std::snprintf(buf, room, ", ");
    if (!fitted(result, room)) return result;

    buf += result;
    room -= static_cast<size_t>(result);
    return print_data(buf, room, body_);
}
