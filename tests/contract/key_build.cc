#include "tests/contract/key_build.h"

namespace halden::test {

namespace {

void append_exact(expected &calls, const key_copy &c) {
    calls.push_back(
        {key_copy_call, {at("key"), c.bit, at("software key", c.byte), c.from, c.width}});
}

void append_ternary(expected &calls, const key_copy &c, const software_key &from) {
    const uint8_t key = from.key[c.byte], mask = from.mask[c.byte];
    const auto both = static_cast<uint8_t>(key & mask);
    const auto mask_alone = static_cast<uint8_t>(mask & ~key);
    calls.push_back({key_copy_call, {at("key"), c.bit, holding{{both}}, c.from, c.width}});
    calls.push_back(
        {key_copy_call, {at("key mask"), c.bit, holding{{mask_alone}}, c.from, c.width}});
}

bool may_repeat(uint32_t id) { return id == 4 || id == 10; }

}  // namespace

expected key_calls(uint32_t id, const software_key &from, bool repeat) {
    expected calls;
    for (const key_table &t : hash_keys) {
        if (t.id != id) continue;
        if (repeat) append_exact(calls, t.copies[0]);
        for (const key_copy &c : t.copies) append_exact(calls, c);
        return calls;
    }
    for (const key_table &t : ternary_keys) {
        if (t.id != id) continue;
        if (repeat) append_ternary(calls, t.copies[0], from);
        for (const key_copy &c : t.copies) append_ternary(calls, c, from);
        return calls;
    }
    ADD_FAILURE() << "no table with a key: " << id;
    return calls;
}

testing::AssertionResult key_calls_are(uint32_t id, const software_key &from,
                                       const expected &rest) {
    expected once = key_calls(id, from);
    once.insert(once.end(), rest.begin(), rest.end());
    if (may_repeat(id)) {
        expected twice = key_calls(id, from, true);
        twice.insert(twice.end(), rest.begin(), rest.end());
        if (const testing::AssertionResult result = calls_are(twice)) return result;
    }
    return calls_are(once);
}

}  // namespace halden::test
