#include "host/memory/flow_rows.h"

#include "host/memory/words.h"

#include <algorithm>
#include <utility>

namespace halden::host {

namespace {

constexpr uint32_t valid_word = flow_valid_bit / 64 * word_bytes;

bool all_zero(const flow_image &image) {
    return std::all_of(image.begin(), image.end(), [](uint8_t byte) { return byte == 0; });
}

}  // namespace

flow_rows::flow_rows(backing from, uint32_t rows)
    : rows_(rows), memory_(std::move(from), size_t{rows} * flow_row_bytes) {}

uint16_t flow_rows::read(uint32_t row, flow_image &image) const {
    load_words(image.data(), row_at(row), flow_row_bytes);
    return all_zero(image) ? 0 : flow_row_bits;
}

bool flow_rows::write(uint32_t row, const flow_image &image) {
    static constexpr std::array<uint8_t, word_bytes> invalid = {};
    uint8_t *at = row_at(row);
    store_words(at + valid_word, invalid.data(), word_bytes);
    if (!flush(row)) return false;
    store_words(at, image.data(), valid_word);
    store_words(at + valid_word + word_bytes, image.data() + valid_word + word_bytes,
                flow_row_bytes - valid_word - word_bytes);
    if (!flush(row)) return false;
    store_words(at + valid_word, image.data() + valid_word, word_bytes);
    return flush(row);
}

uint32_t flow_rows::next_used(uint32_t from) const {
    flow_image image;
    size_t begin = 0, end = 0;
    while (from < rows_ && memory_.next_used(size_t{from} * flow_row_bytes, begin, end)) {
        const auto first = std::max(from, static_cast<uint32_t>(begin / flow_row_bytes));
        const auto last = static_cast<uint32_t>(
            std::min<size_t>(rows_, (end + flow_row_bytes - 1) / flow_row_bytes));
        for (uint32_t row = first; row < last; ++row)
            if (read(row, image) != 0) return row;
        if (last <= from) break;
        from = last;
    }
    return rows_;
}

}  // namespace halden::host
