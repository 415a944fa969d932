// The text of software records: any table id, any bytes, each record given or not, any buffer. Held
// against the slow printer of the tests, which knows neither the library nor its description.

#include "fuzz/decoded_text.h"
#include "p4pd.h"
#include "tests/decode/slow_printer.h"

using namespace halden::fuzz;

namespace {

constexpr uint8_t with_key = 1, with_mask = 2, with_data = 4, id_from_index = 8;
constexpr size_t banner = 19;

halden::reference::bytes bytes_of(const block &from) {
    return {from.data(), from.data() + from.size()};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    input in(data, size);
    const uint8_t small_id = in.take<uint8_t>(), flags = in.take<uint8_t>();
    const auto index = in.take<uint32_t>();
    const auto buffer_size = in.take<uint16_t>();
    const uint32_t id = (flags & id_from_index) != 0 ? index : small_id;
    const bool known = id >= 1 && id <= 48;
    const auto given = [&](uint8_t record) { return (flags & record) != 0; };

    // Records of exactly the table's sizes; of none where the table has none.
    size_t key_bytes = 0, mask_bytes = 0, data_bytes = 0;
    if (known) {
        const halden::reference::table &facts = halden::reference::table_of(id);
        key_bytes = facts.has_key() ? facts.key_bytes : 0;
        mask_bytes = facts.has_tcam() ? facts.key_bytes : 0;
        data_bytes = facts.data_bytes;
    }
    const block action = in.take_block(data_bytes), key = in.take_block(key_bytes),
                mask = in.take_block(mask_bytes);
    const block action_before = action, key_before = key, mask_before = mask;
    const auto decode = [&](char *buffer, uint16_t length) {
        return p4pd_table_ds_decoded_string_get(id, index, given(with_key) ? key.data() : nullptr,
                                                given(with_mask) ? mask.data() : nullptr,
                                                given(with_data) ? action.data() : nullptr, buffer,
                                                length);
    };
    check_text(buffer_size, known, banner, decode);

    const auto key_copy = bytes_of(key), mask_copy = bytes_of(mask), data_copy = bytes_of(action);
    const halden::decode_tests::records slow = {given(with_key) ? &key_copy : nullptr,
                                                given(with_mask) ? &mask_copy : nullptr,
                                                given(with_data) ? &data_copy : nullptr};
    const block text(buffer_size);
    const p4pd_error_t result = decode(text.text(), buffer_size);
    const halden::decode_tests::printed expected =
        halden::decode_tests::slow_record_text(id, index, slow, buffer_size);
    require(result == expected.result && text.view() == expected.buffer,
            "the slow printer prints the same");
    require(action == action_before && key == key_before && mask == mask_before,
            "the records are the caller's");
    return 0;
}
