#pragma once

// Result of every p4pd function, the library's and the host's.
// 0 is success, -1 (all bits set) is failure; no other value is used.

#include <stdint.h>

typedef int32_t p4pd_error_t;

#define P4PD_SUCCESS ((p4pd_error_t)0)
#define P4PD_FAIL ((p4pd_error_t)-1)
