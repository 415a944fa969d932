#pragma once

// Which flows are meant, by the options --proto, --src, --dst, --sport, --dport, --vlan and --vni.
//
//     flow_filter_options given;      as long as the command
//     given.add_to(command);
//     ...
//     const flow_filter filter = given.parsed();      before anything is read
//     if (filter.matches(f)) ...

#include <CLI/CLI.hpp>
#include <optional>
#include <string>

#include "tools/packets/dissect.h"

namespace halden::tool {

struct address_prefix {
    packets::ip_version version = packets::ip_version::v4;
    std::array<uint8_t, 16> address = {};
    unsigned length = 0;  // bits
    bool whole() const { return length == (version == packets::ip_version::v4 ? 32 : 128); }
};

struct flow_filter {
    std::optional<uint8_t> proto;
    std::optional<address_prefix> source, destination;
    std::optional<uint16_t> sport, dport, vlan;
    std::optional<uint32_t> vni;

    bool empty() const;
    bool matches(const packets::flow &f) const;
    // The one flow that is fully given: protocol and both addresses, without prefixes. Throws
    // failure for anything else.
    packets::flow whole_flow() const;
};

class flow_filter_options {
  public:
    void add_to(CLI::App *command);
    // Throws failure, of usage, when an option's value makes no sense, an empty one included.
    flow_filter parsed() const;

  private:
    flow_filter values() const;
    struct text_option {
        CLI::Option *option = nullptr;
        std::string text;
        bool given() const { return option->count() > 0; }
    };
    text_option proto_, source_, destination_;
    std::optional<uint32_t> sport_, dport_, vlan_, vni_;
};

// For options that take a number: refuses what is no number of that range, and hands on decimal.
CLI::Validator number_between(uint32_t least, uint32_t most);

}  // namespace halden::tool
