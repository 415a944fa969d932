#pragma once

// The host's pipeline-wide entry points: one dispatcher in front of all P4 programs of the adapter.

#include <cstdint>

#include "sdk/p4pd_error.h"

// What the host knows of a table. The record is the host's; the library reads `tablename`,
// `tabledepth` and `actiondata_struct_size`, nothing else.
typedef struct p4pd_table_properties_ {
    const char *tablename;  // owned by the host, lives as long as the process
    uint32_t tableid;
    uint32_t tabledepth;              // rows
    uint16_t key_struct_size;         // bytes of the software key record, 0 when there is none
    uint16_t actiondata_struct_size;  // bytes of the software action-data record
    uint32_t overflow_tableid;        // the overflow TCAM of a hash table, 0 when there is none
} p4pd_table_properties_t;

// Fills `*properties`; non-zero for an unknown table id.
p4pd_error_t p4pd_table_properties_get(uint32_t tableid, p4pd_table_properties_t *properties);
p4pd_error_t p4pd_global_table_properties_get(uint32_t tableid, void *properties);

// Reach p4pd_entry_write and p4pd_entry_read (flag variant) of the program that owns `tableid`.
p4pd_error_t p4pd_global_entry_write(uint32_t tableid, uint32_t index, uint8_t *hwkey,
                                     uint8_t *hwkey_mask, void *actiondata, bool flag);
p4pd_error_t p4pd_global_entry_read(uint32_t tableid, uint32_t index, void *swkey, void *swkey_mask,
                                    void *actiondata, void *extra, bool flag);

// Reaches p4pd_table_ds_decoded_string_get.
p4pd_error_t p4pd_global_table_ds_decoded_string_get(uint32_t tableid, uint32_t index, void *swkey,
                                                     void *swkey_mask, void *actiondata,
                                                     char *buffer, uint16_t buf_len);
