#pragma once

// A fuzzer's bytes, taken from the front: first the few values that steer it, then what is decoded.
// Behind their end everything is zero, so every input means something. make_seeds.cc writes the
// same order.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>

namespace halden::fuzz {

// A heap block of exactly `size` bytes, also of none: the address sanitizer sees a step beyond it.
class block {
  public:
    explicit block(size_t size, uint8_t fill = 0) : bytes_(new uint8_t[size]), size_(size) {
        std::memset(bytes_.get(), fill, size);
    }
    block(const block &other) : block(other.size_) { std::memcpy(data(), other.data(), size_); }
    block &operator=(const block &) = delete;

    uint8_t *data() const { return bytes_.get(); }
    char *text() const { return reinterpret_cast<char *>(bytes_.get()); }
    size_t size() const { return size_; }
    std::string_view view() const { return {text(), size_}; }
    bool operator==(const block &other) const { return view() == other.view(); }
    bool only(uint8_t value) const {
        return view().find_first_not_of(static_cast<char>(value)) == std::string_view::npos;
    }

  private:
    std::unique_ptr<uint8_t[]> bytes_;
    size_t size_;
};

class input {
  public:
    input(const uint8_t *data, size_t size) : at_(data), left_(size) {}

    template <class Number>
    Number take() {
        Number value = 0;
        copy_to(&value, sizeof value);
        return value;
    }
    block take_block(size_t size) {
        block out(size);
        copy_to(out.data(), size);
        return out;
    }
    std::string_view rest() const { return {reinterpret_cast<const char *>(at_), left_}; }

  private:
    void copy_to(void *to, size_t size) {
        const size_t given = size < left_ ? size : left_;
        if (given == 0) return;
        std::memcpy(to, at_, given);
        at_ += given;
        left_ -= given;
    }

    const uint8_t *at_;
    size_t left_;
};

// Ends the run, so that the fuzzer keeps the input.
inline void require(bool holds, const char *property) {
    if (holds) return;
    std::fprintf(stderr, "does not hold: %s\n", property);
    std::abort();
}

}  // namespace halden::fuzz
