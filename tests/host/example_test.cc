// The example of host/README.md, whole.

#include "host/adapter.h"
#include "host/state/table_state.h"
#include "host/trace/trace.h"
#include "host/view/lookup.h"
#include "p4pd.h"
#include "tev_tbl.h"

#include <gtest/gtest.h>

using namespace halden::host;

TEST(Example, AnEntryIsWhatHardwareMatches) {
    const auto hardware = adapter::anonymous({.flow_rows = 1024, .flow_ohash_rows = 1024});
    table_state tables(*hardware);  // 35 engines; the adapter is the current one

    tev_tbl_vlan_mapping_spec_t spec = {};
    spec.key.vlan_id = 100;
    spec.key.l2seg = 7;
    spec.action_u.vlan_mapping.rmac_vrf = 3;
    ASSERT_EQ(tev_tbl_vlan_mapping_create(&spec), TEV_TBL_RET_OK);

    // The packet's key, and what it hits by memory alone.
    uint8_t key[128] = {};
    p4pd_hwkey_hwmask_build(P4TBL_ID_VLAN_MAPPING, &spec.key, nullptr, key, nullptr);
    EXPECT_TRUE(view::lookup(*hardware, P4TBL_ID_VLAN_MAPPING, key).hit);
    key[0] ^= 1;
    EXPECT_FALSE(view::lookup(*hardware, P4TBL_ID_VLAN_MAPPING, key).hit);

    // The next write of that memory fails; nothing is left of it.
    trace::set_level("off");
    hardware->faults().inject({.call = asic_call::sram_write, .table = P4TBL_ID_VLAN_MAPPING});
    spec.key.vlan_id = 101;
    EXPECT_EQ(tev_tbl_vlan_mapping_create(&spec), TEV_TBL_RET_WRITE_FAILED);
    EXPECT_EQ(tev_tbl_vlan_mapping_find(&spec.key), TEV_TBL_RET_ENTRY_NOT_FOUND);
}
