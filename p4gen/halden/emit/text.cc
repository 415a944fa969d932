#include "p4gen/halden/emit/emit.h"

namespace halden::emit {

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

}  // namespace halden::emit
