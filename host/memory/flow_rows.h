#pragma once

// The rows of a flow table: 128 bytes of HBM each, one behind the other, with nothing beside them.
// The flow engine works on them in place, so they carry no length: a row is empty when all its
// bytes are zero, any other row is as long as the row itself.
//
// Hardware looks at a row only while its valid bit, bit 932, is set.

#include "host/memory/memory_map.h"
#include "host/memory/region.h"

namespace halden::host {

inline constexpr uint16_t flow_row_bits = flow_row_bytes * 8;
inline constexpr uint32_t flow_valid_bit = 932;

class flow_rows {
  public:
    // Throws as region does.
    flow_rows(backing from, uint32_t rows);

    uint32_t rows() const { return rows_; }
    uint8_t *base() const { return memory_.base(); }

    // flow_row_bits, or 0 for an empty row.
    uint16_t read(uint32_t row, flow_image &image) const;
    // Takes the row out of hardware's sight while its words change. False when it could not be
    // flushed: then it may be as it was, or not valid.
    bool write(uint32_t row, const flow_image &image);
    bool flush(uint32_t row) const { return memory_.flush(row_at(row), flow_row_bytes); }

    uint32_t next_used(uint32_t from) const;

  private:
    uint8_t *row_at(uint32_t row) const { return base() + size_t{row} * flow_row_bytes; }

    uint32_t rows_;
    region memory_;
};

}  // namespace halden::host
