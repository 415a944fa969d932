# halden_test(name SOURCES a.cc ... [LIBS target ...] [LABELS label ...])
#
# A GoogleTest program with a main of its own: the library exports one too, which would answer for
# any program that has none. The main fails a run in which no test was executed.
#
# halden_test_objects(name SOURCES a.cc ...)
#
# Sources that several programs share, compiled once: a program takes them with LIBS name.

# Every source below reads the framework and the containers from one precompiled header. It serves
# programs and shared objects alike, so both are position independent the way a program is.
function(halden_test_flags name)
  set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE OFF)
  # What is tested is built as it ships; the tests themselves compile in half the time with -O1.
  target_compile_options(${name} PRIVATE -fPIE $<$<CONFIG:Release>:-O1>)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # As with -Wrestrict, the fault is seen inside the standard string, and a precompiled header
    # makes GCC 12 forget that it is a system header.
    target_compile_options(${name} PRIVATE -Wno-array-bounds -Wno-stringop-overflow)
  endif()
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name} PRIVATE halden_flags halden_headers GTest::gmock Threads::Threads)
  if(NOT name STREQUAL "halden_test_main")
    target_precompile_headers(${name} REUSE_FROM halden_test_main)
  endif()
endfunction()

add_library(halden_test_main OBJECT ${PROJECT_SOURCE_DIR}/tests/support/test_main.cc)
halden_test_flags(halden_test_main)
target_precompile_headers(halden_test_main PRIVATE
  <algorithm> <array> <cstdint> <cstring> <filesystem> <fstream> <functional> <map> <memory>
  <optional> <random> <set> <span> <sstream> <string> <string_view> <thread> <tuple> <utility>
  <vector> <gmock/gmock.h> <gtest/gtest.h>)

function(halden_test_objects name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
  add_library(${name} OBJECT ${ARG_SOURCES})
  halden_test_flags(${name})
  target_link_libraries(${name} PRIVATE ${ARG_LIBS})
endfunction()

# The target tsan_tests builds those labelled tsan alone.
add_custom_target(tsan_tests)
function(halden_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS;LABELS" ${ARGN})
  add_executable(${name} $<TARGET_OBJECTS:halden_test_main> ${ARG_SOURCES})
  halden_test_flags(${name})
  target_link_libraries(${name} PRIVATE ${ARG_LIBS})
  halden_count_coverage_of_copies(${name} ${ARG_SOURCES})
  foreach(source ${ARG_SOURCES})
    if(source MATCHES "\\.c$")
      set_source_files_properties(${source} PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
    endif()
  endforeach()
  if("tsan" IN_LIST ARG_LABELS)
    add_dependencies(tsan_tests ${name})
  endif()
  add_test(NAME ${name} COMMAND ${name})
  # The limit is far above what a test needs: it is for programs that hang.
  set_tests_properties(${name} PROPERTIES TIMEOUT 900 LABELS "${ARG_LABELS}")
endfunction()
