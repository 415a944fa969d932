# host_links: whether the host defines everything that a program with the library needs.
execute_process(COMMAND grep -rqs "ftl_base::restore_state() *{" ${PROJECT_SOURCE_DIR}/host
                RESULT_VARIABLE host_lacks_the_flow_engine)
if(host_lacks_the_flow_engine EQUAL 0)
  set(host_links ON)
else()
  set(host_links OFF)
endif()
