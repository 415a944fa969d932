#pragma once

// Reading and writing capture files (pcap and pcapng are read, pcap is written), by libpcap.

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>

#include "tools/packets/dissect.h"

namespace halden::packets {

struct captured {
    std::span<const uint8_t> bytes;  // what the capture kept; lives as long as the call
    uint32_t wire_length = 0;        // what was on the wire
    uint64_t microseconds = 0;       // since 1970
    link_type kind = link_type::ethernet;
};

struct capture_result {
    uint64_t packets = 0;
    // Empty when the file was read to its end; else why it was not, e.g. "truncated dump file". The
    // packets in front of that were delivered.
    std::string cut_short;
};

// Calls `each` for every packet in file order. Throws std::runtime_error with the path and the
// reason when the file cannot be opened, is no capture, or is of a link type other than Ethernet
// and raw IP.
capture_result read_capture(const std::string &path,
                            const std::function<void(const captured &)> &each);

// An Ethernet capture that is being written. Throws std::runtime_error with the path and the
// reason.
class capture_writer {
  public:
    explicit capture_writer(const std::string &path);
    ~capture_writer();
    capture_writer(const capture_writer &) = delete;
    capture_writer &operator=(const capture_writer &) = delete;

    void put(std::span<const uint8_t> frame, uint64_t microseconds);
    // Writes what is buffered; without it a full disk goes unnoticed.
    void close();

  private:
    struct handles;
    std::string path_;
    std::unique_ptr<handles> handles_;
};

}  // namespace halden::packets
