# Run by `cmake --install` with HALDEN_SOURCE, HALDEN_HEADERS_TO (absolute) and HALDEN_HOST_HEADERS.
#
# Puts all public headers below one directory, <prefix>/include/halden. There each names the others by
# their place relative to itself, so that <halden/tev_tbl.h> works with <prefix>/include in the search
# path, "tev_tbl.h" with <prefix>/include/halden, and no header of the user's own project that happens
# to be called host/adapter.h or sdk/trace.h is ever taken for ours.
cmake_minimum_required(VERSION 3.25)

function(list_headers root out)
  file(GLOB_RECURSE found RELATIVE ${root} ${root}/*.h)
  set(${out} ${found} PARENT_SCOPE)
endfunction()

set(headers)  # "installed name=source"
foreach(root include sdk/include p4gen/p4/include)
  list_headers(${HALDEN_SOURCE}/${root} found)
  foreach(header IN LISTS found)
    list(APPEND headers "${header}=${HALDEN_SOURCE}/${root}/${header}")
  endforeach()
endforeach()
foreach(header IN LISTS HALDEN_HOST_HEADERS)
  list(APPEND headers "host/${header}=${HALDEN_SOURCE}/host/${header}")
endforeach()
set(names ${headers})
list(TRANSFORM names REPLACE "=.*" "")

foreach(entry IN LISTS headers)
  string(REGEX MATCH "^([^=]*)=(.*)$" _ "${entry}")
  set(name ${CMAKE_MATCH_1})
  file(READ ${CMAKE_MATCH_2} text)
  get_filename_component(directory /${name} DIRECTORY)
  string(REGEX MATCHALL "#include \"[^\"]*\"" includes "${text}")
  foreach(include IN LISTS includes)
    string(REGEX REPLACE "#include \"(.*)\"" "\\1" included "${include}")
    if(NOT included IN_LIST names)
      message(FATAL_ERROR "the public header ${name} includes ${included}, which is not installed")
    endif()
    file(RELATIVE_PATH relative ${directory} /${included})
    string(REPLACE "${include}" "#include \"${relative}\"" text "${text}")
  endforeach()
  set(to ${HALDEN_HEADERS_TO}/${name})
  message(STATUS "Installing: ${to}")
  file(WRITE $ENV{DESTDIR}${to} "${text}")
  list(APPEND CMAKE_INSTALL_MANIFEST_FILES ${to})
endforeach()
