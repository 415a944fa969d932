# host_links: whether the host defines everything that a program with the library needs.
set(host_links ON)
foreach(engine directmap::destroy slhash::destroy sltcam::destroy ftl_base::destroy)
  execute_process(COMMAND grep -rqs "${engine}(" ${PROJECT_SOURCE_DIR}/host
                  RESULT_VARIABLE host_lacks_an_engine)
  if(NOT host_lacks_an_engine EQUAL 0)
    set(host_links OFF)
  endif()
endforeach()
