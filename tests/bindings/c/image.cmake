# The images of the two libraries in C: exported functions, names, hardening.
find_package(Python3 3.9 REQUIRED COMPONENTS Interpreter)
set(check ${Python3_EXECUTABLE} "${CMAKE_CURRENT_LIST_DIR}/check_image.py")
set(goldens "${CMAKE_CURRENT_LIST_DIR}")

function(zktarn_image_test name)
  add_test(NAME bindings.${name} COMMAND ${check} ${ARGN})
  set_tests_properties(bindings.${name} PROPERTIES LABELS bindings)
endfunction()

if(APPLE)
  set(c_name libzktarn_util_c.1.dylib)
  set(standin_name libzktarn_standin_c.dylib)
else()
  set(c_name libzktarn_util_c.so.1)
  set(standin_name libzktarn_standin_c.so)
endif()
zktarn_image_test(exports_c $<TARGET_FILE:zktarn_util_c> "${goldens}/exports.golden" ${c_name})
zktarn_image_test(exports_standin_c
  $<TARGET_FILE:zktarn_standin_c> "${goldens}/standin_exports.golden" ${standin_name})

# Proves that the check fails: a wrong list, a wrong name.
zktarn_image_test(exports_difference_is_named
  $<TARGET_FILE:zktarn_util_c> "${goldens}/standin_exports.golden" ${c_name})
set_tests_properties(bindings.exports_difference_is_named PROPERTIES PASS_REGULAR_EXPRESSION
  "check_image: missing: .*zktarn_standin_reset.*; extra: .*zktarn_vector_alloc")
zktarn_image_test(other_name_is_refused
  $<TARGET_FILE:zktarn_util_c> "${goldens}/exports.golden" libzktarn_util_c.2)
set_tests_properties(bindings.other_name_is_refused PROPERTIES PASS_REGULAR_EXPRESSION
  "check_image: the name of the library is not libzktarn_util_c.2")
