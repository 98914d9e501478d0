# Python and NumPy for a build for macOS on another system: headers alone, of the Python of the machine
# that builds. An extension of Python links no library of it, so the host's libraries need no more.
# pyconfig.h is the one header that differs between systems.

set(python_headers "${PROJECT_BINARY_DIR}/python_headers")
execute_process(
  COMMAND "${Python_EXECUTABLE}" -c
    "import sysconfig, numpy; print(sysconfig.get_path('include'), numpy.get_include(), sep=';')"
  OUTPUT_VARIABLE folders OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
list(GET folders 0 of_python)
list(GET folders 1 of_numpy)

# A header finds pyconfig.h beside itself, so all are linked to in a folder of their own.
file(REMOVE_RECURSE "${python_headers}")
file(MAKE_DIRECTORY "${python_headers}")
file(GLOB entries RELATIVE "${of_python}" "${of_python}/*")
list(REMOVE_ITEM entries pyconfig.h numpy)
foreach(entry IN LISTS entries)
  file(CREATE_LINK "${of_python}/${entry}" "${python_headers}/${entry}" SYMBOLIC)
endforeach()
foreach(header IN ITEMS pyconfig.h endian.h)
  file(CREATE_LINK "${CMAKE_CURRENT_LIST_DIR}/python/${header}" "${python_headers}/${header}" SYMBOLIC)
endforeach()
file(CREATE_LINK "${of_numpy}/numpy" "${python_headers}/numpy" SYMBOLIC)

foreach(package IN ITEMS Python::Module Python::NumPy)
  add_library(${package} INTERFACE IMPORTED GLOBAL)
  target_include_directories(${package} INTERFACE "${python_headers}")
endforeach()
