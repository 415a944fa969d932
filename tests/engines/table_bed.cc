#include "tests/engines/table_bed.h"

#include <algorithm>

#include "host/trace/trace.h"
#include "sdk/asic/pd.h"

namespace halden::test {

bytes bytes_of_number(uint64_t number, uint32_t size) {
    bytes out(size);
    for (uint32_t i = 0; i < size; ++i) {
        // The steps of a well-known generator (splitmix64).
        uint64_t z = (number += 0x9e3779b97f4a7c15);
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9;
        z = (z ^ (z >> 27)) * 0x94d049bb133111eb;
        out[i] = static_cast<uint8_t>(z >> 32);
    }
    return out;
}

TableBed::TableBed() {
    // Refusals are part of these tests.
    host::trace::set_level("off");
    open();
}

TableBed::~TableBed() { close(); }

void TableBed::open(const std::string &directory) {
    close();
    const host::adapter_options small = {.flow_rows = 16, .flow_ohash_rows = 16};
    adapter_ =
        directory.empty() ? host::adapter::anonymous(small) : host::adapter::open(directory, small);
    state_ = std::make_unique<host::table_state>(*adapter_);
}

void TableBed::close() {
    state_.reset();
    adapter_.reset();
}

bytes TableBed::data_of_number(uint64_t number) const {
    bytes out = bytes_of_number(number, 1 + t().data_bytes);
    out[0] = static_cast<uint8_t>(out[0] % facts().actions);
    return out;
}

uint8_t TableBed::pc_of(uint32_t id, const bytes &data) const {
    return reference::table_of(id).actions == 1 ? reference::no_pc
                                                : sdk::asic::pd::asicpd_get_action_pc(id, data[0]);
}

bytes TableBed::spec_of(const bytes &key, const bytes &mask, const bytes &data) const {
    bytes out(t().spec_bytes(), 0x5a);  // also the mask, where none is given
    out[0] = data[0];
    std::copy(key.begin(), key.end(), out.begin() + 1);
    if (t().kind == api_kind::tcam) {
        out[1 + t().key_bytes] = mask.empty() ? 0 : 1;
        std::copy(mask.begin(), mask.end(), out.begin() + t().mask_at());
    }
    std::copy(data.begin() + 1, data.end(), out.begin() + t().data_at());
    return out;
}

tev_tbl_ret_t TableBed::create(const bytes &key, const bytes &data, const bytes &mask) {
    return t().create(spec_of(key, mask, data).data());
}

tev_tbl_ret_t TableBed::update(const bytes &key, const bytes &data, const bytes &mask) {
    return t().update(spec_of(key, mask, data).data());
}

void TableBed::expect_reads(const bytes &key, const bytes &data) {
    bytes info(t().spec_bytes());
    ASSERT_EQ(t().read(key.data(), info.data()), 0u);
    bytes read(data.size());
    read[0] = info[0];
    std::copy(info.begin() + t().data_at(), info.end(), read.begin() + 1);
    ASSERT_EQ(read[0], data[0]);
    ASSERT_EQ(reference::packed_data(t().id, read), reference::packed_data(t().id, data));
}

bytes TableBed::packet_of(const bytes &key) const {
    return reference::build_key(t().id, key, bytes(key.size(), 0xff), image_room).key;
}

bool TableBed::hardware_finds(const bytes &key, const bytes &data) {
    const bytes packet = packet_of(key);
    const host::view::answer found = look_up(packet);
    if (!found.hit) return false;
    const reference::image wanted =
        reference::entry(found.table, pc_of(t().id, data), packet, data);
    bytes image = wanted.data;
    image.resize((wanted.bits + 7) / 8);
    return found.bits == wanted.bits && found.image == image;
}

}  // namespace halden::test
