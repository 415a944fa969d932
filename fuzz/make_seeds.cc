// make_seeds DIRECTORY: the seeds of every fuzzer, DIRECTORY/fuzz_NAME/*. Entries of every table
// are written to a software adapter and taken from its memory; texts are typed here. The same seeds
// come out every time.

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>

#include "host/adapter.h"
#include "p4pd.h"
#include "sdk/p4pd_utils.h"
#include "tools/haldenctl/adapter_view.h"
#include "tools/haldenctl/entry_file.h"
#include "tools/haldenctl/raw_entry.h"
#include "tools/packets/capture.h"
#include "tools/packets/traffic.h"

using namespace halden;
using pipeline::table;
using tool::records;
using tool::wide;
using bytes = std::vector<uint8_t>;

namespace {

// The bytes of one seed, in the order in which the fuzzer takes them.
class seed {
  public:
    template <class Number>
    seed &put(Number value) {
        const auto *first = reinterpret_cast<const uint8_t *>(&value);
        return put_bytes({first, first + sizeof value});
    }
    seed &put_bytes(const bytes &more) {
        bytes_.insert(bytes_.end(), more.begin(), more.end());
        return *this;
    }
    seed &put_text(const std::string &text) { return put_bytes({text.begin(), text.end()}); }

    void save(const std::filesystem::path &directory, const std::string &name) const {
        std::filesystem::create_directories(directory);
        std::ofstream out(directory / name, std::ios::binary);
        out.write(reinterpret_cast<const char *>(bytes_.data()),
                  static_cast<std::streamsize>(bytes_.size()));
        if (!out.flush()) throw std::runtime_error((directory / name).string() + ": not written");
    }

  private:
    bytes bytes_;
};

// Every field random within its width; ternary masks of any bits.
records random_entry(const table &t, size_t action, std::mt19937_64 &random) {
    const auto any = [&](unsigned bits) {
        return (wide{random()} << 64 | random()) & tool::all_ones(bits);
    };
    records out(t);
    for (size_t n = 0; n < t.key.size(); ++n) {
        const wide mask =
            pipeline::has_mask(t.kind) ? any(t.key[n].bits) : tool::all_ones(t.key[n].bits);
        out.set_key(n, any(t.key[n].bits) & mask, mask);
    }
    out.data[0] = static_cast<uint8_t>(action);
    for (size_t n = 0; n < t.actions[action].fields.size(); ++n)
        out.set_data(n, any(t.actions[action].fields[n].bits));
    return out;
}

void save_entry(const std::filesystem::path &root, const table &t, size_t action, records &entry,
                host::adapter &adapter) {
    const std::string name = std::string(t.name) + "_" + std::to_string(action);
    const auto id = static_cast<uint8_t>(t.id);
    const uint32_t row = adapter.depth(t.id) > 3 ? 3 : 0;  // some tables have one row
    if (p4pd_entry_install(t.id, row, entry.key_pointer(), entry.mask_pointer(),
                           entry.data.data()) != P4PD_SUCCESS)
        throw std::runtime_error(name + ": not installed");
    // Rows of a keyless table hold nothing.
    const auto found = tool::stored_at(adapter, t, row).value_or(tool::stored_row());
    const auto bits = static_cast<uint16_t>(found.data_bits);
    const auto width = static_cast<uint16_t>(found.key.size() * 8);
    const bool ternary = pipeline::has_mask(t.kind);
    const bytes data_in_memory = tool::as_stored(t, found.data, bits);
    const bytes x = ternary ? tool::as_stored(t, found.key, width) : bytes();
    const bytes y = ternary ? tool::as_stored(t, found.mask, width) : bytes();

    // The decoder takes ternary entries as the memory holds them, others as images.
    constexpr uint16_t roomy = 4096;
    bytes decoded = ternary ? data_in_memory : found.data;
    decoded.resize((bits + 7u) / 8);
    seed()
        .put<uint8_t>(id)
        .put<uint8_t>(0)
        .put<uint32_t>(row)
        .put(bits)
        .put(roomy)
        .put_bytes(decoded)
        .save(root / "fuzz_decode_entry", name);
    if (ternary)
        seed()
            .put<uint8_t>(id)
            .put<uint8_t>(1)
            .put<uint32_t>(row)
            .put(width)
            .put(roomy)
            .put_bytes(x)
            .put_bytes(y)
            .save(root / "fuzz_decode_entry", name + "_key");

    seed()
        .put<uint8_t>(id)
        .put<uint8_t>(7)
        .put<uint32_t>(row)
        .put(roomy)
        .put_bytes(entry.data)
        .put_bytes(entry.key)
        .put_bytes(entry.mask)
        .save(root / "fuzz_decode_records", name);

    seed stored;
    stored.put(static_cast<uint8_t>(id - 1))
        .put<uint8_t>(0)
        .put<uint8_t>(0xa5)
        .put(static_cast<uint8_t>(row));
    if (ternary) stored.put(static_cast<uint8_t>(width / 16 - 1)).put_bytes(x).put_bytes(y);
    stored.put(bits).put_bytes(data_in_memory).save(root / "fuzz_read", name);

    const tool::json file = {{"entries", tool::json::array({tool::to_json(entry, row)})}};
    for (const char *fuzzer : {"fuzz_entry_json", "fuzz_apply"})
        seed().put_text(file.dump(1)).save(root / fuzzer, name);

    const bytes &raw = ternary ? found.key : found.data;
    std::string digits = tool::hex_of(raw.data(), raw.size());
    if (ternary) digits += ";" + tool::hex_of(found.mask.data(), found.mask.size());
    seed()
        .put(static_cast<uint8_t>(id - 1))
        .put<uint8_t>(0)
        .put<uint8_t>(2)
        .put_text(digits)
        .save(root / "fuzz_hex", name);
}

// A row of a table whose entries have no bits, with bits all the same.
void save_needless_bits(const std::filesystem::path &root, const table &t) {
    seed()
        .put(static_cast<uint8_t>(t.id - 1))
        .put<uint8_t>(0)
        .put<uint8_t>(0xa5)
        .put<uint8_t>(0)
        .put<uint16_t>(48)
        .put_bytes({1, 2, 3, 4, 5, 6})
        .save(root / "fuzz_read", std::string(t.name) + "_with_bits");
}

// Buffers of any size, unknown tables, entries of the greatest length.
void save_edges(const std::filesystem::path &root) {
    for (uint16_t size :
         std::initializer_list<uint16_t>{0, 1, 18, 19, 20, 47, 48, 49, 73, 74, 120}) {
        const std::string name = "buffer_of_" + std::to_string(size);
        seed().put<uint8_t>(21).put<uint8_t>(0).put<uint32_t>(9).put<uint16_t>(336).put(size).save(
            root / "fuzz_decode_entry", name);
        seed().put<uint8_t>(3).put<uint8_t>(7).put<uint32_t>(9).put(size).save(
            root / "fuzz_decode_records", name);
    }
    for (uint8_t id : std::initializer_list<uint8_t>{0, 49, 255}) {
        const std::string name = "no_table_" + std::to_string(id);
        seed().put(id).put<uint8_t>(1).put<uint32_t>(9).put<uint16_t>(64).put<uint16_t>(200).save(
            root / "fuzz_decode_entry", name);
        seed().put(id).put<uint8_t>(7).put<uint32_t>(9).put<uint16_t>(200).save(
            root / "fuzz_decode_records", name);
    }
    seed()
        .put<uint8_t>(15)
        .put<uint8_t>(1)
        .put<uint32_t>(9)
        .put<uint16_t>(8192)
        .put<uint16_t>(999)
        .save(root / "fuzz_decode_entry", "longest");
}

// What meets in tables: a key twice, keys under several masks, an entry that changes, flows in one
// small table, rows that are not there.
void save_files_of_several(const std::filesystem::path &root) {
    const char *const files[] = {
        R"([{"table": "vlan_mapping", "key": {"vlan_id": 5}, "data": {"l2seg": 1}},
            {"table": "vlan_mapping", "key": {"vlan_id": 5}, "data": {"l2seg": 2}}])",
        R"([{"table": "tunnel_terminate_v4", "key": {"ipv4_1_dstAddr": "10.0.0.0/8"}},
            {"table": "tunnel_terminate_v4", "key": {"ipv4_1_dstAddr": "10.0.0.0/16"}},
            {"table": "tunnel_terminate_v4", "key": {"ipv4_1_dstAddr": "10.0.0.0/24"}},
            {"table": "tunnel_terminate_v4", "key": {}}])",
        R"([{"table": "flow_key_native", "key": {"ipv4_1_valid": 1}, "action": 0},
            {"table": "flow_key_native", "key": {"ipv4_1_valid": 0}, "action": 1},
            {"table": "flow_key_native", "action": 2}])",
        R"([{"table": "flow", "key": {"key_metadata_proto": 6}, "data": {"flow_idx": 1}},
            {"table": "flow", "key": {"key_metadata_proto": 17}, "data": {"flow_idx": 2}},
            {"table": "flow", "key": {"key_metadata_proto": 6}, "data": {"flow_idx": 3}}])",
        R"([{"table": "lif_mapping", "index": 1024}, {"table": "lif_mapping", "index": 1023},
            {"table": "flow_info", "index": 2097151}])",
    };
    for (int n = 0; const char *text : files)
        seed().put_text(text).save(root / "fuzz_apply", "several_" + std::to_string(n++));
}

void save_values(const std::filesystem::path &root) {
    const char *const texts[] = {"0",
                                 "true",
                                 "2047",
                                 "0x7ff",
                                 "0b101",
                                 "1_000",
                                 "340282366920938463463374607431768211456",
                                 "0xffffffffffffffffffffffffffffffff",
                                 "-1",
                                 "1e3",
                                 "",
                                 "0x",
                                 "*",
                                 "&&&",
                                 "0x10&&&0xf0",
                                 "02:00:5e:10:00:01",
                                 "02-00-5E-10-00-01",
                                 "192.0.2.1",
                                 "10.0.0.0/8",
                                 "10.0.0.0/33",
                                 "2001:db8::1",
                                 "2001:db8::/32",
                                 "::ffff:192.0.2.1",
                                 "1::2::3",
                                 "10.0.0.0&&&255.0.0.0",
                                 "\xff\x1b[31m"};
    for (const unsigned bits : {11u, 48u, 128u}) {
        const std::string name = std::to_string(bits) + "_bits_";
        for (uint8_t n = 0; const char *text : texts) {
            seed()
                .put(static_cast<uint8_t>(bits - 1))
                .put(static_cast<uint8_t>(n % 3))
                .put_text(text)
                .save(root / "fuzz_value", name + std::to_string(n));
            ++n;
        }
    }
}

// The flow that the fuzzer takes from the front, then the options: proto, src, dst, sport, dport,
// vlan, vni.
void save_filters(const std::filesystem::path &root) {
    const char *const texts[] = {
        "",
        "tcp",
        "6",
        "tcp\n10.1.0.5\n192.0.2.7\n51820\n443\n7\n5001",
        "0x6\n10.1.0.0/16\n0.0.0.0/0\n0xca6c\n\n",
        "\n10.1.0.5/32\n192.0.2.6/31",
        "\n10.0.0.0/33",
        "\n::/0",
        "\n10.1.0.5\n2001:db8::1",
        "\n1::2::3",
        "\n\n\n65536",
        "\n\n\n\n\n4096",
        "\n\n\n\n\n\n1_6777215",
        "icmp6\n2001:db8::/32\n2001:db8::7",
        "\xff\n\x1b[31m",
    };
    for (int n = 0; const char *text : texts) {
        const bool v6 = std::string_view(text).find("2001") != std::string_view::npos;
        const bytes from =
            v6 ? bytes{0x20, 1, 0xd, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 5} : bytes{10, 1, 0, 5};
        const bytes to = v6 ? bytes{0x20, 1, 0xd, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 7}
                            : bytes{192, 0, 2, 7};
        seed()
            .put<uint8_t>(v6)
            .put_bytes(from)
            .put_bytes(to)
            .put<uint8_t>(v6 ? 58 : 6)
            .put<uint16_t>(51820)
            .put<uint16_t>(443)
            .put<uint16_t>(7)
            .put<uint32_t>(5001)
            .put_text(text)
            .save(root / "fuzz_flow_filter", "typed_" + std::to_string(n++));
    }
}

// Made-up traffic, whole and cut short; and captures whose headers claim what is not there.
void save_captures(const std::filesystem::path &root) {
    const std::filesystem::path directory = root / "fuzz_capture";
    std::filesystem::create_directories(directory);
    constexpr size_t file_header = 24, packet_header = 16, length_at = file_header + 8;
    for (uint32_t n = 1; n <= 4; ++n) {
        const std::filesystem::path file = directory / ("traffic_" + std::to_string(n));
        packets::capture_writer out(file.string());
        packets::make_traffic(out, n, n);
        out.close();
        std::ifstream in(file, std::ios::binary);
        const bytes whole{std::istreambuf_iterator<char>(in), {}};
        bytes cut = whole;
        cut.resize(file_header + packet_header + 20 * n);
        seed().put_bytes(cut).save(directory, "cut_" + std::to_string(n));
        bytes claimed = whole;
        claimed[length_at + n % 4] = 0xff;
        seed().put_bytes(claimed).save(directory, "length_" + std::to_string(n));
        bytes raw = whole;
        raw[file_header - 4] = 101;  // raw IP
        seed().put_bytes(raw).save(directory, "raw_ip_" + std::to_string(n));
    }
}

void save_texts(const std::filesystem::path &root) {
    const char *const files[] = {
        R"([{"table": 16, "index": 5, "data": {"src_lport": "0x11", "uplink": true}}])",
        R"({"comment": "x", "entries": [{"table": "lif_mapping", "index": 1024, "comment": 7}]})",
        R"({"entries": [{"table": "tunnel_terminate_v4", "index": 1,
            "key": {"ipv4_1_dstAddr": "10.0.0.0/8", "lif_id": "1&&&1", "ipv4_1_srcAddr": "*"}}]})",
        R"({"entries": [{"table": "tunnel_terminate_v6", "index": 1,
            "key": {"ipv6_1_dstAddr": "2001:db8::/32", "ipv6_1_srcAddr": "192.0.2.0/24"}}]})",
        R"({"entries": [{"table": "mirror_rewrite", "index": {"index_high": 1, "index_low": 2}}]})",
        R"({"entries": [{"table": "p4plus_app", "index": 0, "action": "nop_a"}]})",
        R"({"entries": [{"table": "lif_mapping", "index": -1}]})",
        R"({"entries": [{"table": "lif_mapping", "index": 1.5e3}]})",
        R"({"entries": [{"table": "lif_mapping", "table": 1}]})",
        R"({"entries": [{"table": "lif_mapping", "index": 1, "data": [[[{}]]]}]})",
        R"({"entries": [)",
    };
    for (int n = 0; const char *text : files)
        seed().put_text(text).save(root / "fuzz_entry_json", "typed_" + std::to_string(n++));
    save_files_of_several(root);

    seed()
        .put_text("[" + std::string(70, '[') + std::string(70, ']') + "]")
        .save(root / "fuzz_entry_json", "deep");

    struct {
        uint8_t table, field;  // from 0
        const char *text;
    } constexpr values[] = {
        {15, 0, "1500"},
        {15, 0, "0x5dc"},
        {15, 1, "true"},
        {15, 0, "0b1_01"},
        {15, 0, "*"},
        {15, 0, "0x10&&&0xf0"},
        {5, 0, "02:00:5e:10:00:01"},
        {5, 0, "02-00-5e-10-00-01"},
        {7, 1, "10.0.0.0/8"},
        {7, 1, "192.0.2.1"},
        {8, 1, "2001:db8::1"},
        {8, 1, "2001:db8::/32"},
        {8, 1, "::ffff:192.0.2.1"},
        {8, 1, "10.1.0.0/16"},
        {20, 1, "18446744073709551616"},
        {20, 1, "-1"},
        {15, 0, "01 02:03 0X"},
        {15, 0, "abc"},
        {8, 1, "/0"},
    };
    for (int n = 0; const auto &v : values)
        seed().put(v.table).put(v.field).put<uint8_t>(3).put_text(v.text).save(
            root / "fuzz_hex", "typed_" + std::to_string(n++));
}

// Operations on tables: every table filled and emptied again, with a restart in between; then any.
void save_calls(const std::filesystem::path &root, std::mt19937_64 &random) {
    const auto save = [&](const seed &of, const std::string &name) {
        of.save(root / "fuzz_table_calls", name);
    };
    constexpr uint8_t create = 0, update = 1, remove = 2, restart = 7;
    for (uint8_t table = 0; table < 40; ++table) {
        seed out;
        const auto put = [&](uint8_t entry, uint8_t what, uint8_t value) {
            out.put(table).put(entry).put(what).put(value);
        };
        for (uint8_t entry = 0; entry < 18; ++entry) put(entry, create, entry);
        put(0, restart, 0);
        for (uint8_t entry = 0; entry < 18; ++entry)
            put(entry, entry % 2 == 0 ? update : remove, 99);
        put(0, restart, 0);
        for (uint8_t entry = 0; entry < 18; ++entry) put(entry, remove, 0);
        save(out, "fill_" + std::to_string(table));
    }
    for (int n = 0; n < 12; ++n) {
        seed out;
        for (int i = 0; i < 400; ++i) out.put(static_cast<uint32_t>(random()));
        save(out, "any_" + std::to_string(n));
    }
}

// One damage of each kind to files all over the directory, and several at once.
void save_damages(const std::filesystem::path &root, std::mt19937_64 &random) {
    for (uint8_t what = 0; what < 8; ++what)
        for (uint8_t file = 0; file < 56; file = static_cast<uint8_t>(file + 8))
            seed()
                .put<uint8_t>(0)  // one damage
                .put(static_cast<uint8_t>(file + what))
                .put(what)
                .put(static_cast<uint16_t>(random()))
                .put<uint8_t>(0xff)
                .put(random())
                .put(random())
                .save(root / "fuzz_adapter_directory",
                      "damage_" + std::to_string(what) + "_" + std::to_string(file));
    for (int n = 0; n < 12; ++n) {
        seed out;
        for (int i = 0; i < 12; ++i) out.put(random());
        out.save(root / "fuzz_adapter_directory", "several_" + std::to_string(n));
    }
}

}  // namespace

int main(int argc, char **argv) try {
    if (argc != 2) {
        std::cerr << "make_seeds DIRECTORY\n";
        return 2;
    }
    const std::filesystem::path root = argv[1];
    const tool::opened_adapter adapter;
    std::mt19937_64 random(48);
    // The first and the last action of every table.
    for (const table *t : pipeline::tables)
        for (size_t action = 0; action < t->actions.size();
             action += std::max<size_t>(1, t->actions.size() - 1)) {
            records entry = random_entry(*t, action, random);
            save_entry(root, *t, action, entry, *adapter);
        }
    save_needless_bits(root, pipeline::tunnel_decap);
    save_edges(root);
    save_texts(root);
    save_values(root);
    save_filters(root);
    save_captures(root);
    save_calls(root, random);
    save_damages(root, random);
    return 0;
} catch (const std::exception &error) {
    std::cerr << "make_seeds: " << error.what() << '\n';
    return 1;
}
