// Engines that are made while a call fails: whole, or not at all.

#include "ftl/flow_hash.h"
#include "host/state/table_state.h"
#include "host/trace/trace.h"
#include "tests/model/shadow.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace halden;
using host::asic_call;
using test::change;
using test::shadow;
using test::shadow_kind;
using testing::IsEmpty;

class EngineStart : public testing::Test {
  protected:
    void SetUp() override { host::trace::set_level("off"); }
    void TearDown() override { host::trace::set_level("info"); }

    void fill() {
        const host::table_state tables(*hardware_);
        for (uint16_t table = 0; table < shadow::tables().size(); ++table)
            for (uint16_t entry = 0; entry < shadow::tables()[table].candidates.size(); ++entry) {
                const test::operation op{change::create, table, entry, entry};
                if (shadow::run(*hardware_, op) == 0) wanted_.note(op);
            }
        ASSERT_THAT(wanted_.differences(*hardware_), IsEmpty());
    }

    template <class Engine, class... Given>
    bool makes(Given... given) {
        Engine *made = Engine::factory(given...);
        Engine::destroy(made);
        return made != nullptr;
    }
    // As the table API's state makes the engine of the table.
    bool makes(const test::shadow_table &t) {
        sdk::table::sdk_table_factory_params_t params = {};
        params.table_id = t.id;
        switch (t.kind) {
            case shadow_kind::index:
                return makes<sdk::table::directmap>(t.name.c_str(), t.id, hardware_->depth(t.id),
                                                    static_cast<uint16_t>(1 + t.api.data_bytes),
                                                    false, true, sdk::table::table_health_cb{});
            case shadow_kind::hash:
                return makes<sdk::table::slhash>(&params);
            case shadow_kind::ternary:
                return makes<sdk::table::sltcam>(&params);
            default:
                return makes<sdk::table::flow_hash>(&params);
        }
    }

    std::unique_ptr<host::adapter> hardware_ = host::adapter::anonymous(shadow::depths);
    host::scoped_current current_{*hardware_};
    shadow wanted_;
};

// Without its properties or its memory there is no engine; one that could not read a row is made,
// and leaves that row alone.
TEST_F(EngineStart, IsWholeOrNotAtAllAtEveryCallThatFailsAndLosesNothing) {
    fill();
    unsigned refused = 0, unread = 0;
    for (const test::shadow_table &t : shadow::tables()) {
        if (t.kind >= shadow_kind::raw_sram) continue;
        SCOPED_TRACE(t.name);
        for (unsigned kind = 0; kind < host::asic_calls; ++kind) {
            const auto call = static_cast<asic_call>(kind);
            for (uint32_t skip = 0;; ++skip) {
                hardware_->faults().inject({.call = call, .skip = skip});
                const bool made = makes(t);
                const bool met = hardware_->faults().never_met().empty();
                hardware_->faults().clear();
                const bool is_read = call == asic_call::tcam_read;
                ASSERT_EQ(made, !met || is_read)
                    << host::name_of(call) << ", occurrence " << skip + 1;
                refused += !made;
                unread += made && met;
                if (!met) break;
            }
        }
    }
    EXPECT_GE(refused, 2u * 32);
    EXPECT_GT(unread, 2000u);  // every row of the TCAMs
    const host::table_state tables(*hardware_);
    EXPECT_THAT(wanted_.differences(*hardware_), IsEmpty());
}

// A table without its engine ends the process, with its name.
TEST_F(EngineStart, OfTheWholeStateIsFatalWithoutAnEngine) {
    hardware_->faults().inject({.call = asic_call::properties, .table = 24});
    EXPECT_DEATH(host::table_state{*hardware_}, "l2seg_tbl\\(\\) != __null");
    hardware_->faults().clear();
    hardware_->faults().inject({.call = asic_call::allocate, .table = 8});
    EXPECT_DEATH(host::table_state{*hardware_}, "tunnel_terminate_v4_tbl\\(\\) != __null");
}

}  // namespace
