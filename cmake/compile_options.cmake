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

# A jump or a return that an overwritten address leads astray is stopped by the processor, where it
# and the compiler can: landing pads and shadow stacks on x86-64, landing pads and signed return
# addresses on Arm. On macOS plain 64-bit Arm code is not checked.
include(CheckCXXCompilerFlag)
if(NOT APPLE)
  check_cxx_compiler_flag(-fcf-protection=full ZKTARN_HAS_CF_PROTECTION)
  check_cxx_compiler_flag(-mbranch-protection=standard ZKTARN_HAS_BRANCH_PROTECTION)
endif()
if(ZKTARN_HAS_CF_PROTECTION)
  set(ZKTARN_CONTROL_FLOW_GUARD -fcf-protection=full)
  set(ZKTARN_NO_CONTROL_FLOW_GUARD -fcf-protection=none)
  # Said to the linker, since start files that say nothing would take the mark away. They return to
  # where they were called from, but begin with no landing pad, so that mark is left to the system.
  set(ZKTARN_SHADOW_STACK LINKER:-z,shstk)
elseif(ZKTARN_HAS_BRANCH_PROTECTION)
  set(ZKTARN_CONTROL_FLOW_GUARD -mbranch-protection=standard)
  set(ZKTARN_NO_CONTROL_FLOW_GUARD -mbranch-protection=none)
endif()

# Neither contraction nor any other relaxation of IEEE 754 may change a result. Exceptions and type
# information have no place in code that throws nothing and is called from hosts that unwind nothing;
# nor has a guarded stack, on by default on some systems, in code that never ends the process.
function(zktarn_library_rules target)
  zktarn_warnings(${target})
  target_compile_options(${target} PRIVATE
    -ffp-contract=off -fno-fast-math -fno-exceptions -fno-rtti -fno-stack-protector
    ${ZKTARN_CONTROL_FLOW_GUARD}
    # Where symbols are bound to their library anyway, Clang complains about an option to do so.
    $<$<NOT:$<BOOL:${APPLE}>>:-fno-semantic-interposition>)
  set_target_properties(${target} PROPERTIES
    POSITION_INDEPENDENT_CODE ON
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
endfunction()
