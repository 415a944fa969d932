# What every program and library of the build is hardened with; tests/install/hardening_test.cmake looks
# for it in the files.
option(HALDEN_HARDENING "Harden what is built; OFF is for measuring what it costs" ON)
if(NOT HALDEN_HARDENING)
  return()
endif()
include(CheckCXXCompilerFlag)

add_compile_options(-fstack-protector-strong)
# Indirect jumps land where the program means them to: Intel's CET, Arm's branch protection.
set(jumps "")
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|amd64|AMD64)$")
  set(jumps -fcf-protection=full)
elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "^(aarch64|arm64)$")
  set(jumps -mbranch-protection=standard)
endif()
if(jumps)
  check_cxx_compiler_flag(${jumps} halden_can_mark_jumps)
  if(halden_can_mark_jumps)
    add_compile_options(${jumps})
  endif()
endif()
# Needs an optimising compiler, and would hide calls of the C library from sanitizers.
if(NOT HALDEN_SANITIZE)
  add_compile_options("$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
endif()
# All names are bound at the start, and what they are bound to becomes read-only then. Programs may be
# loaded anywhere.
add_link_options(LINKER:-z,relro LINKER:-z,now
                 "$<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:-pie>")
