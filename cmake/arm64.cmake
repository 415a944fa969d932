# A cross build for arm64, run under emulation: `./check --arm64` installs the compiler and the emulator
# and makes the folder with the libraries (cmake/arm64-sysroot.sh).
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)

get_filename_component(CMAKE_SYSROOT "${CMAKE_CURRENT_LIST_DIR}/../build/arm64-sysroot" ABSOLUTE)
if(NOT EXISTS ${CMAKE_SYSROOT}/packages)
  message(FATAL_ERROR "there is no ${CMAKE_SYSROOT}: cmake/arm64-sysroot.sh ${CMAKE_SYSROOT} makes it")
endif()
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
if(NOT DEFINED CMAKE_FIND_ROOT_PATH_MODE_PACKAGE)  # a user of the installed package says BOTH
  set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
endif()
# The loader and the C library come from the same folder. With the folder that the cross compiler's
# own packages bring (/usr/aarch64-linux-gnu) every fork() hangs under emulation, and so every death
# test.
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64 -L ${CMAKE_SYSROOT})
