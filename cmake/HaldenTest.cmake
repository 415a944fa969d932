# halden_test(name SOURCES a.cc ... [LIBS target ...] [LABELS label ...] [TIMEOUT seconds])
#
# A GoogleTest program with a main of its own: the library exports one too, which would answer for
# any program that has none. The main fails a run in which no test was executed.
add_library(halden_test_main OBJECT ${PROJECT_SOURCE_DIR}/tests/support/test_main.cc)
target_link_libraries(halden_test_main PRIVATE halden_flags GTest::gmock)

# The target tsan_tests builds those labelled tsan alone.
add_custom_target(tsan_tests)
function(halden_test name)
  cmake_parse_arguments(ARG "" "TIMEOUT" "SOURCES;LIBS;LABELS" ${ARGN})
  add_executable(${name} $<TARGET_OBJECTS:halden_test_main> ${ARG_SOURCES})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name} PRIVATE halden_flags halden_headers GTest::gmock ${ARG_LIBS}
                        Threads::Threads)
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 300)
  endif()
  if("tsan" IN_LIST ARG_LABELS)
    add_dependencies(tsan_tests ${name})
  endif()
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT ${ARG_TIMEOUT} LABELS "${ARG_LABELS}")
endfunction()
