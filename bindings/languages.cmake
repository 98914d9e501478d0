# The languages beside C++. The library in C is C++ too, so it needs no C compiler; its tests do. The
# Fortran modules are installed as source, so only what is built of them here needs a compiler.

include(CheckLanguage)

set(fortran_default OFF)
if(PROJECT_IS_TOP_LEVEL AND ZKTARN_C AND NOT DEFINED ZKTARN_FORTRAN)
  # A cross build has no use for the compiler of this machine: its toolchain names another, or none.
  if(NOT CMAKE_CROSSCOMPILING)
    check_language(Fortran)
  endif()
  if(CMAKE_Fortran_COMPILER)
    set(fortran_default ON)
  endif()
endif()
option(ZKTARN_FORTRAN "Build the Fortran modules, and what is written in Fortran" ${fortran_default})
if(ZKTARN_FORTRAN AND NOT ZKTARN_C)
  message(FATAL_ERROR "The Fortran modules call the library in C: ZKTARN_FORTRAN needs ZKTARN_C.")
endif()

if(ZKTARN_FORTRAN)
  enable_language(Fortran)
endif()

if(ZKTARN_C AND (ZKTARN_TESTS OR ZKTARN_EXAMPLES OR ZKTARN_BENCHMARKS))
  # The C compiler of the same family, with the same options: sanitizers and optimisation agree.
  if(NOT CMAKE_C_COMPILER)
    string(REGEX REPLACE "clang\\+\\+([^/]*)$" "clang\\1" c_compiler "${CMAKE_CXX_COMPILER}")
    string(REGEX REPLACE "g\\+\\+([^/]*)$" "gcc\\1" c_compiler "${c_compiler}")
    string(REGEX REPLACE "/c\\+\\+$" "/cc" c_compiler "${c_compiler}")
    if(EXISTS "${c_compiler}" AND NOT c_compiler STREQUAL CMAKE_CXX_COMPILER)
      set(CMAKE_C_COMPILER "${c_compiler}" CACHE FILEPATH "C compiler of tests and examples")
    endif()
    set(CMAKE_C_FLAGS "${CMAKE_CXX_FLAGS}" CACHE STRING "C options of tests and examples")
  endif()
  enable_language(C)
endif()
