#pragma once

// Bit routines of the host: the only place where a position in a hardware image is resolved.
//
// An image is a run of bits, bit 0 first:
//
//     byte 0           byte 1
//     0 1 2 3 4 5 6 7  8 9 ...        bit n is bit 7 - n % 8 of byte n / 8
//     0x80 ...  0x01   0x80 ...
//
// A copy of ONE bit (p4pd_utils_copy_into_hwentry with width 1, p4pd_utils_copy_single_bit) numbers
// the image's bits from the low end of each byte instead: bit 7 is 0x80 of byte 0, bit 0 is 0x01.
// Record ("le") fields are little-endian: their byte 0 holds bits 0 to 7.
//
// All lengths and positions are in bits unless a comment says otherwise.

#include <cstdint>

// Moves `width` bits (1 to 8) of the one byte at `src`, from bit `src_bit` downwards (7 is the
// top), into the image `dest` at `dest_bit`. Other bits of `dest` keep their values.
void p4pd_utils_copy_into_hwentry(uint8_t *dest, uint16_t dest_bit, uint8_t *src, uint16_t src_bit,
                                  uint16_t width);

// Packs the little-endian field at `src` (its bits src_bit .. src_bit + width - 1) into `dest` so
// that its most significant bit stands at `dest_bit` and its least at dest_bit + width - 1.
void p4pd_utils_copy_le_src_to_be_dest(uint8_t *dest, uint16_t dest_bit, uint8_t *src,
                                       uint16_t src_bit, uint16_t width);

// The inverse, for key fields: `width` bits of the image `src` from `src_bit` into the
// little-endian field `dest` at its bit `dest_bit`. Bits of `dest` outside the run keep their
// values.
void p4pd_utils_copy_be_src_to_le_dest(uint8_t *dest, uint16_t dest_bit, uint8_t *src,
                                       uint16_t src_bit, uint16_t width);

// The same for action-data fields.
void p4pd_utils_copy_be_adata_to_le_dest(uint8_t *dest, uint16_t dest_bit, uint8_t *src,
                                         uint16_t src_bit, uint16_t width);

// Copies one bit of the image `src` (one-bit numbering, see above) to bit `dest_bit` (0 is the
// lowest) of the byte at `dest`. `width` is 1.
void p4pd_utils_copy_single_bit(uint8_t *dest, uint16_t dest_bit, uint8_t *src, uint16_t src_bit,
                                uint16_t width);

// Reverses in place the bytes of `bits`, rounded up to a multiple of 16 bits. Its own inverse, also
// between lengths that round to the same multiple. The buffer holds the rounded length.
void p4pd_utils_swizzle_bytes(uint8_t *buffer, uint16_t bits);

// Lays out an index or TCAM data entry, [action pc unless 0xff][key][data], and returns its length.
// `key` is null when `key_bits` is 0.
uint16_t p4pd_utils_p4table_entry_prepare(uint8_t *entry, uint8_t action_pc, uint8_t *key,
                                          uint16_t key_bits, uint8_t *data, uint16_t data_bits);

// Lays out a hash entry, [action pc unless 0xff][data before key][key at key_start_bit][data after
// key], and returns its length. A null `key` leaves key_bits of room zero. `*entry_offset` becomes
// the byte offset of the entry in `entry`.
//
// `data_bits` is the table's whole data, whatever parts are given. An action that leaves parts out
// passes them with length 0: the key stays at key_start_bit, and the length is still that of the
// program counter, key_bits and data_bits, with zeros where the parts would be. Rows are swizzled
// over their length, so another one would move the key.
uint16_t p4pd_utils_hash_table_entry_prepare(uint8_t *entry, uint8_t action_pc,
                                             uint16_t key_start_bit, uint8_t *key,
                                             uint16_t key_bits, uint16_t data_bits,
                                             uint8_t *before_key, uint16_t before_key_bits,
                                             uint8_t *after_key, uint16_t after_key_bits,
                                             uint16_t *entry_offset);

// The same for keys wider than one 512-bit flit: whole flits of key first, then a last flit
// [data before key][rest of the key at key_start_bit, taken from the same place of the key image]
// [data after key].
uint16_t p4pd_utils_widekey_hash_table_entry_prepare(uint8_t *entry, uint8_t action_pc,
                                                     uint16_t key_start_bit, uint8_t *key,
                                                     uint16_t key_bits, uint16_t data_bits,
                                                     uint8_t *before_key, uint16_t before_key_bits,
                                                     uint8_t *after_key, uint16_t after_key_bits,
                                                     uint16_t *entry_offset);
