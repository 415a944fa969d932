// The debug response message, and the register entry points that this pipeline leaves empty.

#include <cstdlib>
#include <cstring>

#include "p4gen/halden/pipeline/pipeline.h"
#include "p4pd.h"

namespace {

// Layout of the message; who fills it and who reads it are different programs.
constexpr size_t slot_count = 10;
constexpr ptrdiff_t slot_bytes = 512;
constexpr size_t message_bytes = slot_count * slot_bytes;
constexpr size_t key_at = 0;
constexpr size_t key_mask_at = 128;
constexpr size_t action_data_at = 256;

static_assert(
    [] {
        for (const halden::pipeline::table *t : halden::pipeline::tables)
            if (t->key_bytes > key_mask_at - key_at || t->data_bytes > slot_bytes - action_data_at)
                return false;
        return true;
    }(),
    "every record fits its area of a slot");

}  // namespace

void *allocate_debug_response_msg() { return std::calloc(1, message_bytes); }

void free_debug_response_msg(void *msg) { std::free(msg); }

p4pd_error_t p4pd_entry_populate(uint32_t tableid, void *swkey, void *swkey_mask, void *action_data,
                                 void *msg, int slot) {
    if (msg == nullptr) return P4PD_FAIL;
    const halden::pipeline::table *table = halden::pipeline::find_table(tableid);
    if (table == nullptr) return P4PD_FAIL;
    const uint8_t *from = static_cast<const uint8_t *>(msg) + slot * slot_bytes;
    if (halden::pipeline::is_keyed(table->kind))
        std::memcpy(swkey, from + key_at, table->key_bytes);
    if (halden::pipeline::has_mask(table->kind))
        std::memcpy(swkey_mask, from + key_mask_at, table->key_bytes);
    std::memcpy(action_data, from + action_data_at, table->data_bytes);
    return P4PD_SUCCESS;
}

// Two names of one function, hence of one address.
// NOLINTBEGIN(performance-unnecessary-value-param): the public declarations take strings by value.
extern "C" [[gnu::visibility("hidden")]] p4pd_error_t halden_no_registers(std::string, std::string,
                                                                          std::string) {
    return P4PD_SUCCESS;
}
// NOLINTEND(performance-unnecessary-value-param)
#pragma GCC diagnostic push
#ifndef __clang__
// g++ finds out that the function does not throw and wants its other names to say so; the public
// declaration does not.
#pragma GCC diagnostic ignored "-Wmissing-attributes"
#endif
p4pd_error_t p4pd_register_entry_read(std::string, std::string, std::string)
    __attribute__((alias("halden_no_registers")));
p4pd_error_t p4pd_register_list(std::string, std::string, std::string)
    __attribute__((alias("halden_no_registers")));
#pragma GCC diagnostic pop
