// haldenctl lookup TABLE FIELD=VALUE...: what hardware answers to a packet with this key, and when
// it is a miss, why.

#include <algorithm>
#include <iostream>

#include "host/view/lookup.h"
#include "host/view/row_hash.h"
#include "p4gen/halden/pipeline/words.h"
#include "tools/haldenctl/adapter_view.h"
#include "tools/haldenctl/arguments.h"
#include "tools/haldenctl/commands.h"
#include "tools/haldenctl/entry_text.h"
#include "tools/haldenctl/failure.h"
#include "tools/haldenctl/screen.h"

namespace halden::tool {

using namespace pipeline;

namespace {

constexpr size_t most_shown = 3;

// A packet's key has every bit.
records packet_key(const table &t, const std::vector<std::string> &fields) {
    records packet(t);
    for (size_t n = 0; n < t.key.size(); ++n) packet.set_key(n, 0, all_ones(t.key[n].bits));
    set_key_fields(packet, fields);
    for (size_t n = 0; n < t.key.size(); ++n)
        if (packet.mask_value(n) != all_ones(t.key[n].bits))
            throw failure(
                std::string(t.key[n].name) + ": a mask was given; a packet's key has every bit",
                exit_status::usage);
    return packet;
}

// The key fields in which an entry does not match the packet.
std::vector<size_t> differences(const records &packet, const records &entry) {
    std::vector<size_t> out;
    for (size_t n = 0; n < packet.of->key.size(); ++n) {
        const wide mask = entry.mask_value(n) & all_ones(packet.of->key[n].bits);
        if (((packet.key_value(n) ^ entry.key_value(n)) & mask) != 0) out.push_back(n);
    }
    return out;
}

std::string difference_text(const records &packet, const records &entry,
                            const std::vector<size_t> &fields) {
    std::string out;
    for (size_t n : fields) {
        const key_field &f = packet.of->key[n];
        if (!out.empty()) out += "; ";
        out += std::string(f.name) + " is " + shown(packet.key_value(n), f.name, f.bits) +
               ", the row wants " +
               masked_word_of(entry.key_value(n), entry.mask_value(n) & all_ones(f.bits), f.name,
                              f.bits);
    }
    return out;
}

// The rows of a TCAM that come nearest to the packet.
void print_nearest(host::adapter &adapter, const records &packet, const table &t) {
    struct near_row {
        uint32_t row;
        std::vector<size_t> fields;
        records entry;
    };
    std::vector<near_row> rows;
    uint32_t used = 0;
    for (uint32_t row = adapter.next_used(t.id, 0); row < adapter.depth(t.id);
         row = adapter.next_used(t.id, row + 1)) {
        const auto entry = read_back(adapter, t, row);
        if (!entry) continue;
        ++used;
        rows.push_back({row, differences(packet, *entry), *entry});
    }
    std::cout << "  " << t.name << ": " << used << " of " << adapter.depth(t.id)
              << " rows in use, none matches\n";
    std::stable_sort(rows.begin(), rows.end(), [](const near_row &a, const near_row &b) {
        return a.fields.size() < b.fields.size();
    });
    if (rows.size() > most_shown) rows.erase(rows.begin() + most_shown, rows.end());
    for (const near_row &r : rows)
        std::cout << wrapped(
            "row " + std::to_string(r.row) + ": " + difference_text(packet, r.entry, r.fields), 4,
            screen_columns());
}

void print_hash_row(host::adapter &adapter, const records &packet, uint32_t row) {
    const table &t = *packet.of;
    std::cout << "  " << t.name << ": the key's hash leads to row " << row;
    const auto entry = read_back(adapter, t, row);
    if (!entry) {
        std::cout << ", which is empty\n";
        return;
    }
    std::cout << ", where another key stands\n"
              << wrapped(difference_text(packet, *entry, differences(packet, *entry)), 4,
                         screen_columns());
}

void print_miss(host::adapter &adapter, const records &packet, const host::view::answer &found,
                const std::vector<uint8_t> &image) {
    const table &t = *packet.of;
    std::cout << painted("miss", colour::bad) << "\n";
    if (t.kind == kind::hash_sram) {
        print_hash_row(adapter, packet, found.hashed_row);
        const table &spill = *overflow_of(t);
        records same(spill);
        for (size_t n = 0; n < t.key.size(); ++n)
            same.set_key(n, packet.key_value(n), all_ones(t.key[n].bits));
        print_nearest(adapter, same, spill);
    } else if (t.kind == kind::hash_hbm) {
        print_hash_row(adapter, packet,
                       host::view::hash_row(t.id, image.data(), adapter.depth(t.id)));
        std::cout << "  flow_ohash: no hint of that row leads to the key\n";
    } else {
        print_nearest(adapter, packet, t);
    }
}

void look_up(const opened_adapter &adapter, const table &t,
             const std::vector<std::string> &fields) {
    if (!is_keyed(t.kind))
        throw failure(std::string(t.name) + ": " + std::string(kind_text(t.kind)) +
                          ", so packets do not look it up by a key",
                      exit_status::usage);
    if (t.id == host::flow_ohash_table)
        throw failure("flow_ohash: it is reached through flow; look up flow", exit_status::usage);
    try {
        records packet = packet_key(t, fields);
        const key_images images = images_of(packet);
        const auto found = host::view::lookup(*adapter, t.id, images.key.data());
        if (found.unread != SDK_RET_OK)
            throw failure("it cannot be told what the key hits: memory on its way cannot be read",
                          exit_status::adapter);
        if (!found.hit) {
            print_miss(*adapter, packet, found, images.key);
            throw missed();
        }
        const table &hit = *find_table(found.table);
        std::cout << painted("hit", colour::good) << "  " << hit.name << ", "
                  << place_of(hit, found.row) << "\n";
        if (const auto entry = read_back(*adapter, hit, found.row))
            std::cout << entry_text(*entry, 2);
    } catch (const failure &error) {
        throw error.inside(std::string(t.name));
    }
}

}  // namespace

void add_lookup(CLI::App &app, const options &given) {
    CLI::App *command =
        app.add_subcommand("lookup", "What a packet's key hits, from memory alone; why it misses");
    auto name = std::make_shared<std::string>();
    auto fields = std::make_shared<std::vector<std::string>>();
    command->add_option("TABLE", *name, "Name or id of a keyed table")->required();
    command->add_option("FIELD=VALUE", *fields,
                        "The packet's key; fields that are not given are 0");
    command->callback([&given, name, fields] {
        const table &t = table_argument(*name);
        look_up(opened_adapter(given, host::access::read), t, *fields);
    });
}

}  // namespace halden::tool
