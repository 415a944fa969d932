// One named writer per table: the prototype, and a body of one line onto the writer of its kind.

#include "p4gen/halden/emit/emit.h"

namespace halden::emit {

using namespace pipeline;

namespace {

std::string_view writer_template(kind k) {
    switch (k) {
        case kind::hash_hbm:
            return "write_hash_hbm";
        case kind::hash_sram:
            return "write_hash_sram";
        case kind::overflow_tcam:
            return "write_overflow_tcam";
        case kind::tcam:
            return "write_tcam";
        case kind::index_sram:
            return "write_index_sram";
        case kind::index_hbm:
            return "write_index_hbm";
        case kind::keyless:
            return "write_keyless";
    }
    return {};
}

std::string prototype(const table &t) {
    const std::string data = std::string(t.name) + "_actiondata_t *";
    std::string out =
        "p4pd_error_t " + std::string(t.name) + "_entry_write(uint32_t tableid, uint32_t index";
    if (is_keyed(t.kind)) out += ", uint8_t *hwkey";
    if (has_mask(t.kind)) out += ", uint8_t *hwkey_mask";
    return out + ", " + data + "actiondata, " + data + "actiondata_mask, bool flag)";
}

std::string arguments(const table &t) {
    std::string out = "tableid, index";
    if (is_keyed(t.kind)) out += ", hwkey";
    if (has_mask(t.kind)) out += ", hwkey_mask";
    return out + ", bytes(actiondata), bytes(actiondata_mask), flag";
}

}  // namespace

std::string entry_writers_header() {
    std::string out = "#pragma once\n\n" +
                      banner("The writers of the 48 tables, internal to the library.") +
                      "#include <cstdint>\n\n#include \"p4pd_records.h\"\n#include "
                      "\"sdk/p4pd_error.h\"\n\n";
    for (const table *t : tables) out += prototype(*t) + ";\n";
    return out;
}

std::string entry_writers_source() {
    std::string out =
        banner("The writers of the 48 tables.") +
        "#include \"p4gen/halden/src/gen/entry_writers.h\"\n\n"
        "#include \"p4gen/halden/pipeline/pipeline.h\"\n"
        "#include \"p4gen/halden/src/entry_write.h\"\n\n"
        "using namespace halden::p4pd;\nnamespace pl = halden::pipeline;\n\n"
        "static uint8_t *bytes(void *record) { return static_cast<uint8_t *>(record); }\n\n";
    for (const table *t : tables)
        out += prototype(*t) + " {\n    return " + std::string(writer_template(t->kind)) +
               "<pl::" + std::string(t->name) + ">(" + arguments(*t) + ");\n}\n";
    return out;
}

}  // namespace halden::emit
