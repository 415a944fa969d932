#include "tools/packets/capture.h"

#include <gmock/gmock.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <map>
#include <stdexcept>
#include <vector>

#include "tests/support/scratch_directory.h"
#include "tools/packets/traffic.h"

using namespace halden::packets;
using bytes = std::vector<uint8_t>;
using testing::HasSubstr;

namespace {

class Capture : public testing::Test {
  protected:
    std::string path(const char *name) const { return directory_.file(name); }
    std::string write(const char *name, const bytes &content) const {
        std::ofstream(path(name), std::ios::binary)
            .write(reinterpret_cast<const char *>(content.data()),
                   static_cast<std::streamsize>(content.size()));
        return path(name);
    }
    static capture_result read_file(const std::string &file,
                                    const std::function<void(const captured &)> &each) {
        std::ifstream in(file, std::ios::binary);
        return read_capture(
            [&](char *to, size_t most) {
                in.read(to, static_cast<std::streamsize>(most));
                return static_cast<size_t>(in.gcount());
            },
            each);
    }
    static std::string refusal(const std::string &file) {
        try {
            read_file(file, [](const captured &) {});
        } catch (const std::runtime_error &e) {
            return e.what();
        }
        return "";
    }

  private:
    const halden::test::scratch_directory directory_;
};

// A pcap file with one packet of 4 bytes out of 60, at 1.000002 s.
bytes one_packet(uint8_t link_type) {
    return {0xd4, 0xc3, 0xb2, 0xa1, 2, 0, 4, 0, 0, 0, 0, 0, 0, 0, 0,  0, 0, 0, 4, 0, link_type, 0,
            0,    0,    1,    0,    0, 0, 2, 0, 0, 0, 4, 0, 0, 0, 60, 0, 0, 0, 9, 8, 7,         6};
}

}  // namespace

TEST_F(Capture, ReadsPcap) {
    int packets = 0;
    const auto result = read_file(write("a.pcap", one_packet(1)), [&](const captured &p) {
        ++packets;
        EXPECT_THAT(bytes(p.bytes.begin(), p.bytes.end()), testing::ElementsAre(9, 8, 7, 6));
        EXPECT_EQ(p.wire_length, 60u);
        EXPECT_EQ(p.microseconds, 1000002u);
        EXPECT_EQ(p.kind, link_type::ethernet);
    });
    EXPECT_EQ(packets, 1);
    EXPECT_EQ(result.packets, 1u);
    EXPECT_EQ(result.cut_short, "");
}

TEST_F(Capture, ReadsPcapng) {
    // Section header, interface description (Ethernet), one enhanced packet of 4 bytes.
    const bytes file = {
        0x0a, 0x0d, 0x0d, 0x0a, 28,   0,    0,    0,  0x4d, 0x3c, 0x2b, 0x1a, 1,  0, 0, 0,  0xff,
        0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 28, 0,    0,    0,    1,    0,  0, 0, 20, 0,
        0,    0,    1,    0,    0,    0,    0,    0,  4,    0,    20,   0,    0,  0, 6, 0,  0,
        0,    36,   0,    0,    0,    0,    0,    0,  0,    0,    0,    0,    0,  5, 0, 0,  0,
        4,    0,    0,    0,    60,   0,    0,    0,  9,    8,    7,    6,    36, 0, 0, 0};
    int packets = 0;
    read_file(write("a.pcapng", file), [&](const captured &p) {
        ++packets;
        EXPECT_THAT(bytes(p.bytes.begin(), p.bytes.end()), testing::ElementsAre(9, 8, 7, 6));
        EXPECT_EQ(p.microseconds, 5u);
    });
    EXPECT_EQ(packets, 1);
}

TEST_F(Capture, TellsRawIpFromEthernet) {
    const bytes raw_ip = one_packet(101);
    read_file(write("raw.pcap", raw_ip),
              [](const captured &p) { EXPECT_EQ(p.kind, link_type::raw_ip); });
}

TEST_F(Capture, RefusesWhatIsNoCapture) {
    EXPECT_EQ(refusal(write("text.pcap", bytes(100, 'x'))), "unknown file format");
    EXPECT_EQ(refusal(write("empty.pcap", {})),
              "truncated dump file; tried to read 4 file header bytes, only got 0");
    EXPECT_THAT(refusal(write("radio.pcap", one_packet(105))),
                HasSubstr("packets of link type IEEE802_11; Ethernet (EN10MB) and raw IP (RAW) are "
                          "read"));
}

TEST_F(Capture, DeliversThePacketsInFrontOfACut) {
    bytes file = one_packet(1);
    const bytes again(file.begin() + 24, file.end());
    file.insert(file.end(), again.begin(), again.end() - 2);
    int packets = 0;
    const auto result = read_file(write("cut.pcap", file), [&](const captured &) { ++packets; });
    EXPECT_EQ(packets, 1);
    EXPECT_EQ(result.packets, 1u);
    EXPECT_EQ(result.cut_short,
              "packet 2, at byte 44: truncated dump file; tried to read 4 captured bytes, only got "
              "2");
}

TEST_F(Capture, SaysWhereALengthCannotBe) {
    bytes file = one_packet(1);
    const bytes again(file.begin() + 24, file.end());
    file.insert(file.end(), again.begin(), again.end());
    for (size_t n = 0; n < 4; ++n) file[44 + 8 + n] = 0xff;
    const auto result = read_file(write("long.pcap", file), [](const captured &) {});
    EXPECT_EQ(result.packets, 1u);
    EXPECT_EQ(result.cut_short,
              "packet 2, at byte 44: invalid packet capture length 4294967295, bigger than snaplen "
              "of 262144");
}

// Seconds are 32 bits without a sign; a packet cannot be more than 999999 microseconds into one.
TEST_F(Capture, TellsTimesFromWhatIsNone) {
    const auto time = [&](std::array<uint8_t, 8> stamp) {
        bytes file = one_packet(1);
        std::copy(stamp.begin(), stamp.end(), file.begin() + 24);
        std::optional<uint64_t> out;
        read_file(write("time.pcap", file), [&](const captured &p) { out = p.microseconds; });
        return out;
    };
    EXPECT_EQ(time({0xff, 0xff, 0xff, 0xff, 1, 0, 0, 0}), 4294967295000001u);
    EXPECT_EQ(time({0, 0, 0, 0x80, 0, 0, 0, 0}), 2147483648000000u);
    EXPECT_EQ(time({1, 0, 0, 0, 0x3f, 0x42, 0x0f, 0}), 1999999u);
    EXPECT_EQ(time({1, 0, 0, 0, 0x40, 0x42, 0x0f, 0}), std::nullopt);
    EXPECT_EQ(time({1, 0, 0, 0, 0xff, 0xff, 0xff, 0xff}), std::nullopt);
}

TEST_F(Capture, HandsOnWhatTheSourceThrows) {
    const bytes file = one_packet(1);
    size_t calls = 0;
    const auto source = [&](char *to, size_t) -> size_t {
        if (calls++ != 0) throw std::logic_error("enough");
        std::copy(file.begin(), file.end(), to);
        return file.size();
    };
    int packets = 0;
    EXPECT_THROW(read_capture(source, [&](const captured &) { ++packets; }), std::logic_error);
    EXPECT_EQ(packets, 1);
    calls = 1;
    EXPECT_THROW(read_capture(source, [](const captured &) {}), std::logic_error);
}

TEST_F(Capture, TrafficReadsBackAsFlowsInBothDirections) {
    capture_writer out(path("traffic.pcap"));
    const traffic_made made = make_traffic(out, 3000, 1);
    out.close();
    EXPECT_GE(made.packets, 3000u);
    EXPECT_GT(made.other_frames, 0u);
    std::map<verdict, uint64_t> seen;
    std::map<std::string, uint64_t> flows;
    bool seen_vlan = false, seen_vni = false, seen_v6 = false;
    uint64_t last = 0;
    const auto result = read_file(path("traffic.pcap"), [&](const captured &p) {
        const auto [v, f, type] = dissect(p.bytes, p.kind);
        ++seen[v];
        EXPECT_EQ(type, v == verdict::not_ip ? 0x0806 : 0) << "only ARP";
        EXPECT_GE(p.microseconds.value(), last);
        last = p.microseconds.value();
        if (v != verdict::flow_found) return;
        ++flows[flow_text(f) + " " + std::to_string(f.source_port)];
        seen_vlan |= f.vlan != 0;
        seen_vni |= f.vni != 0;
        seen_v6 |= f.version == ip_version::v6;
    });
    EXPECT_EQ(result.packets, made.packets);
    EXPECT_EQ(seen[verdict::not_ip], made.other_frames);
    EXPECT_EQ(seen.size(), 2u) << "only flows and frames that are not IP";
    EXPECT_GT(flows.size(), made.conversations);
    EXPECT_LE(flows.size(), 2 * made.conversations);
    EXPECT_TRUE(seen_vlan && seen_vni && seen_v6);
}

TEST_F(Capture, TheSameSeedMakesTheSameTraffic) {
    const auto made = [&](const char *name, uint32_t seed) {
        capture_writer out(path(name));
        make_traffic(out, 500, seed);
        out.close();
        std::ifstream in(path(name), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    };
    const std::string first = made("a", 7);
    EXPECT_EQ(first, made("b", 7));
    EXPECT_NE(first, made("c", 8));
}

TEST_F(Capture, AFileThatCannotBeMadeIsRefused) {
    try {
        capture_writer out(path("no/such/directory.pcap"));
        FAIL() << "opened";
    } catch (const std::runtime_error &e) {
        EXPECT_THAT(e.what(), HasSubstr("no/such/directory.pcap: No such file or directory"));
    }
}

// What stood there before an attempt that failed stands there after it, and nothing else does.
TEST_F(Capture, AFileGetsItsNameWhenItIsWhole) {
    const std::string file = write("traffic.pcap", {'o', 'l', 'd'});
    const auto content = [&] {
        std::ifstream in(file, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    };
    const auto names = [&] {
        const std::filesystem::directory_iterator first(std::filesystem::path(file).parent_path());
        return std::distance(first, {});
    };
    {
        capture_writer out(file);
        make_traffic(out, 500, 1);
        EXPECT_EQ(content(), "old");
        EXPECT_EQ(names(), 2);
    }
    EXPECT_EQ(content(), "old");
    EXPECT_EQ(names(), 1);
    {
        capture_writer out(file);
        out.close();
    }
    EXPECT_EQ(content().size(), 24u);
    EXPECT_EQ(names(), 1);
}

TEST_F(Capture, AFullDiskIsMetEarly) {
    capture_writer out("/dev/full");
    uint64_t rounds = 0;
    try {
        make_traffic(out, 1000000, 1, [&] { ++rounds; });
        FAIL() << "written";
    } catch (const std::runtime_error &e) {
        EXPECT_STREQ(e.what(), "/dev/full: No space left on device");
    }
    EXPECT_LT(rounds, 100u);
}
