#include "ftl/flow_hash.h"

#include <algorithm>
#include <cstdlib>
#include <new>

#include "crc32.h"

namespace sdk::table {

constinit flow_hash_entry_t flow_hash::entry_[16][8] = {};

namespace {

// Table id of `flow`, taken when the caller names none, and the entry's eight hint slots, which
// also bound a chain.
constexpr uint32_t flow_table_id = 2;
constexpr uint32_t slots = 8;

// One per thread that ever hashes; made on first use and never freed. The initial-exec model saves
// a call to the loader on each access; the library's thread-local storage is this one pointer.
__attribute__((tls_model("initial-exec"))) constinit thread_local flow_hash_entry_t *scratch =
    nullptr;

flow_hash_entry_t *make_scratch(size_t body_bytes) {
    // An entry class that reports a smaller body still gets room for the flow entry built here.
    const size_t bytes =
        std::max(body_bytes + sizeof(base_table_entry_t), sizeof(flow_hash_entry_t));
    void *memory = std::calloc(1, bytes);
    if (memory == nullptr) return nullptr;
    return ::new (memory) flow_hash_entry_t;
}

void reverse_bytes(uint8_t *body, uint8_t bytes) {
    for (uint32_t i = 0; i < bytes / 2u; ++i) {
        const uint8_t byte = body[i];
        body[i] = body[bytes - 1u - i];
        body[bytes - 1u - i] = byte;
    }
}

}  // namespace

flow_hash *flow_hash::factory(sdk_table_factory_params_ *params) {
    void *memory = std::calloc(1, sizeof(flow_hash));
    if (memory == nullptr) return nullptr;
    auto *table = ::new (memory) flow_hash;
    if (table->init_(params) != SDK_RET_OK) {
        std::free(memory);
        return nullptr;
    }
    return table;
}

void flow_hash::destroy(ftl_base *table) { return ftl_base::destroy(table); }

sdk_ret_t flow_hash::init_(sdk_table_factory_params_ *params) {
    if (params->table_id == 0) params->table_id = flow_table_id;
    params->num_hints = slots;
    params->max_chain = slots;
    return ftl_base::init_(params);
}

base_table_entry_t *flow_hash::get_entry(uint16_t row, int column) {
    return &entry_[0][0] + (row * 8 + column);
}

sdk_ret_t flow_hash::genhash_(sdk_table_api_params_ *params) {
    auto *entry = static_cast<flow_hash_entry_t *>(params->entry);
    const uint32_t size = entry->entry_size();
    const uint32_t rounded = (size + 63) & ~63u;
    if (scratch == nullptr) {
        scratch = make_scratch(rounded);
        if (scratch == nullptr) return SDK_RET_OOM;
    }
    const flow_crc::routines &crc = flow_crc::best();
    if (size == flow_layout::body_bytes && !params->hash_valid) {
        // The usual call: build the key, reverse it and hash it in one pass over the entry.
        params->hash_value = crc.pack_key(scratch->body(), entry->body());
        params->hash_valid = true;
        return SDK_RET_OK;
    }
    scratch->build_key(entry);
    reverse_bytes(scratch->body(), static_cast<uint8_t>(size));
    if (params->hash_valid) return SDK_RET_OK;
    params->hash_value = crc.crc(scratch->body(), rounded);
    params->hash_valid = true;
    return SDK_RET_OK;
}

}  // namespace sdk::table
