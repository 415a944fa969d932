#pragma once

// Single rows, written through the library. It has no word for what the ASIC layer answered; memory
// has, so the row is compared with the one that a memory that refuses nothing makes of the entry.

#include "tools/haldenctl/adapter_view.h"

namespace halden::tool {

class row_writer {
  public:
    explicit row_writer(host::adapter &adapter);

    // What the row holds once the entry is in it; nothing where the entry has no bits.
    std::optional<stored_row> image_of(records &entry);
    // Throws failure when the row does not hold it afterwards.
    void write(records &entry, uint32_t row);

  private:
    host::adapter &adapter_;
    std::unique_ptr<host::adapter> scratch_;
};

}  // namespace halden::tool
