#include "tests/engines/flow_bed.h"

#include "host/memory/work_page.h"
#include "host/view/lookup.h"
#include "tests/engines/flow_derived.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

namespace halden::test {

namespace {

namespace lay = flow_layout;

uint64_t mixed(uint64_t number) {
    number += 0x9e3779b97f4a7c15u;
    number = (number ^ number >> 30) * 0xbf58476d1ce4e5b9u;
    number = (number ^ number >> 27) * 0x94d049bb133111ebu;
    return number ^ number >> 31;
}

template <lay::range R>
void fill(uint8_t *body, uint64_t &state) {
    uint8_t bytes[R.width / 8];
    for (uint8_t &byte : bytes) byte = static_cast<uint8_t>((state = mixed(state)) >> 32);
    lay::set_bytes<R>(body, bytes);
}

std::unique_ptr<host::adapter> open(const host::adapter_options &options,
                                    const std::string &directory) {
    return directory.empty() ? host::adapter::anonymous(options)
                             : host::adapter::open(directory, options);
}

}  // namespace

flow_hash_entry_t entry_of(uint64_t number, uint32_t flow_idx) {
    flow_hash_entry_t entry;
    uint8_t *body = entry.body();
    uint64_t state = mixed(number);
    lay::set_bits<lay::metadata_flow_key_sport>(body, number);
    lay::set_bits<lay::metadata_flow_key_dport>(body, number >> 16);
    lay::set_bits<lay::metadata_flow_key_vlan>(body, number >> 32);
    lay::set_bits<lay::metadata_flow_key_proto>(body, state >> 3);
    lay::set_bits<lay::metadata_flow_key_ktype>(body, state >> 13);
    lay::set_bits<lay::metadata_flow_key_port_id>(body, state >> 23);
    lay::set_bits<lay::metadata_flow_key_rsvd>(body, state >> 33);
    lay::set_bits<lay::metadata_flow_key_outer_flow_id>(body, state >> 43);
    lay::set_bits<lay::metadata_flow_key_vni>(body, state);
    lay::set_bits<lay::metadata_flow_key_smac>(body, mixed(state));
    lay::set_bits<lay::metadata_flow_key_dmac>(body, mixed(state + 1));
    fill<lay::metadata_flow_key_sip>(body, state);
    fill<lay::metadata_flow_key_dip>(body, state);
    fill<lay::metadata_flow_key_spare>(body, state);
    lay::set_bits<lay::flow_idx>(body, flow_idx);
    return entry;
}

std::vector<uint8_t> packet_of(uint64_t number) {
    const flow_hash_entry_t entry = entry_of(number);
    std::vector<uint8_t> image(128);
    std::reverse_copy(entry.body(), entry.body() + 128, image.begin());
    return image;
}

uint32_t hash_of(uint64_t number) {
    flow_hash hasher;
    flow_hash_entry_t entry = entry_of(number);
    sdk_table_api_params_t call = {};
    call.entry = &entry;
    EXPECT_EQ(hasher.genhash_(&call), SDK_RET_OK);
    return call.hash_value;
}

std::vector<uint64_t> numbers_with_hash(uint32_t mask, uint32_t value, size_t count) {
    std::vector<uint64_t> out;
    for (uint64_t number = 0; out.size() < count; ++number)
        if ((hash_of(number) & mask) == value) out.push_back(number);
    return out;
}

std::vector<uint64_t> numbers_up_to(uint64_t end) {
    std::vector<uint64_t> out;
    for (uint64_t number = 0; number < end; ++number) out.push_back(number);
    return out;
}

flow_bed::flow_bed(const host::adapter_options &options, const std::string &directory)
    : adapter_(open(options, directory)), current_(*adapter_) {
    sdk::table::sdk_table_factory_params_t params = {};
    table_ = flow_hash::factory(&params);
}

flow_bed::flow_bed(const host::adapter_options &options, table_maker *make)
    : adapter_(open(options, {})), current_(*adapter_), table_(make()) {}

flow_bed::~flow_bed() { flow_hash::destroy(table_); }

sdk_ret_t flow_bed::call_as(flow_hash_entry_t &entry, single_call single, batch_call batch) {
    if (as_batches && batch != nullptr) {
        base_table_entry_t *const pointer = &entry;
        sdk_ret_t result = SDK_RET_ERR;
        const size_t succeeded = batch(*table_, {&pointer, 1}, {&result, 1});
        EXPECT_EQ(succeeded, result == SDK_RET_OK ? 1u : 0u);
        return result;
    }
    sdk_table_api_params_t params = {};
    params.entry = &entry;
    return (table_->*single)(&params);
}

sdk_ret_t flow_bed::call(flow_hash_entry_t &entry, single_call single, batch_call batch) {
    if (!derived_callers) return call_as(entry, single, batch);
    derived_entry derived(entry);
    const sdk_ret_t result = call_as(derived, single, batch);
    EXPECT_TRUE(derived.is_whole());
    entry = derived;
    return result;
}

sdk_ret_t flow_bed::insert(uint64_t number, uint32_t flow_idx) {
    flow_hash_entry_t entry = entry_of(number, flow_idx);
    const sdk_ret_t result = call(entry, &flow_hash::insert, &ftl_access::insert_batch);
    if (result == SDK_RET_OK) flows[number] = flow_idx;
    return result;
}

sdk_ret_t flow_bed::update(uint64_t number, uint32_t flow_idx) {
    flow_hash_entry_t entry = entry_of(number, flow_idx);
    const sdk_ret_t result = call(entry, &flow_hash::update, nullptr);
    if (result == SDK_RET_OK) flows[number] = flow_idx;
    return result;
}

sdk_ret_t flow_bed::remove(uint64_t number) {
    flow_hash_entry_t entry = entry_of(number);
    const sdk_ret_t result = call(entry, &flow_hash::remove, &ftl_access::remove_batch);
    if (result == SDK_RET_OK) flows.erase(number);
    return result;
}

sdk_ret_t flow_bed::get(uint64_t number, uint32_t *flow_idx) {
    flow_hash_entry_t entry = entry_of(number);
    const sdk_ret_t result = call(entry, &flow_hash::get, &ftl_access::get_batch);
    if (result == SDK_RET_OK) {
        flow_hash_entry_t same = entry_of(number);
        EXPECT_TRUE(entry.compare_key(&same));
        EXPECT_EQ(entry.get_entry_valid(), 1);
        EXPECT_EQ(entry.valid, 1u);
    }
    if (flow_idx != nullptr)
        *flow_idx = static_cast<uint32_t>(lay::get_bits<lay::flow_idx>(entry.body()));
    return result;
}

int64_t flow_bed::seen_by_hardware(uint64_t number) {
    std::vector<uint8_t> &packet = packets_[number];
    if (packet.empty()) packet = packet_of(number);
    const host::view::answer found = host::view::lookup(*adapter_, flow, packet.data());
    if (!found.hit) return -1;
    // flow_idx is bits 490 to 511 of the body, so the top 22 bits of the row's 64-bit word at
    // byte 64.
    return found.image[64] << 14 | found.image[65] << 6 | found.image[66] >> 2;
}

memory_image flow_bed::memories() {
    memory_image out;
    for (const uint32_t table : {flow, flow_ohash}) {
        uint32_t row = 0;
        for (; (row = adapter_->next_used(table, row)) < adapter_->depth(table); ++row)
            std::memcpy(out[{table, row}].data(), adapter_->hbm_rows(table) + size_t{128} * row,
                        128);
    }
    // What the operation under way said of itself, too, in pieces of a row's size.
    const auto words = adapter_->work()->all().subspan(host::work_page::groups_at / 8);
    constexpr size_t piece = 16;
    for (size_t at = 0; at < words.size(); at += piece)
        if (std::any_of(&words[at], &words[at] + piece, [](uint64_t word) { return word != 0; }))
            std::memcpy(out[{work_pieces, static_cast<uint32_t>(at / piece)}].data(), &words[at],
                        128);
    return out;
}

uint8_t *flow_bed::memory_at(std::pair<uint32_t, uint32_t> place) {
    const auto [table, row] = place;
    if (table != work_pieces) return adapter_->hbm_rows(table) + size_t{128} * row;
    return reinterpret_cast<uint8_t *>(adapter_->work()->of_groups()) + size_t{128} * row;
}

void flow_bed::put_memories(const memory_image &image) {
    for (const auto &[place, row] : memories()) std::memset(memory_at(place), 0, 128);
    for (const auto &[place, row] : image) std::memcpy(memory_at(place), row.data(), 128);
}

uint32_t flow_bed::rows_in_use(uint32_t table) {
    uint32_t used = 0;
    for (uint32_t row = 0; (row = adapter_->next_used(table, row)) < adapter_->depth(table); ++row)
        ++used;
    return used;
}

uint32_t flow_bed::main_rows_in_use() { return rows_in_use(flow); }
uint32_t flow_bed::overflow_rows_in_use() { return rows_in_use(flow_ohash); }

void flow_bed::expect_exactly_the_flows(const std::vector<uint64_t> &numbers) {
    for (const auto &[number, flow_idx] : flows) {
        uint32_t found = 0;
        ASSERT_EQ(get(number, &found), SDK_RET_OK) << "key " << number;
        ASSERT_EQ(found, flow_idx) << "key " << number;
        ASSERT_EQ(seen_by_hardware(number), flow_idx) << "key " << number;
    }
    for (const uint64_t number : numbers) {
        if (flows.count(number) != 0) continue;
        ASSERT_EQ(get(number), SDK_RET_ENTRY_NOT_FOUND) << "key " << number;
        ASSERT_EQ(seen_by_hardware(number), -1) << "key " << number;
    }
    ASSERT_EQ(main_rows_in_use() + overflow_rows_in_use(), flows.size() + rows_apart);
}

}  // namespace halden::test
