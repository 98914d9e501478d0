# Installing: component `c`, and the control of the stand-in in C with component `standin`.

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/zktarn_util")

install(TARGETS zktarn_util_c EXPORT c COMPONENT c
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
  FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
if(ZKTARN_STATIC)
  install(TARGETS zktarn_util_c_static EXPORT c COMPONENT c
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
endif()
install(EXPORT c COMPONENT c
  DESTINATION "${package_dir}" NAMESPACE zktarn:: FILE zktarn_util-c-targets.cmake)

install(TARGETS zktarn_standin_c zktarn_standin_records_c EXPORT standin_c COMPONENT standin
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}/${ZKTARN_STANDIN_SUBDIR}"
  ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}/${ZKTARN_STANDIN_SUBDIR}"
  FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
install(EXPORT standin_c COMPONENT standin
  DESTINATION "${package_dir}" NAMESPACE zktarn:: FILE zktarn_util-standin_c-targets.cmake)

# The way from the pkg-config files up to the prefix, so that the tree can be moved.
file(RELATIVE_PATH pkg_config_to_prefix
  "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
string(REGEX REPLACE "/$" "" pkg_config_to_prefix "${pkg_config_to_prefix}")
if(ZKTARN_CHECKED)
  set(pkg_config_definitions " -DZKTARN_CHECKED")
endif()
set(pkg_config_cxx_runtime "-lstdc++")
if(APPLE)
  set(pkg_config_cxx_runtime "-lc++")
endif()
foreach(name IN ITEMS zktarn_util_c zktarn_standin_c zktarn_standin_records_c)
  configure_file("${name}.pc.in" "${CMAKE_CURRENT_BINARY_DIR}/${name}.pc" @ONLY)
endforeach()
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/zktarn_util_c.pc"
  DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT c)
install(FILES
    "${CMAKE_CURRENT_BINARY_DIR}/zktarn_standin_c.pc"
    "${CMAKE_CURRENT_BINARY_DIR}/zktarn_standin_records_c.pc"
  DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT standin)
