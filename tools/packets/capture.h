#pragma once

// Reading and writing capture files (pcap and pcapng are read, pcap is written), by libpcap.

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "tools/packets/dissect.h"

namespace halden::packets {

struct captured {
    std::span<const uint8_t> bytes;  // what the capture kept; lives as long as the call
    uint32_t wire_length = 0;        // what was on the wire
    // Since 1970. Nothing for a time that is none: seconds beyond 32 bits, or 1000000 microseconds
    // and more.
    std::optional<uint64_t> microseconds;
    link_type kind = link_type::ethernet;
};

struct capture_result {
    uint64_t packets = 0;
    // Empty when the file was read to its end; else why it was not and where, e.g. "packet 3, at
    // byte 120: truncated dump file; ...". The packets in front of that were delivered.
    std::string cut_short;
};

// Gives up to `most` bytes of a capture file; 0 at its end.
using byte_source = std::function<size_t(char *to, size_t most)>;

// Calls `each` for every packet in file order. Throws std::runtime_error with the reason when the
// file is no capture or is of a link type other than Ethernet and raw IP, and whatever the source
// throws.
capture_result read_capture(const byte_source &source,
                            const std::function<void(const captured &)> &each);

// An Ethernet capture that is being written. Throws std::runtime_error with the path and the
// reason.
//
// A file gets its name when it is whole: until close() it is called PATH.XXXXXX, with six letters
// of chance, and an end before that removes it; only a process that is killed or has no
// memory left leaves it. What is no file (a
// pipe, /dev/stdout) is written as it comes, and so is standard output, which is called "-".
class capture_writer {
  public:
    explicit capture_writer(const std::string &path);
    ~capture_writer();
    capture_writer(const capture_writer &) = delete;
    capture_writer &operator=(const capture_writer &) = delete;

    void put(std::span<const uint8_t> frame, uint64_t microseconds);
    // Writes what is buffered, and gives the file its name.
    void close();

  private:
    struct handles;
    int open_target();

    std::string path_;
    std::string final_name_, temporary_name_;  // empty for what is no file
    std::unique_ptr<handles> handles_;
};

}  // namespace halden::packets
