// An action without a program ends the process: the exact report of each writer that asks for one.

#include <errno.h>

#include <csignal>
#include <cstdio>

#include "gmock/gmock.h"
#include "tests/contract/writer_calls.h"

namespace halden::test {
namespace {

struct asserting_table {
    uint32_t id;
    const char *name;
    unsigned line;
    const char *function;
};

constexpr asserting_table asserting_tables[] = {
    {12, "flow_key_native", 10274,
     "p4pd_error_t flow_key_native_entry_write(uint32_t, uint32_t, uint8_t*, uint8_t*, "
     "flow_key_native_actiondata_t*, flow_key_native_actiondata_t*, bool)"},
    {13, "flow_key_tunneled", 10768,
     "p4pd_error_t flow_key_tunneled_entry_write(uint32_t, uint32_t, uint8_t*, uint8_t*, "
     "flow_key_tunneled_actiondata_t*, flow_key_tunneled_actiondata_t*, bool)"},
    {15, "checksum", 18085,
     "p4pd_error_t checksum_entry_write(uint32_t, uint32_t, uint8_t*, uint8_t*, "
     "checksum_actiondata_t*, checksum_actiondata_t*, bool)"},
    {22, "conntrack_ingress", 14598,
     "p4pd_error_t conntrack_ingress_entry_write(uint32_t, uint32_t, "
     "conntrack_ingress_actiondata_t*, conntrack_ingress_actiondata_t*, bool)"},
    {23, "conntrack_egress", 15287,
     "p4pd_error_t conntrack_egress_entry_write(uint32_t, uint32_t, "
     "conntrack_egress_actiondata_t*, conntrack_egress_actiondata_t*, bool)"},
    {37, "output_mapping", 24110,
     "p4pd_error_t output_mapping_entry_write(uint32_t, uint32_t, output_mapping_actiondata_t*, "
     "output_mapping_actiondata_t*, bool)"},
    {38, "p4plus_app", 24468,
     "p4pd_error_t p4plus_app_entry_write(uint32_t, uint32_t, p4plus_app_actiondata_t*, "
     "p4plus_app_actiondata_t*, bool)"},
};

class WriteDeathBase : public EntryWrite {
  protected:
    // Names each imported call on standard error, but the copies of keys, and knows no program.
    void begin_without_programs(uint32_t id, uint8_t action) {
        testing::GTEST_FLAG(death_test_style) = "fast";
        begin();
        use_record(sizes_of(id).record_bytes, action);
        use_mask_record(sizes_of(id).record_bytes, 0);
        host_.on_action_pc = [](uint32_t, uint8_t) { return uint8_t{0xff}; };
        host_.on_call = [](const call &made) {
            if (made.name != "p4pd_utils_copy_into_hwentry")
                std::fprintf(stderr, "%s\n", made.name.c_str());
        };
    }

    uint8_t key_[96] = {}, key_mask_[96] = {};
};

class WriteDeathTest : public WriteDeathBase, public testing::WithParamInterface<asserting_table> {
  protected:
    // Nothing is called before the question, nothing between it and the report.
    auto report() const {
        return testing::StartsWith(
            "asicpd_get_action_pc\n" + std::string(program_invocation_short_name) +
            ": p4gen/halden/src/p4pd:" + std::to_string(GetParam().line) + ": " +
            GetParam().function + ": Assertion `action_pc != 0xff' failed.\n");
    }

    // Every action id, the first unknown one and the last byte there is.
    template <class One>
    void for_every_action(One &&one) {
        for (uint8_t action : action_ids(sizes_of(GetParam().id).actions)) {
            SCOPED_TRACE(unsigned{action});
            begin_without_programs(GetParam().id, action);
            one();
        }
    }
};

TEST_P(WriteDeathTest, AProgramCounterOf0xffAbortsEveryWriter) {
    const uint32_t id = GetParam().id;
    for_every_action([&] {
        for (entry_point way : entry_points)
            EXPECT_EXIT(write(way, {id, 5, key_, key_mask_, record_.data(), nullptr, false}),
                        testing::KilledBySignal(SIGABRT), report());
    });
}

TEST_P(WriteDeathTest, AProgramCounterOf0xffAbortsAnInstall) {
    const uint32_t id = GetParam().id;
    for_every_action([&] {
        EXPECT_EXIT(p4pd_entry_install(id, 5, key_, key_mask_, record_.data()),
                    testing::KilledBySignal(SIGABRT), report());
    });
}

// A keyed table refuses the mask before it asks; the others ask before they look at it.
TEST_P(WriteDeathTest, ADataMaskIsRefusedByAKeyedTableAndNoneOfTheOthersConcern) {
    const uint32_t id = GetParam().id;
    for_every_action([&] {
        const write_request request{id,  5, key_, key_mask_, record_.data(), mask_record_.data(),
                                    true};
        for (entry_point way : {entry_point::with_datamask, entry_point::named_writer}) {
            if (id <= 15) {
                EXPECT_EQ(write(way, request), -1);
                EXPECT_TRUE(calls_are({}));
            } else {
                EXPECT_EXIT(write(way, request), testing::KilledBySignal(SIGABRT), report());
            }
        }
    });
}

INSTANTIATE_TEST_SUITE_P(Tables, WriteDeathTest, testing::ValuesIn(asserting_tables), table_name);

// A table of one action does not ask, so no answer can end it.
TEST_F(WriteDeathBase, TablesOfOneActionAreWrittenWithoutAProgram) {
    for (uint32_t id = 1; id <= 48; ++id) {
        if (sizes_of(id).actions != 1) continue;
        SCOPED_TRACE(id);
        begin();
        use_record(sizes_of(id).record_bytes, 0);
        host_.on_action_pc = [](uint32_t, uint8_t) { return uint8_t{0xff}; };
        EXPECT_EQ(p4pd_entry_write(id, 5, key_, key_mask_, record_.data(), false), 0);
        for (const call &made : host_.calls()) EXPECT_NE(made.name, action_pc_call);
    }
}

// 0xff alone means that there is no program.
TEST_F(WriteDeathBase, EveryOtherProgramCounterIsWritten) {
    for (uint32_t id : {12u, 13u, 15u, 22u, 23u, 37u, 38u}) {
        for (unsigned pc = 0; pc < 0xff; ++pc) {
            begin();
            use_record(sizes_of(id).record_bytes, 0);
            host_.on_action_pc = [pc](uint32_t, uint8_t) { return static_cast<uint8_t>(pc); };
            EXPECT_EQ(p4pd_entry_write(id, 5, key_, key_mask_, record_.data(), false), 0);
            for (const call &made : host_.calls())
                if (made.name == prepare_call) {
                    EXPECT_EQ(made.arguments[1].number, pc);
                }
        }
    }
}

}  // namespace
}  // namespace halden::test
