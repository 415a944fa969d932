#pragma once

// Heap allocations of the whole process since it began, whoever makes them: counted in malloc
// itself, where operator new and the libraries end as well. Under a sanitizer, which has a malloc
// of its own, its hook counts.

#include <cstdint>

namespace halden::test {

uint64_t allocation_count();

}  // namespace halden::test
