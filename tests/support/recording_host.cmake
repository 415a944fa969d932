# The sources of the recording host. A test program that uses it compiles them in and links the
# library alone:
#
#     include(${PROJECT_SOURCE_DIR}/tests/support/recording_host.cmake)
#     halden_test(name SOURCES a_test.cc ${recording_host} LIBS halden)
set(recording_host
  ${PROJECT_SOURCE_DIR}/tests/support/recording_host.cc
  ${PROJECT_SOURCE_DIR}/tests/support/recording_utils.cc
  ${PROJECT_SOURCE_DIR}/tests/support/recording_asic.cc
  ${PROJECT_SOURCE_DIR}/tests/support/recording_engines.cc)
