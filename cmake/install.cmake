# Installs the components `util`, `standin` and `conformance`: libraries, headers, one CMake package, pkg-config files
# and pages. No file contains an absolute path, so the installed tree can be moved.

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

if(TARGET zktarn_host_conformance)
  install(TARGETS zktarn_host_conformance host_conformance
    EXPORT conformance COMPONENT conformance
    RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}"
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
  install(EXPORT conformance COMPONENT conformance
    DESTINATION "${package_dir}" NAMESPACE zktarn:: FILE zktarn_util-conformance-targets.cmake)
endif()

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

include("${PROJECT_SOURCE_DIR}/cmake/pkg_config.cmake")
install_pkg_config(zktarn_util util "${CMAKE_INSTALL_LIBDIR}" "${PROJECT_DESCRIPTION}"
  "${pkg_config_cflags}"
  "Libs: -L\${libdir} -lzktarn_util -Wl,-rpath,\${libdir}")
install_pkg_config(zktarn_standin standin "${standin_dir}" "Stand-in host for solvers that link zktarn_util"
  "Cflags: -I\${includedir}"
  "Libs: -L\${libdir} -lqv -lqvx -lut -lzkoptimutil -Wl,-rpath,\${libdir}")
if(ZKTARN_STATIC)
  install_pkg_config(zktarn_util_static util "${CMAKE_INSTALL_LIBDIR}"
    "${PROJECT_DESCRIPTION}, static library; name zktarn_standin or a host's libraries after it"
    "${pkg_config_cflags}"
    "Libs: \${libdir}/libzktarn_util.a")
endif()

# The pages keep their relative positions, so that their links work.
install(FILES README.md CHANGELOG.md SECURITY.md LICENSE
  DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT util)
install(DIRECTORY docs DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT util
  FILES_MATCHING PATTERN "*.md")
install(FILES standin/README.md
  DESTINATION "${CMAKE_INSTALL_DOCDIR}/standin" COMPONENT standin)

# Printers for debuggers. gdb loads the script whose name is the full path of the library, which is known at
# installation.
install(FILES src/debugger/README.md src/debugger/zktarn_gdb.py src/debugger/zktarn_lldb.py
  DESTINATION "${CMAKE_INSTALL_DATADIR}/zktarn_util/debugger" COMPONENT util)
if(NOT APPLE)
  install(FILES src/debugger/zktarn_gdb.py
    DESTINATION
      "${CMAKE_INSTALL_DATADIR}/gdb/auto-load/\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}"
    RENAME "libzktarn_util.so.${PROJECT_VERSION}-gdb.py" COMPONENT util)
endif()
