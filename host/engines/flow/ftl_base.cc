// sdk::table::ftl_base over the flow engine.

#include "sdk/table/ftl_base.h"

#include "host/engines/engine.h"
#include "host/engines/flow/engine.h"

#include <sys/mman.h>

#include <cstdlib>
#include <new>

namespace sdk::table {

namespace {

using halden::host::flow::engine;

using halden::host::asic_call;
using halden::host::flow_table;

// Hands a caller's record on as an entry and its hash.
template <sdk_ret_t (engine::*operation)(base_table_entry_t *, uint32_t)>
sdk_ret_t call(engine *made, asic_call which, sdk_table_api_params_ *params) {
    if (made == nullptr || params == nullptr || params->entry == nullptr)
        return SDK_RET_INVALID_ARG;
    if (!made->is_mapped()) return SDK_RET_OOM;
    if (sdk_ret_t injected = made->memory().faults().meet(which, flow_table, 0)) return injected;
    uint32_t hash = 0;
    const sdk_ret_t result = made->hash_of(*params, hash);
    if (result != SDK_RET_OK) return result;
    return (made->*operation)(static_cast<base_table_entry_t *>(params->entry), hash);
}

}  // namespace

void *ftl_base::ftl_calloc(uint32_t module, unsigned long size, bool huge) {
    if (halden::host::memory_is_refused(module)) return nullptr;
    if (!huge) return std::calloc(1, size);
    void *memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) return nullptr;
    madvise(memory, size, MADV_HUGEPAGE);
    return memory;
}

void ftl_base::ftl_free(uint32_t, void *memory, bool huge, unsigned long size) {
    if (memory == nullptr) return;
    if (huge) {
        munmap(memory, size);
    } else {
        std::free(memory);
    }
}

sdk_ret_t ftl_base::restore_state() {
    if (impl_ == nullptr) return SDK_RET_INVALID_ARG;
    if (sdk_ret_t injected = impl_->memory().faults().meet(asic_call::restore_state, flow_table, 0))
        return injected;
    return impl_->restore();
}

sdk_ret_t ftl_base::init_(sdk_table_factory_params_ *params) {
    using namespace halden::host;
    if (params == nullptr || impl_ != nullptr || params->table_id != flow_table)
        return SDK_RET_INVALID_ARG;
    base_table_entry_t *entry = get_entry(0, 0);
    if (entry->entry_size() != flow_row_bytes || params->num_hints == 0 ||
        params->num_hints >= entry->get_more_hint_slot() || params->max_chain == 0)
        return SDK_RET_INVALID_ARG;
    void *memory = ftl_calloc(params->table_id, sizeof(impl), false);
    if (memory == nullptr) return SDK_RET_OOM;
    impl *made = ::new (memory) impl(*this, *params);
    const sdk_ret_t result = guarded([&] { return made->start(current()); });
    if (result != SDK_RET_OK) {
        made->~impl();
        ftl_free(params->table_id, made, false, sizeof(impl));
        return result;
    }
    impl_ = made;
    return SDK_RET_OK;
}

// The table was made in calloc's memory; the flows stay where they are, in the adapter's.
void ftl_base::destroy(ftl_base *table) {
    if (table == nullptr) return;
    if (table->impl_ != nullptr) {
        table->impl_->~impl();
        table->ftl_free(halden::host::flow_table, table->impl_, false, sizeof(impl));
    }
    std::free(table);
}

sdk_ret_t ftl_base::insert(sdk_table_api_params_ *params) {
    return call<&engine::insert>(impl_, asic_call::insert, params);
}

sdk_ret_t ftl_base::update(sdk_table_api_params_ *params) {
    return call<&engine::update>(impl_, asic_call::update, params);
}

sdk_ret_t ftl_base::remove(sdk_table_api_params_ *params) {
    return call<&engine::remove>(impl_, asic_call::remove, params);
}

sdk_ret_t ftl_base::get(sdk_table_api_params_ *params) {
    return call<&engine::get>(impl_, asic_call::get, params);
}

}  // namespace sdk::table
