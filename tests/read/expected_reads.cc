#include "tests/read/expected_reads.h"

namespace halden::read_tests {

using test::at;
using test::expected;

namespace {

void add_key(expected &calls, uint32_t id, const char *record, const char *image) {
    for (const key_call &key : key_calls(id))
        calls.push_back(
            {key.single ? "p4pd_utils_copy_single_bit" : "p4pd_utils_copy_be_src_to_le_dest",
             {at(record, key.record_byte), key.record_bit, at(image), key.image_bit, key.width}});
}

// The parameters of a table of several actions stand behind the program counter.
void add_data(expected &calls, const read_of &read) {
    const uint64_t behind = has_programs(read.id) ? 1 : 0;
    if (has_programs(read.id)) calls.push_back({"asicpd_get_action_id", {read.id, read.program}});
    for (const data_field &field : data_fields(read.id, read.action))
        calls.push_back(
            {"p4pd_utils_copy_be_adata_to_le_dest",
             {at("data", field.first_byte), 0, at("row", behind), field.position, field.width}});
}

uint16_t whole_words(uint16_t bits) { return static_cast<uint16_t>((bits + 15) / 16 * 16); }

// SRAM rows are swizzled back before their length is looked at.
void add_sram(expected &calls, const read_of &read) {
    calls.push_back(
        {"asicpd_table_entry_read", {read.id, read.index, at("row"), at("bits"), read.flag}});
    calls.push_back({"p4pd_utils_swizzle_bytes", {at("row"), read.bits}});
    if (read.bits == 0) return;
    add_key(calls, read.id, "key", "row");
    add_data(calls, read);
}

// HBM rows are not swizzled and are read without the flag.
void add_hbm(expected &calls, const read_of &read) {
    calls.push_back({"asicpd_hbm_table_entry_read", {read.id, read.index, at("row"), at("bits")}});
    if (read.bits == 0) return;
    add_key(calls, read.id, "key", "row");
    add_data(calls, read);
}

// Both images, then the data row at the same index, an overflow table's too.
void add_tcam(expected &calls, const read_of &read) {
    calls.push_back({"asicpd_tcam_table_entry_read",
                     {read.id, read.index, at("x"), at("y"), at("width"), at("extra"), read.flag}});
    if (read.width == 0) return;
    calls.push_back({"p4pd_utils_swizzle_bytes", {at("x"), whole_words(read.width)}});
    calls.push_back({"p4pd_utils_swizzle_bytes", {at("y"), whole_words(read.width)}});
    add_key(calls, read.id, "key", "x");
    add_key(calls, read.id, "mask", "y");
    calls.push_back(
        {"asicpd_table_entry_read", {read.id, read.index, at("row"), at("bits"), read.flag}});
    if (read.bits == 0) return;
    calls.push_back({"p4pd_utils_swizzle_bytes", {at("row"), whole_words(read.bits)}});
    add_data(calls, read);
}

}  // namespace

expected calls_of(const read_of &read) {
    expected calls;
    const reference::table &facts = reference::table_of(read.id);
    if (facts.has_tcam())
        add_tcam(calls, read);
    else if (facts.in_hbm())
        add_hbm(calls, read);
    else
        add_sram(calls, read);
    return calls;
}

}  // namespace halden::read_tests
