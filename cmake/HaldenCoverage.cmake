# HALDEN_COVERAGE counts what runs in the libraries and tools; the tests themselves are built as
# always. `./check --coverage` makes and reads such a build.
#
# halden_count_coverage(target)                       a library or a program
# halden_count_coverage_of_copies(program source...)  a test program; those of its sources that
#                                                     belong to the libraries are counted
#
# The counters are put in before anything is optimised but the inlining of small functions.
set(halden_coverage_flags --coverage -O1 -fno-inline -fprofile-update=atomic)
set(halden_coverage_counters ${PROJECT_SOURCE_DIR}/tests/support/coverage_counters.cc)

function(halden_count_coverage target)
  if(NOT HALDEN_COVERAGE)
    return()
  endif()
  get_target_property(type ${target} TYPE)
  target_compile_options(${target} PRIVATE ${halden_coverage_flags})
  target_link_options(${target} PUBLIC --coverage)
  if(NOT type STREQUAL "STATIC_LIBRARY")  # its program keeps its counters
    target_sources(${target} PRIVATE ${halden_coverage_counters})
  endif()
  if(type STREQUAL "EXECUTABLE")
    target_compile_definitions(${target} PRIVATE HALDEN_COVERAGE_PROGRAM)
  endif()
endfunction()

function(halden_count_coverage_of_copies program)
  if(NOT HALDEN_COVERAGE)
    return()
  endif()
  foreach(source ${ARGN})
    # fmt_errors_test.cc is where the hooks of log/fmt_hooks.h are met.
    if((source MATCHES "/(p4gen|log|host)/" AND NOT source MATCHES "/tests/") OR
       source STREQUAL "fmt_errors_test.cc")
      # The precompiled header is made with other flags.
      set_source_files_properties(${source} PROPERTIES
        SKIP_PRECOMPILE_HEADERS ON COMPILE_OPTIONS "${halden_coverage_flags}")
    endif()
  endforeach()
  target_sources(${program} PRIVATE ${halden_coverage_counters})
  set_source_files_properties(${halden_coverage_counters} PROPERTIES
    SKIP_PRECOMPILE_HEADERS ON COMPILE_DEFINITIONS HALDEN_COVERAGE_PROGRAM)
  target_link_options(${program} PRIVATE --coverage)
endfunction()
