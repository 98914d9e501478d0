# Debian packages: `cpack -G DEB` in a build of the preset `packages`. What goes into which package is in
# packaging/debian; stage.cmake there sorts the installed files before CPack packs them.

set(CPACK_PACKAGE_NAME zktarn-util)
set(CPACK_PACKAGE_VENDOR "The libzktarn_util authors")
set(CPACK_PACKAGE_CONTACT "The libzktarn_util authors <maintainers@zktarn.invalid>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
# Otherwise CPack puts the project's description before that of each package.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_OUTPUT_FILE_PREFIX "${PROJECT_BINARY_DIR}/packages")
set(CPACK_VERBATIM_VARIABLES ON)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SOURCE zktarn-util)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(same_version "(= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")

set(CPACK_ZKTARN_BUILD "${PROJECT_BINARY_DIR}")
set(CPACK_ZKTARN_STAGE "${PROJECT_BINARY_DIR}/stage")
set(CPACK_ZKTARN_PREFIX "${CMAKE_INSTALL_PREFIX}")
set(CPACK_PROJECT_CONFIG_FILE "${PROJECT_SOURCE_DIR}/packaging/debian/stage.cmake")
set(CPACK_POST_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/packaging/debian/finish.cmake")

# zktarn_package(NAME SECTION section SUMMARY line DESCRIPTION line... [DEPENDS p...] [RECOMMENDS p...]
# [SUGGESTS p...] [CONTROL file...]): DEPENDS lists dependencies that dpkg-shlibdeps does not find
# in the binaries.
function(zktarn_package name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "SECTION;SUMMARY"
    "DESCRIPTION;DEPENDS;RECOMMENDS;SUGGESTS;CONTROL")
  # Sorted there when CPack runs, and no part of an ordinary installation.
  install(DIRECTORY "${CPACK_ZKTARN_STAGE}/debian/${name}/usr/" DESTINATION .
    USE_SOURCE_PERMISSIONS COMPONENT ${name} EXCLUDE_FROM_ALL)
  string(TOUPPER ${name} upper)
  list(JOIN arg_DESCRIPTION "\n" description)
  foreach(relation IN ITEMS DEPENDS RECOMMENDS SUGGESTS)
    list(JOIN arg_${relation} ", " ${relation})
    set(CPACK_DEBIAN_${upper}_PACKAGE_${relation} "${${relation}}" PARENT_SCOPE)
  endforeach()
  list(TRANSFORM arg_CONTROL PREPEND "${CPACK_ZKTARN_STAGE}/debian/${name}/DEBIAN/")
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${name} PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${arg_SECTION} PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_PACKAGE_CONTROL_EXTRA "${arg_CONTROL}" PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_DESCRIPTION "${arg_SUMMARY}\n${description}" PARENT_SCOPE)
  set(CPACK_COMPONENTS_ALL ${CPACK_COMPONENTS_ALL} ${name} PARENT_SCOPE)
endfunction()

set(CPACK_COMPONENTS_ALL "")
set(library_control shlibs symbols triggers)

# The host is not a dependency: it can be the stand-in, the Python package, or any other.
zktarn_package(libzktarn-util1
  SECTION libs
  SUMMARY "support routines for integer optimisation solvers"
  DESCRIPTION
    "Sparse vectors, integrality within a tolerance, fractions with a bounded"
    "denominator, arrays and random numbers of a host, and the bridge by which a"
    "running solver prints lines, calls an output function and polls interrupts."
    ""
    "The library runs in the process of a host, for instance the stand-in host of"
    "package zktarn-standin."
  RECOMMENDS "zktarn-standin ${same_version}"
  CONTROL ${library_control})

zktarn_package(libzktarn-util-c1
  SECTION libs
  SUMMARY "support routines for integer optimisation solvers, in C"
  DESCRIPTION
    "The procedures of libzktarn_util with the calling conventions of C: sparse"
    "vectors, integrality within a tolerance, fractions with a bounded denominator,"
    "arrays and random numbers of a host."
    ""
    "The modules of libzktarn-util-fortran-dev call this library too."
  RECOMMENDS "zktarn-standin ${same_version}"
  CONTROL ${library_control})

# The linker must resolve the host's operations that the shared libraries call, so -dev depends on a host.
zktarn_package(libzktarn-util-dev
  SECTION libdevel
  SUMMARY "support routines for integer optimisation solvers, development files"
  DESCRIPTION
    "Headers for C++20 and C, static libraries, the CMake package zktarn_util,"
    "pkg-config files, printers for debuggers and the manuals."
  DEPENDS "libzktarn-util1 ${same_version}" "libzktarn-util-c1 ${same_version}"
    "zktarn-standin ${same_version}"
  SUGGESTS libzktarn-util-fortran-dev)

zktarn_package(zktarn-standin
  SECTION devel
  SUMMARY "stand-in host of libzktarn_util, for tests of solvers"
  DESCRIPTION
    "Four shared libraries with the operations that libzktarn_util calls in its"
    "host. A test can make any request fail, raise interrupts, capture the console,"
    "and read a log of all calls. Leaks, double frees and uses after free are"
    "reported with the operation and the call stack."
    ""
    "The program zktarn_host_conformance and an archive check any other host."
  SUGGESTS libzktarn-util-dev)

zktarn_package(libzktarn-util-fortran-dev
  SECTION libdevel
  SUMMARY "support routines for integer optimisation solvers, Fortran modules"
  DESCRIPTION
    "Sources of the modules zktarn_util and zktarn_standin, in Fortran 2018. A"
    "module file works with one compiler in one version, so a project compiles"
    "them itself: by the CMake package zktarn_util or by pkg-config's variables."
  DEPENDS "libzktarn-util-dev ${same_version}"
  RECOMMENDS "gfortran | fortran-compiler")

# The modules are built for one version of Python.
zktarn_package(python3-zktarn
  SECTION python
  SUMMARY "support routines for integer optimisation solvers, on NumPy"
  DESCRIPTION
    "Python package zktarn: libzktarn_util on a host made of CPython and NumPy. Its"
    "arrays are NumPy arrays, its errors are exceptions, its console is sys.stdout."
    ""
    "The module zktarn.zero_half, which needs SciPy, tightens integer programs by"
    "zero-half cuts."
  DEPENDS python3-numpy
  RECOMMENDS python3-scipy
  SUGGESTS python3-matplotlib
  CONTROL postinst prerm)

include(CPack)
