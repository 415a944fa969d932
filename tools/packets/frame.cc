#include "tools/packets/frame.h"

#include <numeric>
#include <utility>

#include "tools/packets/protocols.h"

namespace halden::packets {
namespace {

uint32_t sum_words(const uint8_t *bytes, size_t count, uint32_t sum) {
    for (size_t i = 0; i + 1 < count; i += 2)
        sum += static_cast<uint32_t>(bytes[i] << 8 | bytes[i + 1]);
    if (count % 2 != 0) sum += static_cast<uint32_t>(bytes[count - 1] << 8);
    return sum;
}

uint16_t folded(uint32_t sum) {
    while (sum >> 16 != 0) sum = (sum & 0xffff) + (sum >> 16);
    return static_cast<uint16_t>(~sum);
}

}  // namespace

void frame::put16(size_t at, uint16_t value) {
    bytes_[at] = static_cast<uint8_t>(value >> 8);
    bytes_[at + 1] = static_cast<uint8_t>(value);
}

void frame::add16(uint16_t value) {
    bytes_.push_back(static_cast<uint8_t>(value >> 8));
    bytes_.push_back(static_cast<uint8_t>(value));
}

void frame::follow(uint16_t ethertype) {
    if (ethertype_at_ != 0) put16(ethertype_at_, ethertype);
}

frame &frame::ethernet(const ethernet_ends &ends) {
    bytes_.insert(bytes_.end(), ends.destination.begin(), ends.destination.end());
    bytes_.insert(bytes_.end(), ends.source.begin(), ends.source.end());
    ethertype_at_ = bytes_.size();
    add16(0);
    return *this;
}

frame &frame::vlan(uint16_t id) {
    follow(ethertype_vlan);
    add16(id);
    ethertype_at_ = bytes_.size();
    add16(0);
    return *this;
}

frame &frame::ip(const ipv4 &source, const ipv4 &destination, uint8_t protocol) {
    follow(ethertype_ipv4);
    headers_.push_back({part::ip_v4, bytes_.size(), 0});
    const uint8_t start[] = {0x45, 0, 0, 0, 0, 0, 0x40, 0, 64, protocol, 0, 0};
    bytes_.insert(bytes_.end(), std::begin(start), std::end(start));
    bytes_.insert(bytes_.end(), source.begin(), source.end());
    bytes_.insert(bytes_.end(), destination.begin(), destination.end());
    return *this;
}

frame &frame::ip(const ipv6 &source, const ipv6 &destination, uint8_t protocol) {
    follow(ethertype_ipv6);
    headers_.push_back({part::ip_v6, bytes_.size(), 0});
    const uint8_t start[] = {0x60, 0, 0, 0, 0, 0, protocol, 64};
    bytes_.insert(bytes_.end(), std::begin(start), std::end(start));
    bytes_.insert(bytes_.end(), source.begin(), source.end());
    bytes_.insert(bytes_.end(), destination.begin(), destination.end());
    return *this;
}

void frame::transport(part what) { headers_.push_back({what, bytes_.size(), headers_.back().at}); }

frame &frame::tcp(uint16_t source, uint16_t destination, uint8_t flags) {
    transport(part::tcp);
    add16(source);
    add16(destination);
    const uint8_t rest[] = {0, 0, 0, 1, 0, 0, 0, 1, 0x50, flags, 0xff, 0xff, 0, 0, 0, 0};
    bytes_.insert(bytes_.end(), std::begin(rest), std::end(rest));
    return *this;
}

frame &frame::udp(uint16_t source, uint16_t destination) {
    transport(part::udp);
    add16(source);
    add16(destination);
    add16(0);
    add16(0);
    return *this;
}

frame &frame::icmp_echo(uint8_t type, uint16_t identifier, uint16_t sequence) {
    transport(part::icmp);
    add16(static_cast<uint16_t>(type << 8));
    add16(0);
    add16(identifier);
    add16(sequence);
    return *this;
}

frame &frame::vxlan(uint32_t vni) {
    add16(0x0800);
    add16(0);
    add16(static_cast<uint16_t>(vni >> 8));
    add16(static_cast<uint16_t>(vni << 8));
    return *this;
}

frame &frame::geneve(uint32_t vni) {
    add16(0);
    add16(ethertype_bridged_ethernet);
    add16(static_cast<uint16_t>(vni >> 8));
    add16(static_cast<uint16_t>(vni << 8));
    return *this;
}

frame &frame::payload(size_t bytes) {
    const size_t at = bytes_.size();
    bytes_.resize(at + bytes);
    std::iota(bytes_.begin() + static_cast<std::ptrdiff_t>(at), bytes_.end(), uint8_t{0});
    return *this;
}

uint32_t frame::pseudo_header(const header &h, size_t bytes) const {
    const uint8_t *ip = bytes_.data() + h.ip_at;
    const bool v4 = ip[0] >> 4 == 4;
    const uint32_t protocol = v4 ? ip[9] : ip[6];
    const auto length = static_cast<uint32_t>(bytes);
    return sum_words(ip + (v4 ? 12 : 8), v4 ? 8 : 32, protocol + length);
}

void frame::finish(const header &h) {
    uint8_t *const start = bytes_.data() + h.at;
    const size_t length = bytes_.size() - h.at;
    const auto length16 = static_cast<uint16_t>(length);
    switch (h.what) {
        case part::ip_v4:
            put16(h.at + 2, length16);
            put16(h.at + 10, folded(sum_words(start, 20, 0)));
            break;
        case part::ip_v6:
            put16(h.at + 4, static_cast<uint16_t>(length - 40));
            break;
        case part::tcp:
            put16(h.at + 16, folded(sum_words(start, length, pseudo_header(h, length))));
            break;
        case part::udp: {
            put16(h.at + 4, length16);
            const uint16_t sum = folded(sum_words(start, length, pseudo_header(h, length)));
            put16(h.at + 6, sum == 0 ? uint16_t{0xffff} : sum);
            break;
        }
        case part::icmp: {
            // ICMPv6 counts the pseudo header, ICMP does not.
            const bool v6 = bytes_[h.ip_at] >> 4 == 6;
            put16(h.at + 2, folded(sum_words(start, length, v6 ? pseudo_header(h, length) : 0)));
            break;
        }
    }
}

std::vector<uint8_t> frame::take() {
    // From the inside out: an outer checksum covers the inner ones.
    for (auto h = headers_.rbegin(); h != headers_.rend(); ++h) finish(*h);
    headers_.clear();
    ethertype_at_ = 0;
    return std::exchange(bytes_, {});
}

}  // namespace halden::packets
