// Values and raw entries as people write them: they are read or refused with a failure, and what
// the tool writes itself is read back as the same value.

#include <optional>

#include "fuzz/input.h"
#include "p4gen/halden/pipeline/pipeline.h"
#include "tools/haldenctl/failure.h"
#include "tools/haldenctl/raw_entry.h"
#include "tools/haldenctl/value.h"

using namespace halden;
using namespace halden::fuzz;
using pipeline::table;
using tool::wide;

namespace {

constexpr uint8_t stored = 1, whole_length = 2;

struct named_width {
    std::string_view name;
    unsigned bits;
};

// Of the table's key, then of its actions.
named_width field_of(const table &t, size_t n) {
    size_t count = t.key.size();
    for (const pipeline::action &a : t.actions) count += a.fields.size();
    if (count == 0) return {"none", 1};
    n %= count;
    if (n < t.key.size()) return {t.key[n].name, t.key[n].bits};
    n -= t.key.size();
    for (const pipeline::action &a : t.actions) {
        if (n < a.fields.size()) return {a.fields[n].name, a.fields[n].bits};
        n -= a.fields.size();
    }
    return {"none", 1};
}

void check_words(const named_width &f, wide value, wide mask) {
    require(tool::parse_value(tool::word_of(value, f.name, f.bits), f.bits) == value,
            "a word is read back as its value");
    require(!tool::shown(value, f.name, f.bits).empty(), "every value is shown as something");
    value &= mask;
    const tool::written_value back =
        tool::parse_masked(tool::masked_word_of(value, mask, f.name, f.bits), f.bits);
    require(back.value == value && back.mask == mask, "a masked word is read back");
}

// What `read` makes of the text; nothing when it refuses with a failure.
template <class Read>
auto unless_refused(Read read) -> std::optional<decltype(read())> {
    try {
        return read();
    } catch (const tool::failure &) {
        return std::nullopt;
    }
}

void read_text(const named_width &f, std::string_view text) {
    if (const auto value = unless_refused([&] { return tool::parse_value(text, f.bits); })) {
        require(*value <= tool::all_ones(f.bits), "a value fits its field");
        check_words(f, *value, tool::all_ones(f.bits));
    }
    if (const auto v = unless_refused([&] { return tool::parse_masked(text, f.bits); })) {
        require(v->mask <= tool::all_ones(f.bits) && (v->value & ~v->mask) == 0,
                "a value lies within its mask, a mask in its field");
        check_words(f, v->value, v->mask);
    }
}

void read_hex(std::string_view text) {
    const auto bytes = unless_refused([&] { return tool::bytes_of_hex(text); });
    if (!bytes) return;
    const auto *first = reinterpret_cast<const uint8_t *>(bytes->data());
    require(tool::bytes_of_hex(tool::hex_of(first, bytes->size())) == *bytes,
            "bytes come back from their digits");
}

// The same image, its bytes filled up to 16 bits where the memory holds words.
bool same_image(const table &t, std::vector<uint8_t> image, const std::vector<uint8_t> &again,
                unsigned bits) {
    if (!pipeline::is_hbm(t.kind)) image.resize((bits + 15) / 16 * 2);
    return image == again;
}

void read_raw(const table &t, std::string_view text, unsigned bits, bool as_stored) {
    const size_t split = text.find(';');
    const std::string entry(text.substr(0, split));
    const std::string y(split == text.npos ? "" : text.substr(split + 1));
    const auto given = unless_refused([&] { return tool::read_raw(t, entry, y, bits, as_stored); });
    if (!given) return;
    const tool::raw_entry &raw = *given;
    require(raw.bits != 0 && raw.bits <= raw.entry.size() * 8, "a raw entry has all its bits");
    require(raw.y.empty() || raw.y.size() == raw.entry.size(), "both words are of one length");

    const auto stored_hex = [&](const std::vector<uint8_t> &image) {
        const std::vector<uint8_t> bytes = tool::as_stored(t, image, raw.bits);
        return tool::hex_of(bytes.data(), bytes.size());
    };
    const tool::raw_entry again = tool::read_raw(
        t, stored_hex(raw.entry), raw.y.empty() ? "" : stored_hex(raw.y), raw.bits, true);
    require(again.bits == raw.bits && same_image(t, raw.entry, again.entry, raw.bits),
            "an entry comes back from the memory's bytes");
    require(raw.y.empty() ? again.y.empty() : same_image(t, raw.y, again.y, raw.bits),
            "and so does its second word");

    require(tool::unpacked(t, raw).of == &t, "every raw entry is taken apart");
    for (const pipeline::run &r : tool::runs_of(t, raw))
        require(tool::bits_of(raw.entry, r) <= tool::all_ones(r.bits), "a run has only its bits");
}

}  // namespace

// Any exception but a failure ends the run.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    input in(data, size);
    const table &t = *pipeline::tables[in.take<uint8_t>() % pipeline::table_count];
    const named_width field = field_of(t, in.take<uint8_t>());
    const uint8_t flags = in.take<uint8_t>();
    const unsigned bits = (flags & whole_length) != 0 ? 0 : in.take<uint16_t>();
    const std::string_view text = in.rest();

    wide value = 0, mask = 0;
    input numbers(data, size);
    value = numbers.take<wide>() & tool::all_ones(field.bits);
    mask = numbers.take<wide>() & tool::all_ones(field.bits);
    check_words(field, value, mask);
    check_words(field, value, tool::all_ones(field.bits) & ~(mask & tool::all_ones(7)));

    read_text(field, text);
    read_hex(text);
    read_raw(t, text, bits, (flags & stored) != 0);
    return 0;
}
