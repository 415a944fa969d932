// Writers and key builders are straight-line code: every copy of a field has a call site of its
// own. A loop over fields would make two copies from one site.

#include "host/adapter.h"
#include "p4pd.h"
#include "sdk/p4pd_utils.h"
#include "tests/reference/model.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <cstdlib>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace halden;
using reference::bytes;
using reference::kind;

std::vector<const void *> sites;

std::vector<const void *> take_sites() { return std::exchange(sites, {}); }

using copy = void(uint8_t *, uint16_t, uint8_t *, uint16_t, uint16_t);

copy *host_copy(const char *mangled) {
    void *found = dlsym(RTLD_NEXT, mangled);
    if (found == nullptr) std::abort();
    return reinterpret_cast<copy *>(found);
}

}  // namespace

// The program's definitions stand before the host's.
void p4pd_utils_copy_le_src_to_be_dest(uint8_t *dest, uint16_t dest_bit, uint8_t *src,
                                       uint16_t src_bit, uint16_t width) {
    sites.push_back(__builtin_return_address(0));
    static copy *const host = host_copy("_Z33p4pd_utils_copy_le_src_to_be_destPhtS_tt");
    host(dest, dest_bit, src, src_bit, width);
}

void p4pd_utils_copy_into_hwentry(uint8_t *dest, uint16_t dest_bit, uint8_t *src, uint16_t src_bit,
                                  uint16_t width) {
    sites.push_back(__builtin_return_address(0));
    static copy *const host = host_copy("_Z28p4pd_utils_copy_into_hwentryPhtS_tt");
    host(dest, dest_bit, src, src_bit, width);
}

namespace {

class StraightLine : public testing::TestWithParam<uint32_t> {
  protected:
    void expect_own_sites(size_t copies) {
        const auto seen = take_sites();
        EXPECT_EQ(seen.size(), copies);
        EXPECT_EQ(std::set<const void *>(seen.begin(), seen.end()).size(), seen.size());
    }

    uint32_t id() const { return GetParam(); }
    const reference::table &facts() const { return reference::table_of(id()); }

    std::unique_ptr<host::adapter> adapter_ = host::adapter::anonymous();
    host::scoped_current current_{*adapter_};
};

// Fields that an action packs.
size_t fields_of(uint32_t id, uint32_t action) {
    size_t count = 0;
#define DATA(table_id, action_id, table, struct_name, field, first_byte, bytes, width, position) \
    count += table_id == id && action_id == action;
#include "tests/reference/index_data_fields.def"
#include "tests/reference/keyed_data_fields.def"
#undef DATA
    return count;
}

TEST_P(StraightLine, EveryFieldOfAWriteHasItsOwnCallSite) {
    for (uint32_t action = 0; action < facts().actions; ++action) {
        SCOPED_TRACE("action " + std::to_string(action));
        bytes key(128), mask(128), data(facts().data_bytes), data_mask(facts().data_bytes);
        data[0] = data_mask[0] = static_cast<uint8_t>(action);
        take_sites();
        ASSERT_EQ(p4pd_entry_write(id(), 0, key.data(), mask.data(), data.data(), false), 0);
        expect_own_sites(fields_of(id(), action));
        if (!facts().takes_data_mask()) continue;
        ASSERT_EQ(p4pd_entry_write_with_datamask(id(), 0, key.data(), mask.data(), data.data(),
                                                 data_mask.data(), false),
                  0);
        expect_own_sites(2 * fields_of(id(), action));
    }
}

// Copies that make a key image; a ternary key makes as many for its mask image.
size_t key_copies(uint32_t id) {
    switch (id) {
        case 1:
        case 2:
            return 76;
        case 3:
        case 7:
            return 10;
        case 4:
        case 10:
            return 5;
        case 5:
        case 11:
            return 17;
        case 6:
        case 14:
            return 11;
        case 8:
            return 29;
        case 9:
            return 41;
        case 12:
        case 13:
            return 3;
        case 15:
            return 8;
        default:
            return 0;
    }
}

TEST_P(StraightLine, EveryByteOfAKeyHasItsOwnCallSite) {
    bytes key(facts().key_bytes), mask(facts().key_bytes), key_image(128), mask_image(128);
    take_sites();
    p4pd_hwkey_hwmask_build(id(), key.data(), mask.data(), key_image.data(), mask_image.data());
    expect_own_sites(key_copies(id()) * (facts().has_tcam() ? 2 : 1));
}

INSTANTIATE_TEST_SUITE_P(Tables, StraightLine, testing::Range(1u, 49u), [](const auto &tested) {
    return std::string(reference::table_of(tested.param).name);
});

}  // namespace
