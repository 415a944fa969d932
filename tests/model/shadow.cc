#include "tests/model/shadow.h"

#include "host/view/lookup.h"
#include "host/view/row_hash.h"
#include "p4pd.h"
#include "tests/model/shadow_tables.h"
#include "tests/reference/model.h"

#include <algorithm>

namespace halden::test {

namespace {

// The first program counter of a table with several actions; see the adapter's page.
constexpr uint8_t first_program = 0x10;
constexpr uint32_t image_room = 128;

uint8_t program_of(const shadow_table &t, const bytes &data) {
    return reference::table_of(t.id).actions == 1 ? reference::no_pc
                                                  : static_cast<uint8_t>(first_program + data[0]);
}

bytes image_of(const shadow_table &t, uint32_t table, const bytes &packet, const bytes &data,
               uint32_t &bits) {
    const reference::image wanted = reference::entry(table, program_of(t, data), packet, data);
    bits = wanted.bits;
    bytes out = wanted.data;
    out.resize((wanted.bits + 7) / 8);
    return out;
}

// A row of the memory as it is stored; empty for an empty one.
struct stored_row {
    uint32_t bits = 0;
    bytes image;
    bool operator==(const stored_row &) const = default;
};

stored_row stored_at(host::adapter &hardware, const shadow_table &t, uint32_t row) {
    stored_row out;
    bytes image(1024), mask(1024);
    uint16_t bits = 0;
    if (t.kind == shadow_kind::raw_tcam) {
        hardware.tcam_read(t.id, row, image.data(), mask.data(), &bits);
        image.resize(bits / 8);
        image.insert(image.end(), mask.begin(), mask.begin() + bits / 8);
    } else if (reference::table_of(t.id).in_hbm()) {
        hardware.hbm_read(t.id, row, image.data(), &bits);
        image.resize((bits + 7u) / 8);
    } else {
        hardware.sram_read(t.id, row, image.data(), &bits);
        image.resize((bits + 15u) / 16 * 2);
    }
    out.bits = bits;
    out.image = image;
    return out;
}

stored_row wanted_at(const shadow_table &t, const candidate &c, uint32_t value) {
    stored_row out;
    if (t.kind != shadow_kind::index) {
        out.image = raw_image(t, c, value, out.bits);
        return out;
    }
    out.image = image_of(t, t.id, {}, data_of(t, value), out.bits);
    if (!reference::table_of(t.id).in_hbm()) {
        out.image.resize(image_room);
        out.image = reference::as_stored(out.image, out.bits);
    }
    return out;
}

std::string entry_name(const shadow_table &t, uint16_t entry) {
    return t.name + " entry " + std::to_string(entry);
}

uint32_t rows_in_use(host::adapter &hardware, uint32_t id) {
    uint32_t used = 0;
    for (uint32_t row = 0; (row = hardware.next_used(id, row)) < hardware.depth(id); ++row) ++used;
    return used;
}

bool is_raw(const shadow_table &t) { return t.kind >= shadow_kind::raw_sram; }

bool matches(const candidate &c, const bytes &packet) {
    for (size_t i = 0; i < packet.size(); ++i)
        if ((packet[i] & c.ones[i]) != c.ones[i] || (packet[i] & c.zeros[i]) != 0) return false;
    return true;
}

uint32_t write_raw(host::adapter &hardware, const shadow_table &t, const candidate &c,
                   const operation &op) {
    uint32_t bits = 0;
    bytes image = op.what == change::remove ? bytes() : raw_image(t, c, op.value, bits);
    const auto width = static_cast<uint16_t>(bits);
    if (op.what == change::remove) {
        const uint32_t result = hardware.clear_row(t.id, c.row);
        // Out of hardware's sight, though its data may still be there.
        return hardware.next_used(t.id, c.row) == c.row ? result : uint32_t{SDK_RET_OK};
    }
    if (t.kind == shadow_kind::raw_hbm) return hardware.hbm_write(t.id, c.row, image.data(), width);
    if (t.kind == shadow_kind::raw_sram)
        return hardware.sram_write(t.id, c.row, image.data(), width, nullptr);
    return hardware.tcam_write(t.id, c.row, image.data(), image.data() + width / 8, width);
}

}  // namespace

std::string shadow::text_of(const operation &op) {
    static constexpr const char *names[] = {"create", "update", "remove"};
    return std::string(names[static_cast<unsigned>(op.what)]) + " " +
           entry_name(tables()[op.table], op.entry) +
           (op.what == change::remove ? "" : " = " + std::to_string(op.value));
}

uint32_t shadow::run(host::adapter &hardware, const operation &op) {
    const shadow_table &t = tables()[op.table];
    const candidate &c = t.candidates[op.entry];
    if (is_raw(t)) return write_raw(hardware, t, c, op);
    if (op.what == change::remove) return t.api.remove(c.key.data());
    const bytes spec = spec_of(t, c, data_of(t, op.value));
    return op.what == change::create ? t.api.create(spec.data()) : t.api.update(spec.data());
}

bool shadow::accepts(const operation &op) const {
    if (is_raw(tables()[op.table])) return true;
    return has(op.table, op.entry) == (op.what != change::create);
}

bool shadow::may_be_refused(const operation &op) {
    return tables()[op.table].kind == shadow_kind::flow && op.what == change::create;
}

void shadow::note(const operation &op) {
    if (op.what == change::remove)
        values_.erase({op.table, op.entry});
    else
        values_[{op.table, op.entry}] = op.value;
}

size_t shadow::size_of(uint16_t table) const {
    return static_cast<size_t>(
        std::distance(values_.lower_bound({table, 0}), values_.lower_bound({table + 1, 0})));
}

std::optional<uint32_t> shadow::value_of(place at) const {
    const auto found = values_.find(at);
    return found == values_.end() ? std::nullopt : std::optional(found->second);
}

std::string shadow::settle(host::adapter &hardware, const operation &cut_off) {
    const place at = {cut_off.table, cut_off.entry};
    std::vector<std::string> old_wrong, new_wrong;
    const auto compare = [&](const shadow &with, std::vector<std::string> &out) {
        with.compare_with_engine(hardware, at, out);
    };
    compare(*this, old_wrong);
    if (old_wrong.empty() || !accepts(cut_off)) {
        return old_wrong.empty() ? "" : "cut off: " + text_of(cut_off) + ": " + old_wrong[0];
    }
    shadow after = *this;
    after.note(cut_off);
    compare(after, new_wrong);
    if (!new_wrong.empty())
        return "cut off: " + text_of(cut_off) + ": neither old nor new: " + old_wrong[0] + "; " +
               new_wrong[0];
    *this = std::move(after);
    return "";
}

// --- What engines answer -------------------------------------------------------------------------

void shadow::compare_with_engine(host::adapter &hardware, place at,
                                 std::vector<std::string> &out) const {
    const shadow_table &t = tables()[at.first];
    const candidate &c = t.candidates[at.second];
    const std::optional<uint32_t> value = value_of(at);
    if (is_raw(t)) {
        const stored_row wanted = value ? wanted_at(t, c, *value) : stored_row{};
        if (stored_at(hardware, t, c.row) != wanted)
            out.push_back(entry_name(t, at.second) + ": the row is another");
        return;
    }
    const uint32_t found = t.api.find(c.key.data());
    const uint32_t wanted_found = value ? TEV_TBL_RET_OK : TEV_TBL_RET_ENTRY_NOT_FOUND;
    if (found != wanted_found) {
        out.push_back(entry_name(t, at.second) + ": find answers " + std::to_string(found) +
                      ", wanted " + std::to_string(wanted_found));
        return;
    }
    bytes info(t.api.spec_bytes());
    const uint32_t read = t.api.read(c.key.data(), info.data());
    if (read != (value ? uint32_t{TEV_TBL_RET_OK} : uint32_t{TEV_TBL_RET_READ_FAILED}))
        out.push_back(entry_name(t, at.second) + ": read answers " + std::to_string(read));
    else if (value && !holds(t, info, *value))
        out.push_back(entry_name(t, at.second) + ": read gives other data than " +
                      std::to_string(*value));
}

// --- What memory holds ---------------------------------------------------------------------------

// All but ternary tables, whose entries are judged together.
void shadow::compare_with_hardware(host::adapter &hardware, place at,
                                   std::vector<std::string> &out) const {
    const shadow_table &t = tables()[at.first];
    const candidate &c = t.candidates[at.second];
    const std::optional<uint32_t> value = value_of(at);
    const auto complain = [&](const std::string &what) {
        out.push_back(entry_name(t, at.second) + ": hardware " + what);
    };
    if (is_raw(t) || t.kind == shadow_kind::index) {
        const stored_row wanted = value ? wanted_at(t, c, *value) : stored_row{};
        if (stored_at(hardware, t, c.row) != wanted)
            complain(value ? "has another row than that of " + std::to_string(*value)
                           : "has a row where there is no entry");
        return;
    }
    const host::view::answer found = host::view::lookup(hardware, t.id, c.packet.data());
    if (found.hit != value.has_value()) {
        complain(found.hit ? "finds what is not there" : "misses it");
        return;
    }
    if (!found.hit) return;
    if (t.kind == shadow_kind::flow) {
        // The rest of the row is the engine's own: hints and hashes.
        if (flow_value(found.image) != flow_index(*value)) complain("finds another flow_idx");
        return;
    }
    uint32_t bits = 0;
    const bytes image = image_of(t, found.table, c.packet, data_of(t, *value), bits);
    if (found.bits != bits || found.image != image) complain("finds other data");
}

// For the packet of every candidate: the most specific of the entries that match it wins. Entries
// under way may be there or not, so packets that one of them matches are left out.
void shadow::compare_ternary(host::adapter &hardware, uint16_t table,
                             std::span<const operation> under_way,
                             std::vector<std::string> &out) const {
    const shadow_table &t = tables()[table];
    for (const candidate &packet : t.candidates) {
        const bool unsure = std::any_of(under_way.begin(), under_way.end(), [&](const auto &op) {
            return op.table == table && matches(t.candidates[op.entry], packet.packet);
        });
        if (unsure) continue;
        std::vector<bytes> best;
        uint32_t most = 0;
        for (auto it = values_.lower_bound({table, 0}); it != values_.end(); ++it) {
            if (it->first.first != table) break;
            const candidate &c = t.candidates[it->first.second];
            if (!matches(c, packet.packet) || (!best.empty() && c.specificity < most)) continue;
            if (c.specificity > most) best.clear();
            most = c.specificity;
            uint32_t bits = 0;
            best.push_back(image_of(t, t.id, {}, data_of(t, it->second), bits));
        }
        const host::view::answer found = host::view::lookup(hardware, t.id, packet.packet.data());
        const bool right = found.hit
                               ? std::find(best.begin(), best.end(), found.image) != best.end()
                               : best.empty();
        if (!right)
            out.push_back(t.name + ": hardware " +
                          (found.hit ? "finds another entry than the most specific one"
                                     : "misses an entry that matches"));
    }
}

void shadow::compare_by_memory(host::adapter &hardware, uint16_t table,
                               std::span<const operation> under_way,
                               std::vector<std::string> &out) const {
    const shadow_table &t = tables()[table];
    if (t.kind == shadow_kind::ternary) return compare_ternary(hardware, table, under_way, out);
    for (uint16_t entry = 0; entry < t.candidates.size(); ++entry) {
        const bool unsure = std::any_of(
            under_way.begin(), under_way.end(),
            [&](const operation &op) { return op.table == table && op.entry == entry; });
        if (!unsure) compare_with_hardware(hardware, {table, entry}, out);
    }
}

std::vector<std::string> shadow::hardware_differences(host::adapter &hardware,
                                                      std::span<const operation> under_way) const {
    std::vector<std::string> out;
    for (uint16_t table = 0; table < tables().size(); ++table)
        compare_by_memory(hardware, table, under_way, out);
    return out;
}

std::vector<std::string> shadow::hardware_differences_of(host::adapter &hardware,
                                                         uint16_t table) const {
    std::vector<std::string> out;
    compare_by_memory(hardware, table, {}, out);
    return out;
}

std::vector<std::string> shadow::differences_of(host::adapter &hardware, uint16_t table) const {
    std::vector<std::string> out;
    const shadow_table &t = tables()[table];
    compare_by_memory(hardware, table, {}, out);
    for (uint16_t entry = 0; entry < t.candidates.size(); ++entry)
        compare_with_engine(hardware, {table, entry}, out);
    uint32_t used = rows_in_use(hardware, t.id);
    if (t.kind == shadow_kind::flow) used += rows_in_use(hardware, host::flow_ohash_table);
    if (t.kind == shadow_kind::hash)
        used += rows_in_use(hardware, host::table_memory_of(t.id)->overflow);
    if (used != size_of(table))
        out.push_back(t.name + ": " + std::to_string(used) + " rows are in use, wanted " +
                      std::to_string(size_of(table)));
    return out;
}

std::vector<std::string> shadow::differences(host::adapter &hardware) const {
    std::vector<std::string> out;
    for (uint16_t table = 0; table < tables().size(); ++table)
        for (std::string &wrong : differences_of(hardware, table)) out.push_back(std::move(wrong));
    return out;
}

}  // namespace halden::test
