# What the tests are built with: GoogleTest and the headers of Boost. A cross build takes both as
# source from the machine that builds, because what is installed there is built for that machine.

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

# In a folder of its own, since next to it are the headers of this machine.
set(boost_alone "${PROJECT_BINARY_DIR}/boost_alone")
file(MAKE_DIRECTORY "${boost_alone}")
file(CREATE_LINK "${ZKTARN_BOOST_HEADERS}" "${boost_alone}/boost" SYMBOLIC)
add_library(Boost::headers INTERFACE IMPORTED GLOBAL)
target_include_directories(Boost::headers INTERFACE "${boost_alone}")
