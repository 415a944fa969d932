// What libhalden.so exports and imports, compared with lists that are typed here.

#include <array>
#include <cstdio>
#include <memory>
#include <set>
#include <string>

#include "gtest/gtest.h"

namespace {

std::set<std::string> symbols(const std::string &options) {
    const std::string command = "nm -D -C " + options + " " HALDEN_LIBRARY;
    std::unique_ptr<FILE, int (*)(FILE *)> pipe(popen(command.c_str(), "r"), pclose);
    std::set<std::string> out;
    std::array<char, 4096> line{};
    while (pipe && fgets(line.data(), static_cast<int>(line.size()), pipe.get()) != nullptr) {
        std::string text(line.data());
        while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) text.pop_back();
        // "0000000000001234 T name" or "                 U name"
        const size_t type = text.find_first_not_of("0123456789abcdef ");
        if (type == std::string::npos || type + 2 > text.size()) continue;
        out.insert(text.substr(type));
    }
    return out;
}

std::set<std::string> names(const std::set<std::string> &typed) {
    std::set<std::string> out;
    for (const auto &s : typed) out.insert(s.substr(2));
    return out;
}

TEST(Symbols, EveryPublicFunctionOfTheProgramDependentLayerIsExported) {
    const auto exported = names(symbols("--defined-only"));
    const char *const expected[] = {
        "p4pd_tableid_min_get()",
        "p4pd_tableid_max_get()",
        "p4pd_prep_p4tbl_names()",
        "p4pd_prep_p4tbl_sw_struct_sizes()",
        "p4pd_get_max_action_id(unsigned int)",
        "p4pd_tbl_names",
        "p4pd_tbl_swkey_size",
        "p4pd_tbl_sw_action_data_size",
        "p4pd_hwentry_query(unsigned int, unsigned int*, unsigned int*, unsigned int*)",
        "p4pd_hwkey_hwmask_build(unsigned int, void*, void*, unsigned char*, unsigned char*)",
        "p4pd_index_to_hwindex_map(unsigned int, void*)",
        "p4pd_entry_write_with_datamask(unsigned int, unsigned int, unsigned char*, unsigned "
        "char*, "
        "void*, void*, bool)",
        "p4pd_entry_write(unsigned int, unsigned int, unsigned char*, unsigned char*, void*, bool)",
        "p4pd_entry_write(unsigned int, unsigned int, void*, void*, void*)",
        "p4pd_entry_install(unsigned int, unsigned int, void*, void*, void*)",
    };
    for (const char *name : expected) EXPECT_TRUE(exported.count(name)) << name;
}

TEST(Symbols, NothingIsExportedBesidesThePublicNames) {
    const char *const prefixes[] = {"p4pd_",
                                    "tev_tbl_",
                                    "allocate_debug_response_msg()",
                                    "free_debug_response_msg(void*)",
                                    "main",
                                    "flow_hash_entry_t::",
                                    "base_table_entry_t::",
                                    "sdk::table::flow_hash::",
                                    "api::impl::tev_tbl_impl_state::",
                                    "vtable for flow_hash_entry_t",
                                    "vtable for base_table_entry_t",
                                    "vtable for sdk::table::flow_hash",
                                    "vtable for api::impl::tev_tbl_impl_state",
                                    "typeinfo for flow_hash_entry_t",
                                    "typeinfo for base_table_entry_t",
                                    "typeinfo for sdk::table::flow_hash",
                                    "typeinfo for api::impl::tev_tbl_impl_state",
                                    "typeinfo name for flow_hash_entry_t",
                                    "typeinfo name for base_table_entry_t",
                                    "typeinfo name for sdk::table::flow_hash",
                                    "typeinfo name for api::impl::tev_tbl_impl_state"};
    const auto exported = names(symbols("--defined-only"));
    ASSERT_FALSE(exported.empty());
    for (const auto &name : exported) {
        bool known = false;
        for (const char *prefix : prefixes) known = known || name.rfind(prefix, 0) == 0;
        EXPECT_TRUE(known) << name;
    }
}

TEST(Symbols, ImportsAreTheRuntimeOrThePlatformContract) {
    if (HALDEN_SANITIZED) return;  // a sanitizer's run-time names come on top
    const char *const contract[] = {"sdk::asic::pd::asicpd_",
                                    "p4pd_utils_",
                                    "p4pd_global_",
                                    "p4pd_table_properties_get(",
                                    "g_trace_cb",
                                    "api::impl::g_tev_impl_state",
                                    "sdk::table::directmap::",
                                    "sdk::table::slhash::",
                                    "sdk::table::sltcam::",
                                    "sdk::table::ftl_base::",
                                    "typeinfo for sdk::table::ftl_base"};
    const auto imported = names(symbols("--undefined-only"));
    ASSERT_FALSE(imported.empty());
    for (const auto &name : imported) {
        bool known = name.find('@') != std::string::npos ||  // versioned: C and C++ run time
                     name.rfind("__", 0) == 0 || name.rfind("_ITM_", 0) == 0;
        for (const char *prefix : contract) known = known || name.rfind(prefix, 0) == 0;
        EXPECT_TRUE(known) << name;
    }
}

TEST(Symbols, TheSonameCarriesAVersion) {
    const std::string soname = HALDEN_SONAME;
    EXPECT_EQ(soname.rfind("libhalden.so.", 0), 0u) << soname;
}

}  // namespace
