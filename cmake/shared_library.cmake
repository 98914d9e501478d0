# What the library's shared objects, in C++ and in C, have in common: names, versions, run path, exported
# names and hardening.

# zktarn_restrict_exports(TARGET C|CXX): hides everything that the linker would export in addition to the
# marked procedures: templates and inline functions of the standard library, which set their own
# visibility. The compiler already hides everything else in namespace zktarn. The tests of the exported names
# compare the result with their lists.
function(zktarn_restrict_exports target language)
  set(exported_CXX "_ZN6zktarn*")
  set(exported_C "zktarn_*")
  # On macOS, a list of exported names also re-exports matching names of other libraries, and the stand-in
  # is in namespace zktarn. So there the list names what is hidden instead: functions of std, new and
  # delete; in a library for C, every C++ name.
  set(hidden_CXX "__ZNSt*\n__ZNKSt*\n__ZSt*\n__Zn*\n__Zd*\n")
  set(hidden_C "__Z*\n")

  set(script "${CMAKE_CURRENT_BINARY_DIR}/${target}.exports")
  if(APPLE)
    file(CONFIGURE OUTPUT "${script}" CONTENT "${hidden_${language}}" @ONLY)
    target_link_options(${target} PRIVATE "LINKER:-unexported_symbols_list,${script}")
  else()
    file(CONFIGURE OUTPUT "${script}"
      CONTENT "{ global: ${exported_${language}}; local: *; };\n" @ONLY)
    target_link_options(${target} PRIVATE "LINKER:--version-script,${script}")
  endif()
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${script}")
endfunction()

# zktarn_harden(TARGET): leaves no part of the image writable or executable that need not be.
function(zktarn_harden target)
  if(NOT APPLE)
    target_link_options(${target} PRIVATE LINKER:-z,relro,-z,now,-z,noexecstack)
  endif()
endfunction()

# zktarn_shared_library(TARGET LANGUAGE C|CXX SOVERSION N EXPORT_NAME NAME)
function(zktarn_shared_library target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "LANGUAGE;SOVERSION;EXPORT_NAME" "")
  zktarn_restrict_exports(${target} ${arg_LANGUAGE})
  zktarn_harden(${target})
  set_target_properties(${target} PROPERTIES
    LINKER_LANGUAGE CXX
    VERSION ${PROJECT_VERSION}
    SOVERSION ${arg_SOVERSION}
    # Mach-O requires the current version to be at least the compatibility version.
    MACHO_CURRENT_VERSION ${PROJECT_VERSION}
    MACHO_COMPATIBILITY_VERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}
    EXPORT_NAME ${arg_EXPORT_NAME}
    INSTALL_RPATH "${ZKTARN_ORIGIN};${ZKTARN_ORIGIN}/${ZKTARN_STANDIN_SUBDIR}")
  if(NOT APPLE)
    target_link_options(${target} PRIVATE LINKER:-Bsymbolic-functions ${ZKTARN_SHADOW_STACK})
    if(NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
      target_link_options(${target} PRIVATE LINKER:--no-undefined)
    endif()
  endif()
endfunction()
