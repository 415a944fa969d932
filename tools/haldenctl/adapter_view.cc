#include "tools/haldenctl/adapter_view.h"

#include <algorithm>
#include <array>
#include <iostream>

#include "host/memory/memory_map.h"
#include "host/view/lookup.h"
#include "p4pd.h"
#include "sdk/p4pd_utils.h"
#include "tools/haldenctl/failure.h"
#include "tools/haldenctl/troubles.h"
#include "tools/haldenctl/value.h"

namespace halden::tool {

using namespace pipeline;

namespace {

std::unique_ptr<host::adapter> opened(const options &given, host::access how) {
    const auto wanted = given.sync ? host::durability::power : host::durability::process;
    try {
        return given.adapter.empty()
                   ? host::adapter::anonymous()
                   : host::adapter::open(given.adapter, {.access = how, .durability = wanted});
    } catch (const host::no_adapter &error) {
        throw failure(std::string(error.what()) +
                          "; `haldenctl create`, `write`, `apply` and `flows import` make one",
                      exit_status::adapter);
    } catch (const std::runtime_error &error) {
        throw failure(error.what(), exit_status::adapter);
    }
}

// Damage must not pass for an empty row. What is wrong is said when the adapter is closed.
void check_read(sdk_ret_t result, const table &t, uint32_t row) {
    if (result == SDK_RET_OOM)
        throw failure(std::string(t.name) + ": its memory cannot be read", exit_status::adapter);
    if (result == SDK_RET_DAMAGED)
        throw failure(std::string(t.name) + ": row " + std::to_string(row) + " cannot be read",
                      exit_status::adapter);
}

std::vector<uint8_t> taken(const uint8_t *image, uint32_t bits) {
    return {image, image + (bits + 7) / 8};
}

}  // namespace

opened_adapter::opened_adapter(const options &given, host::access how, bool armed)
    : adapter_(opened(given, how)), current_(*adapter_) {
    if (armed) arm(given);
}

void opened_adapter::arm(const options &given) {
    show_calls_ = given.show_calls;
    faults_ = given.faults;
    for (const given_fault &each : faults_) adapter_->faults().inject(each.fault);
    if (show_calls_) adapter_->faults().record(true);
}

opened_adapter::~opened_adapter() {
    const std::vector<host::fault> left = adapter_->faults().never_met();
    for (const given_fault &each : faults_)
        each.met |= std::find(left.begin(), left.end(), each.fault) == left.end();
    for (const std::string &trouble : adapter_->troubles()) {
        trouble_was_met = true;
        std::cout.flush();
        std::cerr << "haldenctl: " << printable(trouble) << "\n";
    }
    if (!show_calls_) return;
    for (const host::call_record &call : adapter_->faults().recorded())
        std::cerr << host::name_of(call.call) << "  "
                  << (call.table != 0 ? find_table(call.table)->name : "") << "  " << call.index
                  << (call.injected != SDK_RET_OK ? "  refused" : "") << "\n";
}

std::string opened_adapter::name() const {
    return adapter_->directory().empty() ? "memory that ends with this command"
                                         : "adapter " + printable(adapter_->directory());
}

std::optional<stored_row> stored_at(host::adapter &adapter, const table &t, uint32_t row) {
    stored_row out;
    uint16_t bits = 0;
    if (has_mask(t.kind)) {
        std::array<uint8_t, host::tcam_image_bytes> key = {}, mask = {};
        check_read(adapter.tcam_read(t.id, row, key.data(), mask.data(), &bits), t, row);
        if (bits == 0) return std::nullopt;
        p4pd_utils_swizzle_bytes(key.data(), bits);
        p4pd_utils_swizzle_bytes(mask.data(), bits);
        out.key = taken(key.data(), bits);
        out.mask = taken(mask.data(), bits);
    }
    std::array<uint8_t, host::flow_row_bytes> image = {};
    if (is_hbm(t.kind)) {
        check_read(adapter.hbm_read(t.id, row, image.data(), &bits), t, row);
    } else {
        check_read(adapter.sram_read(t.id, row, image.data(), &bits), t, row);
        p4pd_utils_swizzle_bytes(image.data(), bits);
    }
    if (bits == 0 && out.key.empty()) return std::nullopt;
    out.data = taken(image.data(), bits);
    out.data_bits = bits;
    return out;
}

std::optional<records> read_back(host::adapter &adapter, const table &t, uint32_t row) {
    if (!stored_at(adapter, t, row)) return std::nullopt;
    records out(t);
    // The library asks for a row's room to unpack whatever the row says it holds.
    if (p4pd_entry_read(t.id, row, out.key_pointer(), out.mask_pointer(), out.data.data(), nullptr,
                        false) != P4PD_SUCCESS)
        return std::nullopt;
    return out;
}

uint32_t parse_row(const table &t, std::string_view text) {
    try {
        return static_cast<uint32_t>(parse_value(text, 32));
    } catch (const failure &) {
        throw failure("'" + quotable(text) + "' is no row; allowed: 0 to " +
                      std::to_string(host::table_memory_of(t.id)->rows - 1));
    }
}

void check_row(host::adapter &adapter, const table &t, uint32_t row) {
    const uint32_t rows = adapter.depth(t.id);
    if (row >= rows)
        throw failure("index " + std::to_string(row) + " is beyond " + std::to_string(rows - 1) +
                      "; allowed: 0 to " + std::to_string(rows - 1));
}

namespace {

bool same_key(const records &a, const records &b) {
    for (size_t n = 0; n < a.of->key.size(); ++n) {
        const wide ones = all_ones(a.of->key[n].bits);
        const wide mask = a.mask_value(n) & ones;
        if (mask != (b.mask_value(n) & ones)) return false;
        if ((a.key_value(n) & mask) != (b.key_value(n) & mask)) return false;
    }
    return true;
}

}  // namespace

std::optional<found_row> row_of(host::adapter &adapter, records &wanted) {
    const table &t = *wanted.of;
    if (is_hash(t.kind) && t.id != host::flow_ohash_table) {
        const key_images images = images_of(wanted);
        const auto found = host::view::lookup(adapter, t.id, images.key.data());
        if (found.unread != SDK_RET_OK)
            throw failure(std::string(t.name) +
                              ": it cannot be told where the entry is: memory cannot be read",
                          exit_status::adapter);
        if (!found.hit) return std::nullopt;
        const table &hit = *find_table(found.table);
        // A row of the overflow whose mask leaves bits out hides those of whole keys.
        if (hit.kind != kind::overflow_tcam) return found_row{&hit, found.row};
        records whole(hit);
        for (size_t n = 0; n < t.key.size(); ++n)
            whole.set_key(n, wanted.key_value(n), all_ones(t.key[n].bits));
        return row_of(adapter, whole);
    }
    // Memory that cannot be mapped is not empty.
    if (adapter.check_row(t.id, 0) == SDK_RET_OOM) check_read(SDK_RET_OOM, t, 0);
    for (uint32_t row = adapter.next_used(t.id, 0); row < adapter.depth(t.id);
         row = adapter.next_used(t.id, row + 1)) {
        const auto entry = read_back(adapter, t, row);
        if (entry && same_key(*entry, wanted)) return found_row{&t, row};
    }
    return std::nullopt;
}

std::string place_of(const table &t, uint32_t row) {
    const std::string number = std::to_string(row);
    if (t.kind == kind::overflow_tcam)
        return "TCAM row " + number + ", SRAM row " + std::to_string(t.overflow_base + row) +
               " of " + std::string(find_table(t.owner)->name);
    if (t.kind == kind::tcam) return "TCAM and SRAM row " + number;
    return (is_hbm(t.kind) ? "HBM row " : "SRAM row ") + number;
}

}  // namespace halden::tool
