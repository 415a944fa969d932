# haldenctl, installed and in the build tree, finds its libraries where it belongs and nowhere else:
# the working directory holds files by their names that no loader can take.
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/common.cmake)

set(trap ${WORK}/trap)
file(REMOVE_RECURSE ${trap})
run("the libraries of haldenctl" ${READELF} -dW ${MOVED}/bin/haldenctl)
string(REPLACE "[" " " out "${out}")  # a list takes brackets for its own
string(REGEX MATCHALL "Shared library: +[^] ]+" libraries "${out}")
list(TRANSFORM libraries REPLACE "Shared library: +" "")
foreach(library IN LISTS libraries)
  file(WRITE ${trap}/${library} "no library")
endforeach()
foreach(name libhalden.so.0 libhalden-host.so.0 libpcap.so.0.8)
  if(NOT EXISTS ${trap}/${name})
    message(FATAL_ERROR "haldenctl does not need ${name}")
  endif()
endforeach()

foreach(program ${MOVED}/bin/haldenctl ${HALDENCTL})
  execute_process(COMMAND ${program} tables WORKING_DIRECTORY ${trap}
                  RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE error)
  if(NOT result EQUAL 0 OR NOT out MATCHES "lif_mapping")
    message(FATAL_ERROR "${program} tables (${result}):\n${out}${error}")
  endif()
endforeach()
