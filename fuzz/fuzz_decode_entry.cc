// The text of raw hardware entries: any table id, any bits, both words or one, any buffer.

#include "fuzz/decoded_text.h"
#include "p4pd.h"

using namespace halden::fuzz;

namespace {

constexpr uint8_t with_y = 1, id_from_index = 2;
constexpr unsigned most_bits = 8192;  // a longer entry ends the process

constexpr size_t banner_with_y = 48, banner_without = 73;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    input in(data, size);
    const uint8_t small_id = in.take<uint8_t>(), flags = in.take<uint8_t>();
    const auto index = in.take<uint32_t>();
    const auto bits = static_cast<uint16_t>(in.take<uint16_t>() % (most_bits + 1));
    const auto buffer_size = in.take<uint16_t>();
    const uint32_t id = (flags & id_from_index) != 0 ? index : small_id;
    const block entry = in.take_block((bits + 7u) / 8), entry_before = entry;
    const block y = in.take_block((flags & with_y) != 0 ? entry.size() : 0), y_before = y;

    check_text(buffer_size, id >= 1 && id <= 48,
               (flags & with_y) != 0 ? banner_with_y : banner_without,
               [&](char *buffer, uint16_t length) {
                   return p4pd_table_entry_decoded_string_get(
                       id, index, entry.data(), (flags & with_y) != 0 ? y.data() : nullptr, bits,
                       buffer, length);
               });
    require(entry == entry_before && y == y_before, "the entry is the caller's");
    return 0;
}
