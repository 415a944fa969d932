#pragma once

// The program-dependent table layer of the `halden` pipeline: between software records
// (p4pd_records.h) and the hardware's key, mask and action-data images.
//
//     software key, mask ──p4pd_hwkey_hwmask_build──▶ key image, mask image ─┐
//     action data ─────────────────────────────────────────────────────────┴─▶ p4pd_entry_write
//
// Rules that hold throughout
//   * table ids are 1 to 48 (P4TBL_ID_*); image lengths are in bits;
//   * records and images belong to the caller; nothing is kept past a call;
//   * results are P4PD_SUCCESS or P4PD_FAIL. What the ASIC layer answers is not passed on;
//   * no locks: calls on one row of one table are serialised by the caller;
//   * no allocation but in the five-argument p4pd_entry_write and the debug message.
//
// These are C++ functions: p4pd_entry_write and p4pd_entry_read are overloaded.

#include <cstddef>
#include <cstdint>
#include <string>

#include "p4pd_records.h"
#include "sdk/p4pd_error.h"

#pragma GCC visibility push(default)

// --- Catalogue -----------------------------------------------------------------------------------

inline constexpr uint32_t P4PD_TABLEID_MIN = 1;
inline constexpr uint32_t P4PD_TABLEID_MAX = 49;  // exclusive

// Indexed by table id; row 0 stays empty. All zero until the two p4pd_prep_* functions ran.
extern char p4pd_tbl_names[P4PD_TABLEID_MAX][80];
extern uint16_t p4pd_tbl_swkey_size[P4PD_TABLEID_MAX];           // bytes; 0 no key record, 1 empty
extern uint16_t p4pd_tbl_sw_action_data_size[P4PD_TABLEID_MAX];  // bytes, action id included

uint32_t p4pd_tableid_min_get();  // 1
uint32_t p4pd_tableid_max_get();  // 49, one past the last id

// Fill the three tables above. The host calls both once at start-up; calling again changes nothing.
void p4pd_prep_p4tbl_names();
void p4pd_prep_p4tbl_sw_struct_sizes();

// Number of actions of a table (ids count from 0); 0 for an unknown table.
int32_t p4pd_get_max_action_id(uint32_t tableid);

// --- Keys and masks ------------------------------------------------------------------------------

// Lengths in bits of the images of a table. Sets only what the kind has: key and action data for
// hash tables, all three for TCAM tables (key and mask rounded to the TCAM's width), action data
// alone for index and keyless tables, nothing for an unknown id. A pointer that is not set may be
// null.
//
// A flow key (ids 1 and 2) has 640 bits but its image ends at bit 671: give it at least 84 bytes.
void p4pd_hwentry_query(uint32_t tableid, uint32_t *hwkey_len, uint32_t *hwkeymask_len,
                        uint32_t *hwactiondata_len);

// Builds the images the writers take, into buffers that the caller zeroed. For TCAM tables the key
// image is key & mask and the mask image is mask & ~key. Hash tables leave the mask alone (it may
// be null). Ids 16 to 32 have nothing to build and answer P4PD_SUCCESS; ids 33 to 48 and unknown
// ids answer P4PD_FAIL.
p4pd_error_t p4pd_hwkey_hwmask_build(uint32_t tableid, void *swkey, void *swkey_mask,
                                     uint8_t *hwkey, uint8_t *hwkey_mask);

// Row index of an index table (ids 16 to 40) from its index record, masked to the table's index
// width; all 64 bits set for every other id.
uint64_t p4pd_index_to_hwindex_map(uint32_t tableid, void *swkey);

// --- Entry write ---------------------------------------------------------------------------------

// Writes one entry at `index`. `hwkey` and `hwkey_mask` are images; index and keyless tables take
// null. TCAM writes leave the caller's key and mask buffers swizzled, so both hold the queried
// length. `flag` reaches the ASIC layer unchanged. An action without a program in a table of
// several actions aborts the process.
//
// `actiondata_mask`, an action-data record whose set bits select what is changed, is for index and
// keyless tables: the others refuse it with P4PD_FAIL before anything is written. It cannot change
// a row's action: `actiondata` carries the action that the row has. In tables 37 (output_mapping)
// and 38 (p4plus_app), whose rows begin with the action's program counter, the mask's own program
// counter selects bits of the entry's: with another action than the row's, the row ends with a
// mixture of the two, which may be the program of neither. HBM takes no mask: there the whole row
// is written.
p4pd_error_t p4pd_entry_write_with_datamask(uint32_t tableid, uint32_t index, uint8_t *hwkey,
                                            uint8_t *hwkey_mask, void *actiondata,
                                            void *actiondata_mask, bool flag);

p4pd_error_t p4pd_entry_write(uint32_t tableid, uint32_t index, uint8_t *hwkey, uint8_t *hwkey_mask,
                              void *actiondata, bool flag);

// From software records, through p4pd_global_entry_write. Fails for ids 33 to 48, whose key build
// fails, and when memory is exhausted.
p4pd_error_t p4pd_entry_write(uint32_t tableid, uint32_t index, void *swkey, void *swkey_mask,
                              void *actiondata);

// From software records, with this library's own writer; the key build's result is not looked at,
// so every table can be installed.
p4pd_error_t p4pd_entry_install(uint32_t tableid, uint32_t index, void *swkey, void *swkey_mask,
                                void *actiondata);

// --- Entry read ----------------------------------------------------------------------------------

// Reads one entry back into the caller's records. TCAM keys come back as key & mask. An empty SRAM
// or HBM row answers P4PD_SUCCESS and leaves the records alone; an empty TCAM row answers
// P4PD_FAIL. `extra` and `flag` reach the ASIC layer unchanged.
p4pd_error_t p4pd_entry_read(uint32_t tableid, uint32_t index, void *swkey, void *swkey_mask,
                             void *actiondata, void *extra, bool flag);

// Debug dump: reads a row (every row of the table when `index` is all ones) through the host and
// prints its records to standard output. The last two arguments are not read. A literal 0 as last
// argument is ambiguous with the other overload: write nullptr or false.
p4pd_error_t p4pd_entry_read(uint32_t tableid, uint32_t index, void *swkey, void *swkey_mask,
                             void *actiondata, void *unused, int *unused2);

// --- Application fields of the flow action data (tables 1 and 2, action 0) -----------------------

// 4. Any other table or action is a programming error and aborts.
uint32_t p4pd_actiondata_appdata_size_get(uint32_t tableid, uint8_t actionid);
// The application word (flow_idx), 32 bits in host order. P4PD_FAIL for any other table or action.
p4pd_error_t p4pd_actiondata_appdata_set(uint32_t tableid, uint8_t actionid, void *src,
                                         void *actiondata);
p4pd_error_t p4pd_actiondata_appdata_get(uint32_t tableid, uint8_t actionid, void *dest,
                                         void *actiondata);
// 19 hardware fields; 0 for any other table or action.
uint32_t p4pd_actiondata_hwfields_count_get(uint32_t tableid, uint8_t actionid);
// Field 0 is entry_valid; 1 to 18 follow the record. On tables 1 and 2 set stamps the action id
// into the record even when it then fails.
p4pd_error_t p4pd_actiondata_hwfield_set(uint32_t tableid, uint8_t actionid, uint32_t field,
                                         uint8_t *src, void *actiondata);
p4pd_error_t p4pd_actiondata_hwfield_get(uint32_t tableid, uint8_t actionid, uint32_t field,
                                         uint8_t *dest, void *actiondata);

// --- Decoding ------------------------------------------------------------------------------------

// Text of one raw hardware entry of `hwentry_len` bits (at most 8192: a longer one aborts). With a
// `hwentry_y`, which is for ternary tables, the two are the key's images (x and y) and the text is
// the key; with null the entry is a data row. The text is cut at `buf_size`, always terminated;
// P4PD_SUCCESS even when cut, P4PD_FAIL for an unknown table.
//
// What the ASIC layer's reads give is taken as it is by some kinds of table alone:
//
//     table (id)                            bytes                        hwentry_len
//     flow (1, 2), and HBM rows of          as read                      as read
//       index tables (21, 26, ...)
//     hash (3 to 6), and SRAM rows of       p4pd_utils_swizzle_bytes     as read
//       index and keyless tables              over the length read
//     ternary (7 to 15), key and data       as read                      as read, rounded up to 16
//
// The rounding: rows are swizzled over whole 16 bits, so where the length read fills an odd number
// of bytes - data rows of tables 12, 13 and 15, with 20, 8 and 8 bits - the row's first byte, its
// action, is the last byte of the rounded length. Without the rounding it is not looked at.
p4pd_error_t p4pd_table_entry_decoded_string_get(uint32_t tableid, uint32_t index, uint8_t *hwentry,
                                                 uint8_t *hwentry_y, uint16_t hwentry_len,
                                                 char *buffer, uint16_t buf_size);

// Text of software records; each may be null. The same rules for the buffer.
p4pd_error_t p4pd_table_ds_decoded_string_get(uint32_t tableid, uint32_t index, void *swkey,
                                              void *swkey_mask, void *action_data, char *buffer,
                                              uint16_t buf_len);

// Lower-case names; the empty string for an unknown table or action. No bound is given: an action
// name takes up to 59 bytes, an error-action name up to 35.
void p4pd_get_action_name(uint32_t tableid, int actionid, char *action_name);
void p4pd_get_error_action_name(uint32_t tableid, char *error_action_name);

// This pipeline has no error programs: each fills `len` bytes with zeros. `len` is at least 1 for
// the first two.
void p4pd_get_ingress_error_program(char *buffer, size_t len);
void p4pd_get_egress_error_program(char *buffer, size_t len);
void p4pd_get_ingress_stage_error_action(uint32_t stage, char *buffer, size_t len);
void p4pd_get_egress_stage_error_action(uint32_t stage, char *buffer, size_t len);

// --- Debug response message ----------------------------------------------------------------------

// 5120 zero bytes: 10 slots of 512, each [key 128][key mask 128][action data 256]. Null when memory
// is exhausted; released with free_debug_response_msg.
void *allocate_debug_response_msg();
void free_debug_response_msg(void *msg);

// Copies slot `slot` (not checked) into the records of table `tableid`; index and keyless tables
// touch only `action_data`. P4PD_FAIL for a null message or an unknown table.
p4pd_error_t p4pd_entry_populate(uint32_t tableid, void *swkey, void *swkey_mask, void *action_data,
                                 void *msg, int slot);

// This pipeline shows no registers: both are one function that answers 0.
p4pd_error_t p4pd_register_entry_read(std::string block, std::string name, std::string field);
p4pd_error_t p4pd_register_list(std::string block, std::string name, std::string field);

#pragma GCC visibility pop
