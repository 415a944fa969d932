#pragma once

// What the two decoders share: a text that is cut at the end of the caller's buffer, and the names
// printed for tables and actions. Both decoders go over the description at run time; neither
// allocates or interprets a format.

#include <cstdint>
#include <cstring>
#include <string_view>

#include "p4gen/halden/pipeline/model.h"

namespace halden::p4pd {

// Text at the front of a zeroed buffer. What does not fit is counted and dropped, and the last byte
// of the buffer is never written, so the text always ends with a zero. A full text stays full.
class text {
  public:
    text(char *buffer, uint16_t size) : at_(buffer), left_(size) {
        if (size != 0) std::memset(buffer, 0, size);
    }
    text(const text &) = delete;
    text &operator=(const text &) = delete;

    // Not even the closing zero of a further piece has room.
    bool full() const { return left_ <= 0; }

    void add(std::string_view piece) {
        const int size = static_cast<int>(piece.size());
        if (const int fits = size < left_ ? size : left_ - 1; fits > 0)
            std::memcpy(at_, piece.data(), static_cast<size_t>(fits));
        took(size);
    }
    void add_upper(std::string_view piece) {
        for (char c : piece) add_char(c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c);
    }
    void add_hex(uint32_t value) {
        char digits[8];
        char *first = digits + sizeof digits;
        do *--first = hex_digit(value & 15u);
        while ((value >>= 4) != 0);
        add({first, static_cast<size_t>(digits + sizeof digits - first)});
    }
    void add_hex_byte(uint8_t value) {
        const char digits[2] = {hex_digit(value >> 4), hex_digit(value & 15u)};
        add({digits, 2});
    }
    void add_decimal(uint32_t value) {
        char digits[10];
        char *first = digits + sizeof digits;
        do *--first = static_cast<char>('0' + value % 10);
        while ((value /= 10) != 0);
        add({first, static_cast<size_t>(digits + sizeof digits - first)});
    }

  private:
    static char hex_digit(unsigned value) { return "0123456789abcdef"[value]; }
    void add_char(char c) {
        if (left_ > 1) *at_ = c;
        took(1);
    }
    void took(int size) {
        if (full()) return;
        left_ -= size;
        at_ += full() ? 0 : size;
    }

    char *at_;
    int left_;  // room from at_, the closing zero included
};

inline void add_table_name(text &out, const pipeline::table &table) {
    out.add("P4TBL_ID_");
    out.add_upper(table.name);
}

inline void add_action_name(text &out, const pipeline::table &table, size_t action) {
    out.add_upper(table.action_prefix.empty() ? table.name : table.action_prefix);
    out.add("_");
    out.add_upper(table.actions[action].name);
    out.add("_ID");
}

// Value of a field that is no array, from its storage at any address.
inline uint32_t scalar_at(const uint8_t *field, uint16_t storage_bytes) {
    if (storage_bytes == 1) return *field;
    if (storage_bytes == 2) {
        uint16_t value;
        std::memcpy(&value, field, sizeof value);
        return value;
    }
    uint32_t value;
    std::memcpy(&value, field, sizeof value);
    return value;
}

}  // namespace halden::p4pd
