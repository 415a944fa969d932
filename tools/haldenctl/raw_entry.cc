#include "tools/haldenctl/raw_entry.h"

#include "sdk/asic/pd.h"
#include "sdk/p4pd_utils.h"
#include "tools/haldenctl/adapter_view.h"
#include "tools/haldenctl/failure.h"

namespace halden::tool {

using namespace pipeline;

namespace {

unsigned most_bits(const table &t, bool with_y) {
    if (with_y) return tcam_width(t);
    return (row_bits(t) + 15) / 16 * 16;
}

std::vector<uint8_t> bytes_from(const char *option, const std::string &digits) {
    try {
        const std::string bytes = bytes_of_hex(digits);
        return {bytes.begin(), bytes.end()};
    } catch (const failure &error) {
        throw error.inside(option);
    }
}

void check_length(const table &t, const char *option, size_t bits, bool with_y) {
    const unsigned most = most_bits(t, with_y);
    if (bits > most)
        throw failure(std::string(option) + ": " + std::to_string(bits) + " bits were given, and " +
                      (with_y ? "a key image" : "a row") + " of " + std::string(t.name) + " has " +
                      std::to_string(most) + "; allowed: up to " + std::to_string(most / 8) +
                      " bytes");
}

std::vector<uint8_t> swizzled(std::vector<uint8_t> bytes, unsigned bits) {
    bytes.resize((bits + 15) / 16 * 2);
    p4pd_utils_swizzle_bytes(bytes.data(), static_cast<uint16_t>(bits));
    return bytes;
}

}  // namespace

std::vector<uint8_t> as_stored(const table &t, std::vector<uint8_t> image, unsigned bits) {
    return is_hbm(t.kind) ? image : swizzled(std::move(image), bits);
}

raw_entry read_raw(const table &t, const std::string &entry, const std::string &y, unsigned bits,
                   bool stored) {
    raw_entry out;
    const bool with_y = !y.empty();
    if (with_y && !has_mask(t.kind))
        throw failure("--y: " + std::string(t.name) + " has no TCAM; give its row alone");
    out.entry = bytes_from("--entry", entry);
    out.y = bytes_from("--y", y);
    if (out.entry.empty()) throw failure("--entry: no digits were given");
    if (with_y && out.y.size() != out.entry.size())
        throw failure("--y: its length is " + std::to_string(out.y.size()) +
                      "; allowed: " + std::to_string(out.entry.size()) + ", the bytes of --entry");
    check_length(t, "--entry", out.entry.size() * 8, with_y);
    if (bits > out.entry.size() * 8)
        throw failure("--len: " + std::to_string(bits) + " bits were asked for, and " +
                      std::to_string(out.entry.size() * 8) + " given");
    out.bits = static_cast<uint16_t>(bits != 0 ? bits : out.entry.size() * 8);
    if (stored && !is_hbm(t.kind)) {
        out.entry = swizzled(out.entry, out.bits);
        if (with_y) out.y = swizzled(out.y, out.bits);
    }
    return out;
}

records unpacked(const table &t, const raw_entry &raw) {
    // The reader's own way, from a row of an adapter that nobody else sees.
    const opened_adapter scratch;
    constexpr uint32_t row = 0;
    records out(t);
    std::vector<uint8_t> image = as_stored(t, raw.entry, raw.bits);
    if (!raw.y.empty()) {
        const std::vector<uint8_t> y = as_stored(t, raw.y, raw.bits);
        scratch->tcam_write(t.id, row, image.data(), y.data(),
                            static_cast<uint16_t>((raw.bits + 15) / 16 * 16));
    } else if (has_mask(t.kind)) {
        // A TCAM row has to stand there for the data to be read.
        const std::vector<uint8_t> any(tcam_width(t) / 8);
        scratch->tcam_write(t.id, row, any.data(), any.data(), tcam_width(t));
        scratch->sram_write(t.id, t.overflow_base + row, image.data(), raw.bits, nullptr);
    } else if (is_hbm(t.kind)) {
        scratch->hbm_write(t.id, row, image.data(), raw.bits);
    } else {
        scratch->sram_write(t.id, row, image.data(), raw.bits, nullptr);
    }
    if (auto read = read_back(*scratch, t, row)) return *read;
    return out;
}

std::vector<run> runs_of(const table &t, const raw_entry &raw) {
    std::vector<run> runs;
    if (!raw.y.empty()) {
        runs = key_image(t);
    } else {
        size_t id = 0;
        if (has_programs(t)) id = sdk::asic::pd::asicpd_get_action_id(t.id, raw.entry[0]);
        const action nothing = {"", {}};
        runs = row_image(t, id < t.actions.size() ? t.actions[id] : nothing);
    }
    std::erase_if(runs, [&](const run &r) { return r.first + r.bits > raw.bits; });
    return runs;
}

wide bits_of(const std::vector<uint8_t> &image, const run &r) {
    wide value = 0;
    for (unsigned bit = r.first; bit < r.first + r.bits; ++bit)
        value = value << 1 | (bit / 8 < image.size() ? image[bit / 8] >> (7 - bit % 8) & 1u : 0u);
    return value;
}

}  // namespace halden::tool
