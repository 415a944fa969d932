#pragma once

// Traffic as a gateway might see it, for a capture to try things on: conversations of TCP, UDP and
// ICMP over IPv4 and IPv6, some on VLANs, some inside VXLAN or Geneve tunnels between two sites, a
// few frames that are not IP. A seed always makes the same packets.

#include <cstdint>
#include <functional>

#include "tools/packets/capture.h"

namespace halden::packets {

struct traffic_made {
    uint64_t packets = 0;
    uint64_t conversations = 0;  // each has a flow in either direction
    uint64_t other_frames = 0;   // that carry no IP packet
};

// Writes about `packets` packets: conversations are not cut short. `in_between` is called in front
// of each; an end before all are written is for it to throw.
traffic_made make_traffic(
    capture_writer &out, uint64_t packets, uint32_t seed,
    const std::function<void()> &in_between = [] {});

}  // namespace halden::packets
