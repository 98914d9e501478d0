# One rounding where the source asks for it, two everywhere else: read from the machine code.
if(APPLE AND CMAKE_SYSTEM_PROCESSOR STREQUAL "x86_64")
  return() # a development machine only, whose processors are not told apart
endif()
set(check_fused ${Python3_EXECUTABLE} "${CMAKE_CURRENT_SOURCE_DIR}/check_fused.py")

abi_test(fused ${check_fused} ${library} ${CMAKE_OBJDUMP})

# A library with a product and a sum that its compiler fuses, and one that fuses too often where it
# is asked for less.
add_library(zktarn_broken_contracts SHARED broken/contracts.cpp)
target_compile_options(zktarn_broken_contracts PRIVATE -O2 -ffp-contract=fast
  $<$<STREQUAL:${CMAKE_SYSTEM_PROCESSOR},x86_64>:-mfma>)
abi_refuses(contraction_is_refused "broken.* fuses 1 times, and never asks for it"
  ${check_fused} $<TARGET_FILE:zktarn_broken_contracts> ${CMAKE_OBJDUMP})
abi_refuses(contraction_beside_is_refused "xgcd_r8.* fuses 2 times, and asks for 1"
  ${check_fused} $<TARGET_FILE:zktarn_broken_contracts> ${CMAKE_OBJDUMP})
add_library(zktarn_broken_never_fuses SHARED broken/never_fuses.cpp)
abi_refuses(no_fused_instruction_is_refused "vectors_combine does not use the fused instruction"
  ${check_fused} $<TARGET_FILE:zktarn_broken_never_fuses> ${CMAKE_OBJDUMP})
