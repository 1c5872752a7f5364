# Compiles for 64-bit Windows on Linux, by MinGW-w64, against the libraries in the folder that LUMETRA_WINDOWS_ROOT
# names, and runs what is compiled by Wine; scripts/windows-root sets it up.
set(root $ENV{LUMETRA_WINDOWS_ROOT})
if(NOT root)
  message(FATAL_ERROR "LUMETRA_WINDOWS_ROOT is not set; scripts/check-windows does it")
endif()
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
# Everything is found there; programs on this machine.
set(CMAKE_FIND_ROOT_PATH ${root} /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_CROSSCOMPILING_EMULATOR ${root}/wine)
# Qt's own tools are Debian's, of the same version.
set(QT_HOST_PATH /usr)
set(QT_HOST_PATH_CMAKE_DIR /usr/lib/x86_64-linux-gnu/cmake)
