#pragma once

// The ASIC access layer: how one row of a table's memory is written and read.
//
// Conventions of every call
//   * table ids and row indices are 32-bit, taken as the library was given them;
//   * lengths are in BITS and 16 bits wide; a buffer holds the bytes of its length rounded up;
//   * images are big-endian runs of bits (see sdk/p4pd_utils.h), already swizzled where the
//     memory wants swizzled bytes: SRAM and TCAM rows are, HBM rows are not;
//   * buffers belong to the caller and are not kept past the call;
//   * the int results are the host's own; the library never reads them.

#include <cstdint>

namespace sdk::asic::pd {

// Program counter answered by asicpd_get_action_pc for an action that has no program.
inline constexpr uint8_t no_action_pc = 0xff;

// Writes one SRAM row. `mask` is null or an image of the same length: only the bits set in it are
// changed. `flag` is passed through from the p4pd entry points.
int asicpd_table_entry_write(uint32_t tableid, uint32_t index, uint8_t *entry, uint16_t entry_bits,
                             uint8_t *mask, bool flag);

// Reads one SRAM row into `entry` (at least 1024 bytes); `*entry_bits` becomes 0 for an empty row.
int asicpd_table_entry_read(uint32_t tableid, uint32_t index, uint8_t *entry, uint16_t *entry_bits,
                            bool flag);

// Writes one TCAM row from its swizzled key (x) and mask (y) images. `width` is the TCAM width in
// bits, a multiple of 16.
int asicpd_tcam_table_entry_write(uint32_t tableid, uint32_t index, uint8_t *key, uint8_t *mask,
                                  uint16_t width, bool flag);

// Reads one TCAM row into `key` and `mask` (at least 1024 bytes each); `*width` becomes 0 for an
// empty row. `extra` is the caller's, handed through; null when it asks for nothing more.
int asicpd_tcam_table_entry_read(uint32_t tableid, uint32_t index, uint8_t *key, uint8_t *mask,
                                 uint16_t *width, void *extra, bool flag);

// Writes one HBM row, unswizzled. `reserved` is 0.
int asicpd_hbm_table_entry_write(uint32_t tableid, uint32_t index, uint8_t *entry,
                                 uint32_t reserved, uint16_t entry_bits);

// Reads one HBM row into `entry` (1024 bytes; 6144 for the wide-key hash tables).
int asicpd_hbm_table_entry_read(uint32_t tableid, uint32_t index, uint8_t *entry,
                                uint16_t *entry_bits);

// Program counter of an action's program, no_action_pc when it has none.
uint8_t asicpd_get_action_pc(uint32_t tableid, uint8_t actionid);

// The action whose program stands at `actionpc`; a value that is no action id of the table when
// there is none.
uint8_t asicpd_get_action_id(uint32_t tableid, uint8_t actionpc);

}  // namespace sdk::asic::pd
