#include "host/memory/row_store.h"

#include "host/memory/words.h"

#include <algorithm>
#include <utility>

namespace halden::host {

namespace {

constexpr size_t page = 4096;
constexpr uint32_t state_bytes = 4;

// One page-aligned part behind the other.
constexpr size_t images_start(uint32_t rows) {
    return (size_t{rows} * state_bytes + page - 1) / page * page;
}

constexpr uint16_t stored_length(uint32_t state) { return static_cast<uint16_t>(state); }
constexpr uint32_t written(uint32_t state, uint16_t bits) {
    return ((state >> 16) + 1) << 16 | bits;
}

uint32_t load(uint32_t *state, std::memory_order order) {
    return std::atomic_ref<uint32_t>(*state).load(order);
}

}  // namespace

row_store::row_store(backing from, uint32_t rows, row_lengths lengths)
    : rows_(rows),
      lengths_(lengths),
      images_at_(images_start(rows)),
      memory_(std::move(from), images_at_ + size_t{rows} * 2 * row_bytes) {}

uint32_t *row_store::state(uint32_t row) const {
    return reinterpret_cast<uint32_t *>(memory_.base() + size_t{row} * state_bytes);
}

uint8_t *row_store::image_of(uint32_t row, uint32_t state) const {
    return memory_.base() + images_at_ + (size_t{row} * 2 + (state >> 16 & 1)) * row_bytes;
}

row_length row_store::length_in(uint32_t state) const {
    const uint16_t bits = stored_length(state);
    return lengths_.allow(bits) ? row_length{bits, 0} : row_length{0, bits};
}

row_length row_store::length_of(uint32_t row) const {
    return length_in(load(state(row), std::memory_order_acquire));
}

row_length row_store::read(uint32_t row, row_image &image) const {
    uint32_t *place = state(row);
    uint32_t before = load(place, std::memory_order_acquire);
    for (;;) {
        const row_length found = length_in(before);
        if (found.bits == 0) {
            image.fill(0);
            return found;
        }
        load_words(image.data(), image_of(row, before), row_bytes);
        // A writer touches this image only in its second write from here, and the words carry the
        // first one's state along.
        const uint32_t after = load(place, std::memory_order_acquire);
        if (after == before) return found;
        before = after;
    }
}

bool row_store::write(uint32_t row, const row_image &image, uint16_t bits) {
    uint32_t *place = state(row);
    const uint32_t next = written(load(place, std::memory_order_relaxed), bits);
    uint8_t *to = image_of(row, next);
    store_words(to, image.data(), row_bytes);
    if (!memory_.flush(to, row_bytes)) return false;
    std::atomic_ref<uint32_t>(*place).store(next, std::memory_order_release);
    return memory_.flush(place, state_bytes);
}

uint32_t row_store::next_used(uint32_t from) const {
    // The page that `from` stands in is looked at without asking whether it was touched: a walk
    // over a full table would ask for every row, and each answer takes a walk over the table.
    constexpr uint32_t page_rows = 4096 / state_bytes;
    const uint32_t page_end = std::min(rows_, (from / page_rows + 1) * page_rows);
    for (; from < page_end; ++from)
        if (stored_length(load(state(from), std::memory_order_acquire)) != 0) return from;

    size_t begin = 0, end = 0;
    while (from < rows_ && memory_.next_used(size_t{from} * state_bytes, begin, end)) {
        const auto first = std::max(from, static_cast<uint32_t>(begin / state_bytes));
        const auto last =
            static_cast<uint32_t>(std::min<size_t>(rows_, (end + state_bytes - 1) / state_bytes));
        for (uint32_t row = first; row < last; ++row)
            if (stored_length(load(state(row), std::memory_order_acquire)) != 0) return row;
        if (last <= from) break;
        from = last;
    }
    return rows_;
}

}  // namespace halden::host
