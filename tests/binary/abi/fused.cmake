# Checks in the machine code that only std::fma rounds a product and a sum once.
if(APPLE AND CMAKE_SYSTEM_PROCESSOR STREQUAL "x86_64")
  return() # the code for Intel Macs does not choose a variant at load time, so a fused instruction need not occur
endif()
set(check_fused ${Python3_EXECUTABLE} "${CMAKE_CURRENT_SOURCE_DIR}/check_fused.py")

abi_test(fused ${check_fused} ${library} ${CMAKE_OBJDUMP})

# Libraries that the check must refuse: a fused product and sum without std::fma, and more fused
# operations than calls of std::fma.
abi_broken(zktarn_broken_contracts SHARED contracts)
target_compile_options(zktarn_broken_contracts PRIVATE -O2 -ffp-contract=fast
  $<$<STREQUAL:${CMAKE_SYSTEM_PROCESSOR},x86_64>:-mfma>)
abi_refuses(contraction_is_refused "broken.* has 1 fused instructions, but its source asks for none"
  ${check_fused} $<TARGET_FILE:zktarn_broken_contracts> ${CMAKE_OBJDUMP})
abi_refuses(contraction_beside_is_refused "xgcd_r8.* has 2 fused instructions, but its source asks for 1"
  ${check_fused} $<TARGET_FILE:zktarn_broken_contracts> ${CMAKE_OBJDUMP})
abi_broken(zktarn_broken_never_fuses SHARED never_fuses)
abi_refuses(no_fused_instruction_is_refused "vectors_combine does not use the fused instruction"
  ${check_fused} $<TARGET_FILE:zktarn_broken_never_fuses> ${CMAKE_OBJDUMP})
