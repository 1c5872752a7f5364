# Compiles for 64-bit Arm on another processor, against the Debian system for Arm in the folder that
# LUMETRA_ARM64_ROOT names, and runs what is compiled by emulation; scripts/check-arm64 sets it up.
set(root $ENV{LUMETRA_ARM64_ROOT})
if(NOT root)
  message(FATAL_ERROR "LUMETRA_ARM64_ROOT is not set; scripts/check-arm64 does it")
endif()
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_SYSROOT ${root})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64-static -L ${root}
    -E QT_PLUGIN_PATH=${root}/usr/lib/aarch64-linux-gnu/qt5/plugins)
