// The table state: 35 engines, made and destroyed in member order.

#include "tev_tbl_impl_state.h"

#include "log/fail.h"
#include "sdk/p4pd_global.h"

namespace api::impl {

namespace {

using namespace sdk::table;

// Reported by the assertions below, whatever the source file is called.
constexpr char source[] = "p4gen/halden/src/tev_tbl_impl_state";
constexpr char constructor[] = "api::impl::tev_tbl_impl_state::tev_tbl_impl_state()";

// Each kind of engine: how it is made from a table id, and who destroys it.
void make(directmap *&table, uint32_t id) {
    p4pd_table_properties_t properties = {};
    p4pd_table_properties_get(id, &properties);
    table = directmap::factory(properties.tablename, id, properties.tabledepth,
                               properties.actiondata_struct_size, false, true, nullptr);
}
template <class Engine>
void make(Engine *&table, uint32_t id) {
    sdk_table_factory_params_t params = {};
    params.table_id = id;
    params.entry_trace = true;
    table = Engine::factory(&params);
}
void make(flow_hash *&table, uint32_t) {
    sdk_table_factory_params_t params = {};
    table = flow_hash::factory(&params);
}

template <class Engine>
void destroy(Engine *table) {
    Engine::destroy(table);
}
void destroy(flow_hash *table) { ftl_base::destroy(table); }

}  // namespace

// The members are zero until their engine is there; the host's words stay so.
tev_tbl_impl_state::tev_tbl_impl_state()
    : host_words_0_{}, host_words_1_{}, host_words_2_{}, host_words_3_{}, host_words_4_{} {
#define TEV_TBL_MAKE(engine, name, id) \
    make(name##_tbl_, id);             \
    if (name##_tbl() == nullptr)       \
        __assert_fail(#name "_tbl() != __null", source, __LINE__, constructor);
    TEV_TBL_FOR_EACH_ENGINE(TEV_TBL_MAKE)
#undef TEV_TBL_MAKE
}

tev_tbl_impl_state::~tev_tbl_impl_state() {
#define TEV_TBL_DESTROY(engine, name, id) destroy(name##_tbl_);
    TEV_TBL_FOR_EACH_ENGINE(TEV_TBL_DESTROY)
#undef TEV_TBL_DESTROY
}

#define TEV_TBL_ANSWER(engine, name, id) \
    sdk::table::engine *tev_tbl_impl_state::name##_tbl() { return name##_tbl_; }
TEV_TBL_FOR_EACH_ENGINE(TEV_TBL_ANSWER)
#undef TEV_TBL_ANSWER

}  // namespace api::impl
