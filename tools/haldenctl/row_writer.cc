#include "tools/haldenctl/row_writer.h"

#include "p4gen/halden/pipeline/layout.h"
#include "p4pd.h"
#include "tools/haldenctl/failure.h"

namespace halden::tool {

namespace {

// Writes the entry and answers what stands in the row then.
std::optional<stored_row> written(host::adapter &adapter, records &entry, uint32_t row) {
    const host::scoped_current use(adapter);
    if (p4pd_entry_install(entry.of->id, row, entry.key_pointer(), entry.mask_pointer(),
                           entry.data.data()) != P4PD_SUCCESS)
        return std::nullopt;
    return stored_at(adapter, *entry.of, row);
}

}  // namespace

row_writer::row_writer(host::adapter &adapter)
    : adapter_(adapter), scratch_(host::adapter::anonymous()) {}

std::optional<stored_row> row_writer::image_of(records &entry) {
    return written(*scratch_, entry, 0);
}

void row_writer::write(records &entry, uint32_t row) {
    const auto wanted = image_of(entry);
    const bool no_bits = pipeline::row_bits(*entry.of) == 0;
    if ((!wanted && !no_bits) || written(adapter_, entry, row) != wanted)
        throw failure("the adapter did not take it; --log-level error says why",
                      exit_status::adapter);
}

}  // namespace halden::tool
