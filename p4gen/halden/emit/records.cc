// The software records: plain packed structures that C and C++ read alike.

#include "p4gen/halden/emit/emit.h"
#include "p4gen/halden/pipeline/words.h"

namespace halden::emit {

using namespace pipeline;

namespace {

std::string comment_of(uint16_t bits, std::string_view doc) {
    std::string out = std::to_string(bits) + (bits == 1 ? " bit" : " bits");
    if (!doc.empty()) out += ": " + std::string(doc);
    return "/* " + out + " */";
}

template <class Field>
std::string members(std::span<const Field> fields, std::string_view suffix,
                    const std::string &indent) {
    std::string out;
    for (const auto &f : fields) {
        std::string line = indent + member(std::string(f.name) + std::string(suffix), f.bits) + ";";
        if (line.size() < 44) line.resize(44, ' ');
        out += line + "  " + comment_of(f.bits, f.doc) + "\n";
    }
    return out;
}

std::string open_struct(const std::string &name) {
    return "typedef struct HALDEN_PACKED " + name + "_ {\n";
}
std::string close_struct(const std::string &name) { return "} " + name + "_t;\n\n"; }

std::string key_records(const table &t) {
    const std::string name(t.name);
    std::string out;
    if (t.kind == kind::keyless) {
        out += "/* Empty key: one unused byte. */\n" + open_struct(name + "_swkey") +
               "    uint8_t unused;\n" + close_struct(name + "_swkey");
    }
    if (t.key.empty()) return out;
    // A key may have gaps in its image, which no field fills.
    const uint32_t fields = record_bits(t.key);
    out += "/* Key: " + std::to_string(t.key_bytes) + " bytes, " + std::to_string(t.key_bits) +
           " bits in the hardware" +
           (fields == t.key_bits ? "" : ", " + std::to_string(fields) + " of them in fields") +
           ". */\n" + open_struct(name + "_swkey") + members(t.key, "", "    ") +
           close_struct(name + "_swkey");
    if (has_mask(t.kind))
        out += "/* Key mask: a bit that is 0 matches anything. */\n" +
               open_struct(name + "_swkey_mask") + members(t.key, "_mask", "    ") +
               close_struct(name + "_swkey_mask");
    return out;
}

std::string action_records(const table &t) {
    const std::string name(t.name);
    std::string out, alternatives;
    for (const auto &a : t.actions) {
        if (a.fields.empty()) continue;
        const std::string action_name = name + "_" + std::string(a.name);
        out += "/* Data of " + action_id_name(t, a) + ": " + std::to_string(record_bits(a.fields)) +
               " bits in the hardware. */\n" + open_struct(action_name) +
               members(a.fields, "", "    ") + close_struct(action_name);
        alternatives += "        " + action_name + "_t " + std::string(a.name) + ";\n";
    }
    if (alternatives.empty())
        alternatives = "        uint8_t unused; /* no action carries data */\n";
    out += "/* Action data: " + std::to_string(t.data_bytes) + " bytes. */\n" +
           open_struct(name + "_actiondata") + "    uint8_t action_id; /* 0 to " +
           std::to_string(t.actions.size() - 1) + " */\n    union {\n" + alternatives +
           "    } action_u;\n" + close_struct(name + "_actiondata");
    return out;
}

}  // namespace

std::string records_header() {
    std::string out =
        "#pragma once\n\n" +
        banner("The software records of the 48 tables, and the ids of tables and actions.") +
        R"(// Records are packed: a field may start at any byte, so take no pointer to one. Scalars are in host
// byte order. A field of more than 32 bits is an array of bytes, byte 0 the least significant: the
// MAC address 02:00:5e:00:00:01 is {0x01, 0x00, 0x00, 0x5e, 0x00, 0x02}. Each comment gives the bits
// that the hardware keeps; bits above them are dropped when an entry is written.
//
// An action-data record is the action id followed by the data of that action; the actions of a table
// overlay one another.

#include <stdint.h>

#define HALDEN_PACKED __attribute__((__packed__))

#ifdef __cplusplus
extern "C" {
#endif

/* Table ids. Valid ids are 1 to 48. */
typedef enum p4pd_table_id_ {
)";
    for (const table *t : tables) {
        std::string line = "    " + table_id_name(*t) + " = " + std::to_string(t->id) + ",";
        if (line.size() < 48) line.resize(48, ' ');
        out += line + "/* " + std::string(kind_text(t->kind)) + " */\n";
    }
    out += "} p4pd_table_id_t;\n\n";
    for (const table *t : tables) {
        out += "/* --- " + std::string(t->name) + " (" + std::to_string(t->id) + ") ---\n * " +
               std::string(t->doc) + "\n * " + std::string(kind_text(t->kind)) + ".\n */\n\n";
        if (t->action_prefix.empty()) {  // shared action ids are defined with the other table
            out += "enum {\n";
            for (size_t a = 0; a < t->actions.size(); ++a)
                out +=
                    "    " + action_id_name(*t, t->actions[a]) + " = " + std::to_string(a) + ",\n";
            out += "};\n\n";
        }
        out += key_records(*t) + action_records(*t);
    }
    out += "#ifdef __cplusplus\n}\n#endif\n";
    return out;
}

// --- Layout checks -------------------------------------------------------------------------------

namespace {

std::string size_check(const std::string &type, unsigned bytes) {
    return "static_assert(sizeof(" + type + ") == " + std::to_string(bytes) + ", \"" + type +
           "\");\n";
}

template <class Field>
std::string offset_checks(const std::string &type, std::span<const Field> fields,
                          std::string_view suffix) {
    std::string out;
    for (size_t i = 0; i < fields.size(); ++i)
        out += "static_assert(offsetof(" + type + ", " + std::string(fields[i].name) +
               std::string(suffix) + ") == " + std::to_string(record_offset(fields, i)) + ", \"" +
               std::string(fields[i].name) + "\");\n";
    return out;
}

}  // namespace

std::string records_layout() {
    std::string out = "#pragma once\n\n" +
                      banner("Sizes and offsets of the software records, in C and in C++.") +
                      "#include <assert.h>\n#include <stddef.h>\n\n#include \"p4pd_records.h\"\n\n";
    for (const table *t : tables) {
        const std::string name(t->name);
        if (swkey_bytes(*t) != 0) out += size_check(name + "_swkey_t", swkey_bytes(*t));
        out += offset_checks(name + "_swkey_t", t->key, "");
        if (has_mask(t->kind)) {
            out += size_check(name + "_swkey_mask_t", t->key_bytes);
            out += offset_checks(name + "_swkey_mask_t", t->key, "_mask");
        }
        out += size_check(name + "_actiondata_t", t->data_bytes);
        out += "static_assert(offsetof(" + name + "_actiondata_t, action_u) == 1, \"action_u\");\n";
        for (const auto &a : t->actions)
            out += offset_checks(name + "_" + std::string(a.name) + "_t", a.fields, "");
    }
    return out;
}

}  // namespace halden::emit
