// The host's bit routines, recorded.

#include "sdk/p4pd_utils.h"

#include "tests/support/recording_host.h"

using namespace halden::test;

namespace {

recording_host &host() { return recording_host::get(); }

// Reads the bytes that hold `bits` bits from `bit` on and stores them again.
void touch(uint8_t *buffer, size_t bit, size_t bits) {
    if (buffer == nullptr || bits == 0) return;
    for (size_t byte = bit / 8; byte <= (bit + bits - 1) / 8; ++byte) {
        volatile uint8_t *at = buffer + byte;
        *at = *at;
    }
}

argument source(const uint8_t *address, size_t bit, size_t bits) {
    return image(address, bits == 0 ? 0 : bit + bits);
}

void record_copy(const char *name, uint8_t *dest, uint16_t dest_bit, uint8_t *src, uint16_t src_bit,
                 uint16_t width, argument from) {
    host().record(
        name, {pointer(dest), number(dest_bit), std::move(from), number(src_bit), number(width)});
    touch(dest, dest_bit, width);
    (void)src;
}

uint16_t record_hash_prepare(const char *name, uint8_t *entry, uint8_t action_pc,
                             uint16_t key_start_bit, uint8_t *key, uint16_t key_bits,
                             uint16_t data_bits, uint8_t *before_key, uint16_t before_key_bits,
                             uint8_t *after_key, uint16_t after_key_bits, uint16_t *entry_offset) {
    const call made = host().record(
        name, {pointer(entry), number(action_pc), number(key_start_bit), image(key, key_bits),
               number(key_bits), number(data_bits), image(before_key, before_key_bits),
               number(before_key_bits), image(after_key, after_key_bits), number(after_key_bits),
               pointer(entry_offset)});
    *entry_offset = host().entry_offset;
    if (host().on_prepare) return host().on_prepare(made);
    return static_cast<uint16_t>((action_pc == 0xff ? 0 : 8) + key_bits + before_key_bits +
                                 after_key_bits);
}

}  // namespace

// The byte that bits are taken from is kept.
void p4pd_utils_copy_into_hwentry(uint8_t *dest, uint16_t dest_bit, uint8_t *src, uint16_t src_bit,
                                  uint16_t width) {
    recording_host::scope inside;
    record_copy("p4pd_utils_copy_into_hwentry", dest, dest_bit, src, src_bit, width, image(src, 8));
}

// The bytes of the field are kept.
void p4pd_utils_copy_le_src_to_be_dest(uint8_t *dest, uint16_t dest_bit, uint8_t *src,
                                       uint16_t src_bit, uint16_t width) {
    recording_host::scope inside;
    record_copy("p4pd_utils_copy_le_src_to_be_dest", dest, dest_bit, src, src_bit, width,
                source(src, src_bit, width));
}

// The bytes of the image that the field spans are touched, not kept.
void p4pd_utils_copy_be_src_to_le_dest(uint8_t *dest, uint16_t dest_bit, uint8_t *src,
                                       uint16_t src_bit, uint16_t width) {
    recording_host::scope inside;
    record_copy("p4pd_utils_copy_be_src_to_le_dest", dest, dest_bit, src, src_bit, width,
                pointer(src));
    touch(src, src_bit, width);
}

void p4pd_utils_copy_be_adata_to_le_dest(uint8_t *dest, uint16_t dest_bit, uint8_t *src,
                                         uint16_t src_bit, uint16_t width) {
    recording_host::scope inside;
    record_copy("p4pd_utils_copy_be_adata_to_le_dest", dest, dest_bit, src, src_bit, width,
                pointer(src));
    touch(src, src_bit, width);
}

void p4pd_utils_copy_single_bit(uint8_t *dest, uint16_t dest_bit, uint8_t *src, uint16_t src_bit,
                                uint16_t width) {
    recording_host::scope inside;
    record_copy("p4pd_utils_copy_single_bit", dest, dest_bit, src, src_bit, width, pointer(src));
    touch(src, src_bit, width);
}

// The image as it was before is kept; its bytes, rounded up to 16 bits, are touched.
void p4pd_utils_swizzle_bytes(uint8_t *buffer, uint16_t bits) {
    recording_host::scope inside;
    host().record("p4pd_utils_swizzle_bytes", {image(buffer, bits), number(bits)});
    touch(buffer, 0, (bits + size_t{15}) / 16 * 16);
}

// Key and data are kept.
uint16_t p4pd_utils_p4table_entry_prepare(uint8_t *entry, uint8_t action_pc, uint8_t *key,
                                          uint16_t key_bits, uint8_t *data, uint16_t data_bits) {
    recording_host::scope inside;
    const call made = host().record("p4pd_utils_p4table_entry_prepare",
                                    {pointer(entry), number(action_pc), image(key, key_bits),
                                     number(key_bits), image(data, data_bits), number(data_bits)});
    if (host().on_prepare) return host().on_prepare(made);
    return static_cast<uint16_t>((action_pc == 0xff ? 0 : 8) + key_bits + data_bits);
}

// Key, data before the key and data after it are kept.
uint16_t p4pd_utils_hash_table_entry_prepare(uint8_t *entry, uint8_t action_pc,
                                             uint16_t key_start_bit, uint8_t *key,
                                             uint16_t key_bits, uint16_t data_bits,
                                             uint8_t *before_key, uint16_t before_key_bits,
                                             uint8_t *after_key, uint16_t after_key_bits,
                                             uint16_t *entry_offset) {
    recording_host::scope inside;
    return record_hash_prepare("p4pd_utils_hash_table_entry_prepare", entry, action_pc,
                               key_start_bit, key, key_bits, data_bits, before_key, before_key_bits,
                               after_key, after_key_bits, entry_offset);
}

uint16_t p4pd_utils_widekey_hash_table_entry_prepare(uint8_t *entry, uint8_t action_pc,
                                                     uint16_t key_start_bit, uint8_t *key,
                                                     uint16_t key_bits, uint16_t data_bits,
                                                     uint8_t *before_key, uint16_t before_key_bits,
                                                     uint8_t *after_key, uint16_t after_key_bits,
                                                     uint16_t *entry_offset) {
    recording_host::scope inside;
    return record_hash_prepare("p4pd_utils_widekey_hash_table_entry_prepare", entry, action_pc,
                               key_start_bit, key, key_bits, data_bits, before_key, before_key_bits,
                               after_key, after_key_bits, entry_offset);
}
