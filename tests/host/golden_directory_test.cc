// The files of an adapter's directory, byte by byte, as host/README.md lays them out: a directory
// that was laid out by hand is read, and one that the adapter writes has these bytes and no others.
// What was written by an earlier version must be read by every later one: where a line here has to
// change, the version in the file `adapter` does too.

#include "host/adapter.h"
#include "host/state/table_state.h"
#include "host/trace/trace.h"

#include "tests/support/scratch_directory.h"
#include "tev_tbl.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace halden;
using host::access;
using host::adapter;
using test::scratch_directory;
using test::text_of;
using test::write_text;
namespace fs = std::filesystem;
using bytes = std::vector<uint8_t>;

constexpr const char *adapter_text = "halden adapter 1\nflow_rows 16\nflow_ohash_rows 8\n";

// FILE SIZE, then OFFSET BYTES; every other byte is 0. The state word of a row is its number of
// writes, low byte first, above its length in bits.
constexpr const char *manifest = R"(
# SRAM: lif_mapping, row 5 written once, 49 bits: src_lport 2
table-16.sram 135168
  20    31 00 01 00
  4800  00 00 00 00 00 00 40 00
# row 6 written twice, the second time with 16 bits; row 7 written and emptied
  24    10 00 02 00
  4864  ab cd
  4928  11 22 33 44 55 66 77 88
  28    00 00 02 00
  5056  99 88

# TCAM: tunnel_terminate_v4, row 3, 128 bits of key, then 128 of mask at the row's byte 32
table-08.tcam 69632
  12    80 00 01 00
  4544  00 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f
  4576  f0 f1 f2 f3 f4 f5 f6 f7 f8 f9 fa fb fc fd fe ff

# TCAM of an overflow table, the last of its 512 rows
table-07.tcam 69632
  2044  20 00 01 00
  69568 12 34 56 78
  69600 9a bc de f0

# SRAM of a hash table: 4096 rows and the 512 of its overflow; overflow row 511 is row 4607
table-03.sram 610304
  4     30 00 01 00
  20672 64 01 00 00 a0 00
  18428 30 00 01 00
  610240 0a 0b 0c 0d 0e 0f

# HBM with lengths: flow_info, the last of 2097152 rows, 328 bits
table-21.hbm 276824064
  8388604 48 01 01 00
  276824000 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f 10 11 12 13 14 15 16 17 18 19 1a 1b 1c 1d 1e 1f 20 21 22 23 24 25 26 27 28 29

# HBM of the flow tables, no state words: the flow 10.0.0.1:1024 -> 10.0.0.2:80, TCP, flow_idx 5
table-02.hbm 2048
  1552  06
  1576  50 04
  1591  0a 00 00 02
  1602  14
  1616  0a 00 00 01
  1652  08
table-01.hbm 1024
  896   01
  1023  ff
)";

struct memory_bytes {
    off_t size = 0;
    std::map<off_t, uint8_t> at;  // those that are not 0
};

std::map<std::string, memory_bytes> parsed(const std::string &text) {
    std::map<std::string, memory_bytes> out;
    std::istringstream lines(text);
    memory_bytes *now = nullptr;
    for (std::string line; std::getline(lines, line);) {
        std::istringstream in(line);
        if (line.empty() || line[0] == '#') continue;
        if (line[0] != ' ') {
            std::string name;
            in >> name;
            now = &out[name];
            in >> now->size;
            continue;
        }
        off_t offset = 0;
        in >> offset;
        for (unsigned byte; in >> std::hex >> byte; ++offset)
            if (byte != 0) now->at[offset] = static_cast<uint8_t>(byte);
    }
    return out;
}

void lay_out(const std::string &directory) {
    fs::create_directory(directory);
    write_text(directory + "/adapter", adapter_text);
    for (const auto &[name, holds] : parsed(manifest)) {
        const int file = open((directory + "/" + name).c_str(), O_RDWR | O_CREAT, 0600);
        ASSERT_GE(file, 0);
        ASSERT_EQ(ftruncate(file, holds.size), 0);
        for (const auto &[offset, byte] : holds.at) ASSERT_EQ(pwrite(file, &byte, 1, offset), 1);
        close(file);
    }
}

memory_bytes found_in(const std::string &path) {
    memory_bytes out;
    const int file = open(path.c_str(), O_RDONLY);
    struct stat status = {};
    EXPECT_EQ(fstat(file, &status), 0) << path;
    out.size = status.st_size;
    bytes part(65536);
    for (off_t at = lseek(file, 0, SEEK_DATA); at >= 0 && at < out.size;) {
        const ssize_t got = pread(file, part.data(), part.size(), at);
        if (got <= 0) break;
        for (ssize_t i = 0; i < got; ++i)
            if (part[static_cast<size_t>(i)] != 0) out.at[at + i] = part[static_cast<size_t>(i)];
        at = lseek(file, at + got, SEEK_DATA);
    }
    close(file);
    return out;
}

class GoldenDirectory : public testing::Test {
  protected:
    std::string path() const { return scratch_.file("a"); }
    std::unique_ptr<adapter> open(access how) const {
        host::adapter_options options;
        options.flow_rows = 16;
        options.flow_ohash_rows = 8;
        options.access = how;
        return adapter::open(path(), options);
    }

    scratch_directory scratch_;
};

bytes counting(uint8_t first, size_t count) {
    bytes out;
    for (size_t i = 0; i < count; ++i) out.push_back(static_cast<uint8_t>(first + i));
    return out;
}

const bytes lif_2 = {0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x40, 0x00};

// The row of flow 10.0.0.1:1024 -> 10.0.0.2:80.
bytes flow_row() {
    bytes out(128);
    out[16] = 6;
    out[40] = 0x50;
    out[41] = 0x04;
    out[55] = 10;
    out[58] = 2;
    out[66] = 0x14;
    out[80] = 10;
    out[83] = 1;
    out[116] = 0x08;
    return out;
}

TEST_F(GoldenDirectory, LaidOutByHandIsReadThroughTheAdapter) {
    lay_out(path());
    const auto golden = open(access::read);
    bytes image(128), mask(32);
    const auto first = [&](size_t count) {
        return bytes(image.begin(), image.begin() + static_cast<long>(count));
    };
    uint16_t bits = 0;
    ASSERT_EQ(golden->sram_read(16, 5, image.data(), &bits), SDK_RET_OK);
    EXPECT_EQ(bits, 49);
    EXPECT_EQ(first(8), lif_2);
    ASSERT_EQ(golden->sram_read(16, 6, image.data(), &bits), SDK_RET_OK);
    EXPECT_EQ(bits, 16);
    EXPECT_EQ(first(2), (bytes{0xab, 0xcd}));
    ASSERT_EQ(golden->sram_read(16, 7, image.data(), &bits), SDK_RET_OK);
    EXPECT_EQ(bits, 0);
    ASSERT_EQ(golden->tcam_read(8, 3, image.data(), mask.data(), &bits), SDK_RET_OK);
    EXPECT_EQ(bits, 128);
    EXPECT_EQ(first(16), counting(0x00, 16));
    mask.resize(16);
    EXPECT_EQ(mask, counting(0xf0, 16));
    ASSERT_EQ(golden->tcam_read(7, 511, image.data(), mask.data(), &bits), SDK_RET_OK);
    EXPECT_EQ(bits, 32);
    EXPECT_EQ(first(4), (bytes{0x12, 0x34, 0x56, 0x78}));
    ASSERT_EQ(golden->sram_read(3, 1, image.data(), &bits), SDK_RET_OK);
    EXPECT_EQ(bits, 48);
    EXPECT_EQ(first(6), (bytes{0x64, 0x01, 0x00, 0x00, 0xa0, 0x00}));
    ASSERT_EQ(golden->sram_read(7, 511, image.data(), &bits), SDK_RET_OK);
    EXPECT_EQ(first(6), counting(0x0a, 6));
    ASSERT_EQ(golden->hbm_read(21, 2097151, image.data(), &bits), SDK_RET_OK);
    EXPECT_EQ(bits, 328);
    EXPECT_EQ(first(41), counting(0x01, 41));
    ASSERT_EQ(golden->hbm_read(2, 12, image.data(), &bits), SDK_RET_OK);
    EXPECT_EQ(bits, 1024);
    EXPECT_EQ(image, flow_row());
    ASSERT_EQ(golden->hbm_read(1, 7, image.data(), &bits), SDK_RET_OK);
    EXPECT_EQ(image[0], 0x01);
    EXPECT_EQ(image[127], 0xff);
    // And nothing else is there.
    EXPECT_EQ(golden->next_used(16, 0), 5u);
    EXPECT_EQ(golden->next_used(16, 7), 1024u);
    EXPECT_EQ(golden->next_used(8, 0), 3u);
    EXPECT_EQ(golden->next_used(8, 4), 512u);
    EXPECT_EQ(golden->next_used(3, 2), 4096u);
    EXPECT_EQ(golden->next_used(21, 0), 2097151u);
    EXPECT_EQ(golden->next_used(2, 0), 12u);
    EXPECT_EQ(golden->next_used(2, 13), 16u);
    EXPECT_EQ(golden->next_used(24, 0), 4096u);
}

TEST_F(GoldenDirectory, ItsEntriesAreThoseOfTheTableApi) {
    lay_out(path());
    const auto golden = open(access::read);
    host::table_state tables(*golden);
    tev_tbl_lif_mapping_info_t lif = {};
    lif.key.index = 5;
    ASSERT_EQ(tev_tbl_lif_mapping_read(&lif.key, &lif), TEV_TBL_RET_OK);
    EXPECT_EQ(+lif.action_u.lif_mapping.src_lport, 2);
    tev_tbl_flow_info_t flow = {};
    flow.key.metadata_flow_key_proto = 6;
    flow.key.metadata_flow_key_sport = 1024;
    flow.key.metadata_flow_key_dport = 80;
    const uint8_t sip[] = {1, 0, 0, 10}, dip[] = {2, 0, 0, 10};  // byte 0 lowest
    std::copy(std::begin(sip), std::end(sip), flow.key.metadata_flow_key_sip);
    std::copy(std::begin(dip), std::end(dip), flow.key.metadata_flow_key_dip);
    ASSERT_EQ(tev_tbl_flow_read(&flow.key, &flow), TEV_TBL_RET_OK);
    EXPECT_EQ(+flow.action_u.flow_hash.flow_idx, 5u);
}

TEST_F(GoldenDirectory, TheAdapterWritesTheseBytesAndNoOthers) {
    {
        const auto made = open(access::create);
        const bytes older = {0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88};
        const bytes newer = {0xab, 0xcd}, gone = {0x99, 0x88};
        ASSERT_EQ(made->sram_write(16, 5, lif_2.data(), 49, nullptr), SDK_RET_OK);
        ASSERT_EQ(made->sram_write(16, 6, older.data(), 64, nullptr), SDK_RET_OK);
        ASSERT_EQ(made->sram_write(16, 6, newer.data(), 16, nullptr), SDK_RET_OK);
        ASSERT_EQ(made->sram_write(16, 7, gone.data(), 16, nullptr), SDK_RET_OK);
        ASSERT_EQ(made->clear_row(16, 7), SDK_RET_OK);
        ASSERT_EQ(made->tcam_write(8, 3, counting(0, 16).data(), counting(0xf0, 16).data(), 128),
                  SDK_RET_OK);
        const bytes key = {0x12, 0x34, 0x56, 0x78}, mask = {0x9a, 0xbc, 0xde, 0xf0};
        ASSERT_EQ(made->tcam_write(7, 511, key.data(), mask.data(), 32), SDK_RET_OK);
        const bytes vlan = {0x64, 0x01, 0x00, 0x00, 0xa0, 0x00};
        ASSERT_EQ(made->sram_write(3, 1, vlan.data(), 48, nullptr), SDK_RET_OK);
        ASSERT_EQ(made->sram_write(7, 4607, counting(0x0a, 6).data(), 48, nullptr), SDK_RET_OK);
        ASSERT_EQ(made->hbm_write(21, 2097151, counting(0x01, 41).data(), 328), SDK_RET_OK);
        ASSERT_EQ(made->hbm_write(2, 12, flow_row().data(), 1024), SDK_RET_OK);
        bytes overflow(128);
        overflow[0] = 0x01;
        overflow[127] = 0xff;
        ASSERT_EQ(made->hbm_write(1, 7, overflow.data(), 1024), SDK_RET_OK);
    }
    EXPECT_EQ(text_of(path() + "/adapter"), adapter_text);
    std::vector<std::string> names;
    for (const auto &each : fs::directory_iterator(path()))
        names.push_back(each.path().filename().string());
    EXPECT_THAT(names, testing::UnorderedElementsAre(
                           "adapter", "table-01.hbm", "table-02.hbm", "table-03.sram",
                           "table-07.tcam", "table-08.tcam", "table-16.sram", "table-21.hbm"));
    for (const auto &[name, wanted] : parsed(manifest)) {
        const memory_bytes found = found_in(path() + "/" + name);
        EXPECT_EQ(found.size, wanted.size) << name;
        EXPECT_EQ(found.at, wanted.at) << name;
    }
}

}  // namespace
