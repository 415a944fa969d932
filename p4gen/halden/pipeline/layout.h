#pragma once

// Where every bit of a table's images stands, as runs of bits with the field and the field's bits
// they hold. For what draws and explains images; packers have no use for it.
//
// Bit 0 is the top bit of byte 0, and rows are shown as they are before SRAM swizzles them.

#include <algorithm>
#include <string_view>
#include <vector>

#include "p4gen/halden/pipeline/model.h"

namespace halden::pipeline {

// A run of bits of an image. `field` names what it holds; `number` is the field's place in its
// record, from 0. Runs that belong to no field (a program counter, a gap) have number none.
struct run {
    static constexpr size_t none = ~size_t{0};
    std::string_view field;
    size_t number = none;
    bool of_key = false;
    unsigned first = 0;  // bit of the image
    unsigned bits = 0;
    unsigned low_bit = 0;  // the field's bit that the run's last bit holds
    unsigned field_bits = 0;
};

// What the run of a program counter is called.
inline constexpr std::string_view action_program = "action program";

inline constexpr unsigned wide_row_bits = 1024;
inline constexpr unsigned flit_bits = 512;

// One-bit copies number bits from the low end of their byte.
constexpr unsigned one_bit_place(unsigned bit) { return bit / 8 * 8 + (7 - bit % 8); }

inline void sort_by_bit(std::vector<run> &runs) {
    std::sort(runs.begin(), runs.end(),
              [](const run &a, const run &b) { return a.first < b.first; });
}

// The key image; the mask image is laid out alike. Sorted by bit, without the gap of a wide key.
inline std::vector<run> key_image(const table &t) {
    std::vector<run> runs;
    for (size_t i = 0; i < t.key.size(); ++i) {
        const key_field &f = t.key[i];
        const auto add = [&](unsigned first, unsigned bits, unsigned low_bit) {
            runs.push_back({f.name, i, true, first, bits, low_bit, f.bits});
        };
        switch (f.where.how) {
            case placement::form::whole:
                add(f.where.at, f.bits, 0);
                break;
            case placement::form::split:
                add(f.where.at, 8, 0);
                // The bits above go down from high_at, so they stand in order in the image.
                add(one_bit_place(f.where.high_at), f.bits - 8u, 8);
                break;
            case placement::form::flag:
                add(one_bit_place(f.where.at), 1, 0);
                break;
        }
    }
    sort_by_bit(runs);
    return runs;
}

// The packed data of one action, from bit 0.
inline std::vector<run> data_image(const action &a) {
    std::vector<run> runs;
    for (size_t i = 0; i < a.fields.size(); ++i) {
        const field &f = a.fields[i];
        runs.push_back({f.name, i, false, packed_offset(a.fields, i), f.bits, 0, f.bits});
    }
    return runs;
}

// Bits a whole row takes.
inline unsigned row_bits(const table &t) {
    if (t.kind == kind::hash_hbm) return wide_row_bits;
    if (has_hash_row(t.kind)) return t.key_bits + 0u + t.data_bits;
    return t.data_bits + (has_programs(t) ? 8u : 0u);
}

// A whole row as the memory holds it: program counter, key, the data of action `a`, gaps.
inline std::vector<run> row_image(const table &t, const action &a) {
    std::vector<run> runs;
    unsigned data_at = 0;
    if (is_hash(t.kind)) runs = key_image(t);
    if (has_hash_row(t.kind)) data_at = t.key_bits;
    if (has_programs(t)) {
        runs.push_back({action_program, run::none, false, 0, 8, 0, 8});
        data_at = 8;
    }
    for (run r : data_image(a)) {
        if (t.kind == kind::hash_hbm) {
            // The second flit: data in front of the key, the rest of the key, data behind it. So
            // the bits in front of the key make up for those they push the rest back by.
            r.first += r.number < t.fields_before_key ? flit_bits : t.key_bits + 0u;
        } else {
            r.first += data_at;
        }
        runs.push_back(r);
    }
    sort_by_bit(runs);
    std::vector<run> out;
    unsigned at = 0;
    const auto gap_to = [&](unsigned end) {
        if (end > at) out.push_back({"unused", run::none, false, at, end - at, 0, end - at});
    };
    for (const run &r : runs) {
        gap_to(r.first);
        out.push_back(r);
        at = r.first + r.bits;
    }
    gap_to(row_bits(t));
    return out;
}

}  // namespace halden::pipeline
