# How this project's code is compiled: its warnings, and the options that make its results the same bit for bit
# with every compiler. And how its shared libraries, in C++ and in C, are linked: names, versions, run path,
# exported names and hardening.

function(zktarn_warnings target)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic
    -Wconversion -Wsign-conversion -Wdouble-promotion -Wfloat-conversion
    -Wshadow -Wold-style-cast -Wcast-qual -Wcast-align -Wundef
    -Wnon-virtual-dtor -Woverloaded-virtual -Wformat=2 -Wimplicit-fallthrough
    -Wextra-semi -Wvla -Wzero-as-null-pointer-constant
    $<$<CXX_COMPILER_ID:GNU>:-Wduplicated-cond -Wduplicated-branches -Wlogical-op>
    $<$<BOOL:${ZKTARN_WERROR}>:-Werror>)
endfunction()

# Hardening against overwritten addresses, if processor and compiler support it: landing pads for indirect
# jumps, and shadow stacks (x86-64) or signed return addresses (Arm) for returns. On macOS the processor does
# not check arm64 code.
include(CheckCXXCompilerFlag)
if(NOT APPLE)
  check_cxx_compiler_flag(-fcf-protection=full ZKTARN_HAS_CF_PROTECTION)
  check_cxx_compiler_flag(-mbranch-protection=standard ZKTARN_HAS_BRANCH_PROTECTION)
endif()
if(ZKTARN_HAS_CF_PROTECTION)
  set(ZKTARN_CONTROL_FLOW_GUARD -fcf-protection=full)
  set(ZKTARN_NO_CONTROL_FLOW_GUARD -fcf-protection=none)
  # The linker marks the library as supporting shadow stacks only if the system's start-up objects have the
  # mark. Those work with a shadow stack even without it, so this sets the mark. They may lack landing pads, so
  # the linker decides that mark.
  set(ZKTARN_SHADOW_STACK LINKER:-z,shstk)
elseif(ZKTARN_HAS_BRANCH_PROTECTION)
  set(ZKTARN_CONTROL_FLOW_GUARD -mbranch-protection=standard)
  set(ZKTARN_NO_CONTROL_FLOW_GUARD -mbranch-protection=none)
endif()

# No contraction and no other relaxation of IEEE 754, because they change results. No exceptions and no RTTI,
# because the code throws nothing and its hosts cannot unwind it. No stack protector, which would end the
# process.
function(zktarn_library_rules target)
  zktarn_warnings(${target})
  target_compile_options(${target} PRIVATE
    -ffp-contract=off -fno-fast-math -fno-exceptions -fno-rtti -fno-stack-protector
    ${ZKTARN_CONTROL_FLOW_GUARD}
    # macOS always binds symbols to their library, and Clang warns about this option there.
    $<$<NOT:$<BOOL:${APPLE}>>:-fno-semantic-interposition>)
  set_target_properties(${target} PROPERTIES
    POSITION_INDEPENDENT_CODE ON
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
endfunction()

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
