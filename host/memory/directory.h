#pragma once

// The directory of a file-backed adapter:
//
//     adapter            halden adapter 1 / flow_rows 4194304 / flow_ohash_rows 2097152
//     table-16.sram      one file per memory of a table, sparse, made at the first use
//     table-07.tcam
//     table-21.hbm
//
// It is opened once, and every file by its name in it, never through a symbolic link. `adapter` and
// each memory file are locked while the adapter is open, exclusively by whoever may write, so it is
// the files in use that are guarded, whatever they are called meanwhile. The locks go with the
// process, however it ends.

#include "host/memory/file.h"
#include "host/memory/memory_map.h"
#include "host/memory/region.h"

#include <array>
#include <cstdint>
#include <string>

namespace halden::host {

enum class access : uint8_t;
struct adapter_options;

class directory {
  public:
    // Throws std::runtime_error with the path and the reason.
    directory(const std::string &path, const adapter_options &options);

    const std::string &path() const { return path_; }

    // The memory's file, for messages.
    std::string name_of(memory where, uint32_t tableid) const;
    // What the memory is mapped from. Throws as the constructor does.
    backing memory_of(memory where, uint32_t tableid);

    // A file of this name; one that is not open when there is none. Throws when it is anything but
    // a regular file.
    file open(const std::string &name, int flags) const;
    // The same, for reading and writing; an empty one is made when there is none.
    file open_or_make(const std::string &name) const;
    bool has(const std::string &name) const;
    // A name that is not there is no error.
    void remove(const std::string &name) const;

  private:
    void open_directory(bool group_reads);
    void flush_names() const;
    void take_memory_files();
    void check_or_write(const std::string &wanted);
    void check_alone(const std::string &reason) const;
    bool changes_files() const;
    void lock(const file &what) const;
    bool is_empty_but_for(const std::string &name) const;
    file open_to_use(const std::string &name) const;

    std::string path_;
    access how_;
    bool flushes_;
    mode_t file_mode_ = 0600;
    file directory_;
    file adapter_;
    // Opened and locked, not mapped yet.
    std::array<std::array<file, last_table + 1>, memory_kinds> found_;
};

}  // namespace halden::host
