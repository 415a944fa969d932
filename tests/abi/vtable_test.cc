// The order of the virtual operations: the host's engines are built apart and call by slot number.

#include "ftl/flow_hash.h"
#include "ftl/flow_hash_entry.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

namespace {

// Slot of a virtual operation, counted from 1; 0 when it is not virtual. A pointer to a virtual
// member holds the slot's byte offset: plus one on most machines, plainly and with a flag in the
// second word on Arm.
template <class Member>
unsigned slot_of(Member member) {
    static_assert(sizeof member == 2 * sizeof(intptr_t));
    intptr_t words[2];
    std::memcpy(words, &member, sizeof words);
#if defined(__aarch64__) || defined(__arm__)
    const bool is_virtual = (words[1] & 1) != 0;
    const intptr_t offset = words[0];
#else
    const bool is_virtual = (words[0] & 1) != 0;
    const intptr_t offset = words[0] - 1;
#endif
    return is_virtual ? static_cast<unsigned>(offset / static_cast<intptr_t>(sizeof(void *))) + 1
                      : 0;
}

template <class Entry>
void expect_entry_slots() {
    EXPECT_EQ(slot_of(&Entry::copy_data), 1u);
    EXPECT_EQ(slot_of(&Entry::get_entry_valid), 2u);
    EXPECT_EQ(slot_of(&Entry::set_entry_valid), 3u);
    EXPECT_EQ(slot_of(&Entry::build_key), 4u);
    EXPECT_EQ(slot_of(&Entry::construct), 5u);
    EXPECT_EQ(slot_of(&Entry::copy_key_data), 6u);
    EXPECT_EQ(slot_of(&Entry::clear_data), 7u);
    EXPECT_EQ(slot_of(&Entry::clear_key_data), 8u);
    EXPECT_EQ(slot_of(&Entry::compare_key), 9u);
    EXPECT_EQ(slot_of(&Entry::compare_data), 10u);
    EXPECT_EQ(slot_of(&Entry::compare_key_data), 11u);
    EXPECT_EQ(slot_of(&Entry::set_hint_hash), 12u);
    EXPECT_EQ(slot_of(&Entry::get_hint_hash), 13u);
    EXPECT_EQ(slot_of(&Entry::get_hint), 14u);
    EXPECT_EQ(slot_of(&Entry::get_more_hint_slot), 15u);
    EXPECT_EQ(slot_of(&Entry::is_hint_slot_valid), 16u);
    EXPECT_EQ(slot_of(&Entry::find_last_hint), 17u);
    EXPECT_EQ(slot_of(&Entry::tostr), 18u);
    EXPECT_EQ(slot_of(&Entry::clear), 19u);
    EXPECT_EQ(slot_of(&Entry::clear_hints), 20u);
    EXPECT_EQ(slot_of(&Entry::set_epoch), 21u);
    EXPECT_EQ(slot_of(&Entry::entry_size), 22u);
}

TEST(Vtable, OfTheEntryClasses) {
    expect_entry_slots<base_table_entry_t>();
    expect_entry_slots<flow_hash_entry_t>();
    EXPECT_EQ(sizeof(base_table_entry_t), 16u);
    EXPECT_EQ(sizeof(flow_hash_entry_t), 144u);
}

template <class Table>
void expect_table_slots() {
    EXPECT_EQ(slot_of(&Table::genhash_), 1u);
    EXPECT_EQ(slot_of(&Table::get_entry), 2u);
    EXPECT_EQ(slot_of(&Table::ftl_calloc), 3u);
    EXPECT_EQ(slot_of(&Table::ftl_free), 4u);
    EXPECT_EQ(slot_of(&Table::restore_state), 5u);
}

TEST(Vtable, OfTheFlowTable) {
    expect_table_slots<sdk::table::ftl_base>();
    expect_table_slots<sdk::table::flow_hash>();
    EXPECT_EQ(sizeof(sdk::table::flow_hash), sizeof(sdk::table::ftl_base));
}

}  // namespace
