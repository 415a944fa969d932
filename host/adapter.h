#pragma once

// A software adapter: the memories of the pipeline's 48 tables, behind the calls of the ASIC layer.
//
//     auto adapter = halden::host::adapter::open("/var/lib/halden");   // or adapter::anonymous()
//     halden::host::scoped_current use(*adapter);
//     p4pd_entry_install(16, 5, nullptr, nullptr, &lif);               // lands in *adapter
//
// The library's imports are free functions, so one adapter of the process is the current one and
// answers them. Everything else - memory, faults, observer - belongs to an adapter; any number of
// them live side by side.
//
// Rows and bits
//   * SRAM and TCAM images are kept as they are written, swizzled; HBM images are not swizzled;
//   * lengths are bits; a row of length 0 is empty;
//   * an index beyond the table's depth, an image wider than the row, an unknown table: the call
//     answers SDK_RET_INVALID_ARG and nothing is changed. Memory that cannot be mapped:
//     SDK_RET_OOM;
//   * a row write is seen whole or not at all, also across the death of the process;
//   * a row whose length in memory is one that no write leaves there is damaged: reading or
//     clearing it, and writing part of it, answers SDK_RET_DAMAGED and touches neither the row nor
//     the caller's buffers. It is not empty either. Writing the whole row puts it right, and the
//     trace says what was there.
//
// Damage and memory that cannot be mapped are kept by name, see troubles().
//
// Threads: all functions may run at once; writes to one row are serialised by the caller.

#include "host/faults/faults.h"
#include "host/memory/memory_map.h"
#include "sdk/table/types.h"

#include <array>
#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace halden::host {

struct backing;
class directory;
class flow_rows;
class row_store;
class trouble_list;
class work_page;

// One row before and after a write. For SRAM, `table` is the owner of the memory and `row` its row:
// a write through an overflow table is seen in the hash table's window. TCAM images are the key (x)
// in bytes 0 to 31 and the mask (y) in bytes 32 to 63. A row that was damaged is shown as empty.
// The spans live as long as the call.
struct row_change {
    memory where;
    uint32_t table;
    uint32_t row;
    uint16_t old_bits;
    std::span<const uint8_t> old_image;
    uint16_t new_bits;
    std::span<const uint8_t> new_image;
};
using observer = std::function<void(const row_change &)>;

// Told before each flush of durability::power which bytes of which memory's file are to reach the
// disk now; answers whether they do. For tests: a flush that is refused has failed.
using flush_hook = std::function<bool(memory where, uint32_t table, size_t offset, size_t bytes)>;

// How an adapter's directory is opened. Either one process has it for writing, or any number have
// it for the other two.
enum class access : uint8_t {
    create,    // as `write`; an adapter is made where the directory is absent or empty
    write,     // there must be one
    read,      // there must be one. Nothing in it is made, marked or changed; rows are read alone
    rehearse,  // there must be one. Rows are written as ever, and no other process ever sees it
};

// There is no adapter of that name, and `access` does not make one.
class no_adapter : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// What an acknowledged call, one that has returned SDK_RET_OK, outlives.
enum class durability : uint8_t {
    // The process, killed at whatever instant. Nothing is promised for a power cut or a crash of
    // the system: rows may be missing, and a row whose state word was written back before its image
    // reads as zeros, "all fields 0".
    process,
    // Power cuts too, on a disk that keeps what it said it had written. What has to be there first
    // is flushed first, and a call returns after the last flush: two or more waits for the disk
    // each. So are files and directories when they are made. A flush that fails fails the call, and
    // with it every later one on the flow tables.
    power,
};

struct adapter_options {
    // Powers of two, at most the pipeline's own: 22 bits of index, 21 bits of hint.
    uint32_t flow_rows = 4194304;
    uint32_t flow_ohash_rows = 2097152;
    // Of the flow memories of an anonymous adapter. Huge pages are for tables that will be full.
    paging flow_paging = paging::small;
    host::access access = host::access::create;
    host::durability durability = host::durability::process;
    // The directory and its files are their owner's alone, unless this, or the mode of a directory
    // that is there already, lets its group read.
    bool group_reads = false;
};

class adapter {
  public:
    // Memory that goes with the process.
    static std::unique_ptr<adapter> anonymous(const adapter_options &options = {});
    // Memory in `directory`, which is made when it is absent and `access` lets it be. An adapter
    // that another process has open, other than for reading as this one does, or that was made with
    // other options, is refused, and so is a directory of other files. Throws std::runtime_error
    // with the path and the reason; no_adapter where none is made.
    static std::unique_ptr<adapter> open(const std::string &directory,
                                         const adapter_options &options = {});
    ~adapter();
    adapter(const adapter &) = delete;
    adapter &operator=(const adapter &) = delete;

    // Empty for an anonymous adapter.
    const std::string &directory() const { return directory_; }
    // Null for an anonymous adapter.
    const host::directory *files() const { return files_.get(); }
    // Without a directory, or in a rehearsal, what is written ends with the adapter.
    bool keeps_rows() const;
    // False when the directory was opened for reading: writes are refused with
    // SDK_RET_HW_PROGRAM_ERR.
    bool is_writable() const { return options_.access != access::read; }
    // Rows of a table; 0 for an unknown id.
    uint32_t depth(uint32_t tableid) const;

    // The ASIC calls. `image`, `mask`, `key` and `key_mask` hold the bytes of their length, rounded
    // up to 16 bits in SRAM and TCAM; buffers that are read into hold a whole row (64 bytes; 32 for
    // each TCAM image, 128 for a flow row). `*bits` becomes 0 on every failure.
    //
    // By the id of an overflow table, SRAM is written at the owner's row and read at either the
    // overflow row or the owner's.
    sdk_ret_t sram_write(uint32_t tableid, uint32_t index, const uint8_t *image, uint16_t bits,
                         const uint8_t *mask);
    sdk_ret_t sram_read(uint32_t tableid, uint32_t index, uint8_t *image, uint16_t *bits);
    sdk_ret_t tcam_write(uint32_t tableid, uint32_t index, const uint8_t *key,
                         const uint8_t *key_mask, uint16_t width);
    sdk_ret_t tcam_read(uint32_t tableid, uint32_t index, uint8_t *key, uint8_t *key_mask,
                        uint16_t *width);
    sdk_ret_t hbm_write(uint32_t tableid, uint32_t index, const uint8_t *image, uint16_t bits);
    sdk_ret_t hbm_read(uint32_t tableid, uint32_t index, uint8_t *image, uint16_t *bits);

    // Empties one entry, out of hardware's sight first: the TCAM row before its data. `index` is
    // the table's own row, also for an overflow table. Meets the faults of a write.
    sdk_ret_t clear_row(uint32_t tableid, uint32_t index);

    // The rows of a flow table, 128 bytes each, for an engine that works in place; null for other
    // tables and when the memory cannot be mapped. Such stores are neither observed nor faulted; an
    // adapter that is not writable takes none.
    uint8_t *hbm_rows(uint32_t tableid);

    // What the engines have under way, for engines; null when it cannot be mapped.
    work_page *work();
    // Whether a process that was killed left work, which a table_state finishes when it is made. To
    // be asked before rows are written without engines: the work may name them.
    bool has_work_left();

    // SDK_RET_OK when the entry's row can be read in all its memories: SDK_RET_DAMAGED, or
    // SDK_RET_OOM for memory that cannot be mapped. Meets no fault.
    sdk_ret_t check_row(uint32_t tableid, uint32_t index);
    // What is wrong with the entry's row, for people; empty for a sound one. Kept nowhere.
    std::string damage_of(uint32_t tableid, uint32_t index);
    // Damaged rows and memories that could not be mapped, as far as calls met them and nothing
    // put them right: a line for each, with the file's name or "anonymous memory".
    std::vector<std::string> troubles() const;

    // Such an engine's flushes, where durability asks for them: returns when the row has reached
    // the disk.
    bool flushes() const { return keeps_rows() && options_.durability == durability::power; }
    sdk_ret_t flush_flow_row(uint32_t tableid, uint32_t row);

    // The first row of a table at or behind `from` that is not empty, by its TCAM where it has one;
    // depth when there is none. Steps over memory that was never touched.
    uint32_t next_used(uint32_t tableid, uint32_t from);

    fault_set &faults() { return faults_; }
    // Called after every write of a row, from the thread that wrote; an empty function ends it.
    void set_observer(observer call);
    // To be set before the first use of the memories.
    void set_flush_hook(flush_hook hook) { flush_hook_ = std::move(hook); }

  private:
    struct row_place;
    adapter(const std::string &directory, const adapter_options &options);

    backing backing_of(memory where, uint32_t tableid);
    backing work_backing(bool &is_new) const;
    row_store *rows_of(memory where, uint32_t tableid);
    flow_rows *flow_rows_of(uint32_t tableid);
    sdk_ret_t find_sram(uint32_t tableid, uint32_t index, bool for_read, const char *call,
                        row_place &place);
    sdk_ret_t refuse(const char *call, const std::string &what) const;
    sdk_ret_t refuse_write(const char *call, uint32_t tableid) const;
    sdk_ret_t refuse_index(const char *call, uint32_t tableid, uint32_t index);
    sdk_ret_t refuse_damaged(const char *call, const row_place &place, uint16_t length);
    std::string memory_name(memory where, uint32_t tableid) const;
    void note_unmapped(memory where, uint32_t tableid, const std::string &name,
                       const std::exception &error);
    template <class See>
    sdk_ret_t for_each_memory(uint32_t tableid, uint32_t index, See see);
    sdk_ret_t read_row(const char *call, const row_place &place, row_image &image, uint16_t &bits);
    sdk_ret_t kept(const char *call, memory where, uint32_t tableid, bool flushed) const;
    sdk_ret_t put(const char *call, const row_place &place, const row_image &image, uint16_t bits);
    sdk_ret_t put_flow(const char *call, uint32_t tableid, flow_rows &rows, uint32_t row,
                       const flow_image &image);
    void tell(const row_change &change);

    std::string directory_;
    adapter_options options_;
    std::unique_ptr<host::directory> files_;
    fault_set faults_;
    std::unique_ptr<trouble_list> troubles_;
    std::mutex mapping_;
    std::array<std::array<std::atomic<row_store *>, last_table + 1>, memory_kinds> rows_ = {};
    std::array<std::atomic<flow_rows *>, flow_table + 1> flows_ = {};
    std::unique_ptr<work_page> work_;
    std::atomic<bool> observed_ = false;
    std::mutex observing_;
    std::shared_ptr<const observer> observer_;
    flush_hook flush_hook_;
};

// The adapter that answers the library's imports. An anonymous one is made at the first use when
// none was set. `set_current` answers the one before, null when there was none; null goes back to
// the default.
adapter &current();
adapter *set_current(adapter *next);

class scoped_current {
  public:
    explicit scoped_current(adapter &next) : before_(set_current(&next)) {}
    ~scoped_current() { set_current(before_); }
    scoped_current(const scoped_current &) = delete;
    scoped_current &operator=(const scoped_current &) = delete;

  private:
    adapter *before_;
};

}  // namespace halden::host
