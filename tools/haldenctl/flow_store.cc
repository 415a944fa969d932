#include "tools/haldenctl/flow_store.h"

#include <cstring>

#include "host/engines/flow/ftl_access.h"
#include "p4pd_records.h"
#include "tev_tbl.h"

namespace halden::tool {

namespace {

constexpr uint32_t flow_info_table = 21;

// 64-bit record fields are byte arrays, byte 0 lowest.
uint64_t number(const uint8_t (&bytes)[8]) {
    uint64_t value = 0;
    for (unsigned i = 8; i-- > 0;) value = value << 8 | bytes[i];
    return value;
}
void set_number(uint8_t (&bytes)[8], uint64_t value) {
    for (uint8_t &byte : bytes) {
        byte = static_cast<uint8_t>(value);
        value >>= 8;
    }
}

tev_tbl_flow_spec_t spec_of(const packets::flow &f, uint32_t index) {
    tev_tbl_flow_spec_t spec = {};
    spec.key = packets::key_of(f);
    spec.action_u.flow_hash.flow_idx = index;
    return spec;
}

tev_tbl_flow_info_spec_t info_spec(uint32_t index, const flow_counts &counts) {
    tev_tbl_flow_info_spec_t spec = {};
    spec.key.index = index;
    auto &info = spec.action_u.flow_info_a;
    info.timestamp = counts.last_seen;
    set_number(info.count, counts.packets);
    info.ipfix_ingress_vld = 1;
    info.ipfix_ingress_idx = index;
    return spec;
}

tev_tbl_ipfix_ingress_spec_t export_spec(uint32_t index, const flow_counts &counts) {
    tev_tbl_ipfix_ingress_spec_t spec = {};
    spec.key.index = index;
    set_number(spec.action_u.ipfix.pcnt, counts.packets);
    set_number(spec.action_u.ipfix.bcnt, counts.bytes);
    return spec;
}

}  // namespace

bool flow_store::next_free_index(uint32_t &index) {
    const uint32_t rows = (*tables_).depth(flow_info_table);
    while (searched_ < rows && (*tables_).next_used(flow_info_table, searched_) == searched_)
        ++searched_;
    index = searched_;
    return searched_ < rows;
}

flow_counts flow_store::counts_at(uint32_t index) {
    flow_counts out;
    tev_tbl_flow_info_key_t info_key = {};
    info_key.index = index;
    tev_tbl_flow_info_info_t info = {};
    if (tev_tbl_flow_info_find(&info_key) == TEV_TBL_RET_OK &&
        tev_tbl_flow_info_read(&info_key, &info) == TEV_TBL_RET_OK) {
        out.last_seen = info.action_u.flow_info_a.timestamp;
        out.packets = number(info.action_u.flow_info_a.count);
    }
    tev_tbl_ipfix_ingress_key_t export_key = {};
    export_key.index = index;
    tev_tbl_ipfix_ingress_info_t exported = {};
    if (tev_tbl_ipfix_ingress_find(&export_key) == TEV_TBL_RET_OK &&
        tev_tbl_ipfix_ingress_read(&export_key, &exported) == TEV_TBL_RET_OK)
        out.bytes = number(exported.action_u.ipfix.bcnt);
    return out;
}

add_result flow_store::add(const packets::flow &f, const flow_counts &counts) {
    tev_tbl_flow_spec_t spec = spec_of(f, 0);
    if (tev_tbl_flow_find(&spec.key) == TEV_TBL_RET_OK) {
        tev_tbl_flow_info_t found = spec;
        if (tev_tbl_flow_read(&spec.key, &found) != TEV_TBL_RET_OK) return add_result::refused;
        const uint32_t index = found.action_u.flow_hash.flow_idx;
        flow_counts sum = counts_at(index);
        sum.packets += counts.packets;
        sum.bytes += counts.bytes;
        sum.last_seen = std::max(sum.last_seen, counts.last_seen);
        const auto info = info_spec(index, sum);
        const auto exported = export_spec(index, sum);
        const bool done = tev_tbl_flow_info_update(&info) == TEV_TBL_RET_OK &&
                          tev_tbl_ipfix_ingress_update(&exported) == TEV_TBL_RET_OK;
        return done ? add_result::counted : add_result::refused;
    }
    uint32_t index = 0;
    if (!next_free_index(index)) return add_result::no_info_row;
    const auto info = info_spec(index, counts);
    const auto exported = export_spec(index, counts);
    spec.action_u.flow_hash.flow_idx = index;
    const bool data_written = tev_tbl_flow_info_create(&info) == TEV_TBL_RET_OK &&
                              (tev_tbl_ipfix_ingress_find(&exported.key) == TEV_TBL_RET_OK
                                   ? tev_tbl_ipfix_ingress_update(&exported)
                                   : tev_tbl_ipfix_ingress_create(&exported)) == TEV_TBL_RET_OK;
    if (data_written && tev_tbl_flow_create(&spec) == TEV_TBL_RET_OK) return add_result::added;
    if (tev_tbl_ipfix_ingress_find(&exported.key) == TEV_TBL_RET_OK)
        tev_tbl_ipfix_ingress_delete(&exported.key);
    if (tev_tbl_flow_info_find(&info.key) == TEV_TBL_RET_OK) tev_tbl_flow_info_delete(&info.key);
    return add_result::refused;
}

remove_result flow_store::remove(const stored_flow &f) {
    if (tev_tbl_flow_delete(&f.key) != TEV_TBL_RET_OK) return remove_result::refused;
    searched_ = 1;
    tev_tbl_ipfix_ingress_key_t export_key = {};
    export_key.index = f.index;
    tev_tbl_flow_info_key_t info_key = {};
    info_key.index = f.index;
    // A flow written by hand may have neither.
    bool done = true;
    if (tev_tbl_ipfix_ingress_find(&export_key) == TEV_TBL_RET_OK)
        done = tev_tbl_ipfix_ingress_delete(&export_key) == TEV_TBL_RET_OK;
    if (tev_tbl_flow_info_find(&info_key) == TEV_TBL_RET_OK)
        done = tev_tbl_flow_info_delete(&info_key) == TEV_TBL_RET_OK && done;
    return done ? remove_result::removed : remove_result::data_left;
}

void flow_store::for_each(const std::function<bool(const stored_flow &)> &see) {
    sdk::table::ftl_access::for_each(
        *tables_.tables().flow_tbl(), [&](const sdk::table::ftl_access::stored_flow &entry) {
            const pipeline::table &t = *pipeline::find_table(entry.table);
            auto read = read_back(*tables_, t, entry.row);
            if (!read) return true;
            stored_flow out;
            std::memcpy(&out.key, read->key.data(), sizeof out.key);
            out.flow = packets::flow_of(out.key);
            out.index = static_cast<uint32_t>(read->data_value(0));
            out.table = entry.table;
            out.row = entry.row;
            out.path = entry.path;
            out.counts = counts_at(out.index);
            return see(out);
        });
}

}  // namespace halden::tool
