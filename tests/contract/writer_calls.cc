#include "tests/contract/writer_calls.h"

#include <iterator>

namespace halden::test {

namespace {

// Copies of `fields` from `record` into `image`.
void append_packing(expected &calls, const std::string &image, const std::string &record,
                    packed_fields fields) {
    for (const packed_field &f : fields)
        calls.push_back({pack_call, {at(image), f.bit, at(record, f.byte), 0, f.width}});
}

uint8_t pc(bool has_programs, uint8_t action) {
    return has_programs ? program_counter(action) : 0xff;
}

// Up to the entries that are laid out, the mask's first. The data's length is the table's whatever
// is packed.
expected mask_layout(const index_table &t, const written &w) {
    expected calls;
    if (t.has_programs) calls.push_back({action_pc_call, {t.id, w.action}});
    if (!w.masked()) return calls;
    append_packing(calls, "packed mask", "mask record",
                   t.fields(static_cast<uint8_t>(w.mask_action)));
    calls.push_back({prepare_call,
                     {at("mask entry"), pc(t.has_programs, w.action), null, 0, at("packed mask"),
                      t.data_bits}});
    calls.push_back(let_go("packed mask"));
    return calls;
}

void append_data_layout(expected &calls, const index_table &t, const written &w) {
    append_packing(calls, "packed", "record", t.fields(w.action));
    calls.push_back(
        {prepare_call,
         {at("entry"), pc(t.has_programs, w.action), null, 0, at("packed"), t.data_bits}});
}

// The mask's entry is swizzled over the length of the data's.
void append_sram_write(expected &calls, uint32_t id, const written &w) {
    const uint16_t length = prepared_length(w.masked() ? 1 : 0);
    calls.push_back({swizzle_call, {at("entry"), length}});
    if (w.masked()) calls.push_back({swizzle_call, {at("mask entry"), length}});
    calls.push_back(
        {sram_call,
         {id, written_row, at("entry"), length, w.masked() ? at("mask entry") : null, w.flag}});
}

// The data row of a hash table, or of the overflow of one: [room for the key][data]. An action that
// packs nothing has no data bits behind the key.
expected hash_row(const keyed_table &t, const place &key, const written &w) {
    expected calls;
    append_packing(calls, "packed", "record", t.fields(w.action));
    const uint16_t packed_bits = w.action == 0 ? t.data_bits : uint16_t{0};
    calls.push_back({prepare_hash_call,
                     {at("entry"), 0xff, 0, key, t.key_bits, t.data_bits, null, 0, at("packed"),
                      packed_bits, anything}});
    calls.push_back({swizzle_call, {at("entry", w.offset), prepared_length(0)}});
    calls.push_back({sram_call,
                     {t.id, written_row + t.data_row, at("entry", w.offset), prepared_length(0),
                      null, w.flag}});
    return calls;
}

void append_tcam_row(expected &calls, const keyed_table &t, const written &w) {
    calls.push_back({swizzle_call, {at("key"), t.key_bits}});
    calls.push_back({swizzle_call, {at("key mask"), t.key_bits}});
    calls.push_back(
        {tcam_call, {t.id, written_row, at("key"), at("key mask"), t.tcam_width, w.flag}});
}

}  // namespace

expected index_sram_calls(const index_table &t, const written &w) {
    expected calls = mask_layout(t, w);
    append_data_layout(calls, t, w);
    append_sram_write(calls, t.id, w);
    return calls;
}

// Nothing is swizzled; a mask is packed and laid out, and goes no further; the flag goes nowhere.
expected index_hbm_calls(const index_table &t, const written &w) {
    expected calls = mask_layout(t, w);
    calls.push_back(let_go("mask entry"));
    append_data_layout(calls, t, w);
    calls.push_back(
        {hbm_call, {t.id, written_row, at("entry"), 0, prepared_length(w.masked() ? 1 : 0)}});
    return calls;
}

expected keyless_calls(const keyless_table &t, const written &w) {
    expected calls;
    if (w.masked()) calls.push_back({prepare_call, {at("mask entry"), 0xff, null, 0, anything, 0}});
    calls.push_back({prepare_call, {at("entry"), 0xff, null, 0, anything, 0}});
    append_sram_write(calls, t.id, w);
    return calls;
}

// The data goes to SRAM first, then key and mask to the TCAM. An action without data, or unknown,
// hands on the table's data length all the same.
expected tcam_calls(const keyed_table &t, const written &w) {
    expected calls;
    if (t.has_programs) calls.push_back({action_pc_call, {t.id, w.action}});
    append_packing(calls, "packed", "record", t.fields(w.action));
    calls.push_back(
        {prepare_call,
         {at("entry"), pc(t.has_programs, w.action), null, 0, at("packed"), t.data_bits}});
    append_sram_write(calls, t.id, w);
    append_tcam_row(calls, t, w);
    return calls;
}

// The data goes to the owner's rows, beyond its own, under the overflow table's id; it is laid out
// as a hash entry whose key is left out.
expected overflow_calls(const keyed_table &t, const written &w) {
    expected calls = hash_row(t, null, w);
    append_tcam_row(calls, t, w);
    return calls;
}

// One row with key and data; nothing goes to a TCAM and the caller's key is not swizzled.
expected hash_sram_calls(const keyed_table &t, const written &w) {
    return hash_row(t, at("key"), w);
}

// Data stands on both sides of the key's last part. Nothing is swizzled and the flag goes nowhere.
expected flow_calls(const flow_table &t, const written &w) {
    const bool packs = w.action == 0;
    expected calls;
    if (packs) append_packing(calls, "before", "record", flow_before_key_fields);
    if (packs) append_packing(calls, "after", "record", flow_after_key_fields);
    calls.push_back({prepare_wide_call,
                     {at("entry"), 0xff, 32, at("key"), 640, 293, at("before"), packs ? 32 : 0,
                      at("after"), packs ? 261 : 0, anything}});
    calls.push_back({hbm_call, {t.id, written_row, at("entry", w.offset), 0, prepared_length(0)}});
    return calls;
}

expected writer_calls(uint32_t id, const written &w) {
    for (const flow_table &t : flow_tables)
        if (t.id == id) return flow_calls(t, w);
    for (const keyed_table &t : hash_sram_tables)
        if (t.id == id) return hash_sram_calls(t, w);
    for (const keyed_table &t : overflow_tables)
        if (t.id == id) return overflow_calls(t, w);
    for (const keyed_table &t : tcam_tables)
        if (t.id == id) return tcam_calls(t, w);
    for (const index_table &t : index_sram_tables)
        if (t.id == id) return index_sram_calls(t, w);
    for (const index_table &t : index_hbm_tables)
        if (t.id == id) return index_hbm_calls(t, w);
    for (const keyless_table &t : keyless_tables)
        if (t.id == id) return keyless_calls(t, w);
    ADD_FAILURE() << "no table " << id;
    return {};
}

table_sizes sizes_of(uint32_t id) {
    static constexpr table_sizes sizes[] = {
        {1, 59}, {1, 59}, {1, 5},  {1, 4},  {1, 4},  {1, 10}, {1, 5},  {1, 3},  {1, 3},  {1, 4},
        {1, 4},  {4, 3},  {4, 2},  {1, 10}, {22, 2}, {1, 12}, {1, 11}, {1, 14}, {1, 14}, {1, 9},
        {1, 64}, {2, 27}, {2, 27}, {1, 6},  {1, 49}, {1, 65}, {1, 65}, {1, 65}, {1, 65}, {1, 28},
        {1, 73}, {1, 39}, {1, 35}, {1, 60}, {1, 18}, {1, 18}, {2, 18}, {3, 2},  {1, 49}, {1, 65},
        {1, 2},  {1, 2},  {1, 2},  {1, 2},  {1, 2},  {1, 2},  {1, 2},  {1, 2},
    };
    static_assert(std::size(sizes) == 48);
    return sizes[id - 1];
}

std::vector<uint8_t> action_ids(uint8_t actions) {
    std::vector<uint8_t> ids;
    for (unsigned id = 0; id <= actions; ++id) ids.push_back(static_cast<uint8_t>(id));
    ids.push_back(0x80);
    ids.push_back(0xff);
    return ids;
}

}  // namespace halden::test
