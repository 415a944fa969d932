// Names every type that programs and hosts share with the libraries, for the record of their
// layouts (classes_test.cmake). It is compiled, not run. Records of the tables and the exported
// names are held beside it (record_layouts.h, exported.txt).

#include "host/adapter_c.h"
#include "p4pd.h"
#include "sdk/p4pd_global.h"
#include "sdk/trace.h"
#include "tev_tbl.h"
#include "tev_tbl_impl_state.h"

extern "C" __attribute__((visibility("default"))) void halden_shared_types(
    sdk::table::flow_hash *, base_table_entry_t *, flow_hash_entry_t *, api::impl::tev_host_state *,
    api::impl::tev_impl_state *, sdk::table::directmap *, sdk::table::slhash *,
    sdk::table::sltcam *, sdk::table::sdk_table_api_params_t *,
    sdk::table::sdk_table_factory_params_t *, p4pd_table_properties_t *, p4pd_table_id_,
    p4pd_error_t, sdk_ret_t, tev_tbl_ret_t, halden_adapter_t *, halden_adapter_options_t *,
    halden_adapter_result_t) {}
