# Installing: two components, `util` and `standin`, one CMake package and one pkg-config file, all of
# them free of absolute paths.

include(CMakePackageConfigHelpers)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/zktarn_util")
set(standin_dir "${CMAKE_INSTALL_LIBDIR}/${ZKTARN_STANDIN_SUBDIR}")

install(TARGETS zktarn_util EXPORT util COMPONENT util
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
  FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
if(ZKTARN_STATIC)
  install(TARGETS zktarn_util_static EXPORT util COMPONENT util
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
endif()
install(EXPORT util COMPONENT util
  DESTINATION "${package_dir}" NAMESPACE zktarn:: FILE zktarn_util-targets.cmake)

install(
  TARGETS
    zktarn_standin zktarn_standin_qv zktarn_standin_qvx zktarn_standin_ut
    zktarn_standin_zkoptimutil zktarn_standin_records
  EXPORT standin COMPONENT standin
  LIBRARY DESTINATION "${standin_dir}"
  ARCHIVE DESTINATION "${standin_dir}"
  FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
install(EXPORT standin COMPONENT standin
  DESTINATION "${package_dir}" NAMESPACE zktarn:: FILE zktarn_util-standin-targets.cmake)

configure_package_config_file(cmake/zktarn_util-config.cmake.in
  "${PROJECT_BINARY_DIR}/zktarn_util-config.cmake"
  INSTALL_DESTINATION "${package_dir}"
  NO_SET_AND_CHECK_MACRO)
# Before 1.0 a minor release may break its callers.
write_basic_package_version_file("${PROJECT_BINARY_DIR}/zktarn_util-config-version.cmake"
  COMPATIBILITY SameMinorVersion)
install(
  FILES
    "${PROJECT_BINARY_DIR}/zktarn_util-config.cmake"
    "${PROJECT_BINARY_DIR}/zktarn_util-config-version.cmake"
  DESTINATION "${package_dir}" COMPONENT util)

# The way from the pkg-config file up to the prefix, so that the tree can be moved.
file(RELATIVE_PATH pkg_config_to_prefix
  "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
string(REGEX REPLACE "/$" "" pkg_config_to_prefix "${pkg_config_to_prefix}")
if(ZKTARN_CHECKED)
  set(pkg_config_definitions " -DZKTARN_CHECKED")
endif()
foreach(name IN ITEMS zktarn_util zktarn_standin)
  configure_file("cmake/${name}.pc.in" "${PROJECT_BINARY_DIR}/${name}.pc" @ONLY)
endforeach()
install(FILES "${PROJECT_BINARY_DIR}/zktarn_util.pc"
  DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT util)
install(FILES "${PROJECT_BINARY_DIR}/zktarn_standin.pc"
  DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT standin)
install(FILES LICENSE DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT util)
