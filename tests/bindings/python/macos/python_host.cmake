# The Python host for macOS, as the package carries it; the checks need no Mac.
set(folder "${CMAKE_CURRENT_BINARY_DIR}/installed_python")
set(host_libraries "${folder}/${ZKTARN_PYTHON_INSTALL_DIR}/zktarn/_lib")
set(check_host "${PROJECT_SOURCE_DIR}/tests/bindings/python/macos/check_python_host.py")

abi_test(install_python ${CMAKE_COMMAND} --install "${PROJECT_BINARY_DIR}"
  --component python --prefix "${folder}")
abi_test(python_host ${Python3_EXECUTABLE} "${check_host}" "${host_libraries}")
set_tests_properties(abi.install_python PROPERTIES FIXTURES_SETUP installed_python)
set_tests_properties(abi.python_host PROPERTIES FIXTURES_REQUIRED installed_python)

# Each check seen to fail: another library in the place of one.
function(breaks_python_host flaw sentence)
  abi_refuses(python_host_${flaw}_is_refused "${sentence}"
    ${Python3_EXECUTABLE} "${check_host}" "${host_libraries}" $<TARGET_FILE:${ARGV2}> ${ARGV3})
  set_tests_properties(abi.python_host_${flaw}_is_refused PROPERTIES
    FIXTURES_REQUIRED installed_python)
endfunction()

# broken_python_library(flaw name run_path)
function(broken_python_library flaw name run_path)
  broken_library(${flaw} never_fuses)
  under_the_name(${flaw} ${name})
  set_target_properties(zktarn_broken_${flaw} PROPERTIES
    BUILD_WITH_INSTALL_RPATH ON INSTALL_RPATH "${run_path}")
endfunction()

broken_python_library(python_loads_only qv "@loader_path")
target_link_libraries(zktarn_broken_python_loads_only PRIVATE zktarn_python_host)
breaks_python_host(without_re_export "libqv does not re-export the host"
  zktarn_broken_python_loads_only libqv.dylib)
breaks_python_host(of_another_name "libqvx: its name is @rpath/libqv.dylib"
  zktarn_python_host_qv libqvx.dylib)
broken_python_library(python_without_operations zktarn_python_host "@loader_path")
breaks_python_host(without_operations "the host lacks _assertOptim, "
  zktarn_broken_python_without_operations libzktarn_python_host.dylib)
broken_python_library(python_elsewhere ut "/nowhere")
breaks_python_host(that_looks_elsewhere "libut looks for libraries in /nowhere"
  zktarn_broken_python_elsewhere libut.dylib)
