#pragma once

// A text as a stream for a parser that takes any input: it knows where it is, and it ends input
// that has no end.
//
//     text_input text(source);          source(to, most) fills `to`, and answers 0 at the end
//     text.allow(1000);                 1000 more bytes; one more is a failure, from the stream
//     std::istream in(&text);
//     ...
//     throw failure(text.place() + ": ...");         "line 3, column 7: ..."
//
// A NUL byte is a failure when it would be read: parsers take it for the end.

#include <array>
#include <cstddef>
#include <functional>
#include <streambuf>
#include <string>

namespace halden::tool {

using byte_source = std::function<size_t(char *to, size_t most)>;

class text_input : public std::streambuf {
  public:
    explicit text_input(byte_source source) : source_(std::move(source)) {}

    // So many bytes from here on; what was left of the last allowance is gone.
    void allow(size_t bytes);
    // Of the character that was read last, or of the end behind it once that was met.
    std::string place() const;
    // The character that was read last, as an error shows it: 'x' or byte 0xc3.
    std::string last_read() const;

  protected:
    int_type underflow() override;

  private:
    void give_out(char *from);
    [[noreturn]] void refuse_length() const;

    byte_source source_;
    std::array<char, size_t{1} << 16> buffer_;
    char *data_end_ = buffer_.data();  // of what the source gave; the get area may end before it
    size_t allowed_ = 0, left_ = 0;    // left_: behind the get area
    bool nul_follows_ = false, ended_ = false;
    size_t lines_ = 0, column_ = 0;  // in front of the buffer: line ends, and characters after them
    char last_ = 0;                  // the one in front of the buffer
};

}  // namespace halden::tool
