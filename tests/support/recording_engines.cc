// The table engines, recorded: each call is kept and answered by recording_host::on_engine, or with
// success. A factory answers one object per call, so that a test can tell tables apart.

#include <cstdlib>

#include "sdk/table/directmap.h"
#include "sdk/table/ftl_base.h"
#include "sdk/table/slhash.h"
#include "sdk/table/sltcam.h"
#include "tests/support/recording_host.h"

namespace sdk::table {

using namespace halden::test;

namespace {

recording_host &host() { return recording_host::get(); }

sdk_ret_t engine_call(const char *name, std::vector<argument> arguments) {
    recording_host::scope inside;
    const call made = host().record(name, std::move(arguments));
    return host().on_engine ? host().on_engine(made) : SDK_RET_OK;
}

argument record_of(const sdk_table_api_params_ *params) {
    return image(params, sizeof *params * 8);
}

argument record_of(const sdk_table_factory_params_ *params) {
    return image(params, sizeof *params * 8);
}

}  // namespace

directmap *directmap::factory(const char *name, uint32_t table_id, uint32_t depth,
                              uint16_t data_size, bool thread_safe, bool entry_trace,
                              table_health_cb health) {
    recording_host::scope inside;
    const sdk_ret_t result = engine_call(
        "directmap::factory",
        {pointer(name), number(table_id), number(depth), number(data_size), number(thread_safe),
         number(entry_trace), pointer(reinterpret_cast<const void *>(health))});
    return result == SDK_RET_OK ? new directmap : nullptr;
}

void directmap::destroy(directmap *table) {
    engine_call("directmap::destroy", {pointer(table)});
    delete table;
}

sdk_ret_t directmap::insert_withid(void *data, uint32_t index, void *mask) {
    recording_host::scope inside;
    return engine_call("directmap::insert_withid",
                       {pointer(this), pointer(data), number(index), pointer(mask)});
}

sdk_ret_t directmap::update(uint32_t index, void *data, void *mask) {
    recording_host::scope inside;
    return engine_call("directmap::update",
                       {pointer(this), number(index), pointer(data), pointer(mask)});
}

sdk_ret_t directmap::remove(uint32_t index, void *mask) {
    recording_host::scope inside;
    return engine_call("directmap::remove", {pointer(this), number(index), pointer(mask)});
}

sdk_ret_t directmap::retrieve(uint32_t index, void *data) {
    recording_host::scope inside;
    return engine_call("directmap::retrieve", {pointer(this), number(index), pointer(data)});
}

slhash *slhash::factory(sdk_table_factory_params_ *params) {
    recording_host::scope inside;
    return engine_call("slhash::factory", {record_of(params)}) == SDK_RET_OK ? new slhash : nullptr;
}

void slhash::destroy(slhash *table) {
    engine_call("slhash::destroy", {pointer(table)});
    delete table;
}

sdk_ret_t slhash::insert(sdk_table_api_params_ *params) {
    recording_host::scope inside;
    return engine_call("slhash::insert", {pointer(this), record_of(params)});
}

sdk_ret_t slhash::update(sdk_table_api_params_ *params) {
    recording_host::scope inside;
    return engine_call("slhash::update", {pointer(this), record_of(params)});
}

sdk_ret_t slhash::remove(sdk_table_api_params_ *params) {
    recording_host::scope inside;
    return engine_call("slhash::remove", {pointer(this), record_of(params)});
}

sdk_ret_t slhash::get(sdk_table_api_params_ *params) {
    recording_host::scope inside;
    return engine_call("slhash::get", {pointer(this), record_of(params)});
}

sltcam *sltcam::factory(sdk_table_factory_params_ *params) {
    recording_host::scope inside;
    return engine_call("sltcam::factory", {record_of(params)}) == SDK_RET_OK ? new sltcam : nullptr;
}

void sltcam::destroy(sltcam *table) {
    engine_call("sltcam::destroy", {pointer(table)});
    delete table;
}

sdk_ret_t sltcam::insert(sdk_table_api_params_ *params) {
    recording_host::scope inside;
    return engine_call("sltcam::insert", {pointer(this), record_of(params)});
}

sdk_ret_t sltcam::update(sdk_table_api_params_ *params) {
    recording_host::scope inside;
    return engine_call("sltcam::update", {pointer(this), record_of(params)});
}

sdk_ret_t sltcam::remove(sdk_table_api_params_ *params) {
    recording_host::scope inside;
    return engine_call("sltcam::remove", {pointer(this), record_of(params)});
}

sdk_ret_t sltcam::get(sdk_table_api_params_ *params) {
    recording_host::scope inside;
    return engine_call("sltcam::get", {pointer(this), record_of(params)});
}

void *ftl_base::ftl_calloc(uint32_t module, unsigned long size, bool huge) {
    engine_call("ftl_base::ftl_calloc", {number(module), number(size), number(huge)});
    return std::calloc(1, size);
}

void ftl_base::ftl_free(uint32_t module, void *memory, bool huge, unsigned long size) {
    engine_call("ftl_base::ftl_free",
                {number(module), pointer(memory), number(huge), number(size)});
    std::free(memory);
}

sdk_ret_t ftl_base::restore_state() {
    recording_host::scope inside;
    return engine_call("ftl_base::restore_state", {pointer(this)});
}

sdk_ret_t ftl_base::init_(sdk_table_factory_params_ *params) {
    recording_host::scope inside;
    return engine_call("ftl_base::init_", {pointer(this), record_of(params)});
}

void ftl_base::destroy(ftl_base *table) { engine_call("ftl_base::destroy", {pointer(table)}); }

sdk_ret_t ftl_base::insert(sdk_table_api_params_ *params) {
    recording_host::scope inside;
    return engine_call("ftl_base::insert", {pointer(this), record_of(params)});
}

sdk_ret_t ftl_base::update(sdk_table_api_params_ *params) {
    recording_host::scope inside;
    return engine_call("ftl_base::update", {pointer(this), record_of(params)});
}

sdk_ret_t ftl_base::remove(sdk_table_api_params_ *params) {
    recording_host::scope inside;
    return engine_call("ftl_base::remove", {pointer(this), record_of(params)});
}

sdk_ret_t ftl_base::get(sdk_table_api_params_ *params) {
    recording_host::scope inside;
    return engine_call("ftl_base::get", {pointer(this), record_of(params)});
}

}  // namespace sdk::table
