# What the scripts of this directory share.
cmake_minimum_required(VERSION 3.25)

set(ENV{LD_LIBRARY_PATH})
separate_arguments(EMULATOR UNIX_COMMAND "${EMULATOR}")

# Runs a command, with its text in `out`; one that fails ends the test.
function(run what)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE out)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${what} failed (${result}):\n${out}")
  endif()
  set(out "${out}" PARENT_SCOPE)
endfunction()

# Configures and builds a project of somebody else's against the installed package.
function(build_project source to)  # then options
  file(REMOVE_RECURSE ${to})
  set(options -G ${GENERATOR} -D CMAKE_PREFIX_PATH=${MOVED} -D CMAKE_BUILD_TYPE=${BUILD_TYPE})
  if(TOOLCHAIN)
    # A cross build looks for packages below its own roots only.
    list(APPEND options -D CMAKE_TOOLCHAIN_FILE=${TOOLCHAIN}
         -D CMAKE_FIND_ROOT_PATH_MODE_PACKAGE=BOTH)
  endif()
  if(SANITIZE)
    # The compilers' flags may hold a comma, so they are quoted as one word.
    list(APPEND options "-DCMAKE_C_FLAGS=-fsanitize=${SANITIZE}"
         "-DCMAKE_CXX_FLAGS=-fsanitize=${SANITIZE}")
  endif()
  run("configuration of ${source}" ${CMAKE_COMMAND} -S ${source} -B ${to} ${options} ${ARGN})
  run("build of ${source}" ${CMAKE_COMMAND} --build ${to})
endfunction()
