#include "host/memory/work_page.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace halden::host {

work_page::work_page(backing from, bool is_new) : memory_(std::move(from), bytes) {
    static_assert(tables_at + (last_table + 1) * sizeof(uint64_t) <= groups_at);
    if (is_new) set_known();
    if (is_known() && word(0).load() != format)
        throw std::runtime_error("engines-at-work is of another version of halden");
}

bool work_page::is_idle() const {
    const auto rest = all().subspan(1);
    return is_known() &&
           std::all_of(rest.begin(), rest.end(), [](uint64_t word) { return word == 0; });
}

}  // namespace halden::host
