# Builds for 64-bit Arm Linux on another machine with Debian's cross compiler, and runs programs with qemu.

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++ CACHE STRING "Compiler for 64-bit Arm")
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc CACHE STRING "C compiler for 64-bit Arm")
find_program(GFORTRAN_AARCH64 aarch64-linux-gnu-gfortran)
if(GFORTRAN_AARCH64)
  set(CMAKE_Fortran_COMPILER "${GFORTRAN_AARCH64}" CACHE STRING "Fortran compiler for 64-bit Arm")
endif()

find_program(QEMU_AARCH64 qemu-aarch64 REQUIRED)
set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_CURRENT_LIST_DIR}/../scripts/lib/on_arm64.sh")

# Finds programs on the building machine, and headers, libraries and packages only for the target.
set(CMAKE_FIND_ROOT_PATH /usr/aarch64-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
