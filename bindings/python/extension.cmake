# zktarn_python_extension(NAME SOURCES file... [LINK library...]): an extension module of the package,
# target zktarn_python_NAME. It links libzktarn_util and the Python host, and finds both in _lib.
#
# The run path is one that comes before LD_LIBRARY_PATH (DT_RPATH, not DT_RUNPATH), and the module
# names the host's libraries itself: so they are in the process, from _lib, before libzktarn_util asks
# for libraries of these names.
function(zktarn_python_extension name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINK")
  set(target zktarn_python_${name})
  # Without its extras, which are link-time optimisation and stripped symbols.
  pybind11_add_module(${target} MODULE NO_EXTRAS ${arg_SOURCES})
  zktarn_warnings(${target})
  # The bits of a result do not depend on the compiler; pybind11 hides symbols, and so do we.
  target_compile_options(${target} PRIVATE -ffp-contract=off -fno-fast-math)
  target_compile_features(${target} PRIVATE cxx_std_20)
  target_include_directories(${target} PRIVATE
    "${PROJECT_SOURCE_DIR}/src" "${PROJECT_SOURCE_DIR}/bindings/python/src")
  target_link_libraries(${target} PRIVATE
    ${arg_LINK} zktarn_python_host_libraries zktarn_util Python::NumPy)
  set_target_properties(${target} PROPERTIES
    OUTPUT_NAME ${name}
    LIBRARY_OUTPUT_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}/modules"
    BUILD_WITH_INSTALL_RPATH ON
    INSTALL_RPATH "${ZKTARN_ORIGIN}/_lib")
  set(exports "${CMAKE_CURRENT_BINARY_DIR}/${target}.exports")
  if(APPLE)
    file(CONFIGURE OUTPUT "${exports}" CONTENT "_PyInit_${name}\n" @ONLY)
    target_link_options(${target} PRIVATE "LINKER:-exported_symbols_list,${exports}")
  else()
    file(CONFIGURE OUTPUT "${exports}" CONTENT "{ global: PyInit_${name}; local: *; };\n" @ONLY)
    target_link_options(${target} PRIVATE
      "LINKER:--version-script,${exports}"
      # Names every library below, and sets DT_RPATH.
      LINKER:--no-as-needed,--disable-new-dtags
      LINKER:-z,relro,-z,now,-z,noexecstack)
  endif()
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${exports}")
  set_property(GLOBAL APPEND PROPERTY ZKTARN_PYTHON_EXTENSIONS ${target})
  install(TARGETS ${target} LIBRARY DESTINATION "${ZKTARN_PYTHON_DIR}" COMPONENT python)
endfunction()
