// Where an operation of a flow entry uses another one, a derived class sees its own override used;
// and where it names no slot, or no entry class, it aborts.

#include "tests/flow/entry_model.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace halden::test {
namespace {

using calls = std::vector<std::string>;

// Keeps the names of the operations that others call.
class noting_entry : public flow_hash_entry_t {
  public:
    void copy_data(void *src) override {
        made.push_back("copy_data");
        EXPECT_EQ(src, expected_source);
    }
    void set_entry_valid(uint8_t v) override {
        made.push_back("set_entry_valid " + std::to_string(v));
    }
    void clear_data() override { made.push_back("clear_data"); }
    void clear_hints() override { made.push_back("clear_hints"); }
    bool compare_key(void *other) override {
        made.push_back("compare_key");
        EXPECT_EQ(other, expected_source);
        return keys_equal;
    }
    bool compare_data(void *other) override {
        made.push_back("compare_data");
        EXPECT_EQ(other, expected_source);
        return data_equal;
    }
    uint32_t get_more_hint_slot() override {
        made.push_back("get_more_hint_slot");
        return more_slot;
    }

    calls made;
    void *expected_source = nullptr;
    bool keys_equal = true, data_equal = true;
    uint32_t more_slot = 9;
};

// Bits of the fields that the overrides above leave to themselves.
const entry_bits not_key = ~mask_of(part::key);

class Override : public testing::Test {
  protected:
    Override() {
        std::mt19937_64 random(21);
        bits_ = random_bits(random);
        other_bits_ = random_bits(random);
        set_bits(entry_, bits_);
        set_bits(other_, other_bits_);
        entry_.expected_source = &other_;
        entry_.valid = 77;
    }
    // The key was taken or cleared; whatever an override would have done was not.
    void expect_rest_left() {
        EXPECT_EQ(bits_of(entry_) & not_key, bits_ & not_key);
        EXPECT_EQ(entry_.valid, 77u);
    }

    noting_entry entry_;
    flow_hash_entry_t other_;
    base_table_entry_t &base_ = entry_;
    entry_bits bits_, other_bits_;
};

TEST_F(Override, BuildKeyClearsDataThenHintsThenTheValidBit) {
    base_.build_key(&other_);
    EXPECT_EQ(entry_.made, (calls{"clear_data", "clear_hints", "set_entry_valid 0"}));
    EXPECT_EQ(bits_of(entry_) & ~not_key, other_bits_ & ~not_key);
    expect_rest_left();
}

TEST_F(Override, CopyKeyDataCopiesTheDataByCopyData) {
    base_.copy_key_data(&other_);
    EXPECT_EQ(entry_.made, calls{"copy_data"});
    EXPECT_EQ(bits_of(entry_) & ~not_key, other_bits_ & ~not_key);
    expect_rest_left();
}

TEST_F(Override, ClearKeyDataClearsTheDataByClearData) {
    base_.clear_key_data();
    EXPECT_EQ(entry_.made, calls{"clear_data"});
    EXPECT_TRUE((bits_of(entry_) & ~not_key).none());
    expect_rest_left();
}

TEST_F(Override, ClearClearsHintsThenDataThenTheValidBit) {
    base_.clear();
    EXPECT_EQ(entry_.made, (calls{"clear_hints", "clear_data", "set_entry_valid 0"}));
    EXPECT_TRUE((bits_of(entry_) & ~not_key).none());
    expect_rest_left();
}

TEST_F(Override, CompareKeyDataStopsAtTheFirstDifference) {
    EXPECT_TRUE(base_.compare_key_data(&other_));
    EXPECT_EQ(entry_.made, (calls{"compare_key", "compare_data"}));
    entry_.made.clear();
    entry_.data_equal = false;
    EXPECT_FALSE(base_.compare_key_data(&other_));
    EXPECT_EQ(entry_.made, (calls{"compare_key", "compare_data"}));
    entry_.made.clear();
    entry_.keys_equal = false;
    EXPECT_FALSE(base_.compare_key_data(&other_));
    EXPECT_EQ(entry_.made, calls{"compare_key"});
}

TEST_F(Override, SlotsAreValidUpToTheOverriddenMoreSlot) {
    entry_.more_slot = 5;
    EXPECT_TRUE(base_.is_hint_slot_valid(5));
    EXPECT_FALSE(base_.is_hint_slot_valid(6));
    EXPECT_EQ(entry_.made, (calls{"get_more_hint_slot", "get_more_hint_slot"}));
    EXPECT_FALSE(base_.is_hint_slot_valid(0));
}

TEST_F(Override, TheLastHintIsTheOverriddenMoreSlotWhenTheSpillPairIsInUse) {
    entry_.more_slot = 17;
    set_bits(entry_, with(with(bits_, "more_hints", 3), "more_hashes", 1));
    EXPECT_EQ(base_.find_last_hint(), 17u);
    EXPECT_EQ(entry_.made, calls{"get_more_hint_slot"});
    entry_.made.clear();
    set_bits(entry_, with(with(with(bits_, "hint8", 0), "hint7", 1), "more_hashes", 0));
    EXPECT_EQ(base_.find_last_hint(), 7u);
    EXPECT_TRUE(entry_.made.empty());
}

// --- Aborts

class Death : public testing::Test {
  protected:
    // No thread runs, and the other style starts the program anew, which emulators cannot do.
    Death() { testing::GTEST_FLAG(death_test_style) = "fast"; }
    flow_hash_entry_t entry_;
    base_table_entry_t &base_ = entry_;
    uint32_t hint_ = 0, hash_ = 0;
};

std::string literally(const std::string &text) {
    std::string pattern;
    for (const char c : text) {
        if (std::string("\\^$.|?*+()[]{}").find(c) != std::string::npos) pattern += '\\';
        pattern += c;
    }
    return pattern;
}

TEST_F(Death, SlotZeroInSetHintHash) {
    EXPECT_DEATH(base_.set_hint_hash(0, 1, 1),
                 literally("p4gen/p4/include/ftl:242: virtual void "
                           "flow_hash_entry_t::set_hint_hash(uint32_t, uint32_t, uint32_t): "
                           "Assertion `slot' failed."));
}

TEST_F(Death, SlotZeroInGetHintHash) {
    EXPECT_DEATH(base_.get_hint_hash(0, hint_, hash_),
                 literally("p4gen/p4/include/ftl:284: virtual void "
                           "flow_hash_entry_t::get_hint_hash(uint32_t, uint32_t&, uint32_t&): "
                           "Assertion `slot' failed."));
}

TEST_F(Death, SlotZeroInGetHint) {
    EXPECT_DEATH(base_.get_hint(0, hint_),
                 literally("p4gen/p4/include/ftl:326: virtual void "
                           "flow_hash_entry_t::get_hint(uint32_t, uint32_t&): "
                           "Assertion `slot' failed."));
}

TEST_F(Death, ConstructOfTheBaseClass) {
    for (const uint32_t table : {0u, 2u})
        EXPECT_DEATH(base_.construct(table),
                     literally("sdk/include/sdk/base_table_entry:19: virtual base_table_entry_t* "
                               "base_table_entry_t::construct(uint32_t): Assertion `0' failed."));
}

}  // namespace
}  // namespace halden::test
