#pragma once

// Rows of 64 bytes with a length, in one region:
//
//     state words, 4 bytes per row        images, 128 bytes per row
//     +------------------+----------+     +---------------+---------------+
//     | writes, 16 bits  | length   |     | even image    | odd image     |
//     +------------------+----------+     +---------------+---------------+
//
// A row is in one of its two images: the one that the parity of its count of writes names. A write
// fills the other image and then stores the state word, so at every instant the row is either whole
// and old or whole and new - for readers that take no lock and for whoever maps the file after a
// process was killed in the middle of a write. Length 0 means that the row is empty.
//
// The file may come from anywhere, so no length found in it is trusted: one that the row has no
// room for is damage. Such a row is neither empty nor read; a write puts it right.
//
// Writes to one row are serialised by the caller; everything else may run at once.

#include "host/memory/memory_map.h"
#include "host/memory/region.h"

namespace halden::host {

// The lengths in bits that a row can have.
struct row_lengths {
    uint16_t most = row_bytes * 8;
    uint16_t step = 1;

    bool allow(uint16_t bits) const { return bits <= most && bits % step == 0; }
};

// What a state word says: never more bits than the row has.
struct row_length {
    uint16_t bits = 0;        // 0 for a row that is empty or damaged
    uint16_t impossible = 0;  // the length found in a damaged row
    bool is_damaged() const { return impossible != 0; }
};

class row_store {
  public:
    // Throws as region does.
    row_store(backing from, uint32_t rows, row_lengths lengths = {});

    uint32_t rows() const { return rows_; }
    row_lengths lengths() const { return lengths_; }
    // `image` is zeroed when the row is empty or damaged.
    row_length read(uint32_t row, row_image &image) const;
    row_length length_of(uint32_t row) const;
    // Where stores are flushed, the image before the word that names it. False when that failed:
    // then the row may be as it was.
    bool write(uint32_t row, const row_image &image, uint16_t bits);

    // The first row at or behind `from` that is not empty, damaged ones among them; rows() when
    // there is none.
    uint32_t next_used(uint32_t from) const;

  private:
    uint32_t *state(uint32_t row) const;
    uint8_t *image_of(uint32_t row, uint32_t state) const;
    row_length length_in(uint32_t state) const;

    uint32_t rows_;
    row_lengths lengths_;
    size_t images_at_;
    region memory_;
};

}  // namespace halden::host
