# CPack runs this on the packages it has made: adds the field Multi-Arch, which CPack does not have. The
# packages of several architectures can be installed together where all that they share is the same in
# each: not programs, and not Python's modules.
if(NOT CPACK_GENERATOR STREQUAL "DEB")
  return()
endif()

foreach(package IN LISTS CPACK_PACKAGE_FILES)
  set(tree "${package}.d")
  execute_process(COMMAND dpkg-deb --raw-extract "${package}" "${tree}" COMMAND_ERROR_IS_FATAL ANY)
  file(GLOB programs "${tree}/usr/bin/*" "${tree}/usr/lib/python3/*")
  if(NOT programs)
    file(READ "${tree}/DEBIAN/control" control)
    file(WRITE "${tree}/DEBIAN/control" "Multi-Arch: same\n${control}")
  endif()
  execute_process(COMMAND dpkg-deb --root-owner-group -Zxz --build "${tree}" "${package}"
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE_RECURSE "${tree}")
endforeach()
