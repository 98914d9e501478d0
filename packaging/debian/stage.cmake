# CPack runs this file before it packs. It sorts the installed files into packages, and reads their
# dependencies.
if(NOT CPACK_GENERATOR STREQUAL "DEB")
  return()
endif()
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
