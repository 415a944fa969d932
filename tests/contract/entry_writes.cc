#include "tests/contract/entry_writes.h"

#include <algorithm>
#include <cstring>

namespace halden::test {

namespace {

// Leaves old bytes where the next call's images will be.
[[gnu::noinline]] void dirty_stack() {
    volatile uint8_t old[32 * 1024];
    for (volatile uint8_t &byte : old) byte = 0xa5;
}

void expect_zero_then_dirty(const argument &image, size_t bytes, const char *what) {
    if (image.pointer == nullptr) return;
    auto *start = const_cast<uint8_t *>(static_cast<const uint8_t *>(image.pointer));
    EXPECT_TRUE(std::all_of(start, start + bytes, [](uint8_t byte) { return byte == 0; }))
        << what << " is not " << bytes << " zero bytes";
    std::memset(start, 0xee, bytes);
}

std::vector<uint8_t> record_bytes(size_t bytes, uint8_t first) {
    std::vector<uint8_t> record(bytes);
    for (size_t i = 0; i < bytes; ++i) record[i] = static_cast<uint8_t>(1 + (first + 37 * i) % 255);
    return record;
}

}  // namespace

std::string name_of(entry_point way) {
    switch (way) {
        case entry_point::with_datamask:
            return "p4pd_entry_write_with_datamask";
        case entry_point::six_arguments:
            return "p4pd_entry_write";
        case entry_point::named_writer:
            return "named writer";
    }
    return "";
}

p4pd_error_t write(entry_point way, const write_request &r) {
    switch (way) {
        case entry_point::with_datamask:
            return p4pd_entry_write_with_datamask(r.tableid, r.index, r.key, r.key_mask, r.data,
                                                  r.data_mask, r.flag);
        case entry_point::six_arguments:
            EXPECT_EQ(r.data_mask, nullptr) << "takes no data mask";
            return p4pd_entry_write(r.tableid, r.index, r.key, r.key_mask, r.data, r.flag);
        case entry_point::named_writer:
            return write_with_named_writer(r);
    }
    return 1;
}

EntryWrite::EntryWrite() { begin(); }
EntryWrite::~EntryWrite() { host_.reset(); }

void EntryWrite::begin() {
    host_.reset();
    prepares_ = 0;
    host_.on_call = [this](const call &made) { check_images(made); };
    host_.on_prepare = [this](const call &) { return prepared_length(prepares_++); };
    host_.on_action_pc = [](uint32_t, uint8_t action) { return program_counter(action); };
    dirty_stack();
}

void EntryWrite::use_record(size_t bytes, uint8_t action) {
    record_ = record_bytes(bytes, 11);
    record_[0] = action;
    host_.name_buffer("record", record_.data(), record_.size());
}

void EntryWrite::use_mask_record(size_t bytes, uint8_t action) {
    mask_record_ = record_bytes(bytes, 97);
    mask_record_[0] = action;
    host_.name_buffer("mask record", mask_record_.data(), mask_record_.size());
}

void EntryWrite::check_images(const call &made) {
    const auto &given = made.arguments;
    // A data image counts when bits are taken from it.
    const auto check_data = [&given](size_t at, const char *what) {
        if (given[at + 1].number != 0) expect_zero_then_dirty(given[at], 512, what);
    };
    if (made.name == prepare_call) {
        expect_zero_then_dirty(given[0], 1024, "the entry");
        check_data(4, "the packed data");
    } else if (made.name == prepare_hash_call || made.name == prepare_wide_call) {
        expect_zero_then_dirty(given[0], made.name == prepare_wide_call ? 6144 : 1024, "the entry");
        check_data(6, "the data before the key");
        check_data(8, "the data after the key");
    }
}

}  // namespace halden::test
