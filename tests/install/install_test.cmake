# Run as a script by the test: install, configure and build the consumer, run it.

function(run what)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE out)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${what} failed (${result}):\n${out}")
  endif()
  set(out "${out}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE ${WORK})
run("install" ${CMAKE_COMMAND} --install ${BUILD} --config ${BUILD_TYPE} --prefix ${WORK}/made)
# The package holds no path of the place that it was installed to.
file(RENAME ${WORK}/made ${WORK}/moved)

set(options -G ${GENERATOR} -D CMAKE_PREFIX_PATH=${WORK}/moved -D CMAKE_BUILD_TYPE=${BUILD_TYPE}
    -D CMAKE_C_COMPILER=${C_COMPILER} -D CMAKE_CXX_COMPILER=${CXX_COMPILER})
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
run("configuration of the consumer" ${CMAKE_COMMAND} -S ${CONSUMER} -B ${WORK}/build ${options})
run("build of the consumer" ${CMAKE_COMMAND} --build ${WORK}/build)
run("the consumer" ${EMULATOR} ${WORK}/build/consumer)
if(NOT out MATCHES "the consumer's own main: all checks passed")
  message(FATAL_ERROR "the consumer's main did not run:\n${out}")
endif()
