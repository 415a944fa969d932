// The reference pages: one per table, and their index. They answer where an entry goes, what bits
// are written, and why a lookup may miss.

#include "p4gen/halden/emit/emit.h"
#include "p4gen/halden/pipeline/layout.h"
#include "p4gen/halden/pipeline/words.h"

namespace halden::emit {

using namespace pipeline;

namespace {

std::string number(unsigned n) { return std::to_string(n); }
std::string bits_text(unsigned n) { return number(n) + (n == 1 ? " bit" : " bits"); }
std::string bytes_text(unsigned n) { return number(n) + (n == 1 ? " byte" : " bytes"); }
std::string code(std::string_view text) { return "`" + std::string(text) + "`"; }
std::string link_to(const table &t) {
    return "[`" + std::string(t.name) + "`](" + std::string(t.name) + ".md)";
}

std::string record_place(unsigned offset, uint16_t bits) {
    const unsigned bytes = storage_bytes(bits);
    return bytes == 1 ? number(offset) : number(offset) + "-" + number(offset + bytes - 1);
}

template <class Field>
std::string field_rows(std::span<const Field> fields, const std::vector<run> &runs, bool of_key,
                       unsigned record_start) {
    std::string out =
        "| Field | Bits | Image bits | Record bytes | Type | Meaning |\n"
        "|---|---:|---|---|---|---|\n";
    for (size_t i = 0; i < fields.size(); ++i) {
        const auto &f = fields[i];
        std::string type = c_type(f.bits);
        if (is_array(f.bits)) type += "[" + number(storage_bytes(f.bits)) + "]";
        out += "| " + code(f.name) + " | " + number(f.bits) + " | " + places(runs, of_key, i) +
               " | " + record_place(record_start + record_offset(fields, i), f.bits) + " | " +
               code(type) + " | " + std::string(f.doc) + " |\n";
    }
    return out + "\n";
}

std::string key_part(const table &t) {
    if (t.key.empty()) return {};
    std::string out = "## Key\n\n" + code(std::string(t.name) + "_swkey_t") + ", " +
                      bytes_text(t.key_bytes) + ".";
    if (has_mask(t.kind))
        out += " The mask, " + code(std::string(t.name) + "_swkey_mask_t") +
               ", has the same fields with `_mask` behind their names.";
    out += t.kind == kind::hash_hbm
               ? " The fields take 600 bits of the image; bits 472 to 543 are left for the data in "
                 "front of the key, so an image takes " +
                     bytes_text(wide_key_image_bytes) + ".\n\n"
               : " The image takes " + bits_text(t.key_bits) + ".\n\n";
    return out + field_rows(t.key, key_image(t), true, 0);
}

std::string index_part(const table &t) {
    if (t.index.empty()) return {};
    std::string out =
        "## Index\n\nThe fields of the index record, the most significant first:\n\n"
        "| Field | Bits |\n|---|---:|\n";
    for (const auto &f : t.index) out += "| " + code(f.name) + " | " + number(f.bits) + " |\n";
    return out + "\n";
}

std::string actions_part(const table &t) {
    std::string out = "## Actions\n\n" + code(std::string(t.name) + "_actiondata_t") + ", " +
                      bytes_text(t.data_bytes) +
                      ": the action id in byte 0, then the action's data. ";
    out += has_programs(t) ? "The row starts with the action's program counter, 8 bits.\n\n"
                           : "There is one action, so no program counter stands in the row.\n\n";
    for (size_t a = 0; a < t.actions.size(); ++a) {
        const action &act = t.actions[a];
        out += "### " + number(static_cast<unsigned>(a)) + ": " + std::string(act.name) + "\n\n" +
               code(action_id_name(t, act));
        if (act.fields.empty()) {
            out += " carries no data.\n\n";
            continue;
        }
        out += ", " + bits_text(record_bits(act.fields)) +
               " of data. Image bits are those of the " + "whole row.\n\n" +
               field_rows(act.fields, row_image(t, act), false, 1);
    }
    return out;
}

}  // namespace

std::string reference_page(const table &t) {
    const std::string name(t.name);
    return "<!-- Written by halden-emit from p4gen/halden/pipeline; do not edit. -->\n# " + name +
           "\n\n" + std::string(t.doc) + "\n\nTable " + number(t.id) + ", " +
           code(table_id_name(t)) + ": " + std::string(kind_text(t.kind)) +
           ". All tables: [index](README.md).\n\n## Where an entry goes\n\n" +
           where_it_goes(t, link_to) + "\n\n## Why a lookup misses\n\n" + why_it_misses(t) +
           "\n\n" + key_part(t) + index_part(t) + actions_part(t) +
           "## At the command line\n\n    haldenctl describe " + name +
           "      # this page, drawn\n    haldenctl dump " + name + "          # every used row\n";
}

std::string reference_index() {
    std::string out =
        R"(<!-- Written by halden-emit from p4gen/halden/pipeline; do not edit. -->
# The 48 tables

Each page says where an entry goes, which bits are written, and why a lookup may miss. Bit 0 of an image
is the top bit of its byte 0. Rows are shown as the layout routines make them; SRAM and TCAM keep them with their
bytes swizzled, HBM as they are. Sizes of key and data are those of the software records, in bytes, and
of the hardware, in bits.

| Id | Table | Kind | Key bytes | Key bits | Data bytes | Data bits | Actions | Purpose |
|---:|---|---|---:|---:|---:|---:|---:|---|
)";
    for (const table *t : tables)
        out += "| " + number(t->id) + " | " + link_to(*t) + " | " +
               std::string(kind_text(t->kind)) + " | " + number(swkey_bytes(*t)) + " | " +
               number(t->key_bits) + " | " + number(t->data_bytes) + " | " + number(t->data_bits) +
               " | " + number(static_cast<unsigned>(t->actions.size())) + " | " +
               std::string(t->doc) + " |\n";
    return out;
}

}  // namespace halden::emit
