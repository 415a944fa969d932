// Captures imported into the flow table: whatever the bytes, the flows that are there afterwards
// are those of the packets that could be read, with their packets and bytes; and all can be
// deleted.

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <map>
#include <sstream>

#include "fuzz/input.h"
#include "tools/haldenctl/failure.h"
#include "tools/haldenctl/flow_import.h"
#include "tools/haldenctl/flow_store.h"
#include "tools/packets/capture.h"

using namespace halden;
using namespace halden::fuzz;

namespace {

// The bytes under a name, for the import.
class named_bytes {
  public:
    explicit named_bytes(std::string_view bytes) : descriptor_(memfd_create("capture", 0)) {
        require(descriptor_ >= 0 && write(descriptor_, bytes.data(), bytes.size()) ==
                                        static_cast<ssize_t>(bytes.size()),
                "a file in memory takes the bytes");
    }
    ~named_bytes() { close(descriptor_); }
    named_bytes(const named_bytes &) = delete;
    named_bytes &operator=(const named_bytes &) = delete;
    std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

  private:
    int descriptor_;
};

struct counts {
    uint64_t packets = 0, bytes = 0;
    uint32_t last_seen = 0;
    bool operator==(const counts &) const = default;
};
using flows = std::map<std::string, counts>;  // by the bytes of their keys

std::string bytes_of(const flow_swkey_t &key) {
    return {reinterpret_cast<const char *>(&key), sizeof key};
}

flows in_capture(std::string_view bytes) {
    flows out;
    const auto source = [&](char *to, size_t most) {
        const size_t taken = bytes.copy(to, most);
        bytes.remove_prefix(taken);
        return taken;
    };
    packets::read_capture(source, [&](const packets::captured &packet) {
        const packets::dissected found = packets::dissect(packet.bytes, packet.kind);
        require(found.v == packets::verdict::flow_found ||
                    !packets::name_of(found.v, found.type).empty(),
                "a packet is of a flow, or has a name");
        if (found.v != packets::verdict::flow_found) return;
        counts &c = out[bytes_of(packets::key_of(found.f))];
        ++c.packets;
        c.bytes += packet.wire_length;
        c.last_seen =
            std::max(c.last_seen, static_cast<uint32_t>(packet.microseconds.value_or(0) / 1000000));
    });
    return out;
}

// One adapter for all inputs: making its engines takes far longer than an import.
struct gateway {
    tool::options given;
    tool::opened_tables tables{given, host::access::create};
};

std::vector<tool::stored_flow> all_flows(tool::flow_store &store) {
    std::vector<tool::stored_flow> out;
    store.for_each([&](const tool::stored_flow &f, uint32_t) { out.push_back(f); });
    return out;
}

void check_import(gateway &g, const std::string &path, const flows &expected) {
    std::string refused;
    try {
        tool::import_flows(g.tables, path);
    } catch (const tool::failure &error) {
        refused = error.what();  // also for a capture that is cut short, when the rest is in
    }
    require(refused.find("refused") == refused.npos, "so few flows find room");
    flows stored;
    tool::flow_store store(g.tables);
    for (const tool::stored_flow &f : all_flows(store)) {
        require(packets::flow_of(packets::key_of(f.flow)) == f.flow, "a flow comes from its key");
        require(stored
                    .emplace(bytes_of(f.key),
                             counts{f.counts.packets, f.counts.bytes, f.counts.last_seen})
                    .second,
                "a flow is there once");
    }
    require(stored == expected, "the flows of the packets are there, with their counts");
}

void empty(gateway &g) {
    tool::flow_store store(g.tables);
    for (const tool::stored_flow &f : all_flows(store))
        require(store.remove(f) == tool::remove_result::removed, "a flow can be deleted");
    for (const uint32_t table : {tool::flow_info_table, tool::ipfix_ingress_table})
        require((*g.tables).next_used(table, 0) >= (*g.tables).depth(table),
                "its data goes with it");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static gateway g;
    const std::string_view bytes = input(data, size).rest();
    const named_bytes file(bytes);
    flows expected;
    try {
        expected = in_capture(bytes);
    } catch (const std::runtime_error &) {
        return 0;  // no capture
    }
    std::ostringstream printed;
    auto *const out = std::cout.rdbuf(printed.rdbuf()), *const err =
                                                            std::cerr.rdbuf(printed.rdbuf());
    check_import(g, file.path(), expected);
    std::cout.rdbuf(out);
    std::cerr.rdbuf(err);
    empty(g);
    return 0;
}
