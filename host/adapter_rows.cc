// The calls of the ASIC layer on an adapter's rows: check, meet the faults, then touch memory.

#include "host/adapter.h"
#include "host/bits/bit_runs.h"
#include "host/memory/flow_rows.h"
#include "host/memory/row_store.h"
#include "host/memory/troubles.h"
#include "host/trace/trace.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace halden::host {

namespace {

constexpr uint32_t sram_row_bits = row_bytes * 8;
constexpr uint32_t tcam_most_bits = tcam_image_bytes * 8;

std::string number(uint32_t value) { return std::to_string(value); }

}  // namespace

struct adapter::row_place {
    memory where;
    row_store *rows;
    uint32_t table;  // that owns the memory
    uint32_t row;
};

sdk_ret_t adapter::refuse(const char *call, const std::string &what) const {
    trace::error("%s: %s", call, what.c_str());
    return SDK_RET_INVALID_ARG;
}

sdk_ret_t adapter::refuse_index(const char *call, uint32_t tableid, uint32_t index) {
    return refuse(call, "table " + number(tableid) + ": index " + number(index) + " is beyond " +
                            number(depth(tableid) - 1));
}

// --- Damage --------------------------------------------------------------------------------------

namespace {

std::string damage_text(uint32_t row, uint16_t length, const row_lengths &possible) {
    return "row " + number(row) + " is damaged: its length is " + number(length) +
           " bits; possible are 0 to " + number(possible.most) +
           (possible.step != 1 ? " in steps of " + number(possible.step) : "") +
           "; a raw write of the whole row (`haldenctl write`) puts it right";
}

}  // namespace

sdk_ret_t adapter::refuse_damaged(const char *call, const row_place &place, uint16_t length) {
    const std::string name = memory_name(place.where, place.table);
    const std::string text = damage_text(place.row, length, place.rows->lengths());
    trace::error("%s: %s: %s", call, name.c_str(), text.c_str());
    troubles_->note(place.where, place.table, place.row, name, text);
    return SDK_RET_DAMAGED;
}

sdk_ret_t adapter::read_row(const char *call, const row_place &place, row_image &image,
                            uint16_t &bits) {
    const row_length found = place.rows->read(place.row, image);
    if (found.is_damaged()) return refuse_damaged(call, place, found.impossible);
    bits = found.bits;
    return SDK_RET_OK;
}

// The memories that an entry stands in: the TCAM, then the data. A flow row has no length.
template <class See>
sdk_ret_t adapter::for_each_memory(uint32_t tableid, uint32_t index, See see) {
    const table_memory *table = table_memory_of(tableid);
    if (table->is_flow()) return flow_rows_of(tableid) != nullptr ? SDK_RET_OK : SDK_RET_OOM;
    const auto look = [&](memory where, uint32_t owner, uint32_t row) {
        const row_place place = {where, rows_of(where, owner), owner, row};
        return place.rows == nullptr ? SDK_RET_OOM : see(place);
    };
    if (table->has_tcam())
        if (sdk_ret_t bad = look(memory::tcam, tableid, index)) return bad;
    if (table->owner == 0) return look(table->data, tableid, index);
    return look(table->data, table->owner, table->overflow_base + index);
}

sdk_ret_t adapter::check_row(uint32_t tableid, uint32_t index) {
    const table_memory *table = table_memory_of(tableid);
    if (table == nullptr) return refuse(__func__, "table " + number(tableid) + " is unknown");
    if (index >= depth(tableid)) return refuse_index(__func__, tableid, index);
    return for_each_memory(tableid, index, [&](const row_place &place) {
        const row_length found = place.rows->length_of(place.row);
        return found.is_damaged() ? refuse_damaged("check_row", place, found.impossible)
                                  : SDK_RET_OK;
    });
}

std::string adapter::damage_of(uint32_t tableid, uint32_t index) {
    std::string out;
    if (table_memory_of(tableid) == nullptr || index >= depth(tableid)) return out;
    for_each_memory(tableid, index, [&](const row_place &place) {
        const row_length found = place.rows->length_of(place.row);
        if (found.is_damaged())
            out += (out.empty() ? "" : "; ") + memory_name(place.where, place.table) + ": row " +
                   number(place.row) + " had a length of " + number(found.impossible) + " bits";
        return SDK_RET_OK;
    });
    return out;
}

// --- Writes --------------------------------------------------------------------------------------

sdk_ret_t adapter::refuse_write(const char *call, uint32_t tableid) const {
    if (is_writable()) return SDK_RET_OK;
    refuse(call, "table " + number(tableid) + ": the adapter is open for reading only");
    return SDK_RET_HW_PROGRAM_ERR;
}

// The row is written as far as this process goes; whether the disk has it is what is told here.
sdk_ret_t adapter::kept(const char *call, memory where, uint32_t tableid, bool flushed) const {
    if (flushed) return SDK_RET_OK;
    const int error = errno;
    trace::error("%s: %s: could not be flushed to the disk: %s", call,
                 memory_name(where, tableid).c_str(), std::strerror(error));
    return SDK_RET_HW_PROGRAM_ERR;
}

sdk_ret_t adapter::put(const char *call, const row_place &place, const row_image &image,
                       uint16_t bits) {
    row_store &rows = *place.rows;
    if (const row_length before = rows.length_of(place.row); before.is_damaged()) [[unlikely]] {
        trace::error("%s: row %u had a length of %u bits, which is damage, and is written anew",
                     memory_name(place.where, place.table).c_str(), place.row, before.impossible);
        troubles_->forget(place.where, place.table, place.row);
    }
    if (!observed_.load(std::memory_order_acquire)) {
        return kept(call, place.where, place.table, rows.write(place.row, image, bits));
    }
    row_image old;
    const uint16_t old_bits = rows.read(place.row, old).bits;
    const bool flushed = rows.write(place.row, image, bits);
    tell({place.where, place.table, place.row, old_bits, old, bits, image});
    return kept(call, place.where, place.table, flushed);
}

sdk_ret_t adapter::put_flow(const char *call, uint32_t tableid, flow_rows &rows, uint32_t row,
                            const flow_image &image) {
    if (!observed_.load(std::memory_order_acquire)) {
        return kept(call, memory::hbm, tableid, rows.write(row, image));
    }
    flow_image old, now;
    const uint16_t old_bits = rows.read(row, old);
    const bool flushed = rows.write(row, image);
    tell({memory::hbm, tableid, row, old_bits, old, rows.read(row, now), image});
    return kept(call, memory::hbm, tableid, flushed);
}

// --- SRAM ----------------------------------------------------------------------------------------

sdk_ret_t adapter::find_sram(uint32_t tableid, uint32_t index, bool for_read, const char *call,
                             row_place &place) {
    const table_memory *table = table_memory_of(tableid);
    if (table == nullptr || table->data != memory::sram)
        return refuse(call, "table " + number(tableid) + " has no SRAM");
    uint32_t row = index;
    if (table->owner == 0) {
        if (index >= table->rows) return refuse_index(call, tableid, index);
    } else if (for_read && index < table->rows) {
        row = table->overflow_base + index;
    } else if (index < table->overflow_base || index - table->overflow_base >= table->rows) {
        return refuse(call, "table " + number(tableid) + ": SRAM row " + number(index) +
                                " is outside " + number(table->overflow_base) + " to " +
                                number(table->overflow_base + table->rows - 1));
    }
    const uint32_t owner = table->owner == 0 ? tableid : table->owner;
    place = {memory::sram, rows_of(memory::sram, owner), owner, row};
    return place.rows == nullptr ? SDK_RET_OOM : SDK_RET_OK;
}

sdk_ret_t adapter::sram_write(uint32_t tableid, uint32_t index, const uint8_t *image, uint16_t bits,
                              const uint8_t *mask) {
    row_place place = {};
    if (sdk_ret_t bad = find_sram(tableid, index, false, __func__, place)) return bad;
    if (bits > sram_row_bits)
        return refuse(__func__, "table " + number(tableid) + ": an entry of " + number(bits) +
                                    " bits does not fit a row of " + number(sram_row_bits));
    if (sdk_ret_t refused = refuse_write(__func__, tableid)) return refused;
    if (sdk_ret_t injected = faults_.meet(asic_call::sram_write, tableid, index)) return injected;

    row_image next = {};
    const uint32_t bytes = bits::swizzled_bytes_of(bits);
    if (bytes != 0) std::memcpy(next.data(), image, bytes);
    if (mask != nullptr) {
        row_image old;
        uint16_t old_bits = 0;
        if (sdk_ret_t bad = read_row(__func__, place, old, old_bits)) return bad;
        for (uint32_t i = 0; i < bytes; ++i)
            next[i] = static_cast<uint8_t>((old[i] & ~mask[i]) | (next[i] & mask[i]));
    }
    return put(__func__, place, next, bits);
}

sdk_ret_t adapter::sram_read(uint32_t tableid, uint32_t index, uint8_t *image, uint16_t *bits) {
    *bits = 0;
    row_place place = {};
    if (sdk_ret_t bad = find_sram(tableid, index, true, __func__, place)) return bad;
    if (sdk_ret_t injected = faults_.meet(asic_call::sram_read, tableid, index)) return injected;
    row_image found;
    if (sdk_ret_t bad = read_row(__func__, place, found, *bits)) return bad;
    std::memcpy(image, found.data(), bits::swizzled_bytes_of(*bits));
    return SDK_RET_OK;
}

// --- TCAM ----------------------------------------------------------------------------------------

sdk_ret_t adapter::tcam_write(uint32_t tableid, uint32_t index, const uint8_t *key,
                              const uint8_t *key_mask, uint16_t width) {
    const table_memory *table = table_memory_of(tableid);
    if (table == nullptr || !table->has_tcam())
        return refuse(__func__, "table " + number(tableid) + " has no TCAM");
    if (index >= table->rows) return refuse_index(__func__, tableid, index);
    if (width == 0 || width % 16 != 0 || width > tcam_most_bits)
        return refuse(__func__, "table " + number(tableid) + ": width " + number(width) +
                                    " is not a multiple of 16 up to " + number(tcam_most_bits));
    if (sdk_ret_t refused = refuse_write(__func__, tableid)) return refused;
    row_store *rows = rows_of(memory::tcam, tableid);
    if (rows == nullptr) return SDK_RET_OOM;
    if (sdk_ret_t injected = faults_.meet(asic_call::tcam_write, tableid, index)) return injected;

    row_image next = {};
    std::memcpy(next.data(), key, width / 8);
    std::memcpy(next.data() + tcam_image_bytes, key_mask, width / 8);
    return put(__func__, {memory::tcam, rows, tableid, index}, next, width);
}

sdk_ret_t adapter::tcam_read(uint32_t tableid, uint32_t index, uint8_t *key, uint8_t *key_mask,
                             uint16_t *width) {
    *width = 0;
    const table_memory *table = table_memory_of(tableid);
    if (table == nullptr || !table->has_tcam())
        return refuse(__func__, "table " + number(tableid) + " has no TCAM");
    if (index >= table->rows) return refuse_index(__func__, tableid, index);
    row_store *rows = rows_of(memory::tcam, tableid);
    if (rows == nullptr) return SDK_RET_OOM;
    if (sdk_ret_t injected = faults_.meet(asic_call::tcam_read, tableid, index)) return injected;

    row_image found;
    const row_place place = {memory::tcam, rows, tableid, index};
    if (sdk_ret_t bad = read_row(__func__, place, found, *width)) return bad;
    std::memcpy(key, found.data(), *width / 8);
    std::memcpy(key_mask, found.data() + tcam_image_bytes, *width / 8);
    return SDK_RET_OK;
}

// --- HBM -----------------------------------------------------------------------------------------

sdk_ret_t adapter::hbm_write(uint32_t tableid, uint32_t index, const uint8_t *image,
                             uint16_t bits) {
    const table_memory *table = table_memory_of(tableid);
    if (table == nullptr || table->data != memory::hbm)
        return refuse(__func__, "table " + number(tableid) + " has no HBM");
    if (index >= depth(tableid)) return refuse_index(__func__, tableid, index);
    const uint32_t most = (table->is_flow() ? flow_row_bytes : row_bytes) * 8;
    if (bits > most)
        return refuse(__func__, "table " + number(tableid) + ": an entry of " + number(bits) +
                                    " bits does not fit a row of " + number(most));
    if (sdk_ret_t refused = refuse_write(__func__, tableid)) return refused;

    const uint32_t bytes = bits::bytes_of(bits);
    if (table->is_flow()) {
        flow_rows *rows = flow_rows_of(tableid);
        if (rows == nullptr) return SDK_RET_OOM;
        if (sdk_ret_t injected = faults_.meet(asic_call::hbm_write, tableid, index))
            return injected;
        flow_image next = {};
        if (bytes != 0) std::memcpy(next.data(), image, bytes);
        return put_flow(__func__, tableid, *rows, index, next);
    }
    row_store *rows = rows_of(memory::hbm, tableid);
    if (rows == nullptr) return SDK_RET_OOM;
    if (sdk_ret_t injected = faults_.meet(asic_call::hbm_write, tableid, index)) return injected;
    row_image next = {};
    if (bytes != 0) std::memcpy(next.data(), image, bytes);
    return put(__func__, {memory::hbm, rows, tableid, index}, next, bits);
}

sdk_ret_t adapter::hbm_read(uint32_t tableid, uint32_t index, uint8_t *image, uint16_t *bits) {
    *bits = 0;
    const table_memory *table = table_memory_of(tableid);
    if (table == nullptr || table->data != memory::hbm)
        return refuse(__func__, "table " + number(tableid) + " has no HBM");
    if (index >= depth(tableid)) return refuse_index(__func__, tableid, index);

    if (table->is_flow()) {
        flow_rows *rows = flow_rows_of(tableid);
        if (rows == nullptr) return SDK_RET_OOM;
        if (sdk_ret_t injected = faults_.meet(asic_call::hbm_read, tableid, index)) return injected;
        flow_image found;
        *bits = rows->read(index, found);
        std::memcpy(image, found.data(), bits::bytes_of(*bits));
        return SDK_RET_OK;
    }
    row_store *rows = rows_of(memory::hbm, tableid);
    if (rows == nullptr) return SDK_RET_OOM;
    if (sdk_ret_t injected = faults_.meet(asic_call::hbm_read, tableid, index)) return injected;
    row_image found;
    const row_place place = {memory::hbm, rows, tableid, index};
    if (sdk_ret_t bad = read_row(__func__, place, found, *bits)) return bad;
    std::memcpy(image, found.data(), bits::bytes_of(*bits));
    return SDK_RET_OK;
}

// --- Whole entries -------------------------------------------------------------------------------

sdk_ret_t adapter::clear_row(uint32_t tableid, uint32_t index) {
    const table_memory *table = table_memory_of(tableid);
    if (table == nullptr) return refuse(__func__, "table " + number(tableid) + " is unknown");
    if (index >= depth(tableid)) return refuse_index(__func__, tableid, index);
    if (sdk_ret_t refused = refuse_write(__func__, tableid)) return refused;
    if (sdk_ret_t bad = check_row(tableid, index)) return bad;
    if (table->data == memory::hbm) return hbm_write(tableid, index, nullptr, 0);

    if (table->has_tcam()) {
        row_store *rows = rows_of(memory::tcam, tableid);
        if (rows == nullptr) return SDK_RET_OOM;
        if (sdk_ret_t injected = faults_.meet(asic_call::tcam_write, tableid, index))
            return injected;
        if (sdk_ret_t bad = put(__func__, {memory::tcam, rows, tableid, index}, {}, 0)) return bad;
    }
    const uint32_t row = table->owner == 0 ? index : table->overflow_base + index;
    return sram_write(tableid, row, nullptr, 0, nullptr);
}

uint32_t adapter::next_used(uint32_t tableid, uint32_t from) {
    const table_memory *table = table_memory_of(tableid);
    if (table == nullptr) return 0;
    const uint32_t end = depth(tableid);
    if (from >= end) return end;
    if (table->is_flow()) {
        flow_rows *rows = flow_rows_of(tableid);
        return rows != nullptr ? rows->next_used(from) : end;
    }
    row_store *rows = rows_of(table->has_tcam() ? memory::tcam : table->data, tableid);
    // A hash table's rows end where the overflow window begins.
    return rows != nullptr ? std::min(end, rows->next_used(from)) : end;
}

}  // namespace halden::host
