# GoogleTest and the headers of Boost, for the tests. A cross build compiles GoogleTest from the building
# machine's sources, because the installed library is for the building machine.

if(NOT CMAKE_CROSSCOMPILING)
  find_package(GTest REQUIRED)
  find_package(Boost 1.71 REQUIRED)
  return()
endif()

set(ZKTARN_GOOGLETEST_SOURCE "/usr/src/googletest" CACHE PATH "GoogleTest's source, for cross builds")
set(ZKTARN_BOOST_HEADERS "/usr/include/boost" CACHE PATH "Boost's folder boost, for cross builds")
foreach(source IN ITEMS ZKTARN_GOOGLETEST_SOURCE/CMakeLists.txt ZKTARN_BOOST_HEADERS/version.hpp)
  string(REPLACE "/" ";" parts "${source}")
  list(GET parts 0 variable)
  list(GET parts 1 file)
  if(NOT EXISTS "${${variable}}/${file}")
    message(FATAL_ERROR "A cross build of the tests needs ${variable}, and there is no ${${variable}}/${file}.")
  endif()
endforeach()

set(INSTALL_GTEST OFF)
add_subdirectory("${ZKTARN_GOOGLETEST_SOURCE}" "${PROJECT_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL)

# A link in a separate folder, because the original folder also has headers of the building machine.
set(boost_alone "${PROJECT_BINARY_DIR}/boost_alone")
file(MAKE_DIRECTORY "${boost_alone}")
file(CREATE_LINK "${ZKTARN_BOOST_HEADERS}" "${boost_alone}/boost" SYMBOLIC)
add_library(Boost::headers INTERFACE IMPORTED GLOBAL)
target_include_directories(Boost::headers INTERFACE "${boost_alone}")
