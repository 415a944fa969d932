#include "tests/decode/slow_printer.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace halden::decode_tests {

namespace {

using read_tests::data_fields;
using read_tests::key_fields;

struct table_name {
    uint32_t id;
    const char *constant;
};
constexpr table_name table_names[] = {
#define TABLE_NAMES(id, constant, name, error_action) {id, constant},
#define ACTION_NAMES(id, action, constant, name)
#include "tests/names/names.def"
#undef TABLE_NAMES
#undef ACTION_NAMES
};

struct action_name {
    uint32_t table;
    uint32_t action;
    const char *constant;
};
constexpr action_name action_names[] = {
#define TABLE_NAMES(id, constant, name, error_action)
#define ACTION_NAMES(id, action, constant, name) {id, action, constant},
#include "tests/names/names.def"
#undef TABLE_NAMES
#undef ACTION_NAMES
};

const char *constant_of(uint32_t id) {
    for (const table_name &name : table_names)
        if (name.id == id) return name.constant;
    return nullptr;
}

const char *constant_of(uint32_t id, uint32_t action) {
    for (const action_name &name : action_names)
        if (name.table == id && name.action == action) return name.constant;
    return nullptr;
}

// No room is left for another piece: the text ends here, with result 0.
struct full {};

class bounded_text {
  public:
    explicit bounded_text(size_t size)
        : out_{0, std::string(size, '\0')}, left_(static_cast<int>(size)) {}

    [[gnu::format(printf, 2, 3)]] void print(const char *format, ...) {
        va_list arguments;
        va_start(arguments, format);
        char piece[512];
        const int length = std::vsnprintf(piece, sizeof piece, format, arguments);
        va_end(arguments);
        char *const end = out_.buffer.data() + std::strlen(out_.buffer.c_str());
        std::snprintf(end, static_cast<size_t>(left_), "%s", piece);
        left_ -= length;
        if (left_ <= 0) throw full{};
    }

    printed finish(int result) {
        out_.result = result;
        return out_;
    }

  private:
    printed out_;
    int left_;
};

constexpr const char *record_banner = "Table Entry Fields\n";
constexpr const char *key_banner = "!!!! Decode HW table entry into Table Key !!!! \n";
constexpr const char *entry_banner =
    "!!!! Decode HW table entry into (Table Key + Actiondata)/Actiondata!!!! \n";
constexpr const char *tcam_data_banner = "!!!! Decode Tcam table Action Data !!!! \n";

bool is_array(uint32_t size) { return size != 1 && size != 2 && size != 4; }

unsigned scalar(const bytes &record, uint32_t at, uint32_t size) {
    unsigned value = 0;
    for (uint32_t i = size; i-- > 0;) value = value << 8 | record.at(at + i);
    return value;
}

void record_field(bounded_text &out, const std::string &name, const bytes &record, uint32_t at,
                  uint32_t size) {
    if (!is_array(size)) {
        out.print("%s : 0x%x\n", name.c_str(), scalar(record, at, size));
        return;
    }
    out.print("%s : 0x", name.c_str());
    for (uint32_t i = 0; i < size; ++i) out.print("%02x", unsigned{record.at(at + i)});
    out.print("\n");
}

void entry_field(bounded_text &out, const std::string &name, const bytes &record, uint32_t at,
                 uint32_t size, const char *byte_format) {
    if (!is_array(size)) {
        out.print("%s: 0x%x\n", name.c_str(), scalar(record, at, size));
        return;
    }
    out.print("%s: \n", name.c_str());
    for (uint32_t i = 0; i < size; ++i) {
        // Two formats, each written out: the compiler checks them.
        if (*byte_format == ' ')
            out.print("  0x%x :", unsigned{record.at(at + i)});
        else
            out.print("0x%x :", unsigned{record.at(at + i)});
    }
    out.print("\n");
}

void record_text(bounded_text &out, uint32_t id, uint32_t index, const records &given) {
    out.print("Table : %s, Index : 0x%x/%u\n", constant_of(id), index, index);
    const bool hash = id <= 6, ternary = id >= 7 && id <= 15;
    if (hash && given.key == nullptr) return;
    if (hash || (ternary && given.key != nullptr && given.mask != nullptr)) {
        out.print("Key :\n");
        for (const read_tests::key_field &f : key_fields(id)) {
            record_field(out, f.name, *given.key, f.first_byte, f.size);
            if (ternary) record_field(out, f.name + "_mask", *given.mask, f.first_byte, f.size);
        }
    }
    if (given.data == nullptr) return;
    const uint32_t action = given.data->at(0);
    const char *const name = constant_of(id, action);
    if (name == nullptr) return;
    out.print("Action : %s\n", name);
    for (const read_tests::data_field &f : data_fields(id, action))
        record_field(out, f.name, *given.data, f.first_byte, f.size);
}

void entry_text(bounded_text &out, uint32_t id, uint32_t index, const records &held,
                bool second_word) {
    out.print("Table: %s, Index 0x%x/%u\n", constant_of(id), index, index);
    const bool hash = id <= 6, ternary = id >= 7 && id <= 15;
    if (ternary && second_word) {
        for (const read_tests::key_field &f : key_fields(id)) {
            entry_field(out, f.name, *held.key, f.first_byte, f.size, "0x");
            entry_field(out, f.name + "_mask", *held.mask, f.first_byte, f.size, "0x");
        }
        return;
    }
    if (ternary) out.print("%s", tcam_data_banner);
    if (hash)
        for (const read_tests::key_field &f : key_fields(id))
            entry_field(out, f.name, *held.key, f.first_byte, f.size, "0x");
    const uint32_t action = held.data->at(0);
    const char *const name = constant_of(id, action);
    if (name == nullptr) return;
    out.print("Action: %s\n", name);
    for (const read_tests::data_field &f : data_fields(id, action))
        entry_field(out, f.name, *held.data, f.first_byte, f.size, "  0x");
}

}  // namespace

printed slow_record_text(uint32_t id, uint32_t index, const records &given, size_t size) {
    bounded_text out(size);
    try {
        out.print("%s", record_banner);
        if (constant_of(id) == nullptr) return out.finish(-1);
        record_text(out, id, index, given);
    } catch (const full &) {
    }
    return out.finish(0);
}

printed slow_entry_text(uint32_t id, uint32_t index, const records &held, bool second_word,
                        size_t size) {
    bounded_text out(size);
    try {
        out.print("%s", second_word ? key_banner : entry_banner);
        if (constant_of(id) == nullptr) return out.finish(-1);
        entry_text(out, id, index, held, second_word);
    } catch (const full &) {
    }
    return out.finish(0);
}

}  // namespace halden::decode_tests
