#pragma once

// Which memories the tables of the pipeline live in, and how deep they are: one row per table, the
// only place where a depth is written down.
//
//     kind            TCAM       SRAM                                HBM
//     flow            -          -                                   row = key and data
//     hash            -          row = key and data, then the        -
//                                window of the overflow table
//     overflow        key, mask  data, in the owner's window         -
//     TCAM            key, mask  data, same row                      -
//     index, keyless  -          data, or ...                        ... data
//
// An overflow table has no SRAM of its own: its row r is row overflow_base + r of the hash table
// that it belongs to.

#include <array>
#include <cstdint>
#include <span>

namespace halden::host {

enum class memory : uint8_t { sram, tcam, hbm };
inline constexpr unsigned memory_kinds = 3;
const char *name_of(memory where);

inline constexpr uint32_t first_table = 1;
inline constexpr uint32_t last_table = 48;
inline constexpr uint32_t flow_ohash_table = 1;
inline constexpr uint32_t flow_table = 2;

// Bytes of one row's image. TCAM rows hold two images, key (x) before mask (y).
inline constexpr uint32_t row_bytes = 64;
inline constexpr uint32_t tcam_image_bytes = row_bytes / 2;
inline constexpr uint32_t flow_row_bytes = 128;

// Whole rows.
using row_image = std::array<uint8_t, row_bytes>;
using flow_image = std::array<uint8_t, flow_row_bytes>;

// How anonymous memory is paged. Huge pages make random accesses to a full table faster, and cost
// 2 MiB for the first row of each; where the system has none, the small ones serve.
enum class paging : uint8_t { small, huge };

// A flow key's image, and its place in a row: bytes 0 to 58 and 68 to 83. The data in front of the
// key's rest stands between.
inline constexpr uint32_t flow_key_first_bytes = 59;
inline constexpr uint32_t flow_key_rest_byte = 68;
inline constexpr uint32_t flow_key_rest_bytes = 16;

struct table_memory {
    uint32_t id;
    uint32_t rows;
    memory data;                 // where the action data stands
    uint16_t key_bits = 0;       // keyed tables: bits of the key that hardware compares
    uint32_t owner = 0;          // overflow table: the hash table whose SRAM holds its data
    uint32_t overflow = 0;       // hash table: its overflow table
    uint32_t overflow_base = 0;  // of the pair: first SRAM row of the window

    bool has_tcam() const { return (data == memory::sram && key_bits != 0 && !is_hash()); }
    bool is_hash() const { return overflow != 0; }
    bool is_flow() const { return id == flow_ohash_table || id == flow_table; }
};

// Null for an unknown id.
const table_memory *table_memory_of(uint32_t tableid);
std::span<const table_memory> all_table_memories();

}  // namespace halden::host
