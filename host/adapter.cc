#include "host/adapter.h"

#include "host/memory/directory.h"
#include "host/memory/flow_rows.h"
#include "host/memory/row_store.h"
#include "host/memory/troubles.h"
#include "host/memory/work_page.h"
#include "host/trace/trace.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace halden::host {

namespace {

std::atomic<adapter *> current_adapter = nullptr;

void check_depth(const char *name, uint32_t rows, uint32_t most) {
    if (rows == 0 || (rows & (rows - 1)) != 0 || rows > most)
        throw std::runtime_error(std::string(name) + " " + std::to_string(rows) +
                                 ": must be a power of two up to " + std::to_string(most));
}

constexpr row_lengths tcam_lengths = {.most = tcam_image_bytes * 8, .step = 16};

constexpr const char *work_file = "engines-at-work";

uint32_t sram_rows(const table_memory &table) {
    const table_memory *overflow = table_memory_of(table.overflow);
    return table.rows + (overflow != nullptr ? overflow->rows : 0);
}

}  // namespace

adapter &current() {
    adapter *set = current_adapter.load(std::memory_order_acquire);
    if (set != nullptr) return *set;
    // Never destroyed: threads may still write while the process ends.
    static adapter *const made_on_first_use = adapter::anonymous().release();
    return *made_on_first_use;
}

adapter *set_current(adapter *next) {
    return current_adapter.exchange(next, std::memory_order_acq_rel);
}

std::unique_ptr<adapter> adapter::anonymous(const adapter_options &options) {
    adapter_options own = options;
    own.access = access::create;
    return std::unique_ptr<adapter>(new adapter({}, own));
}

std::unique_ptr<adapter> adapter::open(const std::string &directory,
                                       const adapter_options &options) {
    if (directory.empty()) throw std::runtime_error("the adapter's directory has no name");
    return std::unique_ptr<adapter>(new adapter(directory, options));
}

adapter::adapter(const std::string &directory, const adapter_options &options)
    : directory_(directory), options_(options), troubles_(std::make_unique<trouble_list>()) {
    check_depth("flow_rows", options.flow_rows, table_memory_of(flow_table)->rows);
    check_depth("flow_ohash_rows", options.flow_ohash_rows,
                table_memory_of(flow_ohash_table)->rows);
    if (!directory.empty()) files_ = std::make_unique<host::directory>(directory, options);
}

adapter::~adapter() {
    for (auto &kind : rows_)
        for (auto &rows : kind) delete rows.load();
    for (auto &rows : flows_) delete rows.load();
    // Nothing is under way: the next process has nothing to finish.
    if (work_ != nullptr && keeps_rows() && work_->is_idle()) files_->remove(work_file);
}

std::vector<std::string> adapter::troubles() const { return troubles_->texts(); }

uint32_t adapter::depth(uint32_t tableid) const {
    if (tableid == flow_table) return options_.flow_rows;
    if (tableid == flow_ohash_table) return options_.flow_ohash_rows;
    const table_memory *table = table_memory_of(tableid);
    return table != nullptr ? table->rows : 0;
}

bool adapter::keeps_rows() const {
    return files_ != nullptr &&
           (options_.access == access::create || options_.access == access::write);
}

backing adapter::backing_of(memory where, uint32_t tableid) {
    if (files_ != nullptr) {
        backing out = files_->memory_of(where, tableid);
        if (flushes())
            out.on_flush = [this, where, tableid](size_t offset, size_t bytes) {
                return !flush_hook_ || flush_hook_(where, tableid, offset, bytes);
            };
        return out;
    }
    const bool flow = table_memory_of(tableid)->is_flow();
    return {.on = {}, .how = mapping::shared, .pages = flow ? options_.flow_paging : paging::small};
}

std::string adapter::memory_name(memory where, uint32_t tableid) const {
    return files_ != nullptr ? files_->name_of(where, tableid)
                             : "anonymous memory, " + std::string(host::name_of(where)) +
                                   " of table " + std::to_string(tableid);
}

// A file's error begins with its name, which is said only once.
void adapter::note_unmapped(memory where, uint32_t tableid, const std::string &name,
                            const std::exception &error) {
    std::string_view reason = error.what();
    const std::string prefix = name + ": ";
    if (reason.starts_with(prefix)) reason.remove_prefix(prefix.size());
    const std::string what = "cannot be mapped: " + std::string(reason);
    trace::error("%s: %s", name.c_str(), what.c_str());
    troubles_->note(where, tableid, trouble_list::whole_memory, name, what);
}

// Memories are mapped when they are first touched: most uses of an adapter need few of them.
row_store *adapter::rows_of(memory where, uint32_t tableid) {
    auto &place = rows_[static_cast<unsigned>(where)][tableid];
    row_store *rows = place.load(std::memory_order_acquire);
    if (rows != nullptr) return rows;
    const std::lock_guard guard(mapping_);
    rows = place.load(std::memory_order_acquire);
    if (rows != nullptr) return rows;
    try {
        const table_memory &table = *table_memory_of(tableid);
        const uint32_t depth = where == memory::sram ? sram_rows(table) : table.rows;
        rows = new row_store(backing_of(where, tableid), depth,
                             where == memory::tcam ? tcam_lengths : row_lengths{});
        place.store(rows, std::memory_order_release);
    } catch (const std::exception &error) {
        note_unmapped(where, tableid, memory_name(where, tableid), error);
    }
    return rows;
}

flow_rows *adapter::flow_rows_of(uint32_t tableid) {
    auto &place = flows_[tableid];
    flow_rows *rows = place.load(std::memory_order_acquire);
    if (rows != nullptr) return rows;
    const std::lock_guard guard(mapping_);
    rows = place.load(std::memory_order_acquire);
    if (rows != nullptr) return rows;
    try {
        rows = new flow_rows(backing_of(memory::hbm, tableid), depth(tableid));
        place.store(rows, std::memory_order_release);
    } catch (const std::exception &error) {
        note_unmapped(memory::hbm, tableid, memory_name(memory::hbm, tableid), error);
    }
    return rows;
}

backing adapter::work_backing(bool &is_new) const {
    is_new = true;
    if (files_ == nullptr) return {};
    const bool kept = keeps_rows();
    file found = files_->open(work_file, kept ? O_RDWR : O_RDONLY);
    is_new = !found.is_open();
    if (is_new && kept) found = files_->open_or_make(work_file);
    if (flushes()) {
        // Each name would have to be on the disk before what it names, and off it before the row is
        // used again. An empty file says that anything may have been under way.
        if (ftruncate(found.descriptor(), 0) != 0 || fsync(found.descriptor()) != 0)
            found.fail(std::strerror(errno));
        return {};
    }
    return {.on = std::move(found),
            .how = kept            ? mapping::shared
                   : is_writable() ? mapping::private_copy
                                   : mapping::read_only};
}

work_page *adapter::work() {
    const std::lock_guard guard(mapping_);
    if (work_ != nullptr) return work_.get();
    try {
        bool is_new = false;
        backing from = work_backing(is_new);
        work_ = std::make_unique<work_page>(std::move(from), is_new && is_writable());
    } catch (const std::exception &error) {
        note_unmapped(memory::sram, 0,
                      files_ != nullptr ? files_->path() + "/" + work_file : "anonymous memory",
                      error);
    }
    return work_.get();
}

bool adapter::has_work_left() {
    if (files_ == nullptr ? work_ == nullptr : !files_->has(work_file)) return false;
    const work_page *page = work();
    return page == nullptr || !page->is_idle();
}

uint8_t *adapter::hbm_rows(uint32_t tableid) {
    const table_memory *table = table_memory_of(tableid);
    if (table == nullptr || !table->is_flow()) return nullptr;
    flow_rows *rows = flow_rows_of(tableid);
    return rows != nullptr ? rows->base() : nullptr;
}

sdk_ret_t adapter::flush_flow_row(uint32_t tableid, uint32_t row) {
    flow_rows *rows = flow_rows_of(tableid);
    return rows == nullptr ? SDK_RET_OOM : kept(__func__, memory::hbm, tableid, rows->flush(row));
}

void adapter::set_observer(observer call) {
    const std::lock_guard guard(observing_);
    observer_ = call ? std::make_shared<const observer>(std::move(call)) : nullptr;
    observed_.store(observer_ != nullptr, std::memory_order_release);
}

void adapter::tell(const row_change &change) {
    std::shared_ptr<const observer> call;
    {
        const std::lock_guard guard(observing_);
        call = observer_;
    }
    if (call != nullptr) (*call)(change);
}

}  // namespace halden::host
