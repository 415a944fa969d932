#include "tools/haldenctl/text_input.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "tools/haldenctl/failure.h"

namespace halden::tool {

namespace {

struct position {
    size_t lines, column;
};

// Columns are characters of UTF-8: bytes that go on with one are not counted.
position behind(std::string_view text, position at) {
    const size_t last = text.rfind('\n');
    if (last != text.npos) {
        at.lines += static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
        at.column = 0;
        text.remove_prefix(last + 1);
    }
    at.column += static_cast<size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xc0) != 0x80; }));
    return at;
}

}  // namespace

void text_input::give_out(char *from) {
    const size_t there = static_cast<size_t>(data_end_ - from);
    const size_t given = std::min(there, left_);
    setg(buffer_.data(), from, from + given);
    left_ -= given;
}

void text_input::allow(size_t bytes) {
    allowed_ = left_ = bytes;
    give_out(gptr() == nullptr ? data_end_ : gptr());
}

void text_input::refuse_length() const {
    throw failure(place() + ": " + std::to_string(allowed_) +
                  " bytes were read and no entry has ended; allowed: up to " +
                  std::to_string(allowed_) + " bytes for each");
}

text_input::int_type text_input::underflow() {
    if (gptr() != nullptr && gptr() < data_end_) refuse_length();
    if (eback() != nullptr && data_end_ != buffer_.data()) {
        const position now = behind({buffer_.data(), data_end_}, {lines_, column_});
        lines_ = now.lines;
        column_ = now.column;
        last_ = data_end_[-1];
        data_end_ = buffer_.data();
        setg(data_end_, data_end_, data_end_);
    }
    if (nul_follows_)
        throw failure("line " + std::to_string(lines_ + 1) +
                      ": a NUL byte stands there; allowed: text");
    const size_t got = ended_ ? 0 : source_(buffer_.data(), buffer_.size());
    ended_ = got == 0;
    if (ended_) return traits_type::eof();
    data_end_ += got;
    if (void *nul = std::memchr(buffer_.data(), '\0', got)) {
        nul_follows_ = true;
        data_end_ = static_cast<char *>(nul);
        if (data_end_ == buffer_.data()) return underflow();
    }
    give_out(buffer_.data());
    if (gptr() == egptr()) refuse_length();
    return traits_type::to_int_type(*gptr());
}

std::string text_input::place() const {
    const position read = behind({eback(), gptr()}, {lines_, column_});
    return "line " + std::to_string(read.lines + 1) + ", column " +
           std::to_string(std::max<size_t>(1, read.column + (ended_ ? 1 : 0)));
}

std::string text_input::last_read() const {
    constexpr char digits[] = "0123456789abcdef";
    const auto byte = static_cast<uint8_t>(gptr() != eback() ? gptr()[-1] : last_);
    if (byte > 0x20 && byte < 0x7f) return {'\'', static_cast<char>(byte), '\''};
    return {'b', 'y', 't', 'e', ' ', '0', 'x', digits[byte >> 4], digits[byte & 15]};
}

}  // namespace halden::tool
