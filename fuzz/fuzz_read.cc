// Rows of arbitrary bits in a software adapter, read into records: what reads back and is written
// again reads back equal.

#include "host/adapter.h"

#include <algorithm>
#include <array>

#include "fuzz/input.h"
#include "p4gen/halden/pipeline/pipeline.h"
#include "p4pd.h"
#include "tools/haldenctl/record.h"

using namespace halden;
using namespace halden::fuzz;
using pipeline::table;

namespace {

constexpr uint8_t without_tcam_row = 1;

struct read_out {
    read_out(const table &t, uint8_t fill)
        : key(pipeline::is_keyed(t.kind) ? t.key_bytes : 0, fill),
          mask(pipeline::has_mask(t.kind) ? t.key_bytes : 0, fill),
          data(t.data_bytes, fill) {}
    bool operator==(const read_out &) const = default;
    bool only(uint8_t fill) const { return key.only(fill) && mask.only(fill) && data.only(fill); }

    block key, mask, data;
};

p4pd_error_t read_row(const table &t, uint32_t row, const read_out &out) {
    return p4pd_entry_read(t.id, row, out.key.data(), out.mask.data(), out.data.data(), nullptr,
                           false);
}
p4pd_error_t dump_row(const table &t, uint32_t row, const read_out &out) {
    return p4pd_entry_read(t.id, row, out.key.data(), out.mask.data(), out.data.data(), nullptr,
                           nullptr);
}

// Length of the row's data, whatever it is.
uint16_t stored_bits(host::adapter &adapter, const table &t, uint32_t row) {
    std::array<uint8_t, host::flow_row_bytes> image = {};
    uint16_t bits = 0;
    if (pipeline::is_hbm(t.kind))
        adapter.hbm_read(t.id, row, image.data(), &bits);
    else
        adapter.sram_read(t.id, row, image.data(), &bits);
    return bits;
}

void store(host::adapter &adapter, const table &t, uint32_t row, uint8_t flags, input &in) {
    if (pipeline::has_mask(t.kind) && (flags & without_tcam_row) == 0) {
        const auto width = static_cast<uint16_t>(16 * (1 + in.take<uint8_t>() % 16));
        const block x = in.take_block(width / 8u), y = in.take_block(width / 8u);
        require(adapter.tcam_write(t.id, row, x.data(), y.data(), width) == 0, "TCAM is stored");
    }
    const unsigned row_bytes =
        t.kind == pipeline::kind::hash_hbm ? host::flow_row_bytes : host::row_bytes;
    const auto bits = static_cast<uint16_t>(in.take<uint16_t>() % (row_bytes * 8 + 1));
    const block image = in.take_block((bits + 15u) / 16 * 2);
    if (pipeline::is_hbm(t.kind))
        require(adapter.hbm_write(t.id, row, image.data(), bits) == 0, "HBM is stored");
    else
        require(adapter.sram_write(t.id, t.overflow_base + row, image.data(), bits, nullptr) == 0,
                "SRAM is stored");
}

template <class Fields>
void check_widths(const Fields &fields, const uint8_t *record) {
    for (size_t n = 0; n < fields.size(); ++n)
        require(tool::field_value(record, pipeline::record_offset(fields, n), fields[n].bits) <=
                    tool::all_ones(fields[n].bits),
                "no field is wider than the hardware's");
}

// Both words of a ternary key bit: what is not compared is no key.
void check_key(const table &t, const read_out &out) {
    if (pipeline::is_keyed(t.kind)) check_widths(t.key, out.key.data());
    if (!pipeline::has_mask(t.kind)) return;
    check_widths(t.key, out.mask.data());
    for (size_t i = 0; i < out.key.size(); ++i)
        require((out.key.data()[i] & ~out.mask.data()[i]) == 0, "a key lies within its mask");
}

bool check_data(const table &t, const read_out &out) {
    const uint8_t action = out.data.data()[0];
    if (action >= t.actions.size()) return false;
    check_widths(t.actions[action].fields, out.data.data() + 1);
    return true;
}

void write_again(host::adapter &adapter, const table &t, uint32_t row, const read_out &first,
                 uint8_t fill) {
    // The writers leave key and mask swizzled where they take images; these are records.
    const read_out records = first;
    require(p4pd_entry_install(t.id, row, records.key.data(), records.mask.data(),
                               records.data.data()) == P4PD_SUCCESS,
            "what was read can be written");
    require(records == first, "the records are the caller's");
    const read_out second(t, fill);
    require(read_row(t, row, second) == P4PD_SUCCESS, "what was written can be read");
    if (stored_bits(adapter, t, row) != 0) {
        require(second == first, "what is written again reads back equal");
        return;
    }
    require(second.only(fill), "an empty row leaves the records alone");
    // A flow row of zeros is an empty one; a keyless entry has no bits.
    require(
        t.kind == pipeline::kind::keyless || (t.kind == pipeline::kind::hash_hbm && first.only(0)),
        "only an entry without bits makes a row empty");
}

void check_row(host::adapter &adapter, const table &t, uint32_t row, uint8_t flags, uint8_t fill) {
    const read_out first(t, fill), dumped(t, fill);
    const p4pd_error_t result = read_row(t, row, first);
    require(dump_row(t, row, dumped) == result && dumped == first, "the dump reads the same");
    if (pipeline::has_mask(t.kind) && (flags & without_tcam_row) != 0) {
        require(result == P4PD_FAIL && first.only(fill), "an empty TCAM row reads as nothing");
        return;
    }
    require(result == P4PD_SUCCESS, "a stored row can be read");
    const bool has_data = stored_bits(adapter, t, row) != 0;
    if (has_data || pipeline::has_mask(t.kind)) check_key(t, first);
    if (!has_data) {
        require(first.data.only(fill), "a row without data leaves the record alone");
        return;
    }
    const uint32_t next = (row + 1) % adapter.depth(t.id);
    if (check_data(t, first)) write_again(adapter, t, next, first, fill);
    require(adapter.clear_row(t.id, next) == 0, "a row can be cleared");
}

}  // namespace

// The dump prints on standard output; the fuzzer itself on standard error.
extern "C" int LLVMFuzzerInitialize(int * /*argc*/, char *** /*argv*/) {
    if (std::freopen("/dev/null", "w", stdout) == nullptr) std::abort();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static const std::unique_ptr<host::adapter> adapter = host::adapter::anonymous();
    static const host::scoped_current use(*adapter);

    input in(data, size);
    const table &t = *pipeline::tables[in.take<uint8_t>() % pipeline::table_count];
    const uint8_t flags = in.take<uint8_t>(), fill = in.take<uint8_t>();
    const uint32_t row = in.take<uint8_t>() % adapter->depth(t.id);
    store(*adapter, t, row, flags, in);
    check_row(*adapter, t, row, flags, fill);
    require(adapter->clear_row(t.id, row) == 0, "a row can be cleared");
    return 0;
}
