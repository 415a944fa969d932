# The installed headers: these and no others, each compiled alone as a user's first include, from the
# two search paths that are promised; what is meant for C, by a C compiler too; and no macro without a
# prefix of ours.
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/common.cmake)

set(for_c host/adapter_c.h p4pd_records.h sdk/p4pd_error.h tev_tbl.h tev_tbl_ret.h)
set(for_cpp
  ftl/flow_entry_layout.h ftl/flow_entry_ops.h ftl/flow_hash.h ftl/flow_hash_entry.h
  host/adapter.h host/engines/access.h host/engines/flow/ftl_access.h host/faults/faults.h
  host/memory/memory_map.h host/state/table_state.h host/trace/trace.h host/view/lookup.h
  host/view/row_hash.h
  p4pd.h sdk/asic/pd.h sdk/base_table_entry.h sdk/impl_state.h sdk/p4pd_global.h sdk/p4pd_utils.h
  sdk/table/directmap.h sdk/table/ftl_base.h sdk/table/slhash.h sdk/table/sltcam.h sdk/table/types.h
  sdk/trace.h tev_tbl_impl_state.h)

set(wanted ${for_c} ${for_cpp})
list(SORT wanted)
file(GLOB_RECURSE found RELATIVE ${MOVED}/include/halden ${MOVED}/include/*)
list(SORT found)
if(NOT "${found}" STREQUAL "${wanted}")
  message(FATAL_ERROR "installed are\n  ${found}\nand not\n  ${wanted}")
endif()

set(flags -fsyntax-only -Wall -Wextra -Werror)
if(SYSROOT)
  list(APPEND flags --sysroot=${SYSROOT})
endif()
# One source for each header, all through one call of the compiler.
function(compile what extension compiler options prefix headers)
  set(sources "")
  foreach(header IN LISTS headers)
    string(MAKE_C_IDENTIFIER ${header} name)
    set(source ${WORK}/headers/${prefix}${name}.${extension})
    file(WRITE ${source} "#include <${prefix}${header}>\n#include <${prefix}${header}>\n")
    list(APPEND sources ${source})
  endforeach()
  run("${what}" ${compiler} ${flags} ${options} ${sources})
endfunction()
file(REMOVE_RECURSE ${WORK}/headers)
set(cpp "-std=c++20;-I${MOVED}/include")
set(c "-std=c11;-pedantic;-I${MOVED}/include")
compile("each header alone" cc ${CXX_COMPILER} "${cpp}" halden/ "${wanted}")
compile("each header for C alone" c ${C_COMPILER} "${c}" halden/ "${for_c}")
compile("a header by its own name" cc ${CXX_COMPILER} "-std=c++20;-I${MOVED}/include/halden" ""
        "tev_tbl.h;p4pd.h;host/adapter.h")

# A project of its own with directories of the same names is not taken for ours, nor ours for its.
foreach(header host/faults/faults.h sdk/table/types.h p4pd_records.h)
  file(WRITE ${WORK}/headers/other/${header} "#error not ours\n")
endforeach()
file(WRITE ${WORK}/headers/other.cc "#include <halden/host/state/table_state.h>\n")
run("headers beside others of the same names" ${CXX_COMPILER} ${flags} -std=c++20
    -I${WORK}/headers/other -I${MOVED}/include ${WORK}/headers/other.cc)

# Macros are listed with the file that defines them.
set(all "")
foreach(header IN LISTS wanted)
  string(APPEND all "#include <halden/${header}>\n")
endforeach()
file(WRITE ${WORK}/headers/all.cc "${all}")
if(SYSROOT)
  set(sysroot --sysroot=${SYSROOT})
endif()
run("the macros" ${CXX_COMPILER} ${sysroot} -std=c++20 -E -dD -I${MOVED}/include ${WORK}/headers/all.cc)
string(REPLACE ";" "," out "${out}")
string(REPLACE "[" "(" out "${out}")
string(REPLACE "]" ")" out "${out}")
string(REPLACE "\n" ";" out "${out}")
list(FILTER out INCLUDE REGEX "^# [0-9]+ \"|^#define |^#undef ")
set(ours FALSE)
set(seen 0)
foreach(line IN LISTS out)
  if(line MATCHES "^# [0-9]+ \"([^\"]*)\"")
    string(FIND "${CMAKE_MATCH_1}" "${MOVED}/include/" at)
    set(ours FALSE)
    if(at EQUAL 0)
      set(ours TRUE)
    endif()
  elseif(ours AND line MATCHES "^#define ([A-Za-z0-9_]+)")
    math(EXPR seen "${seen} + 1")
    if(NOT line MATCHES "^#define (HALDEN_|P4PD_|P4TBL_ID_|TEV_TBL_)")
      message(FATAL_ERROR "a header defines ${CMAKE_MATCH_1}, which has no prefix of ours")
    endif()
  endif()
endforeach()
if(seen LESS 3)
  message(FATAL_ERROR "only ${seen} macros were seen: the list is not read as the compiler writes it")
endif()
