# Finds a Python that can build the package: version 3.11 or newer, with its headers and NumPy, and
# pybind11. The first `python3` on PATH may be one without NumPy; then the system's own is taken.

set(ZKTARN_PYTHON_NEEDS "Python 3.11 or newer with its headers and NumPy")

# zktarn_python_fits(RESULT PROGRAM): whether PROGRAM is such a Python.
function(zktarn_python_fits result program)
  execute_process(
    COMMAND "${program}" -c "
import os, sys, sysconfig
assert sys.version_info >= (3, 11)
import numpy
assert os.path.exists(os.path.join(sysconfig.get_path('include'), 'Python.h'))"
    RESULT_VARIABLE status OUTPUT_QUIET ERROR_QUIET)
  if(status EQUAL 0)
    set(${result} TRUE PARENT_SCOPE)
  else()
    set(${result} FALSE PARENT_SCOPE)
  endif()
endfunction()

if(Python_EXECUTABLE)
  zktarn_python_fits(fits "${Python_EXECUTABLE}")
  if(NOT fits)
    message(FATAL_ERROR "ZKTARN_PYTHON needs ${ZKTARN_PYTHON_NEEDS}, and Python_EXECUTABLE "
      "(${Python_EXECUTABLE}) is not one.")
  endif()
else()
  find_program(first_python NAMES python3 NO_CACHE)
  foreach(candidate IN ITEMS "${first_python}" /usr/bin/python3)
    if(candidate)
      zktarn_python_fits(fits "${candidate}")
      if(fits)
        set(Python_EXECUTABLE "${candidate}" CACHE FILEPATH "Python that the package is built for")
        break()
      endif()
    endif()
  endforeach()
  if(NOT Python_EXECUTABLE)
    message(FATAL_ERROR "ZKTARN_PYTHON needs ${ZKTARN_PYTHON_NEEDS}; name one by "
      "-DPython_EXECUTABLE=... (on Debian, install python3-dev and python3-numpy).")
  endif()
endif()

if(APPLE AND CMAKE_CROSSCOMPILING)
  include("${PROJECT_SOURCE_DIR}/cmake/macos/python.cmake")
  return()
endif()

# The tests, in another folder, use these packages too.
set(CMAKE_FIND_PACKAGE_TARGETS_GLOBAL ON)
find_package(Python 3.11 REQUIRED COMPONENTS Interpreter Development.Module NumPy)

# pybind11 installed by pip says itself where its CMake package is.
if(NOT pybind11_DIR)
  execute_process(COMMAND "${Python_EXECUTABLE}" -m pybind11 --cmakedir
    OUTPUT_VARIABLE pybind11_of_python OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
endif()
find_package(pybind11 2.10 QUIET CONFIG HINTS ${pybind11_of_python})
if(NOT pybind11_FOUND)
  message(FATAL_ERROR "ZKTARN_PYTHON needs pybind11 2.10 or newer (on Debian, install pybind11-dev).")
endif()
message(STATUS "Python package: ${Python_EXECUTABLE}, Python ${Python_VERSION}, "
  "NumPy ${Python_NumPy_VERSION}, pybind11 ${pybind11_VERSION}")
unset(CMAKE_FIND_PACKAGE_TARGETS_GLOBAL)
