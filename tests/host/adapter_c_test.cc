// The adapter as C programs see it: results as numbers, reasons as text, nothing thrown.

#include "host/adapter_c.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <string>

#include "tests/support/scratch_directory.h"
#include "tev_tbl.h"

namespace {

using halden::test::scratch_directory;

constexpr halden_adapter_options_t with(halden_adapter_access_t access) {
    return {.access = access, .flow_rows = 1024, .flow_ohash_rows = 1024};
}
constexpr halden_adapter_options_t small = with(HALDEN_ACCESS_CREATE);

tev_tbl_ret_t create(uint16_t row, uint16_t lport) {
    tev_tbl_lif_mapping_spec_t spec = {};
    spec.key.index = row;
    spec.action_u.lif_mapping.src_lport = lport;
    return tev_tbl_lif_mapping_create(&spec);
}
// 0xffff when there is none.
uint16_t lport_at(uint16_t row) {
    const tev_tbl_lif_mapping_key_t key = {.index = row};
    tev_tbl_lif_mapping_info_t info = {};
    if (tev_tbl_lif_mapping_read(&key, &info) != TEV_TBL_RET_OK) return 0xffff;
    return info.action_u.lif_mapping.src_lport;
}

TEST(AdapterInC, MemoryEndsWithTheAdapter) {
    halden_adapter_t *adapter = nullptr;
    ASSERT_EQ(halden_adapter_open(nullptr, &small, &adapter), HALDEN_ADAPTER_OK);
    ASSERT_NE(adapter, nullptr);
    EXPECT_EQ(create(5, 17), TEV_TBL_RET_OK);
    EXPECT_EQ(lport_at(5), 17u);
    halden_adapter_close(adapter);
    ASSERT_EQ(halden_adapter_open(nullptr, nullptr, &adapter), HALDEN_ADAPTER_OK);
    EXPECT_NE(lport_at(5), 17u);
    halden_adapter_close(adapter);
}

TEST(AdapterInC, ADirectoryKeepsItsEntries) {
    const scratch_directory scratch;
    const std::string directory = scratch.path() + "/adapter";
    halden_adapter_t *adapter = nullptr;
    ASSERT_EQ(halden_adapter_open(directory.c_str(), &small, &adapter), HALDEN_ADAPTER_OK)
        << halden_adapter_error();
    EXPECT_EQ(create(5, 17), TEV_TBL_RET_OK);
    halden_adapter_close(adapter);
    ASSERT_EQ(halden_adapter_open(directory.c_str(), &small, &adapter), HALDEN_ADAPTER_OK)
        << halden_adapter_error();
    EXPECT_EQ(lport_at(5), 17u);
    halden_adapter_close(adapter);
}

TEST(AdapterInC, ARefusalSaysWhy) {
    const scratch_directory scratch;
    halden_adapter_t *adapter = reinterpret_cast<halden_adapter_t *>(1);
    const std::string file = scratch.path() + "/file";
    std::fclose(std::fopen(file.c_str(), "w"));
    EXPECT_EQ(halden_adapter_open(file.c_str(), &small, &adapter), HALDEN_ADAPTER_REFUSED);
    EXPECT_EQ(adapter, nullptr);
    EXPECT_NE(std::strstr(halden_adapter_error(), file.c_str()), nullptr) << halden_adapter_error();

    const halden_adapter_options_t odd = {
        .access = HALDEN_ACCESS_CREATE, .flow_rows = 1000, .flow_ohash_rows = 1024};
    EXPECT_EQ(halden_adapter_open(nullptr, &odd, &adapter), HALDEN_ADAPTER_REFUSED);
    EXPECT_EQ(adapter, nullptr);
    EXPECT_NE(std::strstr(halden_adapter_error(), "1000"), nullptr) << halden_adapter_error();
    EXPECT_EQ(halden_adapter_open(nullptr, &small, nullptr), HALDEN_ADAPTER_INVALID_ARG);
}

TEST(AdapterInC, AnAdapterThatIsNotThereIsMadeForCreateAlone) {
    const scratch_directory scratch;
    const std::string directory = scratch.path() + "/adapter";
    for (const auto access : {HALDEN_ACCESS_WRITE, HALDEN_ACCESS_READ, HALDEN_ACCESS_REHEARSE}) {
        const auto options = with(access);
        halden_adapter_t *adapter = nullptr;
        EXPECT_EQ(halden_adapter_open(directory.c_str(), &options, &adapter), HALDEN_ADAPTER_ABSENT)
            << access;
        EXPECT_NE(std::strstr(halden_adapter_error(), directory.c_str()), nullptr)
            << halden_adapter_error();
        EXPECT_FALSE(std::filesystem::exists(directory));
    }
    auto wrong = small;
    const unsigned four = 4;
    std::memcpy(&wrong.access, &four, sizeof four);
    halden_adapter_t *adapter = nullptr;
    EXPECT_EQ(halden_adapter_open(directory.c_str(), &wrong, &adapter), HALDEN_ADAPTER_INVALID_ARG);
    EXPECT_STREQ(halden_adapter_error(), "halden_adapter_open: access is 0 to 3");
}

TEST(AdapterInC, ReadingAndRehearsingLeaveTheDirectoryAsItIs) {
    const scratch_directory scratch;
    const std::string directory = scratch.path() + "/adapter";
    halden_adapter_t *adapter = nullptr;
    ASSERT_EQ(halden_adapter_open(directory.c_str(), &small, &adapter), HALDEN_ADAPTER_OK);
    EXPECT_EQ(create(5, 17), TEV_TBL_RET_OK);
    halden_adapter_close(adapter);

    const auto reading = with(HALDEN_ACCESS_READ);
    ASSERT_EQ(halden_adapter_open(directory.c_str(), &reading, &adapter), HALDEN_ADAPTER_OK)
        << halden_adapter_error();
    EXPECT_EQ(lport_at(5), 17u);
    EXPECT_NE(create(6, 18), TEV_TBL_RET_OK);
    halden_adapter_close(adapter);
    const auto rehearsing = with(HALDEN_ACCESS_REHEARSE);
    ASSERT_EQ(halden_adapter_open(directory.c_str(), &rehearsing, &adapter), HALDEN_ADAPTER_OK)
        << halden_adapter_error();
    EXPECT_EQ(create(6, 18), TEV_TBL_RET_OK);
    EXPECT_EQ(lport_at(6), 18u);
    halden_adapter_close(adapter);
    const auto writing = with(HALDEN_ACCESS_WRITE);
    ASSERT_EQ(halden_adapter_open(directory.c_str(), &writing, &adapter), HALDEN_ADAPTER_OK);
    EXPECT_EQ(lport_at(6), 0xffffu);
    EXPECT_EQ(create(6, 18), TEV_TBL_RET_OK);
    halden_adapter_close(adapter);
}

TEST(AdapterInC, OneIsOpenAtATime) {
    halden_adapter_t *first = nullptr, *second = nullptr;
    ASSERT_EQ(halden_adapter_open(nullptr, &small, &first), HALDEN_ADAPTER_OK);
    EXPECT_EQ(halden_adapter_open(nullptr, &small, &second), HALDEN_ADAPTER_IN_USE);
    EXPECT_EQ(second, nullptr);
    EXPECT_STREQ(halden_adapter_error(),
                 "halden_adapter_open: this process has an adapter open; close it first");
    // The first one is as it was.
    EXPECT_EQ(create(5, 17), TEV_TBL_RET_OK);
    halden_adapter_close(first);
    halden_adapter_close(nullptr);
    ASSERT_EQ(halden_adapter_open(nullptr, &small, &second), HALDEN_ADAPTER_OK);
    halden_adapter_close(second);
}

}  // namespace
