// hot_paths NAME COUNT: one path of the library, COUNT times, for an instruction counter. The cost
// of one call is the difference between two counts, divided by their distance; docs/performance.md
// has the loop around it.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "ftl/flow_hash.h"
#include "host/adapter.h"
#include "host/state/table_state.h"
#include "p4pd.h"
#include "tev_tbl.h"

namespace {

using namespace halden;

void need(bool holds, const char *what) {
    if (holds) return;
    std::fprintf(stderr, "hot_paths: %s\n", what);
    std::exit(1);
}

tev_tbl_flow_spec_t flow(uint32_t n) {
    tev_tbl_flow_spec_t out = {};
    out.key.metadata_flow_key_dport = static_cast<uint16_t>(n);
    out.key.metadata_flow_key_sport = static_cast<uint16_t>(n >> 16);
    out.action_u.flow_hash.flow_idx = n & 0xfff;
    return out;
}

using path = std::function<void(uint32_t)>;

std::map<std::string, path> paths(host::table_state &state) {
    std::map<std::string, path> out;
    out["index_write"] = [](uint32_t n) {
        lif_mapping_actiondata_t data = {};
        data.action_u.lif_mapping.src_lport = static_cast<uint16_t>(n & 0x7ff);
        need(p4pd_entry_write(P4TBL_ID_LIF_MAPPING, n % 1000, nullptr, nullptr, &data, false) == 0,
             "index_write");
    };
    out["index_read"] = [](uint32_t n) {
        lif_mapping_actiondata_t data = {};
        need(p4pd_entry_read(P4TBL_ID_LIF_MAPPING, n % 1000, nullptr, nullptr, &data, nullptr,
                             false) == 0,
             "index_read");
    };
    out["hbm_write"] = [](uint32_t n) {
        flow_info_actiondata_t data = {};
        need(p4pd_entry_write(P4TBL_ID_FLOW_INFO, n % 1000, nullptr, nullptr, &data, false) == 0,
             "hbm_write");
    };
    out["key_build"] = [](uint32_t n) {
        vlan_mapping_swkey_t key = {};
        key.vlan_id = static_cast<uint16_t>(n & 0xfff);
        uint8_t image[128] = {};
        need(p4pd_hwkey_hwmask_build(P4TBL_ID_VLAN_MAPPING, &key, nullptr, image, nullptr) == 0,
             "key_build");
    };
    out["decode"] = [](uint32_t) {
        static flow_info_actiondata_t data = {};
        static char text[2048];
        need(p4pd_table_ds_decoded_string_get(P4TBL_ID_FLOW_INFO, 0, nullptr, nullptr, &data, text,
                                              sizeof text) == 0,
             "decode");
    };
    out["index_create_delete"] = [](uint32_t n) {
        tev_tbl_lif_mapping_spec_t spec = {};
        spec.key.index = static_cast<uint16_t>(n % 1000);
        need(tev_tbl_lif_mapping_create(&spec) == 0 && tev_tbl_lif_mapping_delete(&spec.key) == 0,
             "index_create_delete");
    };
    out["hash_create_delete"] = [](uint32_t n) {
        tev_tbl_vlan_mapping_spec_t spec = {};
        spec.key.vlan_id = static_cast<uint16_t>(n & 0xfff);
        need(tev_tbl_vlan_mapping_create(&spec) == 0 && tev_tbl_vlan_mapping_delete(&spec.key) == 0,
             "hash_create_delete");
    };
    out["flow_find"] = [](uint32_t) {
        static const tev_tbl_flow_spec_t spec = [] {
            const auto made = flow(7);
            need(tev_tbl_flow_create(&made) == 0, "flow_create");
            return made;
        }();
        need(tev_tbl_flow_find(&spec.key) == 0, "flow_find");
    };
    out["flow_create_delete"] = [](uint32_t n) {
        const auto spec = flow(n);
        need(tev_tbl_flow_create(&spec) == 0 && tev_tbl_flow_delete(&spec.key) == 0,
             "flow_create_delete");
    };
    out["genhash"] = [&state](uint32_t n) {
        static flow_hash_entry_t entry;
        sdk::table::sdk_table_api_params_t params = {};
        params.entry = &entry;
        entry.set_hint_hash(1, n & 0xff, 1);
        need(state.tables().flow_tbl()->genhash_(&params) == SDK_RET_OK, "genhash");
    };
    return out;
}

}  // namespace

int main(int argc, char **argv) {
    const auto hardware = host::adapter::anonymous({.flow_rows = 1024, .flow_ohash_rows = 1024});
    host::table_state state(*hardware);
    const auto all = paths(state);
    if (argc != 3 || !all.contains(argv[1])) {
        std::fprintf(stderr, "usage: hot_paths NAME COUNT\nnames:");
        for (const auto &[name, _] : all) std::fprintf(stderr, " %s", name.c_str());
        std::fprintf(stderr, "\n");
        return 2;
    }
    const path &one = all.at(argv[1]);
    const auto count = static_cast<uint32_t>(std::strtoul(argv[2], nullptr, 10));
    for (uint32_t n = 0; n < count; ++n) one(n);
    return 0;
}
