// Build-time diagnostic: compares the flow entry's body with the size its hardware entry was first
// designed for. It stands alone in its source file so that nothing else depends on it.

#include <cstdio>

#include "ftl/flow_hash_entry.h"

namespace {
constexpr unsigned designed_size = 64;
}

__attribute__((visibility("default"))) int main() {
    constexpr unsigned long whole = sizeof(flow_hash_entry_t);
    constexpr unsigned long base = sizeof(base_table_entry_t);
    constexpr unsigned long body = whole - base;
    if (body == designed_size) return 0;
    std::printf("struct %s, size (%lu - %lu = %lu), expected size %u\n", "flow_hash_entry_t", whole,
                base, body, designed_size);
    return -1;
}
