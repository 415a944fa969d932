// Every name of an action and of an error action, and what unknown ids answer.

#include <algorithm>
#include <climits>
#include <cstring>
#include <string>

#include "gtest/gtest.h"
#include "p4pd.h"

namespace {

struct table_names {
    uint32_t id;
    const char *constant;
    const char *name;
    const char *error_action;
};
constexpr table_names tables[] = {
#define TABLE_NAMES(id, constant, name, error_action) {id, constant, name, error_action},
#define ACTION_NAMES(id, action, constant, name)
#include "tests/names/names.def"
#undef TABLE_NAMES
#undef ACTION_NAMES
};

struct action_name {
    uint32_t table;
    int action;
    const char *name;
};
constexpr action_name actions[] = {
#define TABLE_NAMES(id, constant, name, error_action)
#define ACTION_NAMES(id, action, constant, name) {id, action, name},
#include "tests/names/names.def"
#undef TABLE_NAMES
#undef ACTION_NAMES
};

// A caller's buffer, full of what a name must replace. Bytes behind the terminating zero stay.
class name_buffer {
  public:
    explicit name_buffer(size_t room) : bytes_(room + guard, filler) {}
    char *data() { return bytes_.data(); }
    std::string name() const { return bytes_.c_str(); }
    // Whether nothing but the name and its zero was written.
    bool only_the_name_written() const {
        return bytes_.find_first_not_of(filler, name().size() + 1) == std::string::npos;
    }

  private:
    static constexpr char filler = 'Z';
    static constexpr size_t guard = 16;
    std::string bytes_;
};

std::string action_name_of(uint32_t table, int action) {
    name_buffer buffer(59);
    p4pd_get_action_name(table, action, buffer.data());
    EXPECT_TRUE(buffer.only_the_name_written()) << "table " << table << ", action " << action;
    return buffer.name();
}

std::string error_action_name_of(uint32_t table) {
    name_buffer buffer(35);
    p4pd_get_error_action_name(table, buffer.data());
    EXPECT_TRUE(buffer.only_the_name_written()) << "table " << table;
    return buffer.name();
}

constexpr uint32_t unknown_tables[] = {0, 49, 50, 255, 256 + 16, 0x80000000u, UINT32_MAX};

TEST(ActionNames, TheListHoldsEveryActionOfEveryTable) {
    EXPECT_EQ(std::size(tables), 48u);
    EXPECT_EQ(std::size(actions), 80u);
    for (const table_names &table : tables) {
        int count = 0;
        for (const action_name &action : actions) {
            if (action.table != table.id) continue;
            EXPECT_EQ(action.action, count) << table.name;
            ++count;
        }
        EXPECT_EQ(p4pd_get_max_action_id(table.id), count) << table.name;
    }
}

TEST(ActionNames, EveryActionOfEveryTable) {
    for (const action_name &want : actions)
        EXPECT_EQ(action_name_of(want.table, want.action), want.name)
            << "table " << want.table << ", action " << want.action;
}

// The names that the rules call out one by one, typed a second time.
TEST(ActionNames, TheFlowTablesShareOneName) {
    EXPECT_EQ(action_name_of(1, 0), "flow_hash");
    EXPECT_EQ(action_name_of(2, 0), "flow_hash");
}

TEST(ActionNames, TheReceiveSideScalingTablesKeepTheCaseOfTheirControl) {
    EXPECT_EQ(action_name_of(45, 0), "HaldenEgressPipeline_P4PlusRewrite_p4plus_app_rss_0_a");
    EXPECT_EQ(action_name_of(46, 0), "HaldenEgressPipeline_P4PlusRewrite_p4plus_app_rss_mirror_a");
    EXPECT_EQ(action_name_of(47, 0), "HaldenEgressPipeline_P4PlusRewrite_p4plus_app_rss_1_a");
    EXPECT_EQ(action_name_of(48, 0), "HaldenEgressPipeline_P4PlusRewrite_p4plus_app_rss_2_a");
}

TEST(ActionNames, TheLongestTakes59BytesWithItsZero) {
    size_t longest = 0;
    for (const action_name &action : actions)
        longest = std::max(longest, action_name_of(action.table, action.action).size());
    EXPECT_EQ(longest, 58u);
    EXPECT_EQ(action_name_of(46, 0).size(), 58u);
}

// A negative action id.
TEST(ActionNames, ANegativeActionIdGivesTheEmptyString) {
    for (const table_names &table : tables)
        for (const int action : {-1, -2, -22, -128, -256, INT_MIN, INT_MIN + 21})
            EXPECT_EQ(action_name_of(table.id, action), "") << table.name << ' ' << action;
}

// A too large action id: the first beyond the table's last, and ids that fit it when cut to a byte.
TEST(ActionNames, AnActionIdBeyondTheLastGivesTheEmptyString) {
    for (const table_names &table : tables) {
        int beyond = 0;
        for (const action_name &action : actions)
            if (action.table == table.id) beyond = action.action + 1;
        for (const int action : {beyond, beyond + 1, 22, 23, 255, 256, 65536, INT_MAX})
            EXPECT_EQ(action_name_of(table.id, action), "") << table.name << ' ' << action;
    }
}

TEST(ActionNames, AnUnknownTableGivesTheEmptyString) {
    for (const uint32_t table : unknown_tables)
        for (const int action : {0, 1, -1}) EXPECT_EQ(action_name_of(table, action), "") << table;
}

TEST(ErrorActionNames, EveryTable) {
    for (const table_names &want : tables)
        EXPECT_EQ(error_action_name_of(want.id), want.error_action) << "table " << want.id;
}

TEST(ErrorActionNames, TheLongestTakes35BytesWithItsZero) {
    EXPECT_EQ(error_action_name_of(10), "tunnel_terminate_sa_v4_otcam_error");
    EXPECT_EQ(error_action_name_of(10).size(), 34u);
    for (const table_names &table : tables)
        EXPECT_LE(error_action_name_of(table.id).size(), 34u) << table.name;
}

TEST(ErrorActionNames, AnUnknownTableGivesTheEmptyString) {
    for (const uint32_t table : unknown_tables) EXPECT_EQ(error_action_name_of(table), "") << table;
}

}  // namespace
