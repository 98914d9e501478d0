# Warnings for this project's own code, and the rules under which its results are the same bit for
# bit with every compiler.

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

# Where processor and compiler support it, the processor stops a jump or a return to an overwritten
# address: landing pads and shadow stacks on x86-64, landing pads and signed return addresses on
# Arm. On macOS the processor does not check plain 64-bit Arm code.
include(CheckCXXCompilerFlag)
if(NOT APPLE)
  check_cxx_compiler_flag(-fcf-protection=full ZKTARN_HAS_CF_PROTECTION)
  check_cxx_compiler_flag(-mbranch-protection=standard ZKTARN_HAS_BRANCH_PROTECTION)
endif()
if(ZKTARN_HAS_CF_PROTECTION)
  set(ZKTARN_CONTROL_FLOW_GUARD -fcf-protection=full)
  set(ZKTARN_NO_CONTROL_FLOW_GUARD -fcf-protection=none)
  # The linker drops the mark for shadow stacks if the system's start files have no mark, so this
  # sets it. Start files do work with a shadow stack. They may have no landing pads, so that mark is
  # left to the linker.
  set(ZKTARN_SHADOW_STACK LINKER:-z,shstk)
elseif(ZKTARN_HAS_BRANCH_PROTECTION)
  set(ZKTARN_CONTROL_FLOW_GUARD -mbranch-protection=standard)
  set(ZKTARN_NO_CONTROL_FLOW_GUARD -mbranch-protection=none)
endif()

# Neither contraction nor any other relaxation of IEEE 754 may change a result. The code throws
# nothing, and its hosts cannot unwind it, so it has neither exceptions nor type information. It
# never ends the process, so it has no stack guard, which some systems add by default.
function(zktarn_library_rules target)
  zktarn_warnings(${target})
  target_compile_options(${target} PRIVATE
    -ffp-contract=off -fno-fast-math -fno-exceptions -fno-rtti -fno-stack-protector
    ${ZKTARN_CONTROL_FLOW_GUARD}
    # On macOS symbols are bound to their library anyway, and Clang warns about this option.
    $<$<NOT:$<BOOL:${APPLE}>>:-fno-semantic-interposition>)
  set_target_properties(${target} PROPERTIES
    POSITION_INDEPENDENT_CODE ON
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
endfunction()
