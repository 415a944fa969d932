// Both p4pd_entry_read: one row of a table into software records, and the debug dump of a table.

#include <cstdio>

#include "p4gen/halden/pipeline/pipeline.h"
#include "p4gen/halden/src/entry_read.h"
#include "p4pd.h"
#include "sdk/p4pd_global.h"

namespace halden::p4pd {
namespace {

// One reader per table, <table>_entry_read. Kept out of line so that a read takes the stack of its
// own table's row and no other's.
#define HALDEN_READER(name)                                                                   \
    [[gnu::noinline]] p4pd_error_t name##_entry_read(uint32_t index, const read_records &out, \
                                                     void *extra, bool flag) {                \
        return read_entry<pipeline::name>(index, out, extra, flag);                           \
    }
HALDEN_FOR_EACH_TABLE(HALDEN_READER)
#undef HALDEN_READER

constexpr uint32_t every_row = UINT32_MAX;
constexpr uint16_t dump_text_bytes = 2048;

}  // namespace
}  // namespace halden::p4pd

p4pd_error_t p4pd_entry_read(uint32_t tableid, uint32_t index, void *swkey, void *swkey_mask,
                             void *actiondata, void *extra, bool flag) {
    const halden::p4pd::read_records out = {static_cast<uint8_t *>(swkey),
                                            static_cast<uint8_t *>(swkey_mask),
                                            static_cast<uint8_t *>(actiondata)};
    switch (tableid) {
#define HALDEN_READER(name)         \
    case halden::pipeline::name.id: \
        return halden::p4pd::name##_entry_read(index, out, extra, flag);
        HALDEN_FOR_EACH_TABLE(HALDEN_READER)
#undef HALDEN_READER
        default:
            return P4PD_FAIL;
    }
}

// The host's functions decide what a table id means here: another program's tables can be dumped
// too. Rows are not cached, so a table that changes under the dump shows each row as it was read.
p4pd_error_t p4pd_entry_read(uint32_t tableid, uint32_t index, void *swkey, void *swkey_mask,
                             void *actiondata, void * /*unused*/, int * /*unused*/) {
    uint64_t row = index, end = row + 1;
    if (index == halden::p4pd::every_row) {
        p4pd_table_properties_t properties = {};
        if (p4pd_global_table_properties_get(tableid, &properties) != P4PD_SUCCESS)
            return P4PD_FAIL;
        row = 0;
        end = properties.tabledepth;
    }
    for (; row < end; ++row) {
        const auto at = static_cast<uint32_t>(row);
        if (p4pd_global_entry_read(tableid, at, swkey, swkey_mask, actiondata, nullptr, true) !=
            P4PD_SUCCESS)
            return P4PD_FAIL;
        char text[halden::p4pd::dump_text_bytes] = {};
        p4pd_global_table_ds_decoded_string_get(tableid, at, swkey, swkey_mask, actiondata, text,
                                                sizeof text);
        std::printf("%s\n", text);
    }
    std::fflush(stdout);
    return P4PD_SUCCESS;
}
