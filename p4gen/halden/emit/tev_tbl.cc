// The table API: the caller's records and prototypes, and bodies of one line onto the table's kind.

#include "p4gen/halden/emit/emit.h"
#include "p4gen/halden/pipeline/words.h"

namespace halden::emit {

using namespace pipeline;

namespace {

// The tables that have an engine: all but the flow table's overflow, which its engine fills, the
// overflow TCAMs, which the hash engines fill, and the keyless ones.
bool has_api(const table &t) {
    return t.id == flow.id || t.kind == kind::hash_sram || t.kind == kind::tcam || is_index(t.kind);
}

std::string number(unsigned n) { return std::to_string(n); }

std::string key_record(const table &t) {
    const std::string name(t.name);
    if (!is_index(t.kind)) return "typedef " + name + "_swkey_t tev_tbl_" + name + "_key_t;\n\n";
    std::string out = "typedef struct HALDEN_PACKED tev_tbl_" + name + "_key_ {\n";
    for (const field &f : t.index) {
        std::string line = "    " + member(f.name, f.bits) + ";";
        if (line.size() < 30) line.resize(30, ' ');
        out += line + "/* " + number(f.bits) + " bits are looked at */\n";
    }
    return out + "} tev_tbl_" + name + "_key_t;\n\n";
}

std::string action_union(const table &t) {
    std::string out;
    for (const auto &a : t.actions)
        if (!a.fields.empty())
            out += "        " + std::string(t.name) + "_" + std::string(a.name) + "_t " +
                   std::string(a.name) + ";\n";
    if (out.empty()) out = "        uint8_t unused; /* no action carries data */\n";
    return "    union {\n" + out + "    } action_u;\n";
}

std::string spec_record(const table &t) {
    const std::string name(t.name), prefix = "tev_tbl_" + name;
    std::string out = "typedef struct HALDEN_PACKED " + prefix + "_spec_ {\n" +
                      "    uint8_t action_id; /* 0 to " +
                      number(static_cast<unsigned>(t.actions.size()) - 1) + " */\n    " + prefix +
                      "_key_t key;\n";
    if (has_mask(t.kind))
        out += "    uint8_t has_mask; /* 0: every key bit is matched, `mask` is not read */\n    " +
               name + "_swkey_mask_t mask;\n";
    return out + action_union(t) + "} " + prefix + "_spec_t;\n" + "typedef " + prefix + "_spec_t " +
           prefix + "_info_t;\n\n";
}

unsigned spec_bytes(const table &t) {
    if (is_index(t.kind)) return t.data_bytes + record_bytes(t.index);
    return t.data_bytes + (has_mask(t.kind) ? 2u * t.key_bytes + 1u : t.key_bytes);
}

std::string doc_of(const table &t) {
    std::string out = "/* --- " + std::string(t.name) + " (" + number(t.id) + ") ---\n * " +
                      std::string(t.doc) + "\n * " + std::string(kind_text(t.kind));
    if (is_index(t.kind)) out += ", rows 0 to " + number(t.index_max);
    out += ".\n";
    if (t.id == flow.id)
        out +=
            " * The engine owns the hint chain and the valid bit: a spec's more_hashes and "
            "entry_valid are not\n * read, and values wider than their field are cut.\n";
    return out + " */\n\n";
}

struct operation {
    const char *suffix;
    const char *method;
    const char *parameters;  // % stands for the table's prefix
    const char *arguments;
};
constexpr operation operations[] = {
    {"create", "create", "const %_spec_t *spec", "spec"},
    {"read", "read", "const %_key_t *key, %_info_t *info", "key, info"},
    {"update", "update", "const %_spec_t *spec", "spec"},
    {"delete", "remove", "const %_key_t *key", "key"},
    {"find", "find", "const %_key_t *key", "key"},
};

std::string prototype(const table &t, const operation &o) {
    const std::string prefix = "tev_tbl_" + std::string(t.name);
    std::string out = "tev_tbl_ret_t " + prefix + "_" + o.suffix + "(";
    for (const char *c = o.parameters; *c != '\0'; ++c)
        out += *c == '%' ? prefix : std::string(1, *c);
    return out + ")";
}
std::string clear_prototype(const table &t) {
    return "tev_tbl_ret_t tev_tbl_" + std::string(t.name) + "_table_clear(void)";
}

std::string implementation(const table &t) {
    const std::string name(t.name);
    if (t.id == flow.id) return "flow_table";
    return std::string(is_index(t.kind) ? "index_table" : "keyed_table") + "<pl::" + name +
           ", &state::" + name + "_tbl>";
}

}  // namespace

std::string tev_tbl_header() {
    std::string out =
        "#pragma once\n\n" +
        banner("The table API: six functions for each of the 35 tables that have an engine.") +
        R"(// tev_tbl_<table>_create       adds an entry                                    spec
// tev_tbl_<table>_update       replaces the data of an entry that is there      spec
// tev_tbl_<table>_delete       takes an entry out                               key
// tev_tbl_<table>_read         fills the action id and the data of `info`       key, info
// tev_tbl_<table>_find         tells whether an entry is there                  key
// tev_tbl_<table>_table_clear  is not implemented and changes nothing
//
//     tev_tbl_lif_mapping_spec_t spec = {.action_id = LIF_MAPPING_LIF_MAPPING_ID, .key = {.index = 5}};
//     spec.action_u.lif_mapping.src_lport = 1234;
//     if (tev_tbl_lif_mapping_create(&spec) != TEV_TBL_RET_OK) ...
//
// Records are packed and belong to the caller; nothing is kept past a call. `info` has the shape of
// a spec: read leaves its key (and mask) as they are, and on failure all of it.
//
// Results (tev_tbl_ret.h): 2 for a null pointer or an index beyond the table, 9 when an entry cannot
// be written or removed, 15 when it cannot be read. An absent entry is 15 to read and 4 to find. Each
// failure but that 4 is sent to the host's trace function, once; success is silent.
//
// A key of a ternary table alone, without a mask, finds the entry that was made with that key.
//
// No function allocates or locks; calls run in parallel as far as the engines allow. The host has
// published its state (sdk/impl_state.h) before the first call.

#include "p4pd_records.h"
#include "tev_tbl_ret.h"

#ifdef __cplusplus
extern "C" {
#endif

#pragma GCC visibility push(default)

)";
    for (const table *t : tables) {
        if (!has_api(*t)) continue;
        out += doc_of(*t) + key_record(*t) + spec_record(*t);
        for (const operation &o : operations) out += prototype(*t, o) + ";\n";
        out += clear_prototype(*t) + ";\n\n";
    }
    return out + "#pragma GCC visibility pop\n\n#ifdef __cplusplus\n}\n#endif\n";
}

std::string tev_tbl_source() {
    std::string out = banner("The functions of the table API.") +
                      "#include \"tev_tbl.h\"\n\n"
                      "#include \"p4gen/halden/pipeline/pipeline.h\"\n"
                      "#include \"p4gen/halden/src/tev_tbl_flow.h\"\n"
                      "#include \"p4gen/halden/src/tev_tbl_index.h\"\n"
                      "#include \"p4gen/halden/src/tev_tbl_keyed.h\"\n\n"
                      "using namespace halden::tev_tbl;\n\n";
    for (const table *t : tables) {
        if (!has_api(*t)) continue;
        const std::string name(t->name), type = name + "_api";
        out += "using " + type + " = " + implementation(*t) + ";\n";
        out += "static_assert(sizeof(tev_tbl_" + name + "_spec_t) == ";
        out += number(spec_bytes(*t)) + ");\n";
        for (const operation &o : operations)
            out += prototype(*t, o) + " { return " + type + "::" + o.method + "(" + o.arguments +
                   "); }\n";
        out += clear_prototype(*t) + " { return table_clear(); }\n\n";
    }
    return out;
}

}  // namespace halden::emit
