# cmake -D CXX_COMPILER=g++ -D SOURCE=. -D WORK=build [-D WRITE=ON] -P tests/abi/classes_test.cmake
#
# The layouts, virtual tables and enumerators that are shared with programs and hosts are those of
# classes.abi. The types are compiled on their own, with these flags whatever the build's are, so the
# record is the same for every build by g++.
cmake_minimum_required(VERSION 3.25)

set(record ${CMAKE_CURRENT_LIST_DIR}/classes.abi)
set(library ${WORK}/classes.so)
set(headers ${SOURCE}/include ${SOURCE}/sdk/include ${SOURCE}/p4gen/p4/include ${SOURCE}/host)
set(includes -I${SOURCE})
set(header_directories "")
foreach(directory IN LISTS headers)
  list(APPEND includes -I${directory})
  list(APPEND header_directories --headers-dir ${directory})
endforeach()

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE out)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${ARGN} failed (${result}):\n${out}")
  endif()
endfunction()

file(MAKE_DIRECTORY ${WORK})
run(${CXX_COMPILER} -std=c++20 -O0 -g -gdwarf-4 -femit-class-debug-always -fPIC -shared ${includes}
    ${CMAKE_CURRENT_LIST_DIR}/classes.cc -o ${library})
set(made ${WORK}/classes.abi)
run(abidw --no-corpus-path --no-comp-dir-path --no-show-locs --no-elf-needed --type-id-style hash
    --drop-private-types ${header_directories} --out-file ${made} ${library})
file(READ ${made} text)
# The place of the source is of one machine.
string(REPLACE "${SOURCE}/" "" text "${text}")
file(WRITE ${made} "${text}")
if(WRITE)
  file(COPY ${made} DESTINATION ${CMAKE_CURRENT_LIST_DIR})
  return()
endif()

string(REGEX MATCHALL "vtable-offset=" slots "${text}")
list(LENGTH slots slots)
if(slots LESS 27)
  message(FATAL_ERROR "only ${slots} virtual functions were seen: the compiler says too little")
endif()
execute_process(COMMAND abidiff --harmless ${record} ${made}
                RESULT_VARIABLE result OUTPUT_VARIABLE out ERROR_VARIABLE out)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "what programs and hosts share with the library has changed:\n${out}\n"
    "Programs and hosts that were built before would not work with it. If that is meant, raise the "
    "library's version and make the record again:\n"
    "  cmake -D CXX_COMPILER=${CXX_COMPILER} -D SOURCE=. -D WORK=build/abi -D WRITE=ON -P tests/abi/classes_test.cmake")
endif()
