// Table ids, names, record sizes and action counts.

#include <array>
#include <cstring>

#include "p4gen/halden/pipeline/pipeline.h"
#include "p4gen/halden/src/gen/records_layout.h"
#include "p4pd.h"

namespace pl = halden::pipeline;

static_assert(pl::first_table == P4PD_TABLEID_MIN);
static_assert(pl::first_table + pl::table_count == P4PD_TABLEID_MAX);

char p4pd_tbl_names[P4PD_TABLEID_MAX][80];
uint16_t p4pd_tbl_swkey_size[P4PD_TABLEID_MAX];
uint16_t p4pd_tbl_sw_action_data_size[P4PD_TABLEID_MAX];

namespace {

constexpr auto action_counts = [] {
    std::array<int8_t, pl::table_count> counts{};
    for (size_t i = 0; i < counts.size(); ++i)
        counts[i] = static_cast<int8_t>(pl::tables[i]->actions.size());
    return counts;
}();

}  // namespace

uint32_t p4pd_tableid_min_get() { return P4PD_TABLEID_MIN; }
uint32_t p4pd_tableid_max_get() { return P4PD_TABLEID_MAX; }

void p4pd_prep_p4tbl_names() {
    for (const pl::table *t : pl::tables)
        std::memcpy(p4pd_tbl_names[t->id], t->name.data(), t->name.size());
}

void p4pd_prep_p4tbl_sw_struct_sizes() {
    for (const pl::table *t : pl::tables) {
        p4pd_tbl_swkey_size[t->id] = pl::swkey_bytes(*t);
        p4pd_tbl_sw_action_data_size[t->id] = t->data_bytes;
    }
}

int32_t p4pd_get_max_action_id(uint32_t tableid) {
    const uint32_t row = tableid - P4PD_TABLEID_MIN;
    return row < action_counts.size() ? action_counts[row] : 0;
}
