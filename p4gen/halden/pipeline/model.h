#pragma once

// How a table of the pipeline is described: one row per field, everything else follows.
//
//     inline constexpr field l2seg_data[] = {{"host_rcvr_ukuc", 1}, ..., {"replicate_idx", 16}};
//
// A row gives the field's name and its width in the hardware. Its storage in the software record
// follows from the width (storage_bytes): up to 8 bits one byte, up to 16 two, up to 32 four, more
// an array of as many bytes as the bits need. Records are packed in row order.
//
// Names and documentation stand beside the layout but no packer reads them, so they cost the
// packers nothing. A bad row does not compile: well_formed() names what is wrong with it.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace halden::pipeline {

// Decides how an entry is laid out and where it is written.
enum class kind : uint8_t {
    hash_hbm,       // wide key, key and data in one HBM row
    hash_sram,      // key and data in one SRAM row
    overflow_tcam,  // key and mask in a TCAM, data in the SRAM of the hash table it belongs to
    tcam,           // key and mask in a TCAM, data in SRAM at the same row
    index_sram,     // data alone
    index_hbm,
    keyless,  // an action program alone
};

// Where a key field stands in the key image. Bit numbers are those of the host's bit routines.
struct placement {
    enum class form : uint8_t {
        whole,  // most significant bit first from `at`, one copy per record byte
        split,  // low byte at `at`; the bits above it one at a time from `high_at` downwards
        flag,   // bit 0 of the record byte, as one bit at `at`
    };
    form how;
    uint16_t at;
    uint16_t high_at;
};
consteval placement whole(uint16_t at) { return {placement::form::whole, at, 0}; }
consteval placement split(uint16_t at, uint16_t high_at) {
    return {placement::form::split, at, high_at};
}
consteval placement flag(uint16_t at) { return {placement::form::flag, at, 0}; }

struct field {
    std::string_view name;
    uint16_t bits;
    std::string_view doc = {};
};

struct key_field {
    std::string_view name;
    uint16_t bits;
    placement where;
    std::string_view doc = {};
};

struct action {
    std::string_view name;  // as p4pd_get_action_name gives it
    std::span<const field> fields;
};

struct table {
    uint32_t id;
    std::string_view name;
    pipeline::kind kind;

    // Key. key_bits is the length the layout routines are given for it.
    std::span<const key_field> key = {};
    uint16_t key_bits = 0;

    // Hash pairs: the id of the table that owns the SRAM, and the row where the overflow window
    // starts in it.
    uint32_t owner = 0;
    uint32_t overflow_base = 0;

    // Index tables: the index record, most significant field first, and the highest row.
    std::span<const field> index = {};
    uint32_t index_max = 0;

    // Actions by id. data_bits is the length the layout routines are given, whatever the action;
    // the first `fields_before_key` fields stand before the key of a wide-key entry.
    std::span<const action> actions;
    uint16_t data_bits = 0;
    uint8_t fields_before_key = 0;

    // Sizes in bytes of the software records, checked against the rows.
    uint16_t key_bytes = 0;
    uint16_t data_bytes;

    // Prefix of the action ids' printed names where it is not the table's own.
    std::string_view action_prefix = {};
    // Tables of several actions: the line reported when an action has no program.
    uint32_t no_program_line = 0;

    std::string_view doc;
};

// --- What follows from a row ---------------------------------------------------------------------

constexpr uint16_t storage_bytes(uint16_t bits) {
    if (bits <= 8) return 1;
    if (bits <= 16) return 2;
    if (bits <= 32) return 4;
    return static_cast<uint16_t>((bits + 7) / 8);
}
constexpr bool is_array(uint16_t bits) { return bits > 32; }

template <class Field>
constexpr uint16_t record_bytes(std::span<const Field> fields) {
    uint16_t sum = 0;
    for (const auto &f : fields) sum = static_cast<uint16_t>(sum + storage_bytes(f.bits));
    return sum;
}
template <class Field>
constexpr uint16_t record_bits(std::span<const Field> fields) {
    uint16_t sum = 0;
    for (const auto &f : fields) sum = static_cast<uint16_t>(sum + f.bits);
    return sum;
}
// Byte of a record at which its nth field starts.
template <class Field>
constexpr uint16_t record_offset(std::span<const Field> fields, size_t n) {
    return record_bytes(fields.first(n));
}
// Bit at which the nth field starts when the fields follow one another without a gap.
template <class Field>
constexpr uint16_t packed_offset(std::span<const Field> fields, size_t n) {
    return record_bits(fields.first(n));
}

constexpr bool is_hash(kind k) { return k == kind::hash_hbm || k == kind::hash_sram; }
constexpr bool has_mask(kind k) { return k == kind::overflow_tcam || k == kind::tcam; }
constexpr bool is_keyed(kind k) { return is_hash(k) || has_mask(k); }
constexpr bool is_index(kind k) { return k == kind::index_sram || k == kind::index_hbm; }
constexpr bool is_hbm(kind k) { return k == kind::hash_hbm || k == kind::index_hbm; }
// The data stands in a row laid out like a hash entry: behind the key, or the room of one.
constexpr bool has_hash_row(kind k) { return k == kind::hash_sram || k == kind::overflow_tcam; }

constexpr bool has_programs(const table &t) { return t.actions.size() > 1; }
constexpr uint16_t tcam_width(const table &t) {
    return static_cast<uint16_t>((t.key_bits & ~15u) + 16);
}
// The key length that is reported to callers: the room of a hash flit, a TCAM's width.
constexpr uint16_t queried_key_bits(const table &t) {
    if (t.kind == kind::hash_sram) return 512;
    return has_mask(t.kind) ? tcam_width(t) : t.key_bits;
}
// Bytes that a wide key's image takes, which is more than its key_bits: the rest of the key is
// taken from the same place of the image as it has in the entry.
inline constexpr uint16_t wide_key_image_bytes = 84;

// Length of the key record in the software catalogue: 1 is an empty record.
constexpr uint16_t swkey_bytes(const table &t) {
    return t.kind == kind::keyless ? uint16_t{1} : t.key_bytes;
}

// --- Checks --------------------------------------------------------------------------------------

// Not constexpr: reaching it while a table is checked stops the compiler with this text.
inline void bad_description(const char * /*what*/) {}

template <class Field>
consteval void check_rows(std::span<const Field> fields) {
    for (size_t i = 0; i < fields.size(); ++i) {
        if (fields[i].name.empty()) bad_description("a field has no name");
        if (fields[i].bits == 0) bad_description("a field has no bits");
        if (fields[i].bits > 128) bad_description("a field is wider than 128 bits");
        for (size_t j = 0; j < i; ++j)
            if (fields[i].name == fields[j].name) bad_description("a field name stands twice");
    }
}

// The bits of one key image, as the host's routines number them after one-bit copies are resolved.
struct key_bits_seen {
    bool taken[1024] = {};
    consteval void take(unsigned bit) {
        if (bit >= 1024) bad_description("a key field lies beyond the key image");
        if (taken[bit]) bad_description("two key fields take the same bit");
        taken[bit] = true;
    }
};
consteval unsigned one_bit_position(unsigned bit) { return bit / 8 * 8 + (7 - bit % 8); }

consteval bool well_formed(const table &t) {
    if (t.name.empty() || t.doc.empty()) bad_description("a table has no name or no doc");
    check_rows(t.key);
    check_rows(t.index);
    if (t.actions.empty()) bad_description("a table has no action");

    uint16_t most_bits = 0, most_bytes = 0;
    for (const auto &a : t.actions) {
        check_rows(a.fields);
        if (a.name.empty()) bad_description("an action has no name");
        if (record_bits(a.fields) > most_bits) most_bits = record_bits(a.fields);
        if (record_bytes(a.fields) > most_bytes) most_bytes = record_bytes(a.fields);
    }
    if (most_bits != t.data_bits) bad_description("the packed fields do not sum to data_bits");
    if (t.data_bytes != 1 + (most_bytes == 0 ? 1 : most_bytes))
        bad_description("the action-data record has not data_bytes bytes");
    if (record_bytes(t.key) != t.key_bytes) bad_description("the key record has not key_bytes");
    if (is_keyed(t.kind) == t.key.empty()) bad_description("key fields do not fit the kind");
    if (is_index(t.kind) == t.index.empty()) bad_description("index fields do not fit the kind");
    if ((t.kind == kind::overflow_tcam) != (t.owner != 0))
        bad_description("an overflow table has an owner, no other has");
    if (has_programs(t) != (t.no_program_line != 0))
        bad_description("tables of several actions name the line of their program check");
    if (is_index(t.kind) && t.index_max >= (uint64_t{1} << record_bits(t.index)))
        bad_description("index_max does not fit the index fields");

    key_bits_seen seen;
    for (const auto &f : t.key) {
        switch (f.where.how) {
            case placement::form::whole:
                for (unsigned i = 0; i < f.bits; ++i) seen.take(f.where.at + i);
                break;
            case placement::form::split:
                if (f.bits <= 8 || f.bits > 16) bad_description("only 9 to 16 bits can be split");
                for (unsigned i = 0; i < 8; ++i) seen.take(f.where.at + i);
                for (unsigned i = 0; i < f.bits - 8u; ++i)
                    seen.take(one_bit_position(f.where.high_at - i));
                break;
            case placement::form::flag:
                if (f.bits != 1) bad_description("a flag has one bit");
                seen.take(one_bit_position(f.where.at));
                break;
        }
    }
    if (t.kind != kind::hash_hbm && is_keyed(t.kind))
        for (unsigned i = 0; i < 1024; ++i)
            if (seen.taken[i] != (i < t.key_bits))
                bad_description("the key is not one gapless run of key_bits bits");
    return true;
}

}  // namespace halden::pipeline
