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
// Writes to one row are serialised by the caller; everything else may run at once.

#include "host/memory/memory_map.h"
#include "host/memory/region.h"

#include <string>

namespace halden::host {

class row_store {
  public:
    // Rows of an anonymous or a file's memory; throws as region does.
    row_store(const std::string &path, uint32_t rows);

    uint32_t rows() const { return rows_; }
    // Length of the row; `image` is zeroed when it is empty.
    uint16_t read(uint32_t row, row_image &image) const;
    void write(uint32_t row, const row_image &image, uint16_t bits);

    // The first row at or behind `from` that is not empty; rows() when there is none.
    uint32_t next_used(uint32_t from) const;

  private:
    uint32_t *state(uint32_t row) const;
    uint8_t *image_of(uint32_t row, uint32_t state) const;

    uint32_t rows_;
    size_t images_at_;
    region memory_;
};

}  // namespace halden::host
