# A cross build for arm64, run under emulation: `./check --arm64` installs what it needs.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)
# Without -L: with the emulator's own sysroot every fork() hangs, and so every death test.
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64)
