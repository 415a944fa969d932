#pragma once

// What the tests of the entry writers share.

#include <cstdint>
#include <string>
#include <vector>

#include "gtest/gtest.h"
#include "p4pd.h"
#include "tests/contract/expect_calls.h"
#include "tests/contract/named.h"
#include "tests/support/recording_host.h"

namespace halden::test {

// Names of the imported calls, for expectations.
inline const std::string action_pc_call = "asicpd_get_action_pc";
inline const std::string pack_call = "p4pd_utils_copy_le_src_to_be_dest";
inline const std::string prepare_call = "p4pd_utils_p4table_entry_prepare";
inline const std::string prepare_hash_call = "p4pd_utils_hash_table_entry_prepare";
inline const std::string prepare_wide_call = "p4pd_utils_widekey_hash_table_entry_prepare";
inline const std::string swizzle_call = "p4pd_utils_swizzle_bytes";
inline const std::string sram_call = "asicpd_table_entry_write";
inline const std::string tcam_call = "asicpd_tcam_table_entry_write";
inline const std::string hbm_call = "asicpd_hbm_table_entry_write";

// The ways to write one entry from images.
enum class entry_point { with_datamask, six_arguments, named_writer };
inline constexpr entry_point entry_points[] = {
    entry_point::with_datamask, entry_point::six_arguments, entry_point::named_writer};
std::string name_of(entry_point way);

struct write_request {
    uint32_t tableid;
    uint32_t index;
    uint8_t *key;
    uint8_t *key_mask;
    void *data;
    void *data_mask;
    bool flag;
};

p4pd_error_t write(entry_point way, const write_request &request);

// <table>_entry_write of the request's table, with what its kind takes of the request.
p4pd_error_t write_with_named_writer(const write_request &request);

// An address that no code can read.
inline void *unreadable() { return reinterpret_cast<void *>(uintptr_t{8}); }

// Length that the host answers to the nth laying out of an entry, from 0: no two are alike, so that
// the length in each later call tells which one it came from.
constexpr uint16_t prepared_length(size_t nth) { return static_cast<uint16_t>(801 + 22 * nth); }

// The program counter that the host answers; never 0xff for the action ids tried.
constexpr uint8_t program_counter(uint8_t action) { return static_cast<uint8_t>(action ^ 0x30); }

class EntryWrite : public testing::Test {
  protected:
    EntryWrite();
    ~EntryWrite() override;

    // A write is about to be made: no calls yet, a stack full of old bytes. The records get their
    // sizes, bytes that are none of them zero, and the action ids, and their names.
    void begin();
    void use_record(size_t bytes, uint8_t action);
    void use_mask_record(size_t bytes, uint8_t action);

    recording_host &host_ = recording_host::get();
    std::vector<uint8_t> record_, mask_record_;

  private:
    // Images are zero when an entry is laid out, for no routine of this host writes to them; then
    // they are dirtied, so that one that is used again was zeroed again.
    void check_images(const call &made);
    size_t prepares_ = 0;
};

inline std::string text(entry_point way, unsigned action, bool flag) {
    return name_of(way) + ", action " + std::to_string(action) + ", flag " +
           (flag ? "true" : "false");
}

}  // namespace halden::test
