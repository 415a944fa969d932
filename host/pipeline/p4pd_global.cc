// The pipeline-wide entry points. This adapter runs one program, so they reach it directly.

#include "sdk/p4pd_global.h"

#include "host/adapter.h"
#include "host/memory/memory_map.h"
#include "p4pd.h"

namespace {

using halden::host::asic_call;
using halden::host::current;
using halden::host::table_memory_of;

// The catalogue's arrays are empty until they are filled, once.
void fill_catalogue() {
    static const bool filled = [] {
        p4pd_prep_p4tbl_names();
        p4pd_prep_p4tbl_sw_struct_sizes();
        return true;
    }();
    static_cast<void>(filled);
}

p4pd_error_t give_properties(asic_call call, uint32_t tableid,
                             p4pd_table_properties_t *properties) {
    const auto *memory = table_memory_of(tableid);
    if (memory == nullptr || properties == nullptr) return P4PD_FAIL;
    if (current().faults().meet(call, tableid, 0) != SDK_RET_OK) return P4PD_FAIL;
    fill_catalogue();
    *properties = {};
    properties->tablename = p4pd_tbl_names[tableid];
    properties->tableid = tableid;
    properties->tabledepth = current().depth(tableid);
    properties->key_struct_size = p4pd_tbl_swkey_size[tableid];
    properties->actiondata_struct_size = p4pd_tbl_sw_action_data_size[tableid];
    properties->overflow_tableid = memory->overflow;
    return P4PD_SUCCESS;
}

}  // namespace

p4pd_error_t p4pd_table_properties_get(uint32_t tableid, p4pd_table_properties_t *properties) {
    return give_properties(asic_call::properties, tableid, properties);
}

p4pd_error_t p4pd_global_table_properties_get(uint32_t tableid, void *properties) {
    return give_properties(asic_call::global_properties, tableid,
                           static_cast<p4pd_table_properties_t *>(properties));
}

p4pd_error_t p4pd_global_entry_write(uint32_t tableid, uint32_t index, uint8_t *hwkey,
                                     uint8_t *hwkey_mask, void *actiondata, bool flag) {
    return p4pd_entry_write(tableid, index, hwkey, hwkey_mask, actiondata, flag);
}

p4pd_error_t p4pd_global_entry_read(uint32_t tableid, uint32_t index, void *swkey, void *swkey_mask,
                                    void *actiondata, void *extra, bool flag) {
    return p4pd_entry_read(tableid, index, swkey, swkey_mask, actiondata, extra, flag);
}

p4pd_error_t p4pd_global_table_ds_decoded_string_get(uint32_t tableid, uint32_t index, void *swkey,
                                                     void *swkey_mask, void *actiondata,
                                                     char *buffer, uint16_t buf_len) {
    return p4pd_table_ds_decoded_string_get(tableid, index, swkey, swkey_mask, actiondata, buffer,
                                            buf_len);
}
