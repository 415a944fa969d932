#include "tests/decode/decoding.h"

#include <algorithm>
#include <functional>

#include "gtest/gtest.h"
#include "p4pd.h"
#include "tests/support/recording_host.h"

namespace halden::decode_tests {

namespace {

// A heap block of its own for every call: a sanitizer sees a step beyond it, and the guard shows
// one without.
constexpr size_t guard = 8;

printed decode_into(size_t size, const std::function<int(char *, uint16_t)> &decode) {
    std::string block(guard + size + guard, 'Z');
    printed out{decode(block.data() + guard, static_cast<uint16_t>(size)), {}};
    EXPECT_EQ(block.substr(0, guard), std::string(guard, 'Z'));
    EXPECT_EQ(block.substr(guard + size), std::string(guard, 'Z'));
    out.buffer = block.substr(guard, size);
    return out;
}

// The decoders take their input by pointers to what could be written; they do not write.
void *at(bytes &copy, const bytes *record) {
    if (record == nullptr) return nullptr;
    copy = *record;
    return copy.data();
}

bytes operator&(bytes left, const bytes &right) {
    for (size_t i = 0; i < left.size(); ++i) left[i] &= right.at(i);
    return left;
}

uint16_t whole_words(uint32_t bits) { return static_cast<uint16_t>((bits + 15) / 16 * 16); }

}  // namespace

printed record_text(uint32_t id, uint32_t index, const records &given, size_t size) {
    bytes key, mask, data;
    void *const key_at = at(key, given.key), *const mask_at = at(mask, given.mask),
                *const data_at = at(data, given.data);
    const printed out = decode_into(size, [&](char *buffer, uint16_t length) {
        return p4pd_table_ds_decoded_string_get(id, index, key_at, mask_at, data_at, buffer,
                                                length);
    });
    EXPECT_TRUE(given.key == nullptr || key == *given.key);
    EXPECT_TRUE(given.mask == nullptr || mask == *given.mask);
    EXPECT_TRUE(given.data == nullptr || data == *given.data);
    return out;
}

printed entry_text(uint32_t id, uint32_t index, const raw_entry &entry, size_t size) {
    bytes first = entry.first, second = entry.second;
    const printed out = decode_into(size, [&](char *buffer, uint16_t length) {
        return p4pd_table_entry_decoded_string_get(id, index, first.data(),
                                                   second.empty() ? nullptr : second.data(),
                                                   entry.bits, buffer, length);
    });
    EXPECT_EQ(first, entry.first) << "the entry is the caller's";
    EXPECT_EQ(second, entry.second);
    return out;
}

uint8_t program_of(uint32_t action) { return static_cast<uint8_t>(0x60 + action); }

void answer_programs() {
    test::recording_host &host = test::recording_host::get();
    host.reset();
    host.on_action_id = [](uint32_t, uint8_t program) {
        return static_cast<uint8_t>(program - program_of(0));
    };
}

raw_entry key_entry(uint32_t id, const bytes &key, const bytes &mask) {
    const uint32_t width = reference::table_of(id).tcam_width;
    const reference::key_images images = reference::build_key(id, key, mask, width / 8);
    return {reference::as_stored(images.key, width), reference::as_stored(images.mask, width),
            static_cast<uint16_t>(width)};
}

raw_entry data_entry(uint32_t id, const bytes &key, const bytes &data, uint8_t program) {
    const reference::table &facts = reference::table_of(id);
    bytes key_image(128);
    if (facts.has_key() && !facts.has_tcam())
        key_image = reference::build_key(id, key, key, 128).key;
    const uint8_t pc = read_tests::has_programs(id) ? program : reference::no_pc;
    const reference::image row = reference::entry(id, pc, key_image, data);
    if (facts.has_tcam())
        return {reference::as_stored(row.data, row.bits), {}, whole_words(row.bits)};
    bytes raw = row.data;
    raw.resize(std::max(1u, (row.bits + 7) / 8));  // a keyless row has no bits, but an address
    return {raw, {}, static_cast<uint16_t>(row.bits)};
}

bytes kept_key(uint32_t id, const bytes &key) { return key & read_tests::kept_key_bits(id); }
bytes kept_key(uint32_t id, const bytes &key, const bytes &mask) {
    return kept_key(id, key) & mask;
}
bytes kept_data(uint32_t id, const bytes &data) {
    return data & read_tests::kept_data_bits(id, data.at(0));
}

}  // namespace halden::decode_tests
