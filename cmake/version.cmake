# Reads the version from version.hpp, and makes CMake configure again when that header changes.

set(version_header "${CMAKE_CURRENT_SOURCE_DIR}/src/zktarn/version.hpp")
set(numbers "")
foreach(part IN ITEMS MAJOR MINOR PATCH)
  file(STRINGS "${version_header}" line REGEX "^#define ZKTARN_VERSION_${part} [0-9]+$")
  if(NOT line MATCHES " ([0-9]+)$")
    message(FATAL_ERROR "${version_header} does not define ZKTARN_VERSION_${part} as a number")
  endif()
  list(APPEND numbers "${CMAKE_MATCH_1}")
endforeach()
list(JOIN numbers "." ZKTARN_VERSION)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${version_header}")
