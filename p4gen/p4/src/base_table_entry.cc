#include "sdk/base_table_entry.h"

#include "log/fail.h"

base_table_entry_t *base_table_entry_t::construct(uint32_t) {
    __assert_fail("0", "sdk/include/sdk/base_table_entry", 19,
                  "virtual base_table_entry_t* base_table_entry_t::construct(uint32_t)");
}

// Entries without an epoch of their own have nothing to set.
void base_table_entry_t::set_epoch(uint8_t) {}
