#include "tests/model/shadow_tables.h"

#include "host/view/row_hash.h"
#include "p4pd.h"
#include "tests/read/layouts.h"
#include "tests/reference/model.h"
#include "tev_tbl.h"

#include <algorithm>
#include <bit>
#include <set>

namespace halden::test {

namespace {

constexpr uint32_t image_room = 128;
constexpr uint32_t raw_tables[] = {13, 17, 35, 41, 48};
constexpr uint32_t flow_id = 2;

constexpr api_table flow_api = {
    "flow",
    api_kind::hash,
    flow_id,
    0,
    sizeof(tev_tbl_flow_key_t),
    sizeof(flow_flow_hash_t),
    [](const void *spec) {
        return tev_tbl_flow_create(static_cast<const tev_tbl_flow_spec_t *>(spec));
    },
    [](const void *key, void *info) {
        return tev_tbl_flow_read(static_cast<const tev_tbl_flow_key_t *>(key),
                                 static_cast<tev_tbl_flow_info_t *>(info));
    },
    [](const void *spec) {
        return tev_tbl_flow_update(static_cast<const tev_tbl_flow_spec_t *>(spec));
    },
    [](const void *key) {
        return tev_tbl_flow_delete(static_cast<const tev_tbl_flow_key_t *>(key));
    },
    [](const void *key) { return tev_tbl_flow_find(static_cast<const tev_tbl_flow_key_t *>(key)); },
    [] { return tev_tbl_flow_table_clear(); },
    [](api::impl::tev_tbl_impl_state &state) -> const void * { return state.flow_tbl(); },
    sizeof(tev_tbl_flow_spec_t),
    sizeof(tev_tbl_flow_key_t),
    sizeof(tev_tbl_flow_info_t)};

// The random bytes of a number (the steps of splitmix64).
bytes bytes_of(uint64_t number, size_t size) {
    bytes out(size);
    for (uint8_t &byte : out) {
        uint64_t z = (number += 0x9e3779b97f4a7c15);
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9;
        z = (z ^ (z >> 27)) * 0x94d049bb133111eb;
        byte = static_cast<uint8_t>(z >> 32);
    }
    return out;
}

bytes masked(bytes record, const bytes &by) {
    for (size_t i = 0; i < record.size(); ++i) record[i] = static_cast<uint8_t>(record[i] & by[i]);
    return record;
}

std::vector<candidate> rows(std::initializer_list<uint32_t> wanted, uint32_t depth) {
    std::vector<candidate> out;
    std::set<uint32_t> taken;
    for (uint32_t row : wanted) {
        if (row >= depth || !taken.insert(row).second) continue;
        out.emplace_back();
        out.back().row = row;
    }
    return out;
}

std::vector<candidate> index_candidates(const api_table &t) {
    const auto depth = static_cast<uint32_t>(t.index_max) + 1;
    std::vector<candidate> out =
        rows({0, 1, depth / 2, depth - 1, 77 % depth, 1023 % depth}, depth);
    for (candidate &c : out) c.key = key_of_row(t, c.row);
    return out;
}

candidate of_key(uint32_t id, const bytes &key) {
    candidate out;
    out.key = key;
    out.packet = reference::build_key(id, key, bytes(key.size(), 0xff), image_room).key;
    return out;
}

// Keys of a few rows of the hash, so that most stand in the overflow, or in each other's chain.
std::vector<candidate> hashed_candidates(const api_table &t, uint32_t rows, uint32_t hash_rows,
                                         size_t count) {
    const bytes kept = read_tests::kept_key_bits(t.id);
    std::vector<candidate> out;
    std::set<bytes> taken;
    for (uint64_t number = 0; out.size() < count; ++number) {
        bytes key = masked(bytes_of(number << 8 | t.id, t.key_bytes), kept);
        uint8_t image[image_room] = {};
        p4pd_hwkey_hwmask_build(t.id, key.data(), nullptr, image, nullptr);
        if (host::view::hash_row(t.id, image, rows) >= hash_rows || !taken.insert(key).second)
            continue;
        out.push_back(of_key(t.id, key));
    }
    return out;
}

// Keys of few values under masks of few shapes, so that entries overlap. No two have the same key
// under their masks: without a mask a ternary entry is found by its key.
std::vector<candidate> ternary_candidates(const api_table &t, size_t most) {
    static constexpr uint8_t shapes[] = {0xff, 0xff, 0xf0, 0x0f, 0x00, 0x01};
    const bytes kept = read_tests::kept_key_bits(t.id);
    std::vector<candidate> out;
    std::set<bytes> taken;
    for (uint64_t number = 0; out.size() < most && number < 4096; ++number) {
        const bytes random = bytes_of(number << 8 | t.id, 2 * t.key_bytes);
        bytes key(t.key_bytes), mask(t.key_bytes);
        for (uint32_t i = 0; i < t.key_bytes; ++i) {
            key[i] = (random[i] & 1) != 0 ? 0x5a : 0xa5;
            if ((random[i] & 0xe0) == 0) key[i] = random[i];
            mask[i] = shapes[random[t.key_bytes + i] % std::size(shapes)];
        }
        mask = masked(mask, kept);
        key = masked(key, mask);
        const auto images = reference::build_key(t.id, key, mask, image_room);
        if (!taken.insert(images.key).second) continue;
        candidate c = of_key(t.id, key);
        c.mask = mask;
        c.ones = images.key;
        c.zeros = images.mask;
        for (size_t i = 0; i < image_room; ++i)
            c.specificity +=
                static_cast<uint32_t>(std::popcount(static_cast<unsigned>(c.ones[i] | c.zeros[i])));
        out.push_back(c);
    }
    return out;
}

shadow_table made(shadow_kind kind, const api_table &t, std::vector<candidate> candidates) {
    return {kind, t.id, t.name, t, std::move(candidates)};
}

shadow_table of_api(const api_table &t) {
    constexpr size_t keys = 18;
    switch (t.kind) {
        case api_kind::index:
            return made(shadow_kind::index, t, index_candidates(t));
        case api_kind::hash:
            return made(shadow_kind::hash, t,
                        hashed_candidates(t, host::table_memory_of(t.id)->rows, 4, keys));
        case api_kind::tcam:
            break;
    }
    return made(shadow_kind::ternary, t, ternary_candidates(t, keys));
}

shadow_table raw(shadow_kind kind, uint32_t id) {
    return {kind,
            id,
            std::string(reference::table_of(id).name) + " (raw)",
            {},
            rows({0, 1, 2, 3, 63, 1000}, host::table_memory_of(id)->rows)};
}

std::vector<shadow_table> make_all() {
    std::vector<shadow_table> out;
    for (const api_table &t : api_tables())
        if (std::find(std::begin(raw_tables), std::end(raw_tables), t.id) == std::end(raw_tables))
            out.push_back(of_api(t));
    out.push_back(
        made(shadow_kind::flow, flow_api,
             hashed_candidates(flow_api, shadow::depths.flow_rows, shadow::depths.flow_rows, 72)));
    out.push_back(raw(shadow_kind::raw_tcam, 13));
    out.push_back(raw(shadow_kind::raw_sram, 17));
    out.push_back(raw(shadow_kind::raw_hbm, 35));
    out.push_back(raw(shadow_kind::raw_sram, 41));
    out.push_back(raw(shadow_kind::raw_sram, 48));
    return out;
}

}  // namespace

std::span<const shadow_table> shadow::tables() {
    static const std::vector<shadow_table> all = make_all();
    return all;
}

uint16_t shadow::number_of(uint32_t id) {
    uint16_t number = 0;
    while (tables()[number].id != id) ++number;
    return number;
}

bytes data_of(const shadow_table &t, uint32_t value) {
    bytes out = bytes_of(uint64_t{value} << 8 | t.id, 1 + t.api.data_bytes);
    out[0] = static_cast<uint8_t>(out[0] % reference::table_of(t.id).actions);
    if (t.kind != shadow_kind::flow) return masked(out, read_tests::kept_data_bits(t.id, out[0]));
    // Hints are the engine's: a caller gives none.
    std::fill(out.begin() + 1, out.end(), uint8_t{0});
    const uint32_t index = flow_index(value);
    std::memcpy(out.data() + 1, &index, sizeof index);
    return out;
}

bytes spec_of(const shadow_table &t, const candidate &c, const bytes &data) {
    bytes out(t.api.spec_bytes());
    out[0] = data[0];
    std::copy(c.key.begin(), c.key.end(), out.begin() + 1);
    if (t.kind == shadow_kind::ternary) {
        out[1 + t.api.key_bytes] = 1;
        std::copy(c.mask.begin(), c.mask.end(), out.begin() + t.api.mask_at());
    }
    std::copy(data.begin() + 1, data.end(), out.begin() + t.api.data_at());
    return out;
}

bool holds(const shadow_table &t, const bytes &info, uint32_t value) {
    const bytes data = data_of(t, value);
    const auto begin = info.begin() + t.api.data_at();
    const size_t compared = t.kind == shadow_kind::flow ? sizeof(uint32_t) : t.api.data_bytes;
    return info[0] == data[0] &&
           std::equal(begin, begin + static_cast<long>(compared), data.begin() + 1);
}

uint32_t flow_index(uint32_t value) { return value & 0x3fffff; }

// The top 22 bits of the 64-bit word at byte 64 of the row.
uint32_t flow_value(const std::vector<uint8_t> &row) {
    return static_cast<uint32_t>(row[64]) << 14 | static_cast<uint32_t>(row[65]) << 6 |
           static_cast<uint32_t>(row[66]) >> 2;
}

bytes raw_image(const shadow_table &t, const candidate &c, uint32_t value, uint32_t &bits) {
    const uint64_t number = uint64_t{value} << 16 | c.row;
    if (t.kind == shadow_kind::raw_tcam) {
        bits = 32;
        bytes out = bytes_of(number, 8);
        // No two rows have the same key, and no bit must be one and zero.
        out[0] = static_cast<uint8_t>(0x80 | c.row);
        for (size_t i = 0; i < 4; ++i) out[4 + i] = static_cast<uint8_t>(out[4 + i] & ~out[i]);
        return out;
    }
    bits = 16 * (1 + value % 32);
    return bytes_of(number, bits / 8);
}

}  // namespace halden::test
