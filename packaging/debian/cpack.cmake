# CPack runs this file twice: before it packs, and on the packages that it has made.
if(NOT CPACK_GENERATOR STREQUAL "DEB")
  return()
endif()

# The second time: adds the field Multi-Arch, which CPack does not have. A package can be installed for several
# architectures if the files that these share are the same in each. That excludes programs and Python modules.
if(DEFINED CPACK_PACKAGE_FILES)
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
  return()
endif()

# The first time: sorts the installed files into packages, and reads the dependencies of each.
if(NOT CPACK_ZKTARN_PREFIX STREQUAL "/usr")
  message(FATAL_ERROR
    "Debian packages install into /usr, not into ${CPACK_ZKTARN_PREFIX}: use the preset `packages`.")
endif()

execute_process(
  COMMAND "${CMAKE_CURRENT_LIST_DIR}/stage.sh"
    "${CMAKE_COMMAND}" "${CPACK_ZKTARN_BUILD}" "${CPACK_ZKTARN_STAGE}" "${CPACK_PACKAGE_VERSION}"
    "${CPACK_DEBIAN_PACKAGE_RELEASE}" ${CPACK_COMPONENTS_ALL}
  RESULT_VARIABLE status)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "The installed files could not be sorted into packages.")
endif()

foreach(package IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${package} upper)
  file(STRINGS "${CPACK_ZKTARN_STAGE}/debian/${package}.depends" needed)
  set(depends "${CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS}")
  if(needed AND depends)
    string(APPEND depends ", ")
  endif()
  set(CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS "${depends}${needed}")
endforeach()
