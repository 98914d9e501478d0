# The headers of Python and NumPy for a macOS build on another system, from the Python of the building
# machine. An extension module links no library of Python, so the headers suffice.
# pyconfig.h is the one header that differs between systems.

set(python_headers "${PROJECT_BINARY_DIR}/python_headers")
execute_process(
  COMMAND "${Python_EXECUTABLE}" -c
    "import sysconfig, numpy; print(sysconfig.get_path('include'), numpy.get_include(), sep=';')"
  OUTPUT_VARIABLE folders OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
list(GET folders 0 python_include_dir)
list(GET folders 1 numpy_include_dir)

# A header includes the pyconfig.h in its own folder, so a separate folder gets links to all headers.
file(REMOVE_RECURSE "${python_headers}")
file(MAKE_DIRECTORY "${python_headers}")
file(GLOB entries RELATIVE "${python_include_dir}" "${python_include_dir}/*")
list(REMOVE_ITEM entries pyconfig.h numpy)
foreach(entry IN LISTS entries)
  file(CREATE_LINK "${python_include_dir}/${entry}" "${python_headers}/${entry}" SYMBOLIC)
endforeach()
file(CREATE_LINK "${CMAKE_CURRENT_LIST_DIR}/pyconfig.h" "${python_headers}/pyconfig.h" SYMBOLIC)
# NumPy's headers of another system include this; macOS has the same in another folder.
file(WRITE "${python_headers}/endian.h" "#pragma once\n#include <machine/endian.h>\n")
file(CREATE_LINK "${numpy_include_dir}/numpy" "${python_headers}/numpy" SYMBOLIC)

foreach(package IN ITEMS Python::Module Python::NumPy)
  add_library(${package} INTERFACE IMPORTED GLOBAL)
  target_include_directories(${package} INTERFACE "${python_headers}")
endforeach()
