// The order of the virtual operations: the host's engines are built apart and call by slot number.

#include "ftl/flow_hash.h"
#include "ftl/flow_hash_entry.h"
#include "tests/support/recording_host.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <link.h>

#include <bitset>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <random>

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

// --- Objects that the library made, called by slot number alone

using any_function = void (*)();

any_function slot_at(const void *object, unsigned slot) {
    const any_function *table;
    std::memcpy(&table, object, sizeof table);
    return table[slot - 1];
}

// References are passed as pointers. The type that a sanitizer would compare the function's with is
// just what a host built apart does not have.
template <class Result, class... Arguments>
__attribute__((no_sanitize("undefined"))) Result call(void *object, unsigned slot,
                                                      Arguments... arguments) {
    const auto function = reinterpret_cast<Result (*)(void *, Arguments...)>(slot_at(object, slot));
    return function(object, arguments...);
}

// Bits of an entry's body by what they are.
using body_bits = std::bitset<1024>;
body_bits run(unsigned first, unsigned width) {
    body_bits out;
    for (unsigned bit = first; bit < first + width; ++bit) out.set(bit);
    return out;
}
const body_bits key_bits = run(352, 128) | run(552, 472), data_bits = run(490, 22),
                valid_bit = run(91, 1), hint_bits = ~(key_bits | data_bits | valid_bit);

class MadeByTheLibrary : public testing::Test {
  protected:
    MadeByTheLibrary() {
        testing::GTEST_FLAG(death_test_style) = "fast";
        host_.reset();
        sdk::table::sdk_table_factory_params_t params = {};
        table_ = sdk::table::flow_hash::factory(&params);
        entry_ = call<void *, uint16_t, int>(table_, 2, 0, 0);
        other_ = call<void *, uint16_t, int>(table_, 2, 0, 1);
        std::mt19937_64 random(3);
        for (void *entry : {entry_, other_})
            for (unsigned i = 0; i < 128; ++i)
                static_cast<uint8_t *>(entry)[16 + i] = static_cast<uint8_t>(random());
        set_valid_word(5);
        before_ = bits_of(entry_);
        others_ = bits_of(other_);
        host_.forget_calls();
    }
    ~MadeByTheLibrary() override {
        for (void *entry : {entry_, other_})
            std::memset(static_cast<uint8_t *>(entry) + 8, 0, 8 + 128);
        std::free(table_);  // by the recording host's destroy nothing is freed
        host_.reset();
    }

    // An entry is its virtual table, the valid word and the body.
    static body_bits bits_of(const void *entry) {
        const auto *body = static_cast<const uint8_t *>(entry) + 16;
        body_bits out;
        for (unsigned bit = 0; bit < 1024; ++bit) out[bit] = body[bit / 8] >> bit % 8 & 1;
        return out;
    }
    static void put(void *entry, unsigned first, unsigned width, uint64_t value) {
        auto *body = static_cast<uint8_t *>(entry) + 16;
        for (unsigned i = 0; i < width; ++i) {
            const unsigned bit = first + i, mask = 1u << bit % 8;
            const unsigned rest = body[bit / 8] & ~mask;
            body[bit / 8] = static_cast<uint8_t>(rest | ((value >> i & 1) != 0 ? mask : 0u));
        }
    }
    static uint64_t number_at(const void *entry, unsigned first, unsigned width) {
        const body_bits bits = bits_of(entry);
        uint64_t out = 0;
        for (unsigned i = 0; i < width; ++i) out |= uint64_t{bits[first + i]} << i;
        return out;
    }
    uint64_t valid_word() const {
        uint64_t out;
        std::memcpy(&out, static_cast<const uint8_t *>(entry_) + 8, sizeof out);
        return out;
    }
    void set_valid_word(uint64_t value) {
        std::memcpy(static_cast<uint8_t *>(entry_) + 8, &value, sizeof value);
    }
    // The bits of `taken` come from the other entry, those of `cleared` are 0, the rest is kept.
    void expect_body(const body_bits &taken, const body_bits &cleared, uint64_t valid) {
        EXPECT_EQ(bits_of(entry_), (before_ & ~taken & ~cleared) | (others_ & taken));
        EXPECT_EQ(bits_of(other_), others_);
        EXPECT_EQ(valid_word(), valid);
    }

    halden::test::recording_host &host_ = halden::test::recording_host::get();
    void *table_, *entry_, *other_;
    body_bits before_, others_;
};

TEST_F(MadeByTheLibrary, Slot1CopyData) {
    call<void, void *>(entry_, 1, other_);
    expect_body(data_bits, {}, 5);
}

TEST_F(MadeByTheLibrary, Slots2And3GetAndSetEntryValid) {
    for (const unsigned v : {1u, 2u, 3u, 0xfeu, 0xffu}) {
        call<void, uint8_t>(entry_, 3, static_cast<uint8_t>(v));
        EXPECT_EQ(valid_word(), v & 1u);
        EXPECT_EQ(number_at(entry_, 91, 1), v & 1u);
        EXPECT_EQ(bits_of(entry_) & ~valid_bit, before_ & ~valid_bit);
        EXPECT_EQ(call<uint8_t>(entry_, 2), v & 1u);
    }
}

TEST_F(MadeByTheLibrary, Slot4BuildKey) {
    call<void, void *>(entry_, 4, other_);
    expect_body(key_bits, ~key_bits, 0);
}

TEST_F(MadeByTheLibrary, Slot5ConstructAborts) {
    EXPECT_DEATH((call<void *, uint32_t>(entry_, 5, 2)), "base_table_entry_t::construct");
}

TEST_F(MadeByTheLibrary, Slot6CopyKeyData) {
    call<void, void *>(entry_, 6, other_);
    expect_body(key_bits | data_bits, {}, 5);
}

TEST_F(MadeByTheLibrary, Slot7ClearData) {
    call<void>(entry_, 7);
    expect_body({}, data_bits, 5);
}

TEST_F(MadeByTheLibrary, Slot8ClearKeyData) {
    call<void>(entry_, 8);
    expect_body({}, key_bits | data_bits, 5);
}

// With equal and with different keys and data.
TEST_F(MadeByTheLibrary, Slots9To11Compare) {
    for (const bool same_key : {false, true})
        for (const bool same_data : {false, true}) {
            SCOPED_TRACE(testing::Message() << same_key << same_data);
            const body_bits taken =
                (same_key ? key_bits : body_bits()) | (same_data ? data_bits : body_bits());
            const body_bits bits = (before_ & ~taken) | (others_ & taken);
            for (unsigned bit = 0; bit < 1024; ++bit) put(entry_, bit, 1, bits[bit]);
            EXPECT_EQ((call<bool, void *>(entry_, 9, other_)), same_key);
            EXPECT_EQ((call<bool, void *>(entry_, 10, other_)), same_data);
            EXPECT_EQ((call<bool, void *>(entry_, 11, other_)), same_key && same_data);
        }
}

TEST_F(MadeByTheLibrary, Slots12To14HintsAndHashes) {
    call<void, uint32_t, uint32_t, uint32_t>(entry_, 12, 2, 0xffe54321, 0xfffffd23);
    EXPECT_EQ(number_at(entry_, 300, 21), 0x054321u);
    EXPECT_EQ(number_at(entry_, 321, 10), 0x123u);
    EXPECT_EQ(bits_of(entry_) & ~run(300, 31), before_ & ~run(300, 31));
    uint32_t hint = 0, hash = 0;
    call<void, uint32_t, uint32_t *, uint32_t *>(entry_, 13, 2, &hint, &hash);
    EXPECT_EQ(hint, 0x054321u);
    EXPECT_EQ(hash, 0x123u);
    hint = 0;
    call<void, uint32_t, uint32_t *>(entry_, 14, 2, &hint);
    EXPECT_EQ(hint, 0x054321u);

    call<void, uint32_t, uint32_t, uint32_t>(entry_, 12, 9, 0x1abcde, 0);
    EXPECT_EQ(number_at(entry_, 92, 21), 0x1abcdeu);
    EXPECT_EQ(number_at(entry_, 113, 1), 1u);
    call<void, uint32_t, uint32_t *, uint32_t *>(entry_, 13, 9, &hint, &hash);
    EXPECT_EQ(hint, 0x1abcdeu);
    EXPECT_EQ(hash, 1u);
    hint = 0;
    call<void, uint32_t, uint32_t *>(entry_, 14, 9, &hint);
    EXPECT_EQ(hint, 0x1abcdeu);
}

TEST_F(MadeByTheLibrary, Slots15And16MoreHintSlotAndValidSlots) {
    EXPECT_EQ(call<uint32_t>(entry_, 15), 9u);
    for (uint32_t slot = 0; slot < 12; ++slot)
        EXPECT_EQ((call<bool, uint32_t>(entry_, 16, slot)), slot >= 1 && slot <= 9) << slot;
}

TEST_F(MadeByTheLibrary, Slot17FindLastHint) {
    put(entry_, 92, 21, 7);
    put(entry_, 113, 1, 1);
    EXPECT_EQ(call<uint32_t>(entry_, 17), 9u);
    put(entry_, 113, 1, 0);
    put(entry_, 114, 21, 0);  // hint8
    put(entry_, 145, 21, 9);  // hint7
    EXPECT_EQ(call<uint32_t>(entry_, 17), 7u);
}

TEST_F(MadeByTheLibrary, Slot18ToString) {
    char text[2048] = {};
    const int printed = call<int, char *, uint32_t>(entry_, 18, text, sizeof text);
    EXPECT_EQ(std::strncmp(text, "key: metadata_flow_key_spare:", 29), 0) << text;
    const char *data = std::strstr(text, ", data: flow_idx: ");
    ASSERT_NE(data, nullptr) << text;
    EXPECT_EQ(static_cast<size_t>(printed), std::strlen(data + 2));
}

TEST_F(MadeByTheLibrary, Slot19Clear) {
    call<void>(entry_, 19);
    expect_body({}, ~body_bits(), 0);
}

TEST_F(MadeByTheLibrary, Slot20ClearHints) {
    call<void>(entry_, 20);
    expect_body({}, hint_bits, 5);
}

TEST_F(MadeByTheLibrary, Slot21SetEpochDoesNothing) {
    call<void, uint8_t>(entry_, 21, 0xff);
    expect_body({}, {}, 5);
}

TEST_F(MadeByTheLibrary, Slot22EntrySize) { EXPECT_EQ(call<uint32_t>(entry_, 22), 128u); }

TEST_F(MadeByTheLibrary, TableSlot1Genhash) {
    sdk::table::sdk_table_api_params_t params = {};
    params.entry = entry_;
    using record = sdk::table::sdk_table_api_params_t;
    EXPECT_EQ((call<uint32_t, record *>(table_, 1, &params)), 0u);
    EXPECT_TRUE(params.hash_valid);
    const uint32_t hash = params.hash_value;
    EXPECT_EQ(params.entry, entry_);
    expect_body({}, {}, 5);
    // A hash that is there is kept.
    params.hash_value = ~hash;
    EXPECT_EQ((call<uint32_t, record *>(table_, 1, &params)), 0u);
    EXPECT_EQ(params.hash_value, ~hash);
    // Another key, another hash.
    put(entry_, 680, 1, !before_[680]);
    params.hash_valid = false;
    EXPECT_EQ((call<uint32_t, record *>(table_, 1, &params)), 0u);
    EXPECT_NE(params.hash_value, hash);
    EXPECT_TRUE(host_.calls().empty());
}

TEST_F(MadeByTheLibrary, TableSlot2GetEntry) {
    const auto *first = static_cast<const uint8_t *>(entry_);
    EXPECT_EQ((call<void *, uint16_t, int>(table_, 2, 1, 0)), first + 8 * 144);
    EXPECT_EQ((call<void *, uint16_t, int>(table_, 2, 15, 7)), first + 127 * 144);
    EXPECT_TRUE(host_.calls().empty());
}

// The host's own three, through the table that the library made.
TEST_F(MadeByTheLibrary, TableSlots3To5AreTheHosts) {
    void *memory = call<void *, uint32_t, unsigned long, bool>(table_, 3, 6, 100, true);
    ASSERT_NE(memory, nullptr);
    call<void, uint32_t, void *, bool, unsigned long>(table_, 4, 7, memory, true, 200);
    host_.on_engine = [](const halden::test::call &) { return SDK_RET_ENTRY_EXISTS; };
    EXPECT_EQ(call<uint32_t>(table_, 5), 5u);

    const auto calls = host_.calls();
    ASSERT_EQ(calls.size(), 3u);
    EXPECT_EQ(calls[0].name, "ftl_base::ftl_calloc");
    EXPECT_EQ(calls[0].arguments[0].number, 6u);
    EXPECT_EQ(calls[0].arguments[1].number, 100u);
    EXPECT_EQ(calls[0].arguments[2].number, 1u);
    EXPECT_EQ(calls[1].name, "ftl_base::ftl_free");
    EXPECT_EQ(calls[1].arguments[0].number, 7u);
    EXPECT_EQ(calls[1].arguments[1].pointer, memory);
    EXPECT_EQ(calls[1].arguments[2].number, 1u);
    EXPECT_EQ(calls[1].arguments[3].number, 200u);
    EXPECT_EQ(calls[2].name, "ftl_base::restore_state");
    EXPECT_EQ(calls[2].arguments[0].pointer, table_);
}

#if !HALDEN_SANITIZED  // a sanitizer pads the tables

// A virtual table has two words in front of its slots.
size_t slots_in(const char *name) {
    const void *found = dlsym(RTLD_DEFAULT, name);
    Dl_info where;
    void *symbol = nullptr;
    if (found == nullptr || dladdr1(found, &where, &symbol, RTLD_DL_SYMENT) == 0 ||
        symbol == nullptr)
        return 0;
    return static_cast<const ElfW(Sym) *>(symbol)->st_size / sizeof(void *) - 2;
}

TEST_F(MadeByTheLibrary, NoSlotIsBehindTheLast) {
    EXPECT_EQ(slots_in("_ZTV17flow_hash_entry_t"), 22u);
    EXPECT_EQ(slots_in("_ZTV18base_table_entry_t"), 22u);
    EXPECT_EQ(slots_in("_ZTVN3sdk5table9flow_hashE"), 5u);
}

#endif

}  // namespace
