#pragma once

// Records and result codes shared by the table engines.

#include <cstddef>
#include <cstdint>

// Results of the engines. The first five values are shared with the table API; the rest are the
// engines' own and reach no caller of the table API.
typedef enum sdk_ret_ : uint32_t {
    SDK_RET_OK = 0,
    SDK_RET_OOM = 1,          // an allocation failed
    SDK_RET_INVALID_ARG = 2,  // a null pointer, an index or mask the engine cannot take
    SDK_RET_ENTRY_NOT_FOUND = 4,
    SDK_RET_ENTRY_EXISTS = 5,
    SDK_RET_NO_RESOURCE = 6,     // the table, or the chain of this hash, is full
    SDK_RET_HW_PROGRAM_ERR = 7,  // the ASIC layer refused a write
    SDK_RET_HW_READ_ERR = 8,     // the ASIC layer refused a read
    SDK_RET_RETRY = 10,          // a writer kept changing what was being read
    SDK_RET_DAMAGED = 11,        // the memory holds what no write leaves there
    SDK_RET_ERR = 255,
} sdk_ret_t;

namespace sdk::table {

// Opaque place of an entry. The library passes null() only.
class handle_t {
  public:
    constexpr handle_t() = default;
    constexpr explicit handle_t(uint64_t value) : value_(value) {}
    static handle_t null() {
        static const handle_t none;
        return none;
    }
    constexpr uint64_t tou64() const { return value_; }
    constexpr bool valid() const { return value_ != 0; }

  private:
    uint64_t value_ = 0;
};

// One call of a hash, TCAM or flow engine. All zero but what the call needs.
struct sdk_table_api_params_ {
    void *entry;  // flow engine: the whole entry (base_table_entry_t)
    void *key;    // software key record
    void *mask;   // software key-mask record, null for an exact match
    void *data;   // action-data record: action id, then the action's data
    uint8_t action_id;
    handle_t handle;
    uint32_t hash_value;  // 32-bit hash of the key, valid when hash_valid is set
    bool hash_valid;
    bool from_hardware;  // always true from the table API: answer from the memory images
};
typedef sdk_table_api_params_ sdk_table_api_params_t;

typedef char *(*key_to_string_cb)(void *key, char *buffer, size_t size);
typedef char *(*data_to_string_cb)(void *data, char *buffer, size_t size);
typedef void (*table_health_cb)(uint32_t tableid, const char *name, uint32_t used, uint32_t depth);

// What an engine is made from. The three 32-bit fields, padding and three callbacks take the room
// of five pointers; the boolean option follows at byte 40.
struct sdk_table_factory_params_ {
    uint32_t table_id;
    uint32_t num_hints;  // hint slots per entry of a flow table
    uint32_t max_chain;  // longest chain of overflow entries behind one slot
    key_to_string_cb key_to_string;
    data_to_string_cb data_to_string;
    table_health_cb health;
    bool entry_trace;  // true from the table API
};
typedef sdk_table_factory_params_ sdk_table_factory_params_t;

static_assert(offsetof(sdk_table_api_params_, entry) == 0);
static_assert(offsetof(sdk_table_factory_params_, table_id) == 0);
static_assert(offsetof(sdk_table_factory_params_, num_hints) == 4);
static_assert(offsetof(sdk_table_factory_params_, max_chain) == 8);
static_assert(offsetof(sdk_table_factory_params_, entry_trace) == 5 * sizeof(void *));

}  // namespace sdk::table
