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

include("${PROJECT_SOURCE_DIR}/cmake/pkg_config.cmake")
set(standin_dir "${CMAKE_INSTALL_LIBDIR}/${ZKTARN_STANDIN_SUBDIR}")
set(cxx_runtime "-lstdc++")
if(APPLE)
  set(cxx_runtime "-lc++")
endif()
install_pkg_config(zktarn_util_c c "${CMAKE_INSTALL_LIBDIR}" "${PROJECT_DESCRIPTION}, in C"
  "${pkg_config_cflags}"
  "Libs: -L\${libdir} -lzktarn_util_c -Wl,-rpath,\${libdir}")
install_pkg_config(zktarn_standin_c standin "${standin_dir}" "Control of the stand-in host of zktarn_util, in C"
  "Cflags: -I\${includedir}"
  "Libs: -L\${libdir} -lzktarn_standin_c -lqv -lqvx -lut -lzkoptimutil -Wl,-rpath,\${libdir}")
install_pkg_config(zktarn_standin_records_c standin "${standin_dir}" "Control of the records of zktarn_util, in C"
  "Requires: zktarn_standin_c"
  "Libs: -L\${libdir} -lzktarn_standin_records_c -lzktarn_standin_records ${cxx_runtime}")
