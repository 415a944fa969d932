#pragma once

// Which of the sixteen rows of scratch entries belongs to the calling thread. Fifteen threads own a
// row each, from their first operation to their end; any further threads take turns at the last
// row. The rows are those of get_entry(), which all tables of a class share, so the claim holds for
// the whole process.

#include <cstdint>

namespace halden::host::flow {

inline constexpr uint16_t scratch_rows = 16;
inline constexpr int scratch_columns = 8;

class scratch_row {
  public:
    scratch_row();
    ~scratch_row();
    scratch_row(const scratch_row &) = delete;
    scratch_row &operator=(const scratch_row &) = delete;

    uint16_t number() const { return number_; }

  private:
    uint16_t number_;
};

}  // namespace halden::host::flow
