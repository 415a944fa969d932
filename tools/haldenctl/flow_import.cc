#include "tools/haldenctl/flow_import.h"

#include <algorithm>
#include <chrono>
#include <iostream>
#include <map>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/engines/flow/ftl_access.h"
#include "tools/haldenctl/failure.h"
#include "tools/haldenctl/flow_store.h"
#include "tools/haldenctl/flow_words.h"
#include "tools/haldenctl/input_file.h"
#include "tools/haldenctl/interrupt.h"
#include "tools/packets/capture.h"

namespace halden::tool {

namespace {

struct flow_hasher {
    size_t operator()(const packets::flow &f) const {
        const flow_swkey_t key = packets::key_of(f);
        return std::hash<std::string_view>{}({reinterpret_cast<const char *>(&key), sizeof key});
    }
};

struct seen_packets {
    std::unordered_map<packets::flow, flow_counts, flow_hasher> flows;
    std::vector<const packets::flow *> in_order;  // of their first packets
    // Packets without a flow, by why they have none and the type of what is no IP.
    std::map<std::pair<packets::verdict, uint16_t>, uint64_t> unread;
    uint64_t packets = 0, bytes = 0;
    uint64_t timed = 0;                       // packets with a time
    uint64_t first = ~uint64_t{0}, last = 0;  // microseconds
    std::string cut_short;
};

uint32_t seconds_of(const packets::captured &packet) {
    return static_cast<uint32_t>(packet.microseconds.value_or(0) / 1000000);
}

seen_packets read_packets(const input_file &file) {
    seen_packets out;
    const auto source = [&](char *to, size_t most) { return file.read(to, most); };
    const auto result = packets::read_capture(source, [&](const packets::captured &packet) {
        stop_if_told();
        ++out.packets;
        out.bytes += packet.wire_length;
        if (packet.microseconds) {
            ++out.timed;
            out.first = std::min(out.first, *packet.microseconds);
            out.last = std::max(out.last, *packet.microseconds);
        }
        const packets::dissected found = packets::dissect(packet.bytes, packet.kind);
        if (found.v != packets::verdict::flow_found) {
            ++out.unread[{found.v, found.type}];
            return;
        }
        const auto [at, fresh] = out.flows.try_emplace(found.f);
        if (fresh) out.in_order.push_back(&at->first);
        ++at->second.packets;
        at->second.bytes += packet.wire_length;
        at->second.last_seen = std::max(at->second.last_seen, seconds_of(packet));
    });
    out.cut_short = result.cut_short;
    return out;
}

void print_unread(const seen_packets &seen) {
    constexpr size_t most_lines = 16;
    if (seen.unread.empty()) return;
    using line = std::pair<uint64_t, std::string>;
    std::vector<line> lines;
    uint64_t all = 0;
    for (const auto &[why, count] : seen.unread) {
        lines.emplace_back(count, packets::name_of(why.first, why.second));
        all += count;
    }
    std::stable_sort(lines.begin(), lines.end(),
                     [](const line &a, const line &b) { return a.first > b.first; });
    uint64_t shown = 0;
    std::cout << "  " << counted(all, "packet", "packets") << " without a flow:\n";
    for (size_t i = 0; i < lines.size() && i < most_lines; ++i) {
        std::cout << "    " << lines[i].first << "  " << lines[i].second << "\n";
        shown += lines[i].first;
    }
    if (shown != all)
        std::cout << "    " << all - shown << "  of " << lines.size() - most_lines
                  << " other kinds\n";
}

std::string tenths_text(uint64_t tenths) {
    return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " s";
}

void print_packets(const std::string &name, const seen_packets &seen) {
    std::cout << printable(name) << ": " << counted(seen.packets, "packet", "packets") << ", "
              << counted(seen.bytes, "byte", "bytes");
    if (seen.timed > 1)
        std::cout << ", captured over " << tenths_text((seen.last - seen.first) / 100000);
    std::cout << "\n";
    if (const uint64_t rest = seen.packets - seen.timed; rest != 0)
        std::cout << "  " << counted(rest, "packet", "packets")
                  << " with an impossible time, which is left out\n";
    print_unread(seen);
}

seen_packets packets_of(const std::string &path, const std::string &name) {
    try {
        const input_file file = path == "-" ? input_file::standard_input() : input_file(path);
        try {
            return read_packets(file);
        } catch (const std::runtime_error &error) {
            throw failure(name + ": " + error.what());
        }
    } catch (const stopped &) {
        stop(name + ": nothing of it was imported");
    }
}

}  // namespace

void import_flows(opened_tables &tables, const std::string &path) {
    const auto begin = std::chrono::steady_clock::now();
    const std::string name = path == "-" ? "standard input" : path;
    const seen_packets seen = packets_of(path, name);
    print_packets(name, seen);

    flow_store store(tables);
    uint64_t added = 0, known = 0, done = 0;
    named_flows refused, without_row, without_room;
    for (const packets::flow *f : seen.in_order) {
        if (told_to_stop())
            stop(name + ": " + std::to_string(done) + " of its " +
                 counted(seen.in_order.size(), "flow", "flows") + " were imported");
        note_done(done++);
        switch (store.add(*f, seen.flows.at(*f))) {
            case add_result::added:
                ++added;
                break;
            case add_result::counted:
                ++known;
                break;
            case add_result::no_info_row:
                without_row.add(packets::flow_text(*f));
                break;
            case add_result::no_room:
                without_room.add(packets::flow_text(*f));
                break;
            case add_result::refused:
                refused.add(packets::flow_text(*f));
                break;
        }
    }
    using tenths = std::chrono::duration<uint64_t, std::deci>;
    const auto taken = std::chrono::duration_cast<tenths>(std::chrono::steady_clock::now() - begin);
    const uint64_t left = refused.count() + without_row.count() + without_room.count();
    std::cout << "  " << counted(seen.in_order.size(), "flow", "flows") << ": " << added << " new, "
              << known << " known" << (left == 0 ? "" : ", " + std::to_string(left) + " refused")
              << "\n"
              << counted(sdk::table::ftl_access::count(*tables.tables().flow_tbl()), "flow",
                         "flows")
              << " in the flow table of " << tables.adapter().name() << ", imported in "
              << tenths_text(taken.count()) << "\n";
    std::string why;
    if (!seen.cut_short.empty())
        why = seen.cut_short + "; " + counted(seen.packets, "packet", "packets") + " before it " +
              (seen.packets == 1 ? "was" : "were") + " imported";
    if (refused.count() != 0)
        why += (why.empty() ? "" : "; ") + std::string("the adapter refused ") +
               counted(refused.count(), "flow", "flows") + ": " + refused.text() +
               "; --log-level error says why";
    if (without_room.count() != 0)
        why += (why.empty() ? "" : "; ") + std::string("flow has no room for ") +
               counted(without_room.count(), "flow", "flows") + ": " + without_room.text() +
               "; of the last, " + store.no_room();
    if (without_row.count() != 0)
        why += (why.empty() ? "" : "; ") + std::string("flow_info has no free row for ") +
               counted(without_row.count(), "flow", "flows") + ": " + without_row.text();
    if (!why.empty())
        throw failure(name + ": " + why,
                      refused.count() != 0 ? exit_status::adapter : exit_status::refused);
}

}  // namespace halden::tool
