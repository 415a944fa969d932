// Faults on demand: which call they meet, how often, and that a refused call changes nothing.

#include "host/faults/faults.h"

#include "tests/host/adapter_fixture.h"

#include <chrono>

namespace {

using namespace halden::test;
using halden::host::asic_call;
using halden::host::call_record;
using halden::host::every_time;
using testing::ElementsAre;
using testing::IsEmpty;

class Faults : public AdapterTest {
  protected:
    sdk_ret_t put(uint32_t table, uint32_t row, uint8_t byte) {
        const bytes image(8, byte);
        return adapter_->sram_write(table, row, image.data(), 64, nullptr);
    }
    uint8_t stored(uint32_t table, uint32_t row) {
        bytes image = room();
        uint16_t bits = 0;
        EXPECT_EQ(adapter_->sram_read(table, row, image.data(), &bits), SDK_RET_OK);
        return bits == 0 ? 0 : image[0];
    }
    halden::host::fault_set &faults() { return adapter_->faults(); }
};

TEST_F(Faults, TheNextCallFailsAndTheOneAfterPasses) {
    ASSERT_EQ(put(16, 5, 0x11), SDK_RET_OK);
    faults().inject({.call = asic_call::sram_write});
    EXPECT_EQ(put(16, 5, 0x22), SDK_RET_HW_PROGRAM_ERR);
    EXPECT_EQ(stored(16, 5), 0x11);
    EXPECT_EQ(put(16, 5, 0x33), SDK_RET_OK);
    EXPECT_EQ(stored(16, 5), 0x33);
}

TEST_F(Faults, CallsPassBeforeTheFaultAndAfterItsCount) {
    faults().inject({.call = asic_call::sram_write,
                     .table = 16,
                     .skip = 2,
                     .count = 3,
                     .result = SDK_RET_RETRY});
    std::vector<sdk_ret_t> answers;
    for (uint32_t i = 0; i < 7; ++i) answers.push_back(put(16, i, 1));
    EXPECT_THAT(answers, ElementsAre(SDK_RET_OK, SDK_RET_OK, SDK_RET_RETRY, SDK_RET_RETRY,
                                     SDK_RET_RETRY, SDK_RET_OK, SDK_RET_OK));
}

TEST_F(Faults, OtherTablesAndOtherCallsNeitherFailNorCount) {
    faults().inject({.call = asic_call::sram_write, .table = 16, .skip = 1});
    EXPECT_EQ(put(17, 0, 1), SDK_RET_OK);
    EXPECT_EQ(stored(16, 0), 0);
    EXPECT_EQ(put(16, 0, 1), SDK_RET_OK);
    EXPECT_EQ(put(17, 0, 1), SDK_RET_OK);
    EXPECT_EQ(put(16, 0, 2), SDK_RET_HW_PROGRAM_ERR);
}

TEST_F(Faults, EveryTimeLastsUntilItIsTakenBack) {
    faults().inject({.call = asic_call::sram_write, .count = every_time});
    for (unsigned i = 0; i < 100; ++i) ASSERT_EQ(put(16, i, 1), SDK_RET_HW_PROGRAM_ERR);
    faults().clear();
    EXPECT_EQ(put(16, 0, 1), SDK_RET_OK);
}

TEST_F(Faults, WhatRestsMeetsNothingAndForgetsNothing) {
    faults().record(true);
    faults().inject({.call = asic_call::sram_write, .skip = 1});
    EXPECT_EQ(put(16, 0, 1), SDK_RET_OK);
    faults().rest(true);
    for (unsigned i = 1; i < 4; ++i) EXPECT_EQ(put(16, i, 1), SDK_RET_OK);
    faults().rest(false);
    EXPECT_EQ(put(16, 4, 1), SDK_RET_HW_PROGRAM_ERR);
    EXPECT_EQ(put(16, 5, 1), SDK_RET_OK);
    std::vector<uint32_t> rows;
    for (const call_record &call : faults().recorded()) rows.push_back(call.index);
    EXPECT_THAT(rows, ElementsAre(0, 4, 5));
}

// Each fault counts for itself; the first refusal is the answer.
TEST_F(Faults, OfSeveralFaultsTheFirstRefusalStands) {
    faults().inject({.call = asic_call::sram_write, .result = SDK_RET_OOM});
    faults().inject({.call = asic_call::sram_write, .count = 2, .result = SDK_RET_RETRY});
    EXPECT_EQ(put(16, 0, 1), SDK_RET_OOM);
    EXPECT_EQ(put(16, 0, 1), SDK_RET_RETRY);
    EXPECT_EQ(put(16, 0, 1), SDK_RET_OK);
}

TEST_F(Faults, ADelayIsNoRefusal) {
    using namespace std::chrono;
    faults().inject(
        {.call = asic_call::sram_write, .result = SDK_RET_OK, .delay = milliseconds(30)});
    const auto start = steady_clock::now();
    EXPECT_EQ(put(16, 0, 0x77), SDK_RET_OK);
    EXPECT_GE(steady_clock::now() - start, milliseconds(30));
    EXPECT_EQ(stored(16, 0), 0x77);
}

TEST_F(Faults, EveryAsicCallOfTheAdapterCanFail) {
    const bytes image(64, 0x5a);
    bytes key = room(), mask = room();
    uint16_t bits = 0xeeee;
    for (asic_call call : {asic_call::sram_write, asic_call::sram_read, asic_call::tcam_write,
                           asic_call::tcam_read, asic_call::hbm_write, asic_call::hbm_read})
        faults().inject({.call = call, .count = 2, .result = SDK_RET_HW_READ_ERR});

    EXPECT_EQ(put(16, 0, 1), SDK_RET_HW_READ_ERR);
    EXPECT_EQ(adapter_->tcam_write(15, 0, image.data(), image.data(), 16), SDK_RET_HW_READ_ERR);
    EXPECT_EQ(adapter_->hbm_write(21, 0, image.data(), 328), SDK_RET_HW_READ_ERR);
    EXPECT_EQ(adapter_->hbm_write(2, 0, image.data(), 512), SDK_RET_HW_READ_ERR);
    EXPECT_EQ(adapter_->sram_read(16, 0, key.data(), &bits), SDK_RET_HW_READ_ERR);
    EXPECT_EQ(bits, 0);
    bits = 0xeeee;
    EXPECT_EQ(adapter_->tcam_read(15, 0, key.data(), mask.data(), &bits), SDK_RET_HW_READ_ERR);
    EXPECT_EQ(bits, 0);
    bits = 0xeeee;
    EXPECT_EQ(adapter_->hbm_read(21, 0, key.data(), &bits), SDK_RET_HW_READ_ERR);
    EXPECT_EQ(bits, 0);
    bits = 0xeeee;
    EXPECT_EQ(adapter_->hbm_read(2, 0, key.data(), &bits), SDK_RET_HW_READ_ERR);
    EXPECT_EQ(bits, 0);
    EXPECT_EQ(key, room());
    EXPECT_EQ(mask, room());

    faults().clear();
    EXPECT_EQ(stored(16, 0), 0);
    EXPECT_EQ(adapter_->next_used(15, 0), 256u);
    EXPECT_EQ(adapter_->next_used(21, 0), 2097152u);
    EXPECT_EQ(adapter_->next_used(2, 0), 16u);
}

// The TCAM row goes first: when it cannot be emptied its data stays, and hardware still matches a
// whole entry; when the data cannot be emptied hardware matches nothing.
TEST_F(Faults, AHalfClearedEntryIsOutOfHardwaresSight) {
    const bytes image(16, 0x5a);
    bytes key = room(), mask = room();
    uint16_t width = 0;
    ASSERT_EQ(put(8, 1, 0x42), SDK_RET_OK);
    ASSERT_EQ(adapter_->tcam_write(8, 1, image.data(), image.data(), 128), SDK_RET_OK);

    faults().inject({.call = asic_call::tcam_write, .table = 8});
    EXPECT_EQ(adapter_->clear_row(8, 1), SDK_RET_HW_PROGRAM_ERR);
    EXPECT_EQ(adapter_->next_used(8, 0), 1u);
    EXPECT_EQ(stored(8, 1), 0x42);

    faults().inject({.call = asic_call::sram_write, .table = 8});
    EXPECT_EQ(adapter_->clear_row(8, 1), SDK_RET_HW_PROGRAM_ERR);
    ASSERT_EQ(adapter_->tcam_read(8, 1, key.data(), mask.data(), &width), SDK_RET_OK);
    EXPECT_EQ(width, 0);
    EXPECT_EQ(stored(8, 1), 0x42);

    EXPECT_EQ(adapter_->clear_row(8, 1), SDK_RET_OK);
    EXPECT_EQ(stored(8, 1), 0);
}

TEST_F(Faults, CallsAreRecordedInOrderWithWhatWasInjected) {
    const bytes image(8, 1);
    uint16_t bits = 0;
    bytes buffer = room();
    put(16, 9, 1);
    faults().record(true);
    put(16, 5, 1);
    faults().inject({.call = asic_call::hbm_read, .result = SDK_RET_OOM});
    adapter_->hbm_read(21, 77, buffer.data(), &bits);
    put(16, 5000, 1);  // refused before it is a call of the ASIC
    adapter_->sram_write(7, 4101, image.data(), 48, nullptr);
    faults().record(false);
    put(16, 6, 1);
    const std::vector<call_record> wanted{{asic_call::sram_write, 16, 5, SDK_RET_OK},
                                          {asic_call::hbm_read, 21, 77, SDK_RET_OOM},
                                          {asic_call::sram_write, 7, 4101, SDK_RET_OK}};
    EXPECT_EQ(faults().recorded(), wanted);
}

TEST_F(Faults, ANewRecordStartsEmptyAndTakingFaultsBackKeepsIt) {
    faults().record(true);
    put(16, 5, 1);
    faults().clear();
    EXPECT_EQ(faults().recorded().size(), 1u);
    put(16, 6, 1);
    EXPECT_EQ(faults().recorded().size(), 2u);
    faults().record(true);
    EXPECT_THAT(faults().recorded(), IsEmpty());
}

TEST_F(Faults, AnotherAdapterIsNotMet) {
    const auto other = halden::host::adapter::anonymous();
    other->faults().inject({.call = asic_call::sram_write, .count = every_time});
    EXPECT_EQ(put(16, 0, 1), SDK_RET_OK);
}

TEST(FaultNames, AreWhatAUserTypes) {
    using halden::host::name_of;
    EXPECT_STREQ(name_of(asic_call::sram_write), "sram-write");
    EXPECT_STREQ(name_of(asic_call::sram_read), "sram-read");
    EXPECT_STREQ(name_of(asic_call::tcam_write), "tcam-write");
    EXPECT_STREQ(name_of(asic_call::tcam_read), "tcam-read");
    EXPECT_STREQ(name_of(asic_call::hbm_write), "hbm-write");
    EXPECT_STREQ(name_of(asic_call::hbm_read), "hbm-read");
    EXPECT_STREQ(name_of(asic_call::action_pc), "action-pc");
    EXPECT_STREQ(name_of(asic_call::action_id), "action-id");
    EXPECT_STREQ(name_of(asic_call::allocate), "allocate");
}

}  // namespace
