# A project in C and C++, built against the installed package.
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/common.cmake)

build_project(${CMAKE_CURRENT_LIST_DIR}/consumer ${WORK}/consumer
              -D CMAKE_C_COMPILER=${C_COMPILER} -D CMAKE_CXX_COMPILER=${CXX_COMPILER})
run("the consumer" ${EMULATOR} ${WORK}/consumer/consumer)
if(NOT out MATCHES "the consumer's own main: all checks passed")
  message(FATAL_ERROR "the consumer's main did not run:\n${out}")
endif()
