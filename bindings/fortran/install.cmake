# Installing: component `fortran`, the sources and how a project builds them.

include(modules.cmake)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/zktarn_util")
set(source_dir "${CMAKE_INSTALL_DATADIR}/zktarn_util/fortran")

install(FILES ${zktarn_fortran_sources} zktarn_standin.f90 zktarn_standin_records.f90
  DESTINATION "${source_dir}" COMPONENT fortran)

# The ways from the package's files to the sources, so that the tree can be moved.
file(RELATIVE_PATH package_to_sources "/prefix/${package_dir}" "/prefix/${source_dir}")
file(RELATIVE_PATH pkg_config_to_sources
  "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix/${source_dir}")
set(pkg_config_sources ${zktarn_fortran_sources})
list(TRANSFORM pkg_config_sources PREPEND "\${folder}/")
list(JOIN pkg_config_sources " " pkg_config_sources)

configure_file(zktarn_util-fortran-targets.cmake.in
  "${CMAKE_CURRENT_BINARY_DIR}/zktarn_util-fortran-targets.cmake" @ONLY)
configure_file(zktarn_util_fortran.pc.in
  "${CMAKE_CURRENT_BINARY_DIR}/zktarn_util_fortran.pc" @ONLY)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/zktarn_util-fortran-targets.cmake"
  DESTINATION "${package_dir}" COMPONENT fortran)
install(FILES modules.cmake RENAME zktarn_util-fortran-modules.cmake
  DESTINATION "${package_dir}" COMPONENT fortran)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/zktarn_util_fortran.pc"
  DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT fortran)
