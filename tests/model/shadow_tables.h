#pragma once

// The tables of the shadow, and the records and images that belong to an entry's value.

#include "tests/model/shadow.h"

namespace halden::test {

// The action-data record (action id first) of a value, with the bits alone that hardware keeps.
bytes data_of(const shadow_table &t, uint32_t value);
bytes spec_of(const shadow_table &t, const candidate &c, const bytes &data);
// Whether what read filled is the record of the value.
bool holds(const shadow_table &t, const bytes &info, uint32_t value);

// The flow_idx of a value, and that of a flow's row.
uint32_t flow_index(uint32_t value);
uint32_t flow_value(const std::vector<uint8_t> &row);

// A raw row as it is stored: the images of a TCAM row one after the other.
bytes raw_image(const shadow_table &t, const candidate &c, uint32_t value, uint32_t &bits);

}  // namespace halden::test
