#include "tests/read/row_memory.h"

namespace halden::read_tests {

using test::argument;
using test::call;
using test::recording_host;

namespace {

bytes image_at(const argument &image, uint64_t bits) {
    const auto *at = static_cast<const uint8_t *>(image.pointer);
    return {at, at + (bits + 15) / 16 * 2};
}

// Where in its owner's memory an overflow table's data lies.
uint32_t window_of(uint32_t table) {
    switch (table) {
        case 7:
        case 14:
            return 4096;
        case 10:
        case 11:
            return 8192;
        default:
            return 0;
    }
}

}  // namespace

row_memory::row_memory() {
    recording_host &host = recording_host::get();
    host.reset();
    host.on_call = [this](const call &made) { take(made); };
    host.on_read = [this](const char *name, uint32_t table, uint32_t index) {
        return answer(name, table, index);
    };
    host.on_action_pc = [](uint32_t, uint8_t action) { return program_of(action); };
    host.on_action_id = [](uint32_t, uint8_t pc) {
        return static_cast<uint8_t>(pc - program_of(0));
    };
}

row_memory::~row_memory() { recording_host::get().reset(); }

void row_memory::take(const call &made) {
    const auto number = [&](size_t i) { return static_cast<uint32_t>(made.arguments[i].number); };
    if (made.name == "asicpd_table_entry_write")
        rows_[{"sram", number(0), number(1)}] = {
            image_at(made.arguments[2], number(3)), {}, static_cast<uint16_t>(number(3))};
    if (made.name == "asicpd_hbm_table_entry_write")
        rows_[{"hbm", number(0), number(1)}] = {
            image_at(made.arguments[2], number(4)), {}, static_cast<uint16_t>(number(4))};
    if (made.name == "asicpd_tcam_table_entry_write")
        rows_[{"tcam", number(0), number(1)}] = {image_at(made.arguments[2], number(4)),
                                                 image_at(made.arguments[3], number(4)),
                                                 static_cast<uint16_t>(number(4))};
}

test::read_answer row_memory::answer(const std::string &read, uint32_t table,
                                     uint32_t index) const {
    const bool sram = read == "asicpd_table_entry_read";
    const char *memory = sram ? "sram" : read == "asicpd_hbm_table_entry_read" ? "hbm" : "tcam";
    const auto found = rows_.find({memory, table, index + (sram ? window_of(table) : 0)});
    if (found == rows_.end()) return {};
    return {found->second.image, found->second.mask, found->second.bits, 0};
}

}  // namespace halden::read_tests
