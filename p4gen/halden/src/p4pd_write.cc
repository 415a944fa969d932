// Entry write: the dispatch over tables and the entry points that start from software records.

#include <cstdlib>

#include "p4gen/halden/src/entry_write.h"
#include "p4gen/halden/src/gen/entry_writers.h"
#include "p4pd.h"
#include "sdk/p4pd_global.h"

namespace {

namespace pl = halden::pipeline;

struct write_call {
    uint32_t tableid, index;
    uint8_t *hwkey, *hwkey_mask;
    void *actiondata, *actiondata_mask;
    bool flag;
};

// A named writer takes what its table's kind has: key and mask, a key alone, or neither.
template <class Record>
p4pd_error_t call(p4pd_error_t (*writer)(uint32_t, uint32_t, uint8_t *, uint8_t *, Record *,
                                         Record *, bool),
                  const write_call &c) {
    return writer(c.tableid, c.index, c.hwkey, c.hwkey_mask, static_cast<Record *>(c.actiondata),
                  static_cast<Record *>(c.actiondata_mask), c.flag);
}
template <class Record>
p4pd_error_t call(p4pd_error_t (*writer)(uint32_t, uint32_t, uint8_t *, Record *, Record *, bool),
                  const write_call &c) {
    return writer(c.tableid, c.index, c.hwkey, static_cast<Record *>(c.actiondata),
                  static_cast<Record *>(c.actiondata_mask), c.flag);
}
template <class Record>
p4pd_error_t call(p4pd_error_t (*writer)(uint32_t, uint32_t, Record *, Record *, bool),
                  const write_call &c) {
    return writer(c.tableid, c.index, static_cast<Record *>(c.actiondata),
                  static_cast<Record *>(c.actiondata_mask), c.flag);
}

// A key buffer's bytes. A flow key's image is longer than its length in bits says, and a length of
// zero still needs an address.
size_t key_buffer_bytes(const pl::table &t, uint32_t bits) {
    if (t.kind == pl::kind::hash_hbm) return pl::wide_key_image_bytes;
    const size_t bytes = (bits + 7) / 8;
    return bytes == 0 ? 1 : bytes;
}

}  // namespace

p4pd_error_t p4pd_entry_write_with_datamask(uint32_t tableid, uint32_t index, uint8_t *hwkey,
                                            uint8_t *hwkey_mask, void *actiondata,
                                            void *actiondata_mask, bool flag) {
    const write_call c = {tableid, index, hwkey, hwkey_mask, actiondata, actiondata_mask, flag};
    switch (tableid) {
#define HALDEN_WRITE(t) \
    case pl::t.id:      \
        return call(t##_entry_write, c);
        HALDEN_FOR_EACH_TABLE(HALDEN_WRITE)
#undef HALDEN_WRITE
        default:
            return P4PD_FAIL;
    }
}

p4pd_error_t p4pd_entry_write(uint32_t tableid, uint32_t index, uint8_t *hwkey, uint8_t *hwkey_mask,
                              void *actiondata, bool flag) {
    return p4pd_entry_write_with_datamask(tableid, index, hwkey, hwkey_mask, actiondata, nullptr,
                                          flag);
}

p4pd_error_t p4pd_entry_install(uint32_t tableid, uint32_t index, void *swkey, void *swkey_mask,
                                void *actiondata) {
    uint8_t hwkey[halden::p4pd::wide_entry_bytes] = {};
    uint8_t hwkey_mask[halden::p4pd::wide_entry_bytes] = {};
    // A table without a key has nothing to build, which some ids report as a failure.
    (void)p4pd_hwkey_hwmask_build(tableid, swkey, swkey_mask, hwkey, hwkey_mask);
    return p4pd_entry_write_with_datamask(tableid, index, hwkey, hwkey_mask, actiondata, nullptr,
                                          false);
}

p4pd_error_t p4pd_entry_write(uint32_t tableid, uint32_t index, void *swkey, void *swkey_mask,
                              void *actiondata) {
    const pl::table *t = pl::find_table(tableid);
    if (t == nullptr) return P4PD_FAIL;
    if (!pl::is_keyed(t->kind)) swkey = nullptr;
    if (!pl::has_mask(t->kind)) swkey_mask = nullptr;

    uint32_t key_bits = 0, mask_bits = 0, data_bits = 0;
    p4pd_hwentry_query(tableid, &key_bits, &mask_bits, &data_bits);
    auto *hwkey = static_cast<uint8_t *>(std::calloc(1, key_buffer_bytes(*t, key_bits)));
    auto *hwkey_mask = static_cast<uint8_t *>(std::calloc(1, key_buffer_bytes(*t, mask_bits)));
    p4pd_error_t result = P4PD_FAIL;
    if (hwkey != nullptr && hwkey_mask != nullptr) {
        result = p4pd_hwkey_hwmask_build(tableid, swkey, swkey_mask, hwkey, hwkey_mask);
        if (result == P4PD_SUCCESS)
            result = p4pd_global_entry_write(tableid, index, hwkey, hwkey_mask, actiondata, false);
    }
    std::free(hwkey);
    std::free(hwkey_mask);
    return result;
}
