#include "tools/haldenctl/flow_data.h"

#include <algorithm>
#include <cstring>

#include "p4pd.h"
#include "tools/haldenctl/adapter_view.h"

namespace halden::tool {

namespace {

// 64-bit record fields are byte arrays, byte 0 lowest.
uint64_t number(const uint8_t (&bytes)[8]) {
    uint64_t value = 0;
    for (unsigned i = 8; i-- > 0;) value = value << 8 | bytes[i];
    return value;
}
void add_number(uint8_t (&bytes)[8], uint64_t more) {
    uint64_t value = number(bytes) + more;
    for (uint8_t &byte : bytes) {
        byte = static_cast<uint8_t>(value);
        value >>= 8;
    }
}

// The data record of a used row.
template <class Data>
std::optional<Data> row_at(host::adapter &adapter, uint32_t table, uint32_t row) {
    if (row >= adapter.depth(table) || !stored_at(adapter, *pipeline::find_table(table), row))
        return std::nullopt;
    Data data = {};
    if (p4pd_entry_read(table, row, nullptr, nullptr, &data, nullptr, false) != P4PD_SUCCESS)
        return std::nullopt;
    return data;
}

bool put(const tev_tbl_flow_info_spec_t &spec) {
    return (tev_tbl_flow_info_find(&spec.key) == TEV_TBL_RET_OK
                ? tev_tbl_flow_info_update(&spec)
                : tev_tbl_flow_info_create(&spec)) == TEV_TBL_RET_OK;
}
bool put(const tev_tbl_ipfix_ingress_spec_t &spec) {
    return (tev_tbl_ipfix_ingress_find(&spec.key) == TEV_TBL_RET_OK
                ? tev_tbl_ipfix_ingress_update(&spec)
                : tev_tbl_ipfix_ingress_create(&spec)) == TEV_TBL_RET_OK;
}

}  // namespace

flow_data::flow_data(host::adapter &adapter, uint32_t index) : index_(index) {
    uint32_t export_row = index;
    if (const auto data = row_at<flow_info_actiondata_t>(adapter, flow_info_table, index)) {
        info_.emplace();
        info_->key.index = index;
        info_->action_u.flow_info_a = data->action_u.flow_info_a;
        if (data->action_u.flow_info_a.ipfix_ingress_vld != 0)
            export_row = data->action_u.flow_info_a.ipfix_ingress_idx;
    }
    if (const auto data =
            row_at<ipfix_ingress_actiondata_t>(adapter, ipfix_ingress_table, export_row)) {
        exported_.emplace();
        exported_->key.index = export_row;
        exported_->action_u.ipfix = data->action_u.ipfix;
    }
}

flow_counts flow_data::counts() const {
    flow_counts out;
    if (!info_) return out;
    const auto &info = info_->action_u.flow_info_a;
    out.packets = number(info.count);
    out.last_seen = info.timestamp;
    if (info.ipfix_ingress_vld != 0 && exported_)
        out.bytes = number(exported_->action_u.ipfix.bcnt);
    return out;
}

bool flow_data::is_of_import() const {
    if (!info_ || number(info_->action_u.flow_info_a.count) == 0) return false;
    tev_tbl_flow_info_spec_t made = {};
    made.key.index = index_;
    made.action_u.flow_info_a.ipfix_ingress_vld = 1;
    made.action_u.flow_info_a.ipfix_ingress_idx = index_;
    made.action_u.flow_info_a.timestamp = info_->action_u.flow_info_a.timestamp;
    add_number(made.action_u.flow_info_a.count, number(info_->action_u.flow_info_a.count));
    return std::memcmp(&made, &*info_, sizeof made) == 0 &&
           (!exported_ || exported_->action_u.ipfix.tcp_flags == 0);
}

bool flow_data::add(const flow_counts &counts) const {
    tev_tbl_flow_info_spec_t spec = info_.value_or(tev_tbl_flow_info_spec_t{});
    spec.key.index = index_;
    auto &info = spec.action_u.flow_info_a;
    if (info.ipfix_ingress_vld == 0 && !(info_ && exported_)) {
        info.ipfix_ingress_vld = 1;
        info.ipfix_ingress_idx = index_;
    }
    info.timestamp = std::max(uint32_t{info.timestamp}, counts.last_seen);
    add_number(info.count, counts.packets);
    if (!put(spec)) return false;
    if (info.ipfix_ingress_vld == 0) return true;
    tev_tbl_ipfix_ingress_spec_t exported = exported_.value_or(tev_tbl_ipfix_ingress_spec_t{});
    exported.key.index = info.ipfix_ingress_idx;
    add_number(exported.action_u.ipfix.pcnt, counts.packets);
    add_number(exported.action_u.ipfix.bcnt, counts.bytes);
    return put(exported);
}

bool flow_data::remove() const {
    if (!info_) return true;
    const auto &info = info_->action_u.flow_info_a;
    const bool own_export =
        exported_ && info.ipfix_ingress_vld != 0 && info.ipfix_ingress_idx == index_;
    // flow_info goes last: what is left behind a refusal or a kill is found by it.
    if (own_export && tev_tbl_ipfix_ingress_delete(&exported_->key) != TEV_TBL_RET_OK) return false;
    return tev_tbl_flow_info_delete(&info_->key) == TEV_TBL_RET_OK;
}

}  // namespace halden::tool
