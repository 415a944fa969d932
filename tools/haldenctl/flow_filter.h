#pragma once

// Which flows are meant, by the options --proto, --src, --dst, --sport, --dport, --vlan and --vni.

#include <CLI/CLI.hpp>
#include <optional>
#include <string>

#include "tools/packets/dissect.h"

namespace halden::tool {

class flow_filter {
  public:
    // The filter lives as long as the command.
    void add_to(CLI::App *command);

    // Throw failure when an option's value makes no sense.
    bool empty() const;
    bool matches(const packets::flow &f) const;
    // The one flow that is fully given: protocol and both addresses, without prefixes.
    packets::flow whole_flow() const;

  private:
    std::string proto_, source_, destination_;
    std::optional<uint32_t> sport_, dport_, vlan_, vni_;
};

}  // namespace halden::tool
