#include "tests/reference/prepare_tap.h"

#include "sdk/p4pd_utils.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace {

using halden::reference::prepared;

std::vector<prepared> calls;

std::vector<uint8_t> copy_of(const uint8_t *image, uint16_t bits) {
    return image == nullptr ? std::vector<uint8_t>()
                            : std::vector<uint8_t>(image, image + (bits + 7) / 8);
}

// The host's own routine of this name.
template <class Routine>
Routine *next(const char *mangled) {
    void *found = dlsym(RTLD_NEXT, mangled);
    if (found == nullptr) {
        std::fprintf(stderr, "the host has no %s\n", mangled);
        std::abort();
    }
    return reinterpret_cast<Routine *>(found);
}

using hash_prepare = uint16_t(uint8_t *, uint8_t, uint16_t, uint8_t *, uint16_t, uint16_t,
                              uint8_t *, uint16_t, uint8_t *, uint16_t, uint16_t *);

}  // namespace

std::vector<prepared> halden::reference::take_prepared() { return std::exchange(calls, {}); }

uint16_t p4pd_utils_p4table_entry_prepare(uint8_t *entry, uint8_t action_pc, uint8_t *key,
                                          uint16_t key_bits, uint8_t *data, uint16_t data_bits) {
    calls.push_back({action_pc, copy_of(data, data_bits), data_bits, {}, 0});
    static auto *const host = next<decltype(p4pd_utils_p4table_entry_prepare)>(
        "_Z32p4pd_utils_p4table_entry_preparePhhS_tS_t");
    return host(entry, action_pc, key, key_bits, data, data_bits);
}

uint16_t p4pd_utils_hash_table_entry_prepare(uint8_t *entry, uint8_t action_pc,
                                             uint16_t key_start_bit, uint8_t *key,
                                             uint16_t key_bits, uint16_t data_bits,
                                             uint8_t *before_key, uint16_t before_key_bits,
                                             uint8_t *after_key, uint16_t after_key_bits,
                                             uint16_t *entry_offset) {
    calls.push_back({action_pc, copy_of(after_key, after_key_bits), after_key_bits,
                     copy_of(before_key, before_key_bits), before_key_bits});
    static auto *const host =
        next<hash_prepare>("_Z35p4pd_utils_hash_table_entry_preparePhhtS_ttS_tS_tPt");
    return host(entry, action_pc, key_start_bit, key, key_bits, data_bits, before_key,
                before_key_bits, after_key, after_key_bits, entry_offset);
}

uint16_t p4pd_utils_widekey_hash_table_entry_prepare(uint8_t *entry, uint8_t action_pc,
                                                     uint16_t key_start_bit, uint8_t *key,
                                                     uint16_t key_bits, uint16_t data_bits,
                                                     uint8_t *before_key, uint16_t before_key_bits,
                                                     uint8_t *after_key, uint16_t after_key_bits,
                                                     uint16_t *entry_offset) {
    calls.push_back({action_pc, copy_of(after_key, after_key_bits), after_key_bits,
                     copy_of(before_key, before_key_bits), before_key_bits});
    static auto *const host =
        next<hash_prepare>("_Z43p4pd_utils_widekey_hash_table_entry_preparePhhtS_ttS_tS_tPt");
    return host(entry, action_pc, key_start_bit, key, key_bits, data_bits, before_key,
                before_key_bits, after_key, after_key_bits, entry_offset);
}
