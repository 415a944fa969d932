// Flow filters: options of any text are refused, or mean the flows that a slow reading of the same
// texts means.

#include <arpa/inet.h>

#include <algorithm>
#include <cctype>

#include "fuzz/input.h"
#include "tools/haldenctl/failure.h"
#include "tools/haldenctl/flow_filter.h"

using namespace halden;
using namespace halden::fuzz;

namespace {

constexpr const char *options[] = {"--proto", "--src",  "--dst", "--sport",
                                   "--dport", "--vlan", "--vni"};
constexpr size_t option_count = std::size(options);

// A number as the options take it, digit by digit.
uint64_t number(const std::string &text) {
    uint64_t value = 0, base = 10;
    size_t at = 0;
    if (text.size() > 2 && text[0] == '0' && std::string_view("xXbB").find(text[1]) < 4) {
        base = text[1] == 'x' || text[1] == 'X' ? 16 : 2;
        at = 2;
    }
    for (; at < text.size(); ++at)
        if (text[at] != '_')
            value = value * base + std::string_view("0123456789abcdef")
                                       .find(static_cast<char>(std::tolower(text[at])));
    return value;
}

std::string bits_of(const uint8_t *bytes, size_t count) {
    std::string out;
    for (size_t n = 0; n < 8 * count; ++n)
        out += static_cast<char>('0' + (bytes[n / 8] >> (7 - n % 8) & 1));
    return out;
}

// Whether the address is of that version, and begins with as many bits of the prefix.
bool within(const std::string &text, const packets::flow &f,
            const std::array<uint8_t, 16> &address) {
    const size_t slash = text.find('/');
    const bool v4 = text.find(':') == text.npos;
    if (v4 != (f.version == packets::ip_version::v4)) return false;
    std::array<uint8_t, 16> prefix = {};
    require(inet_pton(v4 ? AF_INET : AF_INET6, text.substr(0, slash).c_str(), prefix.data()) == 1,
            "an accepted address is one");
    const size_t bytes = v4 ? 4 : 16;
    const size_t length = slash == text.npos ? 8 * bytes : std::stoul(text.substr(slash + 1));
    require(length <= 8 * bytes, "an accepted prefix is no longer than an address");
    return bits_of(prefix.data(), bytes).substr(0, length) ==
           bits_of(address.data(), bytes).substr(0, length);
}

bool matches(size_t option, const std::string &text, const packets::flow &f) {
    switch (option) {
        case 0:
            if (!std::isdigit(static_cast<unsigned char>(text[0])))
                return text == packets::protocol_text(f.protocol);
            return number(text) == f.protocol;
        case 1:
            return within(text, f, f.source);
        case 2:
            return within(text, f, f.destination);
        case 3:
            return number(text) == f.source_port;
        case 4:
            return number(text) == f.destination_port;
        case 5:
            return number(text) == f.vlan;
        default:
            return number(text) == f.vni;
    }
}

packets::flow taken(input &in) {
    packets::flow f;
    const bool v4 = in.take<uint8_t>() % 2 == 0;
    f.version = v4 ? packets::ip_version::v4 : packets::ip_version::v6;
    for (size_t n = 0; n < (v4 ? 4 : 16); ++n) f.source[n] = in.take<uint8_t>();
    for (size_t n = 0; n < (v4 ? 4 : 16); ++n) f.destination[n] = in.take<uint8_t>();
    f.protocol = in.take<uint8_t>();
    f.source_port = in.take<uint16_t>();
    f.destination_port = in.take<uint16_t>();
    f.vlan = in.take<uint16_t>() % 4096;
    f.vni = in.take<uint32_t>() % 16777216;
    return f;
}

}  // namespace

// A flow, then the options in their order, a line each; an empty line leaves one out.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    input in(data, size);
    const packets::flow f = taken(in);
    std::string rest(in.rest());
    if (rest.find('\0') != rest.npos) return 0;  // no argument has one
    std::vector<std::pair<size_t, std::string>> given;
    std::vector<std::string> arguments;
    for (size_t n = 0; n < option_count && !rest.empty(); ++n) {
        const std::string text = rest.substr(0, rest.find('\n'));
        rest.erase(0, text.size() + 1);
        if (text.empty()) continue;
        given.emplace_back(n, text);
        arguments.push_back(std::string(options[n]) + "=" + text);
    }
    CLI::App app;
    tool::flow_filter_options wanted;
    wanted.add_to(&app);
    try {
        std::reverse(arguments.begin(), arguments.end());  // as CLI11 takes them
        app.parse(arguments);
        const tool::flow_filter filter = wanted.parsed();
        require(filter.empty() == given.empty(), "a filter is empty when nothing was given");
        bool expected = true;
        for (const auto &[option, text] : given) expected = expected && matches(option, text, f);
        require(filter.matches(f) == expected, "a filter matches what its texts say");
        if (filter.proto && filter.source && filter.destination && filter.source->whole() &&
            filter.destination->whole())
            require(filter.matches(filter.whole_flow()), "a filter matches the flow that it names");
    } catch (const tool::failure &error) {
        require(tool::printable(error.what()) == error.what(),
                "an error leaves the terminal alone");
    } catch (const CLI::ParseError &) {
    }
    return 0;
}
