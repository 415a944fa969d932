#include "host/view/lookup.h"

#include <cstring>

#include "host/bits/bit_runs.h"
#include "host/view/flow_view.h"
#include "host/view/row_hash.h"
#include "sdk/p4pd_utils.h"

namespace halden::host::view {
namespace {

// Room for every routine that reads a row.
constexpr size_t read_bytes = 1024;

// The data row that belongs to `row` of a table, unswizzled.
void read_data(adapter &hardware, uint32_t tableid, uint32_t row, answer &out) {
    uint8_t image[read_bytes] = {};
    const table_memory *table = table_memory_of(tableid);
    if (table->data == memory::hbm) {
        out.unread = hardware.hbm_read(tableid, row, image, &out.bits);
    } else {
        out.unread = hardware.sram_read(tableid, row, image, &out.bits);
        p4pd_utils_swizzle_bytes(image, out.bits);
    }
    out.image.assign(image, image + bits::bytes_of(out.bits));
}

bool key_is(const answer &row, const uint8_t *key_image, uint32_t key_bits) {
    if (row.bits < key_bits) return false;
    uint8_t wanted[row_bytes] = {}, stored[row_bytes] = {};
    bits::copy_image(wanted, 0, key_image, 0, key_bits);
    bits::copy_image(stored, 0, row.image.data(), 0, key_bits);
    return std::memcmp(wanted, stored, sizeof wanted) == 0;
}

// The lowest row of a TCAM whose ones the key has (x) and whose zeros it has not (y).
void search_tcam(adapter &hardware, const table_memory &table, const uint8_t *key_image,
                 answer &out) {
    // Memory that cannot be mapped has no rows to look at, and is not empty.
    if (hardware.check_row(table.id, 0) == SDK_RET_OOM) {
        out.unread = SDK_RET_OOM;
        return;
    }
    uint8_t key[read_bytes] = {};
    bits::copy_image(key, 0, key_image, 0, table.key_bits);
    p4pd_utils_swizzle_bytes(key, static_cast<uint16_t>(table.key_bits));
    for (uint32_t row = hardware.next_used(table.id, 0); row < table.rows;
         row = hardware.next_used(table.id, row + 1)) {
        uint8_t x[read_bytes] = {}, y[read_bytes] = {};
        uint16_t width = 0;
        out.unread = hardware.tcam_read(table.id, row, x, y, &width);
        if (out.unread != SDK_RET_OK) return;
        bool matches = width != 0;
        for (uint32_t i = 0; i < width / 8u; ++i)
            matches = matches && (key[i] & x[i]) == x[i] && (key[i] & y[i]) == 0;
        if (!matches) continue;
        out.table = table.id;
        out.row = row;
        read_data(hardware, table.id, row, out);
        out.hit = out.unread == SDK_RET_OK;
        return;
    }
}

}  // namespace

answer lookup(adapter &hardware, uint32_t tableid, const uint8_t *key_image) {
    answer out;
    const table_memory *table = table_memory_of(tableid);
    if (table == nullptr) return out;
    if (table->is_flow()) return tableid == flow_table ? flow_lookup(hardware, key_image) : out;
    if (table->has_tcam()) {
        search_tcam(hardware, *table, key_image, out);
        return out;
    }
    if (!table->is_hash()) return out;

    out.hashed_row = hash_row(tableid, key_image, hardware.depth(tableid));
    answer in_row = out;
    read_data(hardware, tableid, out.hashed_row, in_row);
    if (in_row.unread != SDK_RET_OK) return in_row;
    out.row_in_use = in_row.row_in_use = in_row.bits != 0;
    if (key_is(in_row, key_image, table->key_bits)) {
        in_row.hit = true;
        in_row.table = tableid;
        in_row.row = out.hashed_row;
        return in_row;
    }
    search_tcam(hardware, *table_memory_of(table->overflow), key_image, out);
    return out;
}

}  // namespace halden::host::view
