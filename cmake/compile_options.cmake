# Warnings for this project's code, and the options that make its results the same bit for bit with every
# compiler.

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
