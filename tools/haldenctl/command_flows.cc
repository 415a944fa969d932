// haldenctl flows: the flows of captures in the flow table.

#include <algorithm>
#include <iostream>

#include "host/engines/flow/ftl_access.h"
#include "host/view/lookup.h"
#include "p4pd.h"
#include "tools/haldenctl/commands.h"
#include "tools/haldenctl/entry_file.h"
#include "tools/haldenctl/failure.h"
#include "tools/haldenctl/flow_filter.h"
#include "tools/haldenctl/flow_import.h"
#include "tools/haldenctl/flow_store.h"
#include "tools/haldenctl/flow_words.h"
#include "tools/haldenctl/interrupt.h"
#include "tools/haldenctl/screen.h"
#include "tools/packets/capture.h"
#include "tools/packets/traffic.h"

namespace halden::tool {

namespace {

// --- list, find, delete --------------------------------------------------------------------------

struct listed_flow : stored_flow {
    uint32_t path = 0;  // rows in front of it in its bucket
    std::string name;
};

std::vector<listed_flow> matching(flow_store &store, const flow_filter &filter) {
    std::vector<listed_flow> out;
    store.for_each([&](const stored_flow &f, uint32_t path) {
        if (filter.matches(f.flow)) out.push_back({f, path, packets::key_text(f.key)});
    });
    return out;
}

json json_of(const listed_flow &f) {
    return {{"flow", f.name},
            {"flow_idx", f.index},
            {"packets", f.counts.packets},
            {"bytes", f.counts.bytes},
            {"last_seen", f.counts.last_seen},
            {"table", pipeline::find_table(f.table)->name},
            {"row", f.row},
            {"path", f.path}};
}

struct list_options {
    flow_filter_options filter;
    std::string by = "bytes";
    uint32_t top = 0;
    bool as_json = false;
};

void list(const options &given, const list_options &wanted) {
    const flow_filter filter = wanted.filter.parsed();
    opened_tables tables(given, host::access::read);
    flow_store store(tables);
    std::vector<listed_flow> flows = matching(store, filter);
    const auto amount = [&](const stored_flow &f) {
        return wanted.by == "packets" ? f.counts.packets : f.counts.bytes;
    };
    std::stable_sort(flows.begin(), flows.end(), [&](const listed_flow &a, const listed_flow &b) {
        if (amount(a) != amount(b)) return amount(a) > amount(b);
        return a.name < b.name;
    });
    const size_t all = flows.size();
    if (wanted.top != 0 && flows.size() > wanted.top) flows.resize(wanted.top);
    if (wanted.as_json) {
        json out = json::array();
        for (const listed_flow &f : flows) out.push_back(json_of(f));
        std::cout << out.dump(2) << "\n";
        return;
    }
    columns shown({">PACKETS", ">BYTES", ">FLOW_IDX", "FLOW"});
    for (const listed_flow &f : flows)
        shown.row({std::to_string(f.counts.packets), std::to_string(f.counts.bytes),
                   std::to_string(f.index), f.name});
    if (!flows.empty()) std::cout << shown.text();
    std::cout << counted(all, "flow", "flows")
              << (all > flows.size() ? ", " + std::to_string(flows.size()) + " shown" : "") << "\n";
}

// The one flow with these very addresses and ports, by its packet's key.
void find(const options &given, const flow_filter_options &filter) {
    const packets::flow wanted = filter.parsed().whole_flow();
    flow_swkey_t key = packets::key_of(wanted);
    const opened_adapter adapter(given, host::access::read);
    uint8_t image[pipeline::wide_key_image_bytes] = {};
    p4pd_hwkey_hwmask_build(host::flow_table, &key, nullptr, image, nullptr);
    const auto hit = host::view::lookup(*adapter, host::flow_table, image);
    const auto f = hit.hit ? flow_at(*adapter, hit.table, hit.row) : std::nullopt;
    if (!f)
        throw failure("no flow " + packets::flow_text(wanted) +
                          "; the VLAN and the VNI are part of a flow: --vlan, --vni",
                      exit_status::missed);
    const pipeline::table &main = *pipeline::find_table(host::flow_table);
    const pipeline::table &table = *pipeline::find_table(hit.table);
    std::cout << packets::key_text(f->key) << "\n  flow_idx " << f->index << ", "
              << counted(f->counts.packets, "packet", "packets") << ", "
              << counted(f->counts.bytes, "byte", "bytes") << "\n  " << table.name << " "
              << place_of(table, hit.row) << ", "
              << (hit.table == host::flow_table
                      ? "where its hash leads"
                      : "chained behind " + std::string(main.name) + " " +
                            place_of(main, hit.hashed_row) + ", where its hash leads")
              << "\n";
}

void remove(const options &given, const flow_filter_options &wanted, bool all) {
    const flow_filter filter = wanted.parsed();
    if (filter.empty() == !all)
        throw CLI::ValidationError("flows delete", all ? "--all leaves no room for a filter"
                                                       : "a filter or --all is required");
    opened_tables tables(given, host::access::write);
    flow_store store(tables);
    const std::vector<listed_flow> flows = matching(store, filter);
    const uint32_t left_over = all ? store.remove_left_over() : 0;
    if (flows.empty() && left_over == 0)
        throw failure("no flow matches; `haldenctl flows list` shows them", exit_status::missed);
    named_flows refused, data_left;
    size_t done = 0;
    for (const listed_flow &f : flows) {
        if (told_to_stop())
            stop(std::to_string(done - refused.count()) + " of " +
                 counted(flows.size(), "flow", "flows") + " were deleted");
        note_done(done++);
        const remove_result result = store.remove(f);
        if (result == remove_result::refused) refused.add(f.name);
        if (result == remove_result::data_left) data_left.add(f.name);
    }
    std::cout << counted(flows.size() - refused.count(), "flow", "flows") << " deleted";
    if (left_over != 0)
        std::cout << ", " << counted(left_over, "row", "rows") << " of flow_info that "
                  << (left_over == 1 ? "was" : "were") << " left over emptied";
    std::cout << "\n";
    std::string left;
    if (refused.count() != 0)
        left = "the flow table refused to delete " + counted(refused.count(), "flow", "flows") +
               ": " + refused.text();
    if (data_left.count() != 0)
        left += (left.empty() ? "" : "; ") + std::string("the data of ") +
                counted(data_left.count(), "flow", "flows") +
                " could not be deleted: " + data_left.text();
    if (!left.empty()) throw failure(left + "; --log-level error says why", exit_status::adapter);
}

// --- stats ---------------------------------------------------------------------------------------

std::string bar(uint64_t part, uint64_t most) {
    constexpr uint64_t widest = 40;
    if (part == 0 || most == 0) return {};
    return std::string(std::max<uint64_t>(1, part * widest / most), '#');
}

void stats(opened_tables &tables) {
    flow_store store(tables);
    const auto s = sdk::table::ftl_access::statistics(*tables.tables().flow_tbl());
    const auto line = [](const char *name, uint32_t used, uint32_t rows) {
        char percent[16];
        std::snprintf(percent, sizeof percent, "%.2f", 100.0 * used / rows);
        std::cout << name << used << " of " << rows << " rows, " << percent << " %\n";
    };
    std::cout << counted(s.flows(), "flow", "flows") << "\n";
    line("  main table  ", s.main_used, s.main_depth);
    line("  overflow    ", s.overflow_used, s.overflow_depth);
    if (const uint32_t rows = store.count_left_over(); rows != 0)
        std::cout << "  " << counted(rows, "row", "rows")
                  << " of flow_info left over, to which no flow leads; the next import or "
                     "`haldenctl flows delete --all` takes "
                  << (rows == 1 ? "it" : "them") << "\n";
    if (s.flows() == 0) return;
    std::cout << "\nrows in front of a flow on its way from its hash\n";
    const uint32_t most = *std::max_element(s.path_lengths.begin(), s.path_lengths.end());
    columns shown({">ROWS", ">FLOWS", ""});
    for (size_t rows = 0; rows < s.path_lengths.size(); ++rows) {
        if (s.path_lengths[rows] == 0) continue;
        const bool rest = rows + 1 == s.path_lengths.size();
        shown.row({std::to_string(rows) + (rest ? "+" : ""), std::to_string(s.path_lengths[rows]),
                   bar(s.path_lengths[rows], most)});
    }
    std::cout << shown.text(2);
}

// --- generate ------------------------------------------------------------------------------------

struct generate_options {
    uint64_t packets = 0;
    std::string path;
    uint32_t seed = 1;
};

void generate(const generate_options &wanted) {
    const bool to_standard_output = wanted.path == "-";
    const std::string name = to_standard_output ? "standard output" : wanted.path;
    try {
        packets::capture_writer out(wanted.path);
        const packets::traffic_made made =
            packets::make_traffic(out, wanted.packets, wanted.seed, [&] {
                if (told_to_stop()) stop(name + ": the capture is not whole");
            });
        out.close();
        // The capture's stream is not for words.
        (to_standard_output ? std::cerr : std::cout)
            << printable(name) << ": " << counted(made.packets, "packet", "packets") << " of "
            << counted(made.conversations, "conversation", "conversations") << ", "
            << counted(made.other_frames, "frame", "frames") << " of other kinds\n";
    } catch (const std::runtime_error &error) {
        stop_if_told();  // a write that a signal cut short
        throw failure(error.what(), exit_status::adapter);
    }
}

}  // namespace

void add_flows(CLI::App &app, const options &given) {
    CLI::App *flows = app.add_subcommand("flows", "Flows of captures in the flow table");
    flows->require_subcommand(1);

    CLI::App *command = flows->add_subcommand(
        "import", "Every flow of a capture (pcap, pcapng) into flow, flow_info and ipfix_ingress");
    auto path = std::make_shared<std::string>();
    command->add_option("CAPTURE", *path, "Ethernet or raw IP; - is standard input")->required();
    command->callback([&given, path] {
        opened_tables tables(given, host::access::create);
        import_flows(tables, *path);
    });

    command = flows->add_subcommand("list", "Flows with their packets and bytes");
    auto listed = std::make_shared<list_options>();
    listed->filter.add_to(command);
    command->add_option("--top", listed->top, "The first so many")
        ->type_name("N")
        ->transform(number_between(1, ~uint32_t{0}));
    command->add_option("--by", listed->by, "Most bytes first, or most packets")
        ->check(CLI::IsMember({"bytes", "packets"}))
        ->capture_default_str();
    command->add_flag("--json", listed->as_json, "As JSON");
    command->callback([&given, listed] { list(given, *listed); });

    command = flows->add_subcommand("find", "One flow, looked up as hardware would");
    auto found = std::make_shared<flow_filter_options>();
    found->add_to(command);
    command->callback([&given, found] { find(given, *found); });

    command =
        flows->add_subcommand("delete", "Flows, and their data when no other flow points at it");
    auto deleted = std::make_shared<flow_filter_options>();
    auto all = std::make_shared<bool>(false);
    deleted->add_to(command);
    command->add_flag("--all", *all,
                      "Every flow, and what a killed import or delete left in flow_info: rows to "
                      "which no flow leads and in which nothing but counts stands");
    command->callback([&given, deleted, all] { remove(given, *deleted, *all); });

    command = flows->add_subcommand("stats", "Load, and how far flows are from their hash");
    command->callback([&given] {
        opened_tables tables(given, host::access::read);
        stats(tables);
    });

    command = flows->add_subcommand("generate", "Write a capture of made-up traffic");
    auto made = std::make_shared<generate_options>();
    command->add_option("N", made->packets, "About so many packets")
        ->required()
        ->transform(number_between(1, 1000000000));
    command
        ->add_option("CAPTURE", made->path,
                     "The file, pcap; it gets its name when it is whole. - is standard output")
        ->required();
    command->add_option("--seed", made->seed, "The same packets for the same seed")
        ->transform(number_between(0, ~uint32_t{0}))
        ->capture_default_str();
    command->callback([made] { generate(*made); });
}

}  // namespace halden::tool
