#pragma once

// The directory of a file-backed adapter. Its file `adapter` says what the memory files hold and is
// locked while a process has the adapter open; the lock goes with the process, however it ends.
//
//     adapter            halden adapter 1 / flow_rows 4194304 / flow_ohash_rows 2097152
//     table-16.sram      one file per memory of a table, sparse, made at the first use
//     table-07.tcam
//     table-21.hbm

#include "host/memory/memory_map.h"

#include <cstdint>
#include <string>

namespace halden::host {

// Makes or opens the directory for an adapter of these depths. Returns the descriptor that holds
// the lock; the caller closes it. Throws std::runtime_error.
int lock_directory(const std::string &directory, uint32_t flow_rows, uint32_t flow_ohash_rows);

std::string memory_file(const std::string &directory, memory where, uint32_t tableid);

}  // namespace halden::host
