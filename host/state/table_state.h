#pragma once

// The host's implementation state: the engines of all 35 tables over one adapter, published where
// the table API looks for them.
//
//     auto adapter = halden::host::adapter::open("/var/lib/halden");
//     halden::host::table_state tables(*adapter);
//     tev_tbl_lif_mapping_create(&spec);
//
// The adapter becomes the process's current one. Entries that stand in its memory are the engines'
// first ones; what a process that was killed in the adapter's directory had begun is completed or
// taken back first. No entry whose call had returned is lost, and no row that somebody wrote: only
// rows that an operation under way had named are changed (memory/work_page.h).
// A directory that is open for reading is left as it is: the engines answer, and refuse to write.
// At the end what was published before is so again.
//
// No table call may run while a state is made or destroyed. A table whose engine cannot be made
// ends the process; flows that cannot be put right throw std::runtime_error.

#include "host/adapter.h"
#include "tev_tbl_impl_state.h"

#include <memory>

namespace halden::host {

class table_state {
  public:
    explicit table_state(adapter &hardware);
    ~table_state();
    table_state(const table_state &) = delete;
    table_state &operator=(const table_state &) = delete;

    api::impl::tev_tbl_impl_state &tables() { return state_->tables; }

  private:
    void finish_work(const adapter &hardware);

    scoped_current current_;
    std::unique_ptr<api::impl::tev_host_state> state_;
    api::impl::tev_host_state *before_;
};

}  // namespace halden::host
