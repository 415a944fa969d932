# Installs the build as a package is made, below DESTDIR, and moves it to a place that nothing was told
# of.
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/common.cmake)

file(REMOVE_RECURSE ${WORK}/stage ${MOVED})
run("install" ${CMAKE_COMMAND} -E env DESTDIR=${WORK}/stage
    ${CMAKE_COMMAND} --install ${BUILD} --config ${BUILD_TYPE} --prefix /opt/halden)
file(RENAME ${WORK}/stage/opt/halden ${MOVED})
file(GLOB_RECURSE outside ${WORK}/stage/*)
if(outside)
  message(FATAL_ERROR "installed outside of the prefix: ${outside}")
endif()
