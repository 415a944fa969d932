# Sends a program's calls of the allocators to heap_hook.cc:
#
#     include(heap_hook.cmake)
#     target_link_options(a_test PRIVATE ${heap_hook_options})
set(heap_hook_options)
foreach(allocator malloc calloc realloc aligned_alloc posix_memalign free
                  _Znwm _Znam _ZnwmRKSt9nothrow_t _ZnamRKSt9nothrow_t)
  list(APPEND heap_hook_options "LINKER:--wrap=${allocator}")
endforeach()
