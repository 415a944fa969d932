// The texts of both decoders, one file per table: every action, and every record that can be left
// out. The records are made by the rule in `sample`, so that the files can be read beside it.

#include <fstream>
#include <iterator>

#include "gtest/gtest.h"
#include "tests/decode/decoding.h"

namespace halden::decode_tests {
namespace {

bytes sample_key(uint32_t id) {
    bytes out(reference::table_of(id).key_bytes);
    for (size_t i = 0; i < out.size(); ++i) out[i] = static_cast<uint8_t>(0x35 * i + 7 * id + 1);
    return out;
}

bytes sample_mask(uint32_t id) {
    bytes out(reference::table_of(id).key_bytes);
    for (size_t i = 0; i < out.size(); ++i) out[i] = static_cast<uint8_t>(~(0x1d * i + id));
    return out;
}

bytes sample_data(uint32_t id, uint32_t action) {
    bytes out(reference::table_of(id).data_bytes);
    out[0] = static_cast<uint8_t>(action);
    for (size_t i = 1; i < out.size(); ++i)
        out[i] = static_cast<uint8_t>(0x4b * i + 3 * id + 5 * action + 2);
    return out;
}

class Golden : public testing::TestWithParam<uint32_t> {
  protected:
    Golden() { answer_programs(); }
    uint32_t id() const { return GetParam(); }
    uint32_t index() const { return 0x1000 + id(); }
    const reference::table &facts() const { return reference::table_of(id()); }

    void add(const std::string &heading, const printed &text) {
        EXPECT_EQ(text.result, 0) << heading;
        all_ += "### " + heading + "\n" + text.buffer.c_str();
    }
    void add_records(const std::string &heading, uint32_t action, bool key = true,
                     bool mask = true) {
        const bytes k = sample_key(id()), m = sample_mask(id()), d = sample_data(id(), action);
        add("records, " + heading,
            record_text(id(), index(), {key ? &k : nullptr, mask ? &m : nullptr, &d}, roomy));
    }
    void add_row(const std::string &heading, uint32_t action, bool second_word = false) {
        raw_entry entry =
            data_entry(id(), sample_key(id()), sample_data(id(), action), program_of(action));
        if (second_word) entry.second = entry.first;
        add("entry, " + heading, entry_text(id(), index(), entry, roomy));
    }
    void all_records();
    void all_entries();

    std::string all_;
};

void Golden::all_records() {
    for (uint32_t action = 0; action < facts().actions; ++action)
        add_records("action " + std::to_string(action), action);
    if (facts().has_key()) add_records("action 0, no key", 0, false);
    if (facts().has_tcam()) {
        add_records("action 0, no mask", 0, true, false);
        add_records("action 0, neither key nor mask", 0, false, false);
    }
    const bytes key = sample_key(id()), mask = sample_mask(id());
    add("records, no action data", record_text(id(), index(), {&key, &mask, nullptr}, roomy));
    add_records("action " + std::to_string(facts().actions), facts().actions);
}

void Golden::all_entries() {
    if (facts().has_tcam())
        add("entry, both words",
            entry_text(id(), index(), key_entry(id(), sample_key(id()), sample_mask(id())), roomy));
    for (uint32_t action = 0; action < facts().actions; ++action)
        add_row("action " + std::to_string(action), action);
    if (!facts().has_tcam()) add_row("action 0, second word given", 0, true);
    if (read_tests::has_programs(id())) add_row("unknown program", facts().actions);
}

TEST_P(Golden, EveryText) {
    const std::string path = std::string(HALDEN_GOLDEN_TEXTS "/") + facts().name + ".txt";
    std::ifstream file(path);
    ASSERT_TRUE(file.good()) << path;
    const std::string want{std::istreambuf_iterator<char>(file), {}};
    ASSERT_FALSE(want.empty()) << path;
    all_records();
    all_entries();
    EXPECT_EQ(all_, want) << path;
}

INSTANTIATE_TEST_SUITE_P(Tables, Golden, testing::Range(1u, 49u),
                         [](const auto &tested) { return read_tests::table_name(tested.param); });

}  // namespace
}  // namespace halden::decode_tests
