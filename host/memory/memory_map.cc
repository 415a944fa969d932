#include "host/memory/memory_map.h"

namespace halden::host {

namespace {

using enum memory;

constexpr uint32_t window = 512;

constexpr table_memory flow(uint32_t id, uint32_t rows) { return {id, rows, hbm, 640}; }
// The overflow window starts right behind the hash rows.
constexpr table_memory hash(uint32_t id, uint32_t rows, uint16_t key_bits, uint32_t overflow) {
    return {id, rows, sram, key_bits, 0, overflow, rows};
}
constexpr table_memory overflow(uint32_t id, uint16_t key_bits, uint32_t owner, uint32_t base) {
    return {id, window, sram, key_bits, owner, 0, base};
}
constexpr table_memory tcam_with(uint32_t id, uint32_t rows, uint16_t key_bits) {
    return {id, rows, sram, key_bits};
}
constexpr table_memory index(uint32_t id, uint32_t rows, memory data) { return {id, rows, data}; }
constexpr table_memory keyless(uint32_t id) { return {id, 1, sram}; }

constexpr table_memory memories[] = {
    flow(flow_ohash_table, 2097152),
    flow(flow_table, 4194304),
    hash(3, 4096, 24, 7),
    hash(4, 8192, 40, 10),
    hash(5, 8192, 136, 11),
    hash(6, 4096, 60, 14),
    overflow(7, 24, 3, 4096),
    tcam_with(8, 512, 120),
    tcam_with(9, 512, 216),
    overflow(10, 40, 4, 8192),
    overflow(11, 136, 5, 8192),
    tcam_with(12, 64, 3),
    tcam_with(13, 64, 3),
    overflow(14, 60, 6, 4096),
    tcam_with(15, 256, 8),
    index(16, 1024, sram),
    index(17, 1024, sram),
    index(18, 4096, sram),
    index(19, 4096, sram),
    index(20, 1, sram),
    index(21, 2097152, hbm),
    index(22, 2097152, hbm),
    index(23, 2097152, hbm),
    index(24, 4096, sram),
    index(25, 1, sram),
    index(26, 16384, hbm),
    index(27, 16384, hbm),
    index(28, 4096, hbm),
    index(29, 4096, hbm),
    index(30, 16, sram),
    index(31, 8192, hbm),
    index(32, 2097152, hbm),
    index(33, 2097152, hbm),
    index(34, 8192, hbm),
    index(35, 2097152, hbm),
    index(36, 2097152, hbm),
    index(37, 1024, sram),
    index(38, 16, sram),
    index(39, 1, sram),
    index(40, 16384, hbm),
    keyless(41),
    keyless(42),
    keyless(43),
    keyless(44),
    keyless(45),
    keyless(46),
    keyless(47),
    keyless(48),
};

constexpr bool in_id_order() {
    for (uint32_t i = 0; i < std::size(memories); ++i)
        if (memories[i].id != first_table + i) return false;
    return std::size(memories) == last_table;
}
static_assert(in_id_order());

}  // namespace

const char *name_of(memory where) {
    switch (where) {
        case sram:
            return "SRAM";
        case tcam:
            return "TCAM";
        case hbm:
            return "HBM";
    }
    return "?";
}

const table_memory *table_memory_of(uint32_t tableid) {
    return tableid >= first_table && tableid <= last_table ? &memories[tableid - first_table]
                                                           : nullptr;
}

std::span<const table_memory> all_table_memories() { return memories; }

}  // namespace halden::host
