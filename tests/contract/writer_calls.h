#pragma once

// The calls that each kind of writer makes, in order, with every argument. The buffers go by these
// names: record, mask record (the caller's), key, key mask (the images), entry, mask entry, packed,
// packed mask, before, after (the writer's own).

#include "tests/contract/entry_writes.h"
#include "tests/contract/index_tables.h"
#include "tests/contract/keyed_tables.h"

namespace halden::test {

inline constexpr uint32_t written_row = 0x00c0ffee;
inline constexpr int no_mask = -1;

// One write: the action of the record, the first byte of the mask record (or no_mask), the flag,
// and where in its buffer a hash entry starts.
struct written {
    uint8_t action = 0;
    int mask_action = no_mask;
    bool flag = false;
    uint16_t offset = 0;

    bool masked() const { return mask_action != no_mask; }
};

expected index_sram_calls(const index_table &t, const written &w);
expected index_hbm_calls(const index_table &t, const written &w);
expected keyless_calls(const keyless_table &t, const written &w);
expected tcam_calls(const keyed_table &t, const written &w);
expected overflow_calls(const keyed_table &t, const written &w);
expected hash_sram_calls(const keyed_table &t, const written &w);
expected flow_calls(const flow_table &t, const written &w);

// The same for any table.
expected writer_calls(uint32_t id, const written &w);

// Action counts and sizes of action-data records of the 48 tables.
struct table_sizes {
    uint8_t actions;
    uint16_t record_bytes;
};
table_sizes sizes_of(uint32_t id);

// Every action id of a table of `actions` actions, the first that it does not have, and some that
// no table has.
std::vector<uint8_t> action_ids(uint8_t actions);

}  // namespace halden::test
