#include "p4gen/halden/emit/emit.h"

namespace halden::emit {

using pipeline::kind;

std::string banner(std::string_view what) {
    return "// " + std::string(what) +
           "\n//\n// Written by halden-emit from p4gen/halden/pipeline; do not edit. To make it "
           "again:\n"
           "//     cmake --build build/release --target halden-emit && "
           "build/release/halden-emit .\n\n";
}

std::string c_type(uint16_t bits) {
    return "uint" +
           std::to_string(pipeline::is_array(bits) ? 8 : 8 * pipeline::storage_bytes(bits)) + "_t";
}

std::string member(std::string_view name, uint16_t bits) {
    std::string out = c_type(bits) + " " + std::string(name);
    if (pipeline::is_array(bits)) out += "[" + std::to_string(pipeline::storage_bytes(bits)) + "]";
    return out;
}

std::string_view kind_text(kind k) {
    switch (k) {
        case kind::hash_hbm:
            return "exact match with a wide key, one HBM row an entry";
        case kind::hash_sram:
            return "exact match, one SRAM row an entry";
        case kind::overflow_tcam:
            return "ternary match, data in the SRAM of the hash table it serves";
        case kind::tcam:
            return "ternary match, data in SRAM at the same row";
        case kind::index_sram:
            return "row index, SRAM";
        case kind::index_hbm:
            return "row index, HBM";
        case kind::keyless:
            return "no key and no data, an action program alone";
    }
    return {};
}

}  // namespace halden::emit
