#pragma once

// What the formatting library prints before it throws: the calls that led to the bad format.
//
//     stack trace:
//       ./haldenctl : halden::list_flows(int)+0x4f
//       ./haldenctl : main()+0x1a
//       /lib/libc.so.6 [0x7f21]

#include <cstdio>

namespace halden::log {

// Prints up to 63 callers, the nearest first. A frame that cannot be taken apart is printed as it
// is; nothing fails.
void dump_stack(std::FILE *out);

}  // namespace halden::log
