// haldenctl decode and explain: a raw hardware entry, from a log or from a mail, made readable.

#include <iostream>

#include "p4pd.h"
#include "sdk/asic/pd.h"
#include "tools/haldenctl/arguments.h"
#include "tools/haldenctl/commands.h"
#include "tools/haldenctl/drawing.h"
#include "tools/haldenctl/entry_file.h"
#include "tools/haldenctl/entry_text.h"
#include "tools/haldenctl/failure.h"
#include "tools/haldenctl/raw_entry.h"
#include "tools/haldenctl/screen.h"

namespace halden::tool {

using namespace pipeline;

namespace {

constexpr size_t text_bytes = 32768;

struct raw_options {
    std::string table, entry, y;
    unsigned bits = 0;
    uint32_t index = 0;
    bool image = false, as_json = false;
};

std::shared_ptr<raw_options> add_raw_options(CLI::App *command) {
    auto wanted = std::make_shared<raw_options>();
    command->add_option("TABLE", wanted->table, "Name or id")->required();
    command
        ->add_option("--entry", wanted->entry, "The row; with --y, the key image (x) of a TCAM row")
        ->required()
        ->type_name("HEX");
    command->add_option("--y", wanted->y, "The mask image (y) of a TCAM row")->type_name("HEX");
    command->add_option("--len", wanted->bits, "Bits of it, when not all are given")
        ->type_name("BITS")
        ->check(CLI::Range(1u, 8192u));
    command->add_flag("--image", wanted->image,
                      "The digits are an image, bit 0 first; without it, they are as the memory "
                      "holds them, so the bytes of SRAM and TCAM rows are swizzled");
    return wanted;
}

raw_entry raw_of(const table &t, const raw_options &wanted) {
    return read_raw(t, wanted.entry, wanted.y, wanted.bits, !wanted.image);
}

std::string decoded(const table &t, const raw_entry &raw, uint32_t index) {
    // The decoder undoes the swizzling of TCAM tables itself, over the bytes of its length, and
    // takes other rows as images.
    std::vector<uint8_t> entry = raw.entry, y = raw.y;
    uint16_t bits = raw.bits;
    if (has_mask(t.kind)) {
        bits = static_cast<uint16_t>((bits + 15) / 16 * 16);
        entry = as_stored(t, entry, raw.bits);
        if (!y.empty()) y = as_stored(t, y, raw.bits);
    }
    std::string text(text_bytes, '\0');
    p4pd_table_entry_decoded_string_get(t.id, index, entry.data(), y.empty() ? nullptr : y.data(),
                                        bits, text.data(), static_cast<uint16_t>(text.size()));
    text.resize(text.find('\0'));
    return text;
}

json json_of(const table &t, const raw_entry &raw, uint32_t index) {
    json out = to_json(unpacked(t, raw), index);
    if (!raw.y.empty()) {
        out.erase("data");
        out.erase("action");
    } else if (has_mask(t.kind)) {
        out.erase("key");
    }
    return out;
}

std::string program_name(const table &t, const raw_entry &raw) {
    const size_t id = sdk::asic::pd::asicpd_get_action_id(t.id, raw.entry[0]);
    return id < t.actions.size() ? std::string(t.actions[id].name) : "of no action of the table";
}

void explain(const table &t, const raw_entry &raw) {
    const auto runs = runs_of(t, raw);
    if (runs.empty())
        throw failure("--entry: " + std::to_string(raw.bits) +
                          " bits were given, and no field of the " +
                          (raw.y.empty() ? "row" : "key image") + " ends within them",
                      exit_status::usage);
    const auto range = [](const run &r) {
        return std::to_string(r.first) +
               (r.bits > 1 ? "-" + std::to_string(r.first + r.bits - 1) : "");
    };
    columns out(raw.y.empty()
                    ? std::vector<std::string>{"BITS", "FIELD", "BITS OF IT", "VALUE"}
                    : std::vector<std::string>{"BITS", "FIELD", "BITS OF IT", "X", "Y", "MATCHES"});
    for (const run &r : runs) {
        const wide x = bits_of(raw.entry, r);
        const bool whole = r.bits == r.field_bits;
        const std::string part =
            whole ? "" : std::to_string(r.low_bit + r.bits - 1) + ":" + std::to_string(r.low_bit);
        const colour c = r.number == run::none ? colour::dim
                         : r.of_key            ? colour::key
                                               : colour::data;
        if (raw.y.empty()) {
            std::string value =
                whole && r.number != run::none ? shown(x, r.field, r.bits) : hexadecimal(x);
            if (r.field == action_program) value += " (" + program_name(t, raw) + ")";
            out.row({range(r), std::string(r.field), part, value}, c);
            continue;
        }
        const wide y = bits_of(raw.y, r);
        out.row({range(r), std::string(r.field), part, hexadecimal(x), hexadecimal(y),
                 (x & y) != 0 ? "nothing: a bit is in x and in y"
                              : masked_word_of(x, x | y, whole ? r.field : "", r.bits)},
                c);
    }
    std::cout << out.text() << "\n" << drawing(runs, 0, &raw.entry);
    const unsigned end = runs.back().first + runs.back().bits;
    if (end < row_bits(t) && raw.y.empty())
        std::cout << "the row has " << row_bits(t) << " bits; fields from bit " << end
                  << " on are not given\n";
}

template <class Work>
void on_table(const raw_options &wanted, Work work) {
    const table &t = table_argument(wanted.table);
    try {
        work(t, typed([&] { return raw_of(t, wanted); }));
    } catch (const failure &error) {
        throw error.inside(std::string(t.name));
    }
}

}  // namespace

void add_decode(CLI::App &app) {
    CLI::App *command =
        app.add_subcommand("decode", "A raw hardware entry as text: its fields and values");
    const auto wanted = add_raw_options(command);
    command->add_option("--index", wanted->index, "Row it came from; only printed")
        ->type_name("ROW");
    command->add_flag("--json", wanted->as_json, "As JSON that `write` takes");
    command->callback([wanted] {
        on_table(*wanted, [&](const table &t, const raw_entry &raw) {
            if (wanted->as_json)
                std::cout << json_of(t, raw, wanted->index).dump(2) << "\n";
            else
                std::cout << decoded(t, raw, wanted->index);
        });
    });
}

void add_explain(CLI::App &app) {
    CLI::App *command =
        app.add_subcommand("explain", "A raw hardware entry bit by bit: whose bits, which value");
    const auto wanted = add_raw_options(command);
    command->callback([wanted] {
        on_table(*wanted, [](const table &t, const raw_entry &raw) { explain(t, raw); });
    });
}

}  // namespace halden::tool
