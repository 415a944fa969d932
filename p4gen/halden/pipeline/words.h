#pragma once

// What the reference pages and the tool say about a table, in words: its kind, where an entry goes,
// why a lookup misses. The texts end without a line break.

#include <string>

#include "p4gen/halden/pipeline/layout.h"
#include "p4gen/halden/pipeline/pipeline.h"

namespace halden::pipeline {

inline std::string_view kind_text(kind k) {
    switch (k) {
        case kind::hash_hbm:
            return "exact match with a wide key, one HBM row an entry";
        case kind::hash_sram:
            return "exact match, one SRAM row an entry";
        case kind::overflow_tcam:
            return "ternary match, data in the SRAM of the hash table it serves";
        case kind::tcam:
            return "ternary match, data in SRAM at the same row";
        case kind::index_sram:
            return "row index, SRAM";
        case kind::index_hbm:
            return "row index, HBM";
        case kind::keyless:
            return "no key and no data, an action program alone";
    }
    return {};
}

// Null when the table has none.
inline const table *overflow_of(const table &owner) {
    for (const table *t : tables)
        if (t->owner == owner.id) return t;
    return nullptr;
}

// "16-19, 0-7": where the nth field's bits stand, its most significant first.
inline std::string places(const std::vector<run> &runs, bool of_key, size_t n) {
    std::vector<run> own;
    for (const run &r : runs)
        if (r.number == n && r.of_key == of_key) own.push_back(r);
    std::sort(own.begin(), own.end(),
              [](const run &a, const run &b) { return a.low_bit > b.low_bit; });
    std::string out;
    for (const run &r : own) {
        if (!out.empty()) out += ", ";
        out += std::to_string(r.first);
        if (r.bits > 1) out += "-" + std::to_string(r.first + r.bits - 1);
    }
    return out;
}

// `ref` turns a table that is spoken of into its name as it should be shown.
template <class Ref>
std::string where_it_goes(const table &t, Ref ref) {
    switch (t.kind) {
        case kind::hash_hbm:
            return "One HBM row of " + std::to_string(wide_row_bits / 8) +
                   " bytes holds key and data. The row is that of the flow's hash in " +
                   ref(*find_table(2)) + "; entries whose row is taken are chained in " +
                   ref(*find_table(1)) + " through the hint slots of the entry in front of them.";
        case kind::hash_sram:
            return "One SRAM row holds key and data, at the row that the key's hash gives. An "
                   "entry whose row is taken goes to " +
                   ref(*overflow_of(t)) +
                   ", whose data rows follow this table's rows in the same SRAM.";
        case kind::overflow_tcam:
            return "Key and mask go to this table's TCAM at the entry's index; the data goes to "
                   "the SRAM of " +
                   ref(*find_table(t.owner)) + ", at row index + " +
                   std::to_string(t.overflow_base) +
                   ". The data row is written first. Used for keys whose hash row is taken by "
                   "another key.";
        case kind::tcam:
            return "Key and mask go to the TCAM, the data to SRAM at the same index. The data row "
                   "is written first. When several rows match a packet, the lowest one wins.";
        case kind::index_sram:
        case kind::index_hbm:
            return std::string("One ") + (is_hbm(t.kind) ? "HBM" : "SRAM") +
                   " row, at the index itself. Indices run from 0 to " +
                   std::to_string(t.index_max) + ".";
        case kind::keyless:
            return "One SRAM row, which selects the action program and holds nothing else.";
    }
    return {};
}

inline std::string why_it_misses(const table &t) {
    switch (t.kind) {
        case kind::hash_hbm:
            return "Every one of the key's 600 bits is compared, the spare and reserved ones too: "
                   "what software leaves in them must be what the packet's key has. A lookup also "
                   "misses when no hint chain leads from the flow's row to its entry.";
        case kind::hash_sram:
            return "The row that the key's hash gives holds another key (all " +
                   std::to_string(t.key_bits) +
                   " bits are compared), and no row of the overflow TCAM matches either.";
        case kind::overflow_tcam:
        case kind::tcam:
            return "No row has (packet key & mask) = key. A field is matched in the bits where its "
                   "mask is 1; a mask of 0 matches anything. A row of length 0 matches nothing.";
        case kind::index_sram:
        case kind::index_hbm:
            return "An index always finds its row. A row that was never written reads as length 0, "
                   "and its record is left as it was.";
        case kind::keyless:
            return "There is nothing to look up: the table's program runs on every packet.";
    }
    return {};
}

}  // namespace halden::pipeline
